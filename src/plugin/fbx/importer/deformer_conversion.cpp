// SPDX-License-Identifier: MIT
#include "plugin/fbx/importer/deformer_conversion.h"

#include <algorithm>
#include <unordered_set>

#include "plugin/fbx/importer/file_time.h"
#include "plugin/fbx/importer/track_building.h"

namespace tavrilon::fbx_import {

using namespace corvanta;
using namespace fbx;

namespace {

/// A matrix with less volume than this for its size cannot be undone.
constexpr double kSingular = 1e-12;

bool CanBeInverted(const Affine& m) {
  if (!IsSane(m)) return false;
  const double size = Length(m.row[0]) * Length(m.row[1]) * Length(m.row[2]);
  return std::abs(Determinant(m)) > kSingular * size;
}

/// Weights of points while clusters are read, by bone.
using PointWeights = std::vector<std::vector<SkinWeight>>;

/// What the clusters give a point makes 1, unless they give it nothing.
void Normalise(std::vector<SkinWeight>& weights) {
  double sum = 0;
  for (const SkinWeight& w : weights) sum += static_cast<double>(w.weight);
  for (SkinWeight& w : weights) w.weight = static_cast<float>(static_cast<double>(w.weight) / sum);
}

void AddWeight(std::vector<SkinWeight>& weights, int bone, double weight) {
  for (SkinWeight& w : weights) {
    if (w.bone != bone) continue;
    w.weight += static_cast<float>(weight);
    return;
  }
  weights.push_back({bone, static_cast<float>(weight)});
}

/// False when something of the cluster could not be used.
bool AddCluster(const FbxCluster& cluster, int bone, PointWeights& weights) {
  constexpr double kNothing = 1e-9;
  bool whole = cluster.indices.size() == cluster.weights.size();
  const size_t count = std::min(cluster.indices.size(), cluster.weights.size());
  for (size_t i = 0; i < count; ++i) {
    const auto point = static_cast<size_t>(cluster.indices[i]);
    const double weight = cluster.weights[i];
    const bool sound = cluster.indices[i] >= 0 && point < weights.size() && weight >= 0 && IsSane(weight);
    whole = whole && sound;
    if (sound && weight > kNothing) AddWeight(weights[point], bone, weight);
  }
  return whole;
}

int BoneOf(PlannedSkin& skin, int node, const Matrix3& bind) {
  for (size_t i = 0; i < skin.bones.size(); ++i)
    if (skin.bones[i].node == node) return static_cast<int>(i);
  skin.bones.push_back({node, bind});
  return static_cast<int>(skin.bones.size()) - 1;
}

std::shared_ptr<const SkinWeights> Pack(PointWeights& points, int& boneLimit) {
  auto packed = std::make_shared<SkinWeights>();
  for (std::vector<SkinWeight>& weights : points) {
    if (!weights.empty()) Normalise(weights);
    boneLimit = std::max(boneLimit, static_cast<int>(weights.size()));
    packed->Add(weights);
  }
  return packed;
}

/// Does the mesh of node `from` follow `to`, itself or by way of other skinned meshes?
bool Follows(const std::vector<PlannedNode>& nodes, int from, int to) {
  std::vector<int> waiting{from};
  std::unordered_set<int> seen;
  while (!waiting.empty()) {
    const int node = waiting.back();
    waiting.pop_back();
    if (node == to) return true;
    const std::optional<PlannedSkin>& skin = nodes[static_cast<size_t>(node)].skin;
    if (!skin || !seen.insert(node).second) continue;
    for (const PlannedBone& bone : skin->bones) waiting.push_back(bone.node);
  }
  return false;
}

/// Offsets by rising point; of a point that comes twice the last counts.
MorphTarget Sorted(const FbxShape& shape, size_t numPoints, bool& lost) {
  std::map<int, Point3> offsets;
  const size_t count = std::min(shape.indices.size(), shape.offsets.size());
  lost |= shape.indices.size() != shape.offsets.size();
  for (size_t i = 0; i < count; ++i) {
    const bool sound =
        shape.indices[i] >= 0 && static_cast<size_t>(shape.indices[i]) < numPoints && IsSane(shape.offsets[i]);
    lost |= !sound;
    if (sound) offsets[shape.indices[i]] = ToPoint3(shape.offsets[i]);
  }
  MorphTarget target;
  for (const auto& [point, offset] : offsets) {
    target.points.push_back(point);
    target.offsets.push_back(offset);
  }
  return target;
}

}  // namespace

void DeformerConverter::Convert(const FbxNode& node, const FbxMesh& mesh, PlannedNode& planned) {
  for (const FbxBlendShape* shape : mesh.blendShapes)
    for (const FbxBlendShapeChannel* channel : shape->channels)
      TakeChannel(node, *channel, mesh.controlPoints.size(), planned);
  if (mesh.skins.empty() || !conversion_.options.skin) return;
  if (mesh.skins.size() > 1) conversion_.Note("Of several skins on a mesh the first is taken", node.GetName());
  TakeSkin(node, *mesh.skins[0], mesh.controlPoints.size(), planned);
}

void DeformerConverter::TakeSkin(const FbxNode& node, const FbxSkin& source, size_t numPoints, PlannedNode& planned) {
  PlannedSkin skin;
  PointWeights weights(numPoints);
  bool haveMeshBind = false;
  for (const FbxCluster& cluster : source.clusters) {
    const int bone = cluster.link ? conversion_.NumberOf(cluster.link) : -1;
    if (bone < 0) {
      conversion_.Note("Skin clusters without a bone are left out", node.GetName() + "/" + cluster.name);
      continue;
    }
    if (Follows(conversion_.plan.nodes, bone, conversion_.NumberOf(&node))) {
      conversion_.Note("Skin clusters whose bone follows the mesh itself are left out",
                       node.GetName() + "/" + cluster.link->GetName());
      continue;
    }
    const Affine meshBind = cluster.transform * cluster.transformLink;
    if (!CanBeInverted(cluster.transformLink) || !IsSane(meshBind)) {
      conversion_.Note("Skin clusters with a bind matrix that cannot be undone are left out",
                       node.GetName() + "/" + cluster.link->GetName());
      continue;
    }
    if (!haveMeshBind) skin.meshBind = ToMatrix3(GeometricMatrix(node.transform) * meshBind);
    haveMeshBind = true;
    const int number = BoneOf(skin, bone, ToMatrix3(cluster.transformLink));
    if (!AddCluster(cluster, number, weights))
      conversion_.Note("Skin weights that are negative, not finite or of missing points are left out", node.GetName());
  }
  if (skin.bones.empty()) {
    conversion_.Note("Skins without any bone are left out", node.GetName());
    return;
  }
  skin.weights = Pack(weights, skin.boneLimit);
  planned.skin = std::move(skin);
}

// Shapes in between stand at rising percentages; the host's last one stands at 100.
void DeformerConverter::TakeChannel(const FbxNode& node, const FbxBlendShapeChannel& channel, size_t numPoints,
                                    PlannedNode& planned) {
  const double last = channel.fullWeights.empty() ? 100 : channel.fullWeights.back();
  const bool sound = last > 0 && IsSane(last);
  bool lost = !sound;
  auto targets = std::make_shared<std::vector<MorphTarget>>();
  for (size_t i = 0; i < channel.shapes.size(); ++i) {
    const bool isLast = i + 1 == channel.shapes.size();
    const double full = i < channel.fullWeights.size() ? channel.fullWeights[i] : 0;
    const auto percent = static_cast<float>(isLast || !sound ? 100 : full * 100 / last);
    const float below = targets->empty() ? 0 : targets->back().percent;
    if (!(percent > below) || (!isLast && !(percent < 100))) {
      lost = true;
      continue;
    }
    targets->push_back(Sorted(channel.shapes[i], numPoints, lost));
    targets->back().percent = percent;
  }
  if (lost)
    conversion_.Note("Parts of blend shapes that make no sense are left out", node.GetName() + "/" + channel.GetName());
  PlannedMorphChannel added{FromUtf8(channel.GetName()), std::move(targets), {}};
  TakeWeight(channel, sound ? 100 / last : 1, added.weight);
  planned.morph.push_back(std::move(added));
}

void DeformerConverter::TakeWeight(const FbxBlendShapeChannel& channel, double scale, FloatTrack& weight) {
  const PlannedTime& time = conversion_.plan.time;
  std::vector<Vector3> samples;
  const auto add = [&](double percent) {
    const double scaled = percent * scale;
    samples.push_back({IsSane(scaled) ? scaled : samples.empty() ? 0 : samples.back().x, 0, 0});
  };
  if (!conversion_.stack || !evaluator_.IsAnimated(&channel)) {
    add(channel.deformPercent);
  } else {
    for (int frame = 0; frame < time.NumFrames(); ++frame)
      add(evaluator_.DeformPercent(&channel, FileTimeOf((time.firstFrame + frame) * time.ticksPerFrame)));
  }
  BuildTrack(samples, {time.firstFrame * time.ticksPerFrame, time.ticksPerFrame}, kWeightTolerance, weight);
}

}  // namespace tavrilon::fbx_import
