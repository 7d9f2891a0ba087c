// SPDX-License-Identifier: MIT
// Everything happens in the space of joint 0's parent. Blending there equals blending in the world, since a turn on the
// right of both ends of a slerp comes out on its right.
#include "plugin/solvers/limb.h"

#include <cassert>

#include "plugin/frame/rig_maths.h"
#include "plugin/solvers/detail/limb_space.h"

namespace tavrilon {

using namespace corvanta;

namespace {

float Bend(const LimbIn& in, const LimbSpace& space, std::span<JointPose> out, LimbWork& work) {
  if (out.size() == 2) return AimOneBone(in, space, out);
  if (out.size() == 3) return BendTwoBones(in, space, out);
  return BendManyBones(in, space, out, work);
}

// By the joints' orientations as seen from outside, so that all bones of the limb blend evenly.
void BlendWithFK(const LimbIn& in, std::span<JointPose> out) {
  Quat fk, ik, before;
  for (size_t i = 0; i + 1 < out.size(); ++i) {
    fk = in.joints[i].rot * fk;
    ik = out[i].rot * ik;
    const Quat mixed = SlerpClosest(fk, ik, in.blend);
    out[i].rot = mixed * Conjugate(before);
    before = mixed;
  }
}

// The last joint takes the goal's orientation, from that of its FK pose by the blend.
void FollowGoal(const LimbIn& in, const Matrix3& toParent, std::span<JointPose> out) {
  Quat solved;
  for (size_t i = 0; i + 1 < out.size(); ++i) solved = out[i].rot * solved;
  const Quat onGoal = OrthoQuat(in.goalTM * toParent) * Conjugate(solved);
  Quat& rot = out.back().rot;
  if (in.blend >= 1) {
    rot = onGoal;
    return;
  }
  Quat fk;
  for (const LimbJoint& joint : in.joints) fk = joint.rot * fk;
  rot = SlerpClosest(fk * Conjugate(solved), onGoal, in.blend);
}

// A joint's own scale stays out of the joints behind: it is in their places already.
void PlaceJoints(const LimbIn& in, std::span<JointPose> out) {
  Matrix3 tm = in.parentTM;
  for (size_t i = 0; i < out.size(); ++i) {
    Matrix3 local = QuatMatrix(out[i].rot);
    local.SetTrans(out[i].pos);
    tm = local * tm;
    out[i].tm = tm;
    out[i].tm.PreScale(in.joints[i].scale);
  }
}

}  // namespace

float SolveLimb(const LimbIn& in, std::span<JointPose> out, LimbWork& work) {
  assert(out.size() >= in.joints.size() && "a pose for each joint");
  out = out.first(in.joints.size());
  for (size_t i = 0; i < out.size(); ++i) {
    out[i].rot = in.joints[i].rot;
    out[i].pos = in.joints[i].pos;
  }
  float stretch = 1;
  if (in.blend > 0 && out.size() > 1) {
    const Matrix3 toParent = Inverse(in.parentTM);
    const int last = static_cast<int>(out.size()) - 1;
    stretch = Bend(in, MakeLimbSpace(in, toParent), out, work);
    if (in.blend < 1) BlendWithFK(in, out);
    if (in.fixedJoint >= 0 && in.fixedJoint < last) out[in.fixedJoint].rot = in.joints[in.fixedJoint].rot;
    if (in.lastJointFollowsGoal && in.fixedJoint != last) FollowGoal(in, toParent, out);
  }
  PlaceJoints(in, out);
  return stretch;
}

}  // namespace tavrilon
