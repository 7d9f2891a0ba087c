// SPDX-License-Identifier: MIT
#include "plugin/shapes/outline.h"

#include <gtest/gtest.h>

#include <random>
#include <set>
#include <string>

#include "plugin/shapes/shape_type.h"

namespace tavrilon {
namespace {

// Unit recipes are of order one and go through a handful of float operations.
constexpr float kTolerance = 2e-5f;

OutlineInput Input(ShapeType type, float size = 2) {
  OutlineInput in;
  in.type = static_cast<int>(type);
  in.size = size;
  return in;
}

Outline Build(const OutlineInput& in) {
  Outline outline;
  BuildOutline(in, outline);
  return outline;
}

std::vector<Point3> Points(const Outline& outline, int steps = 6) {
  std::vector<Point3> points;
  for (const Spline& spline : outline) Interpolate(spline, steps, points);
  return points;
}

bool IsFinite(const Point3& p) { return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z); }

void ExpectInside(const Box3& box, const Point3& half) {
  for (int i = 0; i < 3; ++i) {
    EXPECT_LE(box.max[i], half[i] + kTolerance * (1 + half[i]));
    EXPECT_GE(box.min[i], -half[i] - kTolerance * (1 + half[i]));
  }
}

struct Property {
  int type;
  float thickness;
};
std::vector<Property> EveryTypeAndThickness() {
  std::vector<Property> all;
  for (int type = 1; type < kShapeTypeCount; ++type)
    for (const float thickness : {0.0f, 0.25f, 0.5f, 1.0f}) all.push_back({type, thickness});
  return all;
}

TEST(OutlineLibrary, NamesAreUniqueAndInPlace) {
  std::set<std::string> names;
  for (int i = 0; i < kShapeTypeCount; ++i) names.insert(ShapeTypeName(i));
  EXPECT_EQ(names.size(), size_t(kShapeTypeCount));
  EXPECT_STREQ(ShapeTypeName(static_cast<int>(ShapeType::Sphere)), "Sphere");
  EXPECT_STREQ(ShapeTypeName(static_cast<int>(ShapeType::IKFK)), "IKFK");
  EXPECT_STREQ(ShapeTypeName(static_cast<int>(ShapeType::Diamond)), "Diamond");
  EXPECT_STREQ(ShapeTypeName(-1), "");
  EXPECT_STREQ(ShapeTypeName(kShapeTypeCount), "");
}

TEST(OutlineLibrary, NoneAndUnknownTypesDrawNothing) {
  for (const int type : {0, -3, kShapeTypeCount, 1000}) {
    OutlineInput in;
    in.type = type;
    EXPECT_TRUE(Build(in).empty()) << type;
  }
}

TEST(OutlineLibrary, EveryShapeIsSoundAtEveryThicknessAxisAndStep) {
  for (const Property& p : EveryTypeAndThickness())
    for (int axis = 0; axis < 3; ++axis) {
      SCOPED_TRACE(testing::Message() << ShapeTypeName(p.type) << " thickness " << p.thickness << " axis " << axis);
      OutlineInput in = Input(static_cast<ShapeType>(p.type), 20);
      in.thickness = p.thickness;
      in.axis = axis;
      const Outline outline = Build(in);
      ASSERT_FALSE(outline.empty());
      for (const Spline& spline : outline) {
        ASSERT_GE(spline.knots.size(), 2u);
        for (int i = 0; i < spline.SpanCount(); ++i)
          EXPECT_GT(Length(spline.After(i).point - spline.knots[i].point), 0) << "knots " << i << " and next coincide";
      }
      size_t points = 0;
      for (const int steps : {0, 1, 6, 40}) {
        const std::vector<Point3> polyline = Points(outline, steps);
        for (const Point3& q : polyline) ASSERT_TRUE(IsFinite(q));
        EXPECT_GE(polyline.size(), points);
        points = polyline.size();
        ExpectInside(BoundsOf(outline, steps), {10, 10, 10});
      }
    }
}

struct KnownShape {
  ShapeType type;
  size_t strokes;
  Point3 min, max;  // of a shape of size 2 at thickness 0.5
};
const KnownShape kKnownShapes[] = {
    {ShapeType::Cross, 3, {-1, -1, -1}, {1, 1, 1}},
    {ShapeType::CrossAsterisk, 7, {-1, -1, -1}, {1, 1, 1}},
    {ShapeType::AxisTripod, 6, {-0.08f, 0, -0.08f}, {1, 1, 1}},
    {ShapeType::Circle, 1, {-1, -1, 0}, {1, 1, 0}},
    {ShapeType::CircleHalf, 1, {-1, 0, 0}, {1, 1, 0}},
    {ShapeType::CirclePointy, 1, {-1, -1, 0}, {1, 1, 0}},
    {ShapeType::Donut, 2, {-1, -1, 0}, {1, 1, 0}},
    {ShapeType::Sphere, 3, {-1, -1, -1}, {1, 1, 1}},
    {ShapeType::SphereHalf, 3, {-1, -1, 0}, {1, 1, 1}},
    {ShapeType::Rectangle, 1, {-1, -1, 0}, {1, 1, 0}},
    {ShapeType::Box, 6, {-1, -1, -1}, {1, 1, 1}},
    {ShapeType::Cone, 5, {-1, -1, 0}, {1, 1, 1}},
    {ShapeType::Cylinder, 6, {-1, -1, -1}, {1, 1, 1}},
    {ShapeType::Arrow, 1, {-0.6f, -1, 0}, {0.6f, 1, 0}},
    {ShapeType::ArrowDouble, 1, {-1, -0.5f, 0}, {1, 0.5f, 0}},
    {ShapeType::ArrowCross, 1, {-1, -1, 0}, {1, 1, 0}},
    {ShapeType::ArrowMixed, 1, {-1, -1, 0}, {1, 1, 0}},
    {ShapeType::CrossFlat, 1, {-1, -1, 0}, {1, 1, 0}},
    {ShapeType::Drop, 1, {-0.6f, -1, 0}, {0.6f, 1, 0}},
    {ShapeType::Peanut, 1, {-1, -0.6f, 0}, {1, 0.6f, 0}},
    {ShapeType::Eye, 3, {-1, -0.5f, 0}, {1, 0.5f, 0}},
    {ShapeType::FourArrows, 4, {-1, -1, 0}, {1, 1, 0}},
    {ShapeType::FourPyramids, 20, {-1, -1, -0.225f}, {1, 1, 0.225f}},
    {ShapeType::FourTriangles, 4, {-1, -1, 0}, {1, 1, 0}},
    {ShapeType::Diamond, 2, {-1, -1, -1}, {1, 1, 1}},
};

TEST(OutlineLibrary, KnownShapesHaveTheirStrokesAndExtents) {
  for (const KnownShape& shape : kKnownShapes) {
    SCOPED_TRACE(ShapeTypeName(static_cast<int>(shape.type)));
    const Outline outline = Build(Input(shape.type));
    EXPECT_EQ(outline.size(), shape.strokes);
    const Box3 box = BoundsOf(outline, 7);  // an odd count meets the middle of each span
    EXPECT_LT(Length(box.min - shape.min), 1e-3f) << box.min.x << ' ' << box.min.y << ' ' << box.min.z;
    EXPECT_LT(Length(box.max - shape.max), 1e-3f) << box.max.x << ' ' << box.max.y << ' ' << box.max.z;
  }
}

int EdgeCount(const Outline& outline) {
  int edges = 0;
  for (const Spline& spline : outline) edges += spline.SpanCount();
  return edges;
}

TEST(OutlineLibrary, CagesHaveTheEdgesOfTheirSolids) {
  EXPECT_EQ(EdgeCount(Build(Input(ShapeType::Diamond))), 12);
  EXPECT_EQ(EdgeCount(Build(Input(ShapeType::SphereIcosa))), 30);
  EXPECT_EQ(EdgeCount(Build(Input(ShapeType::SphereGeo))), 120);
  for (const ShapeType type : {ShapeType::SphereIcosa, ShapeType::SphereGeo})
    for (const Point3& p : Points(Build(Input(type)))) EXPECT_NEAR(Length(p), 1, kTolerance);
}

TEST(OutlineLibrary, TeethStayAboveTheirLeastHeight) {
  OutlineInput in = Input(ShapeType::Gear, 20);
  in.thickness = 0;
  const std::vector<Point3> points = Points(Build(in));
  float least = 100, most = 0;
  for (const Point3& p : points) least = std::min(least, Length(p)), most = std::max(most, Length(p));
  // Bezier arcs of under 45 degrees leave their circle by less than 1e-5 of the radius.
  EXPECT_NEAR(most - least, 0.001f, 2e-4f);
}

TEST(OutlineLibrary, StarTakesItsInnerRadiusFromThickness) {
  OutlineInput in = Input(ShapeType::Star);
  in.thickness = 0.3f;
  const Outline outline = Build(in);
  ASSERT_EQ(outline[0].knots.size(), 10u);
  for (int i = 0; i < 10; ++i) EXPECT_NEAR(Length(outline[0].knots[i].point), i % 2 ? 0.7f : 1, kTolerance);
  EXPECT_NEAR(outline[0].knots[0].point.y, 1, kTolerance);
}

TEST(OutlinePlacing, UniformIgnoresTheThreeDimensions) {
  for (const bool uniform : {true, false}) {
    OutlineInput in = Input(ShapeType::Box, 8);
    in.uniform = uniform;
    in.width = 2, in.length = 4, in.height = 6;
    const Point3 half = uniform ? Point3{4, 4, 4} : Point3{1, 2, 3};
    EXPECT_LT(Length(BoundsOf(Build(in), 0).max - half), kTolerance);
  }
}

TEST(OutlinePlacing, AxisIsWhereAFlatShapeFaces) {
  for (int axis = 0; axis < 3; ++axis) {
    OutlineInput in = Input(ShapeType::Circle);
    in.axis = axis;
    const Box3 box = BoundsOf(Build(in), 7);
    for (int i = 0; i < 3; ++i) EXPECT_NEAR(box.max[i], i == axis ? 0 : 1, kTolerance);
  }
}

TEST(OutlinePlacing, GizmoMovesPointsAndScaleFollowsIt) {
  OutlineInput in = Input(ShapeType::Hand, 7);
  in.warpAmount = 0.4f;
  const std::vector<Point3> before = Points(Build(in));
  in.gizmo.row[0] = {0, 2, 0};
  in.gizmo.row[1] = {-1, 0, 0.5f};
  in.gizmo.row[3] = {3, -4, 5};
  in.scale = 1.5f;
  const std::vector<Point3> after = Points(Build(in));
  ASSERT_EQ(before.size(), after.size());
  for (size_t i = 0; i < before.size(); ++i)
    EXPECT_LT(Length(before[i] * in.gizmo * in.scale - after[i]), 1e-4f);  // of points up to 20 units away
}

TEST(OutlinePlacing, SizeZeroCollapsesButStaysFinite) {
  for (int type = 0; type < kShapeTypeCount; ++type) {
    OutlineInput in = Input(static_cast<ShapeType>(type), 0);
    in.warpAmount = 1;
    in.corner = 1;
    for (in.warpAxis = 0; in.warpAxis < 3; ++in.warpAxis)
      for (const Point3& p : Points(Build(in))) ASSERT_EQ(Length(p), 0) << ShapeTypeName(type);
  }
}

TEST(OutlineWarp, BendsByTheSquareOfTheDistance) {
  // Whatever a shape is made of, its bent points lie on the parabola over its flat ones.
  for (const ShapeType type : {ShapeType::Rectangle, ShapeType::Cross, ShapeType::Circle, ShapeType::Arrow})
    for (int axis = 0; axis < 2; ++axis) {
      SCOPED_TRACE(testing::Message() << ShapeTypeName(static_cast<int>(type)) << " along " << axis);
      OutlineInput in = Input(type, 10);
      in.warpAmount = -0.6f;
      in.warpAxis = axis;
      for (const Point3& p : Points(Build(in))) {
        if (type == ShapeType::Cross && p.x == 0 && p.y == 0) continue;  // its upright begins off the plane
        // A quarter circle is bent exactly at its ends and middle; between them the cubic is within 2 % of the height.
        const float tolerance = type == ShapeType::Circle ? 0.06f : 1e-4f;
        EXPECT_NEAR(p.z, -0.6f * p[axis] * p[axis] / 5, tolerance);
      }
    }
}

TEST(OutlineWarp, StraightSpansBecomeCurvesWithSteps) {
  OutlineInput in = Input(ShapeType::Rectangle);
  EXPECT_EQ(Points(Build(in), 6).size(), 4u);
  in.warpAmount = 0.5f;
  EXPECT_EQ(Points(Build(in), 6).size(), 28u);
  EXPECT_EQ(Points(Build(in), 0).size(), 4u);
}

TEST(OutlineWarp, ThirdAxisTapersSolids) {
  OutlineInput in = Input(ShapeType::Box);
  in.warpAmount = -0.5f;
  in.warpAxis = 2;
  for (const Point3& p : Points(Build(in))) EXPECT_LE(std::abs(p.x), 1 - 0.5f * p.z + kTolerance);
  const Box3 box = BoundsOf(Build(in), 0);
  EXPECT_NEAR(box.max.x, 1.5f, kTolerance);
}

TEST(OutlineCorner, CutsAtTheAskedDistanceAndKeepsTangents) {
  OutlineInput in = Input(ShapeType::Rectangle, 10);
  in.corner = 2;
  const Outline outline = Build(in);
  ASSERT_EQ(outline[0].knots.size(), 8u);
  for (const Knot& k : outline[0].knots) {
    EXPECT_FALSE(k.corner);
    EXPECT_NEAR(std::min(5 - std::abs(k.point.x), 5 - std::abs(k.point.y)), 0, kTolerance);
    EXPECT_NEAR(std::max(5 - std::abs(k.point.x), 5 - std::abs(k.point.y)), 2, kTolerance);
  }
  // Each arc is a quarter circle of radius 2 about (+-3, +-3); a cubic leaves it by 3 in 10,000.
  for (const Point3& p : Points(outline)) EXPECT_NEAR(std::hypot(std::abs(p.x) - 3, std::abs(p.y) - 3), 2, 1e-3f);
}

TEST(OutlineCorner, NeverCutsMoreThanHalfAnEdge) {
  for (int type = 1; type < kShapeTypeCount; ++type) {
    SCOPED_TRACE(ShapeTypeName(type));
    OutlineInput in = Input(static_cast<ShapeType>(type), 2);
    const Outline sharp = Build(in);
    in.corner = 1e6f;
    const Outline round = Build(in);
    ASSERT_EQ(sharp.size(), round.size());
    ExpectInside(BoundsOf(round, 6), BoundsOf(sharp, 60).max + Point3{2, 2, 2});
    for (size_t s = 0; s < round.size(); ++s) {
      EXPECT_EQ(round[s].closed, sharp[s].closed);
      for (int i = 0; i < round[s].SpanCount(); ++i) EXPECT_TRUE(IsFinite(round[s].knots[i].inVec));
    }
    ExpectInside(BoundsOf(round, 6), {1, 1, 1});
  }
}

TEST(OutlineCorner, UprightsFollowRoundedCorners) {
  OutlineInput in = Input(ShapeType::Box);
  in.corner = 0.5f;
  const Outline outline = Build(in);
  for (size_t s = 2; s < outline.size(); ++s) {  // after the two rectangles
    const Point3 end = outline[s].knots[0].point;
    EXPECT_NEAR(std::hypot(std::abs(end.x) - 0.5f, std::abs(end.y) - 0.5f), 0.5f, 1e-3f);
  }
}

TEST(OutlineProperty, AnyInputGivesFiniteStrokes) {
  std::mt19937 rng(61);
  std::uniform_real_distribution<float> any(-200, 200), percent(-2, 2);
  for (int i = 0; i < 4000; ++i) {
    OutlineInput in;
    in.type = int(rng() % kShapeTypeCount);
    in.uniform = rng() % 2;
    in.size = any(rng), in.length = any(rng), in.width = any(rng), in.height = any(rng);
    in.axis = int(rng() % 3), in.warpAxis = int(rng() % 5) - 1;
    in.thickness = percent(rng), in.warpAmount = percent(rng), in.corner = any(rng), in.scale = percent(rng);
    for (const Point3& p : Points(Build(in), 3)) ASSERT_TRUE(IsFinite(p)) << ShapeTypeName(in.type) << " run " << i;
  }
}

TEST(OutlineProperty, RebuildingReplacesWhatWasThere) {
  Outline outline = Build(Input(ShapeType::SphereGeo));
  BuildOutline(Input(ShapeType::Circle), outline);
  EXPECT_EQ(outline.size(), 1u);
}

}  // namespace
}  // namespace tavrilon
