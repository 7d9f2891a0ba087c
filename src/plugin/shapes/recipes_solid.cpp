// SPDX-License-Identifier: MIT
#include <initializer_list>

#include "plugin/shapes/recipes.h"

namespace tavrilon {

using corvanta::kHalfPi;
using corvanta::kPi;

namespace {

const Plane kXY{{}, {1, 0, 0}, {0, 1, 0}}, kYZ{{}, {0, 1, 0}, {0, 0, 1}}, kZX{{}, {0, 0, 1}, {1, 0, 0}};
const Plane kXZ{{}, {1, 0, 0}, {0, 0, 1}};

// Where a circle's four knots are, and so where uprights meet it.
constexpr Point2 kQuarters[] = {{1, 0}, {0, 1}, {-1, 0}, {0, -1}};

/// The corners of an icosahedron in the unit sphere, and a point of it at each end of Z.
std::vector<Point3> IcosahedronPoints() {
  std::vector<Point3> points = {{0, 0, 1}, {0, 0, -1}};
  const float z = 1 / std::sqrt(5.0f), radius = 2 * z;
  for (int i = 0; i < 10; ++i) {
    const float angle = float(i) * kPi / 5;
    points.push_back({radius * std::cos(angle), radius * std::sin(angle), i % 2 ? -z : z});
  }
  return points;
}

constexpr float kIcosaReach = 1.1f;  // edges are 1.051 long, the next distance is 1.701
constexpr float kGeoReach = 0.7f;    // edges are 0.547 and 0.618 long, the next distance is 1

}  // namespace

void DrawCross(Outline& outline, const RecipeInput&) {
  for (const Point3& axis : {Point3{1, 0, 0}, Point3{0, 1, 0}, Point3{0, 0, 1}}) AddLine(outline, -axis, axis);
}

void DrawCrossDiagonal(Outline& outline, const RecipeInput&) {
  constexpr float k = 0.57735f;  // the cube's corners on the unit sphere
  for (const Point2& p : {Point2{k, k}, Point2{-k, k}, Point2{-k, -k}, Point2{k, -k}})
    AddLine(outline, {-p.x, -p.y, -k}, {p.x, p.y, k});
}

void DrawCrossAsterisk(Outline& outline, const RecipeInput& in) {
  DrawCross(outline, in);
  DrawCrossDiagonal(outline, in);
}

void DrawAxisTripod(Outline& outline, const RecipeInput&) {
  constexpr float kTick = 0.08f;
  const Plane planes[3] = {kXZ, {{}, {0, 1, 0}, {0, 0, 1}}, {{}, {0, 0, 1}, {1, 0, 0}}};
  for (int axis = 0; axis < 3; ++axis) {
    AddPolyline(outline, std::vector<Point2>{{0, 0}, {1, 0}}, planes[axis]);
    outline.back().part = axis;
    AddPolyline(outline, std::vector<Point2>{{1 - kTick, kTick}, {1, 0}, {1 - kTick, -kTick}}, planes[axis]);
    outline.back().part = axis;
  }
}

void DrawSphere(Outline& outline, const RecipeInput&) {
  for (const Plane& plane : {kXY, kYZ, kZX}) AddCircle(outline, plane);
}

void DrawSphereHalf(Outline& outline, const RecipeInput&) {
  AddCircle(outline);
  AddArc(outline, kXZ, 1, 0, kPi);
  AddArc(outline, kYZ, 1, 0, kPi);
}

void DrawBox(Outline& outline, const RecipeInput&) {
  const Point2 square[] = {{-1, -1}, {1, -1}, {1, 1}, {-1, 1}};
  for (const float z : {-1.0f, 1.0f}) AddPolygon(outline, square, PlaneAtHeight(z));
  for (const Point2& p : square) AddLine(outline, {p.x, p.y, -1}, {p.x, p.y, 1});
}

void DrawCone(Outline& outline, const RecipeInput&) {
  AddCircle(outline);
  for (const Point2& p : kQuarters) AddLine(outline, {p.x, p.y, 0}, {0, 0, 1});
}

void DrawCylinder(Outline& outline, const RecipeInput&) {
  for (const float z : {-1.0f, 1.0f}) AddCircle(outline, PlaneAtHeight(z));
  for (const Point2& p : kQuarters) AddLine(outline, {p.x, p.y, -1}, {p.x, p.y, 1});
}

void DrawSphereIcosa(Outline& outline, const RecipeInput&) { AddCage(outline, IcosahedronPoints(), kIcosaReach); }

void DrawSphereGeo(Outline& outline, const RecipeInput&) {
  std::vector<Point3> points = IcosahedronPoints();
  const size_t corners = points.size();
  for (size_t a = 0; a < corners; ++a)
    for (size_t b = a + 1; b < corners; ++b)
      if (Length(points[a] - points[b]) < kIcosaReach) points.push_back(Normalize(points[a] + points[b]));
  AddCage(outline, points, kGeoReach);
}

void DrawDiamond(Outline& outline, const RecipeInput&) {
  const Point3 points[] = {{1, 0, 0}, {0, 1, 0}, {-1, 0, 0}, {0, -1, 0}, {0, 0, 1}, {0, 0, -1}};
  AddCage(outline, points, 1.5f);  // edges are 1.414 long, diagonals 2
}

}  // namespace tavrilon
