// SPDX-License-Identifier: MIT
#include "plugin/constraints/root_transform.h"

#include "plugin/constraints/constraint_values_test.h"
#include "plugin/frame/rig_maths.h"

namespace tavrilon {
namespace {

using namespace corvanta;
using namespace constraint_tests;

Matrix3 At(const Point3& place, float turnZ = 0, float lean = 0) {
  Matrix3 tm = RotateXMatrix(lean) * RotateZMatrix(turnZ);
  tm.SetTrans(place);
  return tm;
}

// Hips at (10, 20, 90) that look 0.5 to the left, over a floor with Z up.
RootTransformIn Hips(const Point3& place = {10, 20, 90}, float turn = 0.5f) {
  RootTransformIn in;
  in.hasTarget = true;
  in.target = At(place, turn);
  return in;
}

template <class Edit>
RootTransformIn With(RootTransformIn in, Edit&& edit) {
  edit(in);
  return in;
}

struct KnownRoot {
  const char* name;
  RootTransformIn in;
  Point3 place;
  float turn;
};

const KnownRoot kKnown[] = {
    {"follows the hips", Hips(), {10, 20, 90}, 0.5f},
    {"no travel", With(Hips(), [](auto& in) { in.followHorizontal = 0; }), {0, 0, 90}, 0.5f},
    {"half the travel", With(Hips(), [](auto& in) { in.followHorizontal = 0.5f; }), {5, 10, 90}, 0.5f},
    {"half the turning", With(Hips(), [](auto& in) { in.followTurning = 0.5f; }), {10, 20, 90}, 0.25f},
    {"a height not followed is the ground's",
     With(Hips(),
          [](auto& in) {
            in.followVertical = 0;
            in.groundOffset = 3;
          }),
     {10, 20, 3},
     0.5f},
    {"half the height above the ground",
     With(Hips(),
          [](auto& in) {
            in.followVertical = 0.5f;
            in.groundOffset = 10;
          }),
     {10, 20, 50},
     0.5f},
    {"an unused ground lies at 0",
     With(Hips(),
          [](auto& in) {
            in.followVertical = 0.5f;
            in.groundOffset = 10;
            in.useGround = false;
          }),
     {10, 20, 45},
     0.5f},
    {"height offset", With(Hips(), [](auto& in) { in.verticalOffset = -20; }), {10, 20, 70}, 0.5f},
    {"under the ground is held", Hips({10, 20, -5}), {10, 20, 0}, 0.5f},
    {"under an unused ground is followed",
     With(Hips({10, 20, -5}), [](auto& in) { in.useGround = false; }),
     {10, 20, -5},
     0.5f},
    {"beyond half a turn comes the short way", Hips({0, 0, 0}, 3.5f), {0, 0, 0}, 3.5f - kTwoPi},
    {"a lean does not turn",
     With(Hips(),
          [](auto& in) {
            in.target = At({0, 0, 1}, 0, 1.2f);
          }),
     {0, 0, 1},
     0},
    {"upside down does not turn",
     With(Hips(),
          [](auto& in) {
            in.target = At({0, 0, 1}, 0, kPi);
          }),
     {0, 0, 1},
     0},
    {"the rest pose is no turn and no height",
     With(Hips({10, 20, 95}, 0.8f),
          [](auto& in) {
            in.useRest = true;
            in.rest = At({1, 2, 90}, 0.3f);
          }),
     {10, 20, 5},
     0.5f},
    {"in the world a parent turned by half does not count",
     With(Hips({1, 2, 3}, kHalfPi),
          [](auto& in) {
            in.inWorld = true;
            in.parent = At({5, 5, 5}, kPi);
          }),
     {1, 2, 3},
     kHalfPi},
    {"no target",
     With(RootTransformIn(),
          [](auto& in) {
            in.verticalOffset = 8;
            in.groundOffset = 2;
            in.followVertical = 0.5f;
            in.rest = At({9, 9, 9}, 1);
            in.useRest = true;
          }),
     {0, 0, 5},
     0},
};

TEST(RootTransform, KnownCases) {
  for (const KnownRoot& known : kKnown) {
    SCOPED_TRACE(known.name);
    ExpectNear(RootTransform(known.in), At(known.place, known.turn));
  }
}

// The same hips over a floor whose vertical axis is another one give the same root, in those axes.
TEST(RootTransform, AnyAxisCanBeTheVerticalOne) {
  std::mt19937 rng(5);
  for (int i = 0; i < 50; ++i) {
    RootTransformIn in;
    in.hasTarget = true;
    in.target = RandomRigid(rng);
    in.followHorizontal = Random(rng, 0, 1);
    in.followVertical = Random(rng, 0, 1);
    in.followTurning = Random(rng, 0, 1);
    in.groundOffset = Random(rng, -50, 50);
    const Matrix3 upright = RootTransform(in);
    Matrix3 cycle;  // X to Y, Y to Z, Z to X
    cycle.row[0] = {0, 1, 0};
    cycle.row[1] = {0, 0, 1};
    cycle.row[2] = {1, 0, 0};
    Matrix3 change = cycle;
    for (const int axis : {0, 1}) {
      RootTransformIn turned = in;
      turned.verticalAxis = axis;
      turned.target = Inverse(change) * in.target * change;
      ExpectNear(RootTransform(turned), Inverse(change) * upright * change, axis == 0 ? "X up" : "Y up");
      change = change * cycle;
    }
  }
}

// A scene that is turned about the vertical axis and moved over the floor takes its root along.
TEST(RootTransform, CommutesWithTurnsOfTheScene) {
  std::mt19937 rng(6);
  for (int i = 0; i < 200; ++i) {
    RootTransformIn in;
    in.hasTarget = true;
    in.target = RandomRigid(rng);
    in.rest = RandomRigid(rng);
    in.useRest = i % 2 == 0;
    in.inWorld = i % 4 < 2;
    in.parent = RandomRigid(rng);
    in.followVertical = Random(rng, 0, 1);
    in.groundOffset = Random(rng, -50, 50);
    const Matrix3 scene = At({Random(rng, -50, 50), Random(rng, -50, 50), 0}, Random(rng, -3, 3));
    RootTransformIn moved = in;
    moved.target = in.target * scene;
    moved.parent = in.parent * scene;
    ExpectNear(RootTransform(moved), RootTransform(in) * scene);
  }
}

TEST(RootTransform, TwistIsThePartAboutTheAxis) {
  std::mt19937 rng(7);
  for (int i = 0; i < 200; ++i) {
    const float angle = Random(rng, -3, 3);
    const float way = Random(rng, -3, 3);
    const Matrix3 swing = MakeMatrix(QuatFromAngAxis({{std::cos(way), std::sin(way), 0}, Random(rng, -1, 1)}));
    const Quat q = OrthoQuat(swing * RotateZMatrix(angle));
    // A swing of up to 1 radian leaves the twist well told: some rounding of a unit quaternion.
    EXPECT_NEAR(TwistAngle(q, 2), angle, 1e-4f);
  }
}

}  // namespace
}  // namespace tavrilon
