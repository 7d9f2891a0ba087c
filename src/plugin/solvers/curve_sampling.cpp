// SPDX-License-Identifier: MIT
#include "plugin/solvers/curve_sampling.h"

#include <algorithm>

#include "plugin/frame/rig_maths.h"
#include "plugin/frame/tangent_rule.h"
#include "plugin/solvers/frame_blend.h"

namespace tavrilon {

using namespace corvanta;
using namespace curve_ik_chain;

namespace {

// How far the inner control points of a span may lie off the thirds of its chord, as a part of it, and the span still
// counts as straight: what rounding leaves in the places of nodes far from the origin.
constexpr float kOffChord = 1e-5f;

// Tangents.

// The row of places, with a closed one going round.
struct PointRow {
  std::span<const PointFrame> points;
  const Point3& Before(size_t i) const { return points[i > 0 ? i - 1 : points.size() - 1].pos; }
  const Point3& After(size_t i) const { return points[i + 1 < points.size() ? i + 1 : 0].pos; }
};

void AlignTangents(PointFrame& point, const RowTangent& smooth) {
  const Point3 in = Normalize(point.in), out = Normalize(point.out);
  if (!point.hasIn && !point.hasOut) {
    point.in = smooth.in;
    point.out = smooth.out;
  } else if (!point.hasIn) {
    point.in = out == Point3() ? smooth.in : out * -Length(smooth.in);
  } else if (!point.hasOut) {
    point.out = in == Point3() ? smooth.out : in * -Length(smooth.out);
  } else {
    Point3 along = Normalize(out - in);
    if (along == Point3()) along = out;  // both point the same way: the curve leaves by its own tangent
    point.in = along * -Length(point.in);
    point.out = along * Length(point.out);
  }
}

void ResolveInner(PointFrame& point, const Point3& before, const Point3& after) {
  const RowTangent smooth = InnerTangent(before, point.pos, after);
  switch (point.type) {
    case kCorner:
      point.in = (before - point.pos) / 3;
      point.out = (after - point.pos) / 3;
      break;
    case kBezier:
      AlignTangents(point, smooth);
      break;
    case kBezierCorner:
      if (!point.hasIn) point.in = smooth.in;
      if (!point.hasOut) point.out = smooth.out;
      break;
    default:
      point.in = smooth.in;
      point.out = smooth.out;
      break;
  }
}

// `meeting` is the tangent with which the neighbour comes to meet the end. `tangent` is the end's own into the curve.
void ResolveEnd(const PointFrame& end, const PointFrame& next, const Point3& meeting, bool lone, bool given,
                Point3& tangent) {
  if (given && (end.type == kBezier || end.type == kBezierCorner)) return;
  const Point3 chord = next.pos - end.pos;
  tangent = end.type == kCorner || lone ? chord / 3 : (chord + meeting) * 0.5f;
}

bool IsCornerType(int type) { return type == kCorner || type == kBezierCorner; }

// Samples.

bool FollowsChord(const PointFrame& a, const PointFrame& b) {
  const Point3 third = (b.pos - a.pos) / 3;
  const float most = kOffChord * kOffChord * LengthSquared(b.pos - a.pos);
  return LengthSquared(a.out - third) <= most && LengthSquared(b.in + third) <= most;
}

bool IsStraight(std::span<const PointFrame> points, const PointFrame& a, const PointFrame& b) {
  if (a.type == kCorner && b.type == kCorner) return true;
  // Where a whole curve is one span nothing but its own shape tells; next to a curved span, tangents are shared.
  return points.size() == 2 && FollowsChord(a, b);
}

void AddCurvedSpan(const PointFrame& a, const PointFrame& b, int point, SampledCurve& curve) {
  // The span in powers of the parameter.
  const Point3 chord = b.pos - a.pos;
  const Point3 linear = a.out * 3;
  const Point3 square = (chord + b.in - a.out * 2) * 3;
  const Point3 cube = (a.out - b.in) * 3 - chord * 2;
  const float width = 1 / static_cast<float>(curve.steps);
  for (int j = 0; j < curve.steps; ++j) {
    const float s = width * static_cast<float>(j);
    CurveSample& sample = curve.samples.emplace_back();
    sample.point = point;
    sample.step = j;
    sample.pos = a.pos + ((cube * s + square) * s + linear) * s;
  }
}

void MeasureLengths(SampledCurve& curve) {
  curve.pointLengths.clear();
  float length = 0;
  Point3 before = curve.samples[0].pos;
  for (CurveSample& sample : curve.samples) {
    length += Length(sample.pos - before);
    before = sample.pos;
    sample.length = length;
    if (sample.step == 0) curve.pointLengths.push_back(length);
  }
  curve.length = length;
}

void Displace(std::span<const PointFrame> points, const CurveWave& wave, SampledCurve& curve) {
  const Point3 normal{0, std::cos(wave.orientation), std::sin(wave.orientation)};
  FrameBlend frames(points, true);
  const float width = 1 / static_cast<float>(curve.steps);
  for (CurveSample& sample : curve.samples) {
    const float f = width * static_cast<float>(sample.step);
    frames.Enter(sample.point);
    // Whole waves are taken off first, so that a far phase keeps its precision.
    const float waves = sample.length / wave.length + wave.phase;
    const float height = wave.amplitude * frames.Amplitude(f) * std::sin(kTwoPi * (waves - std::floor(waves)));
    sample.pos += VectorTransform(QuatMatrix(frames.Rotation(f)), normal) * height;
  }
}

// Tangents of the samples from `first` to `last`, between which the curve is smooth: half the way between the two
// neighbours, and at the ends what makes the outer pieces quadratic in shape.
void SetRunTangents(std::vector<CurveSample>& samples, size_t first, size_t last) {
  CurveSample &a = samples[first], &b = samples[last];
  if (last - first == 1) {
    a.out = b.in = b.pos - a.pos;
    return;
  }
  for (size_t i = first + 1; i < last; ++i)
    samples[i].in = samples[i].out = (samples[i + 1].pos - samples[i - 1].pos) * 0.5f;
  a.out = (samples[first + 1].pos - a.pos) * 1.5f - samples[first + 1].in * 0.5f;
  b.in = (b.pos - samples[last - 1].pos) * 1.5f - samples[last - 1].out * 0.5f;
}

// A run of samples ends at a corner and beside a straight piece, so that no tangent looks around the corner.
void SetTangents(std::span<const PointFrame> points, SampledCurve& curve) {
  std::vector<CurveSample>& samples = curve.samples;
  const size_t last = samples.size() - 1;
  const auto isCorner = [&](const CurveSample& s) { return IsCornerType(points[static_cast<size_t>(s.point)].type); };
  size_t first = 0;
  for (size_t i = 1; i <= last; ++i) {
    const CurveSample& s = samples[i];
    const bool ends = i == last || (s.step == 0 && (s.straight || samples[i - 1].straight || isCorner(s)));
    if (!ends) continue;
    SetRunTangents(samples, first, i);
    first = i;
  }
  CurveSample &begin = samples[0], &end = samples[last];
  if (curve.closed && last > 1 && !begin.straight && !samples[last - 1].straight && !isCorner(begin))
    begin.out = end.in = (samples[1].pos - samples[last - 1].pos) * 0.5f;
  begin.in = begin.out;
  end.out = end.in;
}

}  // namespace

void ResolveTangents(std::span<PointFrame> points, bool closed) {
  const size_t n = points.size();
  if (n == 1) points[0].in = points[0].out = {};
  if (n < 2) return;
  const PointRow row{points};
  const size_t open = closed ? 0 : 1;
  for (size_t i = open; i + open < n; ++i) ResolveInner(points[i], row.Before(i), row.After(i));
  if (closed) return;
  PointFrame &a = points[0], &b = points[n - 1];
  ResolveEnd(a, points[1], points[1].in, n == 2, a.hasOut, a.out);
  ResolveEnd(b, points[n - 2], points[n - 2].out, n == 2, b.hasIn, b.in);
  a.in = -a.out;
  b.out = -b.in;
}

void SumTwists(std::span<PointFrame> points) {
  float sum = 0;
  for (PointFrame& point : points) point.twist = sum += point.twist;
}

void SampleCurve(std::span<const PointFrame> points, bool closed, int steps, const CurveWave& wave,
                 SampledCurve& curve) {
  curve.samples.clear();
  curve.pointLengths.clear();
  curve.length = 0;
  curve.steps = std::max(steps, 1);
  curve.closed = closed && points.size() > 1;
  if (points.empty()) return;
  const int n = static_cast<int>(points.size());
  const int spans = curve.closed ? n : n - 1;
  for (int k = 0; k < spans; ++k) {
    const PointFrame& a = points[static_cast<size_t>(k)];
    const PointFrame& b = points[static_cast<size_t>(k + 1 < n ? k + 1 : 0)];
    if (wave.IsOn() || !IsStraight(points, a, b)) {
      AddCurvedSpan(a, b, k, curve);
      continue;
    }
    CurveSample& sample = curve.samples.emplace_back();
    sample.point = k;
    sample.pos = a.pos;
    sample.straight = true;
  }
  CurveSample& end = curve.samples.emplace_back();
  end.point = curve.closed ? 0 : n - 1;
  end.pos = points[static_cast<size_t>(end.point)].pos;
  MeasureLengths(curve);
  if (wave.IsOn()) {
    Displace(points, wave, curve);
    MeasureLengths(curve);
  }
  if (spans > 0) SetTangents(points, curve);
}

}  // namespace tavrilon
