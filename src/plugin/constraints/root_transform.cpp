// SPDX-License-Identifier: MIT
#include "plugin/constraints/root_transform.h"

#include <algorithm>

#include "plugin/frame/rig_maths.h"

namespace tavrilon {

using namespace corvanta;

namespace {

// Rest turn and rest height taken out; where the hips rest on the floor stays in.
Matrix3 MeasuredFromRest(const Matrix3& target, const Matrix3& rest, int axis) {
  Matrix3 measured = Inverse(rest.WithoutTrans()) * target;
  Point3 place = measured.GetTrans();
  place[axis] -= rest.GetTrans()[axis];
  measured.SetTrans(place);
  return measured;
}

Matrix3 TargetInSpace(const RootTransformIn& in, int axis) {
  if (!in.hasTarget) return {};
  const Matrix3 target = in.inWorld ? in.target : in.target * Inverse(in.parent);
  return in.useRest ? MeasuredFromRest(target, in.rest, axis) : target;
}

void PreRotate(Matrix3& m, int axis, float angle) {
  if (axis == 0) return m.PreRotateX(angle);
  if (axis == 1) return m.PreRotateY(angle);
  m.PreRotateZ(angle);
}

}  // namespace

// The half angle lies between -pi/2 and pi/2 for w >= 0, so one turn at most brings the whole one into range.
float TwistAngle(const Quat& q, int axis) {
  const float x = q[axis];
  if (x == 0 && q.w == 0) return 0;
  float angle = -2 * std::atan2(x, q.w);
  if (angle > kPi) angle -= kTwoPi;
  if (angle < -kPi) angle += kTwoPi;
  return angle;
}

Matrix3 RootTransform(const RootTransformIn& in) {
  const int axis = ClampValue(in.verticalAxis, 0, 2);
  const float ground = in.useGround ? in.groundOffset : 0;
  const Matrix3 target = TargetInSpace(in, axis);
  Point3 place = target.GetTrans() * in.followHorizontal;
  place[axis] = ground + (in.verticalOffset + target.GetTrans()[axis] - ground) * in.followVertical;
  if (in.useGround) place[axis] = std::max(place[axis], ground);
  Matrix3 root = in.inWorld ? Matrix3() : in.parent;
  root.PreTranslate(place);
  if (in.hasTarget) PreRotate(root, axis, TwistAngle(OrthoQuat(target), axis) * in.followTurning);
  return root;
}

}  // namespace tavrilon
