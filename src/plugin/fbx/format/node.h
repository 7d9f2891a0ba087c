// SPDX-License-Identifier: MIT
// Nodes: the hierarchy, transforms in all their parts, and what a node carries.
#pragma once

#include <map>
#include <optional>
#include <vector>

#include "plugin/fbx/format/affine.h"
#include "plugin/fbx/format/object.h"

namespace tavrilon::fbx {

class FbxSurfaceMaterial;

/// How a child takes its parent's rotation R and scale S: RSrs as matrices multiply; RrSs scales in the child's axes
/// after all rotations; Rrs leaves the parent's scale out.
enum class InheritType : int { RrSs = 0, RSrs = 1, Rrs = 2 };

/// A node's transform as the file has it. Rotations are degrees.
struct NodeTransform {
  Vector3 translation, rotation, scaling{1, 1, 1};
  Vector3 rotationOffset, rotationPivot, scalingOffset, scalingPivot;
  /// Always in order XYZ.
  Vector3 preRotation, postRotation;
  RotationOrder order = RotationOrder::XYZ;
  InheritType inherit = InheritType::RSrs;
  /// Off: pre- and post-rotation and the order are not in force.
  bool rotationActive = false;
  // Between the node and what it carries; children do not take it.
  Vector3 geometricTranslation, geometricRotation, geometricScaling{1, 1, 1};
  bool operator==(const NodeTransform&) const = default;
};
/// The parts of a local matrix that keep their places under every inherit type:
/// inverse(Sp) S Sp Soff inverse(Rp) inverse(Rpost) R Rpre Rp Roff T for row vectors, first applied first.
Affine LocalMatrix(const NodeTransform& transform);
/// Rotation alone: inverse(Rpost) R Rpre.
Affine LocalRotation(const NodeTransform& transform);
/// From what the node carries to the node: scale, rotate (XYZ), move.
Affine GeometricMatrix(const NodeTransform& transform);

enum class AttributeKind { Null, Skeleton, Mesh, Camera, Light, Other };

/// What a node carries. Nodes may share one.
class FbxNodeAttribute : public FbxObject {
 public:
  virtual AttributeKind Kind() const = 0;
  /// Components 0 to 1.
  std::optional<Vector3> colour;

 protected:
  using FbxObject::FbxObject;
};

class FbxNull final : public FbxNodeAttribute {
 public:
  static FbxNull* Create(FbxScene& scene, std::string name);
  AttributeKind Kind() const override { return AttributeKind::Null; }
  double size = 100;

 private:
  using FbxNodeAttribute::FbxNodeAttribute;
};

enum class SkeletonType { Root, Limb, LimbNode, Effector };

class FbxSkeleton final : public FbxNodeAttribute {
 public:
  static FbxSkeleton* Create(FbxScene& scene, std::string name);
  AttributeKind Kind() const override { return AttributeKind::Skeleton; }
  SkeletonType type = SkeletonType::LimbNode;
  double size = 100;
  double limbLength = 1;

 private:
  using FbxNodeAttribute::FbxNodeAttribute;
};

/// A camera, a light, or a kind that is not modelled: `typeName` is the file's word for it.
class FbxOtherAttribute final : public FbxNodeAttribute {
 public:
  static FbxOtherAttribute* Create(FbxScene& scene, std::string name, AttributeKind kind, std::string typeName);
  AttributeKind Kind() const override { return kind_; }
  const std::string& TypeName() const { return typeName_; }

 private:
  using FbxNodeAttribute::FbxNodeAttribute;
  AttributeKind kind_ = AttributeKind::Other;
  std::string typeName_;
};

class FbxNode final : public FbxObject {
 public:
  /// A node under the scene's root.
  static FbxNode* Create(FbxScene& scene, std::string name);

  /// Null for the root only.
  FbxNode* GetParent() const { return parent_; }
  int GetChildCount() const { return static_cast<int>(children_.size()); }
  FbxNode* GetChild(int i) const { return children_[static_cast<size_t>(i)]; }
  /// Takes `child` from its parent to the end of this one's children. False, and nothing changes, for a loop.
  bool AddChild(FbxNode* child);

  FbxNodeAttribute* GetNodeAttribute() const { return attribute_; }
  /// The one that was set before, which stays in the scene.
  FbxNodeAttribute* SetNodeAttribute(FbxNodeAttribute* attribute);

  NodeTransform transform;
  bool visible = true;
  /// By material ID.
  std::vector<FbxSurfaceMaterial*> materials;
  /// Properties that a user added, as text.
  std::map<std::string, std::string> userProperties;

 private:
  friend class FbxScene;
  friend class SceneReader;
  using FbxObject::FbxObject;
  void Unlink(const FbxObject& gone) override;
  FbxNode* parent_ = nullptr;
  std::vector<FbxNode*> children_;
  FbxNodeAttribute* attribute_ = nullptr;
};

}  // namespace tavrilon::fbx
