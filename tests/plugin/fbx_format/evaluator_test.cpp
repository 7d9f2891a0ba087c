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

  FbxAnimLayer* Layer() {
    FbxAnimLayer* layer = FbxAnimLayer::Create(*scene, "layer");
    stack->layers.push_back(layer);
    return layer;
  }
  void Still(FbxAnimLayer* layer, const std::string& property, const Vector3& values) {
    FbxAnimCurveNode* curves = FbxAnimCurveNode::Create(*scene, property);
    curves->target = node;
    curves->property = property;
    for (size_t i = 0; i < 3; ++i) curves->curves[i] = Ramp(values[i], values[i]);
    layer->curveNodes.push_back(curves);
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
    FbxAnimLayer* base = sample.Layer();
    sample.Still(base, "Lcl Translation", {10, 10, 10});
    base->solo = row.soloBase;
    FbxAnimLayer* top = sample.Layer();
    sample.Still(top, "Lcl Translation", {4, 4, 4});
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
    sample.Still(sample.Layer(), "Lcl Scaling", {3, 3, 3});
    FbxAnimLayer* top = sample.Layer();
    sample.Still(top, "Lcl Scaling", {4, -4, 1});
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
  };
  const Affine base = Rotation({90, 0, 0});
  const Row rows[] = {
      {"turned by the layer first", LayerBlend::Additive, 0, 100, Rotation({0, 0, 80}) * base},
      {"by half of it", LayerBlend::Additive, 0, 50, Rotation({0, 0, 40}) * base},
      {"angles added", LayerBlend::Additive, 1, 100, Rotation({90, 0, 80})},
      {"override", LayerBlend::Override, 0, 50, Rotation({0, 0, 80})},
      {"mixed in full", LayerBlend::OverridePassthrough, 0, 100, Rotation({0, 0, 80})},
      {"angles mixed", LayerBlend::OverridePassthrough, 1, 50, Rotation({45, 0, 40})},
  };
  for (const Row& row : rows) {
    for (const RotationOrder order : {RotationOrder::XYZ, RotationOrder::ZYX}) {
      if (row.accumulation == 1 && order != RotationOrder::XYZ) continue;
      SCOPED_TRACE(row.name);
      Sample sample;
      sample.node->transform.rotationActive = true;
      sample.node->transform.order = order;
      sample.Still(sample.Layer(), "Lcl Rotation", {90, 0, 0});
      FbxAnimLayer* top = sample.Layer();
      sample.Still(top, "Lcl Rotation", {0, 0, 80});
      top->blend = row.blend;
      top->rotationAccumulation = row.accumulation;
      top->weight = row.weight;
      // Quaternions there and back cost a few digits.
      ExpectNear(LocalRotation(sample.Transform()), row.expected, 1e-9);
    }
  }
}

// Half way from one turn about X to another, passing through, is the turn in between.
TEST(FbxEvaluator, RotationsMixOnTheShortWay) {
  Sample sample;
  sample.Still(sample.Layer(), "Lcl Rotation", {170, 0, 0});
  FbxAnimLayer* top = sample.Layer();
  sample.Still(top, "Lcl Rotation", {-170, 0, 0});
  top->blend = LayerBlend::OverridePassthrough;
  top->weight = 50;
  ExpectNear(LocalRotation(sample.Transform()), Rotation({180, 0, 0}), 1e-9);
}

TEST(FbxEvaluator, AnimatedWeight) {
  Sample sample;
  sample.Still(sample.Layer(), "Lcl Translation", {10, 0, 0});
  FbxAnimLayer* top = sample.Layer();
  sample.Still(top, "Lcl Translation", {4, 0, 0});
  top->weightCurve = Ramp(0, 100);
  for (double t : {0.0, 0.25, 1.0}) EXPECT_NEAR(sample.Transform(t).translation.x, 10 + 4 * t, 1e-9);
}

TEST(FbxEvaluator, ChannelsWithoutACurveTakeTheDefault) {
  Sample sample;
  FbxAnimCurveNode* curves = FbxAnimCurveNode::Create(*sample.scene, "T");
  curves->target = sample.node;
  curves->property = "Lcl Translation";
  curves->defaults = {7, 8, 9};
  curves->curves[1] = Ramp(0, 2);
  sample.Layer()->curveNodes.push_back(curves);
  ExpectNear(sample.Transform().translation, {7, 1, 9});
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
  const auto read = std::make_unique<Imported>();
  ASSERT_TRUE(read->importer->Initialize(DataFile("mixamo_walk.fbx")) && read->importer->Import(*read->scene))
      << read->Error();
  const std::vector<FbxNode*>& nodes = read->scene->Nodes();
  SceneEvaluator kept(*read->scene, read->scene->CurrentStack());
  for (int i = 0; i < 200; ++i) {
    const FbxNode* node = nodes[static_cast<size_t>(i * 37) % nodes.size()];
    const FbxTime t = Seconds((i * 13 % 50) / 30.0);
    EXPECT_EQ(kept.World(node, t), SceneEvaluator(*read->scene, read->scene->CurrentStack()).World(node, t));
  }
}

TEST(FbxEvaluator, DeepChains) {
  const auto scene = FbxScene::Create("s");
  FbxNode* last = scene->GetRootNode();
  constexpr int kDepth = 5000;
  for (int i = 0; i < kDepth; ++i) {
    FbxNode* node = FbxNode::Create(*scene, "n");
    node->transform.translation = {1, 0, 0};
    ASSERT_TRUE(i == 0 || last->AddChild(node));
    last = node;
  }
  EXPECT_EQ(SceneEvaluator(*scene, nullptr).World(last, {}).row[3], (Vector3{kDepth, 0, 0}));
}

TEST(FbxEvaluator, ShapesAndStrangers) {
  Sample sample;
  FbxBlendShapeChannel* channel = FbxBlendShapeChannel::Create(*sample.scene, "smile");
  channel->deformPercent = 35;
  FbxBlendShapeChannel* still = FbxBlendShapeChannel::Create(*sample.scene, "frown");
  still->deformPercent = 20;
  FbxAnimCurveNode* curves = FbxAnimCurveNode::Create(*sample.scene, "DeformPercent");
  curves->target = channel;
  curves->property = "DeformPercent";
  curves->curves[0] = Ramp(0, 100);
  sample.Layer()->curveNodes.push_back(curves);
  SceneEvaluator evaluator(*sample.scene, sample.stack);
  EXPECT_NEAR(evaluator.DeformPercent(channel, Seconds(0.75)), 75, 1e-9);
  EXPECT_EQ(evaluator.DeformPercent(still, Seconds(0.75)), 20);
  EXPECT_TRUE(evaluator.IsAnimated(channel));
  EXPECT_FALSE(evaluator.IsAnimated(still));
  EXPECT_FALSE(evaluator.IsAnimated(sample.node));
  EXPECT_EQ(evaluator.World(sample.scene->GetRootNode(), {}), Affine());
  EXPECT_EQ(evaluator.World(nullptr, {}), Affine());
}

}  // namespace
}  // namespace tavrilon::fbx
