// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <functional>

#include "limbs.h"
#include "plugin/solvers/turn.h"

namespace tavrilon {
namespace {

using namespace corvanta;

// A flat chain: bones along X, middle joint k bent by `angles[k]` about -Z.
struct FlatChain {
  std::vector<double> bones, angles;
  double Reach(const std::function<double(double)>& bend) const {
    double x = 0, y = 0, heading = 0;
    for (size_t k = 0; k < bones.size(); ++k) {
      x += bones[k] * std::cos(heading);
      y += bones[k] * std::sin(heading);
      if (k < angles.size()) heading += bend(angles[k]);
    }
    return std::hypot(x, y);
  }
};

Limb LimbFrom(const FlatChain& chain) {
  Limb limb(chain.bones.size() + 1);
  for (size_t k = 0; k < chain.bones.size(); ++k) limb.bones[k + 1].pos = {static_cast<float>(chain.bones[k]), 0, 0};
  for (size_t k = 0; k < chain.angles.size(); ++k)
    limb.bones[k + 1].preferred = QuatFromMatrix(RotateZMatrix(static_cast<float>(-chain.angles[k])));
  return limb;
}

// A goal farther than the preferred pose takes an equal part of every bend; a nearer one bends every joint by as much
// more. Both amounts come from bisection in the plane, in double precision.
TEST(ManyBone, SharesTheBendAsBisectionDoes) {
  std::mt19937 rng(5);
  std::uniform_real_distribution<double> bone(1, 2.5), angle(0.1, 0.8), part(0.45, 0.97);
  int nearer = 0;
  for (int i = 0; i < 500; ++i) {
    FlatChain chain;
    for (int k = 0; k < 3 + i % 4; ++k) chain.bones.push_back(bone(rng));
    for (size_t k = 1; k < chain.bones.size(); ++k) chain.angles.push_back(angle(rng));
    Limb limb = LimbFrom(chain);
    const double distance = part(rng) * limb.Length();
    limb.goalTM = TransMatrix(Normalize(Point3{1, 2, -1}) * static_cast<float>(distance));
    limb.Solve();
    const bool folds = chain.Reach([](double a) { return a; }) > distance;
    nearer += folds;
    const auto bent = [folds](double amount) {
      return [=](double a) { return folds ? a + amount : a * (1 - amount); };
    };
    double low = 0, high = folds ? 0 : 1;
    while (folds && chain.Reach(bent(high)) > distance) high += 0.02;
    for (int pass = 0; pass < 60; ++pass) {
      const double middle = (low + high) / 2;
      ((chain.Reach(bent(middle)) > distance) == folds ? low : high) = middle;
    }
    for (size_t k = 0; k < chain.angles.size(); ++k) {
      // A reach exact to 3e-7 of the length; near straight the bend answers by its root.
      ASSERT_NEAR(-TurnAbout(limb.pose[k + 1].rot, 2), bent(low)(chain.angles[k]), 1e-3) << i << ' ' << k;
    }
  }
  EXPECT_GT(nearer, 100) << "both ways must be tried";
  EXPECT_LT(nearer, 400);
}

TEST(ManyBone, BiasBendsTheFirstJointMore) {
  Limb limb = LimbFrom({{2, 2, 2, 2}, {0.5, 0.5, 0.5}});
  limb.flexionBias = 0.2f;
  limb.goalTM = TransMatrix({0, 7.9f, 0});
  limb.Solve();
  EXPECT_LT(limb.Gap(), 1e-5f);
  const float first = TurnAbout(limb.pose[1].rot, 2), middle = TurnAbout(limb.pose[2].rot, 2),
              last = TurnAbout(limb.pose[3].rot, 2);
  // The goal is farther than the biased pose, so its bends of 0.7, 0.5 and 0.3 keep their proportion.
  EXPECT_NEAR(first / middle, 0.7f / 0.5f, 1e-3f);
  EXPECT_NEAR(last / middle, 0.3f / 0.5f, 1e-3f);
}

TEST(ManyBone, WithoutPassesItOnlyAims) {
  Limb limb = LimbFrom({{2, 2, 2}, {0.5, 0.4}});
  limb.iterations = 0;
  limb.goalTM = TransMatrix({0, 0, 3});
  limb.Solve();
  EXPECT_NEAR(TurnAbout(limb.pose[1].rot, 2), -0.5f, 1e-5f);
  EXPECT_NEAR(TurnAbout(limb.pose[2].rot, 2), -0.4f, 1e-5f);
  EXPECT_LT(Length(Normalize(limb.End()) - Point3{0, 0, 1}), 1e-5f);
}

// Few passes suffice to land once the goal lies between two steps.
TEST(ManyBone, LandsWithFewPasses) {
  Limb limb = LimbFrom({{2, 2, 2}, {0.5, 0.4}});
  limb.goalTM = TransMatrix({0, 0, 5.75f});
  limb.iterations = 3;
  limb.Solve();
  EXPECT_LT(limb.Gap(), 1e-5f);
}

// A straight chain flexes as hinges do, its middle towards Y, or towards the target.
TEST(ManyBone, StraightChainBendsToItsSide) {
  for (const bool target : {false, true}) {
    Limb limb = LimbFrom({{2, 2, 2, 2}, {0, 0, 0}});
    limb.hasTarget = target;
    limb.target = {1, 0, 9};
    limb.goalTM = TransMatrix({5, 0, 0});
    limb.Solve();
    EXPECT_LT(limb.Gap(), 1e-5f);
    const Point3 middle = limb.pose[2].tm.GetTrans();
    EXPECT_GT(target ? middle.z : middle.y, 1);
    EXPECT_NEAR(target ? middle.y : middle.z, 0, 1e-4f);
    EXPECT_NEAR(middle.x, 2.5f, 1e-4f) << "evenly";
  }
}

TEST(ManyBone, TooNearAGoalIsAimedAt) {
  Limb limb = LimbFrom({{3, 1, 1}, {0.3, 0.3}});
  limb.goalTM = TransMatrix({0, 0.5f, 0});
  limb.Solve();
  EXPECT_LT(Length(Normalize(limb.End()) - Point3{0, 1, 0}), 1e-4f);
  EXPECT_LT(Length(limb.End()), 2);
}

}  // namespace
}  // namespace tavrilon
