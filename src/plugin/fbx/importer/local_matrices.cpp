// SPDX-License-Identifier: MIT
#include "plugin/fbx/importer/local_matrices.h"

namespace tavrilon::fbx_import {

using namespace fbx;

namespace {

bool IsTop(const FbxScene& scene, const FbxNode* node) { return node->GetParent() == scene.GetRootNode(); }

bool MultipliesPlainly(const FbxNode* node) { return node->transform.inherit == InheritType::RSrs; }

}  // namespace

// Nodes that take their parent's matrix as a whole are read without it, which keeps all digits.
Affine LocalMatrices::Local(const FbxNode* node, FbxTime t) {
  const bool isTop = IsTop(scene_, node);
  if (MultipliesPlainly(node)) {
    const Affine local = LocalMatrix(evaluator_.Transform(node, t));
    return isTop ? local * scene_.topConversion : local;
  }
  if (isTop) return evaluator_.World(node, t);
  const Affine parent = evaluator_.World(node->GetParent(), t);
  // Under a parent that is flattened nothing can be told apart.
  if (Determinant(parent) == 0) return LocalMatrix(evaluator_.Transform(node, t));
  return evaluator_.World(node, t) * Inverse(parent);
}

bool LocalMatrices::IsAnimated(const FbxNode* node) const {
  if (evaluator_.IsAnimated(node)) return true;
  if (MultipliesPlainly(node)) return false;
  for (const FbxNode* up = node->GetParent(); up; up = up->GetParent())
    if (evaluator_.IsAnimated(up)) return true;
  return false;
}

}  // namespace tavrilon::fbx_import
