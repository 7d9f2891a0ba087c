// SPDX-License-Identifier: MIT
// Bezier strokes: what an outline is made of before it is written to a spline object or drawn as polylines.
#pragma once

#include <vector>

#include "host/maths/box3.h"

namespace tavrilon {

using corvanta::Box3;
using corvanta::Matrix3;
using corvanta::Point2;
using corvanta::Point3;

/// Handles are positions, not offsets. A handle that lies on its knot makes that end of the span straight.
struct Knot {
  Point3 point, inVec, outVec;
  /// The two sides meet at an angle. Smooth knots have opposite handles.
  bool corner = true;
};

inline Knot CornerKnot(const Point3& p) { return {p, p, p, true}; }

struct Spline {
  std::vector<Knot> knots;
  bool closed = false;
  /// Which part of a many-coloured shape the stroke belongs to: the axis of a tripod, 0 for IK and 1 for FK.
  int part = 0;

  /// Spans between knots: one fewer than knots, or as many when closed.
  int SpanCount() const { return static_cast<int>(knots.size()) - (closed ? 0 : 1); }
  const Knot& After(int i) const { return knots[(i + 1) % knots.size()]; }
};

using Outline = std::vector<Spline>;

/// The four Bezier points of one span.
struct Span {
  Point3 p[4];
  /// Both handles lie on their knots.
  bool IsStraight() const { return p[0] == p[1] && p[2] == p[3]; }
};
Span SpanOf(const Spline& spline, int index);
/// The point at `u` in 0 to 1 (de Casteljau).
Point3 PointOn(const Span& span, float u);

/// Appends the knots and, in each curved span, `steps` points between them. Straight spans stay single lines.
/// A closed spline does not repeat its first point. `steps` is held to 0..999.
void Interpolate(const Spline& spline, int steps, std::vector<Point3>& polyline);

/// The box of the interpolated outline; empty for no strokes.
Box3 BoundsOf(const Outline& outline, int steps);

}  // namespace tavrilon
