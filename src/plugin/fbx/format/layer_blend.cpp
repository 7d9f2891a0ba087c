// SPDX-License-Identifier: MIT
#include "plugin/fbx/format/layer_blend.h"

namespace tavrilon::fbx {

namespace {

struct Quaternion {
  Vector3 v;
  double w = 1;
};
/// Turns by `b` first.
Quaternion operator*(const Quaternion& a, const Quaternion& b) {
  return {Cross(a.v, b.v) + b.v * a.w + a.v * b.w, a.w * b.w - Dot(a.v, b.v)};
}
Quaternion Conjugate(const Quaternion& q) { return {-q.v, q.w}; }

/// Of a matrix with orthonormal rows. Source: Shepperd, "Quaternion from rotation matrix", 1978.
Quaternion FromMatrix(const Affine& m) {
  const auto at = [&m](size_t r, size_t c) { return m.row[r][c]; };
  const double trace = at(0, 0) + at(1, 1) + at(2, 2);
  size_t i = 0;
  for (size_t k = 1; k < 3; ++k) {
    if (at(k, k) > at(i, i)) i = k;
  }
  const size_t j = (i + 1) % 3, k = (i + 2) % 3;
  Quaternion q;
  if (trace > at(i, i)) {
    q.w = 1 + trace;
    q.v = {at(1, 2) - at(2, 1), at(2, 0) - at(0, 2), at(0, 1) - at(1, 0)};
  } else {
    q.v[i] = 1 + at(i, i) - at(j, j) - at(k, k);
    q.v[j] = at(i, j) + at(j, i);
    q.v[k] = at(i, k) + at(k, i);
    q.w = at(j, k) - at(k, j);
  }
  const double length = std::sqrt(Dot(q.v, q.v) + q.w * q.w);
  return {q.v * (1 / length), q.w / length};
}

Affine ToMatrix(const Quaternion& q) {
  Affine m;
  for (size_t i = 0; i < 3; ++i) {
    // The image of axis i: (w^2 - v.v) e + 2 (v.e) v + 2 w (v x e).
    Vector3 e;
    e[i] = 1;
    m.row[i] = e * (q.w * q.w - Dot(q.v, q.v)) + q.v * (2 * q.v[i]) + Cross(q.v, e) * (2 * q.w);
  }
  return m;
}

/// The share `k` of a turn, the short way round.
Quaternion Share(const Quaternion& q, double k) {
  const Quaternion shortWay = q.w < 0 ? Quaternion{-q.v, -q.w} : q;
  const double sine = Length(shortWay.v);
  if (sine < 1e-12) return {};
  const double half = std::atan2(sine, shortWay.w) * k;
  return {shortWay.v * (std::sin(half) / sine), std::cos(half)};
}

double PowerOf(double scale, double weight) {
  return weight == 0 ? 1 : std::copysign(std::pow(std::abs(scale), weight), scale);
}

}  // namespace

Vector3 BlendPosition(const Vector3& below, const Vector3& layer, const LayerMode& mode) {
  switch (mode.blend) {
    case LayerBlend::Additive:
      return below + layer * mode.weight;
    case LayerBlend::OverridePassthrough:
      return below * (1 - mode.weight) + layer * mode.weight;
    case LayerBlend::Override:
      break;
  }
  return layer;
}

Vector3 BlendScale(const Vector3& below, const Vector3& layer, const LayerMode& mode) {
  if (mode.blend != LayerBlend::Additive || !mode.scalesMultiply) return BlendPosition(below, layer, mode);
  return {below.x * PowerOf(layer.x, mode.weight), below.y * PowerOf(layer.y, mode.weight),
          below.z * PowerOf(layer.z, mode.weight)};
}

Vector3 BlendRotation(const Vector3& below, const Vector3& layer, const LayerMode& mode, RotationOrder order) {
  const Vector3 angles = BlendPosition(below, layer, mode);
  if (mode.blend == LayerBlend::Override || !mode.rotationsMultiply) return angles;
  if (!IsFinite(angles)) return angles;
  const Quaternion from = FromMatrix(Rotation(below, order)), by = FromMatrix(Rotation(layer, order));
  const Quaternion result = mode.blend == LayerBlend::Additive ? from * Share(by, mode.weight)
                                                               : from * Share(Conjugate(from) * by, mode.weight);
  return RotationToEuler(ToMatrix(result), angles, order);
}

}  // namespace tavrilon::fbx
