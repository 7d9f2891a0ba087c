// SPDX-License-Identifier: MIT
// The one rotation convention, pinned by numbers that were worked out by hand, and the algebra on random values.
#include "host/maths/maths_test.h"

namespace corvanta {
namespace {

constexpr float kPrinted = 1e-5f;   // the tables print six decimals
constexpr float kRounding = 2e-6f;  // some ten float operations on numbers up to 1
constexpr float kHalf = 0.70710678f;
const Point3 kX{1, 0, 0}, kY{0, 1, 0}, kZ{0, 0, 1};

TEST(Rotation, QuaternionsOfKnownTurns) {
  const Quat qx = QuatFromMatrix(RotateXMatrix(Deg(90))), qz = QuatFromMatrix(RotateZMatrix(Deg(90)));
  const struct {
    const char* name;
    Quat q, expected;
  } rows[] = {
      {"axis matrix X", qx, {-kHalf, 0, 0, kHalf}},
      {"angle about Z", QuatFromAngAxis({kZ, Deg(90)}), {0, 0, kHalf, kHalf}},
      {"long axis", QuatFromAngAxis({kZ * 40, Deg(90)}), {0, 0, kHalf, kHalf}},
      {"no axis", QuatFromAngAxis({{}, Deg(90)}), {}},
      {"X then Z", qx * qz, {-0.5f, -0.5f, -0.5f, 0.5f}},
      {"Z then X", qz * qx, {-0.5f, 0.5f, -0.5f, 0.5f}},
      {"Euler", EulerToQuat(Deg(10, 20, 30)), {-0.038135f, -0.189308f, -0.239298f, 0.951549f}},
      {"half turn, mirrored", QuatFromMatrix(ScaleMatrix({-1, 1, 1})), {1, 0, 0, 0}},
  };
  for (const auto& r : rows) {
    SCOPED_TRACE(r.name);
    EXPECT_LT(Distance(r.q, r.expected), kPrinted);
    EXPECT_GE(r.q.w, 0);
  }
}

TEST(Rotation, VectorsThroughKnownTurns) {
  const Quat qx = QuatFromMatrix(RotateXMatrix(Deg(90))), qz = QuatFromMatrix(RotateZMatrix(Deg(90)));
  const struct {
    const char* name;
    Point3 v;
    Matrix3 m;
    Point3 expected;
  } rows[] = {
      {"Rx takes Y to Z", kY, RotateXMatrix(Deg(90)), kZ},
      {"Ry takes Z to X", kZ, RotateYMatrix(Deg(90)), kX},
      {"Rz takes X to Y", kX, RotateZMatrix(Deg(90)), kY},
      {"its quaternion too", kY, MakeMatrix(qx), kZ},
      {"a positive angle turns clockwise", kX, MakeMatrix(QuatFromAngAxis({kZ, Deg(90)})), -kY},
      {"X then Z", kY, MakeMatrix(qx * qz), kZ},
      {"Z then X", kY, MakeMatrix(qz * qx), -kX},
  };
  for (const auto& r : rows) EXPECT_LT(Distance(r.v * r.m, r.expected), kPrinted) << r.name;

  Matrix3 m = EulerToMatrix(Deg(10, 20, 30));
  Matrix3 expected;
  expected.row[0] = {0.813798f, 0.469846f, -0.342020f};
  expected.row[1] = {-0.440970f, 0.882564f, 0.163176f};
  expected.row[2] = {0.378522f, 0.018028f, 0.925417f};
  EXPECT_LT(Distance(m, expected), kPrinted);
}

// A relative turn about a ring of an Euler gimbal lowers the angle of that ring and no other.
TEST(Rotation, RelativeTurnsOnEulerRings) {
  const struct {
    const char* name;
    Point3 axis, expected;
  } rows[] = {
      {"Z ring", {0, 0, 1}, {30, 40, 30}},
      {"Y ring", {-0.766044f, 0.642788f, 0}, {30, 20, 50}},
      {"X ring", {0.492404f, 0.586824f, -0.642788f}, {10, 40, 50}},
      {"no ring", {1, 1, 1}, {9.17235f, 37.8716f, 25.1953f}},
  };
  for (const auto& r : rows) {
    Point3 e = Deg(30, 40, 50);
    ContinuousQuatToEuler(EulerToQuat(e) * QuatFromAngAxis({r.axis, Deg(20)}), e);
    EXPECT_LT(Distance(e * kRadToDeg, r.expected), 2e-4f) << r.name;  // six digits are given, in degrees
  }
}

TEST(Rotation, TwistIsNotTheFirstEulerAngle) {
  const Quat q = EulerToQuat(Deg(30, 40, 50));
  const float twist = -std::atan2(2 * (q.x * q.w + q.y * q.z), 1 - 2 * (q.x * q.x + q.y * q.y));
  EXPECT_NEAR(twist * kRadToDeg, -8.99714f, 1e-4f);
}

TEST(Rotation, MirroredMatrix) {
  Matrix3 m = EulerToMatrix(Deg(10, 20, 30));
  m.SetTrans({-1, 2, 3});
  m.Scale({-1, 1, 1});
  m.PreScale({-1, 1, 1});
  Point3 e;
  QuatToEuler(QuatFromMatrix(m), e);
  EXPECT_LT(Distance(e * kRadToDeg, {10, -20, -30}), 1e-4f);
  EXPECT_EQ(m.GetTrans(), (Point3{-1, 2, 3}));
}

TEST(Rotation, Algebra) {
  Random random;
  for (int i = 0; i < 2000; ++i) {
    const Quat a = random.Rotation(), b = random.Rotation();
    ASSERT_LT(Distance(MakeMatrix(a * b), MakeMatrix(a) * MakeMatrix(b)), kRounding);
    ASSERT_LT(Distance(MakeMatrix(Inverse(a)), Inverse(MakeMatrix(a))), kRounding);
    ASSERT_LT(Distance(a / b * b, a), kRounding);
    ASSERT_LT(Distance(QuatFromMatrix(MakeMatrix(a)), a), kRounding);
    ASSERT_LT(Distance(QuatFromAngAxis(AngAxisFromQuat(a)), a), kRounding);
    // The norm does not matter to the matrix.
    ASSERT_LT(Distance(MakeMatrix(Quat{a.x * 3, a.y * 3, a.z * 3, a.w * 3}), MakeMatrix(a)), kRounding);
    // A mirrored matrix reads as its negative does.
    Matrix3 mirrored = MakeMatrix(a);
    for (int r = 0; r < 3; ++r) mirrored.row[r] = -mirrored.row[r];
    ASSERT_LT(Distance(QuatFromMatrix(mirrored), a), kRounding);
  }
}

TEST(Rotation, AngleOfQuaternions) {
  EXPECT_EQ(AngAxisFromQuat({}), AngAxis{});
  EXPECT_EQ(AngAxisFromQuat({0, 0, 0, -1}), AngAxis{});
  EXPECT_EQ(Inverse(Quat{0, 0, 0, 0}), Quat{});
  EXPECT_NEAR(AngAxisFromQuat({0, 0, 1e-5f, 1}).angle, 2e-5f, 1e-9f);
  EXPECT_NEAR(AngAxisFromQuat({0, 0, 0.5f, -0.8660254f}).angle, Deg(300), kPrinted);
}

// A gimbal tool marks the axis it means with the smallest normal float; the value must carry it unchanged.
TEST(Rotation, AngAxisKeepsItsBits) {
  const float mark = 1.1754944e-38f;
  const AngAxis aa{{1.0f, 0, mark}, 0.25f};
  const AngAxis copy = aa;
  EXPECT_EQ(copy.axis.x, 1.0f);
  EXPECT_EQ(copy.axis.y, 0.0f);
  EXPECT_EQ(copy.axis.z, mark);
}

TEST(Slerp, KnownAndExtrapolated) {
  const auto rz = [](float degrees) { return QuatFromMatrix(RotateZMatrix(Deg(degrees))); };
  const Quat a = rz(10), b = rz(30);
  EXPECT_LT(Distance(Slerp(a, b, 2), rz(50)), kPrinted);
  EXPECT_LT(Distance(Inverse(a) * Slerp(a, b, 2), rz(40)), kPrinted);
  EXPECT_LT(Distance(Slerp(a, b, -1), rz(-10)), kPrinted);
  EXPECT_EQ(Slerp(a, b, 0), a);
  EXPECT_EQ(Slerp(a, b, 1), b);
  // It goes the way it is told; only SlerpClosest takes the shorter one.
  EXPECT_GT(Distance(Slerp(a, -b, 0.5f), Slerp(a, b, 0.5f)), 0.1f);
  EXPECT_LT(Distance(SlerpClosest(a, -b, 0.5f), rz(20)), kPrinted);
}

TEST(Slerp, StaysUnitAndEven) {
  Random random;
  for (int i = 0; i < 2000; ++i) {
    const Quat a = random.Rotation();
    const float angle = random.In(0, 1) < 0.3f ? random.In(1e-6f, 1e-3f) : random.In(0, 3);
    const Point3 axis = random.Point();
    const Quat b = a * QuatFromAngAxis({axis, angle});
    const float f = random.In(-4, 4);
    const Quat q = Slerp(a, b, f);
    ASSERT_NEAR(Dot(q, q), 1, 4e-6f);
    // Rounding of b is magnified by f.
    ASSERT_LT(Distance(q, a * QuatFromAngAxis({axis, angle * f})), 4e-6f) << angle << ' ' << f;
  }
  const Quat q{0.5f, 0.5f, 0.5f, 0.5f};
  const Quat half = Slerp(q, -q, 0.5f);
  EXPECT_NEAR(Dot(half, half), 1, kRounding);
  EXPECT_NEAR(Dot(half, q), 0, kRounding);
}

}  // namespace
}  // namespace corvanta
