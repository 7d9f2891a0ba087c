// SPDX-License-Identifier: MIT
#include <algorithm>

#include "plugin/shapes/recipes.h"

namespace tavrilon {

using corvanta::kDegToRad;
using corvanta::kHalfPi;
using corvanta::kPi;
using corvanta::kTwoPi;

namespace {

Spline& AddClosed(Outline& outline) {
  outline.emplace_back();
  outline.back().closed = true;
  return outline.back();
}

void AppendCorner(Spline& spline, float x, float y) { spline.knots.push_back(CornerKnot({x, y, 0})); }

// Ten points in turn on the unit circle and on the inner one, the first up on Y.
void AddStarPoints(Spline& spline, float inner) {
  for (int i = 0; i < 10; ++i) {
    const float angle = kHalfPi + float(i) * kPi / 5, radius = i % 2 ? inner : 1;
    AppendCorner(spline, radius * std::cos(angle), radius * std::sin(angle));
  }
}

}  // namespace

void DrawCircle(Outline& outline, const RecipeInput&) { AddCircle(outline); }

void DrawCircleHalf(Outline& outline, const RecipeInput&) { AppendArc(AddClosed(outline), {}, 1, 0, kPi); }

void DrawCirclePointy(Outline& outline, const RecipeInput& in) {
  constexpr float kHalfTooth = 12 * kDegToRad;
  const float radius = 1 / (1 + 0.35f * in.thickness);
  Spline& spline = AddClosed(outline);
  for (int i = 0; i < 4; ++i) {
    const float angle = float(i) * kHalfPi;
    AppendCorner(spline, std::cos(angle), std::sin(angle));
    AppendArc(spline, {}, radius, angle + kHalfTooth, angle + kHalfPi - kHalfTooth);
  }
}

void DrawDonut(Outline& outline, const RecipeInput& in) {
  AddCircle(outline);
  AddCircle(outline, {}, 1 - 0.9f * in.thickness);
}

void DrawRectangle(Outline& outline, const RecipeInput&) {
  AddPolygon(outline, std::vector<Point2>{{-1, -1}, {1, -1}, {1, 1}, {-1, 1}});
}

void DrawTriangle(Outline& outline, const RecipeInput&) {
  AddPolygon(outline, std::vector<Point2>{{0, 1}, {-0.8660254f, -0.5f}, {0.8660254f, -0.5f}});
}

void DrawCrossFlat(Outline& outline, const RecipeInput& in) {
  const float w = 0.7f * in.thickness;
  AddPolygon(
      outline,
      std::vector<Point2>{
          {1, -w}, {1, w}, {w, w}, {w, 1}, {-w, 1}, {-w, w}, {-1, w}, {-1, -w}, {-w, -w}, {-w, -1}, {w, -1}, {w, -w}});
}

void DrawDrop(Outline& outline, const RecipeInput&) {
  constexpr float kRadius = 0.6f, kCentre = -0.4f;
  Spline& spline = AddClosed(outline);
  AppendArc(spline, {{0, kCentre, 0}}, kRadius, kPi, kTwoPi);
  // The flanks leave the circle upright and come to the point steeply.
  spline.knots.front().inVec = {-kRadius, kCentre + 0.55f, 0};
  spline.knots.back().outVec = {kRadius, kCentre + 0.55f, 0};
  spline.knots.front().corner = spline.knots.back().corner = false;
  spline.knots.push_back({{0, 1, 0}, {0.12f, 0.72f, 0}, {-0.12f, 0.72f, 0}, true});
}

void DrawStar(Outline& outline, const RecipeInput& in) { AddStarPoints(AddClosed(outline), 1 - in.thickness); }

void DrawStarSmooth(Outline& outline, const RecipeInput& in) {
  DrawStar(outline, in);
  SmoothKnots(outline.back());
}

void DrawPeanut(Outline& outline, const RecipeInput& in) {
  constexpr float kRadius = 0.6f, kHandle = 0.5523f * kRadius;
  const float waist = kRadius - 0.45f * in.thickness;
  struct {
    float x, y, alongX, alongY;
  } const rows[] = {{1, 0, 0, kHandle},          {0.4f, kRadius, -0.16f, 0}, {0, waist, -0.14f, 0},
                    {-0.4f, kRadius, -0.16f, 0}, {-1, 0, 0, -kHandle},       {-0.4f, -kRadius, 0.16f, 0},
                    {0, -waist, 0.14f, 0},       {0.4f, -kRadius, 0.16f, 0}};
  Spline& spline = AddClosed(outline);
  for (const auto& row : rows) {
    const Point3 point{row.x, row.y, 0}, along{row.alongX, row.alongY, 0};
    spline.knots.push_back({point, point - along, point + along, false});
  }
}

void DrawGear(Outline& outline, const RecipeInput& in) {
  constexpr int kTeeth = 8;
  constexpr float kPitch = kTwoPi / kTeeth, kHalfFoot = 0.28f * kPitch, kHalfTip = 0.17f * kPitch;
  const float least = in.halfSize > 0 ? 0.001f / in.halfSize : 0;
  const float root = 1 - std::min(std::max(0.7f * in.thickness, least), 0.95f);
  Spline& spline = AddClosed(outline);
  for (int i = 0; i < kTeeth; ++i) {
    const float angle = float(i) * kPitch;
    AppendArc(spline, {}, 1, angle - kHalfTip, angle + kHalfTip);
    AppendArc(spline, {}, root, angle + kHalfFoot, angle + kPitch - kHalfFoot);
  }
}

}  // namespace tavrilon
