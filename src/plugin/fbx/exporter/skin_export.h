// SPDX-License-Identifier: MIT
// Skins: clusters of points by bone.
#pragma once

#include "host/scene/skin_modifier.h"
#include "plugin/fbx/exporter/job.h"
#include "plugin/fbx/exporter/mesh_layout.h"

namespace tavrilon::fbx_export {

/// A bone's points in the file and their weights.
struct BoneWeights {
  std::vector<int> points;
  std::vector<double> weights;
};

struct ReducedWeights {
  std::vector<BoneWeights> bones;
  /// Points that lost the smallest of their weights to the limit, and points whose weights did not sum to 1.
  int cut = 0, scaled = 0;
};

/// The largest `limit` weights of each point that goes out, scaled to a sum of 1. Gives an empty text, or what is wrong
/// with the weights of the mesh `name`.
corvanta::WStr ReduceWeights(const corvanta::SkinWeights& weights, int numBones, int limit, const MeshLayout& layout,
                             const corvanta::WStr& name, ReducedWeights& reduced);

/// Adds the deformer "Skin" with a cluster for each bone, also for bones without points.
bool ExportSkin(ExportJob& job, const ExportNode& node, const MeshLayout& layout, fbx::FbxMesh& out);

}  // namespace tavrilon::fbx_export
