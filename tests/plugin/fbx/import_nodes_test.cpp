// SPDX-License-Identifier: MIT
// What nodes become, how the scene's times follow, and that a step of undo takes all of it back.
#include "host/scene/bone_object.h"
#include "host/scene/mesh_object.h"
#include "host/scene/point_helper.h"
#include "import_scenes_test.h"

namespace tavrilon::import_test {
namespace {

using namespace fbx;

class ImportNodes : public ImportTest {};

TEST_F(ImportNodes, KindsNamesAndProperties) {
  const auto scene = NewScene();
  FbxNode* root = AddBone(*scene, "rig:hips");
  FbxNode* spine = AddBone(*scene, "rig:spine", root, {3, 4, 0});
  AddBone(*scene, "same", spine, {1, 0, 0});
  FbxNode* null = AddNode(*scene, "same", root);
  null->SetNodeAttribute(FbxNull::Create(*scene, ""));
  FbxNode* camera = AddNode(*scene, "\xC3\xA4ugig");
  camera->SetNodeAttribute(FbxOtherAttribute::Create(*scene, "", AttributeKind::Camera, "Camera"));
  root->GetNodeAttribute()->colour = Vector3{1, 0.5, -3};
  null->visible = false;
  null->userProperties = {{"tag", "L\xC3\xA4ngs"}};
  ASSERT_TRUE(Import(*scene)) << Log();

  struct Row {
    const wchar_t* name;
    int parent;
    Class_ID object;
    float length;
  };
  const Row kRows[] = {
      {L"rig:hips", -1, BoneObject::kClassId, 5},    {L"rig:spine", 0, BoneObject::kClassId, 1},
      {L"same", 1, BoneObject::kClassId, 0.1f},      {L"same", 0, PointHelper::kClassId, 0},
      {L"\x00E4ugig", -1, PointHelper::kClassId, 0},
  };
  const auto& nodes = GetScene().Nodes();
  ASSERT_EQ(nodes.size(), std::size(kRows));
  for (size_t i = 0; i < nodes.size(); ++i) {
    const Row& row = kRows[i];
    INode& node = *nodes[i];
    EXPECT_EQ(node.GetName(), row.name);
    EXPECT_EQ(node.GetParentNode(),
              row.parent < 0 ? GetScene().GetRootNode() : nodes[static_cast<size_t>(row.parent)].Get());
    EXPECT_TRUE(node.GetBaseObject()->ClassID() == row.object);
    EXPECT_TRUE(node.Selected());
    if (row.length == 0) continue;
    EXPECT_EQ(node.GetBaseObject()->GetParamBlock()->GetFloat(BoneObject::kLength), row.length);
  }
  EXPECT_EQ(nodes[0]->GetWireColor(), 0xFF8000u);
  EXPECT_TRUE(nodes[3]->IsHidden());
  EXPECT_FALSE(nodes[0]->IsHidden());
  EXPECT_EQ(nodes[3]->GetUserPropString(L"tag"), L"L\x00E4ngs");
  EXPECT_TRUE(IsLogged(L"Cameras come in as point helpers")) << Log();
}

TEST_F(ImportNodes, FrameRateAndRange) {
  struct Row {
    const char* name;
    bool isEmpty;
    double rate;
    int expectedRate;
    Interval before, range;
    const wchar_t* log;
  };
  // The stack runs from a second to two seconds; the scene has 30 frames a second.
  const Interval whole{0, 20000}, stack{6000, 12000};
  const Row kRows[] = {
      {"empty scene", true, 60, 60, whole, stack, nullptr},
      {"no whole rate", true, 29.97, 30, whole, stack, L"not whole"},
      {"file without a rate", true, 0, 30, whole, stack, nullptr},
      {"nodes, same rate", false, 30, 30, whole, whole, nullptr},
      {"nodes, short range", false, 30, 30, {6400, 6600}, stack, nullptr},
      {"nodes, other rate", false, 25, 30, whole, whole, L"keeps its frame rate"},
      {"rate of no use", true, 1e9, 30, whole, stack, nullptr},
  };
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.name);
    ReplaceScene(std::make_unique<Scene>());
    GetScene().time.range = row.before;
    if (!row.isEmpty) GetScene().CreateObjectNode(nullptr);
    const auto scene = NewScene();
    scene->GetGlobalSettings().SetTimeMode(row.rate > 0 ? TimeMode::Custom : TimeMode::Default);
    scene->GetGlobalSettings().SetCustomFrameRate(row.rate);
    FbxAnimLayer* layer = AddStack(*scene, "take");
    scene->Stacks()[0]->localStart = FbxTime::FromSeconds(1);
    scene->Stacks()[0]->localStop = FbxTime::FromSeconds(2);
    FbxAnimCurve& x = AddCurves(*scene, *layer, AddBone(*scene, "bone"), "Lcl Translation")->curves[0];
    x.times = {FbxTime::FromSeconds(1).ticks, FbxTime::FromSeconds(2).ticks};
    x.values = {1, 2};
    x.shapes = {KeyShape()};
    ASSERT_TRUE(Import(*scene)) << Log();
    EXPECT_EQ(GetScene().time.frameRate, row.expectedRate);
    EXPECT_EQ(GetScene().time.range, row.range);
    const Control* keys = GetScene().Nodes().back()->GetTMController()->GetPositionController();
    ASSERT_EQ(keys->NumKeys(), 2);
    EXPECT_EQ(keys->GetKeyTime(0), 6000);
    if (row.log)
      EXPECT_TRUE(IsLogged(row.log)) << Log();
    else
      EXPECT_TRUE(report.log.empty()) << Log();
  }
}

