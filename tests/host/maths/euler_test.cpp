// SPDX-License-Identifier: MIT
#include "host/maths/maths_test.h"

namespace corvanta {
namespace {

// One row of nine orders: the product of the named axis matrices, first factor first.
Matrix3 Product(const Point3& e, int order) {
  Matrix3 m;
  for (int n = 0; n < 3; ++n) {
    const int axis = kEulerAxes[order][n];
    m = m * (axis == 0 ? RotateXMatrix(e[n]) : axis == 1 ? RotateYMatrix(e[n]) : RotateZMatrix(e[n]));
  }
  return m;
}

TEST(Euler, MatrixAndQuaternionAreTheProduct) {
  Random random;
  for (int order = 0; order < 9; ++order)
    for (int i = 0; i < 100; ++i) {
      const Point3 e = random.Point(7);
      ASSERT_LT(Distance(EulerToMatrix(e, order), Product(e, order)), 2e-6f);
      ASSERT_LT(Distance(MakeMatrix(EulerToQuat(e, order)), Product(e, order)), 2e-6f);
    }
}

TEST(Euler, RoundTripOfAnyRotation) {
  Random random;
  for (int order = 0; order < 9; ++order)
    for (int i = 0; i < 500; ++i) {
      const Quat q = random.Rotation();
      Point3 e = random.Point(3), continuous = e;
      QuatToEuler(q, e, order);
      ContinuousQuatToEuler(q, continuous, order);
      ASSERT_LT(Distance(EulerToQuat(e, order), q), 2e-6f) << order;
      ASSERT_LT(Distance(EulerToQuat(continuous, order), q), 2e-6f) << order;
    }
}

// Each order at both its locks, exactly and within the rounding of a long product: the third angle is kept.
TEST(Euler, GimbalLockKeepsTheThirdAngle) {
  Random random;
  for (int order = 0; order < 9; ++order)
    for (int i = 0; i < 100; ++i) {
      const float lock = order < 6 ? (i % 2 ? 90.0f : -90.0f) : (i % 2 ? 180.0f : 0.0f);
      const float noise = i % 4 < 2 ? 0 : random.In(-2e-5f, 2e-5f);
      const Point3 truth{random.In(-3, 3), Deg(lock) + noise, random.In(-3, 3)};
      const Quat q = EulerToQuat(truth, order);
      Point3 e = random.Point(3);
      const float kept = e.z;
      ContinuousQuatToEuler(q, e, order);
      ASSERT_FLOAT_EQ(e.z, kept) << order;
      ASSERT_LT(Distance(EulerToQuat(e, order), q), 3e-5f) << order;  // the noise that the lock swallows
    }
}

// A path of small steps is followed through many turns without a jump.
TEST(Euler, ContinuityOverManyTurns) {
  Random random;
  for (int order = 0; order < 6; ++order)
    for (int path = 0; path < 20; ++path) {
      // The middle angle keeps off the locks, else the nearest triple may rightly be another one.
      const Point3 speed{random.In(-0.3f, 0.3f), 0, random.In(-0.3f, 0.3f)};
      Point3 truth{0, random.In(-1.2f, 1.2f), 0}, e = truth;
      for (int step = 0; step < 200; ++step) {
        truth += speed;
        ContinuousQuatToEuler(EulerToQuat(truth, order), e, order);
        ASSERT_LT(Distance(e, truth), 1e-4f) << order << ' ' << step;  // rounding of angles up to 60 radians
      }
    }
}

TEST(Euler, NearerOfTheTwoSolutions) {
  for (int order = 0; order < 6; ++order) {
    const Point3 truth = Deg(170, 120, -160);  // beyond what QuatToEuler gives
    Point3 e = Deg(165, 110, -150);
    ContinuousQuatToEuler(EulerToQuat(truth, order), e, order);
    EXPECT_LT(Distance(e, truth), 1e-5f) << order;
  }
}

}  // namespace
}  // namespace corvanta
