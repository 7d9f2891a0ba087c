// SPDX-License-Identifier: MIT
#include "host/anim/point_curve.h"

#include <algorithm>
#include <cmath>

namespace corvanta {

namespace {

// Cubic Hermite with slopes in dy/dx.
float Between(const CurvePoint& a, const CurvePoint& b, float x) {
  const float h = b.x - a.x;
  const float u = (x - a.x) / h, v = 1 - u;
  return v * v * ((1 + 2 * u) * a.y + u * h * a.outSlope) + u * u * ((1 + 2 * v) * b.y - v * h * b.inSlope);
}

bool IsBefore(const CurvePoint& point, float x) { return point.x < x; }

}  // namespace

float ValueAt(const PointCurve& curve, float x) {
  const std::vector<CurvePoint>& p = curve.points;
  if (p.empty()) return x;
  if (x <= p.front().x) return p.front().y + (x - p.front().x) * p.front().inSlope;
  if (x >= p.back().x) return p.back().y + (x - p.back().x) * p.back().outSlope;
  const auto next = std::lower_bound(p.begin(), p.end(), x, IsBefore);
  return Between(next[-1], *next, x);
}

int InsertPoint(PointCurve& curve, const CurvePoint& point) {
  for (const float f : {point.x, point.y, point.inSlope, point.outSlope})
    if (!std::isfinite(f)) return -1;
  std::vector<CurvePoint>& p = curve.points;
  const auto at = std::lower_bound(p.begin(), p.end(), point.x, IsBefore);
  const int index = static_cast<int>(at - p.begin());
  if (at != p.end() && at->x == point.x)
    *at = point;
  else
    p.insert(at, point);
  return index;
}

}  // namespace corvanta
