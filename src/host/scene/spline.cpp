// SPDX-License-Identifier: MIT
#include "host/scene/spline.h"

namespace corvanta {

namespace {

Point3 BezierAt(const SplineKnot& a, const SplineKnot& b, float u) {
  const float v = 1 - u;
  return a.point * (v * v * v) + a.outVec * (3 * u * v * v) + b.inVec * (3 * u * u * v) + b.point * (u * u * u);
}

// A segment is drawn as a straight line when both handles lie where Corner knots put them.
bool IsStraight(const SplineKnot& a, const SplineKnot& b) {
  return a.type == KnotType::Corner && b.type == KnotType::Corner;
}

}  // namespace

void Spline3D::ComputeBezPoints() {
  const int n = KnotCount();
  for (int i = 0; i < n; ++i) {
    SplineKnot& knot = knots[static_cast<size_t>(i)];
    if (knot.type != KnotType::Corner) continue;
    const bool first = i == 0 && !closed, last = i == n - 1 && !closed;
    const Point3& before = knots[static_cast<size_t>((i + n - 1) % n)].point;
    const Point3& after = knots[static_cast<size_t>((i + 1) % n)].point;
    knot.inVec = first ? knot.point : Lerp(knot.point, before, 1.0f / 3);
    knot.outVec = last ? knot.point : Lerp(knot.point, after, 1.0f / 3);
  }
}

void Spline3D::Interpolate(int steps, std::vector<Point3>& out) const {
  const int n = KnotCount();
  const int segments = closed ? n : n - 1;
  if (n == 1) out.push_back(knots[0].point);
  for (int i = 0; i < segments; ++i) {
    const SplineKnot& a = knots[static_cast<size_t>(i)];
    const SplineKnot& b = knots[static_cast<size_t>((i + 1) % n)];
    if (i == 0) out.push_back(a.point);
    const int inner = IsStraight(a, b) ? 0 : steps;
    for (int k = 1; k <= inner; ++k)
      out.push_back(BezierAt(a, b, static_cast<float>(k) / static_cast<float>(inner + 1)));
    if (!closed || i + 1 < segments) out.push_back(b.point);
  }
}

}  // namespace corvanta
