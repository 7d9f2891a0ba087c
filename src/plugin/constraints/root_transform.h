// SPDX-License-Identifier: MIT
// How a character's root follows its hips over the ground: the hips' motion split by the axes of the floor into travel,
// height and turning, each followed by a factor of its own. Plain values in and out.
#pragma once

#include "host/maths/matrix3.h"

namespace tavrilon {

struct RootTransformIn {
  /// World matrix that the root hangs on.
  corvanta::Matrix3 parent;
  /// World matrix of the hips, when there are any.
  bool hasTarget = false;
  corvanta::Matrix3 target;
  /// The hips' rest pose in the space that they are measured in. Its turn and its height count as none.
  bool useRest = false;
  corvanta::Matrix3 rest;
  /// The axis that stands on the floor: 0 X, 1 Y, 2 Z.
  int verticalAxis = 2;
  /// Measured in the world, and `parent` is left out.
  bool inWorld = false;
  /// 0 holds the root, 1 follows. A height that is not followed is the ground's.
  float followHorizontal = 1, followVertical = 1, followTurning = 1;
  /// Scene units.
  float verticalOffset = 0;
  float groundOffset = 0;
  /// The root does not go below `groundOffset`; off, the ground lies at 0 and may be passed.
  bool useGround = true;
};

/// The matrix that the root's own animation rides on. An axis out of range stands for the nearest one. Finite input
/// never gives a NaN; hips that hang upside down, with no turn about the vertical axis to be told, do not turn it.
corvanta::Matrix3 RootTransform(const RootTransformIn& in);

/// The part of `q` that turns about axis 0, 1 or 2, in radians within -pi to pi, signed as `Matrix3::RotateX` and so
/// on. Source: swing-twist decomposition. 0 for a half turn about an axis at right angles to it.
float TwistAngle(const corvanta::Quat& q, int axis);

}  // namespace tavrilon
