// SPDX-License-Identifier: MIT
// Comparing and making up values for controller tests.
#pragma once

#include <cmath>
#include <random>

#include "host/maths/euler.h"

namespace tavrilon {

inline bool IsNear(const corvanta::Point3& a, const corvanta::Point3& b, float tolerance) {
  for (int i = 0; i < 3; ++i)
    if (!(std::abs(a[i] - b[i]) <= tolerance)) return false;
  return true;
}
inline bool IsNear(const corvanta::Matrix3& a, const corvanta::Matrix3& b, float tolerance) {
  for (int i = 0; i < 4; ++i)
    if (!IsNear(a.row[i], b.row[i], tolerance)) return false;
  return true;
}
/// A quaternion and its negative are the same rotation.
inline bool IsNear(const corvanta::Quat& a, const corvanta::Quat& b, float tolerance) {
  const corvanta::Quat c = corvanta::MakeClosest(b, a);
  for (int i = 0; i < 4; ++i)
    if (!(std::abs(a[i] - c[i]) <= tolerance)) return false;
  return true;
}

inline corvanta::Point3 RandomPoint(std::mt19937& rng, float low, float high) {
  std::uniform_real_distribution<float> number(low, high);
  const float x = number(rng), y = number(rng), z = number(rng);
  return {x, y, z};
}
inline corvanta::Quat RandomQuat(std::mt19937& rng) {
  std::normal_distribution<float> number;
  const float x = number(rng), y = number(rng), z = number(rng), w = number(rng);
  return corvanta::Normalize(corvanta::Quat{x, y, z, w});
}
inline corvanta::Matrix3 RandomRigid(std::mt19937& rng, float distance) {
  corvanta::Matrix3 m = corvanta::MakeMatrix(RandomQuat(rng));
  m.SetTrans(RandomPoint(rng, -distance, distance));
  return m;
}

}  // namespace tavrilon
