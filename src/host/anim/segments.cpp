// SPDX-License-Identifier: MIT
#include "host/anim/segments.h"

#include <cmath>

namespace corvanta {

float EaseTime(float u, float out, float in) {
  const float sum = out + in;
  if (sum <= 0) return u;
  if (sum > 1) out /= sum, in /= sum;
  const float k = 1 / (2 - out - in);
  if (u < out) return k / out * u * u;
  if (u <= 1 - in) return k * (2 * u - out);
  const float rest = 1 - u;
  return 1 - k / in * rest * rest;
}

float SolveTime(float x, float x1, float x2) {
  if (x <= 0) return 0;
  if (x >= 1) return 1;
  const double a = 3.0 * x1, b = 3.0 * (x2 - 2.0 * x1), c = 1 + 3.0 * (static_cast<double>(x1) - x2);
  double lo = 0, hi = 1, p = x;
  // A handful of steps for ordinary handles; the bracket ends it for cusps, where the derivative is 0.
  for (int i = 0; i < 48; ++i) {
    const double error = ((c * p + b) * p + a) * p - x;
    if (std::abs(error) < 1e-8 || hi - lo < 1e-9) break;
    (error > 0 ? hi : lo) = p;
    const double slope = (3 * c * p + 2 * b) * p + a;
    const double next = p - error / slope;
    p = next > lo && next < hi ? next : 0.5 * (lo + hi);
  }
  return static_cast<float>(p);
}

Quat ExpTurn(const Point3& v) {
  const float angle = Length(v);
  const float k = angle > 1e-4f ? std::sin(angle) / angle : 1 - angle * angle / 6;
  return {v.x * k, v.y * k, v.z * k, std::cos(angle)};
}

Point3 LogTurn(const Quat& q) {
  const float sign = q.w < 0 ? -1.0f : 1.0f;
  const Point3 v = Point3{q.x, q.y, q.z} * sign;
  const float length = Length(v);
  if (length < 1e-7f) return v;
  return v * (std::atan2(length, q.w * sign) / length);
}

}  // namespace corvanta
