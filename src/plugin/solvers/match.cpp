// SPDX-License-Identifier: MIT
// A change of swivel or target turns a solved limb about the line from root to end and changes nothing else. So one
// trial solve and the turn from it to the pose give the answer, however the limb is solved.
#include "plugin/solvers/match.h"

#include "plugin/frame/rig_maths.h"
#include "plugin/solvers/soft_reach.h"
#include "plugin/solvers/turn.h"

namespace tavrilon {

using namespace corvanta;

namespace {

/// Radians at joint 0 between the first bone and the line through the end, below which the limb counts as straight, or
/// as folded back.
constexpr float kStraight = 0.02f;
/// Sine below which a preferred pose is straight itself.
constexpr float kParallel = 1e-4f;

float LengthOf(std::span<const LimbJoint> joints) {
  float length = 0;
  for (size_t i = 1; i < joints.size(); ++i) length += Length(joints[i].pos);
  return length;
}

float LengthOf(std::span<const JointPose> pose) {
  float length = 0;
  for (size_t i = 1; i < pose.size(); ++i) length += Length(pose[i].pos);
  return length;
}

// From root to end in the space of joint 0's parent.
Point3 ToEnd(std::span<const JointPose> pose) {
  Point3 end;
  for (size_t i = pose.size() - 1; i > 0; --i) end = TurnVector(end + pose[i].pos, pose[i - 1].rot);
  return end;
}

// The side of joint 1 seen from the line between root and end. A straight limb would bend towards it.
Point3 BendSide(const LimbIn& in, std::span<const JointPose> pose) {
  const Point3 first = pose[1].pos, elbow = TurnVector(first, pose[0].rot);
  const float angle = AngleBetween(Normalize(ToEnd(pose)), Normalize(elbow));
  if (angle >= kStraight && angle <= kPi - kStraight) return elbow;
  Point3 end;
  for (size_t i = pose.size() - 1; i > 1; --i) end = TurnVector(end + pose[i].pos, in.joints[i - 1].preferred);
  const bool straight = Length(Cross(Normalize(end), Normalize(first))) < kParallel;
  return TurnVector(straight ? Cross({0, 0, 1}, first) : -end, pose[0].rot);
}

// Angle of a side about X.
float SideAngle(const Point3& side, const Quat& aim) {
  const Point3 seen = TurnVector(side, Conjugate(aim));
  return std::atan2(seen.z, seen.y);
}

// By how much the solved limb must turn about the line from root to end, Y towards Z, to look like the pose.
float TurnToPose(LimbIn in, std::span<const JointPose> pose, LimbWork& work) {
  const float stretched = LengthOf(pose), length = LengthOf(in.joints);
  const Point3 toEnd = ToEnd(pose);
  in.goalTM.SetTrans((in.joints[0].pos + toEnd * (stretched > 0 ? length / stretched : 1)) * in.parentTM);
  in.blend = 1;
  in.softness = in.autoStretch = 0;
  in.lastJointFollowsGoal = false;
  in.fixedJoint = -1;
  if (work.trial.size() < pose.size()) work.trial.resize(pose.size());
  const std::span<JointPose> solved = std::span(work.trial).first(pose.size());
  SolveLimb(in, solved, work);
  const Quat aim = RotationFromX(Normalize(toEnd));
  if (pose.size() == 2) return TurnAbout(aim * Conjugate(solved[0].rot) * pose[0].rot * Conjugate(aim), 0);
  return SideAngle(BendSide(in, pose), aim) - SideAngle(BendSide(in, solved), aim);
}

}  // namespace

Point3 MatchGoal(const LimbIn& in, std::span<const JointPose> pose) {
  if (pose.empty()) return in.goalTM.GetTrans();
  const Point3 toEnd = ToEnd(pose);
  const float reach = Length(toEnd), softness = pose.size() > 2 ? in.softness : 0;
  const float distance = UnsoftenReach({reach, LengthOf(in.joints), softness, in.autoStretch});
  if (distance == reach) return pose.back().tm.GetTrans();
  return (pose[0].pos + Normalize(toEnd) * distance) * in.parentTM;
}

float MatchSwivel(const LimbIn& in, std::span<const JointPose> pose, LimbWork& work) {
  if (pose.size() < 2) return in.swivel;
  LimbIn trial = in;
  trial.hasTarget = false;
  trial.swivel = 0;
  return NearestAngle(in.swivel, TurnToPose(trial, pose, work));
}

Point3 MatchTarget(const LimbIn& in, std::span<const JointPose> pose, float distance, LimbWork& work) {
  if (pose.size() < 2) return in.target;
  const Point3 root = pose[0].pos, toEnd = ToEnd(pose), sideways{0, distance * LengthOf(pose), 0};
  if (pose.size() == 2) {
    const Quat frame = Conjugate(TwistQuat(in.aimTwist)) * RotationFromX(Normalize(pose[1].pos)) * pose[0].rot;
    return (root + toEnd + TurnVector(sideways, frame)) * in.parentTM;
  }
  const Matrix3 frame = FrameFromVectors(toEnd, BendSide(in, pose));
  const Point3 fromRoot = TurnVector(pose[1].pos, pose[0].rot) + VectorTransform(frame, sideways);
  LimbIn trial = in;
  trial.hasTarget = true;
  trial.target = (root + fromRoot) * in.parentTM;
  // A preferred pose that bends in several planes leaves for a side beside the target's, a folded limb for any.
  const Quat aim = RotationFromX(Normalize(toEnd));
  const Quat turn = Conjugate(aim) * TwistQuat(TurnToPose(trial, pose, work)) * aim;
  return (root + TurnVector(fromRoot, turn)) * in.parentTM;
}

}  // namespace tavrilon
