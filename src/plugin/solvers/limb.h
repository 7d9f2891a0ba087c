// SPDX-License-Identifier: MIT
// A limb of two joints or more, solved: plain values in, plain values out. Joint 0 is the root, the last one the end; a
// bone lies along the place of the joint at its tip. Two joints aim, three are the two-bone limb, more share their
// bend.
#pragma once

#include <span>
#include <vector>

#include "host/maths/matrix3.h"

namespace tavrilon {

/// What a limb knows of one joint before it is solved.
struct LimbJoint {
  /// Local place, with the scale and the stretch of the joints before in it.
  corvanta::Point3 pos;
  /// The FK pose.
  corvanta::Quat rot;
  /// Scale along the chain up to this joint, for the joint's own matrix only.
  corvanta::Point3 scale{1, 1, 1};
  /// The rotation that tells which way the joint bends.
  corvanta::Quat preferred;
};

struct LimbIn {
  /// World matrix that joint 0 hangs on.
  corvanta::Matrix3 parentTM;
  std::span<const LimbJoint> joints;
  corvanta::Matrix3 goalTM;
  /// The bend points at `target` (world); without one it goes by the preferred pose and the swivel.
  bool hasTarget = false;
  corvanta::Point3 target;
  /// Turns the preferred pose of joint 0 into the space it is measured in: identity for the chain's parent.
  corvanta::Quat preferredSpace;
  /// Radians about the line from root to goal: positive turns +Y towards +Z.
  float swivel = 0;
  /// 0 FK to 1 IK.
  float blend = 1;
  /// Fractions: how far the bones grow to a goal out of reach, and how early the limb begins to lag.
  float autoStretch = 0;
  float softness = 0;
  /// Radians added to the first middle joint's bend and taken from the last one's. Four joints or more.
  float flexionBias = 0;
  /// Passes of the search for the bend. Four joints or more.
  int iterations = 40;
  /// The twist of joint 0 about its bone towards a target. Two joints only.
  float aimTwist = 0;
  bool lastJointFollowsGoal = true;
  /// A joint that keeps its FK rotation, for matching; -1 for none.
  int fixedJoint = -1;
};

/// One joint solved.
struct JointPose {
  corvanta::Quat rot;
  /// Local place, stretched.
  corvanta::Point3 pos;
  /// World matrix with the joint's own scale.
  corvanta::Matrix3 tm;
};

/// Tables of the many-bone search and of matching, kept from solve to solve: only a longer limb than before allocates.
struct LimbWork {
  struct Joint {
    corvanta::Quat base;
    corvanta::Point3 axis;
    float angle = 0, saved = 0;
  };
  std::vector<Joint> joints;
  std::vector<JointPose> trial;
};

/// Fills `out`, as many as there are joints, and gives the factor by which the bones were stretched. With blend 1 and a
/// goal in reach the end lands on the goal; out of reach the limb is straight towards it. Never a NaN for finite input:
/// empty bones, a goal on the root and straight poses are solved. Fewer than two joints stay at their FK pose.
float SolveLimb(const LimbIn& in, std::span<JointPose> out, LimbWork& work);

}  // namespace tavrilon
