// SPDX-License-Identifier: MIT
// Places on a sampled curve: from a fraction of its length to a point. Below 0 and above 1 the curve goes on straight
// along its end tangents.
#pragma once

#include "plugin/solvers/curve_sampling.h"

namespace tavrilon {

/// A sample, and the fraction of the piece that begins there. Below 0 on the first and above 0 on the last it lies
/// outside the curve.
struct CurvePlace {
  int sample = 0;
  float f = 0;
};

/// Looks places up on one curve. Faster when they come in rising order: the search goes on from the last one.
class CurveLookup {
 public:
  explicit CurveLookup(const SampledCurve& curve) : curve_(curve) {}

  /// The place at `u`, 0 the first point and 1 the last. `slide` 1 goes by arc length, 0 leaves as much curve between
  /// two points as their share of the points is; between, the way is interpolated.
  CurvePlace ParamAt(float u, float slide);
  /// The origin when the sample is out of range.
  corvanta::Point3 PointAt(const CurvePlace& place) const;
  /// Along the curve, of no particular length; zero where points coincide.
  corvanta::Point3 TangentAt(const CurvePlace& place) const;
  /// The fraction of its span at which the place lies, 0 to 1.
  float SpanFraction(const CurvePlace& place) const;

 private:
  const CurveSample& Sample(int i) const { return curve_.samples[static_cast<size_t>(i)]; }
  int Last() const { return static_cast<int>(curve_.samples.size()) - 1; }
  bool IsOutside(const CurvePlace& place) const { return place.f < 0 || place.sample == Last(); }

  const SampledCurve& curve_;
  int from_ = 1;
};

}  // namespace tavrilon
