// SPDX-License-Identifier: MIT
// Numbers read off the place of a node in a reference frame. Angles are radians, right-handed on row vectors.
#pragma once

#include "host/maths/matrix3.h"
#include "plugin/connections/connection_params.h"

namespace tavrilon {

inline constexpr int kExposedCount = static_cast<int>(float_expose_tm::Component::ScaleZ) + 1;

/// The turn of `place` measured from that of `rest`, in the axes of the node: place = delta * rest.
corvanta::Quat DeltaFromRest(const corvanta::Matrix3& place, const corvanta::Matrix3& rest);

/// The turn of `delta` about X, -pi to pi. Whatever swing about Y and Z comes with it does not show.
float TwistX(const corvanta::Quat& delta);
/// How far `delta` tilts the X axis: its angle without the twist, 0 to pi.
float SwingAngle(const corvanta::Quat& delta);
/// The swing (after the twist) as a turn about an axis in the YZ plane: x is its share about Y, y that about Z.
corvanta::Point2 SwingParts(const corvanta::Quat& delta);

/// A component of `place`, the node's matrix in the reference frame. Positions, scales and the distance are in units of
/// that frame; Euler angles are in `order`, the angle between X axes is 0 to pi; twist and swing are measured from
/// `rest`. A component beyond the table gives 0.
float Exposed(const corvanta::Matrix3& place, const corvanta::Matrix3& rest, float_expose_tm::Component component,
              int order);

/// The same for the drivers of twist poses.
float Driver(const corvanta::Matrix3& place, const corvanta::Matrix3& rest, twist_poses::Component component);

}  // namespace tavrilon
