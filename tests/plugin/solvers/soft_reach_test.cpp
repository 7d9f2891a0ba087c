// SPDX-License-Identifier: MIT
#include "plugin/solvers/soft_reach.h"

#include <gtest/gtest.h>

#include <cmath>

namespace tavrilon {
namespace {

TEST(SoftReach, KnownReaches) {
  // Length 10, zone 2: the zone begins at 8, and one zone farther the rest of the way has shrunk by e.
  EXPECT_NEAR(SoftenReach({7, 10, 0.2f, 0}).distance, 7, 1e-6f);
  EXPECT_NEAR(SoftenReach({8, 10, 0.2f, 0}).distance, 8, 1e-6f);
  EXPECT_NEAR(SoftenReach({10, 10, 0.2f, 0}).distance, 10 - 2 / 2.7182818f, 1e-5f);
  EXPECT_NEAR(SoftenReach({12, 10, 0.2f, 1}).boneScale, 12 / (10 - 2 / 7.3890561f), 1e-5f);
  EXPECT_NEAR(SoftenReach({12, 10, 0.2f, 1}).distance, 12, 1e-5f);
  EXPECT_EQ(SoftenReach({12, 10, 0, 0.5f}).distance, 12) << "no softness, nothing done";
}

TEST(SoftReach, UnsoftenIsTheInverse) {
  for (const float softness : {0.001f, 0.05f, 0.3f, 1.0f})
    for (const float stretch : {0.0f, 0.001f, 0.1f, 0.5f, 0.9f, 1.0f})
      for (float d = 0; d < 30; d += 0.37f) {
        const float reach = SoftenReach({d, 10, softness, stretch}).distance;
        const float back = UnsoftenReach({reach, 10, softness, stretch});
        // Near full reach many goals give one place in single precision: compare what they give.
        EXPECT_NEAR(SoftenReach({back, 10, softness, stretch}).distance, reach, 1e-4f * softness * 10 + 3e-6f * (1 + d))
            << softness << ' ' << stretch << ' ' << d;
      }
}

TEST(SoftReach, UnsoftenTakesBackPlainStretch) {
  EXPECT_FLOAT_EQ(UnsoftenReach({11, 10, 0, 0.5f}), 12);
  EXPECT_FLOAT_EQ(UnsoftenReach({9, 10, 0, 0.5f}), 9);
  EXPECT_TRUE(std::isfinite(UnsoftenReach({10, 10, 0.1f, 0}))) << "full reach is never come to";
}

}  // namespace
}  // namespace tavrilon
