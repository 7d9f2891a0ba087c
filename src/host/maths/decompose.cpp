// SPDX-License-Identifier: MIT
// Polar decomposition M = stretch * rotation. Rows at right angles, which is nearly every matrix of a rig, take a
// closed form in float. All others go through a one-sided Jacobi iteration on the rows in double (Hestenes,
// "Inversion of matrices by biorthogonalization", 1958): it finds V with orthogonal rows of V * M, so that
// M = (V' K V) (V' R). It needs no inverse, hence singular matrices are ordinary input.
#include <algorithm>
#include <cmath>
#include <utility>

#include "host/maths/matrix3.h"

namespace corvanta {
namespace {

// Cosines below this between rows, and off-diagonals below this share of a stretch, are rounding: a chain of some
// tens of float products leaves about 1e-6.
constexpr float kRightAngle = 1e-5f;
// Singular values below this share of the largest are what float rounding makes of zero.
constexpr double kSingular = 2e-7;
// Stretch factors nearer than this share have no axes of their own.
constexpr double kEqualFactors = 4e-6;
constexpr float kSmallestSquare = 1e-30f;

constexpr int kPairs[3][2] = {{0, 1}, {0, 2}, {1, 2}};
constexpr int kSortSteps[3][2] = {{0, 1}, {1, 2}, {0, 1}};

struct Vec {
  double x = 0, y = 0, z = 0;
  double& operator[](int i) { return (&x)[i]; }
  double operator[](int i) const { return (&x)[i]; }
};
Vec operator+(const Vec& a, const Vec& b) { return {a.x + b.x, a.y + b.y, a.z + b.z}; }
Vec operator-(const Vec& a, const Vec& b) { return {a.x - b.x, a.y - b.y, a.z - b.z}; }
Vec operator*(const Vec& a, double s) { return {a.x * s, a.y * s, a.z * s}; }
double Dot(const Vec& a, const Vec& b) { return a.x * b.x + a.y * b.y + a.z * b.z; }
Vec Cross(const Vec& a, const Vec& b) { return {a.y * b.z - a.z * b.y, a.z * b.x - a.x * b.z, a.x * b.y - a.y * b.x}; }
double Length(const Vec& a) { return std::sqrt(Dot(a, a)); }
struct Mat {
  Vec row[3] = {{1, 0, 0}, {0, 1, 0}, {0, 0, 1}};
};
// a' * diag(k) * b.
Mat TransposedProduct(const Mat& a, const Vec& k, const Mat& b) {
  Mat r;
  for (int i = 0; i < 3; ++i)
    r.row[i] = b.row[0] * (k.x * a.row[0][i]) + b.row[1] * (k.y * a.row[1][i]) + b.row[2] * (k.z * a.row[2][i]);
  return r;
}
Matrix3 ToMatrix3(const Mat& m, const Point3& translation) {
  Matrix3 r;
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) r.row[i][j] = static_cast<float>(m.row[i][j]);
  r.row[3] = translation;
  return r;
}
Quat ToQuat(const Mat& m) { return QuatFromMatrix(ToMatrix3(m, {})); }

/// Rows of unit length and at right angles, or false when the rows are not near that.
bool UnitRows(const Matrix3& m, Matrix3& unit, Point3& lengths) {
  const float aa = LengthSquared(m.row[0]), bb = LengthSquared(m.row[1]), cc = LengthSquared(m.row[2]);
  if (!(std::min({aa, bb, cc}) > kSmallestSquare)) return false;
  lengths = {std::sqrt(aa), std::sqrt(bb), std::sqrt(cc)};
  const Point3 a = m.row[0] / lengths.x, b = m.row[1] / lengths.y, c = m.row[2] / lengths.z;
  const float ab = Dot(a, b), ac = Dot(a, c), bc = Dot(b, c);
  if (!(std::abs(ab) < kRightAngle && std::abs(ac) < kRightAngle && std::abs(bc) < kRightAngle)) return false;
  // The first order of the polar factor: what is left of the angles is shared out evenly.
  unit.row[0] = a - (b * ab + c * ac) * 0.5f;
  unit.row[1] = b - (a * ab + c * bc) * 0.5f;
  unit.row[2] = c - (a * ac + b * bc) * 0.5f;
  unit.row[3] = m.row[3];
  return true;
}

struct Polar {
  Mat axes;      // V: rows are the axes of the stretch, right-handed
  Vec factors;   // the stretch along them, never negative
  Mat rotation;  // orthogonal; left-handed when the matrix mirrors
  bool mirrored = false;
};

// Turns rows i and j of w and v so that w's are at right angles; returns false when they were.
bool JacobiTurn(Mat& w, Mat& v, int i, int j) {
  const double a = Dot(w.row[i], w.row[i]), b = Dot(w.row[j], w.row[j]), g = Dot(w.row[i], w.row[j]);
  if (std::abs(g) <= 1e-15 * std::sqrt(a * b)) return false;
  const double zeta = (b - a) / (2 * g);
  const double t = (zeta < 0 ? -1 : 1) / (std::abs(zeta) + std::sqrt(1 + zeta * zeta));
  const double c = 1 / std::sqrt(1 + t * t), s = c * t;
  for (Mat* m : {&w, &v}) {
    const Vec p = m->row[i], q = m->row[j];
    m->row[i] = p * c - q * s;
    m->row[j] = p * s + q * c;
  }
  return true;
}

// The turn that takes unit vector a to unit vector b the short way, applied to p.
Vec ShortTurn(const Vec& a, const Vec& b, const Vec& p) {
  const double cosine = Dot(a, b);
  if (cosine < -0.999999999) {
    const Vec side = std::abs(a.x) < 0.9 ? Cross(a, {1, 0, 0}) : Cross(a, {0, 1, 0});
    const Vec n = side * (1 / Length(side));
    return n * (2 * Dot(n, p)) - p;
  }
  const Vec n = Cross(a, b);
  return p * cosine + Cross(n, p) + n * (Dot(n, p) / (1 + cosine));
}

Polar SplitPolar(const Matrix3& m) {
  double scale = 0;
  for (int i = 0; i < 3; ++i)
    for (int j = 0; j < 3; ++j) scale += std::abs(static_cast<double>(m.row[i][j]));
  Polar p;
  if (!(scale > 0) || !std::isfinite(scale)) return p;
  Mat w;
  for (int i = 0; i < 3; ++i) w.row[i] = Vec{m.row[i].x, m.row[i].y, m.row[i].z} * (1 / scale);
  for (int sweep = 0; sweep < 30; ++sweep) {
    const bool first = JacobiTurn(w, p.axes, 0, 1), second = JacobiTurn(w, p.axes, 0, 2);
    if (!JacobiTurn(w, p.axes, 1, 2) && !first && !second) break;
  }
  // Largest first. A change of two rows turns one of them, so that the axes stay right-handed.
  for (const auto& [i, j] : kSortSteps) {
    if (Dot(w.row[i], w.row[i]) >= Dot(w.row[j], w.row[j])) continue;
    for (Mat* a : {&w, &p.axes}) {
      std::swap(a->row[i], a->row[j]);
      a->row[i] = a->row[i] * -1;
    }
  }
  const Vec k{Length(w.row[0]), Length(w.row[1]), Length(w.row[2])};
  Mat r;
  r.row[0] = w.row[0] * (1 / k.x);
  if (k.y <= kSingular * k.x) {
    r.row[1] = ShortTurn(p.axes.row[0], r.row[0], p.axes.row[1]);
    r.row[2] = Cross(r.row[0], r.row[1]);
    p.factors = {k.x * scale, 0, 0};
  } else if (k.z <= kSingular * k.x) {
    r.row[1] = w.row[1] * (1 / k.y);
    r.row[2] = Cross(r.row[0], r.row[1]);
    p.factors = {k.x * scale, k.y * scale, 0};
  } else {
    r.row[1] = w.row[1] * (1 / k.y);
    r.row[2] = w.row[2] * (1 / k.z);
    p.mirrored = Dot(Cross(r.row[0], r.row[1]), r.row[2]) < 0;
    p.factors = k * scale;
  }
  p.rotation = TransposedProduct(p.axes, {1, 1, 1}, r);
  return p;
}

bool SameFactor(const Vec& k, int i, int j) { return std::abs(k[i] - k[j]) <= kEqualFactors * std::max(k[i], k[j]); }

// Turns rows i and j, whose factors are equal, in their plane to the largest trace.
void TurnToIdentity(Mat& v, int i, int j) {
  const Vec a = v.row[i], b = v.row[j];
  const double c = a[i] + b[j], s = b[i] - a[j], length = std::hypot(c, s);
  if (length < 1e-12) return;
  v.row[i] = (a * c + b * s) * (1 / length);
  v.row[j] = (b * c - a * s) * (1 / length);
}

/// Puts the axes in the order and with the signs that lie nearest to the identity.
void NearestAxes(Mat& axes, Vec& factors) {
  static constexpr int kOrders[6][3] = {{0, 1, 2}, {1, 2, 0}, {2, 0, 1}, {0, 2, 1}, {2, 1, 0}, {1, 0, 2}};
  static constexpr int kEvenSigns[4][3] = {{1, 1, 1}, {1, -1, -1}, {-1, 1, -1}, {-1, -1, 1}};
  Mat best;
  Vec bestFactors;
  double bestTrace = -4;
  for (int n = 0; n < 6; ++n) {
    const int* order = kOrders[n];
    const Vec k{factors[order[0]], factors[order[1]], factors[order[2]]};
    for (const auto& signs : kEvenSigns) {
      const double parity = n < 3 ? 1 : -1;  // an odd order needs an odd count of turned rows
      Mat v;
      for (int i = 0; i < 3; ++i) v.row[i] = axes.row[order[i]] * (signs[i] * parity);
      for (const auto& [i, j] : kPairs)
        if (SameFactor(k, i, j)) TurnToIdentity(v, i, j);
      const double trace = v.row[0].x + v.row[1].y + v.row[2].z;
      if (trace > bestTrace + 1e-9) best = v, bestFactors = k, bestTrace = trace;
    }
  }
  axes = best;
  factors = bestFactors;
}

bool IsDiagonal(const Mat& s) {
  const double largest = std::max({s.row[0].x, s.row[1].y, s.row[2].z});
  for (const auto& [i, j] : kPairs) {
    const double size = std::max(std::sqrt(std::max(0.0, s.row[i][i] * s.row[j][j])), largest * kSingular);
    if (std::abs(s.row[i][j]) > kRightAngle * size) return false;
  }
  return true;
}

Point3 ToPoint(const Vec& v) { return {static_cast<float>(v.x), static_cast<float>(v.y), static_cast<float>(v.z)}; }

}  // namespace

