// SPDX-License-Identifier: MIT
#include "plugin/fbx/exporter/skin_export.h"

#include <algorithm>

namespace tavrilon::fbx_export {

using namespace corvanta;
using namespace fbx;

namespace {

constexpr double kSmallestWeight = 1e-6;

/// Weights above nothing of one point, the largest first; false for a bone or weight that cannot be.
bool SortWeights(std::span<const SkinWeight> weights, int numBones, std::vector<SkinWeight>& sorted) {
  sorted.clear();
  for (const SkinWeight& w : weights) {
    if (w.bone < 0 || w.bone >= numBones || !std::isfinite(w.weight) || w.weight < 0) return false;
    if (w.weight > 0) sorted.push_back(w);
  }
  // Equal weights by bone, so that the cut does not depend on the order in which weights were painted.
  std::sort(sorted.begin(), sorted.end(), [](const SkinWeight& a, const SkinWeight& b) {
    return a.weight != b.weight ? a.weight > b.weight : a.bone < b.bone;
  });
  return true;
}

double SumOf(const std::vector<SkinWeight>& weights) {
  double sum = 0;
  for (const SkinWeight& w : weights) sum += w.weight;
  return sum;
}

}  // namespace

WStr ReduceWeights(const SkinWeights& weights, int numBones, int limit, const MeshLayout& layout, const WStr& name,
                   ReducedWeights& reduced) {
  if (weights.NumPoints() != static_cast<int>(layout.newPoints.size()))
    return L"Skin vertex count does not match the exported mesh '" + name + L"'.";
  reduced = {};
  reduced.bones.resize(static_cast<size_t>(numBones));
  std::vector<SkinWeight> sorted;
  for (size_t i = 0; i < layout.oldPoints.size(); ++i) {
    const int point = layout.oldPoints[i];
    if (!SortWeights(weights.Of(point), numBones, sorted))
      return Format(L"Invalid Skin weight or bone reference at vertex %d of mesh '%s'.", point, name.c_str());
    const double whole = SumOf(sorted);
    if (whole < kSmallestWeight) return Format(L"Unweighted Skin vertex %d on mesh '%s'.", point, name.c_str());
    // A sum of many floats is off by some 1e-7 each.
    if (std::abs(whole - 1) > 1e-4) ++reduced.scaled;
    if (sorted.size() > static_cast<size_t>(limit)) {
      sorted.resize(static_cast<size_t>(limit));
      ++reduced.cut;
    }
    const double kept = SumOf(sorted);
    for (const SkinWeight& w : sorted) {
      BoneWeights& bone = reduced.bones[static_cast<size_t>(w.bone)];
      bone.points.push_back(static_cast<int>(i));
      bone.weights.push_back(w.weight / kept);
    }
  }
  return {};
}

bool ExportSkin(ExportJob& job, const ExportNode& node, const MeshLayout& layout, FbxMesh& out) {
  SkinModifier& skin = *node.mesh->skin;
  const WStr& name = node.node->GetName();
  const int limit = std::max(1, skin.GetParamBlock()->GetInt(SkinModifier::kBoneLimit));
  ReducedWeights reduced;
  WStr error = ReduceWeights(skin.GetWeights(), skin.NumBones(), limit, layout, name, reduced);
  if (!error.empty()) return job.Fail(std::move(error));
  if (reduced.cut > 0)
    job.Log(Format(L"%d points of mesh '%s' had more than %d bones; the smallest weights were dropped.", reduced.cut,
                   name.c_str(), limit));
  if (reduced.scaled > 0)
    job.Log(Format(L"%d points of mesh '%s' had weights that do not sum to 1; they were scaled.", reduced.scaled,
                   name.c_str()));

  const Affine meshBind = Inverse(layout.offset) * ToAffine(skin.GetMeshBindTM()) * job.axes;
  FbxSkin* deformer = FbxSkin::Create(job.scene, "Skin");
  deformer->clusters.resize(reduced.bones.size());
  for (size_t i = 0; i < reduced.bones.size(); ++i) {
    FbxCluster& cluster = deformer->clusters[i];
    cluster.link = job.Find(skin.GetBone(static_cast<int>(i)))->out;
    cluster.name = cluster.link->GetName();
    cluster.indices = std::move(reduced.bones[i].points);
    cluster.weights = std::move(reduced.bones[i].weights);
    cluster.transformLink = ToAffine(skin.GetBoneBindTM(static_cast<int>(i))) * job.axes;
    cluster.transform = meshBind * Inverse(cluster.transformLink);
  }
  out.skins.push_back(deformer);
  return true;
}

}  // namespace tavrilon::fbx_export
