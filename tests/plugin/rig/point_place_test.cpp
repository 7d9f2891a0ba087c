// SPDX-License-Identifier: MIT
#include "plugin/rig/point_place.h"

#include <gtest/gtest.h>

#include "plugin/rig/template.h"
#include "plugin/rig/type_defaults.h"

namespace tavrilon {
namespace {

RigPoints Biped() { return BuildTemplate(RigType::Biped, ParamsForType(RigType::Biped), {}, {}); }

RigPoint Make(Point3 position, int parent, int flags = 0, float fraction = 0) {
  RigPoint point;
  point.position = position;
  point.parent = parent;
  point.flags = flags;
  point.fraction = fraction;
  return point;
}

void ExpectNear(const Point3& a, const Point3& b) {
  EXPECT_LT(Length(a - b), 1e-6f) << a.x << ' ' << a.y << ' ' << a.z;
}

TEST(PointPlace, InBetweenPointsGoStraightWithoutTheSmoothFlag) {
  const RigPoints points = {Make({0, 0, 0}, -1), Make({9, 9, 9}, 0, kPointInBetween, .25f), Make({4, 0, 8}, 0),
                            Make({}, 2, kPointInBetween, .5f), Make({}, -1, kPointInBetween, .5f)};
  const PointPlaces places(points);
  ExpectNear(places[1], {1, 0, 2});  // its own position does not count
  ExpectNear(places[3], {4, 0, 8});  // no next point: at the parent
  ExpectNear(places[4], {});         // no parent
}

TEST(PointPlace, NextPrefersTheSameComponentThenTheOrder) {
  RigPoints points = {Make({}, -1), Make({1, 0, 0}, 0), Make({2, 0, 0}, 0), Make({3, 0, 0}, 0)};
  points[0].component = points[2].component = 7;
  EXPECT_EQ(PointPlaces(points).Next(0), 2);
  points[0].component = 8;
  EXPECT_EQ(PointPlaces(points).Next(0), 1);
  EXPECT_EQ(PointPlaces(points).Next(3), -1);
}

TEST(PointPlace, FollowTakesThePlaceOfTheOther) {
  RigPoints points = {Make({1, 2, 3}, -1), Make({5, 5, 5}, -1), Make({6, 6, 6}, -1)};
  points[1].follow = 2;
  points[2].follow = 0;
  ExpectNear(PointPlaces(points)[1], {1, 2, 3});
}

// Links that cannot be worked out must end, and give numbers.
TEST(PointPlace, CirclesAndStrayLinksEnd) {
  RigPoints points = {Make({1, 0, 0}, 1, kPointInBetween, .5f), Make({2, 0, 0}, 0, kPointInBetween | kPointSmooth, .5f),
                      Make({3, 0, 0}, 2, kPointSmooth), Make({4, 0, 0}, 99), Make({5, 0, 0}, -7)};
  points[2].aim = 2;
  points[3].follow = 4;
  points[4].follow = 3;
  const PointPlaces places(points);
  for (size_t i = 0; i < points.size(); ++i) EXPECT_TRUE(std::isfinite(places[static_cast<int>(i)].x));
  EXPECT_LE(places.Row(points, 2).size(), 2u);
}

TEST(PointPlace, LongChainsOfLinksNeedNoDepth) {
  RigPoints points(100000, Make({}, -1));
  for (size_t i = 0; i + 1 < points.size(); ++i) points[i].follow = static_cast<int>(i) + 1;
  points.back().position = {1, 2, 3};
  ExpectNear(PointPlaces(points)[0], {1, 2, 3});
}

// A spine of three controls and six bones: where the bones rest along the curve.
TEST(PointPlace, SpineBonesRestAtTheKnownPlaces) {
  const RigPoints points = Biped();
  const PointPlaces places(points);
  const std::vector<int> row = places.Row(points, FindPoint(points, L"spine_2"));
  ASSERT_EQ(row.size(), 3u) << "the row ends before the neck";
  EXPECT_NEAR(RowLength(points, places, row), .2623f, .00005f);
  std::vector<int> bones;
  for (int j = 0; j < 6; ++j) bones.push_back(FindPoint(points, PointName(L"spine_bone", kSideCenter, j)));
  const float told[] = {0, .1675f, .3346f, .5016f, .6675f, .8336f};
  const std::vector<float> percents = BonePercents(points, places, row, bones);
  for (int j = 0; j < 6; ++j) EXPECT_NEAR(percents[j], told[j], .00006f) << j;
}

TEST(PointPlace, NeckRowEndsAtTheHead) {
  TemplateParams params = ParamsForType(RigType::Biped);
  params[rig_param::kNeckControls] = 3;
  params[rig_param::kUseNeckBones] = 1;
  const RigPoints points = BuildTemplate(RigType::Biped, params, {}, {});
  const std::vector<int> row = PointPlaces(points).Row(points, FindPoint(points, L"neck_1"));
  ASSERT_EQ(row.size(), 4u);
  EXPECT_EQ(points[row.back()].name, L"head");
}

// Moving a control drags the bones of its own row and leaves the others.
TEST(PointPlace, BonesFollowTheirRow) {
  RigPoints points = Biped();
  const int bone = FindPoint(points, L"spine_bone_6");
  const PointPlaces before(points);
  points[FindPoint(points, L"neck_1")].position.y += 1;
  EXPECT_EQ(PointPlaces(points)[bone], before[bone]);
  points[FindPoint(points, L"spine_3")].position.y += 1;
  EXPECT_GT(PointPlaces(points)[bone].y, before[bone].y + .1f);
}

TEST(TangentRule, EndsAimAtTheirNeighboursTangent) {
  const Point3 row[] = {{0, 0, 0}, {1, 1, 0}, {2, 0, 0}};
  const auto at = [&](int i) { return row[i]; };
  const float third = std::sqrt(2.0f) / 3;
  ExpectNear(SmoothTangent(at, 3, 1).out, {third, 0, 0});
  ExpectNear(SmoothTangent(at, 3, 1).in, {-third, 0, 0});
  ExpectNear(SmoothTangent(at, 3, 0).out, {(1 - third) / 2, .5f, 0});
  ExpectNear(SmoothTangent(at, 3, 2).in, {-(1 - third) / 2, .5f, 0});
  ExpectNear(SmoothTangent(at, 2, 0).out, {1 / 3.0f, 1 / 3.0f, 0});
  ExpectNear(SmoothTangent(at, 2, 1).in, {-1 / 3.0f, -1 / 3.0f, 0});
  ExpectNear(SmoothTangent(at, 1, 0).out, {});
}

TEST(TangentRule, LengthOfKnownCurves) {
  const BezierSpan straight = {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {3, 0, 0}};
  EXPECT_NEAR(BezierLength(straight), 3, 1e-5f);
  EXPECT_NEAR(BezierLength(straight, .25f, .5f), .75f, 1e-5f);
  // The usual cubic of a quarter circle errs by 0.02 percent of the radius.
  constexpr float k = .5522848f;
  EXPECT_NEAR(BezierLength({{1, 0, 0}, {1, k, 0}, {k, 1, 0}, {0, 1, 0}}), corvanta::kHalfPi, 3e-4f);
}

}  // namespace
}  // namespace tavrilon
