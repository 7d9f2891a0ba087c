// SPDX-License-Identifier: MIT
// The curve by itself: tangents, samples, places on it.
#include "plugin/solvers/curve_sampling.h"

#include <gtest/gtest.h>

#include <random>

#include "plugin/frame/tangent_rule.h"
#include "plugin/solvers/curve_chain_test.h"
#include "plugin/solvers/curve_lookup.h"

namespace tavrilon {
namespace {

using namespace corvanta;
using namespace curve_ik_chain;

PointFrame At(const Point3& pos, int type = kSmooth) {
  PointFrame point;
  point.pos = pos;
  point.type = type;
  return point;
}

PointFrame Given(const Point3& pos, int type, const Point3& in, const Point3& out) {
  PointFrame point = At(pos, type);
  point.in = in;
  point.out = out;
  point.hasIn = point.hasOut = true;
  return point;
}

SampledCurve Sampled(std::vector<PointFrame> points, bool closed = false, int steps = 16, const CurveWave& wave = {}) {
  ResolveTangents(points, closed);
  SampledCurve curve;
  SampleCurve(points, closed, steps, wave, curve);
  return curve;
}

/// A curve in space with bends of different sizes.
std::vector<PointFrame> Bent() { return {At({0, 0, 0}), At({30, 10, 0}), At({40, 40, 20}), At({90, 40, 0})}; }

TEST(CurveTangents, ByType) {
  const Point3 before{-6, 0, 0}, at{0, 0, 0}, after{0, 12, 0};
  const float diagonal = 1 / std::sqrt(5.0f);  // from neighbour to neighbour: (6, 12)
  struct Row {
    const char* name;
    PointFrame point;
    Point3 in, out;
  };
  PointFrame onlyOut = Given(at, kBezier, {}, {0, 0, 3});
  onlyOut.hasIn = false;
  const Row rows[] = {
      {"smooth", At(at), Point3{-1, -2, 0} * (2 * diagonal), Point3{1, 2, 0} * (4 * diagonal)},
      {"corner", At(at, kCorner), {-2, 0, 0}, {0, 4, 0}},
      {"bezier without tangents", At(at, kBezier), Point3{-1, -2, 0} * (2 * diagonal),
       Point3{1, 2, 0} * (4 * diagonal)},
      {"bezier", Given(at, kBezier, {-5, 0, 0}, {0, 3, 0}), Point3{-5, -5, 0} / std::sqrt(2.0f),
       Point3{3, 3, 0} / std::sqrt(2.0f)},
      {"bezier folded", Given(at, kBezier, {2, 0, 0}, {4, 0, 0}), {-2, 0, 0}, {4, 0, 0}},
      {"bezier continued", onlyOut, {0, 0, -2}, {0, 0, 3}},
      {"bezier corner", Given(at, kBezierCorner, {-5, 0, 0}, {0, 3, 0}), {-5, 0, 0}, {0, 3, 0}},
      {"corner ignores nodes", Given(at, kCorner, {-5, 0, 0}, {0, 3, 0}), {-2, 0, 0}, {0, 4, 0}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    std::vector<PointFrame> points{At(before), row.point, At(after)};
    ResolveTangents(points, false);
    ExpectNear(points[1].in, row.in, 1e-5f);
    ExpectNear(points[1].out, row.out, 1e-5f);
    ExpectNear(points[0].out, (at - before + points[1].in) * 0.5f, 1e-5f);
  }
}

// Templates and chains run on one curve.
TEST(CurveTangents, SmoothRowsAreThoseOfTheTemplates) {
  std::vector<PointFrame> points = Bent();
  ResolveTangents(points, false);
  const auto pos = [&](int i) { return points[static_cast<size_t>(i)].pos; };
  for (int i = 0; i < 4; ++i) {
    const RowTangent tangent = SmoothTangent(pos, 4, i);
    if (i > 0) ExpectNear(points[static_cast<size_t>(i)].in, tangent.in, 1e-5f);
    if (i < 3) ExpectNear(points[static_cast<size_t>(i)].out, tangent.out, 1e-5f);
  }
}

TEST(CurveTangents, AnEndKeepsItsOneTangent) {
  std::vector<PointFrame> points{Given({0, 0, 0}, kBezier, {9, 9, 9}, {1, 2, 3}), At({10, 0, 0}),
                                 Given({20, 0, 0}, kBezier, {-1, 5, 0}, {7, 7, 7})};
  ResolveTangents(points, false);
  ExpectNear(points[0].out, {1, 2, 3}, 0);
  ExpectNear(points[2].in, {-1, 5, 0}, 0);
}

TEST(CurveSamples, CountsByKindOfSpan) {
  struct Row {
    const char* name;
    std::vector<PointFrame> points;
    bool closed;
    size_t samples;
    int spans;
  };
  const PointFrame a = At({0, 0, 0}, kCorner), b = At({10, 0, 0}, kCorner), c = At({10, 10, 0}, kCorner);
  const Row rows[] = {
      {"none", {}, false, 0, -1},
      {"one", {a}, false, 1, 0},
      {"one closed", {a}, true, 1, 0},
      {"corners", {a, b, c}, false, 3, 2},
      {"corners closed", {a, b, c}, true, 4, 3},
      {"smooth pair is its chord", {At(a.pos), At(b.pos)}, false, 2, 1},
      {"smooth", Bent(), false, 3 * 16 + 1, 3},
      {"smooth closed", Bent(), true, 4 * 16 + 1, 4},
      {"curved after straight", {a, b, At(c.pos)}, false, 1 + 16 + 1, 2},
      {"a bend in the tangents", {Given(a.pos, kBezier, {}, {3, 1, 0}), b}, false, 17, 1},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const SampledCurve curve = Sampled(row.points, row.closed);
    EXPECT_EQ(curve.samples.size(), row.samples);
    EXPECT_EQ(curve.NumSpans(), row.spans);
    if (row.samples > 1) {
      EXPECT_FLOAT_EQ(curve.pointLengths.back(), curve.length);
    }
  }
}

// The joints' places against the exact curve: sampled by sixteen steps a span, the cubics between them are off by the
// fourth power of a step, and the chords under the arc by its square.
TEST(CurveSamples, FollowTheExactCurve) {
  std::vector<PointFrame> points = Bent();
  ResolveTangents(points, false);
  const SampledCurve curve = Sampled(points);
  float exact = 0;
  std::vector<Point3> fine;
  for (size_t k = 0; k + 1 < points.size(); ++k) {
    const BezierSpan span{points[k].pos, points[k].pos + points[k].out, points[k + 1].pos + points[k + 1].in,
                          points[k + 1].pos};
    exact += BezierLength(span);
    for (int j = 0; j < 4096; ++j) fine.push_back(BezierPoint(span, static_cast<float>(j) / 4096));
  }
  EXPECT_NEAR(curve.length, exact, 1e-3f * exact);
  CurveLookup lookup(curve);
  for (float u = 0; u <= 1; u += 0.0137f) {
    const Point3 p = lookup.PointAt(lookup.ParamAt(u, 1));
    float nearest = 1e9f, way = 0, wayThere = 0;
    for (size_t i = 0; i < fine.size(); ++i) {
      if (i > 0) way += Length(fine[i] - fine[i - 1]);
      if (Length(fine[i] - p) < nearest) nearest = Length(fine[i] - p), wayThere = way;
    }
    EXPECT_LT(nearest, 2e-3f * exact) << u;
    EXPECT_NEAR(wayThere / exact, u, 3e-3f);
  }
}

TEST(CurvePlaces, RunsOffAlongTheEndTangents) {
  const SampledCurve curve = Sampled(Bent());
  CurveLookup lookup(curve);
  for (const float u : {-3.0f, -0.25f, 1.25f, 4.0f}) {
    const Point3 p = lookup.PointAt(lookup.ParamAt(u, 1));
    const bool before = u < 0;
    const CurveSample& end = before ? curve.samples.front() : curve.samples.back();
    const Point3 along = Normalize(end.out);
    const float past = (before ? u : u - 1) * curve.length;
    // The step of the tangent is the length of the end's piece but for the bend within it.
    EXPECT_NEAR(Dot(p - end.pos, along), past, std::abs(past) * 0.02f);
    EXPECT_LT(Length(Cross(p - end.pos, along)), 1e-3f * curve.length * std::abs(u));
  }
}

TEST(CurvePlaces, NailedToThePointsOrSpreadByLength) {
  const SampledCurve curve = Sampled({At({0, 0, 0}, kCorner), At({10, 0, 0}, kCorner), At({100, 0, 0}, kCorner)});
  CurveLookup lookup(curve);
  const auto x = [&](float u, float slide) { return lookup.PointAt(lookup.ParamAt(u, slide)).x; };
  EXPECT_NEAR(x(0.25f, 1), 25, 1e-4f);
  EXPECT_NEAR(x(0.25f, 0), 5, 1e-4f);
  EXPECT_NEAR(x(0.75f, 0), 55, 1e-4f);
  EXPECT_NEAR(x(0.25f, 0.5f), 15, 1e-4f);
}

TEST(CurvePlaces, OneSampleAndOutOfRange) {
  const SampledCurve curve = Sampled({At({1, 2, 3})});
  CurveLookup lookup(curve);
  for (const float u : {-2.0f, 0.0f, 0.5f, 7.0f}) {
    const CurvePlace place = lookup.ParamAt(u, 1);
    EXPECT_EQ(place.sample, 0);
    EXPECT_EQ(place.f, 0);
    ExpectNear(lookup.PointAt(place), {1, 2, 3}, 0);
  }
  ExpectNear(lookup.PointAt({5, 0}), {}, 0);
  ExpectNear(lookup.PointAt({-1, 0}), {}, 0);
}

// A search that goes on from the last place finds what one from the start finds.
TEST(CurvePlaces, OrderDoesNotMatter) {
  const SampledCurve curve = Sampled(Bent());
  CurveLookup shared(curve);
  std::mt19937 rng(5);
  std::uniform_real_distribution<float> any(0, 1);
  for (int i = 0; i < 500; ++i) {
    const float u = any(rng), slide = any(rng);
    const CurvePlace a = shared.ParamAt(u, slide), b = CurveLookup(curve).ParamAt(u, slide);
    EXPECT_EQ(a.sample, b.sample);
    EXPECT_EQ(a.f, b.f);
  }
}

// A curved span that meets a straight one, or another at a sharp corner, leaves along its own tangent.
TEST(CurveSamples, TangentsDoNotLookAroundCorners) {
  const SampledCurve curve =
      Sampled({At({0, 0, 0}, kCorner), At({10, 0, 0}, kCorner), At({10, 30, 0}), At({40, 30, 0})});
  ExpectNear(curve.samples[1].in, {10, 0, 0}, 0);
  // The rule of the ends is exact for a quadratic; of this cubic a sixteenth of the span leaves less than this.
  ExpectNear(Normalize(curve.samples[1].out), {0, 1, 0}, 0.03f);
  const SampledCurve sharp =
      Sampled({At({0, 0, 0}), Given({30, 0, 0}, kBezierCorner, {-10, -10, 0}, {-10, 10, 0}), At({0, 30, 0})});
  const CurveSample& corner = sharp.samples[16];
  EXPECT_LT(Dot(Normalize(corner.in), Normalize(corner.out)), 0.2f);
}

TEST(CurveSamples, ClosedCurveIsSmoothAtItsSeam) {
  const SampledCurve curve = Sampled({At({10, 0, 0}), At({0, 10, 0}), At({-10, 0, 0}), At({0, -10, 0})}, true);
  ExpectNear(curve.samples.front().pos, curve.samples.back().pos, 0);
  ExpectNear(curve.samples.front().out, curve.samples.back().in, 1e-5f);
  // Four smooth points on a circle make nearly one: within two percent of its radius.
  for (const CurveSample& s : curve.samples) EXPECT_NEAR(Length(s.pos), 10, 0.9f);
}

TEST(CurveWave, SineAcrossTheCurve) {
  const std::vector<PointFrame> row{At({0, 0, 0}), At({100, 0, 0})};
  const float quarter = kHalfPi;
  const auto at = [](const SampledCurve& curve, size_t i) { return curve.samples[i].pos; };
  // The 16 samples of a wave as long as the chord: crest after four.
  ExpectNear(at(Sampled(row, false, 16, {5, 100, 0, 0}), 4), {25, 5, 0});
  ExpectNear(at(Sampled(row, false, 16, {5, 100, quarter, 0}), 4), {25, 0, 5});
  ExpectNear(at(Sampled(row, false, 16, {5, 100, 0, 0.25f}), 0), {0, 5, 0});
  ExpectNear(at(Sampled(row, false, 16, {5, 100, 0, 1000.5f}), 4), {25, -5, 0});
  std::vector<PointFrame> fading = row;
  fading[0].amplitude = 0;
  ExpectNear(at(Sampled(fading, false, 16, {5, 100, 0, 0}), 4), {25, 1.25f, 0});
  // Turned frames turn the wave.
  std::vector<PointFrame> turned = row;
  for (PointFrame& point : turned) point.rot = EulerToQuat({quarter, 0, 0});
  ExpectNear(at(Sampled(turned, false, 16, {5, 100, 0, 0}), 4), {25, 0, 5});
  EXPECT_EQ(Sampled(row, false, 16, {5, 0, 0, 0}).samples.size(), 2u);
  // Along the wave it is farther.
  EXPECT_GT(Sampled(row, false, 16, {20, 100, 0, 0}).length, 110);
}

}  // namespace
}  // namespace tavrilon
