// SPDX-License-Identifier: MIT
// Angles come from the matrix of the quaternion, in double: with the axes (i, j, k) of an order, M = Ri(a) Rj(b) Rk(c)
// and s = 1 for even permutations, -1 for odd ones, row i of M is (cos b cos c, s cos b sin c, -s sin b) on the
// columns i, j, k. For the orders that repeat an axis it is (cos b, sin b sin c, -sin b cos c).
#include "host/maths/euler.h"

namespace corvanta {
namespace {

// Nearer to gimbal lock than this cosine (or sine, where an axis repeats) the first and third angles are float
// noise and only their sum or difference is known. Keeping the third turns the result by less than this.
constexpr double kGimbalLock = 1e-4;
constexpr double kPiDouble = 3.14159265358979323846;

struct RotationRows {
  double e[3][3];
};
RotationRows RowsOf(const Quat& q) {
  const double x = q.x, y = q.y, z = q.z, w = q.w;
  const double n = x * x + y * y + z * z + w * w, k = n > 0 ? 2 / n : 0;
  return {{{1 - k * (y * y + z * z), k * (x * y - w * z), k * (x * z + w * y)},
           {k * (x * y + w * z), 1 - k * (x * x + z * z), k * (y * z - w * x)},
           {k * (x * z - w * y), k * (y * z + w * x), 1 - k * (x * x + y * y)}}};
}

struct Axes {
  int i, j, k;
  double s;
};
Axes AxesOf(int order) {
  const int i = kEulerAxes[order][0], j = kEulerAxes[order][1];
  return {i, j, 3 - i - j, (i + 1) % 3 == j ? 1.0 : -1.0};
}

struct Angles {
  double a, b, c;
};

Angles ThreeAxisAngles(const RotationRows& m, const Axes& x, double keptThird) {
  const double sine = -x.s * m.e[x.i][x.k], cosine = std::hypot(m.e[x.i][x.i], m.e[x.i][x.j]);
  if (cosine < kGimbalLock) {
    const double h = sine < 0 ? -1 : 1;
    const double turn = std::atan2(x.s * m.e[x.j][x.i], m.e[x.j][x.j]);
    return {x.s * h * (keptThird + turn), h * kPiDouble / 2, keptThird};
  }
  return {std::atan2(x.s * m.e[x.j][x.k], m.e[x.k][x.k]), std::atan2(sine, cosine),
          std::atan2(x.s * m.e[x.i][x.j], m.e[x.i][x.i])};
}

Angles RepeatedAxisAngles(const RotationRows& m, const Axes& x, double keptThird) {
  const double cosine = m.e[x.i][x.i], sine = std::hypot(m.e[x.i][x.j], m.e[x.i][x.k]);
  if (sine < kGimbalLock) {
    const double turn = std::atan2(x.s * m.e[x.j][x.k], m.e[x.j][x.j]);
    if (cosine > 0) return {turn - keptThird, 0, keptThird};
    return {keptThird - turn, kPiDouble, keptThird};
  }
  return {std::atan2(m.e[x.j][x.i], x.s * m.e[x.k][x.i]), std::atan2(sine, cosine),
          std::atan2(m.e[x.i][x.j], -x.s * m.e[x.i][x.k])};
}

int CheckedOrder(int order) { return order < 0 || order > 8 ? kXYZ : order; }

double NearestTurn(double angle, double reference) {
  return reference + std::remainder(angle - reference, 2 * kPiDouble);
}

Point3 ToPoint(const Angles& a) { return {static_cast<float>(a.a), static_cast<float>(a.b), static_cast<float>(a.c)}; }

}  // namespace

Quat EulerToQuat(const Point3& e, int order) {
  order = CheckedOrder(order);
  Quat q;
  for (int n = 0; n < 3; ++n) {
    Quat turn{0, 0, 0, std::cos(e[n] * 0.5f)};
    turn[kEulerAxes[order][n]] = -std::sin(e[n] * 0.5f);
    q = n == 0 ? turn : q * turn;
  }
  return q.w < 0 ? -q : q;
}

namespace {

// The product of the three axis matrices, written out: with s as above, the rows i, j and k on the columns i, j, k.
Matrix3 ThreeAxisMatrix(const Point3& e, int order) {
  const int i = kEulerAxes[order][0], j = kEulerAxes[order][1], k = kEulerAxes[order][2];
  const float s = (i + 1) % 3 == j ? 1.0f : -1.0f;
  const float sa = s * std::sin(e.x), ca = std::cos(e.x);
  const float sb = s * std::sin(e.y), cb = std::cos(e.y);
  const float sc = s * std::sin(e.z), cc = std::cos(e.z);
  Matrix3 m;
  m.row[i][i] = cb * cc, m.row[i][j] = cb * sc, m.row[i][k] = -sb;
  m.row[j][i] = sa * sb * cc - ca * sc, m.row[j][j] = ca * cc + sa * sb * sc, m.row[j][k] = sa * cb;
  m.row[k][i] = sa * sc + ca * sb * cc, m.row[k][j] = ca * sb * sc - sa * cc, m.row[k][k] = ca * cb;
  return m;
}

}  // namespace

Matrix3 EulerToMatrix(const Point3& e, int order) {
  order = CheckedOrder(order);
  if (order < kXYX) return ThreeAxisMatrix(e, order);
  Matrix3 m;
  for (int n = 2; n >= 0; --n) {
    switch (kEulerAxes[order][n]) {
      case 0:
        m.PreRotateX(e[n]);
        break;
      case 1:
        m.PreRotateY(e[n]);
        break;
      default:
        m.PreRotateZ(e[n]);
        break;
    }
  }
  return m;
}

void QuatToEuler(const Quat& q, Point3& e, int order) {
  order = CheckedOrder(order);
  const Axes axes = AxesOf(order);
  e = ToPoint(order < kXYX ? ThreeAxisAngles(RowsOf(q), axes, e.z) : RepeatedAxisAngles(RowsOf(q), axes, e.z));
}

void ContinuousQuatToEuler(const Quat& q, Point3& e, int order) {
  order = CheckedOrder(order);
  if (order >= kXYX) return QuatToEuler(q, e, order);
  const Angles first = ThreeAxisAngles(RowsOf(q), AxesOf(order), e.z);
  const Angles solutions[2] = {first, {first.a + kPiDouble, kPiDouble - first.b, first.c + kPiDouble}};
  Angles best{};
  double smallest = 0;
  for (const Angles& s : solutions) {
    const Angles near{NearestTurn(s.a, e.x), NearestTurn(s.b, e.y), NearestTurn(s.c, e.z)};
    const double change = std::abs(near.a - e.x) + std::abs(near.b - e.y) + std::abs(near.c - e.z);
    if (&s == solutions || change < smallest) best = near, smallest = change;
  }
  e = ToPoint(best);
}

}  // namespace corvanta
