// SPDX-License-Identifier: MIT
#include "plugin/fbx/format/node.h"

#include <algorithm>

#include "plugin/fbx/format/own_object.h"

namespace tavrilon::fbx {

Affine LocalRotation(const NodeTransform& t) {
  if (!t.rotationActive) return Rotation(t.rotation);
  return Inverse(Rotation(t.postRotation)) * Rotation(t.rotation, t.order) * Rotation(t.preRotation);
}

Affine LocalMatrix(const NodeTransform& t) {
  const Affine scaled =
      Translation(-t.scalingPivot) * Scaling(t.scaling) * Translation(t.scalingPivot) * Translation(t.scalingOffset);
  const Affine turned = Translation(-t.rotationPivot) * LocalRotation(t) * Translation(t.rotationPivot);
  return scaled * turned * Translation(t.rotationOffset) * Translation(t.translation);
}

Affine GeometricMatrix(const NodeTransform& t) {
  return Scaling(t.geometricScaling) * Rotation(t.geometricRotation) * Translation(t.geometricTranslation);
}

FbxNode* FbxNode::Create(FbxScene& scene, std::string name) {
  FbxNode* node = OwnObject(scene, new FbxNode(scene, std::move(name)));
  node->parent_ = scene.GetRootNode();
  node->parent_->children_.push_back(node);
  return node;
}

bool FbxNode::AddChild(FbxNode* child) {
  if (!child || !child->parent_) return false;
  for (const FbxNode* up = this; up; up = up->parent_) {
    if (up == child) return false;
  }
  // A node that was made last is its parent's last child, so that building a wide tree looks from the end.
  std::vector<FbxNode*>& before = child->parent_->children_;
  const auto found = std::find(before.rbegin(), before.rend(), child);
  before.erase(std::next(found).base());
  child->parent_ = this;
  children_.push_back(child);
  return true;
}

FbxNodeAttribute* FbxNode::SetNodeAttribute(FbxNodeAttribute* attribute) {
  return std::exchange(attribute_, attribute);
}

}  // namespace tavrilon::fbx
