// SPDX-License-Identifier: MIT
#include "plugin/shapes/stroke.h"

#include <algorithm>
#include <utility>

namespace tavrilon {

namespace {

// Length of a smooth knot's handle as a part of its span. A circle of ten knots wants just this.
constexpr float kSmoothHandle = 0.34f;

Spline& AddSpline(Outline& outline, bool closed) {
  outline.emplace_back();
  outline.back().closed = closed;
  return outline.back();
}

void SmoothKnot(Spline& spline, int i) {
  const int count = static_cast<int>(spline.knots.size());
  if (!spline.closed && (i == 0 || i == count - 1)) return;
  const Point3& before = spline.knots[(i + count - 1) % count].point;
  const Point3& after = spline.After(i).point;
  Knot& knot = spline.knots[i];
  const Point3 along = Normalize(after - before);
  knot.inVec = knot.point - along * (kSmoothHandle * Length(knot.point - before));
  knot.outVec = knot.point + along * (kSmoothHandle * Length(after - knot.point));
  knot.corner = false;
}

void AddStroke(Outline& outline, const DrawnStroke& stroke) {
  std::vector<DrawnKnot> knots(stroke.knots.begin(), stroke.knots.end());
  if (stroke.form == DrawnStroke::Mirrored)
    for (auto k = stroke.knots.rbegin(); k != stroke.knots.rend(); ++k)
      if (k->x > 0) knots.push_back({-k->x, k->y, k->kind});
  Spline& spline = AddSpline(outline, stroke.form != DrawnStroke::Open);
  for (const DrawnKnot& k : knots) spline.knots.push_back(CornerKnot({k.x, k.y, 0}));
  for (int i = 0; i < static_cast<int>(knots.size()); ++i)
    if (knots[i].kind == 's') SmoothKnot(spline, i);
}

}  // namespace

void AddLine(Outline& outline, const Point3& a, const Point3& b) {
  AddSpline(outline, false).knots = {CornerKnot(a), CornerKnot(b)};
}

void AddPolyline(Outline& outline, std::span<const Point2> points, const Plane& plane) {
  Spline& spline = AddSpline(outline, false);
  for (const Point2& p : points) spline.knots.push_back(CornerKnot(plane.At(p.x, p.y)));
}

void AddPolygon(Outline& outline, std::span<const Point2> points, const Plane& plane) {
  AddPolyline(outline, points, plane);
  outline.back().closed = true;
}

void AddCage(Outline& outline, std::span<const Point3> points, float reach) {
  std::vector<std::pair<int, int>> edges;
  for (int a = 0; a < static_cast<int>(points.size()); ++a)
    for (int b = a + 1; b < static_cast<int>(points.size()); ++b)
      if (Length(points[a] - points[b]) < reach) edges.emplace_back(a, b);
  while (!edges.empty()) {  // walk along unused edges until there is none to leave by
    int at = edges.front().first;
    Spline& spline = AddSpline(outline, false);
    spline.knots.push_back(CornerKnot(points[at]));
    for (;;) {
      const auto next =
          std::find_if(edges.begin(), edges.end(), [at](const auto& e) { return e.first == at || e.second == at; });
      if (next == edges.end()) break;
      at = next->first == at ? next->second : next->first;
      spline.knots.push_back(CornerKnot(points[at]));
      edges.erase(next);
    }
  }
}

void AppendArc(Spline& spline, const Plane& plane, float radius, float from, float to) {
  // The small subtraction keeps a full quarter, reached through rounding, at one span.
  const int spans = std::max(1, static_cast<int>(std::ceil(std::abs(to - from) / corvanta::kHalfPi - 1e-4f)));
  const float step = (to - from) / float(spans);
  const float handle = radius * 4 / 3 * std::tan(step / 4);  // 0.5523 r for a quarter
  for (int i = 0; i <= spans; ++i) {
    const float angle = from + step * float(i), c = std::cos(angle), s = std::sin(angle);
    const Point3 point = plane.At(radius * c, radius * s);
    const Point3 along = (plane.v * c - plane.u * s) * handle;
    spline.knots.push_back({point, i > 0 ? point - along : point, i < spans ? point + along : point, false});
  }
  spline.knots.back().corner = spline.knots[spline.knots.size() - spans - 1].corner = true;
}

void AddCircle(Outline& outline, const Plane& plane, float radius) {
  Spline& spline = AddSpline(outline, true);
  AppendArc(spline, plane, radius, 0, corvanta::kTwoPi);
  spline.knots.front().inVec = spline.knots.back().inVec;
  spline.knots.front().corner = false;
  spline.knots.pop_back();
}

void AddArc(Outline& outline, const Plane& plane, float radius, float from, float to) {
  AppendArc(AddSpline(outline, false), plane, radius, from, to);
}

void AddDrawing(Outline& outline, const Drawing& drawing) {
  for (const DrawnStroke& stroke : drawing.strokes) AddStroke(outline, stroke);
  for (const DrawnOval& o : drawing.ovals)
    AddCircle(outline, {{o.x, o.y, 0}, {o.halfWidth, 0, 0}, {0, o.halfHeight, 0}});
}

void SmoothKnots(Spline& spline) {
  for (int i = 0; i < static_cast<int>(spline.knots.size()); ++i) SmoothKnot(spline, i);
}

}  // namespace tavrilon
