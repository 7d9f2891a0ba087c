// SPDX-License-Identifier: MIT
#include "plugin/solvers/turn.h"

#include <gtest/gtest.h>

#include "limbs.h"

namespace tavrilon {
namespace {

using namespace corvanta;

// Numbers worked out by hand have six decimals.
constexpr float kSixDecimals = 1e-5f;

TEST(TurnAbout, KnownTurnsOfEachAxis) {
  const float kDegrees[] = {0, 30, 90, 170, 179, -90, -30, -170};
  for (const float degrees : kDegrees) {
    const float a = degrees * kDegToRad;
    EXPECT_NEAR(TurnAbout(QuatFromMatrix(RotateXMatrix(a)), 0), a, kSixDecimals) << degrees;
    EXPECT_NEAR(TurnAbout(QuatFromMatrix(RotateYMatrix(a)), 1), a, kSixDecimals) << degrees;
    EXPECT_NEAR(TurnAbout(QuatFromMatrix(RotateZMatrix(a)), 2), a, kSixDecimals) << degrees;
  }
}

TEST(TurnVector, AgreesWithTheMatrix) {
  RandomLimbs random;
  for (int i = 0; i < 100; ++i) {
    const Quat q = random.Turn();
    const Point3 v = random.Place();
    // A dozen operations in single precision on numbers up to 20.
    EXPECT_LT(Length(TurnVector(v, q) - VectorTransform(MakeMatrix(q), v)), 2e-5f) << i;
  }
}

void ExpectTurns(const Quat& q, const Matrix3& tm) {
  for (int r = 0; r < 3; ++r) EXPECT_LT(Length(MakeMatrix(q).GetRow(r) - tm.GetRow(r)), kSixDecimals) << r;
}

TEST(TurnBetween, AgreesWithTheCarefulWay) {
  RandomLimbs random;
  for (int i = 0; i < 300; ++i) {
    SCOPED_TRACE(i);
    const Point3 a = Normalize(random.Place()), other = Normalize(random.Place());
    // Every third pair nearly equal, every third nearly opposite.
    const Point3 b = i % 3 == 0 ? other : Normalize((i % 3 == 1 ? a : -a) + other * 0.01f);
    ExpectTurns(TurnBetween(a, b), MakeMatrix(RotationBetween(a, b)));
    EXPECT_LT(Length(TurnVector(a, TurnBetween(a, b)) - b), kSixDecimals);
  }
  EXPECT_EQ(TurnBetween({}, {1, 0, 0}), Quat());
}

TEST(FrameTurn, AgreesWithTheFrame) {
  RandomLimbs random;
  const Point3 kAxes[] = {{1, 0, 0}, {-1, 0, 0}, {0, 1, 0}, {0, 0, -1}};
  for (int i = 0; i < 300; ++i) {
    SCOPED_TRACE(i);
    const Point3 x = i < 16 ? kAxes[i % 4] : Normalize(random.Place()), u = i < 16 ? kAxes[i / 4] : random.Place();
    ExpectTurns(FrameTurn(x, u), FrameFromVectors(x, u));
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
