// SPDX-License-Identifier: MIT
// Keeping the orientation of another space while the place follows the parent. Plain values in and out.
#pragma once

#include "host/maths/matrix3.h"

namespace tavrilon {

/// `m` turned about its own place towards the orientation of `space`: weight 0 leaves it, 1 gives the orientation
/// exactly. Scale and shear of `m` stay with its world axes, those of `space` do not count. Other weights go by the
/// shorter arc; beyond 0 to 1 they go on along it.
corvanta::Matrix3 TurnToSpace(const corvanta::Matrix3& m, const corvanta::Matrix3& space, float weight);

/// The offset of a space from its node that makes `TurnToSpace(m, offset * Orthogonalize(node), w)` leave `m` as it is:
/// a rigid matrix.
corvanta::Matrix3 SpaceOffset(const corvanta::Matrix3& m, const corvanta::Matrix3& node);

/// A control with the value `own` (its matrix below an identity parent): its place goes by `parent`, its rotation and
/// scale by `parent` turned to `space`.
corvanta::Matrix3 InSpace(const corvanta::Matrix3& own, const corvanta::Matrix3& parent, const corvanta::Matrix3& space,
                          float weight);
/// The value that puts the control at `world`: the inverse of `InSpace`.
corvanta::Matrix3 OwnInSpace(const corvanta::Matrix3& world, const corvanta::Matrix3& parent,
                             const corvanta::Matrix3& space, float weight);

}  // namespace tavrilon
