// SPDX-License-Identifier: MIT
#include "plugin/frame/rig_maths.h"

#include "host/maths/maths_test.h"

namespace tavrilon {
namespace {

using namespace corvanta;

constexpr float kRounding = 3e-6f;  // some twenty float operations on numbers up to 1
const Point3 kX{1, 0, 0}, kY{0, 1, 0};

TEST(RigMaths, KnownTurns) {
  const float half = 0.70710678f;
  const struct {
    const char* name;
    Quat q, expected;
  } rows[] = {
      {"X to Y", RotationBetween(kX, kY), {0, 0, -half, half}},
      {"X to Y by name", RotationFromX(kY * 5), {0, 0, -half, half}},
      {"twist", TwistQuat(Deg(90)), {-half, 0, 0, half}},
      {"Y to -Y, about Y x X", RotationBetween(kY, -kY), {0, 0, -1, 0}},
      {"X to -X, about X x Y", RotationBetween(kX, -kX), {0, 0, 1, 0}},
      {"-X from X, about Z", RotationFromX(-kX), {0, 0, 1, 0}},
      {"too short", RotationBetween({0.05f, 0, 0}, {0, 0.05f, 0}), {}},
      {"zero", RotationFromX({}), {}},
  };
  for (const auto& r : rows) EXPECT_LT(Distance(r.q, r.expected), kRounding) << r.name;
  EXPECT_LT(Distance(QuatMatrix(TwistQuat(0.4f)), RotateXMatrix(0.4f)), kRounding);
}

TEST(RigMaths, TurnsLandOnTheirGoal) {
  Random random;
  for (int i = 0; i < 3000; ++i) {
    const Point3 a = Normalize(random.Point());
    // Every third goal is nearly opposite, every other third nearly the same.
    const float closeness = i % 3 == 0 ? 2 : std::pow(10.0f, random.In(-7, -1));
    const Point3 b =
        i % 3 == 0 ? Normalize(random.Point()) : Normalize(a * (i % 3 == 1 ? 1 : -1) + random.Point(closeness));
    const Quat q = RotationBetween(a, b);
    ASSERT_NEAR(Dot(q, q), 1, kRounding);
    ASSERT_LT(Distance(a * QuatMatrix(q), b), kRounding) << closeness;
    ASSERT_LT(Distance(kX * QuatMatrix(RotationFromX(b)), b), kRounding);
    ASSERT_NEAR(AngAxisFromQuat(q).angle, AngleBetween(a, b), 1e-5f);
  }
  // An arc cosine would answer 0 or be off by a third of a milliradian here.
  EXPECT_NEAR(AngleBetween(kX, {1, 1e-4f, 0}), 1e-4f, 1e-9f);
  EXPECT_FLOAT_EQ(AngleBetween(kX, -kX), kPi);
}

TEST(RigMaths, Frames) {
  Random random;
  for (int i = 0; i < 1000; ++i) {
    const Point3 o = random.Point(50), x = random.Point(50);
    const Point3 u = i % 4 ? random.Point(50) : o + (x - o) * random.In(-2, 2);  // every fourth is parallel
    const Matrix3 m = FrameFromPoints(o, x, u);
    ASSERT_LT(Distance((m * Inverse(m)), Matrix3{}), 4e-5f);  // places up to 50
    ASSERT_NEAR(Determinant(m), 1, kRounding);
    ASSERT_EQ(m.GetTrans(), o);
    ASSERT_LT(Distance(m.row[0], Normalize(x - o)), kRounding);
    ASSERT_NEAR(Dot(Cross(m.row[0], m.row[1]), m.row[2]), 1, kRounding);
    if (i % 4 != 0) {
      ASSERT_GT(Dot(m.row[1], u - o), 0);
    }
  }
  const Matrix3 parallel = FrameFromVectors({0, 0, 3}, {0, 0, 1});  // X leans least: row 1 lies on its side
  EXPECT_LT(Distance(parallel.row[1], kX), kRounding);
  EXPECT_EQ(FrameFromVectors({}, kY), Matrix3{});
}

TEST(RigMaths, Scalars) {
  EXPECT_FLOAT_EQ(SafeDivide(1, 0.0005f, 0.001f), 1000);
  EXPECT_FLOAT_EQ(SafeDivide(1, -0.0005f, 0.001f), 1000);
  EXPECT_FLOAT_EQ(SafeDivide(1, -2, 0.001f), -0.5f);
  EXPECT_EQ(ClampValue(5, 0, 3), 3);
  EXPECT_EQ(ClampValue(std::nanf(""), 0.0f, 3.0f), 0);
  const struct {
    float x, v, expected;
  } rows[] = {{0, 0.5f, 0.5f},
              {10, 0.5f, 0.5f + 2 * kTwoPi},
              {-10, 0.5f, 0.5f - 2 * kTwoPi},
              {3, -3, -3 + kTwoPi},
              {0.1f, kTwoPi, 0}};
  for (const auto& r : rows) EXPECT_NEAR(NearestAngle(r.x, r.v), r.expected, 2e-6f) << r.x << ' ' << r.v;
}

TEST(RigMaths, OrthoQuatIgnoresScale) {
  Random random;
  for (int i = 0; i < 200; ++i) {
    const Quat q = random.Rotation();
    EXPECT_LT(Distance(OrthoQuat(ScaleMatrix({2, 3, 0.5f}) * QuatMatrix(q)), q), kRounding);
  }
}

TEST(RigMaths, BlendMatrix) {
  Random random;
  for (int i = 0; i < 300; ++i) {
    const Matrix3 a = random.Affine(), b = random.Affine();
    ASSERT_EQ(BlendMatrix(a, b, 0), a);
    ASSERT_EQ(BlendMatrix(a, b, 1), b);
    ASSERT_LT(Distance(BlendMatrix(a, b, 1e-4f), a), 3e-3f);  // no jump at the ends
    ASSERT_LT(Distance(BlendMatrix(a, b, 1 - 1e-4f), b), 3e-3f);
    ASSERT_LT(Distance(BlendMatrix(a, a, 0.5f), a), 1e-5f);
  }
  const Matrix3 turned = RotateZMatrix(Deg(80)) * TransMatrix({2, 4, 6});
  const Matrix3 middle = BlendMatrix({}, turned, 0.25f);
  EXPECT_LT(Distance(middle, RotateZMatrix(Deg(20)) * TransMatrix({0.5f, 1, 1.5f})), kRounding);
}

}  // namespace
}  // namespace tavrilon
