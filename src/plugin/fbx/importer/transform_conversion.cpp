// SPDX-License-Identifier: MIT
// Transforms: still ones as values, moving ones sampled at every frame of the span. One node after the other, so that
// the samples of one are all that is held at a time.
#include <algorithm>

#include "plugin/fbx/importer/conversion.h"
#include "plugin/fbx/importer/file_time.h"
#include "plugin/fbx/importer/local_matrices.h"
#include "plugin/fbx/importer/track_building.h"
#include "plugin/fbx/importer/trs.h"

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
    distances_.push_back(Length(still_.Local(node_, {}).row[3]));
    PlannedTransform& transform = conversion_.plan.nodes[number].transform;
    const double length = kPositionTolerance / conversion_.context.centimetres;
    BuildTrack(positions_, times_, length, transform.position);
    BuildTrack(scales_, times_, kScaleTolerance, transform.scale);
    for (size_t axis = 0; axis < 3; ++axis)
      BuildTrack(angles_[axis], times_, kRotationTolerance, transform.rotation[axis]);
    if (shear_ > kShearBound) conversion_.Note("Shear cannot be kept; axes are straightened", node_->GetName());
    if (lost_) conversion_.Note("Values that are not finite, or beyond any size, are passed over", node_->GetName());
  }
  /// Of each node so far from its parent, in the parent's space, as the file has them without animation.
  const std::vector<double>& Distances() const { return distances_; }

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
  std::vector<double> distances_;
};

/// A bone reaches to its first child; one without, or with one in the same place, stays short.
void MeasureBones(std::vector<PlannedNode>& nodes, const std::vector<double>& distances) {
  constexpr double kShortest = 1e-6;
  std::vector<bool> measured(nodes.size());
  for (size_t i = 0; i < nodes.size(); ++i) {
    const auto parent = static_cast<size_t>(nodes[i].parent);
    if (nodes[i].parent < 0 || measured[parent]) continue;
    measured[parent] = true;
    if (distances[i] > kShortest && IsSane(distances[i])) nodes[parent].boneLength = static_cast<float>(distances[i]);
  }
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
  MeasureBones(conversion.plan.nodes, converter.Distances());
  return {};
}

}  // namespace tavrilon::fbx_import
