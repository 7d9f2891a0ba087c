// SPDX-License-Identifier: MIT
// Random values and comparisons shared by the tests of the value types.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

#include "host/maths/euler.h"
#include "host/maths/matrix3.h"

namespace corvanta {

/// Fixed seeds: a failure comes back on the next run.
class Random {
 public:
  explicit Random(unsigned seed = 7) : engine_(seed) {}
  float In(float lo, float hi) { return std::uniform_real_distribution<float>(lo, hi)(engine_); }
  Point3 Point(float size = 1) { return {In(-size, size), In(-size, size), In(-size, size)}; }
  /// Evenly over the sphere.
  Quat Rotation() {
    std::normal_distribution<float> normal;
    return Normalize(Quat{normal(engine_), normal(engine_), normal(engine_), normal(engine_)});
  }
  /// Rotation, place, and a general 3 x 3 part with entries up to `size`.
  Matrix3 Affine(float size = 1) {
    Matrix3 m;
    for (Point3& r : m.row) r = Point(size);
    return m;
  }

 private:
  std::mt19937 engine_;
};

inline float Deg(float degrees) { return degrees * kDegToRad; }
inline Point3 Deg(float x, float y, float z) { return {Deg(x), Deg(y), Deg(z)}; }

/// The largest difference of two matrices' entries.
inline float Distance(const Matrix3& a, const Matrix3& b) {
  float d = 0;
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 3; ++j) d = std::max(d, std::abs(a.row[i][j] - b.row[i][j]));
  return d;
}
inline float Distance(const Point3& a, const Point3& b) { return Length(a - b); }
/// A quaternion and its negative are the same rotation.
inline float Distance(const Quat& a, const Quat& b) {
  const Quat c = MakeClosest(b, a);
  return std::max({std::abs(a.x - c.x), std::abs(a.y - c.y), std::abs(a.z - c.z), std::abs(a.w - c.w)});
}
inline float Size(const Matrix3& m) { return Distance(m, ScaleMatrix({0, 0, 0})); }

}  // namespace corvanta
