// SPDX-License-Identifier: MIT
#include "plugin/fbx/format/affine.h"

namespace tavrilon::fbx {

namespace {

constexpr double kTurn = 360;

/// Turn about one axis: the image of the next axis leans towards the one after it.
Affine AxisRotation(size_t axis, double degrees) {
  const double angle = std::remainder(degrees, kTurn) * kDegreesToRadians;
  const double c = std::cos(angle), s = std::sin(angle);
  const size_t next = (axis + 1) % 3, last = (axis + 2) % 3;
  Affine m;
  m.row[next][next] = c;
  m.row[next][last] = s;
  m.row[last][next] = -s;
  m.row[last][last] = c;
  return m;
}

/// Axes in the order of application, by RotationOrder.
constexpr size_t kAxes[][3] = {{0, 1, 2}, {0, 2, 1}, {1, 2, 0}, {1, 0, 2}, {2, 0, 1}, {2, 1, 0}, {0, 1, 2}};

const size_t (&AxesOf(RotationOrder order))[3] {
  const auto index = static_cast<size_t>(order);
  return kAxes[index < std::size(kAxes) ? index : 0];
}

double NearTurn(double degrees, double near) { return degrees + kTurn * std::round((near - degrees) / kTurn); }

Vector3 NearTurns(const Vector3& degrees, const Vector3& near) {
  return {NearTurn(degrees.x, near.x), NearTurn(degrees.y, near.y), NearTurn(degrees.z, near.z)};
}

/// The angles of order XYZ nearest to `near`.
Vector3 XyzAngles(const Affine& m, const Vector3& near) {
  // Below this cosine of Y the angles X and Z turn about one axis: their difference (or sum) is all there is.
  constexpr double kGimbal = 1e-6;
  const double cosY = std::hypot(m.row[0].x, m.row[0].y);
  const double y = std::atan2(-m.row[0].z, cosY) / kDegreesToRadians;
  if (cosY < kGimbal) {
    const double sum = std::atan2(m.row[1].x, m.row[1].y) / kDegreesToRadians;
    return NearTurns({near.x, y, y > 0 ? near.x - sum : -sum - near.x}, near);
  }
  const double x = std::atan2(m.row[1].z, m.row[2].z) / kDegreesToRadians;
  const double z = std::atan2(m.row[0].y, m.row[0].x) / kDegreesToRadians;
  const Vector3 one = NearTurns({x, y, z}, near);
  const Vector3 other = NearTurns({x + 180, 180 - y, z + 180}, near);
  return Dot(other - near, other - near) < Dot(one - near, one - near) ? other : one;
}

}  // namespace

Affine Inverse(const Affine& m) {
  const double determinant = Determinant(m);
  const double scale = 1 / determinant;
  if (determinant == 0 || !std::isfinite(scale)) return {};
  // The columns of the inverse are the cross products of the rows.
  const Vector3 a = Cross(m.row[1], m.row[2]) * scale;
  const Vector3 b = Cross(m.row[2], m.row[0]) * scale;
  const Vector3 c = Cross(m.row[0], m.row[1]) * scale;
  Affine inverse{{{a.x, b.x, c.x}, {a.y, b.y, c.y}, {a.z, b.z, c.z}, {}}};
  inverse.row[3] = -TransformVector(inverse, m.row[3]);
  return inverse;
}

bool IsFinite(const Affine& m) {
  return IsFinite(m.row[0]) && IsFinite(m.row[1]) && IsFinite(m.row[2]) && IsFinite(m.row[3]);
}

Affine Rotation(const Vector3& degrees, RotationOrder order) {
  const auto& axes = AxesOf(order);
  return AxisRotation(axes[0], degrees[axes[0]]) * AxisRotation(axes[1], degrees[axes[1]]) *
         AxisRotation(axes[2], degrees[axes[2]]);
}

Vector3 RotationToEuler(const Affine& m, const Vector3& wanted, RotationOrder order) {
  const Vector3 near = IsFinite(wanted) ? wanted : Vector3();
  const auto& axes = AxesOf(order);
  // With the axes renamed by their order of application every order is XYZ; renaming by an odd permutation mirrors
  // space, which turns the sense of each angle.
  const double sense = (axes[0] + 1) % 3 == axes[1] ? 1 : -1;
  Affine renamed;
  Vector3 nearRenamed;
  for (size_t i = 0; i < 3; ++i) {
    nearRenamed[i] = near[axes[i]] * sense;
    for (size_t k = 0; k < 3; ++k) renamed.row[i][k] = m.row[axes[i]][axes[k]];
  }
  const Vector3 angles = XyzAngles(renamed, nearRenamed);
  Vector3 degrees;
  for (size_t i = 0; i < 3; ++i) degrees[axes[i]] = angles[i] * sense;
  return degrees;
}

Affine ToMatrix(const Trs& trs) { return Scaling(trs.scaling) * Rotation(trs.rotation) * Translation(trs.translation); }

std::array<double, 16> ToFile(const Affine& m) {
  std::array<double, 16> numbers{};
  for (size_t r = 0; r < 4; ++r) {
    for (size_t c = 0; c < 3; ++c) numbers[r * 4 + c] = m.row[r][c];
  }
  numbers[15] = 1;
  return numbers;
}

Affine FromFile(const std::array<double, 16>& numbers) {
  Affine m;
  for (size_t r = 0; r < 4; ++r) {
    for (size_t c = 0; c < 3; ++c) m.row[r][c] = numbers[r * 4 + c];
  }
  return m;
}

}  // namespace tavrilon::fbx