TEST_F(ImportNodes, ChannelsThatStayAreValues) {
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

/// Bones, a mesh with everything on it, and animation.
std::unique_ptr<FbxScene> FullScene() {
  Dice dice(3);
  auto scene = NewScene();
  FbxNode* hips = AddBone(*scene, "hips");
  FbxNode* leg = AddBone(*scene, "leg", hips, {0, 0, -5});
  FbxNode* body = AddNode(*scene, "body");
  FbxMesh* mesh = FbxMesh::Create(*scene, "body");
  body->SetNodeAttribute(mesh);
  mesh->controlPoints = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
  mesh->polygonVertices = {0, 1, 2, 3};
  mesh->polygonStarts = {0, 4};
  mesh->smoothness = 2;
  mesh->previewLevels = 1;
  FbxSkin* skin = FbxSkin::Create(*scene, "skin");
  skin->clusters = {{"a", hips, {0, 1}, {1, 0.5}, {}, {}},
                    {"b", leg, {1, 2, 3}, {0.5, 1, 1}, Translation({0, 0, -5}), Translation({0, 0, 5})}};
  mesh->skins.push_back(skin);
  FbxBlendShape* shape = FbxBlendShape::Create(*scene, "shape");
  FbxBlendShapeChannel* channel = FbxBlendShapeChannel::Create(*scene, "smile");
  channel->fullWeights = {100};
  channel->shapes = {{"smile", {2, 0}, {{0, 0, 1}, {0, 0, 2}}, {}}};
  shape->channels.push_back(channel);
  mesh->blendShapes.push_back(shape);
  body->materials = {FbxSurfaceMaterial::Create(*scene, "skin"), FbxSurfaceMaterial::Create(*scene, "cloth")};
  FbxAnimLayer* layer = AddStack(*scene, "take");
  for (FbxNode* node : {hips, leg})
    for (FbxAnimCurve& curve : AddCurves(*scene, *layer, node, "Lcl Rotation")->curves)
      curve = RandomCurve(dice, 0, 90);
  AddCurves(*scene, *layer, channel, "DeformPercent")->curves[0] = RandomCurve(dice, 50, 40);
  return scene;
}

TEST_F(ImportNodes, OneStepOfUndoTakesAllBackAndRedoBringsItAgain) {
  for (const bool isEmpty : {true, false}) {
    ReplaceScene(std::make_unique<Scene>());
    if (!isEmpty) GetScene().SelectNode(GetScene().CreateObjectNode(nullptr));
    theHold.Flush();
    const std::vector<uint8_t> before = SavedBytes();
    ASSERT_TRUE(Import(*FullScene())) << Log();
    const std::vector<uint8_t> after = SavedBytes();
    EXPECT_NE(after, before);
    EXPECT_EQ(theHold.NumUndo(), 1);
    EXPECT_EQ(theHold.UndoName(), L"FBX Import");
    for (int i = 0; i < 2; ++i) {
      ASSERT_TRUE(theHold.Undo());
      EXPECT_TRUE(SavedBytes() == before);
      ASSERT_TRUE(theHold.Redo());
      EXPECT_TRUE(SavedBytes() == after);
    }
    // And what came in is what a scene file keeps.
    ASSERT_EQ(LoadSceneFromBytes(after), L"");
    EXPECT_TRUE(SavedBytes() == after);
  }
}

TEST_F(ImportNodes, AFailureLeavesTheSceneAsItWas) {
  GetScene().SelectNode(GetScene().CreateObjectNode(nullptr));
  theHold.Flush();
  const std::vector<uint8_t> before = SavedBytes();
  struct Row {
    const char* name;
    std::function<void(FbxImportOptions&)> spoil;
    const wchar_t* error;
  };
  const Row kRows[] = {
      {"nothing asked for", [](auto& o) { o.skeletalMesh = o.animation = false; },
       L"Enable skeletal mesh or animation import."},
      {"too many nodes", [](auto& o) { o.limits.maxNodes = 2; },
       L"The file has more than 2 nodes, which is more than can be imported."},
      {"another stack", [](auto& o) { o.stack = L"swim"; }, L"The file has no animation stack \"swim\". It has: take"},
      {"no scale", [](auto& o) { o.scaleFactor = 0; }, L"The scale of the import is not sound."},
      {"stopped", [](auto&) { SetProgressHook([](const WStr&, double share) { return share < 0.75; }); }, L"Stopped."},
  };
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.name);
    FbxImportOptions options;
    row.spoil(options);
    EXPECT_FALSE(Import(*FullScene(), options));
    SetProgressHook({});
    EXPECT_EQ(report.error, row.error);
    EXPECT_TRUE(SavedBytes() == before);
    EXPECT_EQ(theHold.NumUndo(), 0);
    EXPECT_EQ(theHold.Depth(), 0);
  }
}

