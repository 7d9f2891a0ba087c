// SPDX-License-Identifier: MIT
#include "plugin/controllers/rig_offset.h"

#include <cmath>

namespace tavrilon {

using namespace corvanta;

namespace {

// Splitting a rigid matrix in single precision leaves scale factors and angles this far from exact: what is nearer to
// "no stretch" or "no turn" is that.
constexpr float kStretchNoise = 1e-6f;
constexpr float kTurnNoise = 1e-7f;

bool IsOne(float x) { return std::abs(x - 1) <= kStretchNoise; }

}  // namespace

SplitOffset Split(const Matrix3& offset) {
  SplitOffset split;
  split.tm = offset;
  split.isIdentity = offset == Matrix3();
  const AffineParts parts = decomp_affine(offset);
  split.translation = parts.t;
  split.rotates =
      std::abs(parts.q.x) > kTurnNoise || std::abs(parts.q.y) > kTurnNoise || std::abs(parts.q.z) > kTurnNoise;
  if (split.rotates) {
    split.rotationQuat = parts.q;
    split.rotation = MakeMatrix(parts.q);
  }
  const Point3 k = parts.k * parts.f;
  split.stretches = !IsOne(k.x) || !IsOne(k.y) || !IsOne(k.z);
  if (split.stretches) split.stretch = MakeMatrix(ScaleValue{k, parts.u});
  return split;
}

Point3 RowLengths(const Matrix3& m) { return {Length(m.row[0]), Length(m.row[1]), Length(m.row[2])}; }

Quat OffsetRotation(const Matrix3& offset) {
  constexpr float kShortest = 1e-6f;
  Matrix3 m = offset.WithoutTrans();
  for (int i = 0; i < 3; ++i)
    if (!(Length(m.row[i]) > kShortest)) return {};
  if (Determinant(m) < 0) m.row[2] = -m.row[2];
  return QuatFromMatrix(Orthogonalize(m));
}

Point3 OffsetScale(const Matrix3& offset) {
  Point3 lengths = RowLengths(offset);
  if (Determinant(offset) < 0) lengths.z = -lengths.z;
  return lengths;
}

Matrix3 OffsetFromParts(const Point3& pos, const Quat& rot, const Point3& scale) {
  Matrix3 m = MakeMatrix(rot);
  m.PreScale(scale);
  m.SetTrans(pos);
  return m;
}

Matrix3 WithRotation(const Matrix3& offset, const Quat& rotation) {
  AffineParts parts = decomp_affine(offset);
  parts.q = rotation;
  return ComposeAffine(parts);
}

Matrix3 MirrorChange(const Matrix3& change, int posAxis, int rotAxis) {
  Matrix3 mirrored = change;
  if (rotAxis >= 0 && rotAxis < 3) {
    Quat q = decomp_affine(change).q;
    for (int i = 0; i < 3; ++i)
      if (i != rotAxis) q[i] = -q[i];
    mirrored = WithRotation(change, q);
  }
  if (posAxis >= 0 && posAxis < 3) mirrored.row[3][posAxis] = -change.row[3][posAxis];
  return mirrored;
}

}  // namespace tavrilon
