// SPDX-License-Identifier: MIT
// Matrices and tolerances of the constraint tests.
#pragma once

#include <gtest/gtest.h>

#include <random>

#include "host/maths/euler.h"

namespace tavrilon::constraint_tests {

// Products of a few single-precision matrices with places up to 100: some 1e-5 of rounding.
constexpr float kTolerance = 1e-3f;

inline void ExpectNear(const corvanta::Matrix3& a, const corvanta::Matrix3& b, const char* what = "") {
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 3; ++c) ASSERT_NEAR(a.row[r][c], b.row[r][c], kTolerance) << what << " row " << r << " " << c;
}

inline float Random(std::mt19937& rng, float from, float to) {
  return std::uniform_real_distribution<float>(from, to)(rng);
}

inline corvanta::Matrix3 RandomRigid(std::mt19937& rng) {
  corvanta::Matrix3 tm = corvanta::EulerToMatrix({Random(rng, -3, 3), Random(rng, -3, 3), Random(rng, -3, 3)});
  tm.SetTrans({Random(rng, -100, 100), Random(rng, -100, 100), Random(rng, -100, 100)});
  return tm;
}

}  // namespace tavrilon::constraint_tests
