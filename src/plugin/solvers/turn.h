// SPDX-License-Identifier: MIT
// Parts of a turn that limbs and spaces measure, and turning a vector without a matrix.
#pragma once

#include "host/maths/quat.h"
#include "plugin/frame/rig_maths.h"

namespace tavrilon {

/// The turn of `q` about an axis (0 X, 1 Y, 2 Z), -pi to pi: positive as RotateX, RotateY and RotateZ turn.
inline float TurnAbout(const corvanta::Quat& q, int axis) {
  const float turn = 2 * std::atan2(-q[axis], q.w);
  return turn > corvanta::kPi ? turn - corvanta::kTwoPi : turn < -corvanta::kPi ? turn + corvanta::kTwoPi : turn;
}

/// `VectorTransform(MakeMatrix(q), v)` for a unit `q`.
inline corvanta::Point3 TurnVector(const corvanta::Point3& v, const corvanta::Quat& q) {
  const corvanta::Point3 axis{q.x, q.y, q.z};
  const corvanta::Point3 t = 2 * Cross(v, axis);
  return v + t * q.w + Cross(t, axis);
}

/// `RotationBetween` for unit vectors of any unit, by one root: the half angle lies between a and b, so (b x a, 1 + a .
/// b) points along the quaternion. A zero vector gives the identity.
inline corvanta::Quat TurnBetween(const corvanta::Point3& a, const corvanta::Point3& b) {
  const float cosine = Dot(a, b);
  if (cosine < -0.9f) return RotationBetween(a, b);  // the sum cancels: the careful way
  const corvanta::Point3 v = Cross(b, a);
  const float w = 1 + cosine, k = 1 / std::sqrt(LengthSquared(v) + w * w);
  return {v.x * k, v.y * k, v.z * k, w * k};
}

/// `QuatFromMatrix(FrameFromVectors(x, u))` for a unit `x`, without a matrix.
inline corvanta::Quat FrameTurn(const corvanta::Point3& x, const corvanta::Point3& u) {
  const corvanta::Quat toX = TurnBetween({1, 0, 0}, x);
  const corvanta::Point3 side = TurnVector(u, Conjugate(toX));
  const float across2 = side.y * side.y + side.z * side.z;
  // Near the line the frame has rules of its own.
  if (!(across2 > 1e-10f * LengthSquared(side))) return QuatFromMatrix(FrameFromVectors(x, u));
  const float across = std::sqrt(across2);
  // Half the angle from Y to the side: tan(a / 2) = sin a / (1 + cos a), or (1 - cos a) / sin a behind.
  const corvanta::Quat twist =
      side.y >= 0 ? corvanta::Quat{-side.z, 0, 0, across + side.y} : corvanta::Quat{side.y - across, 0, 0, side.z};
  const float k = 1 / std::sqrt(twist.x * twist.x + twist.w * twist.w);
  return corvanta::Quat{twist.x * k, 0, 0, twist.w * k} * toX;
}

}  // namespace tavrilon
