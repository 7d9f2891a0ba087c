// SPDX-License-Identifier: MIT
// The gizmo of a control: a matrix in the object's space, read and written by parts and dragged by the transform tools.
// Plain mathematics.
#pragma once

#include "host/maths/matrix3.h"

namespace tavrilon {

using corvanta::Matrix3;
using corvanta::Point3;
using corvanta::Quat;

struct GizmoParts {
  Point3 pos;
  Quat rot;
  /// Along the gizmo's own axes. A mirrored gizmo has a negative scale.
  Point3 scale{1, 1, 1};
};
GizmoParts PartsOfGizmo(const Matrix3& gizmo);
/// `gizmo` with one part replaced. Position and rotation leave a skewed stretch as it is; a new scale straightens it.
Matrix3 WithGizmoPos(const Matrix3& gizmo, const Point3& pos);
Matrix3 WithGizmoRot(const Matrix3& gizmo, const Quat& rot);
Matrix3 WithGizmoScale(const Matrix3& gizmo, const Point3& scale);

/// A tool's change as a matrix over world points. `axis` is the tool's axis system in the world: moves and turns are
/// told in it, turns and scales happen about its origin.
Matrix3 WorldMove(const Matrix3& axis, const Point3& v);
Matrix3 WorldRotate(const Matrix3& axis, const Quat& q);
Matrix3 WorldScale(const Matrix3& axis, const Point3& s);
/// Factors of a squash by `amount` along one axis: the others keep the volume. An amount of 0 or below gives no change.
Point3 SquashFactors(int axis, float amount);

/// The gizmo after a change over world points: gizmo * toWorld * change * Inverse(toWorld). `toWorld` takes the
/// object's space, with the shape's own scale, to the world; a singular one leaves the gizmo alone.
Matrix3 TransformGizmo(const Matrix3& gizmo, const Matrix3& toWorld, const Matrix3& change);

}  // namespace tavrilon
