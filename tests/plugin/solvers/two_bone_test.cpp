// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "limbs.h"

namespace tavrilon {
namespace {

using namespace corvanta;

// Numbers worked out by hand have six decimals.
constexpr float kSixDecimals = 1e-5f;

void ExpectSame(const Quat& a, const Quat& b) {
  const Quat c = MakeClosest(b, a);
  for (int i = 0; i < 4; ++i) EXPECT_NEAR(a[i], c[i], kSixDecimals) << i;
}

struct KnownPose {
  const char* name;
  float swivelDeg;
  bool hasTarget;
  Point3 target;
  Point3 elbow;
  Quat upper;
};
const KnownPose kKnownPoses[] = {
    {"flat", 0, false, {}, {1.5f, 1.322876f, 0}, {0, 0, -0.353553f, 0.935414f}},
    {"swivel of a quarter", 90, false, {}, {1.5f, 0, 1.322876f}, {-0.661438f, 0.25f, -0.25f, 0.661438f}},
    {"target above", 0, true, {1, 0, 5}, {1.5f, 0, 1.322876f}, {-0.661438f, 0.25f, -0.25f, 0.661438f}},
};

TEST(TwoBone, KnownPoses) {
  for (const KnownPose& known : kKnownPoses) {
    SCOPED_TRACE(known.name);
    Limb limb = EvenLimb();
    limb.swivel = known.swivelDeg * kDegToRad;
    limb.hasTarget = known.hasTarget;
    limb.target = known.target;
    const auto& pose = limb.Solve();
    EXPECT_LT(Length(pose[1].tm.GetTrans() - known.elbow), kSixDecimals);
    ExpectSame(pose[0].rot, known.upper);
    ExpectSame(pose[1].rot, {0, 0, 0.661438f, 0.75f});
    EXPECT_LT(Length(limb.End() - Point3{3, 0, 0}), kSixDecimals);
  }
}

TEST(TwoBone, ElbowPointsAtTheTarget) {
  RandomLimbs limbs;
  for (int i = 0; i < 300; ++i) {
    Limb limb = limbs.Next(3);
    limb.hasTarget = true;
    limb.target = limbs.Place();
    const Point3 root = limb.Root();
    const Point3 line = Normalize(limb.goalTM.GetTrans() - root);
    const auto aside = [&](const Point3& p) { return (p - root) - line * Dot(p - root, line); };
    const Point3 elbow = aside(limb.Solve()[1].tm.GetTrans()), target = aside(limb.target);
    if (Length(elbow) < 0.02f || Length(target) < 0.02f) continue;
    ASSERT_GT(Dot(Normalize(elbow), Normalize(target)), 0.999f) << i;
  }
}

}  // namespace
}  // namespace tavrilon
