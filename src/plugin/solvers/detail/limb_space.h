// SPDX-License-Identifier: MIT
// What the limb solvers share: the goal as joint 0 sees it, the plane of the bend, the last bit of stretch. All in the
// space of joint 0's parent.
#pragma once

#include "plugin/solvers/limb.h"

namespace tavrilon {

struct LimbSpace {
  /// From root to goal: a unit vector, zero for a goal on the root.
  corvanta::Point3 aim;
  float distance = 0;
  /// The frame with X along `aim` and the target on the side of Y. A target on the line from root to goal tells no
  /// plane.
  bool hasPlane = false;
  corvanta::Quat plane;
};

/// `toParent` is the inverse of the limb's parent matrix.
LimbSpace MakeLimbSpace(const LimbIn& in, const corvanta::Matrix3& toParent);

/// The frame of the bend: X towards the goal, Y where the middle joint goes. The target's plane, or else the preferred
/// pose of joint 0 turned the shortest way to the goal, with the swivel.
corvanta::Quat BendFrame(const LimbIn& in, const LimbSpace& space);

/// What bones of `length` are multiplied by for a goal farther away; 1 in reach.
float StretchToReach(float length, float distance, float stretch);

// The bending of a limb of 2, 3 and more joints: fills the rotations of all joints but the last as if the blend were 1,
// stretches the places, and gives the factor of stretch. `out` holds the FK pose before.
float AimOneBone(const LimbIn& in, const LimbSpace& space, std::span<JointPose> out);
float BendTwoBones(const LimbIn& in, const LimbSpace& space, std::span<JointPose> out);
float BendManyBones(const LimbIn& in, const LimbSpace& space, std::span<JointPose> out, LimbWork& work);

}  // namespace tavrilon
