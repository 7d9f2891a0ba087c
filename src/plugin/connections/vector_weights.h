// SPDX-License-Identifier: MIT
// Weights by component and their inverses. Plain values only.
#pragma once

#include <cmath>

#include "host/maths/point.h"

namespace tavrilon {

inline constexpr float kSmallestWeight = 1e-6f;

/// `rest` + (v - rest) * w by component.
inline corvanta::Point3 Weighted(const corvanta::Point3& v, const corvanta::Point3& w, float rest = 0) {
  corvanta::Point3 result;
  for (int i = 0; i < 3; ++i) result[i] = rest + (v[i] - rest) * w[i];
  return result;
}

/// The v whose weighted value is `wanted`; a component of no weight stays at `present`.
inline corvanta::Point3 Unweighted(const corvanta::Point3& wanted, const corvanta::Point3& w,
                                   const corvanta::Point3& present, float rest = 0) {
  corvanta::Point3 result;
  for (int i = 0; i < 3; ++i)
    result[i] = std::abs(w[i]) > kSmallestWeight ? rest + (wanted[i] - rest) / w[i] : present[i];
  return result;
}

}  // namespace tavrilon
