// SPDX-License-Identifier: MIT
#include "plugin/frame/rig_maths.h"

namespace tavrilon {
namespace {

using namespace corvanta;

// Vectors shorter than this have no direction worth following.
constexpr float kShortest = 0.01f;
// Sine of the angle below which two unit vectors count as parallel.
constexpr float kParallel = 1e-6f;

float GeometricLength(const Point3& a, const Point3& b) { return std::sqrt(LengthSquared(a) * LengthSquared(b)); }

// From unit vectors without trigonometry: cos(angle / 2) = |a + b| / 2, and b x a has the length
// 2 sin(angle / 2) cos(angle / 2). The cross product is taken with the sum or the difference, whichever is small and
// hence exact: (a + b) x a = (b - a) x a = b x a.
Quat TurnBetweenUnits(const Point3& a, const Point3& b, const Point3& halfTurnAxis) {
  const Point3 sum = a + b;
  const float length = Length(sum);
  if (length < kParallel) return {halfTurnAxis.x, halfTurnAxis.y, halfTurnAxis.z, 0};
  const Point3 v = Cross(length < 1 ? sum : b - a, a) / length;
  return Normalize(Quat{v.x, v.y, v.z, length * 0.5f});
}

}  // namespace

Quat RotationBetween(const Point3& a, const Point3& b) {
  if (!(GeometricLength(a, b) >= kShortest)) return {};
  const Point3 from = Normalize(a);
  const Point3 side = std::abs(from.x) > 0.9f ? Point3{0, 1, 0} : Point3{1, 0, 0};
  return TurnBetweenUnits(from, Normalize(b), Normalize(Cross(from, side)));
}

Quat RotationFromX(const Point3& v) {
  if (!(Length(v) >= kShortest)) return {};
  return TurnBetweenUnits({1, 0, 0}, Normalize(v), {0, 0, 1});
}

float AngleBetween(const Point3& a, const Point3& b) {
  if (!(GeometricLength(a, b) >= kShortest)) return 0;
  return std::atan2(Length(Cross(a, b)), Dot(a, b));
}

float NearestAngle(float x, float v) {
  return static_cast<float>(x + std::remainder(static_cast<double>(v) - x, 6.283185307179586));
}

Matrix3 FrameFromVectors(const Point3& x, const Point3& u) {
  Matrix3 m;
  const Point3 along = Normalize(x);
  if (along == Point3{}) return m;
  Point3 side = Cross(along, Normalize(u));
  if (Length(side) < kParallel) {
    const int axis = std::abs(along.x) <= std::abs(along.y) ? (std::abs(along.x) <= std::abs(along.z) ? 0 : 2)
                                                            : (std::abs(along.y) <= std::abs(along.z) ? 1 : 2);
    Point3 other;
    other[axis] = 1;
    side = Cross(along, other);
  }
  m.row[0] = along;
  m.row[2] = Normalize(side);
  m.row[1] = Normalize(Cross(m.row[2], along));
  return m;
}

Matrix3 FrameFromPoints(const Point3& o, const Point3& x, const Point3& u) {
  Matrix3 m = FrameFromVectors(x - o, u - o);
  m.row[3] = o;
  return m;
}

Matrix3 BlendMatrix(const Matrix3& a, const Matrix3& b, float f) {
  if (f == 0) return a;
  if (f == 1) return b;
  const AffineParts from = decomp_affine(a), to = decomp_affine(b);
  AffineParts r;
  r.t = Lerp(from.t, to.t, f);
  r.q = SlerpClosest(from.q, to.q, f);
  r.u = SlerpClosest(from.u, to.u, f);
  // The sign goes into the factors, so that a change of handedness is continuous.
  r.k = Lerp(from.k * from.f, to.k * to.f, f);
  return ComposeAffine(r);
}

}  // namespace tavrilon
