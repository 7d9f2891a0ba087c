// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include "plugin/fbx_format/scene_samples.h"

namespace tavrilon::fbx {
namespace {

/// Linear keys at 0 and 1 second.
FbxAnimCurve Ramp(double from, double to) {
  FbxAnimCurve curve;
  curve.times = {0, FbxTime::kTicksPerSecond};
  curve.values = {static_cast<float>(from), static_cast<float>(to)};
  curve.shapes = {{}};
  return curve;
}

/// One node "a" and a stack of layers.
struct Sample {
  std::unique_ptr<FbxScene> scene = FbxScene::Create("s");
  FbxNode* node = FbxNode::Create(*scene, "a");
  FbxAnimStack* stack = FbxAnimStack::Create(*scene, "take");

  /// A curve node of `property`, on a layer of its own.
  FbxAnimLayer* Still(const std::string& property, const Vector3& values) {
    FbxAnimCurveNode* curves = FbxAnimCurveNode::Create(*scene, property);
    curves->target = node;
    curves->property = property;
    for (size_t i = 0; i < 3; ++i) curves->curves[i] = Ramp(values[i], values[i]);
    FbxAnimLayer* layer = FbxAnimLayer::Create(*scene, "layer");
    layer->curveNodes = {curves};
    stack->layers.push_back(layer);
    return layer;
  }
  NodeTransform Transform(double seconds = 0.5) {
    return SceneEvaluator(*scene, stack).Transform(node, Seconds(seconds));
  }
};

struct LayerRow {
  const char* name;
  LayerBlend blend;
  double weight;
  bool mute, soloBase, soloTop;
  double expected;
};
// Base 10, layer 4, still value 1.
const LayerRow kLayers[] = {
    {"added", LayerBlend::Additive, 100, false, false, false, 14},
    {"added by half", LayerBlend::Additive, 50, false, false, false, 12},
    {"override", LayerBlend::Override, 100, false, false, false, 4},
    {"override whatever the weight", LayerBlend::Override, 25, false, false, false, 4},
    {"mixed", LayerBlend::OverridePassthrough, 25, false, false, false, 8.5},
    {"mixed in full", LayerBlend::OverridePassthrough, 100, false, false, false, 4},
    {"muted", LayerBlend::Additive, 100, true, false, false, 10},
    {"base alone", LayerBlend::Additive, 100, false, true, false, 10},
    {"layer alone, on the still value", LayerBlend::Additive, 100, false, false, true, 5},
    {"solo beats mute", LayerBlend::Override, 100, true, false, true, 4},
};

TEST(FbxEvaluator, LayersOfPositions) {
  for (const LayerRow& row : kLayers) {
    SCOPED_TRACE(row.name);
    Sample sample;
    sample.node->transform.translation = {1, 1, 1};
    sample.Still("Lcl Translation", {10, 10, 10})->solo = row.soloBase;
    FbxAnimLayer* top = sample.Still("Lcl Translation", {4, 4, 4});
    top->blend = row.blend;
    top->weight = row.weight;
    top->mute = row.mute;
    top->solo = row.soloTop;
    ExpectNear(sample.Transform().translation, {row.expected, row.expected, row.expected});
  }
}

TEST(FbxEvaluator, LayersOfScales) {
  struct Row {
    int accumulation;
    double weight;
    Vector3 expected;
  };
  // Base (3, 3, 3), layer (4, -4, 1): to the power of a half is twice, with its sign.
  const Row rows[] = {
      {0, 100, {12, -12, 3}}, {0, 50, {6, -6, 3}}, {0, 0, {3, 3, 3}}, {1, 100, {7, -1, 4}}, {1, 50, {5, 1, 3.5}}};
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message() << row.accumulation << ' ' << row.weight);
    Sample sample;
    sample.Still("Lcl Scaling", {3, 3, 3});
    FbxAnimLayer* top = sample.Still("Lcl Scaling", {4, -4, 1});
    top->scaleAccumulation = row.accumulation;
    top->weight = row.weight;
    ExpectNear(sample.Transform().scaling, row.expected);
  }
}

TEST(FbxEvaluator, LayersOfRotations) {
  struct Row {
    const char* name;
    LayerBlend blend;
    int accumulation;
    double weight;
    Affine expected;
    Vector3 base = {90, 0, 0}, top = {0, 0, 80};
  };
  const Affine base = Rotation({90, 0, 0});
  const Row rows[] = {
      {"turned by the layer first", LayerBlend::Additive, 0, 100, Rotation({0, 0, 80}) * base},
      {"by half of it", LayerBlend::Additive, 0, 50, Rotation({0, 0, 40}) * base},
      {"angles added", LayerBlend::Additive, 1, 100, Rotation({90, 0, 80})},
      {"override", LayerBlend::Override, 0, 50, Rotation({0, 0, 80})},
      {"mixed in full", LayerBlend::OverridePassthrough, 0, 100, Rotation({0, 0, 80})},
      {"angles mixed", LayerBlend::OverridePassthrough, 1, 50, Rotation({45, 0, 40})},
      {"by half, the short way", LayerBlend::Additive, 0, 50, Rotation({5, 0, 0}), {90, 0, 0}, {-170, 0, 0}},
      {"mixed, the short way",
       LayerBlend::OverridePassthrough,
       0,
       50,
       Rotation({180, 0, 0}),
       {170, 0, 0},
       {-170, 0, 0}},
  };
  for (const Row& row : rows) {
    for (const RotationOrder order : {RotationOrder::XYZ, RotationOrder::ZYX}) {
      if (row.accumulation == 1 && order != RotationOrder::XYZ) continue;
      SCOPED_TRACE(row.name);
      Sample sample;
      sample.node->transform.rotationActive = true;
      sample.node->transform.order = order;
      sample.Still("Lcl Rotation", row.base);
      FbxAnimLayer* top = sample.Still("Lcl Rotation", row.top);
      top->blend = row.blend;
      top->rotationAccumulation = row.accumulation;
      top->weight = row.weight;
      // Quaternions there and back cost a few digits.
      ExpectNear(LocalRotation(sample.Transform()), row.expected, 1e-9);
    }
  }
}

