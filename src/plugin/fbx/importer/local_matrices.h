// SPDX-License-Identifier: MIT
// Matrices of a file's nodes relative to their parents, as the host's nodes are: whatever way they inherit.
#pragma once

#include "plugin/fbx/format/scene.h"

namespace tavrilon::fbx_import {

class LocalMatrices {
 public:
  /// Null: the nodes as they stand without animation.
  LocalMatrices(const fbx::FbxScene& scene, const fbx::FbxAnimStack* stack) : scene_(scene), evaluator_(scene, stack) {}

  /// The matrix with which the node's world matrix comes out when it is multiplied by the parent's, the scene's turn to
  /// other axes included for top nodes.
  fbx::Affine Local(const fbx::FbxNode* node, fbx::FbxTime t);
  /// Does it change with time?
  bool IsAnimated(const fbx::FbxNode* node) const;
  fbx::SceneEvaluator& Evaluator() { return evaluator_; }

 private:
  const fbx::FbxScene& scene_;
  fbx::SceneEvaluator evaluator_;
};

}  // namespace tavrilon::fbx_import
