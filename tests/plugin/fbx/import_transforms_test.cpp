// SPDX-License-Identifier: MIT
// The world matrix of every node on every frame is that of the file, whatever its transforms are made of.
#include "import_scenes_test.h"

namespace tavrilon::import_test {
namespace {

using namespace fbx;

/// A figure of two metres must stay within 0.1 mm and 0.01 degree over a chain of twelve bones.
constexpr int kChain = 12;
constexpr double kMetre = 100;  // centimetres
constexpr double kPlace = 0.01, kDegrees = 0.01;

struct ChainKind {
  const char* name;
  FbxAxisSystem axes = FbxAxisSystem::ZUp();
  double centimetres = 1;
  InheritType inherit = InheritType::RSrs;
  bool pivots = true;
  int layers = 1;
  double sceneCentimetres = 1;
};

void RandomTransform(Dice& dice, const ChainKind& kind, double length, NodeTransform& t) {
  t.translation = {length * dice.In(0.8, 1), length * dice.In(-0.2, 0.2), length * dice.In(-0.2, 0.2)};
  t.rotation = dice.Vector(180);
  t.inherit = kind.inherit;
  t.rotationActive = true;
  t.order = static_cast<RotationOrder>(dice.Of(6));
  // Other ways to inherit cannot be said by a parent's scale that differs by axis: that would be shear.
  const double scale = dice.In(0.98, 1.02);
  t.scaling = kind.inherit == InheritType::RSrs ? Vector3{dice.In(0.98, 1.02), dice.In(0.98, 1.02), scale}
                                                : Vector3{scale, scale, scale};
  if (!kind.pivots) return;
  t.preRotation = dice.Vector(180);
  t.postRotation = dice.Vector(180);
  for (Vector3* part : {&t.rotationOffset, &t.rotationPivot, &t.scalingOffset, &t.scalingPivot})
    *part = dice.Vector(length * 0.1);
}

void Animate(FbxScene& scene, Dice& dice, FbxAnimLayer& layer, FbxNode* node, double length, bool isBase) {
  const auto curves = [&](const char* property, const Vector3& middle, double spread) {
    FbxAnimCurveNode* added = AddCurves(scene, layer, node, property);
    for (size_t c = 0; c < 3; ++c) {
      added->defaults[c] = middle[c];
      added->curves[c] = RandomCurve(dice, middle[c], spread);
    }
  };
  const NodeTransform& t = node->transform;
  if (dice.Of(2)) curves("Lcl Translation", isBase ? t.translation : Vector3(), length * 0.1);
  curves("Lcl Rotation", isBase ? t.rotation : Vector3(), isBase ? 120 : 20);
  if (dice.Of(3) == 0 && t.inherit == InheritType::RSrs) curves("Lcl Scaling", {1, 1, 1}, 0.01);
}

std::unique_ptr<FbxScene> RandomChain(unsigned seed, const ChainKind& kind) {
  Dice dice(seed);
  auto scene = NewScene();
  scene->GetGlobalSettings().SetAxisSystem(kind.axes);
  scene->GetGlobalSettings().SetSystemUnit({kind.centimetres, 1});
  const double length = 2 * kMetre / kChain / kind.centimetres;
  FbxNode* parent = nullptr;
  for (int i = 0; i < kChain; ++i) {
    parent = AddBone(*scene, "bone" + std::to_string(i), parent);
    RandomTransform(dice, kind, length, parent->transform);
  }
  FbxAnimLayer* layer = AddStack(*scene, "take");
  for (int l = 0; l < kind.layers; ++l) {
    if (l > 0) {
      layer = FbxAnimLayer::Create(*scene, "over");
      layer->blend = static_cast<LayerBlend>(l % 2);
      layer->weight = 60;
      scene->Stacks()[0]->layers.push_back(layer);
    }
    for (FbxNode* node : scene->Nodes()) Animate(*scene, dice, *layer, node, length, l == 0);
  }
  return scene;
}

const FbxAxisSystem kXUp{0, 1, 2, 1, 1, -1};

const ChainKind kKinds[] = {
    {"plain", FbxAxisSystem::ZUp(), 1, InheritType::RSrs, false},
    {"pivots"},
    {"Y up", FbxAxisSystem::YUp()},
    {"X up", kXUp},
    {"inches", FbxAxisSystem::YUp(), 2.54},
    {"metres", FbxAxisSystem::ZUp(), 100},
    {"metres into inches", FbxAxisSystem::ZUp(), 100, InheritType::RSrs, true, 1, 2.54},
    {"RrSs", FbxAxisSystem::YUp(), 1, InheritType::RrSs},
    {"Rrs", FbxAxisSystem::YUp(), 1, InheritType::Rrs},
    {"layers", FbxAxisSystem::ZUp(), 1, InheritType::RSrs, true, 3},
};

class ImportTransforms : public ImportTest {
 protected:
  // The twin is left in its own axes and unit; turning and scaling are worked out here.
  void Compare(FbxScene& twin, const ChainKind& kind) {
    const Affine turn = kind.axes.ConversionTo(FbxAxisSystem::ZUp());
    const double unit = kind.centimetres / kind.sceneCentimetres;
    SceneEvaluator evaluator(twin, twin.CurrentStack());
    Distance worst;
    ASSERT_EQ(GetScene().Nodes().size(), twin.Nodes().size());
    for (int frame = 0; frame <= kFrames; ++frame) {
      for (size_t i = 0; i < twin.Nodes().size(); ++i) {
        Affine expected = evaluator.World(twin.Nodes()[i], FrameTime(frame)) * turn;
        expected.row[3] = expected.row[3] * unit;
        const Distance d = DistanceOf(ToAffine(GetScene().Nodes()[i]->GetNodeTM(frame * 200)), expected);
        worst.place = std::max(worst.place, d.place * kind.sceneCentimetres);
        worst.degrees = std::max(worst.degrees, d.degrees);
      }
    }
    EXPECT_LT(worst.place, kPlace);
    EXPECT_LT(worst.degrees, kDegrees);
  }
};

TEST_F(ImportTransforms, EveryNodeStandsWhereTheFileHasItOnEveryFrame) {
  for (const ChainKind& kind : kKinds) {
    for (unsigned seed = 1; seed <= 4; ++seed) {
      SCOPED_TRACE(testing::Message() << kind.name << ", seed " << seed);
      ReplaceScene(std::make_unique<Scene>());
      GetScene().units.centimetres = kind.sceneCentimetres;
      const auto scene = RandomChain(seed, kind), twin = RandomChain(seed, kind);
      ASSERT_TRUE(Import(*scene)) << Log();
      EXPECT_FALSE(IsLogged(L"hear"));
      Compare(*twin, kind);
    }
  }
}

TEST_F(ImportTransforms, StillNodesHaveNoKeys) {
  const auto scene = RandomChain(1, kKinds[1]);
  FbxImportOptions options;
  options.animation = false;
  const auto twin = RandomChain(1, kKinds[1]);
  SceneEvaluator evaluator(*twin, nullptr);
  ASSERT_TRUE(Import(*scene, options)) << Log();
  for (size_t i = 0; i < twin->Nodes().size(); ++i) {
    INode& node = *GetScene().Nodes()[i];
    EXPECT_EQ(node.GetTMController()->NumKeys(), 0);
    // Single precision over twelve matrices.
    EXPECT_LT(DistanceOf(ToAffine(node.GetNodeTM(0)), evaluator.World(twin->Nodes()[i], {})).place, 1e-3);
  }
  EXPECT_EQ(GetScene().time.range, (Interval{0, 20000}));
}

TEST_F(ImportTransforms, ChannelsThatStayAreValues) {
  const auto scene = NewScene();
  FbxNode* node = AddBone(*scene, "bone", nullptr, {1, 2, 3});
  FbxAnimLayer* layer = AddStack(*scene, "take");
  FbxAnimCurveNode* move = AddCurves(*scene, *layer, node, "Lcl Translation");
  FbxAnimCurveNode* turn = AddCurves(*scene, *layer, node, "Lcl Rotation");
  move->defaults = {1, 2, 3};
  for (const int frame : {0, kFrames}) {
    // Within a hundred-thousandth: nothing moves.
    move->curves[0].times.push_back(FrameTime(frame).ticks);
    move->curves[0].values.push_back(frame == 0 ? 1.0f : 1.000009f);
    turn->curves[2].times.push_back(FrameTime(frame).ticks);
    turn->curves[2].values.push_back(frame == 0 ? 0.0f : 720.0f);
  }
  move->curves[0].shapes = turn->curves[2].shapes = {KeyShape()};
  ASSERT_TRUE(Import(*scene)) << Log();
  Control* tm = GetScene().Nodes()[0]->GetTMController();
  EXPECT_EQ(tm->GetPositionController()->NumKeys(), 0);
  EXPECT_EQ(tm->GetScaleController()->NumKeys(), 0);
  EXPECT_EQ(tm->GetRotationController()->GetXController()->NumKeys(), 0);
  EXPECT_EQ(tm->GetRotationController()->GetYController()->NumKeys(), 0);
  // A straight line needs its ends only, and two whole turns are not lost.
  Control* z = tm->GetRotationController()->GetZController();
  EXPECT_EQ(z->NumKeys(), 2);
  float end = 0;
  Interval valid = FOREVER;
  z->GetValue(kFrames * 200, end, valid);
  EXPECT_NEAR(end, 4 * M_PI, 1e-5);  // single precision of twelve
}

TEST_F(ImportTransforms, ShearIsToldAndStraightened) {
  const auto scene = NewScene();
  FbxNode* parent = AddNode(*scene, "parent");
  parent->transform.scaling = {1, 3, 1};
  FbxNode* child = AddNode(*scene, "child", parent);
  child->transform.rotation = {0, 0, 30};
  child->transform.inherit = InheritType::Rrs;
  ASSERT_TRUE(Import(*scene)) << Log();
  EXPECT_TRUE(IsLogged(L"Shear")) << Log();
  EXPECT_TRUE(IsLogged(L"child")) << Log();
}

TEST_F(ImportTransforms, TheStackThatIsAskedFor) {
  for (const wchar_t* wanted : {L"", L"walk", L"run", L"swim"}) {
    SCOPED_TRACE(ToUtf8(wanted));
    ReplaceScene(std::make_unique<Scene>());
    const auto scene = NewScene();
    FbxNode* node = AddBone(*scene, "bone");
    for (const auto& [name, x] : {std::pair("walk", 1.0f), std::pair("run", 2.0f)}) {
      FbxAnimCurveNode* move = AddCurves(*scene, *AddStack(*scene, name), node, "Lcl Translation");
      move->curves[0].times = {0};
      move->curves[0].values = {x};
      move->curves[0].shapes = {KeyShape()};
    }
    scene->currentStack = "run";
    FbxImportOptions options;
    options.stack = wanted;
    const bool done = Import(*scene, options);
    if (options.stack == L"swim") {
      EXPECT_FALSE(done);
      EXPECT_EQ(report.error, L"The file has no animation stack \"swim\". It has: walk, run");
      EXPECT_TRUE(GetScene().Nodes().empty());
      continue;
    }
    ASSERT_TRUE(done) << Log();
    EXPECT_EQ(GetScene().Nodes()[0]->GetNodeTM(0).GetTrans().x, options.stack == L"walk" ? 1 : 2);
  }
}

}  // namespace
}  // namespace tavrilon::import_test
