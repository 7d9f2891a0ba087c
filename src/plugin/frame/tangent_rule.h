// SPDX-License-Identifier: MIT
// The tangents of a smooth row of points, shared by templates and curve solvers so that both run on one curve.
// Inner points take the direction from neighbour to neighbour with a third of the distance on each side. The ends
// aim at the tip of their neighbour's tangent, which makes the first and last spans quadratic in shape.
#pragma once

#include <initializer_list>

#include "host/maths/point.h"

namespace tavrilon {

/// Offsets from a point to the control points before and after it.
struct RowTangent {
  corvanta::Point3 in, out;
};

/// One cubic span: end points a and d, control points b and c.
struct BezierSpan {
  corvanta::Point3 a, b, c, d;
};

inline corvanta::Point3 BezierPoint(const BezierSpan& s, float w) {
  const float v = 1 - w;
  return s.a * (v * v * v) + s.b * (3 * v * v * w) + s.c * (3 * v * w * w) + s.d * (w * w * w);
}

/// First derivative by w.
inline corvanta::Point3 BezierVelocity(const BezierSpan& s, float w) {
  const float v = 1 - w;
  return (s.b - s.a) * (3 * v * v) + (s.c - s.b) * (6 * v * w) + (s.d - s.c) * (3 * w * w);
}

/// Tangent of an inner point between its two neighbours. Neighbours that coincide give zero tangents.
inline RowTangent InnerTangent(const corvanta::Point3& before, const corvanta::Point3& at,
                               const corvanta::Point3& after) {
  const corvanta::Point3 along = Normalize(after - before);
  return {along * (-Length(at - before) / 3), along * (Length(after - at) / 3)};
}

/// Tangent of point `i` of an open row of `count` points. `point(k)` gives point k and is called only for
/// neighbours up to two places away. One point has zero tangents, two take a third of their chord.
template <class PointAt>
RowTangent SmoothTangent(PointAt&& point, int count, int i) {
  using corvanta::Point3;
  if (count < 2) return {};
  if (i > 0 && i < count - 1) return InnerTangent(point(i - 1), point(i), point(i + 1));
  const int step = i == 0 ? 1 : -1;  // from the end into the row
  const Point3 end = point(i), next = point(i + step);
  Point3 offset = (next - end) / 3;
  if (count > 2) {
    const RowTangent inner = InnerTangent(point(i), next, point(i + 2 * step));
    // Seen from the end the tangent that comes to meet it is `in`: a reversed row swaps the two but not their places.
    offset = (next + inner.in - end) * 0.5f;
  }
  return i == 0 ? RowTangent{-offset, offset} : RowTangent{offset, -offset};
}

/// The span from point `i` to `i + 1`, both with smooth tangents.
template <class PointAt>
BezierSpan SmoothSpan(PointAt&& point, int count, int i) {
  const corvanta::Point3 a = point(i), d = point(i + 1);
  return {a, a + SmoothTangent(point, count, i).out, d + SmoothTangent(point, count, i + 1).in, d};
}

/// Length of the part of a span from w0 to w1, by five-point Gauss quadrature on eight pieces.
inline float BezierLength(const BezierSpan& s, float w0 = 0, float w1 = 1) {
  constexpr float kNode[] = {0, 0.5384693101f, 0.9061798459f};
  constexpr float kWeight[] = {0.5688888889f, 0.4786286705f, 0.2369268851f};
  constexpr int kPieces = 8;
  double sum = 0;
  for (int piece = 0; piece < kPieces; ++piece) {
    const float half = (w1 - w0) / (2 * kPieces), mid = w0 + half * (2 * piece + 1);
    sum += half * kWeight[0] * Length(BezierVelocity(s, mid));
    for (int i = 1; i < 3; ++i)
      for (float sign : {-1.0f, 1.0f})
        sum += half * kWeight[i] * Length(BezierVelocity(s, mid + sign * half * kNode[i]));
  }
  return static_cast<float>(sum);
}

}  // namespace tavrilon
