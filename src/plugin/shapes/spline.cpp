// SPDX-License-Identifier: MIT
#include "plugin/shapes/spline.h"

#include <algorithm>

namespace tavrilon {

Span SpanOf(const Spline& spline, int index) {
  const Knot& a = spline.knots[index];
  const Knot& b = spline.After(index);
  return {{a.point, a.outVec, b.inVec, b.point}};
}

Point3 PointOn(const Span& span, float u) {
  const float v = 1 - u;
  return span.p[0] * (v * v * v) + span.p[1] * (3 * u * v * v) + span.p[2] * (3 * u * u * v) + span.p[3] * (u * u * u);
}

void Interpolate(const Spline& spline, int steps, std::vector<Point3>& polyline) {
  const int between = std::clamp(steps, 0, 999);
  for (int i = 0; i < static_cast<int>(spline.knots.size()); ++i) {
    polyline.push_back(spline.knots[i].point);
    if (i >= spline.SpanCount()) continue;
    const Span span = SpanOf(spline, i);
    if (span.IsStraight()) continue;
    for (int k = 1; k <= between; ++k) polyline.push_back(PointOn(span, float(k) / float(between + 1)));
  }
}

Box3 BoundsOf(const Outline& outline, int steps) {
  Box3 box;
  std::vector<Point3> points;
  for (const Spline& spline : outline) {
    points.clear();
    Interpolate(spline, steps, points);
    for (const Point3& p : points) box += p;
  }
  return box;
}

}  // namespace tavrilon