TEST_F(ImportNodes, HostileNumbersAreBoundedAndTold) {
  const double nan = std::nan("");
  const auto scene = FullScene();
  FbxNode* hips = scene->Nodes()[0];
  FbxNode* body = scene->Nodes()[2];
  auto* mesh = static_cast<FbxMesh*>(body->GetNodeAttribute());
  body->transform.translation = {nan, 1e300, 0};
  mesh->controlPoints[0].x = nan;
  mesh->polygonVertices.insert(mesh->polygonVertices.end(), {0, 1, 77, 0, 1});
  mesh->polygonStarts.insert(mesh->polygonStarts.end(), {7, 9});
  mesh->skins[0]->clusters.push_back({"no bone", nullptr, {0}, {1}, {}, {}});
  mesh->skins[0]->clusters.push_back({"flat", hips, {0}, {1}, Scaling({1, 0, 1}), {}});
  mesh->skins[0]->clusters[0].weights[0] = nan;
  mesh->blendShapes[0]->channels[0]->shapes[0].indices[0] = -5;
  for (float& value : scene->Stacks()[0]->layers[0]->curveNodes[0]->curves[0].values) value = std::nanf("");
  scene->Stacks()[0]->localStop = FbxTime{std::numeric_limits<int64_t>::max()};
  FbxImportOptions options;
  options.limits.maxFrames = 50;
  ASSERT_TRUE(Import(*scene, options)) << Log();
  for (const wchar_t* part :
       {L"not finite", L"less than three corners", L"Skin clusters without a bone are left out: body/no bone",
        L"cannot be undone", L"Skin weights", L"blend shapes", L"it is cut"})
    EXPECT_TRUE(IsLogged(part)) << ToUtf8(part) << " in " << Log();
  EXPECT_EQ(GetScene().time.range, (Interval{0, 49 * 200}));
  const std::vector<uint8_t> saved = SavedBytes();
  EXPECT_EQ(LoadSceneFromBytes(saved), L"");
}

TEST_F(ImportNodes, TheFewerFramesTheMoreMoves) {
  FbxImportOptions options;
  options.limits.maxSamples = 20;
  ASSERT_TRUE(Import(*FullScene(), options)) << Log();
  EXPECT_TRUE(IsLogged(L"it is cut")) << Log();
  EXPECT_EQ(GetScene().time.range, (Interval{0, 9 * 200}));  // two bones move
}

TEST_F(ImportNodes, WithoutMeshesTheirNodesAreHelpers) {
  FbxImportOptions options;
  options.skeletalMesh = false;
  ASSERT_TRUE(Import(*FullScene(), options)) << Log();
  EXPECT_TRUE(GetScene().GetINodeByName(L"body")->GetBaseObject()->ClassID() == PointHelper::kClassId);
  EXPECT_FALSE(GetScene().GetINodeByName(L"body")->GetMtl());
}

TEST_F(ImportNodes, ADeepHierarchyIsRefused) {
  const auto scene = NewScene();
  FbxNode* node = nullptr;
  for (int i = 0; i <= INode::kMaxDepth; ++i) node = AddNode(*scene, "n" + std::to_string(i), node);
  EXPECT_FALSE(Import(*scene));
  EXPECT_EQ(report.error, L"The hierarchy is deeper than 1000 nodes at 'n1000'.");
  EXPECT_TRUE(GetScene().Nodes().empty());
}

}  // namespace
}  // namespace tavrilon::import_test
