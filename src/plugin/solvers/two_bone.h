// SPDX-License-Identifier: MIT
// The two-bone limb: shoulder, elbow, wrist. Plain values in and out.
#pragma once

#include "host/maths/matrix3.h"

namespace tavrilon {

/// Joint 0 is the root, 1 the middle, 2 the end. Places and rotations are local, a bone lies along its joint's place.
struct TwoBoneIn {
  /// World matrix that joint 0 hangs on.
  corvanta::Matrix3 parentTM;
  /// Places with stretch and scale of the joints before in them; `pos[1]` and `pos[2]` are the bones.
  corvanta::Point3 pos[3];
  /// The FK pose.
  corvanta::Quat rot[3];
  corvanta::Point3 scale[3] = {{1, 1, 1}, {1, 1, 1}, {1, 1, 1}};
  corvanta::Matrix3 goalTM;
  /// The middle joint points at `target` (world); without one, the bend goes by the preferred pose and the swivel.
  bool hasTarget = false;
  corvanta::Point3 target;
  /// Preferred rotations of joints 0 and 1; that of joint 0 in the space in which it is kept.
  corvanta::Quat preferred[2];
  /// Radians about the line from root to goal: positive turns +Y towards +Z.
  float swivel = 0;
  /// 0 FK to 1 IK.
  float blend = 1;
  float autoStretch = 0;
  float softness = 0;
  /// The end takes the goal's orientation.
  bool lastJointFollowsGoal = true;
  /// A joint that keeps its FK rotation, for matching; -1 for none.
  int fixedJoint = -1;
};

struct TwoBonePose {
  corvanta::Quat rot[3];
  /// World matrices, with each joint's own scale.
  corvanta::Matrix3 tm[3];
  /// What the bones were multiplied by to reach the goal.
  float stretch = 1;
};

/// With blend 1 and a goal in reach the end lands on the goal; out of reach the limb is straight towards it. Bones
/// along +X bend exactly; empty bones and a goal on the root give a finite pose. Source: law of cosines.
TwoBonePose SolveTwoBone(const TwoBoneIn& in);

/// The turn of `q` about a world axis (0 X, 1 Y, 2 Z), -pi to pi: positive as RotateX, RotateY and RotateZ turn.
float TurnAbout(const corvanta::Quat& q, int axis);

}  // namespace tavrilon
