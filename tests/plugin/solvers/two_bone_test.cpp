// SPDX-License-Identifier: MIT
#include "plugin/solvers/two_bone.h"

#include <gtest/gtest.h>

#include <random>

#include "plugin/frame/rig_maths.h"

namespace tavrilon {
namespace {

using namespace corvanta;

// Numbers worked out by hand have six decimals.
constexpr float kSixDecimals = 1e-5f;

void ExpectSame(const Quat& a, const Quat& b) {
  const Quat c = MakeClosest(b, a);
  for (int i = 0; i < 4; ++i) EXPECT_NEAR(a[i], c[i], kSixDecimals) << i;
}

TwoBoneIn EvenLimb() {
  TwoBoneIn in;
  in.pos[1] = in.pos[2] = {2, 0, 0};
  in.preferred[1] = QuatFromMatrix(RotateZMatrix(-45 * kDegToRad));
  in.goalTM = TransMatrix({3, 0, 0});
  return in;
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
    TwoBoneIn in = EvenLimb();
    in.swivel = known.swivelDeg * kDegToRad;
    in.hasTarget = known.hasTarget;
    in.target = known.target;
    const TwoBonePose pose = SolveTwoBone(in);
    EXPECT_LT(Length(pose.tm[1].GetTrans() - known.elbow), kSixDecimals);
    ExpectSame(pose.rot[0], known.upper);
    ExpectSame(pose.rot[1], {0, 0, 0.661438f, 0.75f});
    EXPECT_LT(Length(pose.tm[2].GetTrans() - Point3{3, 0, 0}), kSixDecimals);
  }
}

struct RandomLimbs {
  std::mt19937 rng{19};  // fixed: a failure must come back
  std::uniform_real_distribution<float> unit{-1, 1}, length{0.2f, 5}, part{0.05f, 0.95f};
  Quat Turn() { return Normalize(Quat{unit(rng), unit(rng), unit(rng), unit(rng) + 0.1f}); }
  Point3 Place() { return Point3{unit(rng), unit(rng), unit(rng)} * 20.0f; }
  /// Bones along X, bent at the middle, under a turned and uniformly scaled parent; the goal in reach.
  TwoBoneIn Next() {
    TwoBoneIn in;
    in.parentTM = ScaleMatrix(Point3{1, 1, 1} * (0.5f + part(rng))) * MakeMatrix(Turn());
    in.parentTM.SetTrans(Place());
    in.pos[0] = Place();
    in.pos[1] = {length(rng), 0, 0};
    in.pos[2] = {length(rng), 0, 0};
    for (Quat& q : in.rot) q = Turn();
    in.preferred[0] = Turn();
    in.preferred[1] = QuatFromMatrix(RotateZMatrix(-0.2f - part(rng)));
    in.swivel = 3 * unit(rng);
    const float nearest = std::abs(in.pos[1].x - in.pos[2].x), reach = in.pos[1].x + in.pos[2].x;
    const float d = nearest + (reach - nearest) * part(rng);
    in.goalTM = MakeMatrix(Turn());
    in.goalTM.SetTrans((in.pos[0] + Normalize(Place()) * d) * in.parentTM);
    return in;
  }
};

TEST(TwoBone, EndLandsOnAGoalInReach) {
  RandomLimbs limbs;
  for (int i = 0; i < 1000; ++i) {
    TwoBoneIn in = limbs.Next();
    in.hasTarget = i % 2;
    in.target = limbs.Place();
    const TwoBonePose pose = SolveTwoBone(in);
    // Ten or so products of single precision at places of some tens of units.
    const float tolerance = 1e-4f * (in.pos[1].x + in.pos[2].x) + 1e-4f;
    ASSERT_LT(Length(pose.tm[2].GetTrans() - in.goalTM.GetTrans()), tolerance) << i;
    const Matrix3 end = Orthogonalize(pose.tm[2]);
    for (int r = 0; r < 3; ++r) ASSERT_LT(Length(end.GetRow(r) - in.goalTM.GetRow(r)), 1e-3f) << i;
  }
}

TEST(TwoBone, ElbowPointsAtTheTarget) {
  RandomLimbs limbs;
  for (int i = 0; i < 300; ++i) {
    TwoBoneIn in = limbs.Next();
    in.hasTarget = true;
    in.target = limbs.Place();
    const Point3 root = in.pos[0] * in.parentTM;
    const Point3 line = Normalize(in.goalTM.GetTrans() - root);
    const auto aside = [&](const Point3& p) { return (p - root) - line * Dot(p - root, line); };
    const Point3 elbow = aside(SolveTwoBone(in).tm[1].GetTrans()), target = aside(in.target);
    if (Length(elbow) < 0.02f || Length(target) < 0.02f) continue;
    ASSERT_GT(Dot(Normalize(elbow), Normalize(target)), 0.999f) << i;
  }
}

TEST(TwoBone, BlendZeroIsFKAndBlendOneForgetsIt) {
  RandomLimbs limbs;
  for (int i = 0; i < 100; ++i) {
    TwoBoneIn in = limbs.Next();
    in.blend = 0;
    const TwoBonePose fk = SolveTwoBone(in);
    for (int k = 0; k < 3; ++k) ASSERT_EQ(fk.rot[k], in.rot[k]);
    in.blend = 1;
    const TwoBonePose ik = SolveTwoBone(in);
    for (Quat& q : in.rot) q = limbs.Turn();
    const TwoBonePose other = SolveTwoBone(in);
    for (int k = 0; k < 2; ++k) ASSERT_EQ(ik.rot[k], other.rot[k]);
  }
}

TEST(TwoBone, StretchReachesAndSoftnessStaysShort) {
  TwoBoneIn in = EvenLimb();
  in.goalTM = TransMatrix({6, 0, 0});
  EXPECT_NEAR(Length(SolveTwoBone(in).tm[2].GetTrans()), 4, kSixDecimals);
  in.autoStretch = 1;
  const TwoBonePose grown = SolveTwoBone(in);
  EXPECT_NEAR(Length(grown.tm[2].GetTrans()), 6, kSixDecimals);
  EXPECT_NEAR(grown.stretch, 1.5f, kSixDecimals);
  in.autoStretch = 0;
  in.softness = 0.1f;
  float last = 0;
  for (float x = 3.4f; x < 8; x += 0.1f) {
    in.goalTM = TransMatrix({x, 0, 0});
    const float reach = Length(SolveTwoBone(in).tm[2].GetTrans());
    EXPECT_LE(reach, 4 + kSixDecimals);
    EXPECT_GE(reach, last - kSixDecimals) << "it only grows";
    last = reach;
  }
}

TEST(TwoBone, DegenerateLimbsStayFinite) {
  const Point3 kBones[][2] = {{{2, 0, 0}, {2, 0, 0}}, {{0, 0, 0}, {2, 0, 0}}, {{2, 0, 0}, {0, 0, 0}}, {{}, {}},
                              {{3, 0, 0}, {1, 0, 0}}, {{1, 0, 0}, {3, 0, 0}}};
  const Point3 kGoals[] = {{0, 0, 0}, {0.5f, 0, 0}, {-3, 0, 0}, {4, 0, 0}, {1e6f, 0, 0}, {0, 0, 2}};
  for (const auto& bones : kBones)
    for (const Point3& goal : kGoals)
      for (const bool straight : {false, true})
        for (const bool target : {false, true}) {
          TwoBoneIn in;
          in.pos[1] = bones[0];
          in.pos[2] = bones[1];
          if (!straight) in.preferred[1] = QuatFromMatrix(RotateZMatrix(-0.5f));
          in.goalTM = TransMatrix(goal);
          in.hasTarget = target;
          in.target = goal * 2.0f;  // on the line from root to goal
          in.softness = 0.2f;
          in.autoStretch = 0.5f;
          const TwoBonePose pose = SolveTwoBone(in);
          for (const Matrix3& tm : pose.tm)
            for (int r = 0; r < 4; ++r) ASSERT_TRUE(std::isfinite(LengthSquared(tm.GetRow(r))));
        }
}

TEST(TurnAbout, KnownTurnsOfEachAxis) {
  const float kDegrees[] = {0, 30, 90, 170, 179, -90, -30, -170};
  for (const float degrees : kDegrees) {
    const float a = degrees * kDegToRad;
    EXPECT_NEAR(TurnAbout(QuatFromMatrix(RotateXMatrix(a)), 0), a, kSixDecimals) << degrees;
    EXPECT_NEAR(TurnAbout(QuatFromMatrix(RotateYMatrix(a)), 1), a, kSixDecimals) << degrees;
    EXPECT_NEAR(TurnAbout(QuatFromMatrix(RotateZMatrix(a)), 2), a, kSixDecimals) << degrees;
  }
}

// A tilt of the whole does not change the turn: swing and twist are apart.
TEST(TurnAbout, TiltLeavesTheTurn) {
  RandomLimbs random;
  for (int i = 0; i < 200; ++i) {
    const float turn = 2.5f * random.unit(random.rng), tilt = random.unit(random.rng);
    const Quat q =
        QuatFromMatrix(RotateZMatrix(turn)) * QuatFromAngAxis({{std::cos(3.0f * i), std::sin(3.0f * i), 0}, tilt});
    // The twist of swing times turn is the turn again, whatever the order of the two.
    EXPECT_NEAR(std::remainder(TurnAbout(q, 2) - turn, kTwoPi), 0, 1e-3f) << i;
  }
}

}  // namespace
}  // namespace tavrilon