TEST(FbxEvaluator, AnimatedWeightAndDefaults) {
  Sample sample;
  FbxAnimCurveNode* curves = sample.Still("Lcl Translation", {10, 0, 0})->curveNodes[0];
  sample.Still("Lcl Translation", {4, 0, 0})->weightCurve = Ramp(0, 100);
  for (double t : {0.0, 0.25, 1.0}) EXPECT_NEAR(sample.Transform(t).translation.x, 10 + 4 * t, 1e-9);
  // A channel without a curve takes the default.
  curves->defaults = {7, 8, 9};
  curves->curves = {FbxAnimCurve(), Ramp(0, 2), FbxAnimCurve()};
  ExpectNear(sample.Transform(0).translation, {7, 0, 9});
  ExpectNear(sample.Transform(0.5).translation, {9, 1, 9});
}

// Parent (2, 1, 1) below a grandparent (1, 5, 1) that is turned a quarter about Z; the child is turned a quarter too.
TEST(FbxEvaluator, InheritTypes) {
  struct Row {
    InheritType inherit;
    Vector3 x, y;
  };
  const Row rows[] = {
      // x: turned to y; parent: y; scaled by the grandparent: 5 y, turned: -5 x. y (3): -3 x; -6 x; -6 x; -6 y.
      {InheritType::RSrs, {-5, 0, 0}, {0, -6, 0}},
      // In the child's axes: x (1 * 2 * 1), y (3 * 1 * 5); turned by a half turn.
      {InheritType::RrSs, {-2, 0, 0}, {0, -15, 0}},
      // The same without the parent's own scale.
      {InheritType::Rrs, {-1, 0, 0}, {0, -15, 0}},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(static_cast<int>(row.inherit));
    const auto scene = FbxScene::Create("s");
    FbxNode* grandparent = FbxNode::Create(*scene, "g");
    grandparent->transform.scaling = {1, 5, 1};
    grandparent->transform.rotation = {0, 0, 90};
    FbxNode* parent = FbxNode::Create(*scene, "p");
    parent->transform.scaling = {2, 1, 1};
    FbxNode* child = FbxNode::Create(*scene, "c");
    child->transform.scaling = {1, 3, 1};
    child->transform.rotation = {0, 0, 90};
    child->transform.translation = {1, 1, 0};
    child->transform.inherit = row.inherit;
    ASSERT_TRUE(grandparent->AddChild(parent) && parent->AddChild(child));
    const Affine world = SceneEvaluator(*scene, nullptr).World(child, {});
    ExpectNear(world.row[0], row.x);
    ExpectNear(world.row[1], row.y);
    // (1, 1) through the parent: (2, 1); scaled: (2, 5); turned: (-5, 2). Whatever is inherited.
    ExpectNear(world.row[3], {-5, 2, 0});
  }
}

// Asking in any order, and for any nodes in between, gives what a new evaluator gives.
TEST(FbxEvaluator, KeepsNothingStale) {
  const auto read = ReadFile("mixamo_walk.fbx");
  const std::vector<FbxNode*>& nodes = read->scene->Nodes();
  SceneEvaluator kept(*read->scene, read->scene->CurrentStack());
  for (int i = 0; i < 200; ++i) {
    const FbxNode* node = nodes[static_cast<size_t>(i * 37) % nodes.size()];
    const FbxTime t = Seconds((i * 13 % 50) / 30.0);
    EXPECT_EQ(kept.World(node, t), SceneEvaluator(*read->scene, read->scene->CurrentStack()).World(node, t));
  }
}

TEST(FbxEvaluator, ShapesAndStrangers) {
  SmallScene s;
  FbxBlendShapeChannel* still = FbxBlendShapeChannel::Create(*s.scene, "frown");
  s.channel->deformPercent = 35;
  still->deformPercent = 20;
  s.curves->target = s.channel;
  s.curves->property = "DeformPercent";
  s.curves->curves[0] = Ramp(0, 100);
  SceneEvaluator evaluator(*s.scene, s.stack);
  EXPECT_NEAR(evaluator.DeformPercent(s.channel, Seconds(0.75)), 75, 1e-9);
  EXPECT_EQ(evaluator.DeformPercent(still, Seconds(0.75)), 20);
  EXPECT_TRUE(evaluator.IsAnimated(s.channel));
  EXPECT_FALSE(evaluator.IsAnimated(still));
  EXPECT_FALSE(evaluator.IsAnimated(s.node));
  EXPECT_EQ(evaluator.World(s.scene->GetRootNode(), {}), Affine());
  EXPECT_EQ(evaluator.World(nullptr, {}), Affine());
}

}  // namespace
}  // namespace tavrilon::fbx
