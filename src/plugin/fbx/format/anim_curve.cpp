// SPDX-License-Identifier: MIT
// One curve at one time.
#include <algorithm>
#include <cmath>

#include "plugin/fbx/format/animation.h"

namespace tavrilon::fbx {

namespace {

/// The last key at or before `t`, which lies between the first and the last key.
size_t KeyAt(const std::vector<int64_t>& times, int64_t t, size_t hint) {
  for (size_t i = hint; i < hint + 2 && i + 1 < times.size(); ++i) {
    if (times[i] <= t && t < times[i + 1]) return i;
  }
  return static_cast<size_t>(std::upper_bound(times.begin(), times.end(), t) - times.begin()) - 1;
}

double Bezier(double p0, double p1, double p2, double p3, double u) {
  const double v = 1 - u;
  return v * v * v * p0 + 3 * v * v * u * p1 + 3 * v * u * u * p2 + u * u * u * p3;
}

/// The parameter at which a Bezier curve from 0 over `a` and `b` to 1 reaches `s`, all in 0 to 1, where it rises
/// throughout. Newton's method, with a step of bisection wherever it would leave the bracket.
double SolveBezier(double a, double b, double s) {
  // 24 steps halve the bracket below what a float key time can tell; Newton needs four or five.
  constexpr int kSteps = 24;
  constexpr double kNear = 1e-12;
  double low = 0, high = 1, u = s;
  for (int i = 0; i < kSteps; ++i) {
    const double off = Bezier(0, a, b, 1, u) - s;
    if (std::abs(off) < kNear) break;
    (off > 0 ? high : low) = u;
    const double slope = 3 * ((1 - u) * (1 - u) * a + 2 * (1 - u) * u * (b - a) + u * u * (1 - b));
    const double next = slope > 0 ? u - off / slope : -1;
    u = next > low && next < high ? next : (low + high) / 2;
  }
  return u;
}

/// Weights as they are packed in files are whole parts of 9999, so a third is never nearer than this.
bool IsThird(float weight) { return std::abs(weight - 1.0f / 3) < 1e-4f; }

double Cubic(double v0, double v1, double seconds, const KeyShape& shape, double s) {
  const bool weighted = !IsThird(shape.rightWeight) || !IsThird(shape.nextLeftWeight);
  const double right = weighted ? std::clamp<double>(shape.rightWeight, 0, 1) : 1.0 / 3;
  const double left = weighted ? std::clamp<double>(shape.nextLeftWeight, 0, 1) : 1.0 / 3;
  const double u = weighted ? SolveBezier(right, 1 - left, s) : s;
  return Bezier(v0, v0 + right * seconds * shape.rightSlope, v1 - left * seconds * shape.nextLeftSlope, v1, u);
}

}  // namespace

double FbxAnimCurve::Evaluate(FbxTime t, size_t& hint) const {
  if (times.empty()) return 0;
  if (t.ticks <= times.front()) return values.front();
  if (t.ticks >= times.back()) return values.back();
  const size_t key = hint = KeyAt(times, t.ticks, hint);
  const double v0 = values[key], v1 = values[key + 1];
  if (t.ticks == times[key]) return v0;
  const KeyShape& shape = ShapeOf(key);
  // As doubles: the difference of two hostile times need not fit 64 bits.
  const double ticks = static_cast<double>(times[key + 1]) - static_cast<double>(times[key]);
  const double s = (static_cast<double>(t.ticks) - static_cast<double>(times[key])) / ticks;
  switch (shape.interpolation) {
    case Interpolation::Constant:
      return v0;
    case Interpolation::ConstantNext:
      return v1;
    case Interpolation::Linear:
      return v0 + (v1 - v0) * s;
    case Interpolation::Cubic:
      break;
  }
  return Cubic(v0, v1, ticks / static_cast<double>(FbxTime::kTicksPerSecond), shape, s);
}

}  // namespace tavrilon::fbx
