// SPDX-License-Identifier: MIT
// Affine matrices for row vectors: p' = p * M, and `A * B` applies A first. Row 3 is the translation.
#pragma once

#include <cstdint>

#include "host/maths/quat.h"

namespace corvanta {

/// Four rows of three floats and a flags word that is always 0: 52 bytes, as stored in scene chunks.
struct Matrix3 {
  Point3 row[4] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, 0, 0}};
  uint32_t flags = 0;

  const Point3& GetRow(int i) const { return row[i]; }
  void SetRow(int i, const Point3& p) { row[i] = p; }
  const Point3& GetTrans() const { return row[3]; }
  void SetTrans(const Point3& p) { row[3] = p; }
  /// The same matrix with a zero translation.
  Matrix3 WithoutTrans() const {
    Matrix3 m = *this;
    m.row[3] = {};
    return m;
  }

  /// M = M * T(v).
  void Translate(const Point3& v) { row[3] += v; }
  /// M = T(v) * M.
  void PreTranslate(const Point3& v) { row[3] += row[0] * v.x + row[1] * v.y + row[2] * v.z; }
  /// M = M * Rx(angle) and so on; the translation turns too. Right-handed on row vectors: Y to Z, Z to X, X to Y.
  void RotateX(float angle);
  void RotateY(float angle);
  void RotateZ(float angle);
  /// M = Rx(angle) * M and so on; the translation stays.
  void PreRotateX(float angle);
  void PreRotateY(float angle);
  void PreRotateZ(float angle);
  /// M = M * S(v) on rows 0 to 2, and on the translation only when asked.
  void Scale(const Point3& v, bool alsoTranslation = false) {
    for (int i = 0; i < (alsoTranslation ? 4 : 3); ++i) row[i] = row[i] * v;
  }
  /// M = S(v) * M; the translation stays.
  void PreScale(const Point3& v) { row[0] *= v.x, row[1] *= v.y, row[2] *= v.z; }
  /// Bitwise compare of the twelve floats' values.
  bool operator==(const Matrix3& b) const {
    return row[0] == b.row[0] && row[1] == b.row[1] && row[2] == b.row[2] && row[3] == b.row[3];
  }
};
static_assert(sizeof(Matrix3) == 52);

/// `v` through the 3 x 3 part.
inline Point3 VectorTransform(const Matrix3& m, const Point3& v) {
  return m.row[0] * v.x + m.row[1] * v.y + m.row[2] * v.z;
}
/// `p` through the whole matrix.
inline Point3 operator*(const Point3& p, const Matrix3& m) { return VectorTransform(m, p) + m.row[3]; }
inline Matrix3 operator*(const Matrix3& a, const Matrix3& b) {
  Matrix3 r;
  r.row[0] = VectorTransform(b, a.row[0]);
  r.row[1] = VectorTransform(b, a.row[1]);
  r.row[2] = VectorTransform(b, a.row[2]);
  r.row[3] = a.row[3] * b;
  return r;
}

/// The affine inverse. A singular 3 x 3 part does not fail: it inverts as the transpose of its polar rotation.
Matrix3 Inverse(const Matrix3& m);
/// Determinant of the 3 x 3 part.
inline float Determinant(const Matrix3& m) { return Dot(Cross(m.row[0], m.row[1]), m.row[2]); }

Matrix3 RotateXMatrix(float angle);
Matrix3 RotateYMatrix(float angle);
Matrix3 RotateZMatrix(float angle);
inline Matrix3 ScaleMatrix(const Point3& s) {
  Matrix3 m;
  m.PreScale(s);
  return m;
}
inline Matrix3 TransMatrix(const Point3& t) {
  Matrix3 m;
  m.row[3] = t;
  return m;
}

/// m(q) for row vectors; q need not be of unit length. The zero quaternion gives the identity.
inline Matrix3 MakeMatrix(const Quat& q) {
  const float n = Dot(q, q);
  const float k = n > 0 ? 2 / n : 0;
  const float xx = q.x * q.x * k, yy = q.y * q.y * k, zz = q.z * q.z * k;
  const float xy = q.x * q.y * k, xz = q.x * q.z * k, yz = q.y * q.z * k;
  const float xw = q.x * q.w * k, yw = q.y * q.w * k, zw = q.z * q.w * k;
  Matrix3 m;
  m.row[0] = {1 - yy - zz, xy - zw, xz + yw};
  m.row[1] = {xy + zw, 1 - xx - zz, yz - xw};
  m.row[2] = {xz - yw, yz + xw, 1 - xx - yy};
  return m;
}
/// The inverse of `MakeMatrix` on proper rotations, w >= 0. Rows of a mirrored matrix are negated first.
/// Expects orthonormal rows; orthogonalize others before.
Quat QuatFromMatrix(const Matrix3& m);

/// A scale along the axes of `q`: Inverse(m(q)) * diag(s) * m(q). 28 bytes.
struct ScaleValue {
  Point3 s{1, 1, 1};
  Quat q;
  bool operator==(const ScaleValue&) const = default;
};
Matrix3 MakeMatrix(const ScaleValue& value);
/// M = stretch * M.
void ApplyScaling(Matrix3& m, const ScaleValue& value);

/// The nearest orthogonal matrix (the polar factor): handedness and translation stay. Rows that are at right
/// angles already are only normalised; zero rows are completed to a frame. Allocates nothing.
Matrix3 Orthogonalize(const Matrix3& m);

/// M = Inverse(m(u)) * diag(k) * m(u) * f * m(q) * T(t).
struct AffineParts {
  Point3 t;
  Quat q;
  /// Eigenbasis of the stretch nearest to the identity, and exactly the identity for a diagonal stretch.
  Quat u;
  Point3 k{1, 1, 1};
  /// -1 for a mirrored matrix, else 1.
  float f = 1;
};
/// Splits by the polar decomposition (Shoemake and Duff, "Matrix animation and polar decomposition", 1992).
AffineParts decomp_affine(const Matrix3& m);
/// The matrix that the parts came from.
Matrix3 ComposeAffine(const AffineParts& parts);

}  // namespace corvanta
