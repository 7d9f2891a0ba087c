// SPDX-License-Identifier: MIT
// Axis-aligned boxes.
#pragma once

#include <limits>

#include "host/maths/matrix3.h"

namespace corvanta {

/// Empty until the first point is added.
struct Box3 {
  static constexpr float kInf = std::numeric_limits<float>::infinity();
  Point3 min{kInf, kInf, kInf};
  Point3 max{-kInf, -kInf, -kInf};

  bool IsEmpty() const { return min.x > max.x; }
  Box3& operator+=(const Point3& p) {
    for (int i = 0; i < 3; ++i) {
      min[i] = p[i] < min[i] ? p[i] : min[i];
      max[i] = p[i] > max[i] ? p[i] : max[i];
    }
    return *this;
  }
  Box3& operator+=(const Box3& b) {
    if (!b.IsEmpty()) *this += b.min, *this += b.max;
    return *this;
  }
  Point3 Center() const { return IsEmpty() ? Point3{} : (min + max) * 0.5f; }
  /// Length of the diagonal; 0 for an empty box.
  float Diagonal() const { return IsEmpty() ? 0 : Length(max - min); }
  /// The corner with bit 0 of `i` choosing x, bit 1 y, bit 2 z.
  Point3 Corner(int i) const { return {i & 1 ? max.x : min.x, i & 2 ? max.y : min.y, i & 4 ? max.z : min.z}; }
};
/// The box around the transformed box's eight corners.
inline Box3 operator*(const Box3& b, const Matrix3& m) {
  Box3 r;
  if (!b.IsEmpty())
    for (int i = 0; i < 8; ++i) r += b.Corner(i) * m;
  return r;
}

}  // namespace corvanta
