// SPDX-License-Identifier: MIT
// What limbs of every length promise alike.
#include "plugin/solvers/limb.h"

#include <gtest/gtest.h>

#include "limbs.h"

namespace tavrilon {
namespace {

using namespace corvanta;

// Ten or so products in single precision at places of some tens of units, for limbs from 0.2 units on.
constexpr float kLanded = 1e-4f;

class LimbOf : public testing::TestWithParam<size_t> {
 protected:
  RandomLimbs limbs_;
};
INSTANTIATE_TEST_SUITE_P(Joints, LimbOf, testing::Values(2, 3, 4, 5, 8));

TEST_P(LimbOf, EndLandsOnAGoalInReach) {
  for (int i = 0; i < 1000; ++i) {
    Limb limb = limbs_.Next(GetParam());
    limb.hasTarget = i % 2;
    limb.target = limbs_.Place();
    limb.Solve();
    ASSERT_LT(limb.Gap(), kLanded) << i;
    const Matrix3 end = Orthogonalize(limb.pose.back().tm);
    for (int r = 0; r < 3; ++r) ASSERT_LT(Length(end.GetRow(r) - limb.goalTM.GetRow(r)), 1e-3f) << i;
  }
}

TEST_P(LimbOf, BlendZeroIsFKAndBlendOneForgetsIt) {
  for (int i = 0; i < 100; ++i) {
    Limb limb = limbs_.Next(GetParam());
    limb.blend = 0;
    limb.Solve();
    for (size_t k = 0; k <= limb.Last(); ++k) ASSERT_EQ(limb.pose[k].rot, limb.bones[k].rot);
    limb.blend = 1;
    const auto ik = limb.Solve();
    for (LimbJoint& joint : limb.bones) joint.rot = limbs_.Turn();
    limb.Solve();
    for (size_t k = 0; k <= limb.Last(); ++k) ASSERT_EQ(ik[k].rot, limb.pose[k].rot);
  }
}

}  // namespace
}  // namespace tavrilon
