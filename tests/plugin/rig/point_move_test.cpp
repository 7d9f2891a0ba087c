// SPDX-License-Identifier: MIT
#include "plugin/rig/point_move.h"

#include <gtest/gtest.h>

#include <random>

#include "plugin/rig/point_place.h"
#include "plugin/rig/template.h"
#include "plugin/rig/type_defaults.h"

namespace tavrilon {
namespace {

struct Mover {
  RigPoints points = BuildTemplate(RigType::Biped, ParamsForType(RigType::Biped), {}, {});
  PointMove move;

  explicit Mover(const Point3& by) {
    move.size = 200;
    move.transform.SetTrans(by * 200);
  }
  Mover& Select(const wchar_t* name) {
    points[FindPoint(points, name)].selected = 1;
    return *this;
  }
  Point3 At(const wchar_t* name) const { return points[FindPoint(points, name)].position; }
};

void ExpectNear(const Point3& a, const Point3& b) {
  EXPECT_LT(Length(a - b), 1e-6f) << a.x << ' ' << a.y << ' ' << a.z;
}

const Point3 kBy = {.01f, .02f, .03f};
const Point3 kMirrored = {-.01f, .02f, .03f};

TEST(PointMove, ChildrenAndMirrorAsSwitched) {
  for (const bool children : {false, true})
    for (const bool mirror : {false, true}) {
      SCOPED_TRACE(testing::Message() << children << mirror);
      const Mover before(kBy);
      Mover after = before;
      after.Select(L"r_forearm_1").move.affectChildren = children;
      after.move.affectMirror = mirror;
      ASSERT_TRUE(MovePoints(after.points, after.move));
      ExpectNear(after.At(L"r_forearm_1") - before.At(L"r_forearm_1"), kBy);
      ExpectNear(after.At(L"r_finger_2_3") - before.At(L"r_finger_2_3"), children ? kBy : Point3{});
      ExpectNear(after.At(L"l_forearm_1") - before.At(L"l_forearm_1"), mirror ? kMirrored : Point3{});
      ExpectNear(after.At(L"l_finger_2_3") - before.At(L"l_finger_2_3"), mirror && children ? kMirrored : Point3{});
      EXPECT_EQ(after.At(L"r_upper_arm_1"), before.At(L"r_upper_arm_1"));
    }
}

TEST(PointMove, BothMembersSelectedGoTheRightOnesWay) {
  const Mover before(kBy);
  Mover after = before;
  after.Select(L"l_thigh_1").Select(L"r_thigh_1");
  MovePoints(after.points, after.move);
  ExpectNear(after.At(L"r_thigh_1") - before.At(L"r_thigh_1"), kBy);
  ExpectNear(after.At(L"l_thigh_1") - before.At(L"l_thigh_1"), kMirrored);
}

// With the parent off the middle, mirroring keeps the offset from the parent, or the distance from the plane.
TEST(PointMove, MirrorIsRelativeToTheParentOrTheBody) {
  for (const bool relative : {true, false}) {
    Mover m(kBy);
    m.points[FindPoint(m.points, L"pelvis")].position.x = .5f;
    m.move.mirrorRelativeToParent = relative;
    m.move.affectChildren = false;
    m.Select(L"r_thigh_1");
    MovePoints(m.points, m.move);
    const float right = m.At(L"r_thigh_1").x;
    EXPECT_NEAR(m.At(L"l_thigh_1").x, relative ? 1.0f - right : -right, 1e-6f);
  }
}

TEST(PointMove, PointsWithoutMirrorAndInBetweenPoints) {
  const Mover before(kBy);
  Mover after = before;
  after.Select(L"head").Select(L"spine_bone_3");
  MovePoints(after.points, after.move);
  ExpectNear(after.At(L"head") - before.At(L"head"), kBy);
  EXPECT_EQ(after.At(L"spine_bone_3"), before.At(L"spine_bone_3"));
}

TEST(PointMove, DroppedWhenItCannotBeDone) {
  const Mover before(kBy);
  Mover sizeless = before;
  sizeless.Select(L"head").move.size = 0;
  EXPECT_FALSE(MovePoints(sizeless.points, sizeless.move));
  Mover infinite = before;
  infinite.Select(L"head").move.transform.row[3].x = std::numeric_limits<float>::infinity();
  EXPECT_FALSE(MovePoints(infinite.points, infinite.move));
  EXPECT_EQ(infinite.At(L"head"), before.At(L"head"));
  Mover nothing = before;
  EXPECT_FALSE(MovePoints(nothing.points, nothing.move));
}

// Whatever is selected and however it is turned, a symmetric template stays symmetric.
TEST(PointMove, SymmetryIsKept) {
  std::mt19937 rng(11);
  for (int round = 0; round < 50; ++round) {
    Mover m({});
    for (RigPoint& point : m.points) point.selected = rng() % 8 == 0 && point.Side() != kSideCenter;
    m.move.affectChildren = rng() % 2;
    m.move.mirrorRelativeToParent = rng() % 2;
    m.move.transform = corvanta::RotateYMatrix(.3f) * corvanta::RotateXMatrix(.2f) * corvanta::TransMatrix({3, 4, 5});
    MovePoints(m.points, m.move);
    for (const RigPoint& point : m.points) {
      if (point.mirror < 0) continue;
      const Point3 other = m.points[point.mirror].position;
      ExpectNear(point.position, {-other.x, other.y, other.z});
    }
  }
}

}  // namespace
}  // namespace tavrilon
