// SPDX-License-Identifier: MIT
// Transforms: still ones as values, moving ones sampled at every frame of the span. One node after the other, so that
// the samples of one are all that is held at a time.
#include <algorithm>

#include "plugin/fbx/importer/conversion.h"
#include "plugin/fbx/importer/file_time.h"
#include "plugin/fbx/importer/local_matrices.h"
#include "plugin/fbx/importer/track_building.h"
#include "plugin/fbx/importer/trs.h"
#include "plugin/frame/rig_maths.h"

namespace tavrilon::fbx_import {

using namespace corvanta;
using namespace fbx;

namespace {

/// Nodes between two looks at whether the user wants to stop.
constexpr int kNodesPerLook = 16;

class TransformConverter {
 public:
  explicit TransformConverter(Conversion& conversion)
      : conversion_(conversion),
        still_(conversion.scene, nullptr),
        moving_(conversion.scene, conversion.stack),
        times_{conversion.plan.time.firstFrame * conversion.plan.time.ticksPerFrame,
               conversion.plan.time.ticksPerFrame} {}

  /// Cuts the span where the samples would be more than the limits allow.
  void BoundSamples() {
    if (!conversion_.stack) return;
    PlannedTime& time = conversion_.plan.time;
    const auto moving = std::count_if(conversion_.sources.begin(), conversion_.sources.end(),
                                      [&](const FbxNode* node) { return moving_.IsAnimated(node); });
    const int64_t frames = conversion_.options.limits.maxSamples / std::max<int64_t>(moving, 1);
    if (time.NumFrames() <= frames) return;
    time.lastFrame = time.firstFrame + static_cast<int>(std::max<int64_t>(frames, 1)) - 1;
    conversion_.Note("The animation is longer than can be imported; it is cut", conversion_.stack->GetName());
  }

  void Convert(size_t number) {
    node_ = conversion_.sources[number];
    Sample();
    locals_.push_back(still_.Local(node_, {}));
    PlannedTransform& transform = conversion_.plan.nodes[number].transform;
    const double length = kPositionTolerance / conversion_.context.centimetres;
    BuildTrack(positions_, times_, length, transform.position);
    BuildTrack(scales_, times_, kScaleTolerance, transform.scale);
    for (size_t axis = 0; axis < 3; ++axis)
      BuildTrack(angles_[axis], times_, kRotationTolerance, transform.rotation[axis]);
    if (shear_ > kShearBound) conversion_.Note("Shear cannot be kept; axes are straightened", node_->GetName());
    if (lost_) conversion_.Note("Values that are not finite, or beyond any size, are passed over", node_->GetName());
  }
  /// Of each node so far, as the file has them without animation.
  const std::vector<Affine>& Locals() const { return locals_; }

 private:
  void Sample() {
    positions_.clear();
    scales_.clear();
    for (auto& angles : angles_) angles.clear();
    shear_ = 0;
    lost_ = false;
    last_ = {};
    if (!conversion_.stack || !moving_.IsAnimated(node_)) {
      Add(still_.Local(node_, {}));
      return;
    }
    for (int frame = 0; frame < conversion_.plan.time.NumFrames(); ++frame)
      Add(moving_.Local(node_, FileTimeOf(times_.At(frame))));
  }

  // What cannot be read stays as it was the frame before.
  void Add(const Affine& local) {
    if (IsSane(local)) {
      const TrsSplit split = SplitTrs(local, last_.rotation);
      shear_ = std::max(shear_, split.shear);
      last_ = split.trs;
    } else {
      lost_ = true;
    }
    positions_.push_back(last_.translation);
    scales_.push_back(last_.scaling);
    for (size_t axis = 0; axis < 3; ++axis) angles_[axis].push_back({last_.rotation[axis] * kDegreesToRadians, 0, 0});
  }

  Conversion& conversion_;
  LocalMatrices still_, moving_;
  SampleTimes times_;
  const FbxNode* node_ = nullptr;
  std::vector<Vector3> positions_, scales_, angles_[3];
  double shear_ = 0;
  bool lost_ = false;
  Trs last_;
  std::vector<Affine> locals_;
};

/// How straight the way to a child goes on from the way to its parent: the cosine; 0 where there is no such way.
double Straightness(const Affine& parent, const Vector3& child) {
  const Vector3 way = TransformVector(Inverse(parent), parent.row[3]);
  const double lengths = Length(way) * Length(child);
  return lengths > 0 ? Dot(way, child) / lengths : 0;
}

/// A bone is drawn along its X axis; here it is turned and measured so that it reaches to a child, whichever axis the
/// file's bones run along: to the first one that goes straight on, so that a chest reaches to the neck and not to a
/// clavicle. One without a child, or with one in the same place, stays short.
void AimBones(std::vector<PlannedNode>& nodes, const std::vector<Affine>& locals) {
  constexpr double kShortest = 1e-6;
  // A child has to be this much straighter than those before it.
  constexpr double kStraighter = 1e-3;
  std::vector<double> straightest(nodes.size(), -2);
  for (size_t i = 0; i < nodes.size(); ++i) {
    if (nodes[i].parent < 0) continue;
    const auto number = static_cast<size_t>(nodes[i].parent);
    PlannedNode& parent = nodes[number];
    const Vector3& place = locals[i].row[3];
    const double length = Length(place);
    if (parent.kind != PlannedKind::Bone || !(length > kShortest) || !IsSane(length)) continue;
    const double straight = parent.parent < 0 ? 0 : Straightness(locals[number], place);
    if (!(straight > straightest[number] + kStraighter)) continue;
    straightest[number] = straight;
    parent.boneLength = static_cast<float>(length);
    parent.offsetRot = RotationBetween({1, 0, 0}, ToPoint3(place * (1 / length)));
  }
}

/// Bones are slim enough for fingers beside one another; a root that reaches from the ground to the hips is no tower
/// over the rest.
void SizeBones(std::vector<PlannedNode>& nodes) {
  constexpr float kSlim = 0.1f;
  constexpr float kLongest = 3;  // in lengths of the middle one
  std::vector<float> lengths;
  for (const PlannedNode& node : nodes)
    if (node.kind == PlannedKind::Bone) lengths.push_back(node.boneLength);
  if (lengths.empty()) return;
  const auto middle = lengths.begin() + static_cast<std::ptrdiff_t>(lengths.size() / 2);
  std::nth_element(lengths.begin(), middle, lengths.end());
  for (PlannedNode& node : nodes) node.boneWidth = kSlim * std::min(node.boneLength, kLongest * *middle);
}

}  // namespace

WStr ConvertTransforms(Conversion& conversion) {
  TransformConverter converter(conversion);
  converter.BoundSamples();
  const size_t count = conversion.sources.size();
  for (size_t i = 0; i < count; ++i) {
    if (i % kNodesPerLook == 0 && !ShowConversion(static_cast<double>(i) / static_cast<double>(count)))
      return kExchangeStopped;
    converter.Convert(i);
  }
  AimBones(conversion.plan.nodes, converter.Locals());
  SizeBones(conversion.plan.nodes);
  return {};
}

}  // namespace tavrilon::fbx_import
