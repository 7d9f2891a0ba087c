// SPDX-License-Identifier: MIT
#include "plugin/solvers/match.h"

#include <gtest/gtest.h>

#include "limbs.h"

namespace tavrilon {
namespace {

using namespace corvanta;

// Solving, matching and solving again in single precision, for numbers of limbs up to 10 units long; a bend near
// straight answers by the root of its error.
constexpr float kSamePose = 3e-3f;

void ExpectSamePose(const std::vector<JointPose>& a, const std::vector<JointPose>& b) {
  for (size_t k = 0; k < a.size(); ++k)
    for (int r = 0; r < 4; ++r) ASSERT_LT(Length(a[k].tm.GetRow(r) - b[k].tm.GetRow(r)), kSamePose) << k << ' ' << r;
}

class MatchOf : public testing::TestWithParam<size_t> {
 protected:
  /// Every third limb bends in several planes.
  Limb Next() {
    Limb limb = limbs_.Next(GetParam());
    limb.parentTM.SetTrans(limbs_.Place() * 0.1f);
    if (++made_ % 3 == 0)
      for (LimbJoint& joint : limb.bones) joint.preferred = QuatFromAngAxis({limbs_.Place(), 0.3f}) * joint.preferred;
    limb.preferredSpace = limbs_.Turn();
    limbs_.PutGoal(limb, (0.6f + 0.3f * limbs_.part(limbs_.rng)) * limb.Length());
    return limb;
  }
  RandomLimbs limbs_;
  int made_ = 0;
};
INSTANTIATE_TEST_SUITE_P(Joints, MatchOf, testing::Values(2, 3, 4, 5, 8));

// One bone has no reach to soften.
class BentMatchOf : public MatchOf {};
INSTANTIATE_TEST_SUITE_P(Joints, BentMatchOf, testing::Values(3, 4, 5, 8));

TEST_P(MatchOf, SwivelComesBack) {
  for (int i = 0; i < 200; ++i) {
    SCOPED_TRACE(i);
    Limb limb = Next();
    limb.softness = i % 4 ? 0 : 0.3f;
    const auto pose = limb.Solve();
    const float swivel = limb.swivel;
    limb.swivel = swivel + 2 * kTwoPi + 0.5f;
    EXPECT_NEAR(MatchSwivel(limb, pose, limb.work), swivel + 2 * kTwoPi, 1e-2f) << "the nearest whole turn";
    limb.swivel = 0;
    limb.swivel = MatchSwivel(limb, pose, limb.work);
    ExpectSamePose(pose, limb.Solve());
  }
}

TEST_P(MatchOf, TargetComesBack) {
  for (int i = 0; i < 200; ++i) {
    SCOPED_TRACE(i);
    Limb limb = Next();
    limb.hasTarget = true;
    limb.target = limbs_.Place();
    limb.aimTwist = limb.swivel;
    const auto pose = limb.Solve();
    limb.target = MatchTarget(limb, pose, 0.5f, limb.work);
    ExpectSamePose(pose, limb.Solve());
  }
}

// An FK pose in the plane of the preferred bend is what the matched limb solves to: bent or straight, whatever softness
// and stretch do to the goal.
TEST_P(MatchOf, MatchedIKLooksLikeFK) {
  for (int i = 0; i < 300; ++i) {
    SCOPED_TRACE(i);
    Limb limb = limbs_.Next(GetParam());
    limb.parentTM.SetTrans(limbs_.Place() * 0.1f);
    const float part = i % 10 ? limbs_.part(limbs_.rng) : 0;
    for (size_t k = 1; k < limb.Last(); ++k)
      limb.bones[k].rot = Slerp(Quat(), limb.bones[k].preferred, part);  // the many-bone way of sharing, too
    limb.blend = 0;
    const auto fk = limb.Solve();
    limb.blend = 1;
    limb.softness = i % 3 ? 0.2f : 0;
    limb.autoStretch = 0.25f * static_cast<float>(i % 4);
    limb.goalTM = OrthoQuat(fk.back().tm) == Quat() ? Matrix3() : QuatMatrix(OrthoQuat(fk.back().tm));
    limb.goalTM.SetTrans(MatchGoal(limb, fk));
    limb.hasTarget = i % 2;
    if (limb.hasTarget) limb.target = MatchTarget(limb, fk, 0.5f, limb.work);
    if (!limb.hasTarget) limb.swivel = MatchSwivel(limb, fk, limb.work);
    limb.Solve();
    // Softness without stretch never lets a limb come nearer to straight than 1e-4 of its zone.
    ASSERT_LT(Length(limb.End() - fk.back().tm.GetTrans()) / limb.Length(), 1e-4f);
    const bool grows = limb.softness > 0 && limb.autoStretch > 0;  // the bones do, so the middle joints differ
    if (!grows && part > 0.1f) ExpectSamePose(fk, limb.pose);
    // Straight: the roll is the same, the bend within what the end's accuracy allows.
    if (!grows && part == 0) {
      ASSERT_LT(Length(fk[0].tm.GetRow(1) - limb.pose[0].tm.GetRow(1)), 0.05f);
    }
  }
}

TEST_P(BentMatchOf, GoalComesBackThroughSoftnessAndStretch) {
  for (int i = 0; i < 300; ++i) {
    Limb limb = Next();
    for (LimbJoint& joint : limb.bones) joint.pos = {1, 0, 0};
    limb.softness = 0.3f * limbs_.part(limbs_.rng);
    limb.autoStretch = 0.2f * static_cast<float>(i % 6);
    // Farther than three zones the end tells little of the goal unless the limb stretches.
    limbs_.PutGoal(limb, (1 + limb.softness * 2 * limbs_.unit(limbs_.rng)) * limb.Length());
    const auto pose = limb.Solve();
    ASSERT_LT(Length(MatchGoal(limb, pose) - limb.goalTM.GetTrans()) / limb.Length(), 1e-3f) << i;
  }
}

TEST(Match, DegenerateLimbsStayFinite) {
  for (const size_t count : {2, 3, 5})
    for (const float bone : {0.0f, 1.0f})
      for (const float bend : {0.0f, -0.5f, -kPi}) {
        Limb limb(count);
        for (size_t k = 1; k < count; ++k) {
          limb.bones[k].pos = {bone, 0, 0};
          limb.bones[k].rot = limb.bones[k].preferred = QuatFromMatrix(RotateZMatrix(bend));
        }
        limb.softness = limb.autoStretch = 0.5f;
        limb.blend = 0;
        limb.Solve();
        EXPECT_TRUE(std::isfinite(MatchSwivel(limb, limb.pose, limb.work)));
        EXPECT_TRUE(std::isfinite(LengthSquared(MatchTarget(limb, limb.pose, 0.5f, limb.work))));
        EXPECT_TRUE(std::isfinite(LengthSquared(MatchGoal(limb, limb.pose))));
      }
}

// The elbow of an even limb at the side of Z: a quarter turn, the target half a length beside it.
TEST(Match, KnownPose) {
  Limb limb = EvenLimb();
  limb.swivel = kHalfPi;
  limb.Solve();
  limb.swivel = 0;
  EXPECT_NEAR(MatchSwivel(limb, limb.pose, limb.work), kHalfPi, 1e-5f);
  EXPECT_LT(Length(MatchTarget(limb, limb.pose, 0.5f, limb.work) - Point3{1.5f, 0, 1.322876f + 2}), 1e-5f);
  EXPECT_EQ(MatchGoal(limb, limb.pose), limb.End());
}

}  // namespace
}  // namespace tavrilon
