// SPDX-License-Identifier: MIT
#include "plugin/fbx/format/affine.h"

#include <gtest/gtest.h>

#include <random>

#include "plugin/fbx/format/time.h"
#include "plugin/fbx_format/scene_samples.h"

namespace tavrilon::fbx {
namespace {

// A quarter turn about an axis takes the next axis to the one after it, and that to the next one's opposite.
TEST(FbxAffine, RotationsAreRightHanded) {
  for (size_t axis = 0; axis < 3; ++axis) {
    Vector3 degrees, next, after;
    degrees[axis] = 90;
    next[(axis + 1) % 3] = after[(axis + 2) % 3] = 1;
    ExpectNear(next * Rotation(degrees), after);
    ExpectNear(after * Rotation(degrees), next * -1.0);
  }
}

struct Order {
  RotationOrder order;
  size_t first, second, third;
};
const Order kOrders[] = {{RotationOrder::XYZ, 0, 1, 2},       {RotationOrder::XZY, 0, 2, 1},
                         {RotationOrder::YZX, 1, 2, 0},       {RotationOrder::YXZ, 1, 0, 2},
                         {RotationOrder::ZXY, 2, 0, 1},       {RotationOrder::ZYX, 2, 1, 0},
                         {RotationOrder::SphericXYZ, 0, 1, 2}};

TEST(FbxAffine, OrdersAreProductsOfSingleTurns) {
  const Vector3 degrees{20, -50, 130};
  for (const Order& row : kOrders) {
    SCOPED_TRACE(static_cast<int>(row.order));
    const auto single = [&degrees](size_t axis) {
      Vector3 alone;
      alone[axis] = degrees[axis];
      return Rotation(alone);
    };
    ExpectNear(Rotation(degrees, row.order), single(row.first) * single(row.second) * single(row.third));
  }
}

// Whatever the triple, it comes back itself when it is what was asked to be near to.
TEST(FbxAffine, NearestTripleOfARotation) {
  std::mt19937 rng(7);
  std::uniform_real_distribution<double> turns(-900, 900), middle(-85, 85), little(-4, 4);
  std::uniform_int_distribution<int> flip(0, 1);
  for (int i = 0; i < 3000; ++i) {
    const Order& row = kOrders[static_cast<size_t>(i) % 6];
    Vector3 degrees{turns(rng), turns(rng), turns(rng)};
    // Away from the middle angle's quarter turns, where the triple is not unique; any number of turns on top, and the
    // second solution as often as the first.
    degrees[row.second] = middle(rng) + 180 * flip(rng) + 360 * flip(rng);
    const Vector3 near = degrees + Vector3{little(rng), little(rng), little(rng)};
    SCOPED_TRACE(testing::Message() << static_cast<int>(row.order) << ": " << degrees.x << ' ' << degrees.y << ' '
                                    << degrees.z);
    ExpectNear(RotationToEuler(Rotation(degrees, row.order), near, row.order), degrees, 1e-7);
  }
}

TEST(FbxAffine, GimbalLockKeepsTheFirstAngle) {
  for (const Order& row : kOrders) {
    for (const double middle : {90.0, -90.0}) {
      SCOPED_TRACE(testing::Message() << static_cast<int>(row.order) << ' ' << middle);
      Vector3 degrees, near;
      degrees[row.first] = 25;
      degrees[row.second] = middle;
      degrees[row.third] = 40;
      near[row.first] = 12;
      const Affine turn = Rotation(degrees, row.order);
      const Vector3 back = RotationToEuler(turn, near, row.order);
      EXPECT_NEAR(back[row.first], 12, 1e-9);
      ExpectNear(Rotation(back, row.order), turn, 1e-7);
    }
  }
}

TEST(FbxAffine, InverseAndFileOrder) {
  const Affine m = Scaling({2, -3, 0.5}) * Rotation({10, 20, 30}) * Translation({4, 5, 6});
  ExpectNear(m * Inverse(m), Affine());
  EXPECT_EQ(Inverse(Scaling({1, 0, 1})), Affine());
  const std::array<double, 16> file = ToFile(Translation({4, 5, 6}));
  const std::array<double, 16> expected{1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 4, 5, 6, 1};
  EXPECT_EQ(file, expected);
  EXPECT_EQ(FromFile(ToFile(m)), m);
}

TEST(FbxAffine, LocalMatrixIsTheProductOfItsParts) {
  NodeTransform t;
  t.translation = {1, 2, 3};
  t.rotation = {0, 0, 90};
  t.scaling = {2, 1, 1};
  t.rotationPivot = {1, 0, 0};
  t.rotationOffset = {0, 0, 7};
  t.scalingPivot = {0, 5, 0};
  t.scalingOffset = {0.5, 0, 0};
  // By hand: (1, 1, 0) scaled about its pivot: (2, 1, 0); offset: (2.5, 1, 0); turned about (1, 0, 0): (0, 1.5, 0);
  // moved by offset and translation.
  ExpectNear(Vector3{1, 1, 0} * LocalMatrix(t), {1, 3.5, 10});
  t.rotationPivot = t.rotationOffset = t.scalingPivot = t.scalingOffset = t.translation = {};
  t.scaling = {1, 1, 1};
  t.order = RotationOrder::ZYX;
  t.rotation = {90, 0, 90};
  t.preRotation = {0, 90, 0};
  t.postRotation = {0, 0, 90};
  // Not in force: X then Z alone.
  ExpectNear(Vector3{0, 1, 0} * LocalMatrix(t), {0, 0, 1});
  t.rotationActive = true;
  // Post undone: (1, 0, 0); Z: (0, 1, 0); X: (0, 0, 1); pre: (1, 0, 0).
  ExpectNear(Vector3{0, 1, 0} * LocalMatrix(t), {1, 0, 0});
  ExpectNear(LocalRotation(t), LocalMatrix(t));
}

TEST(FbxAffine, GeometryIsScaledThenTurnedThenMoved) {
  NodeTransform t;
  t.geometricScaling = {2, 2, 2};
  t.geometricRotation = {0, 0, 90};
  t.geometricTranslation = {0, 0, 1};
  ExpectNear(Vector3{1, 0, 0} * GeometricMatrix(t), {0, 2, 1});
}

TEST(FbxTime, RatesAndTicks) {
  // The rates that films and screens are made at have a mode and whole ticks a frame.
  for (int64_t rate : {24, 25, 30, 48, 50, 60, 100, 120}) {
    EXPECT_EQ(FbxTime::GetFrameRate(FbxTime::ConvertFrameRateToTimeMode(static_cast<double>(rate))), rate);
    EXPECT_EQ(FbxTime::kTicksPerSecond % rate, 0) << rate;
  }
  EXPECT_EQ(FbxTime::GetFrameRate(TimeMode::Pal), 25);
  EXPECT_EQ(FbxTime::ConvertFrameRateToTimeMode(29.97), TimeMode::Custom);
  EXPECT_EQ(FbxTime::ConvertFrameRateToTimeMode(29.97, 1e-3), TimeMode::NtscFullFrame);
  EXPECT_EQ(FbxTime::GetFrameRate(TimeMode::Custom), 0);
  EXPECT_EQ(FbxTime::FromSeconds(1.0 / 24).ticks, 1924423250);
  EXPECT_EQ(FbxTime::FromSeconds(-1).ticks, -FbxTime::kTicksPerSecond);
  EXPECT_EQ(FbxTime::FromSeconds(NAN).ticks, 0);
  EXPECT_GT(FbxTime::FromSeconds(1e30).ticks, int64_t{1} << 62);
  EXPECT_LT(FbxTime::FromSeconds(-1e30).ticks, -(int64_t{1} << 62));
}

}  // namespace
}  // namespace tavrilon::fbx
