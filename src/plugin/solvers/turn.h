// SPDX-License-Identifier: MIT
// Parts of a turn that limbs and spaces measure, and turning a vector without a matrix.
#pragma once

#include "host/maths/quat.h"

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

}  // namespace tavrilon
