// SPDX-License-Identifier: MIT
#include "plugin/solvers/detail/limb_space.h"

#include "plugin/frame/rig_maths.h"
#include "plugin/solvers/turn.h"

namespace tavrilon {

using namespace corvanta;

namespace {

/// Divisors smaller than this are replaced by it.
constexpr float kSmall = 0.001f;
/// Sine of the angle below which a target lies on the line from root to goal: the noise of single precision.
constexpr float kOnLine = 1e-6f;

}  // namespace

LimbSpace MakeLimbSpace(const LimbIn& in, const Matrix3& toParent) {
  LimbSpace space;
  const Point3& root = in.joints[0].pos;
  const Point3 toGoal = in.goalTM.GetTrans() * toParent - root;
  space.distance = Length(toGoal);
  if (space.distance > 0) space.aim = toGoal / space.distance;
  if (!in.hasTarget) return space;
  const Point3 toTarget = in.target * toParent - root;
  space.hasPlane = Length(Cross(space.aim, Normalize(toTarget))) > kOnLine;
  if (space.hasPlane) space.plane = FrameTurn(space.aim, toTarget);
  return space;
}

Quat BendFrame(const LimbIn& in, const LimbSpace& space) {
  if (space.hasPlane) return space.plane;
  const Quat preferred = in.joints[0].preferred * in.preferredSpace;
  const Quat aimed = TurnBetween({1, 0, 0}, TurnVector(space.aim, Conjugate(preferred))) * preferred;
  return in.hasTarget || in.swivel == 0 ? aimed : TwistQuat(in.swivel) * aimed;
}

float StretchToReach(float length, float distance, float stretch) {
  if (length > distance || !(stretch > 0)) return 1;
  return (SafeDivide(distance, length, kSmall) - 1) * stretch + 1;
}

}  // namespace tavrilon
