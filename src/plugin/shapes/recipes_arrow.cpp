// SPDX-License-Identifier: MIT
#include <algorithm>

#include "plugin/shapes/recipes.h"

namespace tavrilon {

using corvanta::kDegToRad;

namespace {

// Half widths and the place along the arm where the head begins.
struct ArrowForm {
  float shaft, head, neck;
};

// One arm pointing along the plane's u axis to length 1, from its right flank to its left, as seen along u.
void AppendArm(Spline& spline, const Plane& plane, const ArrowForm& form) {
  const Point2 points[] = {
      {form.neck, -form.shaft}, {form.neck, -form.head}, {1, 0}, {form.neck, form.head}, {form.neck, form.shaft}};
  for (const Point2& p : points) spline.knots.push_back(CornerKnot(plane.At(p.x, p.y)));
}

void AppendStub(Spline& spline, const Plane& plane, float shaft) {
  spline.knots.push_back(CornerKnot(plane.At(1, -shaft)));
  spline.knots.push_back(CornerKnot(plane.At(1, shaft)));
}

// The four arms' planes, counterclockwise from +X: u along the arm.
const Plane kArms[4] = {
    {{}, {1, 0, 0}, {0, 1, 0}}, {{}, {0, 1, 0}, {-1, 0, 0}}, {{}, {-1, 0, 0}, {0, -1, 0}}, {{}, {0, -1, 0}, {1, 0, 0}}};

Spline& AddClosed(Outline& outline) {
  outline.emplace_back();
  outline.back().closed = true;
  return outline.back();
}

// The inner corner between an arm and the next.
void AppendCrotch(Spline& spline, const Plane& arm, float shaft) {
  spline.knots.push_back(CornerKnot(arm.At(shaft, shaft)));
}

ArrowForm CrossForm(float thickness) { return {0.35f * thickness, 0.35f * thickness + 0.2f, 0.6f}; }

// A bent band with a head that ends on the unit circle.
struct Bend {
  explicit Bend(float thickness)
      : half(0.2f * thickness), head(half + 0.16f), middle(1 - head), inner(middle - half), outer(middle + half) {}
  float half, head, middle, inner, outer;
};
constexpr float kBendFrom = -60 * kDegToRad, kBendTo = 210 * kDegToRad, kBendTip = 250 * kDegToRad;

void AddBentArrow(Outline& outline, const Bend& bend, const Plane& plane) {
  const auto at = [&plane](float radius, float angle) {
    return plane.At(radius * std::cos(angle), radius * std::sin(angle));
  };
  Spline& spline = AddClosed(outline);
  AppendArc(spline, plane, bend.outer, kBendFrom, kBendTo);
  spline.knots.push_back(CornerKnot(at(bend.middle + bend.head, kBendTo)));
  spline.knots.push_back(CornerKnot(at(bend.middle, kBendTip)));
  spline.knots.push_back(CornerKnot(at(bend.middle - bend.head, kBendTo)));
  AppendArc(spline, plane, bend.inner, kBendTo, kBendFrom);
}

// A band that lies on the unit cylinder about Z.
constexpr float kWrapFrom = -350 * kDegToRad, kWrapTo = -100 * kDegToRad, kWrapTip = -50 * kDegToRad;

struct OnCylinder {
  float angle, z;
};
// One span on the unit cylinder; both angles lie within a quarter turn.
void AppendRisingArc(Spline& spline, const OnCylinder& from, const OnCylinder& to) {
  const size_t first = spline.knots.size();
  AppendArc(spline, {}, 1, from.angle, to.angle);
  Knot &a = spline.knots[first], &b = spline.knots[first + 1];
  const float third = (to.z - from.z) / 3;
  a.point.z = a.inVec.z = from.z, a.outVec.z = from.z + third;
  b.point.z = b.outVec.z = to.z, b.inVec.z = to.z - third;
}

}  // namespace

void DrawArrow(Outline& outline, const RecipeInput& in) {
  const float shaft = 0.5f * in.thickness;
  Spline& spline = AddClosed(outline);
  AppendArm(spline, kArms[1], {shaft, std::min(1.0f, shaft + 0.35f), 0.2f});
  AppendStub(spline, kArms[3], shaft);
}

void DrawArrowDouble(Outline& outline, const RecipeInput& in) {
  const float shaft = 0.4f * in.thickness;
  Spline& spline = AddClosed(outline);
  for (const int arm : {0, 2}) AppendArm(spline, kArms[arm], {shaft, shaft + 0.3f, 0.5f});
}

void DrawArrowCircle(Outline& outline, const RecipeInput& in) { AddBentArrow(outline, Bend(in.thickness), {}); }

void DrawArrowCylinder(Outline& outline, const RecipeInput& in) {
  const float half = 0.4f * in.thickness, head = half + 0.25f;
  Spline& spline = AddClosed(outline);
  AppendArc(spline, PlaneAtHeight(-half), 1, kWrapFrom, kWrapTo);
  AppendRisingArc(spline, {kWrapTo, -head}, {kWrapTip, 0});
  AppendRisingArc(spline, {kWrapTip, 0}, {kWrapTo, head});
  AppendArc(spline, PlaneAtHeight(half), 1, kWrapTo, kWrapFrom);
}

void DrawArrowCross(Outline& outline, const RecipeInput& in) {
  const ArrowForm form = CrossForm(in.thickness);
  Spline& spline = AddClosed(outline);
  for (const Plane& arm : kArms) {
    AppendArm(spline, arm, form);
    AppendCrotch(spline, arm, form.shaft);
  }
}

void DrawArrowMixed(Outline& outline, const RecipeInput& in) {
  const ArrowForm form = CrossForm(in.thickness);
  Spline& spline = AddClosed(outline);
  for (int i = 0; i < 4; ++i) {
    i < 3 ? AppendArm(spline, kArms[i], form) : AppendStub(spline, kArms[i], form.shaft);
    AppendCrotch(spline, kArms[i], form.shaft);
  }
}

void DrawFourArrows(Outline& outline, const RecipeInput& in) {
  constexpr float kTail = 0.35f;
  const float shaft = 0.22f * in.thickness;
  for (const Plane& arm : kArms) {
    Spline& spline = AddClosed(outline);
    AppendArm(spline, arm, {shaft, shaft + 0.16f, 0.7f});
    spline.knots.push_back(CornerKnot(arm.At(kTail, shaft)));
    spline.knots.push_back(CornerKnot(arm.At(kTail, -shaft)));
  }
}

void DrawFourPyramids(Outline& outline, const RecipeInput& in) {
  constexpr float kBase = 0.5f;
  const float half = 0.45f * in.thickness;
  for (const Plane& arm : kArms) {
    const Plane base{arm.u * kBase, arm.v * half, {0, 0, half}};
    const Point2 square[] = {{-1, -1}, {1, -1}, {1, 1}, {-1, 1}};
    AddPolygon(outline, square, base);
    for (const Point2& p : square) AddLine(outline, base.At(p.x, p.y), arm.u);
  }
}

void DrawFourTriangles(Outline& outline, const RecipeInput& in) {
  const float half = 0.7f * in.thickness;
  for (const Plane& arm : kArms) AddPolygon(outline, std::vector<Point2>{{0.55f, -half}, {1, 0}, {0.55f, half}}, arm);
}

}  // namespace tavrilon
