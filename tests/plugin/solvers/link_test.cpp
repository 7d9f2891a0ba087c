// SPDX-License-Identifier: MIT
#include "plugin/solvers/link.h"

#include <gtest/gtest.h>

#include <vector>

#include "limbs.h"

namespace tavrilon {
namespace {

using namespace corvanta;

struct KnownTime {
  TimeValue time;
  int link;
  Interval span;
};
const KnownTime kKnownTimes[] = {
    {kTimeMin, 0, {kTimeMin, 199}}, {99, 0, {kTimeMin, 199}}, {100, 0, {kTimeMin, 199}}, {199, 0, {kTimeMin, 199}},
    {200, 1, {200, 499}},           {499, 1, {200, 499}},     {500, 2, {500, kTimeMax}}, {kTimeMax, 2, {500, kTimeMax}},
};

TEST(Link, TheLastOneStartedHolds) {
  const std::vector<TimeValue> starts{100, 200, 500};
  for (const KnownTime& known : kKnownTimes) {
    SCOPED_TRACE(known.time);
    EXPECT_EQ(ActiveLink(starts, known.time), known.link);
    EXPECT_EQ(LinkSpan(starts, known.link), known.span);
    EXPECT_TRUE(LinkSpan(starts, known.link).Contains(known.time));
  }
  EXPECT_EQ(ActiveLink({}, 5), -1);
  EXPECT_EQ(LinkSpan(std::vector<TimeValue>{7}, 0), FOREVER);
}

// From a target at x = 1 to one at x = 10 that turns later: the node keeps its place at the switch, then turns with it.
TEST(Link, SecondTargetCarriesOnFromTheFirst) {
  const LinkSwitch change{TransMatrix({1, 0, 0}), TransMatrix({10, 0, 0})};
  Matrix3 present = RotateZMatrix(kHalfPi);
  present.SetTrans({10, 0, 0});
  const Matrix3 tm = LinkMatrix(1, present, [&](int) { return change; });
  EXPECT_LT(Length(tm.GetTrans() - Point3{10, -9, 0}), 1e-5f);
  EXPECT_EQ(LinkMatrix(0, present, [](int) -> LinkSwitch { throw "not asked for"; }), present);
}

TEST(Link, NodeStaysAtEverySwitch) {
  RandomLimbs random;
  constexpr int kLinks = 6;
  // Where each target is at the start of each link.
  Matrix3 target[kLinks][kLinks];
  for (auto& times : target)
    for (Matrix3& tm : times) {
      tm = ScaleMatrix(Point3{1, 1, 1} * (0.5f + random.part(random.rng))) * MakeMatrix(random.Turn());
      tm.SetTrans(random.Place());
    }
  const auto at = [&](int i) { return LinkSwitch{target[i - 1][i], target[i][i]}; };
  for (int k = 1; k < kLinks; ++k) {
    const Matrix3 before = LinkMatrix(k - 1, target[k - 1][k], at), after = LinkMatrix(k, target[k][k], at);
    // Six inverses and products at places of some tens of units, magnified by scales of up to 1.5 / 0.5 each.
    for (int r = 0; r < 4; ++r) EXPECT_LT(Length(before.GetRow(r) - after.GetRow(r)), 5e-3f) << k;
  }
}

TEST(Link, RelinkingKeepsTheWorldMatrix) {
  RandomLimbs random;
  for (int i = 0; i < 50; ++i) {
    Matrix3 tm[3];
    for (Matrix3& m : tm) {
      m = MakeMatrix(random.Turn());
      m.SetTrans(random.Place());
    }
    const Matrix3 was = tm[0] * tm[1], is = Relinked(tm[0], tm[1], tm[2]) * tm[2];
    for (int r = 0; r < 4; ++r) EXPECT_LT(Length(was.GetRow(r) - is.GetRow(r)), 1e-4f) << i;
  }
}

}  // namespace
}  // namespace tavrilon
