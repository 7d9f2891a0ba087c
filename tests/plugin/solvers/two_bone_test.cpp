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

// A limb whose preferred pose is its FK pose, with goal and target on that pose, keeps it: whichever way the bones run
// in their joints and about whichever axis they bend.
TEST(TwoBone, TheRestIsItsOwnSolution) {
  RandomLimbs limbs;
  int bent = 0;
  for (int i = 0; i < 300; ++i) {
    Limb limb = limbs.Next(3);
    limb.bones[1].pos = limbs.Place() * 0.2f;
    limb.bones[2].pos = limbs.Place() * 0.2f;
    for (LimbJoint& joint : limb.bones) joint.preferred = joint.rot;
    limb.blend = 0;
    const std::vector<JointPose> rest = limb.Solve();
    const Point3 root = rest[0].tm.GetTrans(), elbow = rest[1].tm.GetTrans(), end = rest[2].tm.GetTrans();
    const Point3 upper = Normalize(elbow - root), lower = Normalize(end - elbow);
    if (Length(Cross(upper, lower)) < 0.1f) continue;
    ++bent;
    limb.blend = 1;
    limb.hasTarget = true;
    limb.target = elbow + upper - lower;
    limb.goalTM = rest[2].tm;
    const std::vector<JointPose>& pose = limb.Solve();
    for (size_t j = 0; j < 3; ++j)
      for (int r = 0; r < 4; ++r)
        // Places of up to 35 units, and a reach that is as exact as its square root allows.
        ASSERT_LT(Length(pose[j].tm.GetRow(r) - rest[j].tm.GetRow(r)), 2e-3f) << i << " joint " << j << " row " << r;
  }
  EXPECT_GT(bent, 200);
}

}  // namespace
}  // namespace tavrilon
