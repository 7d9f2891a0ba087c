// SPDX-License-Identifier: MIT
#include "plugin/fbx/format/animation.h"

#include <gtest/gtest.h>

#include "plugin/fbx_format/scene_samples.h"

namespace tavrilon::fbx {
namespace {

FbxAnimCurve Curve(const std::vector<double>& seconds, const std::vector<float>& values, const KeyShape& shape) {
  FbxAnimCurve curve;
  for (double s : seconds) curve.times.push_back(Seconds(s).ticks);
  curve.values = values;
  curve.shapes = {shape};
  return curve;
}

double At(const FbxAnimCurve& curve, double seconds) {
  size_t hint = 0;
  return curve.Evaluate(Seconds(seconds), hint);
}

TEST(FbxAnimCurve, Interpolations) {
  struct Row {
    const char* name;
    Interpolation interpolation;
    double at, value;
  };
  const Row rows[] = {
      {"before the first key", Interpolation::Linear, -1, 2},
      {"behind the last", Interpolation::Linear, 9, -4},
      {"linear", Interpolation::Linear, 1.5, 5},
      {"linear, next segment", Interpolation::Linear, 3, 2},
      {"constant", Interpolation::Constant, 1.999, 2},
      {"constant at the key", Interpolation::Constant, 2, 8},
      {"next", Interpolation::ConstantNext, 1.001, 8},
      {"next at the key", Interpolation::ConstantNext, 1, 2},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    KeyShape shape;
    shape.interpolation = row.interpolation;
    EXPECT_NEAR(At(Curve({1, 2, 4}, {2, 8, -4}, shape), row.at), row.value, 1e-9);
  }
  EXPECT_EQ(At(FbxAnimCurve(), 3), 0);
}

// With weights of a third, time runs evenly and the curve is the Hermite cubic of its values and slopes.
TEST(FbxAnimCurve, CubicIsHermite) {
  const double v0 = 3, v1 = -2, right = 4, left = -1.5, length = 2;
  KeyShape shape{Interpolation::Cubic, static_cast<float>(right), static_cast<float>(left)};
  const FbxAnimCurve curve = Curve({1, 1 + length}, {3, -2}, shape);
  for (double s = 0; s <= 1; s += 0.0625) {
    const double s2 = s * s, s3 = s2 * s;
    const double expected = (2 * s3 - 3 * s2 + 1) * v0 + (s3 - 2 * s2 + s) * length * right + (3 * s2 - 2 * s3) * v1 +
                            (s3 - s2) * length * left;
    EXPECT_NEAR(At(curve, 1 + s * length), expected, 1e-9) << s;
  }
}

TEST(FbxAnimCurve, WeightedIsTheBezierOfItsPoints) {
  struct Row {
    float right, left;
  };
  // The last ones stand still in time at an end, or almost fold in the middle.
  const Row rows[] = {{0.5f, 0.5f}, {0.1f, 0.8f}, {0.9f, 0.05f}, {0, 0}, {1, 1}, {1, 0}};
  const double v0 = 1, v1 = 5, rightSlope = 3, leftSlope = -2, length = 0.75;
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message() << row.right << ' ' << row.left);
    const KeyShape shape{Interpolation::Cubic, static_cast<float>(rightSlope), static_cast<float>(leftSlope), row.right,
                         row.left};
    const FbxAnimCurve curve = Curve({0, length}, {1, 5}, shape);
    const Vector2 points[] = {{0, v0},
                              {row.right * length, v0 + row.right * length * rightSlope},
                              {(1 - row.left) * length, v1 - row.left * length * leftSlope},
                              {length, v1}};
    for (double u = 0; u <= 1; u += 1.0 / 256) {
      const double w[] = {(1 - u) * (1 - u) * (1 - u), 3 * (1 - u) * (1 - u) * u, 3 * (1 - u) * u * u, u * u * u};
      double x = 0, y = 0;
      for (int i = 0; i < 4; ++i) {
        x += w[i] * points[i].x;
        y += w[i] * points[i].y;
      }
      // A vertical tangent makes the value as sharp as the cube root of the time's rounding to ticks.
      EXPECT_NEAR(At(curve, x), y, row.right == 1 && row.left == 1 ? 2e-3 : 1e-5) << u;
    }
  }
}

// The hint is where to look first and nothing else.
TEST(FbxAnimCurve, AnyHintGivesTheSame) {
  std::vector<double> seconds;
  std::vector<float> values;
  for (int i = 0; i < 20; ++i) {
    seconds.push_back(i * 0.1 + (i % 3) * 0.02);
    values.push_back(static_cast<float>((i * 7) % 5));
  }
  const FbxAnimCurve curve = Curve(seconds, values, {});
  size_t kept = 0;
  for (double t : {-1.0, 0.05, 0.051, 0.3, 0.31, 1.9, 0.2, 5.0, 1.0}) {
    const double expected = At(curve, t);
    EXPECT_EQ(curve.Evaluate(Seconds(t), kept), expected);
    for (size_t hint : {size_t{0}, size_t{7}, size_t{19}, size_t{500}}) {
      EXPECT_EQ(curve.Evaluate(Seconds(t), hint), expected) << t;
    }
  }
}

// Times at both ends of 64 bits neither overflow nor divide by nothing.
TEST(FbxAnimCurve, WidestTimes) {
  FbxAnimCurve curve;
  curve.times = {std::numeric_limits<int64_t>::min(), std::numeric_limits<int64_t>::max()};
  curve.values = {0, 10};
  curve.shapes = {{}};
  size_t hint = 0;
  EXPECT_NEAR(curve.Evaluate({0}, hint), 5, 1e-9);
}

TEST(FbxAnimStack, KeySpan) {
  const auto scene = FbxScene::Create("s");
  FbxAnimStack* stack = FbxAnimStack::Create(*scene, "walk");
  stack->localStart = Seconds(3);
  stack->localStop = Seconds(4);
  FbxTime first, last;
  stack->GetKeySpan(first, last);
  EXPECT_EQ(first, Seconds(3));
  EXPECT_EQ(last, Seconds(4));
  FbxAnimLayer* layer = FbxAnimLayer::Create(*scene, "base");
  stack->layers.push_back(layer);
  for (double start : {-1.0, 0.5}) {
    FbxAnimCurveNode* curves = FbxAnimCurveNode::Create(*scene, "T");
    curves->curves[1] = Curve({start, start + 2}, {0, 0}, {});
    layer->curveNodes.push_back(curves);
  }
  stack->GetKeySpan(first, last);
  EXPECT_EQ(first, Seconds(-1));
  EXPECT_EQ(last, Seconds(2.5));
}

}  // namespace
}  // namespace tavrilon::fbx
