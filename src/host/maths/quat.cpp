// SPDX-License-Identifier: MIT
#include "host/maths/quat.h"

namespace corvanta {

Quat QuatFromAngAxis(const AngAxis& aa) {
  const float length = Length(aa.axis);
  if (!(length > 0)) return {};
  const float half = aa.angle * 0.5f;
  const float k = std::sin(half) / length;
  return {aa.axis.x * k, aa.axis.y * k, aa.axis.z * k, std::cos(half)};
}

AngAxis AngAxisFromQuat(const Quat& q) {
  const Point3 v{q.x, q.y, q.z};
  const float length = Length(v);
  if (!(length > 0)) return {};
  return {v / length, 2 * std::atan2(length, q.w)};
}

// In the plane of a and b: a cos(f angle) + n sin(f angle), with n the unit vector at right angles to a on b's
// side. Unlike the usual quotient of sines this form keeps its precision for small angles and large f.
Quat Slerp(const Quat& a, const Quat& b, float f) {
  if (f == 0) return a;
  if (f == 1) return b;
  const float cosine = Dot(a, b);
  Quat n{b.x - a.x * cosine, b.y - a.y * cosine, b.z - a.z * cosine, b.w - a.w * cosine};
  const float sine = std::sqrt(Dot(n, n));
  if (sine < 1e-6f) {
    if (cosine > 0) {
      return Normalize(
          Quat{a.x + (b.x - a.x) * f, a.y + (b.y - a.y) * f, a.z + (b.z - a.z) * f, a.w + (b.w - a.w) * f});
    }
    n = {-a.y, a.x, -a.w, a.z};  // b is -a: every plane through a will do
  } else {
    const float k = 1 / sine;
    n = {n.x * k, n.y * k, n.z * k, n.w * k};
  }
  const float angle = std::atan2(sine, cosine) * f;
  const float c = std::cos(angle), s = std::sin(angle);
  return {a.x * c + n.x * s, a.y * c + n.y * s, a.z * c + n.z * s, a.w * c + n.w * s};
}

Quat SlerpClosest(const Quat& a, const Quat& b, float f) { return Slerp(a, MakeClosest(b, a), f); }

}  // namespace corvanta
