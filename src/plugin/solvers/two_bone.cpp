// SPDX-License-Identifier: MIT
#include "plugin/solvers/two_bone.h"

#include <algorithm>
#include <iterator>

#include "plugin/frame/rig_maths.h"
#include "plugin/solvers/soft_reach.h"

namespace tavrilon {

using namespace corvanta;

namespace {

/// Bones shorter than this are empty.
constexpr float kSmall = 0.001f;

struct Bones {
  Point3 upper, lower;
  float stretch = 1;
};

// The elbow in the plane of the limb: X towards the goal, Y to the side of the bend.
Point3 ElbowInPlane(Bones& bones, float distance, float stretch) {
  const float upper = Length(bones.upper), lower = Length(bones.lower), length = upper + lower;
  if (!(length > distance)) {
    if (stretch > 0) {
      bones.stretch = (SafeDivide(distance, length, kSmall) - 1) * stretch + 1;
      bones.upper *= bones.stretch;
      bones.lower *= bones.stretch;
    }
    return {upper, 0, 0};
  }
  if (lower - upper > distance) return {-upper, 0, 0};
  if (upper - lower > distance) return {upper, 0, 0};
  const float x = SafeDivide(upper * upper - lower * lower + distance * distance, 2 * distance, kSmall);
  return {x, std::sqrt(std::max(upper * upper - x * x, 0.0f)), 0};
}

// Where that plane lies in the parent's space.
Matrix3 PlaneFrame(const TwoBoneIn& in, const Point3& goal, const Matrix3& toParent) {
  const Point3 toGoal = goal - in.pos[0];
  const Quat preferred = in.preferred[0];
  if (in.hasTarget) {
    const Point3 target = in.target * toParent;
    const Point3 side = Cross(Normalize(toGoal), Normalize(target - in.pos[0]));
    // A target on the line from root to goal tells no plane: the preferred pose does.
    if (LengthSquared(side) > 1e-12f) return FrameFromPoints(in.pos[0], goal, target);
  }
  const Quat aim = RotationFromX(VectorTransform(Inverse(QuatMatrix(preferred)), Normalize(toGoal)));
  const Quat twist = in.hasTarget ? Quat() : TwistQuat(in.swivel);
  Matrix3 frame = QuatMatrix(twist * aim * preferred);
  frame.SetTrans(in.pos[0]);
  return frame;
}

struct SolvedJoints {
  Quat upper, lower;
};

SolvedJoints SolveJoints(const TwoBoneIn& in, const Bones& bones, const Point3& elbow, const Point3& goal) {
  const Quat& bend = in.preferred[1];
  Point3 u = VectorTransform(QuatMatrix(bend), bones.lower);
  u.y = -u.y;
  const Matrix3 frame = PlaneFrame(in, goal, Inverse(in.parentTM));
  const Point3 elbowPlace = elbow * frame;
  const Matrix3 a0 = FrameFromVectors(bones.upper, u) * frame;
  SolvedJoints out;
  // Unit vectors: the small-angle test of RotationBetween is meant for zero vectors, not for small rigs.
  out.upper = RotationBetween(Normalize(bones.upper), Normalize(elbowPlace * Inverse(a0))) * QuatFromMatrix(a0);
  Matrix3 b = QuatMatrix(out.upper);
  b.SetTrans(elbowPlace);
  const Point3 seen = goal * Inverse(QuatMatrix(bend) * b);
  out.lower = RotationBetween(Normalize(bones.lower), Normalize(seen)) * bend;
  return out;
}

Matrix3 Joint(const Quat& rot, const Point3& pos, const Matrix3& parent) {
  Matrix3 tm = QuatMatrix(rot);
  tm.SetTrans(pos);
  return tm * parent;
}

}  // namespace

TwoBonePose SolveTwoBone(const TwoBoneIn& in) {
  TwoBonePose pose;
  std::copy(std::begin(in.rot), std::end(in.rot), pose.rot);
  Bones bones{in.pos[1], in.pos[2]};
  const float w = in.blend;
  const Quat parent = OrthoQuat(in.parentTM);
  const Quat fkUpper = in.rot[0] * parent, fkLower = in.rot[1] * fkUpper;
  if (w > 0) {
    const float stretch = w * in.autoStretch;
    const Point3 start = in.pos[0];
    const SoftReachOut soft = SoftenReach({start, in.goalTM.GetTrans() * Inverse(in.parentTM),
                                           Length(bones.upper) + Length(bones.lower), in.softness, stretch});
    bones.upper *= soft.boneScale;
    bones.lower *= soft.boneScale;
    const Point3 elbow = ElbowInPlane(bones, soft.distance, stretch);
    bones.stretch *= soft.boneScale;
    SolvedJoints ik = SolveJoints(in, bones, elbow, soft.goal);
    if (w < 1) {
      // In world orientation, so that both halves of the limb blend evenly.
      const Quat ikUpper = ik.upper * parent, ikLower = ik.lower * ikUpper;
      const Quat upper = SlerpClosest(fkUpper, ikUpper, w), lower = SlerpClosest(fkLower, ikLower, w);
      ik.upper = upper * Inverse(parent);
      ik.lower = lower * Inverse(upper);
    }
    if (in.fixedJoint != 0) pose.rot[0] = ik.upper;
    if (in.fixedJoint != 1) pose.rot[1] = ik.lower;
  }
  pose.stretch = bones.stretch;
  pose.tm[0] = Joint(pose.rot[0], in.pos[0], in.parentTM);
  pose.tm[1] = Joint(pose.rot[1], bones.upper, pose.tm[0]);
  if (in.lastJointFollowsGoal && w > 0 && in.fixedJoint != 2) {
    const Quat onGoal = OrthoQuat(in.goalTM * Inverse(pose.tm[1]));
    const Quat fk = in.rot[2] * fkLower * Inverse(OrthoQuat(pose.tm[1]));
    pose.rot[2] = w >= 1 ? onGoal : SlerpClosest(fk, onGoal, w);
  }
  pose.tm[2] = Joint(pose.rot[2], bones.lower, pose.tm[1]);
  for (int i = 0; i < 3; ++i) pose.tm[i].PreScale(in.scale[i]);
  return pose;
}

float TurnAbout(const Quat& q, int axis) {
  const float turn = 2 * std::atan2(-q[axis], q.w);
  return turn > kPi ? turn - kTwoPi : turn < -kPi ? turn + kTwoPi : turn;
}

}  // namespace tavrilon
