// SPDX-License-Identifier: MIT
// The way back from a pose to the handles that solve to it. `in` is the limb as it is solved, `pose` what it looks
// like: solved, or FK by way of blend 0. All answers hold for blend 1.
#pragma once

#include "plugin/solvers/limb.h"

namespace tavrilon {

/// World place of the goal that brings the end to where the pose has it, softness and stretch taken back. Without
/// either it is the end's own place.
corvanta::Point3 MatchGoal(const LimbIn& in, std::span<const JointPose> pose);

/// The swivel, radians, that turns the limb to the side of the pose; of all whole turns the one nearest to `in.swivel`.
/// A straight limb's side is the one it would bend to in its preferred pose.
float MatchSwivel(const LimbIn& in, std::span<const JointPose> pose, LimbWork& work);

/// World place of a target that turns the limb to the side of the pose: `distance` limb lengths sideways of joint 1.
corvanta::Point3 MatchTarget(const LimbIn& in, std::span<const JointPose> pose, float distance, LimbWork& work);

}  // namespace tavrilon
