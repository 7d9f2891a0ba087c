// SPDX-License-Identifier: MIT
#include "plugin/fbx/importer/track_building.h"

#include <algorithm>
#include <limits>

#include "plugin/fbx/importer/key_fit.h"

namespace tavrilon::fbx_import {

using namespace corvanta;
using fbx::Vector3;

namespace {

Point3 ToPoint(const Vector3& v) { return {static_cast<float>(v.x), static_cast<float>(v.y), static_cast<float>(v.z)}; }
void Assign(Point3& to, const Vector3& v) { to = ToPoint(v); }
void Assign(float& to, const Vector3& v) { to = static_cast<float>(v.x); }
void Assign(ScaleValue& to, const Vector3& v) { to.s = ToPoint(v); }

/// A curve cannot be nearer to its samples than single precision lets its values be.
double Attainable(double tolerance, std::span<const Vector3> samples, int dimensions) {
  const double rounding = SizeOf(samples, dimensions) * static_cast<double>(std::numeric_limits<float>::epsilon());
  return std::max(tolerance, rounding);
}

template <class Track>
void Build(std::span<const Vector3> samples, int dimensions, const SampleTimes& times, double asked, Track& track) {
  if (samples.empty()) return;
  const double tolerance = Attainable(asked, samples, dimensions);
  Assign(track.value, MiddleOf(samples));
  track.keys.clear();
  if (SpreadOf(samples, dimensions) <= 2 * tolerance) return;
  const std::vector<FittedKey> fitted = FitKeys(samples, dimensions, tolerance);
  track.keys.reserve(fitted.size());
  const double perTick = 1.0 / times.step;
  for (const FittedKey& f : fitted) {
    auto& key = track.keys.emplace_back();
    key.time = times.At(f.sample);
    key.flags = TangentFlags(Tangent::User, Tangent::User);
    Assign(key.value, f.value);
    Assign(key.inTan, f.inSlope * -perTick);  // outward from the key
    Assign(key.outTan, f.outSlope * perTick);
  }
}

}  // namespace

void BuildTrack(std::span<const Vector3> samples, const SampleTimes& times, double tolerance, PositionTrack& track) {
  Build(samples, 3, times, tolerance, track);
}
void BuildTrack(std::span<const Vector3> samples, const SampleTimes& times, double tolerance, ScaleTrack& track) {
  Build(samples, 3, times, tolerance, track);
}
void BuildTrack(std::span<const Vector3> samples, const SampleTimes& times, double tolerance, FloatTrack& track) {
  Build(samples, 1, times, tolerance, track);
}

}  // namespace tavrilon::fbx_import
