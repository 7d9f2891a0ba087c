// SPDX-License-Identifier: MIT
// Joints on a curve by plain values: spread, turn, twist, scale, squash.
#include "plugin/solvers/curve_pose.h"

#include <gtest/gtest.h>

#include <random>

#include "plugin/frame/rig_maths.h"
#include "plugin/solvers/curve_chain_test.h"

namespace tavrilon {
namespace {

using namespace corvanta;
using namespace curve_ik_chain;

/// A chain as plain values, posed by `Run`.
struct Rig {
  std::vector<PointFrame> points;
  std::vector<CurveJoint> joints;
  bool closed = false;
  int steps = 16;
  CurveWave wave;
  SampledCurve curve;
  CurvePoseIn in{curve, {}, {}};
  std::vector<Matrix3> tm;

  Rig() = default;
  Rig(const Rig& r) : points(r.points), joints(r.joints), closed(r.closed), steps(r.steps), wave(r.wave) {
    CopyOptions(r.in);
  }
  void CopyOptions(const CurvePoseIn& from) {
    in.percent = from.percent, in.rotation = from.rotation, in.twist = from.twist;
    in.manualStretch = from.manualStretch, in.autoStretch = from.autoStretch, in.squash = from.squash;
    in.backwards = from.backwards, in.slide = from.slide, in.chainLength = from.chainLength;
    in.usePointsRotation = from.usePointsRotation, in.usePointsScale = from.usePointsScale;
    in.followType = from.followType, in.aimAxis = from.aimAxis, in.aimAxisFlip = from.aimAxisFlip;
    in.spaceTM = from.spaceTM;
  }
  const std::vector<Matrix3>& Run() {
    std::vector<PointFrame> frames = points;
    ResolveTangents(frames, closed);
    SampleCurve(frames, closed, steps, wave, curve);
    in.points = frames;
    in.joints = joints;
    tm.assign(joints.size(), Matrix3());
    PoseJoints(in, tm);
    in.points = {};
    return tm;
  }
};

PointFrame At(const Point3& pos, const Point3& euler = {}, int type = kSmooth) {
  PointFrame point;
  point.pos = pos;
  point.rot = EulerToQuat(euler);
  point.type = type;
  return point;
}

std::vector<CurveJoint> Even(int n) {
  std::vector<CurveJoint> joints;
  for (int i = 0; i < n; ++i) joints.push_back({n > 1 ? static_cast<float>(i) / static_cast<float>(n - 1) : 0, 1});
  return joints;
}

/// Along X from 0 to 90.
Rig Straight(int joints) {
  Rig rig;
  rig.points = {At({0, 0, 0}), At({90, 0, 0})};
  rig.joints = Even(joints);
  rig.in.chainLength = 90;
  return rig;
}

Rig Bent(int joints) {
  Rig rig;
  rig.points = {At({0, 0, 0}), At({30, 10, 0}, {0.3f, 0, 0.4f}), At({40, 40, 20}, {0.5f, 0.2f, 1}), At({90, 40, 0})};
  rig.joints = Even(joints);
  rig.in.chainLength = 80;
  return rig;
}

float TwistOf(const Matrix3& tm) { return std::atan2(tm.row[1].z, tm.row[1].y); }

TEST(CurvePose, PlacesOnAStraightCurve) {
  struct Row {
    const char* name;
    float percent, manual, automatic, backwards, length;
    float x[4];
  };
  const Row rows[] = {
      {"rest", 0, 1, 1, 0, 90, {0, 30, 60, 90}},
      {"the length does not matter", 0, 1, 1, 0, 5, {0, 30, 60, 90}},
      {"keeps its length", 0, 1, 0, 0, 45, {0, 15, 30, 45}},
      {"half way", 0, 1, 0.5f, 0, 45, {0, 22.5f, 45, 67.5f}},
      {"pinned at the end", 0, 1, 0, 1, 45, {45, 60, 75, 90}},
      {"pinned and stretched", 0, 2, 1, 1, 90, {-90, -30, 30, 90}},
      {"stretched", 0, 1.5f, 1, 0, 90, {0, 45, 90, 135}},
      {"slid forward", 0.5f, 1, 1, 0, 90, {45, 75, 105, 135}},
      {"slid back", -1, 1, 1, 0, 90, {-90, -60, -30, 0}},
      {"no stretch", 0, 0, 1, 0, 90, {0, 0, 0, 0}},
      {"no length at rest", 0.5f, 1, 0, 0, 0, {45, 45, 45, 45}},
      {"turned round", 1, -1, 1, 0, 90, {90, 60, 30, 0}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    Rig rig = Straight(4);
    rig.in.percent = row.percent, rig.in.manualStretch = row.manual, rig.in.autoStretch = row.automatic;
    rig.in.backwards = row.backwards, rig.in.chainLength = row.length;
    rig.Run();
    for (size_t i = 0; i < 4; ++i) ExpectNear(rig.tm[i].GetTrans(), {row.x[i], 0, 0}, 1e-4f);
  }
}

// A hand that rolls by 60 degrees turns the forearm's bones by their shares; the last bone has a share of its own.
TEST(CurvePose, RollIsSharedOut) {
  Rig rig = Straight(3);
  rig.joints = {{0, 1}, {1.0f / 3, 1}, {2.0f / 3, 1}};
  for (const float sign : {1.0f, -1.0f}) {
    rig.points[1].rot = EulerToQuat({sign * 60 * kDegToRad, 0, 0});
    rig.Run();
    for (size_t i = 0; i < 3; ++i) {
      EXPECT_NEAR(TwistOf(rig.tm[i]) * kRadToDeg, sign * 20 * static_cast<float>(i), 1e-3f);
      ExpectNear(rig.tm[i].row[0], {1, 0, 0}, 1e-6f);
    }
  }
  // A roll told by the point's twist does the same.
  rig.points[1].rot = {};
  rig.points[1].twist = 60 * kDegToRad;
  rig.Run();
  for (size_t i = 0; i < 3; ++i) EXPECT_NEAR(TwistOf(rig.tm[i]) * kRadToDeg, 20 * static_cast<float>(i), 1e-3f);
}

TEST(CurvePose, TwistsAddUp) {
  Rig rig = Straight(4);
  rig.in.rotation = 10 * kDegToRad;
  rig.in.twist = 30 * kDegToRad;
  rig.points[0].twist = 5 * kDegToRad;
  rig.points[1].twist = 5 * kDegToRad;
  rig.Run();
  for (size_t i = 0; i < 4; ++i) EXPECT_NEAR(TwistOf(rig.tm[i]) * kRadToDeg, 15 + 10 * static_cast<float>(i), 1e-3f);
  SumTwists(rig.points);
  rig.Run();
  for (size_t i = 0; i < 4; ++i)
    EXPECT_NEAR(TwistOf(rig.tm[i]) * kRadToDeg, 15 + static_cast<float>(i) * (10 + 5.0f / 3), 1e-3f);
}

// Whatever the frames of the points, the aiming axis of a joint lies along what it follows.
TEST(CurvePose, FollowsByItsAimAxis) {
  for (const int follow : {kFollowTangent, kFollowChild})
    for (int axis = 0; axis < 3; ++axis)
      for (const bool flip : {false, true}) {
        SCOPED_TRACE(testing::Message() << follow << ' ' << axis << ' ' << flip);
        Rig rig = Bent(6);
        rig.in.followType = follow;
        rig.in.aimAxis = axis;
        rig.in.aimAxisFlip = flip;
        rig.in.twist = 1;
        rig.Run();
        for (size_t i = 0; i < 6; ++i) {
          const Matrix3& tm = rig.tm[i];
          const Point3 aim = tm.row[axis] * (flip ? -1.0f : 1.0f);
          EXPECT_NEAR(Determinant(tm), 1, 1e-5f);
          if (follow == kFollowChild) {
            const size_t from = std::min<size_t>(i, 4);
            ExpectNear(aim, Normalize(rig.tm[from + 1].GetTrans() - rig.tm[from].GetTrans()), 1e-4f);
          } else {
            Rig moved = rig;
            moved.in.percent += 1e-3f;
            moved.Run();
            // The way of a small step: it turns within the step by less than this.
            if (i < 5) ExpectNear(aim, Normalize(moved.tm[i].GetTrans() - tm.GetTrans()), 1e-2f);
          }
        }
      }
}

TEST(CurvePose, WithoutFollowingItIsTheFrameOfThePoints) {
  Rig rig = Straight(3);
  rig.in.followType = kFollowNone;
  rig.points[0].rot = EulerToQuat({0, 0, 0.2f});
  rig.points[1].rot = EulerToQuat({0, 0, 0.6f});
  rig.Run();
  for (size_t i = 0; i < 3; ++i)
    ExpectNear(rig.tm[i].WithoutTrans(), RotateZMatrix(0.2f + 0.2f * static_cast<float>(i)), 1e-5f);
  rig.in.usePointsRotation = false;
  rig.Run();
  for (size_t i = 0; i < 3; ++i) ExpectNear(rig.tm[i].WithoutTrans(), Matrix3(), 0);
}

TEST(CurvePose, ScaleComesFromThePoints) {
  Rig rig = Straight(3);
  rig.points[0].scale = {1, 2, 3};
  rig.points[1].scale = {3, 4, 9};
  rig.Run();
  for (int r = 0; r < 3; ++r) EXPECT_NEAR(Length(rig.tm[1].row[r]), (Point3{2, 3, 6}[r]), 1e-5f);
  rig.in.usePointsScale = false;
  rig.Run();
  EXPECT_NEAR(Length(rig.tm[1].row[2]), 1, 1e-6f);
}

TEST(CurvePose, SquashByStretch) {
  struct Row {
    const char* name;
    float squash, joint, length, manual, automatic, scale;
  };
  const Row rows[] = {
      {"at rest", 1, 1, 90, 1, 1, 1},
      {"curve twice as long", 1, 1, 45, 1, 1, 0.5f},
      {"curve half as long", 1, 1, 180, 1, 1, 2},
      {"the joint's share", 1, 2, 45, 1, 1, 0.25f},
      {"the chain's counts twice", 2, 1, 45, 1, 1, 0.0625f},
      {"stretched by hand", 1, 1, 90, 2, 1, 0.5f},
      {"keeps its length", 1, 1, 45, 1, 0, 1},
      {"keeps its length, by hand", 1, 1, 45, 2, 0, 0.5f},
      {"off, however large the joint's", 0, 100, 45, 1, 1, 1},
      {"no stretch by hand", 1, 1, 45, 0, 1, 1},
      {"no length at rest", 1, 1, 0, 1, 1, 1},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    Rig rig = Straight(2);
    rig.joints[1].squash = row.joint;
    rig.in.squash = row.squash, rig.in.chainLength = row.length;
    rig.in.manualStretch = row.manual, rig.in.autoStretch = row.automatic;
    rig.Run();
    for (int r = 0; r < 3; ++r) EXPECT_NEAR(Length(rig.tm[1].row[r]), row.scale, 1e-5f);
  }
}

TEST(CurvePose, ClosedLoopWraps) {
  Rig rig;
  rig.points = {At({10, 0, 0}), At({0, 10, 0}), At({-10, 0, 0}), At({0, -10, 0})};
  rig.closed = true;
  rig.joints = {{0, 0}, {0.25f, 0}, {1, 0}, {1.25f, 0}, {-0.75f, 0}};
  rig.Run();
  ExpectNear(rig.tm[0].GetTrans(), {10, 0, 0}, 1e-4f);
  ExpectNear(rig.tm[2].GetTrans(), {10, 0, 0}, 1e-4f);
  for (const size_t i : {1u, 3u, 4u}) ExpectNear(rig.tm[i].GetTrans(), {0, 10, 0}, 1e-3f);
}

TEST(CurvePose, FewPointsAndCoincidentOnes) {
  Rig one = Straight(3);
  one.points = {At({1, 2, 3}, {0.5f, 0, 0})};
  one.Run();
  for (const Matrix3& tm : one.tm) ExpectNear(tm.GetTrans(), {1, 2, 3}, 0);
  EXPECT_NEAR(TwistOf(one.tm[0]), 0.5f, 1e-6f);
  Rig none = Straight(2);
  none.points.clear();
  for (const Matrix3& tm : none.Run()) EXPECT_EQ(tm, Matrix3());
  Rig same = Straight(3);
  same.points = {At({1, 2, 3}), At({1, 2, 3}), At({1, 2, 3}, {}, kCorner), At({1, 2, 3}, {}, kCorner)};
  for (const float percent : {-1.0f, 0.0f, 0.4f, 2.0f}) {
    same.in.percent = percent;
    for (const Matrix3& tm : same.Run()) ExpectNear(tm.GetTrans(), {1, 2, 3}, 1e-6f);
  }
}

Rig Random(std::mt19937& rng) {
  std::uniform_real_distribution<float> unit(0, 1), place(-100, 100), turn(-3, 3), wide(-3, 3);
  const auto pick = [&](int n) { return static_cast<int>(unit(rng) * 0.999f * static_cast<float>(n)); };
  const auto vector = [&] { return Point3{place(rng), place(rng), place(rng)}; };
  Rig rig;
  for (int i = pick(6) + 1; i > 0; --i) {
    PointFrame point = At(vector(), {turn(rng), turn(rng), turn(rng)}, pick(4));
    point.in = vector() * unit(rng), point.out = vector() * unit(rng);
    point.hasIn = unit(rng) < 0.7f, point.hasOut = unit(rng) < 0.7f;
    point.scale = {unit(rng) + 0.5f, unit(rng) + 0.5f, unit(rng) + 0.5f};
    point.twist = turn(rng), point.amplitude = unit(rng);
    if (!rig.points.empty() && unit(rng) < 0.1f) point.pos = rig.points.back().pos;
    rig.points.push_back(point);
  }
  for (int i = pick(7) + 1; i > 0; --i) rig.joints.push_back({unit(rng) * 1.4f - 0.2f, wide(rng)});
  rig.closed = unit(rng) < 0.3f;
  rig.steps = pick(20) + 1;
  if (unit(rng) < 0.3f) rig.wave = {place(rng) * 0.1f, place(rng), turn(rng), wide(rng)};
  rig.in.percent = wide(rng), rig.in.rotation = turn(rng), rig.in.twist = turn(rng);
  rig.in.manualStretch = wide(rng), rig.in.autoStretch = unit(rng), rig.in.squash = wide(rng);
  rig.in.backwards = unit(rng), rig.in.slide = unit(rng), rig.in.chainLength = unit(rng) * 200;
  rig.in.usePointsRotation = unit(rng) < 0.7f, rig.in.usePointsScale = unit(rng) < 0.7f;
  rig.in.followType = pick(3), rig.in.aimAxis = pick(3), rig.in.aimAxisFlip = unit(rng) < 0.5f;
  return rig;
}

bool IsFinite(const Matrix3& m) {
  for (int r = 0; r < 4; ++r)
    if (!std::isfinite(LengthSquared(m.row[r]))) return false;
  return true;
}

TEST(CurvePose, RandomCurvesStayFinite) {
  std::mt19937 rng(11);
  for (int i = 0; i < 3000; ++i) {
    Rig rig = Random(rng);
    for (const Matrix3& tm : rig.Run()) ASSERT_TRUE(IsFinite(tm)) << "curve " << i;
  }
}

// Moving everything moves the joints with it: for the space that is its own, and for the points when they bring their
// turn. A scale of everything scales the places.
TEST(CurvePose, MovesAndScalesAsAWhole) {
  std::mt19937 rng(12);
  Matrix3 motion = EulerToMatrix({0.7f, -1.1f, 2.0f});
  motion.SetTrans({15, -20, 40});
  for (int i = 0; i < 500; ++i) {
    SCOPED_TRACE(i);
    Rig rig = Random(rng);
    // Large ways and turns of joints far off the curve would hide what is compared in rounding.
    rig.in.percent *= 0.1f, rig.in.manualStretch = 1, rig.in.squash *= 0.2f;
    rig.in.usePointsRotation = true;
    rig.wave.length = 50;
    rig.Run();
    if (rig.curve.length < 50) continue;  // joints many lengths off a short curve: rounding of its ends, magnified
    Rig inSpace = rig;
    inSpace.in.spaceTM = motion;
    inSpace.Run();
    for (size_t k = 0; k < rig.tm.size(); ++k) ExpectNear(inSpace.tm[k], rig.tm[k] * motion, 5e-3f);
    Rig scaled = rig;
    for (PointFrame& point : scaled.points) point.pos *= 3, point.in *= 3, point.out *= 3;
    scaled.wave.amplitude *= 3, scaled.wave.length *= 3, scaled.in.chainLength *= 3;
    scaled.Run();
    // A third of a unit of the last place on the way is the whole difference, against ways of some hundred units.
    for (size_t k = 0; k < rig.tm.size(); ++k) ExpectNear(scaled.tm[k].GetTrans(), rig.tm[k].GetTrans() * 3, 0.05f);
  }
}

// Without a jump between neighbouring values a rig can be animated: no place moves by more than the way that the
// change accounts for.
TEST(CurvePose, ContinuousInItsParameters) {
  using Set = void (*)(Rig&, float);
  const std::pair<const char*, Set> kSweeps[] = {
      {"percent", [](Rig& r, float x) { r.in.percent = 2 * x - 0.5f; }},
      {"manual", [](Rig& r, float x) { r.in.manualStretch = 3 * x - 1; }},
      {"auto", [](Rig& r, float x) { r.in.autoStretch = x; }},
      {"slide", [](Rig& r, float x) { r.in.slide = x; }},
      {"backwards", [](Rig& r, float x) { r.in.backwards = x; }},
      {"a point",
       [](Rig& r, float x) {
         r.points[1].pos = {30, 40 * x - 20, 0};
       }},
      {"a tangent", [](Rig& r, float x) {
         r.points[0].type = kBezier, r.points[0].hasOut = true, r.points[0].out = {20, 40 * x - 20, 0};
       }}};
  for (const auto& [name, set] : kSweeps) {
    SCOPED_TRACE(name);
    std::vector<Matrix3> before;
    for (int i = 0; i <= 1000; ++i) {
      Rig rig = Bent(6);
      set(rig, static_cast<float>(i) / 1000);
      rig.Run();
      for (size_t k = 0; k < before.size(); ++k) ExpectNear(rig.tm[k].GetTrans(), before[k].GetTrans(), 0.5f);
      before = rig.tm;
      if (HasFailure()) return;
    }
  }
}

// A span of two points that straightens out meets its straight form without a jump.
TEST(CurvePose, StraighteningMeetsTheChord) {
  Rig rig = Straight(5);
  for (PointFrame& point : rig.points) point.type = kBezier, point.hasIn = point.hasOut = true;
  rig.points[0].out = {30, 0, 0}, rig.points[1].in = {-30, 0, 0};
  rig.Run();
  EXPECT_EQ(rig.curve.samples.size(), 2u);
  const std::vector<Matrix3> straight = rig.tm;
  rig.points[0].out.y = 0.002f;
  rig.Run();
  EXPECT_EQ(rig.curve.samples.size(), 17u);
  for (size_t k = 0; k < 5; ++k) ExpectNear(rig.tm[k], straight[k], 2e-3f);
}

TEST(CurvePose, RestLengthKeepsJointsInPlace) {
  for (const float automatic : {0.0f, 0.3f, 1.0f}) {
    SCOPED_TRACE(automatic);
    Rig rig = Bent(5);
    rig.in.autoStretch = automatic;
    rig.Run();
    const std::vector<Matrix3> before = rig.tm;
    rig.in.chainLength = RestLength(rig.curve.length, rig.in.chainLength, automatic);
    rig.in.autoStretch = 0;
    rig.Run();
    for (size_t k = 0; k < 5; ++k) ExpectNear(rig.tm[k], before[k], 1e-3f);
  }
  EXPECT_FLOAT_EQ(RestLength(50, 0, 0), 50);
}

TEST(AxisMatrix, Table) {
  EXPECT_EQ(AxisMatrix(0, false), Matrix3());
  for (int axis = 0; axis < 3; ++axis)
    for (const bool flip : {false, true}) {
      const Matrix3 m = AxisMatrix(axis, flip);
      EXPECT_EQ(Determinant(m), 1);
      ExpectNear(m.row[axis], {flip ? -1.0f : 1.0f, 0, 0}, 0);
    }
}

}  // namespace
}  // namespace tavrilon
