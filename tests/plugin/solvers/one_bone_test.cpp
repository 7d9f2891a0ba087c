// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "limbs.h"

namespace tavrilon {
namespace {

using namespace corvanta;

struct KnownAim {
  const char* name;
  Point3 bone, goal;
  float swivelDeg;
  bool hasTarget;
  float aimTwistDeg;
  // Where the X and Y axes of the joint point.
  Point3 x, y;
};
const KnownAim kKnownAims[] = {
    {"along X", {2, 0, 0}, {5, 0, 0}, 0, false, 0, {1, 0, 0}, {0, 1, 0}},
    {"to Y", {2, 0, 0}, {0, 5, 0}, 0, false, 0, {0, 1, 0}, {-1, 0, 0}},
    {"swivel takes Y to Z", {2, 0, 0}, {5, 0, 0}, 90, false, 0, {1, 0, 0}, {0, 0, 1}},
    {"Y towards the target", {2, 0, 0}, {5, 0, 0}, 0, true, 0, {1, 0, 0}, {0, 0, 1}},
    {"its own twist on top", {2, 0, 0}, {5, 0, 0}, 0, true, 90, {1, 0, 0}, {0, -1, 0}},
    {"a bone along Y", {0, 2, 0}, {5, 0, 0}, 0, false, 0, {0, -1, 0}, {1, 0, 0}},
    {"behind", {2, 0, 0}, {-5, 0, 0}, 0, false, 0, {-1, 0, 0}, {0, -1, 0}},
};

TEST(OneBone, KnownAims) {
  for (const KnownAim& known : kKnownAims) {
    SCOPED_TRACE(known.name);
    Limb limb(2);
    limb.bones[1].pos = known.bone;
    limb.goalTM = TransMatrix(known.goal);
    limb.swivel = known.swivelDeg * kDegToRad;
    limb.hasTarget = known.hasTarget;
    limb.target = {3, 0, 7};
    limb.aimTwist = known.aimTwistDeg * kDegToRad;
    limb.Solve();
    // Quarter turns in single precision.
    EXPECT_LT(Length(limb.pose[0].tm.GetRow(0) - known.x), 1e-6f);
    EXPECT_LT(Length(limb.pose[0].tm.GetRow(1) - known.y), 1e-6f);
    EXPECT_LT(Length(Normalize(limb.End()) - Normalize(known.goal)), 1e-6f);
  }
}

}  // namespace
}  // namespace tavrilon
