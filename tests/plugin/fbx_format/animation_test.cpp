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

TEST(FbxAnimCurve, CubicIsTheBezierOfItsPoints) {
  struct Row {
    double right, left, tolerance;
  };
  const Row rows[] = {
      {1.0 / 3, 1.0 / 3, 1e-9},  // time runs evenly; half a tick's rounding
      {0.5, 0.5, 1e-5},
      {0.1, 0.8, 1e-5},
      {0.9, 0.05, 1e-5},
      {0, 0, 1e-5},  // stands still in time at both ends
      // A vertical tangent makes the value as sharp as the cube root of the time's rounding to ticks.
      {1, 1, 2e-3},
      {1, 0, 1e-5},
  };
  const double v0 = 1, v1 = 5, rightSlope = 3, leftSlope = -2, length = 0.75;
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message() << row.right << ' ' << row.left);
    const KeyShape shape{Interpolation::Cubic, static_cast<float>(rightSlope), static_cast<float>(leftSlope),
                         static_cast<float>(row.right), static_cast<float>(row.left)};
    const FbxAnimCurve curve = Curve({0, length}, {1, 5}, shape);
    // The weights that the curve has, but for the even one.
    const double right = row.tolerance < 1e-5 ? row.right : shape.rightWeight;
    const double left = row.tolerance < 1e-5 ? row.left : shape.nextLeftWeight;
    const Vector2 points[] = {{0, v0},
                              {right * length, v0 + right * length * rightSlope},
                              {(1 - left) * length, v1 - left * length * leftSlope},
                              {length, v1}};
    for (double u = 0; u <= 1; u += 1.0 / 256) {
      const double w[] = {(1 - u) * (1 - u) * (1 - u), 3 * (1 - u) * (1 - u) * u, 3 * (1 - u) * u * u, u * u * u};
      double x = 0, y = 0;
      for (int i = 0; i < 4; ++i) {
        x += w[i] * points[i].x;
        y += w[i] * points[i].y;
      }
      EXPECT_NEAR(At(curve, x), y, row.tolerance) << u;
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
