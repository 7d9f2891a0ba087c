// SPDX-License-Identifier: MIT
#include "host/anim/value_ops.h"

namespace corvanta {
namespace {

// Some ten roundings of unit quaternions.
constexpr float kSameAxes = 1e-6f;

bool IsUniform(const Point3& s) { return s.x == s.y && s.y == s.z; }
bool SameAxes(const Quat& a, const Quat& b) { return 1 - std::abs(Dot(a, b)) < kSameAxes; }
float Factor(float to, float from) { return from != 0 ? to / from : 1; }

}  // namespace

ScaleValue CombineScale(const ScaleValue& old, const ScaleValue& delta) {
  if (IsUniform(delta.s) || SameAxes(old.q, delta.q)) return {old.s * delta.s, old.q};
  const AffineParts parts = decomp_affine(MakeMatrix(old) * MakeMatrix(delta));
  return {parts.k * parts.f, parts.u};
}

ScaleValue Shifted(const ScaleValue& v, const ScaleValue& from, const ScaleValue& to) {
  const Point3 factor{Factor(to.s.x, from.s.x), Factor(to.s.y, from.s.y), Factor(to.s.z, from.s.z)};
  return {v.s * factor, Shifted(v.q, from.q, to.q)};
}

}  // namespace corvanta
