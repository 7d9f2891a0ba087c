// SPDX-License-Identifier: MIT
// Joints on a sampled curve: where each one stands, and how it is turned, twisted and scaled. Plain values in and out.
#pragma once

#include "host/maths/matrix3.h"
#include "plugin/solvers/curve_sampling.h"

namespace tavrilon {

/// What a joint brings: its share of the span that the joints take of the curve, and its part in the squash.
struct CurveJoint {
  float percent = 0;
  float squash = 0;
};

/// The rows that the matrix of a joint gets on its left, so that `axis` (0 X, 1 Y, 2 Z) is the one that aims along the
/// curve; `flip` turns it the other way. A proper rotation; 0 without flip is the identity.
corvanta::Matrix3 AxisMatrix(int axis, bool flip);

/// Percent values are fractions, angles radians.
struct CurvePoseIn {
  const SampledCurve& curve;
  std::span<const PointFrame> points;
  std::span<const CurveJoint> joints;
  float percent = 0;
  float rotation = 0, twist = 0;
  float manualStretch = 1, autoStretch = 1;
  float squash = 0;
  float backwards = 0;
  float slide = 1;
  /// The curve's length at rest.
  float chainLength = 0;
  bool usePointsRotation = true, usePointsScale = true;
  int followType = curve_ik_chain::kFollowChild;
  int aimAxis = 0;
  bool aimAxisFlip = false;
  /// From the curve's space to the world.
  corvanta::Matrix3 spaceTM = {};
};

/// One matrix a joint into `out`, of as many entries as there are joints; identity without points. Finite for finite
/// input: without a length at rest, a curve length or a manual stretch there is no squash, and joints that coincide
/// take the turn of the points. Allocates nothing.
void PoseJoints(const CurvePoseIn& in, std::span<corvanta::Matrix3> out);

/// The chain length with which joints stay where they are when `autoStretch` goes to 0: what the present curve gives
/// them. The curve's own length when there was none before.
float RestLength(float curveLength, float chainLength, float autoStretch);

}  // namespace tavrilon