Matrix3 Orthogonalize(const Matrix3& m) {
  Matrix3 r;
  Point3 lengths;
  if (!UnitRows(m, r, lengths)) return ToMatrix3(SplitPolar(m).rotation, m.row[3]);
  // Orthonormal within rounding already: the same bits come back, so that a repeated call changes nothing.
  constexpr float kRounding = 3e-7f;
  const Point3 off = lengths - Point3{1, 1, 1};
  if (std::max({std::abs(off.x), std::abs(off.y), std::abs(off.z)}) < kRounding &&
      std::abs(Dot(m.row[0], m.row[1])) < kRounding && std::abs(Dot(m.row[0], m.row[2])) < kRounding &&
      std::abs(Dot(m.row[1], m.row[2])) < kRounding) {
    r = m;
    r.flags = 0;
  }
  return r;
}

AffineParts decomp_affine(const Matrix3& m) {
  AffineParts parts;
  parts.t = m.row[3];
  Matrix3 unit;
  if (UnitRows(m, unit, parts.k)) {
    parts.q = QuatFromMatrix(unit);
    parts.f = Determinant(unit) < 0 ? -1.0f : 1.0f;
    return parts;
  }
  Polar p = SplitPolar(m);
  parts.f = p.mirrored ? -1.0f : 1.0f;
  parts.q = ToQuat(p.rotation);
  const Mat stretch = TransposedProduct(p.axes, p.factors, p.axes);
  if (IsDiagonal(stretch)) {
    parts.k = ToPoint({stretch.row[0].x, stretch.row[1].y, stretch.row[2].z});
    return parts;
  }
  NearestAxes(p.axes, p.factors);
  parts.u = ToQuat(p.axes);
  parts.k = ToPoint(p.factors);
  return parts;
}

Matrix3 ComposeAffine(const AffineParts& parts) {
  Matrix3 m = MakeMatrix(parts.q);
  ApplyScaling(m, ScaleValue{parts.k * parts.f, parts.u});
  m.row[3] = parts.t;
  return m;
}

}  // namespace corvanta
