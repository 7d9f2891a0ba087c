// SPDX-License-Identifier: MIT
#include "plugin/fbx/importer/trs.h"

#include <algorithm>

namespace tavrilon::fbx_import {

using namespace fbx;

namespace {

/// Axes shorter than this have no direction worth reading. Above it a square does not vanish in double precision.
constexpr double kNoLength = 1e-100;
/// A sine between two axes below this: they are one.
constexpr double kParallel = 1e-9;

Vector3 Unit(const Vector3& v) {
  const double length = Length(v);
  return length > kNoLength ? v * (1 / length) : Vector3();
}
bool IsZero(const Vector3& v) { return v == Vector3(); }

/// Any direction at right angles to `v`.
Vector3 Across(const Vector3& v) {
  const Vector3 axis = std::abs(v.x) < 0.6 ? Vector3{1, 0, 0} : Vector3{0, 1, 0};
  return Unit(Cross(v, axis));
}

/// Right-handed axes from directions that may lean, or be missing: the first that is there stays, the second is
/// straightened against it, the third follows.
bool Straighten(Vector3 (&axis)[3]) {
  size_t first = 0;
  while (first < 3 && IsZero(axis[first])) ++first;
  if (first == 3) return false;
  const size_t next = (first + 1) % 3, last = (first + 2) % 3;
  Vector3 second = axis[next] - axis[first] * Dot(axis[next], axis[first]);
  if (Length(second) < kParallel) second = Cross(axis[last], axis[first]);
  axis[next] = Length(second) < kParallel ? Across(axis[first]) : Unit(second);
  axis[last] = Cross(axis[first], axis[next]);
  return true;
}

}  // namespace

TrsSplit SplitTrs(const Affine& m, const Vector3& near) {
  TrsSplit split;
  split.trs.translation = m.row[3];
  split.trs.rotation = near;
  Vector3 axis[3];
  for (size_t i = 0; i < 3; ++i) {
    split.trs.scaling[i] = Length(m.row[i]);
    axis[i] = Unit(m.row[i]);
  }
  for (size_t i = 0; i < 3; ++i) split.shear = std::max(split.shear, std::abs(Dot(axis[i], axis[(i + 1) % 3])));
  if (Dot(Cross(axis[0], axis[1]), axis[2]) < 0) {
    split.trs.scaling = -split.trs.scaling;
    for (Vector3& a : axis) a = -a;
  }
  if (Straighten(axis)) split.trs.rotation = RotationToEuler({{axis[0], axis[1], axis[2], {}}}, near);
  return split;
}

}  // namespace tavrilon::fbx_import
