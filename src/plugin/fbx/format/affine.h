// SPDX-License-Identifier: MIT
// Double precision vectors and affine matrices for row vectors: p' = p * M, and `A * B` applies A first, as everywhere
// in this program. The 16 numbers of a matrix in a file lie in the same order.
#pragma once

#include <array>
#include <cmath>
#include <cstddef>

namespace tavrilon::fbx {

inline constexpr double kDegreesToRadians = 0.017453292519943295;

struct Vector2 {
  double x = 0, y = 0;
  bool operator==(const Vector2&) const = default;
};

struct Vector3 {
  double x = 0, y = 0, z = 0;
  double operator[](size_t i) const { return (&x)[i]; }
  double& operator[](size_t i) { return (&x)[i]; }
  bool operator==(const Vector3&) const = default;
};
inline Vector3 operator+(const Vector3& a, const Vector3& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
inline Vector3 operator-(const Vector3& a, const Vector3& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
inline Vector3 operator-(const Vector3& a) { return {-a.x, -a.y, -a.z}; }
inline Vector3 operator*(const Vector3& a, double k) { return {a.x * k, a.y * k, a.z * k}; }
inline double Dot(const Vector3& a, const Vector3& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
inline Vector3 Cross(const Vector3& a, const Vector3& b) {
  return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x};
}
inline double Length(const Vector3& a) { return std::sqrt(Dot(a, a)); }
inline bool IsFinite(const Vector3& a) { return std::isfinite(a.x) && std::isfinite(a.y) && std::isfinite(a.z); }

/// Rows 0 to 2 are the images of the axes, row 3 the translation.
struct Affine {
  Vector3 row[4] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, {0, 0, 0}};
  bool operator==(const Affine&) const = default;
};
inline Vector3 TransformVector(const Affine& m, const Vector3& v) {
  return m.row[0] * v.x + m.row[1] * v.y + m.row[2] * v.z;
}
inline Vector3 operator*(const Vector3& p, const Affine& m) { return TransformVector(m, p) + m.row[3]; }
inline Affine operator*(const Affine& a, const Affine& b) {
  return {{TransformVector(b, a.row[0]), TransformVector(b, a.row[1]), TransformVector(b, a.row[2]), a.row[3] * b}};
}
inline double Determinant(const Affine& m) { return Dot(Cross(m.row[0], m.row[1]), m.row[2]); }
/// The affine inverse; the identity for a singular matrix, which callers find by its determinant first.
Affine Inverse(const Affine& m);
inline Affine Translation(const Vector3& t) { return {{{1, 0, 0}, {0, 1, 0}, {0, 0, 1}, t}}; }
inline Affine Scaling(const Vector3& s) { return {{{s.x, 0, 0}, {0, s.y, 0}, {0, 0, s.z}, {0, 0, 0}}}; }
bool IsFinite(const Affine& m);

/// As the enumeration in files. The letters tell the order of application: XYZ turns about X first.
enum class RotationOrder : int { XYZ = 0, XZY = 1, YZX = 2, YXZ = 3, ZXY = 4, ZYX = 5, SphericXYZ = 6 };
/// Degrees about the axes X, Y, Z (in this order, whatever the order of application). Right-handed.
/// SphericXYZ counts as XYZ.
Affine Rotation(const Vector3& degrees, RotationOrder order = RotationOrder::XYZ);
/// Degrees about X, Y, Z, applied in `order`, of a rotation matrix with orthonormal rows; of all triples the one
/// nearest to `near`: both solutions, each angle by whole turns. At gimbal lock the angle of `near` that is applied
/// first is kept.
Vector3 RotationToEuler(const Affine& m, const Vector3& near = {}, RotationOrder order = RotationOrder::XYZ);

/// A matrix in parts. Degrees, order XYZ.
struct Trs {
  Vector3 translation, rotation, scaling{1, 1, 1};
};
/// Scale, then rotate, then move.
Affine ToMatrix(const Trs& trs);

/// The 16 numbers as files store them.
std::array<double, 16> ToFile(const Affine& m);
Affine FromFile(const std::array<double, 16>& m);

}  // namespace tavrilon::fbx
