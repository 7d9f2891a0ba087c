// SPDX-License-Identifier: MIT
#include "plugin/shapes/gizmo.h"

#include <cmath>

namespace tavrilon {

using corvanta::AffineParts;

GizmoParts PartsOfGizmo(const Matrix3& gizmo) {
  const AffineParts parts = corvanta::decomp_affine(gizmo);
  return {parts.t, parts.q, parts.k * parts.f};
}

Matrix3 WithGizmoPos(const Matrix3& gizmo, const Point3& pos) {
  Matrix3 moved = gizmo;
  moved.SetTrans(pos);
  return moved;
}

Matrix3 WithGizmoRot(const Matrix3& gizmo, const Quat& rot) {
  AffineParts parts = corvanta::decomp_affine(gizmo);
  parts.q = Normalize(rot);
  return ComposeAffine(parts);
}

Matrix3 WithGizmoScale(const Matrix3& gizmo, const Point3& scale) {
  AffineParts parts = corvanta::decomp_affine(gizmo);
  parts.u = Quat();
  parts.k = scale;
  parts.f = 1;
  return ComposeAffine(parts);
}

namespace {
Matrix3 InAxisSystem(const Matrix3& axis, const Matrix3& change) { return Inverse(axis) * change * axis; }
}  // namespace

Matrix3 WorldMove(const Matrix3& axis, const Point3& v) { return corvanta::TransMatrix(VectorTransform(axis, v)); }
Matrix3 WorldRotate(const Matrix3& axis, const Quat& q) { return InAxisSystem(axis, MakeMatrix(q)); }
Matrix3 WorldScale(const Matrix3& axis, const Point3& s) { return InAxisSystem(axis, corvanta::ScaleMatrix(s)); }

Point3 SquashFactors(int axis, float amount) {
  if (!(amount > 0)) return {1, 1, 1};
  const float other = 1 / std::sqrt(amount);
  Point3 factors{other, other, other};
  factors[axis] = amount;
  return factors;
}

Matrix3 TransformGizmo(const Matrix3& gizmo, const Matrix3& toWorld, const Matrix3& change) {
  if (Determinant(toWorld) == 0) return gizmo;
  return gizmo * toWorld * change * Inverse(toWorld);
}

}  // namespace tavrilon
