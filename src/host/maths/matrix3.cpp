// SPDX-License-Identifier: MIT
#include "host/maths/matrix3.h"

#include <algorithm>

namespace corvanta {
namespace {

constexpr Quat kIdentity;
constexpr Point3 kOne{1, 1, 1};

// Turns the plane of columns i and j of all four rows: i towards j.
void TurnColumns(Matrix3& m, int i, int j, float angle) {
  const float c = std::cos(angle), s = std::sin(angle);
  for (Point3& r : m.row) {
    const float a = r[i], b = r[j];
    r[i] = a * c - b * s;
    r[j] = a * s + b * c;
  }
}

void TurnRows(Matrix3& m, int i, int j, float angle) {
  const float c = std::cos(angle), s = std::sin(angle);
  const Point3 a = m.row[i], b = m.row[j];
  m.row[i] = a * c + b * s;
  m.row[j] = b * c - a * s;
}

Matrix3 Turned(int i, int j, float angle) {
  Matrix3 m;
  TurnRows(m, i, j, angle);
  return m;
}

}  // namespace

void Matrix3::RotateX(float angle) { TurnColumns(*this, 1, 2, angle); }
void Matrix3::RotateY(float angle) { TurnColumns(*this, 2, 0, angle); }
void Matrix3::RotateZ(float angle) { TurnColumns(*this, 0, 1, angle); }
void Matrix3::PreRotateX(float angle) { TurnRows(*this, 1, 2, angle); }
void Matrix3::PreRotateY(float angle) { TurnRows(*this, 2, 0, angle); }
void Matrix3::PreRotateZ(float angle) { TurnRows(*this, 0, 1, angle); }

Matrix3 RotateXMatrix(float angle) { return Turned(1, 2, angle); }
Matrix3 RotateYMatrix(float angle) { return Turned(2, 0, angle); }
Matrix3 RotateZMatrix(float angle) { return Turned(0, 1, angle); }

Matrix3 Inverse(const Matrix3& m) {
  // Cofactors in double: the sums below cancel for strong shears, and a float result is then still good.
  const double ax = m.row[0].x, ay = m.row[0].y, az = m.row[0].z;
  const double bx = m.row[1].x, by = m.row[1].y, bz = m.row[1].z;
  const double cx = m.row[2].x, cy = m.row[2].y, cz = m.row[2].z;
  const double bcx = by * cz - bz * cy, bcy = bz * cx - bx * cz, bcz = bx * cy - by * cx;
  const double determinant = ax * bcx + ay * bcy + az * bcz;
  const double volume2 = (ax * ax + ay * ay + az * az) * (bx * bx + by * by + bz * bz) * (cx * cx + cy * cy + cz * cz);
  Matrix3 r;
  // A determinant below the float noise of its rows tells nothing: 1e-7 squared, relative to their lengths.
  if (!(determinant * determinant > 1e-14 * volume2)) {
    const Matrix3 o = Orthogonalize(m);
    r.row[0] = {o.row[0].x, o.row[1].x, o.row[2].x};
    r.row[1] = {o.row[0].y, o.row[1].y, o.row[2].y};
    r.row[2] = {o.row[0].z, o.row[1].z, o.row[2].z};
  } else {
    const double k = 1 / determinant;
    const auto f = [k](double cofactor) { return static_cast<float>(cofactor * k); };
    r.row[0] = {f(bcx), f(cy * az - cz * ay), f(ay * bz - az * by)};
    r.row[1] = {f(bcy), f(cz * ax - cx * az), f(az * bx - ax * bz)};
    r.row[2] = {f(bcz), f(cx * ay - cy * ax), f(ax * by - ay * bx)};
  }
  r.row[3] = -VectorTransform(r, m.row[3]);
  return r;
}

// Shepperd's choice of the largest component ("Quaternion from rotation matrix", 1978), for row vectors.
Quat QuatFromMatrix(const Matrix3& m) {
  const float sign = Determinant(m) < 0 ? -1.0f : 1.0f;
  const auto e = [&](int i, int j) { return m.row[i][j] * sign; };
  const float trace = e(0, 0) + e(1, 1) + e(2, 2);
  Quat q;
  if (trace > 0) {
    const float r = std::sqrt(1 + trace), k = 0.5f / r;
    q = {(e(2, 1) - e(1, 2)) * k, (e(0, 2) - e(2, 0)) * k, (e(1, 0) - e(0, 1)) * k, 0.5f * r};
  } else {
    const int i = e(0, 0) >= e(1, 1) ? (e(0, 0) >= e(2, 2) ? 0 : 2) : (e(1, 1) >= e(2, 2) ? 1 : 2);
    const int j = (i + 1) % 3, l = (i + 2) % 3;
    const float r = std::sqrt(std::max(0.0f, 1 + e(i, i) - e(j, j) - e(l, l))), k = r > 0 ? 0.5f / r : 0;
    q[i] = 0.5f * r;
    q[j] = (e(i, j) + e(j, i)) * k;
    q[l] = (e(i, l) + e(l, i)) * k;
    q.w = (e(l, j) - e(j, l)) * k;
    if (q.w < 0) q = -q;
  }
  return Normalize(q);
}

Matrix3 MakeMatrix(const ScaleValue& value) {
  Matrix3 m;
  ApplyScaling(m, value);
  return m;
}

void ApplyScaling(Matrix3& m, const ScaleValue& value) {
  if (value.s == kOne) return;
  if (value.q == kIdentity) {
    m.PreScale(value.s);
    return;
  }
  const Matrix3 axes = MakeMatrix(value.q);
  Matrix3 scaled = axes;
  scaled.PreScale(value.s);
  Matrix3 transposed;
  for (int i = 0; i < 3; ++i) transposed.row[i] = {axes.row[0][i], axes.row[1][i], axes.row[2][i]};
  const Point3 translation = m.row[3];
  m = transposed * scaled * m.WithoutTrans();
  m.row[3] = translation;
}

}  // namespace corvanta
