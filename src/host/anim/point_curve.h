// SPDX-License-Identifier: MIT
// A curve y(x) through points with tangents. Plain data and pure functions.
#pragma once

#include <vector>

namespace corvanta {

/// Slopes are dy/dx on the two sides.
struct CurvePoint {
  float x = 0, y = 0;
  float inSlope = 0, outSlope = 0;
  bool operator==(const CurvePoint&) const = default;
};

struct PointCurve {
  /// In the order of x, no two at the same.
  std::vector<CurvePoint> points;
  bool operator==(const PointCurve&) const = default;

  float FirstX() const { return points.empty() ? 0 : points.front().x; }
  float LastX() const { return points.empty() ? 0 : points.back().x; }
};

/// Cubic between two points, straight on beyond the ends by their outer slopes; x itself on a curve without points.
/// Allocates nothing.
float ValueAt(const PointCurve& curve, float x);

/// Puts a point where its x belongs, over one at the same x. Its index; -1 for numbers that are not finite.
int InsertPoint(PointCurve& curve, const CurvePoint& point);

}  // namespace corvanta
