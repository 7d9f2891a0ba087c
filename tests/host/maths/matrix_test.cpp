// SPDX-License-Identifier: MIT
#include "host/maths/maths_test.h"

namespace corvanta {
namespace {

constexpr float kRounding = 4e-6f;  // a matrix product of numbers up to 3

TEST(Matrix, MembersAreProducts) {
  Random random;
  for (int i = 0; i < 200; ++i) {
    const Matrix3 m = random.Affine();
    const Point3 v = random.Point();
    const float a = random.In(-7, 7);
    const auto with = [&](auto change) {
      Matrix3 r = m;
      change(r);
      return r;
    };
    ASSERT_LT(Distance(with([&](Matrix3& r) { r.Translate(v); }), m * TransMatrix(v)), kRounding);
    ASSERT_LT(Distance(with([&](Matrix3& r) { r.PreTranslate(v); }), TransMatrix(v) * m), kRounding);
    ASSERT_LT(Distance(with([&](Matrix3& r) { r.RotateX(a); }), m * RotateXMatrix(a)), kRounding);
    ASSERT_LT(Distance(with([&](Matrix3& r) { r.RotateY(a); }), m * RotateYMatrix(a)), kRounding);
    ASSERT_LT(Distance(with([&](Matrix3& r) { r.RotateZ(a); }), m * RotateZMatrix(a)), kRounding);
    ASSERT_LT(Distance(with([&](Matrix3& r) { r.PreRotateX(a); }), RotateXMatrix(a) * m), kRounding);
    ASSERT_LT(Distance(with([&](Matrix3& r) { r.PreRotateY(a); }), RotateYMatrix(a) * m), kRounding);
    ASSERT_LT(Distance(with([&](Matrix3& r) { r.PreRotateZ(a); }), RotateZMatrix(a) * m), kRounding);
    ASSERT_LT(Distance(with([&](Matrix3& r) { r.Scale(v, true); }), m * ScaleMatrix(v)), kRounding);
    ASSERT_EQ(with([&](Matrix3& r) { r.Scale(v); }).GetTrans(), m.GetTrans());
    ASSERT_LT(Distance(with([&](Matrix3& r) { r.PreScale(v); }), ScaleMatrix(v) * m), kRounding);
    ASSERT_LT(Distance(v * m * RotateXMatrix(a), v * (m * RotateXMatrix(a))), kRounding);
  }
}

TEST(Matrix, Inverse) {
  Random random;
  for (int i = 0; i < 2000; ++i) {
    Matrix3 m = random.Affine(10);
    const float volume = Length(m.row[0]) * Length(m.row[1]) * Length(m.row[2]);
    const float flatness = std::abs(Determinant(m)) / volume;
    if (flatness < 1e-3f) continue;
    // Errors of the entries' rounding are magnified by how flat the rows lie.
    ASSERT_LT(Distance(Inverse(m) * m, Matrix3{}), 2e-5f / flatness);
  }
  EXPECT_LT(Distance(Inverse(ScaleMatrix({1e-6f, 1e-6f, 1e-6f})), ScaleMatrix({1e6f, 1e6f, 1e6f})), 1);
}

TEST(Matrix, InverseOfSingularIsATurn) {
  Matrix3 flat = ScaleMatrix({1, 1, 0}) * RotateXMatrix(0.7f);
  flat.SetTrans({1, 2, 3});
  const Matrix3 inverse = Inverse(flat);
  EXPECT_LT(Distance(inverse.WithoutTrans(), RotateXMatrix(-0.7f)), kRounding);
  EXPECT_LT(Distance(flat.GetTrans() * inverse, {}), kRounding);
  const Matrix3 nothing = ScaleMatrix({0, 0, 0});
  EXPECT_EQ(Inverse(nothing), Matrix3{});
}

TEST(Matrix, ScaleValues) {
  Random random;
  for (int i = 0; i < 200; ++i) {
    const ScaleValue value{random.Point(2), random.Rotation()};
    const Matrix3 axes = MakeMatrix(value.q);
    const Matrix3 stretch = Inverse(axes) * ScaleMatrix(value.s) * axes;
    ASSERT_LT(Distance(MakeMatrix(value), stretch), kRounding);
    const Matrix3 m = random.Affine();
    Matrix3 applied = m;
    ApplyScaling(applied, value);
    ASSERT_LT(Distance(applied, stretch * m), kRounding);
    ASSERT_EQ(applied.GetTrans(), m.GetTrans());
  }
}

// --- Orthogonalize and decomp_affine ---------------------------------------------------------------------------

enum Kind { kRigid, kUniform, kStretched, kMirrored, kSheared, kTwoEqual, kKinds };
const char* const kKindNames[] = {"rigid", "uniform", "stretched", "mirrored", "sheared", "two equal factors"};

Matrix3 Make(Random& random, Kind kind) {
  const Matrix3 turn = MakeMatrix(random.Rotation());
  const float s = random.In(0.2f, 5);
  Matrix3 m = turn;
  switch (kind) {
    case kRigid:
      break;
    case kUniform:
      m.PreScale({s, s, s});
      break;
    case kStretched:
      m.PreScale({s, random.In(0.2f, 5), random.In(0.2f, 5)});
      break;
    case kMirrored:
      m = ScaleMatrix({-s, random.In(0.2f, 5), 1}) * MakeMatrix(random.Rotation()) * turn;
      break;
    case kSheared:
      m = random.Affine(3);
      break;
    default:
      m = ScaleMatrix({s, s, random.In(0.2f, 5)}) * MakeMatrix(random.Rotation()), m = turn * m;
      break;
  }
  m.SetTrans(random.Point(100));
  return m;
}

Matrix3 StretchOf(const AffineParts& p) { return MakeMatrix(ScaleValue{p.k, p.u}); }

TEST(Decompose, ComposesBack) {
  Random random;
  for (int n = 0; n < 3000; ++n) {
    const Kind kind = static_cast<Kind>(n % kKinds);
    SCOPED_TRACE(kKindNames[kind]);
    const Matrix3 m = Make(random, kind);
    const AffineParts p = decomp_affine(m);
    // Single-precision parts of a matrix with entries up to 15.
    ASSERT_LT(Distance(ComposeAffine(p), m), 2e-6f * (1 + Size(m.WithoutTrans()))) << n;
    ASSERT_EQ(p.t, m.GetTrans());
    ASSERT_EQ(p.f, Determinant(m) < 0 ? -1.0f : 1.0f);
    ASSERT_NEAR(Dot(p.q, p.q), 1, kRounding);
    ASSERT_GE(std::min({p.k.x, p.k.y, p.k.z}), 0);
    if (kind == kRigid || kind == kUniform || kind == kStretched) {
      ASSERT_EQ(p.u, Quat{}) << n;
    }
    if (kind == kRigid) {
      ASSERT_LT(Distance(p.k, {1, 1, 1}), kRounding);
    }
  }
}

TEST(Decompose, KnownParts) {
  const AffineParts a = decomp_affine(ScaleMatrix({2, 1, 1}) * RotateZMatrix(Deg(90)) * TransMatrix({1, 2, 3}));
  EXPECT_EQ(a.t, (Point3{1, 2, 3}));
  EXPECT_LT(Distance(a.q, {0, 0, -0.70710678f, 0.70710678f}), kRounding);
  EXPECT_EQ(a.u, Quat{});
  EXPECT_LT(Distance(a.k, {2, 1, 1}), kRounding);
  EXPECT_EQ(a.f, 1);
  const AffineParts b = decomp_affine(ScaleMatrix({-1, 1, 1}));
  EXPECT_EQ(b.f, -1);
  EXPECT_EQ(b.k, (Point3{1, 1, 1}));
  EXPECT_EQ(b.q, (Quat{1, 0, 0, 0}));
}

TEST(Decompose, Singular) {
  Random random;
  Matrix3 line;  // all rows along one direction
  line.row[0] = {1, 2, 2}, line.row[1] = {2, 4, 4}, line.row[2] = {-1, -2, -2};
  Matrix3 plane = random.Affine();
  plane.row[2] = plane.row[0] * 0.3f + plane.row[1] * 0.7f;
  Matrix3 missing;
  missing.row[1] = {};
  const struct {
    const char* name;
    Matrix3 m;
  } rows[] = {{"nothing", ScaleMatrix({0, 0, 0})},
              {"line", line},
              {"plane", plane},
              {"a zero row", missing},
              {"tiny", ScaleMatrix({1e-25f, 1e-25f, 1e-25f})}};
  for (const auto& r : rows) {
    SCOPED_TRACE(r.name);
    const AffineParts p = decomp_affine(r.m);
    EXPECT_LT(Distance(ComposeAffine(p), r.m), kRounding);
    EXPECT_NEAR(Dot(p.q, p.q), 1, kRounding);
    EXPECT_EQ(p.f, 1);
    const Matrix3 o = Orthogonalize(r.m);
    EXPECT_LT(Distance(o.WithoutTrans() * Inverse(o.WithoutTrans()), Matrix3{}), kRounding);
    EXPECT_NEAR(Determinant(o), 1, kRounding);
  }
}

// Blends slerp the axes of the stretch, so these must stay near the identity, whatever was composed.
TEST(Decompose, AxesAreNearestToIdentity) {
  Random random;
  for (int i = 0; i < 1000; ++i) {
    const bool twoEqual = i % 2 == 0;
    const Point3 k{random.In(0.5f, 1), twoEqual ? 2 : random.In(1.5f, 2), twoEqual ? 2 : random.In(3, 4)};
    const Quat axes = random.Rotation();
    const Matrix3 stretch = MakeMatrix(ScaleValue{k, axes});
    const AffineParts p = decomp_affine(stretch * MakeMatrix(random.Rotation()));
    ASSERT_LT(Distance(StretchOf(p), stretch), 2e-5f);
    // Any basis with the same stretch: turned by quarter turns, and freely in the plane of equal factors.
    for (int x = 0; x < 4; ++x)
      for (int y = 0; y < 4; ++y)
        for (int z = 0; z < 4; ++z) {
          Quat other = EulerToQuat(Deg(90.0f * x, 90.0f * y, 90.0f * z)) * axes;
          if (twoEqual) other = EulerToQuat({random.In(0, 6), 0, 0}) * axes;
          ASSERT_GE(std::abs(p.u.w), std::abs(other.w) - 1e-4f);
        }
  }
  // Noise on a uniform scale has no axes.
  Matrix3 m = ScaleMatrix({3, 3, 3});
  m.row[0].y = 4e-6f, m.row[2].x = -5e-6f;
  EXPECT_EQ(decomp_affine(m).u, Quat{});
}

TEST(Orthogonalize, NearestAndIdempotent) {
  Random random;
  for (int n = 0; n < 3000; ++n) {
    const Kind kind = static_cast<Kind>(n % kKinds);
    SCOPED_TRACE(kKindNames[kind]);
    const Matrix3 m = Make(random, kind);
    const Matrix3 o = Orthogonalize(m);
    ASSERT_EQ(o.GetTrans(), m.GetTrans());
    ASSERT_EQ(Orthogonalize(o), o);
    ASSERT_GT(Determinant(o) * Determinant(m), 0);
    // The mark of the nearest orthogonal matrix: what is left, M * O', is symmetric with no negative factor.
    const Matrix3 stretch = m.WithoutTrans() * Inverse(o.WithoutTrans());
    const float tolerance = 4e-6f * (1 + Size(stretch));
    for (int i = 0; i < 3; ++i)
      ASSERT_NEAR(stretch.row[i][(i + 1) % 3], stretch.row[(i + 1) % 3][i],
                  kind == kStretched ? 3 * tolerance : tolerance);
    for (int i = 0; i < 3; ++i) ASSERT_GT(stretch.row[i][i], -tolerance);
  }
}

// What a long chain of products leaves of a rotation comes back as a rotation, and without axes of a stretch.
TEST(Orthogonalize, RoundingOfARotation) {
  Random random;
  for (int i = 0; i < 500; ++i) {
    Matrix3 m = MakeMatrix(random.Rotation());
    for (int r = 0; r < 3; ++r) m.row[r] += random.Point(3e-6f);
    const Matrix3 o = Orthogonalize(m);
    ASSERT_LT(Distance(o * Inverse(MakeMatrix(QuatFromMatrix(o))), Matrix3{}), 1e-6f);
    for (int r = 0; r < 3; ++r) ASSERT_NEAR(Dot(o.row[r], o.row[(r + 1) % 3]), 0, 4e-7f);
    ASSERT_EQ(Orthogonalize(o), o);
    ASSERT_EQ(decomp_affine(m).u, Quat{});
  }
}

}  // namespace
}  // namespace corvanta
