// SPDX-License-Identifier: MIT
// Quaternions and axis angles. docs/conventions.md tells the one rotation convention and why its signs are so:
// vectors stand on the left, `a * b` applies a first, and a positive AngAxis turns row vectors clockwise.
#pragma once

#include "host/maths/point.h"

namespace corvanta {

/// x, y, z, w in this order in memory; 16 bytes.
struct Quat {
  float x = 0, y = 0, z = 0, w = 1;
  float operator[](int i) const { return (&x)[i]; }
  float& operator[](int i) { return (&x)[i]; }
  bool operator==(const Quat&) const = default;
};

/// A turn about `axis` by `angle` radians. The axis is never normalised on construction: a gimbal tool sends a
/// marked axis through it bit by bit.
struct AngAxis {
  Point3 axis{1, 0, 0};
  float angle = 0;
  bool operator==(const AngAxis&) const = default;
};

/// The Hamilton product; applies `a` first.
inline Quat operator*(const Quat& a, const Quat& b) {
  return {a.w * b.x + b.w * a.x + a.y * b.z - a.z * b.y, a.w * b.y + b.w * a.y + a.z * b.x - a.x * b.z,
          a.w * b.z + b.w * a.z + a.x * b.y - a.y * b.x, a.w * b.w - a.x * b.x - a.y * b.y - a.z * b.z};
}
inline Quat operator-(const Quat& q) { return {-q.x, -q.y, -q.z, -q.w}; }
inline float Dot(const Quat& a, const Quat& b) { return a.x * b.x + a.y * b.y + a.z * b.z + a.w * b.w; }
inline Quat Conjugate(const Quat& q) { return {-q.x, -q.y, -q.z, q.w}; }
/// Conjugate over the squared norm; the zero quaternion gives the identity.
inline Quat Inverse(const Quat& q) {
  const float n = Dot(q, q);
  if (n <= 0) return {};
  return {-q.x / n, -q.y / n, -q.z / n, q.w / n};
}
/// `a * Inverse(b)`.
inline Quat operator/(const Quat& a, const Quat& b) { return a * Inverse(b); }
/// The unit quaternion; the zero quaternion gives the identity.
inline Quat Normalize(const Quat& q) {
  const float n = std::sqrt(Dot(q, q));
  return n > 0 ? Quat{q.x / n, q.y / n, q.z / n, q.w / n} : Quat{};
}
/// `q` or `-q`, whichever lies on the hemisphere of `reference`.
inline Quat MakeClosest(const Quat& q, const Quat& reference) { return Dot(q, reference) < 0 ? -q : q; }

/// (n sin a/2, cos a/2) with n the normalised axis; a zero axis gives the identity.
Quat QuatFromAngAxis(const AngAxis& aa);
/// Angle 2 atan2(|v|, w) in 0 to 2 pi, axis v / |v|; no turn gives axis (1, 0, 0) and angle 0.
AngAxis AngAxisFromQuat(const Quat& q);
/// Spherical interpolation. Extrapolates for f below 0 and above 1, does not choose a hemisphere, and blends
/// nearly parallel inputs linearly with normalising.
Quat Slerp(const Quat& a, const Quat& b, float f);
/// `MakeClosest(b, a)`, then `Slerp`.
Quat SlerpClosest(const Quat& a, const Quat& b, float f);

}  // namespace corvanta
