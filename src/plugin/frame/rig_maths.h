// SPDX-License-Identifier: MIT
// The rig's mathematics: pure functions over the host's values, shared by controllers, solvers and constraints.
// Rotation signs are those of docs/conventions.md; angles are radians.
#pragma once

#include "host/maths/euler.h"
#include "host/maths/matrix3.h"

namespace tavrilon {

using corvanta::Matrix3;
using corvanta::Point3;
using corvanta::Quat;

/// The turn from `a` to `b`: `a * QuatMatrix(result)` points along b. Identity when sqrt(|a|^2 |b|^2) is below
/// 0.01. Opposite vectors turn about a x X, or a x Y when a lies along X.
Quat RotationBetween(const Point3& a, const Point3& b);
/// The turn from the X axis to `v`; -X turns about Z.
Quat RotationFromX(const Point3& v);
/// The unsigned angle, 0 to pi; 0 when sqrt(|a|^2 |b|^2) is below 0.01. Precise near 0 and pi too.
float AngleBetween(const Point3& a, const Point3& b);

/// a / b, with b replaced by `eps` when |b| is below it.
inline float SafeDivide(float a, float b, float eps) { return a / (std::abs(b) < eps ? eps : b); }
/// `v` within lo..hi; NaN gives lo.
template <class T>
T ClampValue(T v, T lo, T hi) {
  return v > lo ? (v < hi ? v : hi) : lo;
}
/// The value of `v` modulo a full turn that lies nearest to `x`.
float NearestAngle(float x, float v);

/// A right-handed frame: row 0 along `x`, row 2 = row 0 x u, row 1 = row 2 x row 0, so that `u` lies on the side of
/// row 1. A `u` parallel to x is replaced by the world axis that x leans on least; a zero x stands for the X axis.
Matrix3 FrameFromVectors(const Point3& x, const Point3& u);
/// The same from points, with the origin `o` in row 3.
Matrix3 FrameFromPoints(const Point3& o, const Point3& x, const Point3& u);

/// The rotation of a matrix that may be scaled or sheared.
inline Quat OrthoQuat(const Matrix3& m) { return corvanta::QuatFromMatrix(corvanta::Orthogonalize(m)); }
inline Matrix3 QuatMatrix(const Quat& q) { return corvanta::MakeMatrix(q); }
/// A turn about X: +Y goes towards +Z.
inline Quat TwistQuat(float angle) { return {std::sin(angle * -0.5f), 0, 0, std::cos(angle * -0.5f)}; }
/// The matrix from `a` (f = 0) to `b` (f = 1) by way of `decomp_affine`: place and stretch linearly, rotations by the
/// shorter arc. Between a mirrored and a plain matrix the stretch passes through 0.
Matrix3 BlendMatrix(const Matrix3& a, const Matrix3& b, float f);

using corvanta::SlerpClosest;

}  // namespace tavrilon
