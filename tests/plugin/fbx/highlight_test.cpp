// SPDX-License-Identifier: MIT
#include "plugin/fbx/highlight.h"

#include <gtest/gtest.h>

#include <limits>

namespace tavrilon {
namespace {

TEST(Highlight, GoesThereAndBack) {
  for (double roughness = 0.01; roughness <= 1; roughness += 0.01)
    EXPECT_NEAR(RoughnessOf(ShininessOf(roughness)), roughness, 1e-12) << roughness;  // a root of a double
  // A half rough surface by hand: 2 / 0.25 - 2.
  EXPECT_DOUBLE_EQ(ShininessOf(0.5), 6);
  for (const double wild : {-1.0, 0.0, 1e300, std::numeric_limits<double>::infinity(), std::nan("")}) {
    EXPECT_GE(RoughnessOf(wild), 0) << wild;
    EXPECT_LE(RoughnessOf(wild), 1) << wild;
  }
}

}  // namespace
}  // namespace tavrilon
