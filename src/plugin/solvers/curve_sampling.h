// SPDX-License-Identifier: MIT
// The curve through a row of control points: tangents by the type of each point, then samples with their lengths. Plain
// values in and out. All of it is in one space, the chain's.
#pragma once

#include <span>
#include <vector>

#include "host/maths/quat.h"
#include "plugin/solvers/chain_params.h"

namespace tavrilon {

/// A control point. `in` and `out` are offsets from `pos`; what the point's type does not use of them is ignored and
/// replaced by `ResolveTangents`.
struct PointFrame {
  corvanta::Point3 pos;
  corvanta::Quat rot;
  corvanta::Point3 scale{1, 1, 1};
  corvanta::Point3 in, out;
  bool hasIn = false, hasOut = false;
  int type = curve_ik_chain::kSmooth;
  /// Radians about the curve. `SumTwists` makes them additive.
  float twist = 0;
  /// Weight of the wave.
  float amplitude = 1;
};

/// One place of the sampled curve. The piece from here to the next sample is a cubic from `out` to the next one's `in`,
/// or the chord where `straight` is on. Step `step` of the span that point `point` begins.
struct CurveSample {
  int point = 0, step = 0;
  corvanta::Point3 pos, in, out;
  /// From the first sample, along the chords.
  float length = 0;
  bool straight = false;
};

/// A sampled curve. Keeps its memory from one sampling to the next.
struct SampledCurve {
  std::vector<CurveSample> samples;
  /// Length up to each point; with a closed curve one more for the way back to the first.
  std::vector<float> pointLengths;
  float length = 0;
  int steps = 1;
  bool closed = false;

  int NumSpans() const { return static_cast<int>(pointLengths.size()) - 1; }
};

/// A sine across the curve, along the frames' Y turned by `orientation` about their X.
struct CurveWave {
  float amplitude = 0;
  /// Way from crest to crest; below 1e-4 there is no wave.
  float length = 0;
  /// Radians.
  float orientation = 0;
  /// Whole waves.
  float phase = 0;

  bool IsOn() const { return amplitude != 0 && std::abs(length) >= 1e-4f; }
};

/// Fills in the tangents that the curve runs by. Corner: a third of the chord to each neighbour. Smooth: along the line
/// from neighbour to neighbour, a third of the distance on each side; an open end aims at the tip of its neighbour's
/// tangent. Bezier: as given, turned to lie in one line. BezierCorner: as given. A tangent that was not given is that
/// of a smooth point, or continues the given one of a Bezier point. An open end is no corner: it has one tangent only.
void ResolveTangents(std::span<PointFrame> points, bool closed);

/// Makes each point's twist the sum of those up to it.
void SumTwists(std::span<PointFrame> points);

/// Samples the curve through points with resolved tangents: `steps` pieces (at least one) a curved span, one a straight
/// span. No points give no samples, one point one sample. Allocates only when the curve has more samples than any
/// before.
void SampleCurve(std::span<const PointFrame> points, bool closed, int steps, const CurveWave& wave,
                 SampledCurve& curve);

}  // namespace tavrilon
