// SPDX-License-Identifier: MIT
// Three joints: shoulder, elbow, wrist. Source: law of cosines.
#include <algorithm>

#include "plugin/frame/rig_maths.h"
#include "plugin/solvers/detail/limb_space.h"
#include "plugin/solvers/soft_reach.h"
#include "plugin/solvers/turn.h"

namespace tavrilon {

using namespace corvanta;

namespace {

/// Distances shorter than this count as this long where they divide.
constexpr float kSmall = 0.001f;
/// Radians by which vectors may miss to be opposite: nearer ones tell no axis in single precision.
constexpr float kOpposite = 1e-5f;

// The elbow in the plane of the limb: X towards the goal, Y to the side of the bend.
Point3 ElbowInPlane(float upper, float lower, float distance) {
  if (!(upper + lower > distance)) return {upper, 0, 0};
  if (lower - upper > distance) return {-upper, 0, 0};
  if (upper - lower > distance) return {upper, 0, 0};
  const float x = SafeDivide(upper * upper - lower * lower + distance * distance, 2 * distance, kSmall);
  return {x, std::sqrt(std::max(upper * upper - x * x, 0.0f)), 0};
}

// The turn of the upper bone to the elbow, both unit vectors. An elbow folded back takes half a turn about the axis
// that one almost folded turns about: Y of the limb's plane, seen through `carried`, is where its bend goes.
Quat TurnToElbow(const Point3& upper, const Point3& elbow, const Quat& carried) {
  if (LengthSquared(upper + elbow) > kOpposite * kOpposite) return TurnBetween(upper, elbow);
  const Point3 axis = Normalize(Cross(upper, TurnVector({0, 1, 0}, Conjugate(carried))));
  if (axis == Point3{}) return RotationBetween(upper, elbow);
  return {axis.x, axis.y, axis.z, 0};
}

Point3 Direction(const Point3& v, float length) { return length > 0 ? v / length : Point3{}; }

}  // namespace

float BendTwoBones(const LimbIn& in, const LimbSpace& space, std::span<JointPose> out) {
  const Quat& bend = in.joints[1].preferred;
  Point3 &upper = out[1].pos, &lower = out[2].pos;
  const float stretch = in.blend * in.autoStretch;
  const float upperLength = Length(upper), lowerLength = Length(lower), length = upperLength + lowerLength;
  const SoftReachOut soft = SoftenReach({space.distance, length, in.softness, stretch});
  const Point3 elbow = ElbowInPlane(upperLength * soft.boneScale, lowerLength * soft.boneScale, soft.distance);
  const float factor = soft.boneScale * StretchToReach(length * soft.boneScale, soft.distance, stretch);

  // The turn that carries the upper bone along X and its bend, away from where the lower bone goes, towards Y. For an
  // upper bone along X this is the frame of the lower bone with its Y negated; the inverse serves any other, too.
  const Point3 along = Direction(upper, upperLength);
  const Quat carried = Conjugate(FrameTurn(along, -TurnVector(lower, bend))), plane = BendFrame(in, space);
  const Point3 toElbow = TurnVector(Direction(elbow, upperLength * soft.boneScale), Conjugate(carried));
  out[0].rot = TurnToElbow(along, toElbow, carried) * carried * plane;
  const Point3 toGoal = space.aim * soft.distance - TurnVector(elbow, plane);
  const Point3 seen = TurnVector(toGoal, Conjugate(bend * out[0].rot));
  out[1].rot = TurnBetween(Direction(lower, lowerLength), Normalize(seen)) * bend;
  upper *= factor;
  lower *= factor;
  return factor;
}

}  // namespace tavrilon
