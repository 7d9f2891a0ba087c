// SPDX-License-Identifier: MIT
// What of a scene goes into a file: the objects in the order of writing, their numbers, and the connections between
// them.
#pragma once

#include <deque>
#include <string_view>
#include <unordered_map>

#include "plugin/fbx/format/sdk.h"
#include "plugin/fbx/format/top_turn.h"

namespace tavrilon::fbx {

/// The switches of the settings that leave objects out.
struct ExportSwitches {
  bool animation = true, materials = true, textures = true, skins = true, shapes = true;
  explicit ExportSwitches(const FbxIOSettings& settings);
};

/// A curve node as files know it: which channels it has and what they are called.
struct PlannedCurveNode {
  std::string name;
  const FbxAnimLayer* layer = nullptr;
  const FbxObject* target = nullptr;
  std::string_view property;
  /// "d|X", "d|Y", "d|Z", or one "d|<property>".
  std::vector<std::string> channels;
  std::array<double, 3> defaults{};
  std::array<const FbxAnimCurve*, 3> curves{};
};

class ExportPlan {
 public:
  ExportPlan(const FbxScene& scene, const ExportSwitches& switches);

  /// A node's transform as it is written.
  NodeTransform TransformOf(const FbxNode& node) const;

  // In the order of writing; a deformer stands in front of its parts.
  std::vector<const FbxNodeAttribute*> attributes;  // all kinds but meshes
  std::vector<const FbxMesh*> meshes;
  std::vector<const FbxNode*> models;
  std::vector<const FbxPose*> poses;
  std::vector<const FbxSurfaceMaterial*> materials;
  std::vector<const FbxSkin*> skins;
  std::vector<const FbxBlendShape*> blendShapes;
  std::vector<const FbxBlendShapeChannel*> channels;
  std::vector<const FbxTexture*> textures;
  std::vector<const FbxAnimStack*> stacks;
  std::vector<const FbxAnimLayer*> layers;
  std::deque<PlannedCurveNode> curveNodes;
  size_t numClusters = 0, numShapes = 0, numCurves = 0;

  /// `property` is empty for a link from object to object.
  struct Link {
    int64_t child, parent;
    std::string_view property;
  };
  std::vector<Link> links;

  /// The number of an object, cluster, shape, planned curve node or curve; 0 for the root, -1 for what is not written.
  int64_t IdOf(const void* item) const;
  /// The number of the record that tells where a texture's picture lies.
  int64_t VideoIdOf(const FbxTexture* texture) const { return IdOf(&texture->fileName); }

 private:
  template <class T>
  bool Add(std::vector<const T*>& list, const T* object);
  int64_t Number(const void* item);
  void Connect(const void* child, const void* parent, std::string_view property = {});
  void PlanNodes(const FbxScene& scene);
  void PlanMaterials(const FbxScene& scene, const ExportSwitches& switches);
  void PlanDeformers(const ExportSwitches& switches);
  void PlanAnimation(const FbxScene& scene);
  void PlanCurveNode(PlannedCurveNode node);
  bool IsTurned(const FbxObject* object) const;
  void TurnCurves(PlannedCurveNode& node);
  void ConnectNode(const FbxNode* node);
  void ConnectDeformers();

  TopTurn turn_;
  const FbxNode* root_;
  std::deque<FbxAnimCurve> turnedCurves_;
  std::unordered_map<const void*, int64_t> ids_;
  int64_t next_ = 1000000;
};

}  // namespace tavrilon::fbx
