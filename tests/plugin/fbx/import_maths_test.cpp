// SPDX-License-Identifier: MIT
// Keys through samples, and matrices in their parts: pure functions.
#include "import_scenes_test.h"
#include "plugin/fbx/importer/key_fit.h"
#include "plugin/fbx/importer/trs.h"

namespace tavrilon::fbx_import {
namespace {

using fbx::Affine;
using fbx::Vector3;
using import_test::Dice;

double At(const std::vector<FittedKey>& keys, int sample, size_t c) {
  size_t k = 0;
  while (k + 2 < keys.size() && keys[k + 1].sample <= sample) ++k;
  const FittedKey &a = keys[k], &b = keys[k + 1];
  const double length = b.sample - a.sample, u = (sample - a.sample) / length, v = 1 - u;
  // Control points of the cubic.
  const double p1 = a.value[c] + a.outSlope[c] * length / 3, p2 = b.value[c] - b.inSlope[c] * length / 3;
  return v * v * v * a.value[c] + 3 * v * v * u * p1 + 3 * v * u * u * p2 + u * u * u * b.value[c];
}

TEST(KeyFit, PassesEverySampleWithinTolerance) {
  Dice dice(11);
  for (int round = 0; round < 60; ++round) {
    const double tolerance = std::pow(10, dice.In(-5, -1));
    const int kind = dice.Of(3);  // smooth, noisy, with jumps
    std::vector<Vector3> samples;
    for (int i = 0, n = 2 + dice.Of(300); i < n; ++i) {
      const double jump = kind == 2 && i / 20 % 2 ? 3 : 0;
      const double noise = kind == 1 ? dice.In(-0.1, 0.1) : 0;
      samples.push_back({std::sin(i * 0.1) + noise, std::cos(i * 0.07) + jump, 2 * std::sin(i * 0.01)});
    }
    for (const size_t dimensions : {1, 3}) {
      const std::vector<FittedKey> keys = FitKeys(samples, static_cast<int>(dimensions), tolerance);
      ASSERT_EQ(keys.front().sample, 0);
      ASSERT_EQ(keys.back().sample, static_cast<int>(samples.size()) - 1);
      // A rounding of the keys' values to single precision comes on top.
      const double bound = tolerance + 1e-6;
      for (size_t i = 0; i < samples.size(); ++i) {
        for (size_t c = 0; c < dimensions; ++c) ASSERT_NEAR(At(keys, static_cast<int>(i), c), samples[i][c], bound);
      }
      if (kind == 0 && tolerance > 1e-3) {
        EXPECT_LT(keys.size(), samples.size() / 5 + 3);
      }
    }
  }
}

// What one cubic made comes back as two keys with its slopes.
TEST(KeyFit, FindsACubicAgain) {
  std::vector<Vector3> samples;
  for (int i = 0; i <= 100; ++i) {
    const double u = i / 100.0;
    samples.push_back({1 + 2 * u - 5 * u * u + 4 * u * u * u, 0, 0});
  }
  const std::vector<FittedKey> keys = FitKeys(samples, 1, 1e-6);
  ASSERT_EQ(keys.size(), 2u);
  EXPECT_NEAR(keys[0].outSlope.x * 100, 2, 1e-4);  // 2 - 10 u + 12 u^2 at 0
  EXPECT_NEAR(keys[1].inSlope.x * 100, 4, 1e-4);   // and at 1
}

TEST(KeyFit, BetweenSamplesAJumpDoesNotSwingOut) {
  std::vector<Vector3> samples(20);
  for (size_t i = 10; i < samples.size(); ++i) samples[i].x = 1;
  for (const FittedKey& key : FitKeys(samples, 1, 1e-6)) {
    EXPECT_GE(key.value.x, 0);
    EXPECT_LE(key.value.x, 1);
  }
}

TEST(Trs, PartsMakeTheMatrixAgain) {
  Dice dice(12);
  for (int round = 0; round < 1000; ++round) {
    Trs trs{dice.Vector(10), dice.Vector(180), {dice.In(0.1, 3), dice.In(0.1, 3), dice.In(0.1, 3)}};
    if (dice.Of(2)) trs.scaling = -trs.scaling;
    if (dice.Of(4) == 0) trs.scaling[static_cast<size_t>(dice.Of(3))] *= -1;
    if (dice.Of(4) == 0) trs.rotation.y = 90;  // gimbal lock
    const Affine m = ComposeTrs(trs);
    const TrsSplit split = SplitTrs(m, dice.Vector(400));
    const Affine again = ComposeTrs(split.trs);
    EXPECT_LT(split.shear, 1e-12);
    // Near gimbal lock the angles are read off sines below 1e-6.
    for (int i = 0; i < 4; ++i) ASSERT_LT(Length(again.row[i] - m.row[i]), 1e-5) << round;
  }
}

TEST(Trs, AxesThatLeanOrVanish) {
  struct Row {
    const char* name;
    Affine m;
    Vector3 scaling;
    bool sheared;
  };
  const Row kRows[] = {
      {"leaning", {{{1, 0, 0}, {0.5, 1, 0}, {0, 0, 1}, {}}}, {1, std::sqrt(1.25), 1}, true},
      {"one without length", {{{1, 0, 0}, {0, 0, 0}, {0, 0, 2}, {}}}, {1, 0, 2}, false},
      {"one direction left", {{{0, 0, 0}, {0, 3, 0}, {0, 0, 0}, {}}}, {0, 3, 0}, false},
      {"none", {{{}, {}, {}, {}}}, {0, 0, 0}, false},
      {"two along one line", {{{1, 0, 0}, {2, 0, 0}, {0, 0, 1}, {}}}, {1, 2, 1}, true},
  };
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.name);
    const TrsSplit split = SplitTrs(row.m, {1, 2, 3});
    for (size_t i = 0; i < 3; ++i) EXPECT_NEAR(std::abs(split.trs.scaling[i]), row.scaling[i], 1e-12);
    EXPECT_EQ(split.shear > kShearBound, row.sheared);
    EXPECT_TRUE(IsFinite(split.trs.rotation));
    // The first axis that has a direction keeps it.
    const Affine again = ComposeTrs(split.trs);
    for (size_t i = 0; i < 3; ++i) {
      if (row.scaling[i] == 0) continue;
      EXPECT_LT(Length(again.row[i] - row.m.row[i]), 1e-9);
      break;
    }
  }
}

}  // namespace
}  // namespace tavrilon::fbx_import
