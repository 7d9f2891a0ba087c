// SPDX-License-Identifier: MIT
// What a write of a rotation does to three Euler angles, so that an artist's curves stay continuous and a turn about
// one ring changes one track. Angles are radians in the order of application, see host/maths/euler.h.
#pragma once

#include "host/maths/euler.h"

namespace tavrilon {

/// Orders that repeat an axis (6 to 8) tie their tracks to positions; the others tie them to axes.
inline bool RepeatsAxis(int order) { return order >= corvanta::kXYX; }

/// Values of the tracks X, Y, Z to angles in the order of application, and back.
inline corvanta::Point3 TracksToAngles(const corvanta::Point3& tracks, int order) {
  if (order == corvanta::kXYZ || RepeatsAxis(order)) return tracks;
  const auto& axes = corvanta::kEulerAxes[order];
  return {tracks[axes[0]], tracks[axes[1]], tracks[axes[2]]};
}
inline corvanta::Point3 AnglesToTracks(const corvanta::Point3& angles, int order) {
  if (RepeatsAxis(order)) return angles;
  const auto& positions = corvanta::kEulerPosition[order];
  return {angles[positions[0]], angles[positions[1]], angles[positions[2]]};
}

/// The mark by which the gimbal gizmo names an axis: 1.0 on it, 0 on the next one in cyclic order, and the smallest
/// normal float on the one after. Returns the axis, -1 without the mark.
int GimbalMarkedAxis(const corvanta::Point3& axis);
/// The axis that carries the mark for `axis`.
corvanta::Point3 GimbalMark(int axis);

/// Sets the angles to an orientation, near what they were: angles beyond a full turn survive (orders 0 to 5).
void SetAngles(corvanta::Point3& e, const corvanta::Quat& q, int order);

/// Turns the angles by `turn`, given in the frame that they act in. In this order: a gimbal mark (only with `gimbal`
/// on) changes the one angle that it names; an axis along one of the three rings, within 0.81 degrees, changes only
/// that angle; anything else goes by way of a quaternion, in steps of at most 135 degrees, so that no step jumps to the
/// other side of the Euler range. A turn that is not finite changes nothing.
void TurnAngles(corvanta::Point3& e, const corvanta::AngAxis& turn, int order, bool gimbal);

}  // namespace tavrilon
