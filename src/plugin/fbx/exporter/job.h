// SPDX-License-Identifier: MIT
// One export under way: what is exported, and what its steps hand on to one another.
#pragma once

#include <optional>
#include <unordered_map>
#include <vector>

#include "host/scene/node.h"
#include "plugin/fbx/exporter/mesh_stack.h"
#include "plugin/fbx/exporter/names.h"
#include "plugin/fbx/exporter/sample_times.h"
#include "plugin/fbx/exporter/trs.h"
#include "plugin/fbx/fbx_export.h"
#include "plugin/fbx/format/scene.h"

namespace corvanta {
class MorphChannel;
class Mtl;
class Texmap;
}  // namespace corvanta

namespace tavrilon::fbx_export {

struct ExportNode {
  corvanta::INode* node = nullptr;
  fbx::FbxNode* out = nullptr;
  /// The place of the exported parent in the list, which is before this one; -1 for a top node.
  int parent = -1;
  bool hasChildren = false;
  /// Has a mesh that is exported.
  std::optional<MeshStack> mesh;
  /// World matrix at bind, in the file's axes: of a skin's bones and of the skinned mesh's node.
  std::optional<fbx::Affine> bind;
  /// World matrix of the still pose, in the file's axes.
  fbx::Affine rest;
};

/// The weight of a morph channel on its way through time.
struct WeightTrack {
  corvanta::MorphChannel* channel;
  fbx::FbxBlendShapeChannel* out;
  std::vector<float> values;
};

struct ExportJob {
  ExportJob(fbx::FbxScene& scene, const FbxExportOptions& options, corvanta::WStr file,
            corvanta::ExchangeReport& report)
      : scene(scene), options(options), file(std::move(file)), report(report) {}

  fbx::FbxScene& scene;
  const FbxExportOptions& options;
  /// Where the file will be: textures are told relative to it.
  corvanta::WStr file;
  corvanta::ExchangeReport& report;

  SampleTimes times;
  /// From the host's axes to the file's.
  fbx::Affine axes;
  /// Parents before children.
  std::vector<ExportNode> nodes;
  std::unordered_map<const corvanta::INode*, int> places;
  /// The one layer of curves; null without animation.
  fbx::FbxAnimLayer* layer = nullptr;
  std::vector<WeightTrack> weights;
  // What several meshes may use goes out once.
  std::unordered_map<const corvanta::Mtl*, fbx::FbxSurfaceMaterial*> materials;
  std::unordered_map<const corvanta::Texmap*, fbx::FbxTexture*> textures;
  UniqueNames materialNames, textureNames;
  int unnamedMaterials = 0;

  /// Null for a node that is not exported.
  ExportNode* Find(const corvanta::INode* node) {
    const auto found = places.find(node);
    return found == places.end() ? nullptr : &nodes[static_cast<size_t>(found->second)];
  }
  /// Always false, so that `return job.Fail(...)` reads well.
  bool Fail(corvanta::WStr error) {
    report.error = std::move(error);
    return false;
  }
  void Log(corvanta::WStr line) { report.log.push_back(std::move(line)); }
  bool Show(double share) {
    static const corvanta::WStr title = L"Exporting FBX";
    return corvanta::ShowProgress(title, share) || Fail(L"The FBX export was stopped.");
  }
};

inline fbx::Vector3 ToVector(const corvanta::Point3& p) { return {p.x, p.y, p.z}; }
inline fbx::Affine ToAffine(const corvanta::Matrix3& m) {
  return {{ToVector(m.row[0]), ToVector(m.row[1]), ToVector(m.row[2]), ToVector(m.row[3])}};
}
/// Below this a determinant counts as zero.
inline constexpr double kSmallestDeterminant = 1e-12;
/// Finite, and not squashed flat.
inline bool IsSound(const fbx::Affine& m) { return IsFinite(m) && std::abs(Determinant(m)) >= kSmallestDeterminant; }

}  // namespace tavrilon::fbx_export
