// SPDX-License-Identifier: MIT
// Two joints: the bone points at the goal.
#include "plugin/frame/rig_maths.h"
#include "plugin/solvers/detail/limb_space.h"
#include "plugin/solvers/turn.h"

namespace tavrilon {

using namespace corvanta;

float AimOneBone(const LimbIn& in, const LimbSpace& space, std::span<JointPose> out) {
  if (in.fixedJoint == 0) return 1;
  const float stretch = StretchToReach(Length(out[1].pos), space.distance, in.blend * in.autoStretch);
  const Quat frame = space.hasPlane ? TwistQuat(in.aimTwist) * space.plane : BendFrame(in, space);
  out[0].rot = Conjugate(TurnBetween({1, 0, 0}, Normalize(out[1].pos))) * frame;
  out[1].pos *= stretch;
  return stretch;
}

}  // namespace tavrilon
