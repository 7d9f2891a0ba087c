// SPDX-License-Identifier: MIT
#include "plugin/controllers/euler_write.h"

#include <gtest/gtest.h>

#include <limits>

#include "plugin/controllers/control_values_test.h"

namespace tavrilon {
namespace {

using namespace corvanta;

Point3 Radians(float x, float y, float z) { return Point3{x, y, z} * kDegToRad; }

struct KnownTurn {
  const char* name;
  Point3 axis;
  Point3 degrees;
};
// From XYZ (30, 40, 50), a turn of +20 degrees.
const KnownTurn kTurns[] = {
    {"Z ring", {0, 0, 1}, {30, 40, 30}},
    {"Z ring, against it", {0, 0, -1}, {30, 40, 70}},
    {"Y ring", {-0.766044f, 0.642788f, 0}, {30, 20, 50}},
    {"X ring", {0.492404f, 0.586824f, -0.642788f}, {10, 40, 50}},
    {"X ring, not of unit length", {4.92404f, 5.86824f, -6.42788f}, {10, 40, 50}},
    {"no ring", {1, 1, 1}, {9.17235f, 37.8716f, 25.1953f}},
};
TEST(EulerWrite, KnownTurns) {
  for (const KnownTurn& turn : kTurns) {
    SCOPED_TRACE(turn.name);
    Point3 e = Radians(30, 40, 50);
    TurnAngles(e, {turn.axis, 20 * kDegToRad}, kXYZ, false);
    // Half a thousandth of a degree: the last digits of the table, and single precision arcs.
    EXPECT_TRUE(IsNear(e * kRadToDeg, turn.degrees, 5e-4f))
        << e.x * kRadToDeg << ' ' << e.y * kRadToDeg << ' ' << e.z * kRadToDeg;
  }
}

// Whatever the order and the axis, the orientation turns as asked.
TEST(EulerWrite, OrientationTurns) {
  std::mt19937 rng(11);
  std::uniform_real_distribution<float> angle(-6, 6);
  for (int order = 0; order < 9; ++order)
    for (int i = 0; i < 300; ++i) {
      Point3 e = RandomPoint(rng, -4, 4);
      const AngAxis turn{Normalize(RandomPoint(rng, -1, 1)), angle(rng)};
      const Quat expected = EulerToQuat(e, order) * QuatFromAngAxis(turn);
      TurnAngles(e, turn, order, false);
      // An axis within 0.81 degrees of a ring is taken for the ring, so up to 0.0071 of the turn may be lost.
      ASSERT_TRUE(IsNear(EulerToQuat(e, order), expected, 0.05f)) << order << ' ' << i;
      Point3 set = e;
      SetAngles(set, expected, order);
      ASSERT_TRUE(IsNear(EulerToQuat(set, order), expected, 2e-4f)) << order << ' ' << i;
    }
}

TEST(EulerWrite, GimbalMarkTurnsOneAngle) {
  for (int order = 0; order < 9; ++order)
    for (int axis = 0; axis < 3; ++axis) {
      SCOPED_TRACE(testing::Message() << "order " << order << " axis " << axis);
      int position = -1;
      for (int i = 2; i >= 0; --i)
        if (kEulerAxes[order][i] == axis) position = i;
      if (position < 0) continue;  // XYX has no Z
      Point3 e = Radians(400, 30, -50), expected = e;
      expected[position] -= 0.25f;
      TurnAngles(e, {GimbalMark(axis), 0.25f}, order, true);
      EXPECT_TRUE(IsNear(e, expected, 1e-6f));
    }
  EXPECT_EQ(GimbalMarkedAxis({1, 0, 0}), -1);
  EXPECT_EQ(GimbalMarkedAxis({0.999f, 0, std::numeric_limits<float>::min()}), -1);
  Point3 e = Radians(0, 90, 0), unmarked = e;
  TurnAngles(e, {GimbalMark(0), 0.25f}, kXYZ, false);
  TurnAngles(unmarked, {{1, 0, 0}, 0.25f}, kXYZ, false);
  EXPECT_TRUE(IsNear(e, unmarked, 1e-6f));  // outside gimbal coordinates the mark means nothing
}

// 350 degrees about a free axis in one turn lead where 35 turns of 10 degrees lead: a single jump would end 10 degrees
// the other way.
TEST(EulerWrite, LargeTurnsStayContinuous) {
  const Point3 axis = Normalize(Point3{0.2f, 0.3f, 1});
  Point3 atOnce = Radians(5, 10, 15), small = atOnce;
  TurnAngles(atOnce, {axis, -350 * kDegToRad}, kXYZ, false);
  for (int i = 0; i < 35; ++i) TurnAngles(small, {axis, -10 * kDegToRad}, kXYZ, false);
  EXPECT_TRUE(IsNear(atOnce, small, 2e-3f));
  EXPECT_GT(atOnce.z * kRadToDeg, 330);
}

TEST(EulerWrite, SettingKeepsTurnsBeyondACircle) {
  Point3 e = Radians(400, 10, -380);
  SetAngles(e, EulerToQuat(Radians(41, 11, -21)), kXYZ);
  EXPECT_TRUE(IsNear(e * kRadToDeg, {401, 11, -381}, 1e-3f));
  Point3 repeated = Radians(400, 30, 20);
  TurnAngles(repeated, {Normalize(Point3{1, 1, 1}), 0.1f}, kXYX, false);
  EXPECT_GT(repeated.x, kTwoPi);  // whole turns are put back
}

TEST(EulerWrite, TracksAndAnglesMapBothWays) {
  const Point3 tracks{1, 2, 3};
  EXPECT_TRUE(TracksToAngles(tracks, kZYX) == (Point3{3, 2, 1}));
  EXPECT_TRUE(TracksToAngles(tracks, kYZX) == (Point3{2, 3, 1}));
  EXPECT_TRUE(TracksToAngles(tracks, kXYX) == tracks);
  for (int order = 0; order < 9; ++order) EXPECT_TRUE(AnglesToTracks(TracksToAngles(tracks, order), order) == tracks);
}

TEST(EulerWrite, HostileTurnsEnd) {
  const float inf = std::numeric_limits<float>::infinity();
  for (const AngAxis& turn : {AngAxis{{1, 1, 0}, inf}, AngAxis{{1, 1, 0}, std::nanf("")}, AngAxis{{inf, 0, 1}, 1}}) {
    Point3 e{1, 2, 3};
    TurnAngles(e, turn, kXYZ, false);
    EXPECT_TRUE(e == (Point3{1, 2, 3}));
  }
  Point3 e;
  TurnAngles(e, {{1, 1, 1}, 1e30f}, kXYZ, false);
  EXPECT_TRUE(std::isfinite(LengthSquared(e)));
}

}  // namespace
}  // namespace tavrilon
