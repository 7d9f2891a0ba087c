// SPDX-License-Identifier: MIT
// What limbs of every length promise alike.
#include "plugin/solvers/limb.h"

#include <gtest/gtest.h>

#include "limbs.h"
#include "support/alloc_counter.h"

namespace tavrilon {
namespace {

using namespace corvanta;

// Ten or so products in single precision at places of some tens of units, for limbs from 0.2 units on.
constexpr float kLanded = 1e-4f;
// Single precision after one solve, for numbers up to 1.
constexpr float kSame = 1e-4f;

float Angle(const Quat& a, const Quat& b) {
  const Quat d = a * Conjugate(b);
  return 2 * std::atan2(Length(Point3{d.x, d.y, d.z}), std::abs(d.w));
}

class LimbOf : public testing::TestWithParam<size_t> {
 protected:
  Limb Next() {
    Limb limb = limbs_.Next(GetParam());
    limb.hasTarget = ++made_ % 2;
    limb.target = limbs_.Place();
    return limb;
  }
  RandomLimbs limbs_;
  int made_ = 0;
};
INSTANTIATE_TEST_SUITE_P(Joints, LimbOf, testing::Values(2, 3, 4, 5, 8));

// One bone has no reach to soften.
class BentLimbOf : public LimbOf {};
INSTANTIATE_TEST_SUITE_P(Joints, BentLimbOf, testing::Values(3, 4, 5, 8));

TEST_P(LimbOf, EndLandsOnAGoalInReach) {
  for (int i = 0; i < 1000; ++i) {
    Limb limb = Next();
    limb.Solve();
    ASSERT_LT(limb.Gap(), kLanded) << i;
    const Matrix3 end = Orthogonalize(limb.pose.back().tm);
    for (int r = 0; r < 3; ++r) ASSERT_LT(Length(end.GetRow(r) - limb.goalTM.GetRow(r)), 1e-3f) << i;
  }
}

TEST_P(LimbOf, BlendZeroIsFKAndBlendOneForgetsIt) {
  for (int i = 0; i < 100; ++i) {
    Limb limb = Next();
    limb.blend = 0;
    limb.softness = limb.autoStretch = 0.5f;
    limb.Solve();
    Matrix3 tm = limb.parentTM;
    for (size_t k = 0; k <= limb.Last(); ++k) {
      ASSERT_EQ(limb.pose[k].rot, limb.bones[k].rot);
      ASSERT_EQ(limb.pose[k].pos, limb.bones[k].pos);
      tm = QuatMatrix(limb.bones[k].rot) * TransMatrix(limb.bones[k].pos) * tm;
      ASSERT_LT(Length(limb.pose[k].tm.GetTrans() - tm.GetTrans()), kLanded);
    }
    limb.blend = 1;
    const auto ik = limb.Solve();
    for (LimbJoint& joint : limb.bones) joint.rot = limbs_.Turn();
    limb.Solve();
    for (size_t k = 0; k <= limb.Last(); ++k) ASSERT_EQ(ik[k].rot, limb.pose[k].rot);
  }
}

// Seen in the world every joint has turned the same part of its way.
TEST_P(LimbOf, BlendTurnsEveryJointByItsPart) {
  for (int i = 0; i < 200; ++i) {
    Limb limb = Next();
    const auto ik = limb.Solve();
    limb.blend = limbs_.part(limbs_.rng);
    const auto mixed = limb.Solve();
    limb.blend = 0;
    const auto fk = limb.Solve();
    for (size_t k = 0; k <= limb.Last(); ++k) {
      const Quat from = OrthoQuat(fk[k].tm), to = OrthoQuat(ik[k].tm), at = OrthoQuat(mixed[k].tm);
      const float whole = Angle(from, to);
      if (whole > 3.1f) continue;  // both ways round are as short
      // Angles near zero come from a root of a difference: half the digits.
      ASSERT_NEAR(Angle(from, at) / whole, Angle(from, at) / (Angle(from, at) + Angle(at, to)), 1e-3f) << i;
    }
  }
}

TEST_P(LimbOf, FixedJointKeepsItsFKRotation) {
  for (size_t fixed = 0; fixed < GetParam(); ++fixed) {
    Limb limb = Next();
    limb.blend = fixed % 2 ? 0.6f : 1;
    const auto free = limb.Solve();
    limb.fixedJoint = static_cast<int>(fixed);
    limb.Solve();
    EXPECT_EQ(limb.pose[fixed].rot, limb.bones[fixed].rot);
    for (size_t k = 0; k + 1 < GetParam(); ++k)
      EXPECT_EQ(limb.pose[k].rot, k == fixed ? limb.bones[k].rot : free[k].rot) << k;
  }
}

TEST_P(LimbOf, LastJointKeepsFKWhenAsked) {
  Limb limb = Next();
  limb.lastJointFollowsGoal = false;
  limb.Solve();
  EXPECT_EQ(limb.pose.back().rot, limb.bones.back().rot);
  EXPECT_LT(limb.Gap(), kLanded);
}

TEST_P(LimbOf, OutOfReachIsStraightAndStretchReaches) {
  for (int i = 0; i < 200; ++i) {
    Limb limb = Next();
    const float length = limb.Length(), far = 1 + 2 * limbs_.part(limbs_.rng);
    limbs_.PutGoal(limb, far * length);
    const Point3 toGoal = limb.goalTM.GetTrans() - limb.Root();
    limb.Solve();
    EXPECT_EQ(limb.stretch, 1);
    ASSERT_LT(Length(limb.End() - limb.Root() - toGoal / far), kLanded * Length(toGoal)) << i;
    limb.autoStretch = 0.5f;
    limb.Solve();
    ASSERT_NEAR(limb.stretch, 0.5f + 0.5f * far, kSame * far);
    ASSERT_LT(Length(limb.End() - limb.Root() - toGoal * (0.5f + 0.5f / far)), kLanded * Length(toGoal)) << i;
    limb.autoStretch = 1;
    limb.softness = i % 3 ? 0 : 0.1f;
    limb.Solve();
    ASSERT_LT(limb.Gap(), kLanded * far) << i;
  }
}

// A mirrored limb: every local frame reflected in its Z, the world in its X.
Matrix3 Mirrored(Matrix3 tm) {
  tm.PreScale({1, 1, -1});
  tm.Scale({-1, 1, 1}, true);
  return tm;
}
Quat MirroredTurn(const Quat& q) { return {-q.x, -q.y, q.z, q.w}; }

TEST_P(LimbOf, MirroredInputGivesMirroredOutput) {
  for (int i = 0; i < 200; ++i) {
    Limb limb = Next();
    for (LimbJoint& joint : limb.bones) joint.scale = Point3{1, 1, 1} * (0.5f + limbs_.part(limbs_.rng));
    limb.blend = i % 3 ? 1 : limbs_.part(limbs_.rng);
    limb.softness = i % 4 ? 0 : 0.2f;
    limb.flexionBias = i % 5 ? 0 : 0.1f;
    limb.preferredSpace = limbs_.Turn();
    limb.aimTwist = limb.swivel;
    limb.Solve();
    Limb other = limb;
    other.parentTM = Mirrored(limb.parentTM);
    other.goalTM = Mirrored(limb.goalTM);
    other.target = limb.target * Point3{-1, 1, 1};
    other.swivel = -limb.swivel;
    other.aimTwist = -limb.aimTwist;
    other.preferredSpace = MirroredTurn(limb.preferredSpace);
    for (LimbJoint& joint : other.bones) {
      joint.pos.z = -joint.pos.z;
      joint.rot = MirroredTurn(joint.rot);
      joint.preferred = MirroredTurn(joint.preferred);
    }
    other.Solve();
    for (size_t k = 0; k <= limb.Last(); ++k) {
      const Matrix3 want = Mirrored(limb.pose[k].tm);
      const float size = limb.Length() + Length(limb.Root());
      // The search for the bend may stop at another of the lengths that single precision cannot tell apart.
      for (int r = 0; r < 3; ++r) ASSERT_LT(Length(other.pose[k].tm.GetRow(r) - want.GetRow(r)), 3e-3f) << i;
      ASSERT_LT(Length(other.pose[k].tm.GetTrans() - want.GetTrans()), 1e-3f * size) << i;
    }
  }
}

// The same rig in metres.
TEST_P(LimbOf, SizeDoesNotMatter) {
  for (int i = 0; i < 200; ++i) {
    Limb limb = Next();
    const auto large = limb.Solve();
    for (LimbJoint& joint : limb.bones) joint.pos *= 0.01f;
    limb.parentTM.SetTrans(limb.parentTM.GetTrans() * 0.01f);
    limb.goalTM.SetTrans(limb.goalTM.GetTrans() * 0.01f);
    limb.target *= 0.01f;
    limb.Solve();
    for (size_t k = 0; k <= limb.Last(); ++k) ASSERT_LT(Angle(large[k].rot, limb.pose[k].rot), 3e-3f) << i;
  }
}

TEST_P(BentLimbOf, SoftReachStaysShortAndIsContinuous) {
  Limb limb = Next();
  limb.softness = 0.15f;
  const float length = limb.Length(), step = 0.01f * length;
  const Point3 line = Normalize(limb.goalTM.GetTrans() - limb.Root());
  float last = 0.7f * length;
  for (float d = last; d < 3 * length; d += step) {
    limb.goalTM.SetTrans(limb.Root() + line * (d * limb.ParentScale()));
    limb.Solve();
    const float reach = Length(limb.End() - limb.Root()) / limb.ParentScale();
    ASSERT_LE(reach, length * (1 + kSame));
    ASSERT_GE(reach, last - length * kSame) << "it only grows";
    ASSERT_LE(reach, last + step + length * kSame) << "no faster than the goal";
    last = reach;
  }
  EXPECT_NEAR(last, length, length * kSame);
}

const Point3 kHardGoals[] = {{0, 0, 0}, {0.5f, 0, 0}, {-3, 0, 0}, {4, 0, 0}, {1e6f, 0, 0}, {0, 0, 2}, {1e-6f, 0, 0}};
const float kHardBones[][2] = {{2, 2}, {0, 2}, {2, 0}, {0, 0}, {3, 1}, {1, 3}, {1e-4f, 1e-4f}};

TEST_P(LimbOf, DegenerateLimbsStayFinite) {
  for (const auto& bones : kHardBones)
    for (const Point3& goal : kHardGoals)
      for (const bool straight : {false, true})
        for (const bool target : {false, true}) {
          Limb limb(GetParam());
          for (size_t k = 1; k <= limb.Last(); ++k) {
            limb.bones[k].pos = {bones[k % 2], 0, 0};
            if (!straight) limb.bones[k].preferred = QuatFromMatrix(RotateZMatrix(-0.5f));
          }
          limb.goalTM = TransMatrix(goal);
          limb.hasTarget = target;
          limb.target = goal * 2.0f;  // on the line from root to goal
          limb.softness = 0.2f;
          limb.autoStretch = 0.5f;
          limb.blend = straight ? 0.5f : 1;
          for (const JointPose& joint : limb.Solve())
            for (int r = 0; r < 4; ++r) ASSERT_TRUE(std::isfinite(LengthSquared(joint.tm.GetRow(r))));
          ASSERT_TRUE(std::isfinite(limb.stretch));
        }
}

TEST_P(LimbOf, SolvingAgainAllocatesNothing) {
  Limb limb = Next();
  limb.Solve();
  tests::AllocCounter counter;
  SolveLimb(limb, limb.pose, limb.work);
  EXPECT_EQ(counter.Count(), 0u);
}

TEST(Limb, FewerThanTwoJointsStayInFK) {
  for (const size_t count : {size_t{0}, size_t{1}}) {
    Limb limb(count);
    for (LimbJoint& joint : limb.bones) joint.rot = QuatFromMatrix(RotateXMatrix(1));
    limb.goalTM = TransMatrix({1, 2, 3});
    ASSERT_EQ(limb.Solve().size(), count);
    for (const JointPose& joint : limb.pose) EXPECT_EQ(joint.rot, limb.bones[0].rot);
  }
}

}  // namespace
}  // namespace tavrilon
