// SPDX-License-Identifier: MIT
// The arithmetic behind the controllers: operations, components of a place, waves, curves through poses.
#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "host/core/wstr.h"
#include "plugin/connections/exposed.h"
#include "plugin/connections/monotone_cubic.h"
#include "plugin/connections/operations.h"
#include "plugin/connections/waves.h"
#include "plugin/frame/rig_maths.h"

namespace tavrilon {
namespace {

using namespace corvanta;
using float_expose_tm::Component;
using float_operation::Op;

constexpr float kPi = 3.14159265f;

struct OperationCase {
  Op op;
  OperationIn in;
  float result;
};
const OperationCase kOperationCases[] = {
    {Op::A, {3, 9, 9, 9, 9}, 3},
    {Op::Add, {3, 4, 9, 9, 9}, 7},
    {Op::Subtract, {3, 4, 9, 9, 9}, -1},
    {Op::Multiply, {3, 4, 9, 9, 9}, 12},
    {Op::Divide, {3, 4, 9, 9, 9}, 0.75f},
    {Op::Divide, {3, 0, 9, 9, 9}, 3000},
    {Op::Min, {3, 4, 9, 9, 9}, 3},
    {Op::Max, {3, 4, 9, 9, 9}, 4},
    {Op::Clamp, {5, 9, 9, -1, 2}, 2},
    {Op::Clamp, {-5, 9, 9, -1, 2}, -1},
    {Op::Clamp, {1, 9, 9, -1, 2}, 1},
    {Op::ClampTo, {5, 3, 9, 0, 9}, 3},
    {Op::ClampTo, {-5, 3, 9, 0, 9}, 0},
    {Op::Abs, {-5, 9, 9, 9, 9}, 5},
    {Op::Mod, {7, 3, 9, 9, 9}, 1},
    {Op::Mod, {-7, 3, 9, 9, 9}, 2},
    {Op::Mod, {7, -3, 9, 9, 9}, -2},
    {Op::Power, {2, 3, 9, 9, 9}, 8},
    {Op::Power, {-2, 0.5f, 9, 9, 9}, 0},
    {Op::Power, {0, -1, 9, 9, 9}, 0},
    {Op::Sin, {kPi / 6, 9, 9, 9, 9}, 0.5f},
    {Op::Cos, {kPi / 3, 9, 9, 9, 9}, 0.5f},
    {Op::Sqrt, {9, 9, 9, 9, 9}, 3},
    {Op::Sqrt, {-9, 9, 9, 9, 9}, 0},
    {Op::Less, {3, 4, 9, 9, 9}, 1},
    {Op::Less, {4, 4, 9, 9, 9}, 0},
    {Op::Blend, {10, 20, 0.25f, 9, 9}, 12.5f},
};
TEST(Operations, KnownResults) {
  for (const OperationCase& c : kOperationCases) {
    const Operation& row = OperationAt(static_cast<int>(c.op));
    EXPECT_NEAR(row.apply(c.in), c.result, 1e-5f * std::max(1.0f, std::abs(c.result))) << ToUtf8(row.name);
  }
  EXPECT_EQ(&OperationAt(99), &OperationAt(0));
  EXPECT_EQ(FindOperation(L"clampto"), static_cast<int>(Op::ClampTo));
  EXPECT_EQ(FindOperation(L"nothing"), -1);
}

// What an operation does not claim to read must not matter: it is not evaluated.
TEST(Operations, ReadNoMoreThanTheyClaim) {
  std::mt19937 rng(3);
  std::uniform_real_distribution<float> any(-2, 2);
  for (int op = 0; op < kOperationCount; ++op) {
    const Operation& row = OperationAt(op);
    for (int i = 0; i < 50; ++i) {
      const OperationIn in{any(rng), any(rng), any(rng), any(rng), any(rng)};
      OperationIn other{any(rng), any(rng), any(rng), any(rng), any(rng)};
      if (row.inputs & kReadsA) other.a = in.a;
      if (row.inputs & kReadsB) other.b = in.b;
      if (row.inputs & kReadsC) other.c = in.c;
      if (row.inputs & kReadsLo) other.lo = in.lo;
      if (row.inputs & kReadsHi) other.hi = in.hi;
      EXPECT_EQ(row.apply(in), row.apply(other)) << ToUtf8(row.name);
      EXPECT_TRUE(std::isfinite(row.apply(in))) << ToUtf8(row.name);
    }
  }
}

TEST(Operations, OutputIsScaledThenHeld) {
  EXPECT_EQ(Shaped({2, 1}, 3), 7);
  EXPECT_EQ(Shaped({-1, 0, true, -kPi, 0}, 5), -kPi);
}

// Components of a place.

TEST(Exposed, OfAPlaceBuiltByHand) {
  Matrix3 place = ScaleMatrix({2, 3, 4}) * EulerToMatrix({0.3f, -0.2f, 0.5f}, kYZX);
  place.SetTrans({3, 4, 12});
  const struct {
    Component component;
    int order;
    float value;
  } kCases[] = {
      {Component::PositionX, 0, 3},    {Component::PositionY, 0, 4},    {Component::PositionZ, 0, 12},
      {Component::EulerX, kYZX, 0.5f}, {Component::EulerY, kYZX, 0.3f}, {Component::EulerZ, kYZX, -0.2f},
      {Component::Distance, 0, 13},    {Component::ScaleX, 0, 2},       {Component::ScaleY, 0, 3},
      {Component::ScaleZ, 0, 4},
  };
  for (const auto& c : kCases)
    // The angles go through a matrix that is made orthogonal first.
    EXPECT_NEAR(Exposed(place, {}, c.component, c.order), c.value, 1e-5f) << static_cast<int>(c.component);
  EXPECT_NEAR(Exposed(EulerToMatrix({0.9f, 0.4f, 0}), {}, Component::Angle, 0), 0.4f, 1e-5f);
  EXPECT_EQ(Exposed(place, {}, static_cast<Component>(99), 0), 0);
}

// A turn by `a` about the own X axis and then a swing about Y or Z: the twist is a and the swing is its angle, whatever
// the rest.
TEST(Exposed, TwistAndSwingComeApart) {
  std::mt19937 rng(8);
  std::uniform_real_distribution<float> full(-3, 3), part(-2.5f, 2.5f);
  for (int i = 0; i < 500; ++i) {
    const Matrix3 rest = EulerToMatrix({full(rng), full(rng), full(rng)});
    const float a = full(rng), b = part(rng);
    const bool aboutY = i % 2 == 0;
    const Matrix3 place = RotateXMatrix(a) * (aboutY ? RotateYMatrix(b) : RotateZMatrix(b)) * rest;
    SCOPED_TRACE(testing::Message() << a << ' ' << b);
    // Matrices to quaternions and back keep five digits here; half turns lie outside of the ranges.
    constexpr float kNear = 2e-4f;
    ASSERT_NEAR(Exposed(place, rest, Component::TwistX, 0), a, kNear);
    ASSERT_NEAR(Exposed(place, rest, Component::Swing, 0), std::abs(b), kNear);
    ASSERT_NEAR(Driver(place, rest, twist_poses::Component::TwistX), a, kNear);
    ASSERT_NEAR(Driver(place, rest, twist_poses::Component::SwingY), aboutY ? b : 0, kNear);
    ASSERT_NEAR(Driver(place, rest, twist_poses::Component::SwingZ), aboutY ? 0 : b, kNear);
    ASSERT_NEAR(Driver(place, rest, twist_poses::Component::BendAngle), std::abs(b), kNear);
  }
}

TEST(Exposed, TwistStaysWithinAHalfTurn) {
  for (float a = -20; a < 20; a += 0.1f) {
    const Quat q = TwistQuat(a);
    EXPECT_NEAR(TwistX(q), std::remainder(a, 2 * kPi), 1e-5f);
    EXPECT_NEAR(TwistX(-q), TwistX(q), 1e-5f);
  }
}

// Waves.

TEST(Waves, ArePeriodicAndInRange) {
  using float_wave::Wave;
  for (int w = 0; w <= static_cast<int>(Wave::Noise); ++w) {
    const auto wave = static_cast<Wave>(w);
    double sum = 0;
    for (int i = -2000; i < 2000; ++i) {
      const double phase = i / 256.0;  // exact, so that a period later is the same fraction
      const float value = WaveAt(wave, phase, 5);
      ASSERT_GE(value, -1);
      ASSERT_LE(value, 1);
      if (wave != Wave::Noise) {
        ASSERT_EQ(WaveAt(wave, phase + 3), value);
      }
      sum += static_cast<double>(value);
    }
    EXPECT_LT(std::abs(sum / 4000), 0.3) << "swings about 0";
  }
  const struct {
    Wave wave;
    float at[4];  // at 0, 1/8, 1/4, 3/4
  } kShapes[] = {{Wave::Sine, {0, std::sqrt(0.5f), 1, -1}},
                 {Wave::Triangle, {0, 0.5f, 1, -1}},
                 {Wave::Square, {1, 1, 1, -1}},
                 {Wave::Saw, {0, 0.25f, 0.5f, -0.5f}}};
  for (const auto& shape : kShapes) {
    const double kPhases[] = {0, 0.125, 0.25, 0.75};
    for (int i = 0; i < 4; ++i) EXPECT_NEAR(WaveAt(shape.wave, kPhases[i]), shape.at[i], 1e-6f);
  }
  EXPECT_EQ(WaveAt(Wave::Sine, NAN), 0);
  EXPECT_EQ(WaveAt(static_cast<Wave>(9), 0.3), 0);
}

TEST(Waves, NoiseIsSmoothSeededAndItsOwn) {
  using float_wave::Wave;
  int differ = 0;
  for (int i = 0; i < 1000; ++i) {
    const double phase = i * 0.01;
    // The steepest cubic between -1 and 1 rises 3 a period.
    EXPECT_LE(std::abs(WaveAt(Wave::Noise, phase, 1) - WaveAt(Wave::Noise, phase + 0.01, 1)), 0.0301f);
    EXPECT_EQ(WaveAt(Wave::Noise, phase, 1), WaveAt(Wave::Noise, phase, 1));
    differ += std::abs(WaveAt(Wave::Noise, phase, 1) - WaveAt(Wave::Noise, phase, 2)) > 0.05f;
  }
  EXPECT_GT(differ, 500);
  EXPECT_LE(std::abs(WaveAt(Wave::Noise, 1e300)), 1);
}

// Curves through poses.

float Through(const std::vector<CubicPoint>& p, float x) {
  const auto at = [&](int i) { return p[static_cast<size_t>(i)].x; };
  const auto point = [&](int i) { return i < 0 ? nullptr : &p[static_cast<size_t>(i)]; };
  const AroundPlace around = FindAround(static_cast<int>(p.size()), at, x);
  if (around.inner[0] < 0) return point(around.inner[1])->y;
  if (around.inner[1] < 0) return point(around.inner[0])->y;
  return MonotoneCubic(point(around.outer[0]), *point(around.inner[0]), *point(around.inner[1]), point(around.outer[1]),
                       x);
}

TEST(MonotoneCubicTest, StaysBetweenItsPosesAndGoesThroughThem) {
  std::mt19937 rng(4);
  std::uniform_real_distribution<float> value(-5, 5), gap(0.05f, 2);
  for (int round = 0; round < 200; ++round) {
    std::vector<CubicPoint> sorted;
    float x = -3;
    for (int i = 0; i < 7; ++i) sorted.push_back({x += gap(rng), value(rng)});
    std::vector<CubicPoint> shuffled = sorted;
    std::shuffle(shuffled.begin(), shuffled.end(), rng);
    for (size_t i = 0; i + 1 < sorted.size(); ++i) {
      const CubicPoint &a = sorted[i], &b = sorted[i + 1];
      ASSERT_FLOAT_EQ(Through(shuffled, a.x), a.y);
      float last = a.y;
      for (int k = 1; k <= 20; ++k) {
        const float at = a.x + (b.x - a.x) * static_cast<float>(k) / 21;
        const float y = Through(shuffled, at);
        ASSERT_EQ(y, Through(sorted, at)) << "in any order";
        // Rounding of values up to 5.
        ASSERT_GE((y - last) * (b.y > a.y ? 1.0f : -1.0f), -1e-5f);
        last = y;
      }
      ASSERT_LE((last - b.y) * (b.y > a.y ? 1.0f : -1.0f), 1e-5f);
    }
    EXPECT_EQ(Through(shuffled, -99), sorted.front().y);
    EXPECT_EQ(Through(shuffled, 99), sorted.back().y);
  }
  EXPECT_FLOAT_EQ(Through({{0, 1}, {2, 5}}, 0.5f), 2) << "two poses: a straight line";
}

// The curve has one slope where two segments meet.
TEST(MonotoneCubicTest, IsSmoothAtItsPoses) {
  const std::vector<CubicPoint> p = {{0, 0}, {1, 1}, {3, 2}, {4, 6}};
  for (const float x : {1.0f, 3.0f}) {
    const float h = 1e-3f;
    const float left = (Through(p, x) - Through(p, x - h)) / h, right = (Through(p, x + h) - Through(p, x)) / h;
    // Differences over 0.001 of values with seven digits, and the curvature over that step.
    EXPECT_NEAR(left, right, 2e-2f);
    EXPECT_GT(left, 0.1f);
  }
}

}  // namespace
}  // namespace tavrilon
