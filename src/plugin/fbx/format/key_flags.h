// SPDX-License-Identifier: MIT
// How files code the shapes of keys: bits of KeyAttrFlags, and the tangents' weights packed into KeyAttrDataFloat.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace tavrilon::fbx {

/// By Interpolation: constant, constant with the next key's value, linear, cubic.
inline constexpr uint32_t kInterpolationFlags[] = {0x2, 0x2 | 0x100, 0x4, 0x8};
/// The slopes are as they stand, on both sides by themselves; other bits let programs compute them anew.
inline constexpr uint32_t kTangentUser = 0x400, kTangentBroken = 0x800;
inline constexpr uint32_t kRightWeighted = 0x01000000, kNextLeftWeighted = 0x02000000;

/// Weights are whole parts of this; the right one in the low 16 bits.
inline constexpr float kWeightParts = 9999;
inline constexpr uint32_t kThirdWeight = 3333;
/// Weights beyond 0 to 1 are clamped.
inline uint32_t PackedWeight(float weight) {
  return static_cast<uint32_t>(std::lround(std::clamp(weight, 0.0f, 1.0f) * kWeightParts));
}

}  // namespace tavrilon::fbx
