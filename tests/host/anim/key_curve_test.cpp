// SPDX-License-Identifier: MIT
#include "host/anim/key_curve.h"

#include <gtest/gtest.h>

#include <random>

namespace corvanta {
namespace {

using FloatCurve = KeyCurve<IBezFloatKey>;

IBezFloatKey Bez(TimeValue t, float v, Tangent in = Tangent::Auto, Tangent out = Tangent::Auto) {
  return {{t, TangentFlags(in, out)}, v, 0, 0, kThird, kThird};
}
IBezFloatKey User(TimeValue t, float v, float in, float out, float inLength = kThird, float outLength = kThird) {
  return {{t, TangentFlags(Tangent::User, Tangent::User)}, v, in, out, inLength, outLength};
}
template <class Key>
KeyCurve<Key> Curve(std::vector<Key> keys, ORT before = ORT::Constant, ORT after = ORT::Constant) {
  KeyCurve<Key> c;
  c.keys = std::move(keys);
  c.before = before;
  c.after = after;
  c.Update();
  return c;
}
template <class Key>
auto At(const KeyCurve<Key>& c, TimeValue t) {
  Interval valid = FOREVER;
  Playhead<Key> head;
  return Evaluate(c, t, valid, head);
}
template <class Key>
Interval ValidAt(const KeyCurve<Key>& c, TimeValue t) {
  Interval valid = FOREVER;
  Playhead<Key> head;
  Evaluate(c, t, valid, head);
  return valid;
}

// The curve as a drawing program would make it: de Casteljau in (time, value), time found by bisection.
double Casteljau(const double p[4], double u) {
  double q[4] = {p[0], p[1], p[2], p[3]};
  for (int n = 3; n > 0; --n)
    for (int i = 0; i < n; ++i) q[i] += (q[i + 1] - q[i]) * u;
  return q[0];
}
double DrawnValue(const IBezFloatKey& a, const IBezFloatKey& b, double t) {
  const double dt = b.time - a.time;
  const double times[4] = {double(a.time), a.time + a.outLength * dt, b.time - b.inLength * dt, double(b.time)};
  const double values[4] = {a.value, a.value + a.outTan * a.outLength * dt, b.value + b.inTan * b.inLength * dt,
                            b.value};
  double lo = 0, hi = 1;
  for (int i = 0; i < 60; ++i) (Casteljau(times, (lo + hi) / 2) > t ? hi : lo) = (lo + hi) / 2;
  return Casteljau(values, lo);
}

TEST(KeyCurve, UserHandlesDrawTheBezierCurve) {
  std::mt19937 rng(3);
  std::uniform_real_distribution<float> slope(-0.1f, 0.1f), length(0.01f, 1), value(-10, 10);
  for (int i = 0; i < 300; ++i) {
    const bool thirds = i % 3 == 0;
    const auto key = [&](TimeValue t) {
      const float in = slope(rng), out = slope(rng);
      return thirds ? User(t, value(rng), in, out) : User(t, value(rng), in, out, length(rng), length(rng));
    };
    const auto c = Curve<IBezFloatKey>({key(100), key(700)});
    for (TimeValue t = 100; t < 700; t += 23) {
      // Values up to some 70 in single precision; where time runs steeply along the curve its rounding shows.
      ASSERT_NEAR(At(c, t), DrawnValue(c.keys[0], c.keys[1], t), 2e-3) << i << ' ' << t;
    }
  }
}

struct SlopeRow {
  const char* name;
  Tangent type;
  float in, out;  // outward, per tick, at the middle key of (0, 0) (100, 10) (300, 90)
};
const SlopeRow kSlopes[] = {
    {"smooth: the chord between the neighbours", Tangent::Smooth, -0.3f, 0.3f},
    {"linear: towards each neighbour", Tangent::Linear, -0.1f, 0.4f},
    {"stepped", Tangent::Stepped, 0, 0},
    {"fast: thrice the chord", Tangent::Fast, -0.3f, 1.2f},
    {"slow", Tangent::Slow, 0, 0},
    {"auto: smooth within three times the flatter chord", Tangent::Auto, -0.3f, 0.3f},
};
TEST(KeyCurve, SlopesOfTangentTypes) {
  for (const SlopeRow& r : kSlopes) {
    SCOPED_TRACE(r.name);
    const auto c = Curve<IBezFloatKey>({Bez(0, 0), Bez(100, 10, r.type, r.type), Bez(300, 90)});
    EXPECT_FLOAT_EQ(c.keys[1].inTan, r.in);
    EXPECT_FLOAT_EQ(c.keys[1].outTan, r.out);
  }
  // One side leaves the other alone, and a user slope is never touched.
  auto c = Curve<IBezFloatKey>({Bez(0, 0), Bez(100, 10, Tangent::User, Tangent::Linear), Bez(300, 90)});
  EXPECT_EQ(c.keys[1].inTan, 0);
  EXPECT_FLOAT_EQ(c.keys[1].outTan, 0.4f);
}

TEST(KeyCurve, AutoNeverOvershoots) {
  std::mt19937 rng(5);
  std::uniform_int_distribution<int> gap(1, 400);
  std::uniform_real_distribution<float> value(-10, 10);
  for (int i = 0; i < 200; ++i) {
    std::vector<IBezFloatKey> keys;
    for (TimeValue t = 0; keys.size() < 6; t += gap(rng)) keys.push_back(Bez(t, i % 4 ? value(rng) : 3));
    const auto c = Curve(keys);
    for (size_t k = 0; k + 1 < keys.size(); ++k) {
      const float lo = std::min(keys[k].value, keys[k + 1].value), hi = std::max(keys[k].value, keys[k + 1].value);
      for (TimeValue t = keys[k].time; t < keys[k + 1].time; ++t) {
        ASSERT_GE(At(c, t), lo - 1e-5f);  // rounding of values up to 10
        ASSERT_LE(At(c, t), hi + 1e-5f);
      }
    }
  }
}

TEST(KeyCurve, ValidityIntervals) {
  const auto c =
      Curve<IBezFloatKey>({Bez(10, 1, Tangent::Stepped, Tangent::Stepped), Bez(20, 2), Bez(30, 2), Bez(40, 5)});
  const struct {
    TimeValue t;
    float value;
    Interval valid;
  } rows[] = {
      {-50, 1, {kTimeMin, 10}}, {10, 1, {10, 19}}, {19, 1, {10, 19}},       {20, 2, {20, 30}},
      {25, 2, {20, 30}},        {30, 2, {30, 30}}, {40, 5, {40, kTimeMax}}, {99, 5, {40, kTimeMax}},
  };
  for (const auto& r : rows) {
    EXPECT_EQ(At(c, r.t), r.value) << r.t;
    EXPECT_EQ(ValidAt(c, r.t), r.valid) << r.t;
  }
  EXPECT_EQ(ValidAt(c, 35), Interval::Instant(35));
  EXPECT_EQ(ValidAt(FloatCurve{}, 35), FOREVER);
  EXPECT_EQ(ValidAt(Curve<IBezFloatKey>({Bez(10, 4)}), 35), FOREVER);
  EXPECT_EQ(At(Curve<IBezFloatKey>({Bez(10, 4)}), 35), 4);
  // It narrows what came in.
  Interval valid{12, 15};
  Playhead<IBezFloatKey> head;
  Evaluate(c, 13, valid, head);
  EXPECT_EQ(valid, (Interval{12, 15}));
}

// An in tangent that is stepped holds the segment before it, too.
TEST(KeyCurve, SteppedOnEitherSideHolds) {
  const auto c =
      Curve<IBezFloatKey>({Bez(0, 1), Bez(10, 2, Tangent::Stepped, Tangent::Linear), Bez(20, 8, Tangent::Linear)});
  EXPECT_EQ(At(c, 9), 1);
  EXPECT_FLOAT_EQ(At(c, 15), 5);
}

// The valid interval promises one value all over it, and a playhead from anywhere gives the same answer.
TEST(KeyCurve, IntervalsAndPlayheadsAreHonest) {
  std::mt19937 rng(11);
  std::uniform_int_distribution<int> gap(1, 30), tangent(0, 6), ort(0, 5), when(-200, 400);
  const ORT types[] = {ORT::Constant, ORT::Cycle, ORT::Loop, ORT::PingPong, ORT::Linear, ORT::RelativeRepeat};
  for (int i = 0; i < 300; ++i) {
    std::vector<IBezFloatKey> keys;
    for (TimeValue t = 0; keys.size() < 5; t += gap(rng))
      keys.push_back(Bez(t, float(gap(rng) % 3), Tangent(tangent(rng)), Tangent(tangent(rng))));
    const auto c = Curve(keys, types[ort(rng)], types[ort(rng)]);
    Playhead<IBezFloatKey> head;
    for (int n = 0; n < 20; ++n) {
      const TimeValue t = when(rng);
      Interval valid = FOREVER;
      const float v = Evaluate(c, t, valid, head);
      ASSERT_TRUE(valid.Contains(t));
      for (const TimeValue other : {std::max(valid.start, -500), std::min(valid.end, 500), t})
        ASSERT_EQ(At(c, other), v) << t << ' ' << other;
    }
  }
}

TEST(KeyCurve, OutOfRangeTypes) {
  // A saw: 2 at 100, linear to 8 at 160, to 4 at 200; it arrives with -0.1 a tick and starts with 0.1.
  const std::vector<IBezFloatKey> keys = {Bez(100, 2, Tangent::Linear, Tangent::Linear),
                                          Bez(160, 8, Tangent::Linear, Tangent::Linear),
                                          Bez(200, 4, Tangent::Linear, Tangent::Linear)};
  const struct {
    ORT type;
    TimeValue t;
    float value;
  } rows[] = {
      {ORT::Constant, 250, 4},       {ORT::Constant, 50, 2},       {ORT::Cycle, 201, 2.1f},
      {ORT::Cycle, 230, 5},          {ORT::Cycle, 300, 2},         {ORT::Cycle, 99, 4.1f},
      {ORT::PingPong, 220, 6},       {ORT::PingPong, 310, 3},      {ORT::PingPong, 70, 5},
      {ORT::Linear, 230, 1},         {ORT::Linear, 70, -1},        {ORT::RelativeRepeat, 230, 7},
      {ORT::RelativeRepeat, 330, 9}, {ORT::RelativeRepeat, 60, 6}, {ORT::RelativeRepeat, -40, 4},
      {ORT::Loop, 200, 4},           {ORT::Loop, 270, 7},          {ORT::Loop, 30, 5},
  };
  for (const auto& r : rows)
    EXPECT_NEAR(At(Curve(keys, r.type, r.type), r.t), r.value, 1e-5f) << int(r.type) << ' ' << r.t;
}

// Only a cycle may jump where it leaves the keys and where it starts again.
TEST(KeyCurve, OutOfRangeContinuity) {
  const std::vector<IBezFloatKey> keys = {Bez(0, 2), Bez(600, 8), Bez(900, -3), Bez(1200, 4)};
  for (const ORT type : {ORT::Constant, ORT::Loop, ORT::PingPong, ORT::Linear, ORT::RelativeRepeat}) {
    const auto c = Curve(keys, type, type);
    for (TimeValue t = -3000; t < 4000; ++t)
      ASSERT_LT(std::abs(At(c, t + 1) - At(c, t)), 0.1f) << int(type) << ' ' << t;  // the steepest slope is 0.055
  }
}

TEST(KeyCurve, FarTimesAreFinite) {
  const auto c = Curve<IBezFloatKey>({User(kTimeMin, 0, 9, 9, 5, 5), User(kTimeMax, 1, 9, 9, 5, 5)});
  for (const TimeValue t : {kTimeMin, -1, 0, 12345, kTimeMax}) EXPECT_TRUE(std::isfinite(At(c, t)));
  auto free = Curve<IBezFloatKey>({User(0, 0, 0, 0.1f, 1, 3e38f), User(100, 1, 0, 0)});
  free.keys[0].flags |= kKeyFreeHandle;
  free.Update();
  for (TimeValue t = 0; t <= 100; ++t) EXPECT_TRUE(std::isfinite(At(free, t)));
}

TEST(KeyCurve, SortingKeepsTheLaterOfEqualTimes) {
  const auto c = Curve<IBezFloatKey>({Bez(30, 1), Bez(10, 2), Bez(30, 3), Bez(20, 4), Bez(10, 5)});
  ASSERT_EQ(c.keys.size(), 3u);
  EXPECT_EQ(c.keys[0].value, 5);
  EXPECT_EQ(c.keys[1].value, 4);
  EXPECT_EQ(c.keys[2].value, 3);
}

TEST(KeyCurve, VectorsGoByComponent) {
  std::vector<IBezPoint3Key> keys(3);
  std::vector<IBezPoint4Key> keys4(3);
  std::vector<IBezScaleKey> scales(3);
  std::vector<IBezFloatKey> parts[3];
  for (int i = 0; i < 3; ++i) {
    keys[i].time = keys4[i].time = scales[i].time = i * 50;
    keys[i].value = scales[i].value.s = {float(i), float(i * i), 5 - 3.0f * i};
    keys4[i].value = {float(i), float(i * i), 5 - 3.0f * i, 7};
    for (int c = 0; c < 3; ++c) parts[c].push_back(Bez(i * 50, keys[i].value[c]));
  }
  for (TimeValue t = -10; t < 120; t += 7)
    for (int c = 0; c < 3; ++c) {
      const float expected = At(Curve(parts[c]), t);
      EXPECT_EQ(At(Curve(keys), t)[c], expected);
      EXPECT_EQ(At(Curve(keys4), t)[c], expected);
      EXPECT_EQ(At(Curve(scales), t).s[c], expected);
      EXPECT_EQ(At(Curve(keys4), t).w, 7);
    }
}

TEST(KeyCurve, ScaleAxesTakeTheShorterArc) {
  std::vector<IBezScaleKey> keys(2);
  keys[1].time = 100;
  keys[1].value.q = {0, 0, -std::sin(0.4f), -std::cos(0.4f)};
  EXPECT_LT(Difference(At(Curve(keys), 50).q, Quat{0, 0, std::sin(0.2f), std::cos(0.2f)}), 1e-5f);
  EXPECT_EQ(ValidAt(Curve(keys), 50), Interval::Instant(50));
}

// --- TCB ---------------------------------------------------------------------------------------------------------

ITCBFloatKey Tcb(TimeValue t, float v, TcbShape shape = {}) { return {{t, 0}, v, shape}; }

TEST(TcbCurve, KnownValues) {
  const auto middle = [](TcbShape s) {
    return Curve<ITCBFloatKey>({Tcb(0, 0), Tcb(100, 10, s), Tcb(200, 30), Tcb(300, 0)});
  };
  // Half way of the second interval a cubic is the mean of its ends and an eighth of the tangents' difference.
  const auto half = [&](TcbShape s) { return At(middle(s), 150); };
  const float in = -5;                                       // (0 - 10) / 2 at 200
  EXPECT_NEAR(half({}), 20 + (15 - in) / 8, 1e-4f);          // (30 - 0) / 2
  EXPECT_NEAR(half({1, 0, 0}), 20 + (0 - in) / 8, 1e-4f);    // no tangent
  EXPECT_NEAR(half({0, 1, 0}), 20 + (10 - in) / 8, 1e-4f);   // the step before
  EXPECT_NEAR(half({0, -1, 0}), 20 + (20 - in) / 8, 1e-4f);  // the step after: a corner
  EXPECT_NEAR(half({0, 0, 1}), 20 + (10 - in) / 8, 1e-4f);
  EXPECT_NEAR(half({0, 0, -1}), 20 + (20 - in) / 8, 1e-4f);
  // Two keys make a line, and eases bend its time only.
  EXPECT_FLOAT_EQ(At(Curve<ITCBFloatKey>({Tcb(0, 0), Tcb(100, 10)}), 30), 3);
  const auto eased = Curve<ITCBFloatKey>({Tcb(0, 0, {0, 0, 0, 0, 0.5f}), Tcb(100, 10, {0, 0, 0, 0.5f, 0})});
  EXPECT_NEAR(At(eased, 25), 1.25f, 1e-5f);
  EXPECT_NEAR(At(eased, 50), 5, 1e-5f);
  EXPECT_NEAR(At(eased, 75), 8.75f, 1e-5f);
}

// Default keys pass with one velocity on both sides, at uneven times too.
TEST(TcbCurve, SmoothThroughKeys) {
  const auto c = Curve<ITCBFloatKey>({Tcb(0, 0), Tcb(6000, 10), Tcb(7000, 12), Tcb(20000, -4)});
  for (const auto& key : c.keys) {
    EXPECT_EQ(At(c, key.time), key.value);
    if (key.time == 0 || key.time == 20000) continue;
    const float before = At(c, key.time) - At(c, key.time - 10), after = At(c, key.time + 10) - At(c, key.time);
    EXPECT_NEAR(before, after, 0.004f);  // what the curvature makes in ten ticks
  }
}

Quat AboutZ(float degrees) { return QuatFromMatrix(RotateZMatrix(degrees * kDegToRad)); }
ITCBRotKey Rot(TimeValue t, const Quat& q, TcbShape shape = {}) { return {{t, 0}, AngAxisFromQuat(q), shape}; }

TEST(TcbRotation, AboutOneAxisItIsTheFloatCurve) {
  const float degrees[] = {0, 40, 50, -30};
  const TimeValue times[] = {0, 60, 130, 200};
  for (const TcbShape& shape : {TcbShape{}, TcbShape{0.5f, -0.3f, 0.7f, 0.2f, 0.1f}}) {
    std::vector<ITCBFloatKey> angles;
    std::vector<ITCBRotKey> turns;
    for (int i = 0; i < 4; ++i) {
      angles.push_back(Tcb(times[i], degrees[i], shape));
      turns.push_back(Rot(times[i], AboutZ(degrees[i]), shape));
    }
    for (TimeValue t = -20; t <= 220; t += 5)
      EXPECT_LT(Difference(At(Curve(turns), t), AboutZ(At(Curve(angles), t))), 2e-5f) << t;
  }
}

TEST(TcbRotation, SmoothUnitAndThroughItsKeys) {
  std::mt19937 rng(2);
  std::normal_distribution<float> n;
  std::vector<ITCBRotKey> keys;
  for (TimeValue t = 0; t < 6000; t += 700) keys.push_back(Rot(t, Normalize(Quat{n(rng), n(rng), n(rng), n(rng)})));
  const auto c = Curve(keys, ORT::RelativeRepeat, ORT::RelativeRepeat);
  for (const auto& key : keys) EXPECT_LT(Difference(At(c, key.time), ValueOf(key)), 1e-5f);
  for (TimeValue t = -3000; t < 9000; t += 10) {
    const Quat a = At(c, t), b = At(c, t + 10);
    ASSERT_NEAR(Dot(a, a), 1, 1e-5f);
    ASSERT_LT(Difference(a, b), 0.15f) << t;  // no jump: the fastest of these turns 0.1 in ten ticks
  }
  for (size_t i = 1; i + 1 < keys.size(); ++i) {
    const TimeValue t = keys[i].time;
    const Point3 before = LogTurn(Inverse(At(c, t - 5)) * At(c, t)), after = LogTurn(Inverse(At(c, t)) * At(c, t + 5));
    EXPECT_LT(Length(before - after), 0.15f * Length(before) + 1e-3f);
  }
}

TEST(TcbRotation, OutOfRange) {
  const std::vector<ITCBRotKey> keys = {Rot(0, AboutZ(10)), Rot(100, AboutZ(50))};
  const auto at = [&](ORT type, TimeValue t) { return At(Curve(keys, type, type), t); };
  EXPECT_LT(Difference(at(ORT::Linear, 200), AboutZ(90)), 1e-5f);
  EXPECT_LT(Difference(at(ORT::Linear, -100), AboutZ(-30)), 1e-5f);
  EXPECT_LT(Difference(at(ORT::RelativeRepeat, 1050), AboutZ(430)), 1e-4f);
  EXPECT_LT(Difference(at(ORT::RelativeRepeat, -150), AboutZ(-50)), 1e-4f);
  EXPECT_LT(Difference(at(ORT::Cycle, 150), AboutZ(30)), 1e-5f);
}

// --- Reduction -----------------------------------------------------------------------------------------------------

TEST(ReduceKeys, StaysWithinTheThreshold) {
  std::mt19937 rng(9);
  std::uniform_real_distribution<float> noise(-0.05f, 0.05f);
  for (const float threshold : {0.0f, 0.1f, 0.5f, 100.0f}) {
    std::vector<IBezFloatKey> keys;
    for (TimeValue t = 0; t <= 12000; t += 200) keys.push_back(Bez(t, 5 * std::sin(t * 0.001f) + noise(rng)));
    const auto before = Curve(keys);
    auto after = before;
    const int gone = ReduceKeys(after, threshold, 40, {1000, 11000});
    EXPECT_EQ(gone + after.keys.size(), keys.size());
    for (TimeValue t = 1000; t <= 11000; t += 40) ASSERT_LE(Difference(At(before, t), At(after, t)), threshold) << t;
    // Outside the interval, and its ends, all is as it was.
    const auto has = [&](TimeValue t) {
      return std::any_of(after.keys.begin(), after.keys.end(), [&](const IBezFloatKey& k) { return k.time == t; });
    };
    for (const TimeValue t : {0, 200, 400, 600, 800, 1000, 11000, 11200, 12000}) EXPECT_TRUE(has(t)) << t;
    if (threshold == 0.5f) {
      EXPECT_LT(after.keys.size(), 35u);
    }
    if (threshold == 100) {
      EXPECT_EQ(after.keys.size(), 12u);
    }
  }
}

// Smooth tangents carry a change two keys far, where it counts as well.
TEST(ReduceKeys, LooksAsFarAsTangentsReach) {
  std::mt19937 rng(12);
  std::uniform_real_distribution<float> value(-1, 1);
  for (int i = 0; i < 100; ++i) {
    std::vector<IBezFloatKey> keys;
    for (int k = 0; k < 12; ++k) keys.push_back(Bez(k * 100, value(rng), Tangent::Smooth, Tangent::Smooth));
    const auto before = Curve(keys);
    auto after = before;
    ReduceKeys(after, 0.3f, 10, FOREVER);
    for (TimeValue t = 0; t <= 1100; t += 10) ASSERT_LE(Difference(At(before, t), At(after, t)), 0.3f) << i << ' ' << t;
  }
}

TEST(ReduceKeys, AStraightLineNeedsItsEnds) {
  std::vector<IBezFloatKey> keys;
  for (TimeValue t = 0; t <= 2000; t += 100) keys.push_back(Bez(t, t * 0.5f, Tangent::Linear, Tangent::Linear));
  auto c = Curve(keys);
  EXPECT_EQ(ReduceKeys(c, 0.01f, 20, FOREVER), 19);
  std::vector<ITCBRotKey> turns;
  for (TimeValue t = 0; t <= 2000; t += 100) turns.push_back(Rot(t, AboutZ(t * 0.01f)));
  auto r = Curve(turns);
  EXPECT_EQ(ReduceKeys(r, 0.001f, 20, FOREVER), 19);
}

}  // namespace
}  // namespace corvanta
