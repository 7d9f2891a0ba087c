// SPDX-License-Identifier: MIT
#include "host/view/scene_view.h"

#include <gtest/gtest.h>

#include "host/scene/bone_object.h"
#include "host/scene/point_helper.h"
#include "host/view/recorder.h"
#include "support/test_objects.h"

using namespace corvanta;
using namespace corvanta::testing_objects;

namespace {

SceneViewOptions Plain() {
  SceneViewOptions options;
  options.grid = options.axisMark = options.viewName = options.brackets = false;
  return options;
}

using SceneView = SceneTest;

INode* AddNode(Object* object, const Point3& at) {
  INode* node = GetScene().CreateObjectNode(object);
  node->SetTMController(new TestMatrix);
  node->SetNodeTM(0, TransMatrix(at));
  return node;
}

INode* AddBone(const Point3& at, float length = 10) {
  const Ref<BoneObject> bone(new BoneObject);
  bone->GetParamBlock()->SetValue(BoneObject::kLength, 0, length);
  return AddNode(bone.Get(), at);
}

INode* AddPoint(const Point3& at, float size = 2) {
  const Ref<PointHelper> point(new PointHelper);
  point->GetParamBlock()->SetValue(PointHelper::kSize, 0, size);
  return AddNode(point.Get(), at);
}

int CountOf(const RecordingWindow& window, const INode* node) {
  int count = 0;
  for (const Primitive& p : window.Primitives()) count += p.state.node == node;
  return count;
}

TEST_F(SceneView, HiddenNodesAreNotDrawn) {
  Scene& scene = GetScene();
  INode* shown = AddBone({});
  INode* hidden = AddBone({0, 20, 0});
  INode* onLayer = AddBone({0, 40, 0});
  INode* filtered = AddPoint({0, 60, 0});
  hidden->Hide(true);
  SceneLayer* layer = scene.MakeLayer(L"Bones");
  onLayer->SetLayer(layer);
  layer->Hide(true);
  SceneViewOptions options = Plain();
  options.filter = [](INode& node) { return node.GetBaseObject()->SuperClassID() == kGeomObjectSuper; };
  RecordingWindow window;
  DisplayScene(window, scene, options);
  EXPECT_GT(CountOf(window, shown), 0);
  for (INode* node : {hidden, onLayer, filtered}) EXPECT_EQ(CountOf(window, node), 0);
  layer->Hide(false);
  window.Clear();
  DisplayScene(window, scene, options);
  EXPECT_GT(CountOf(window, onLayer), 0);
}

TEST_F(SceneView, ColoursTellTheState) {
  Scene& scene = GetScene();
  INode* node = AddPoint({});
  node->SetWireColor(0x204060);
  const auto colour = [&] {
    RecordingWindow window;
    DisplayScene(window, scene, Plain());
    return PackColour(window.Primitives().at(0).state.colour);
  };
  EXPECT_EQ(colour(), 0x204060u);
  node->Freeze(true);
  EXPECT_EQ(colour(), kFrozenColour);
  scene.SelectNode(node);
  EXPECT_EQ(colour(), kSelectedColour);
}

TEST_F(SceneView, OffsetGoesBeforeTheNode) {
  Scene& scene = GetScene();
  INode* node = AddPoint({5, 0, 0});
  node->SetObjOffsetPos({0, 0, 3});
  RecordingWindow window;
  DisplayScene(window, scene, Plain());
  EXPECT_NEAR(Length(window.Bounds().Center() - Point3{5, 0, 3}), 0, 1e-5f);
  const Box3 bounds = SceneBounds(scene, Plain());
  EXPECT_NEAR(Length(bounds.Center() - Point3{5, 0, 3}), 0, 1e-5f);
}

// What is drawn lies in the box that framing goes by.
TEST_F(SceneView, BoundsHoldTheDrawing) {
  Scene& scene = GetScene();
  AddBone({-7, 2, 1}, 12);
  AddBone({4, 2, 1}, -6);
  INode* point = AddPoint({0, -3, 30}, 5);
  point->SetObjOffsetScale({{2, 1, 1}, {}});
  RecordingWindow window;
  DisplayScene(window, scene, Plain());
  Box3 drawn = window.Bounds(), both = SceneBounds(scene, Plain());
  const float before = both.Diagonal();
  both += drawn;
  EXPECT_NEAR(both.Diagonal(), before, 1e-4f);
}

class DrawingControl final : public Control {
 public:
  SClass_ID SuperClassID() const override { return kMatrixControlSuper; }
  Class_ID ClassID() const override { return {1, 2}; }
  void GetValue(TimeValue, ValueRef, Interval&, GetSetMethod) override {}
  void SetValue(TimeValue, ValueRef, bool, GetSetMethod) override {}
  void Display(TimeValue, INode* node, GraphicsWindow& view) override {
    if (!node->Selected()) return;
    view.Text({1, 2}, L"FIGURE MODE ON");
    view.Segment({0, 0, 0}, {0, 0, 50});
  }
};

TEST_F(SceneView, ControllersDrawInTheWorldButAreNotPicked) {
  Scene& scene = GetScene();
  INode* node = AddPoint({});
  node->SetTMController(new DrawingControl);
  RecordingWindow window;
  DisplayScene(window, scene, Plain());
  EXPECT_FALSE(window.HasText(L"FIGURE MODE ON"));
  scene.SelectNode(node);
  DisplayScene(window, scene, Plain());
  EXPECT_TRUE(window.HasText(L"FIGURE MODE ON"));
  EXPECT_EQ(window.Primitives().back().points.back(), (Point3{0, 0, 50}));
  Camera camera(ViewKind::Front, 100, 100);
  camera.LookAt({0, 0, 25}, 50);
  EXPECT_EQ(PickNode(scene, camera, {50, 20}, Plain()), nullptr);
}

TEST_F(SceneView, ClicksFindTheNode) {
  Scene& scene = GetScene();
  INode* far = AddBone({-5, 10, 0});
  INode* near = AddBone({-5, -10, 0});
  INode* point = AddPoint({30, 0, 0}, 6);
  Camera camera(ViewKind::Front, 200, 100);
  camera.LookAt({}, 50);  // two pixels a unit, the middle is (100, 50)
  EXPECT_EQ(PickNode(scene, camera, {100, 50}, Plain()), near);
  EXPECT_EQ(PickNode(scene, camera, {160, 50}, Plain()), point);
  EXPECT_EQ(PickNode(scene, camera, {40, 10}, Plain()), nullptr);
  near->Freeze(true);
  EXPECT_EQ(PickNode(scene, camera, {100, 50}, Plain()), far);
  far->Hide(true);
  EXPECT_EQ(PickNode(scene, camera, {100, 50}, Plain()), nullptr);
  near->Freeze(false), far->Hide(false);
  EXPECT_EQ(PickNodes(scene, camera, MakeHitRegion({0, 0}, {200, 100}), Plain()).size(), 3u);
  const auto enclosed = PickNodes(scene, camera, MakeHitRegion({150, 30}, {180, 70}, true), Plain());
  EXPECT_EQ(enclosed, std::vector<INode*>{point});
}

TEST_F(SceneView, SelectedGeometryHasBrackets) {
  Scene& scene = GetScene();
  INode* bone = AddBone({});
  SceneViewOptions options = Plain();
  RecordingWindow without, with;
  scene.SelectNode(bone);
  DisplayScene(without, scene, options);
  options.brackets = true;
  DisplayScene(with, scene, options);
  EXPECT_EQ(with.Primitives().size(), without.Primitives().size() + 24);
}

TEST_F(SceneView, HelperPartsFollowTheirSwitches) {
  struct Row {
    PointHelper::Param param;
    PrimitiveKind kind;
    int count;
  };
  constexpr Row kRows[] = {{PointHelper::kCross, PrimitiveKind::Polyline, 3},
                           {PointHelper::kBox, PrimitiveKind::Polyline, 12},
                           {PointHelper::kAxisTripod, PrimitiveKind::Polyline, 3},
                           {PointHelper::kCenterMarker, PrimitiveKind::Marker, 1}};
  for (const Row& row : kRows) {
    ReplaceScene(std::make_unique<Scene>());
    Scene& scene = GetScene();
    INode* node = AddPoint({});
    ParamBlock2* block = node->GetObjectRef()->GetParamBlock();
    block->SetValue(PointHelper::kCross, 0, 0);
    block->SetValue(row.param, 0, 1);
    RecordingWindow window;
    DisplayScene(window, scene, Plain());
    EXPECT_EQ(window.Count(row.kind), row.count) << row.param;
    EXPECT_EQ(static_cast<int>(window.Primitives().size()), row.count) << row.param;
    EXPECT_TRUE(window.Primitives()[0].state.depthTest);
  }
}

// A helper of 40 pixels is that wide however far the camera stands and however the node is scaled.
TEST_F(SceneView, ConstantScreenSize) {
  for (float span : {5.0f, 500.0f})
    for (float scale : {1.0f, 3.0f}) {
      ReplaceScene(std::make_unique<Scene>());
      Scene& scene = GetScene();
      INode* node = AddPoint({}, 40);
      node->GetObjectRef()->GetParamBlock()->SetValue(PointHelper::kConstantScreenSize, 0, 1);
      Matrix3 tm = ScaleMatrix({scale, scale, scale});
      node->SetNodeTM(0, tm);
      Camera camera(ViewKind::Front, 100, 100);
      camera.LookAt({}, span);
      RecordingWindow window(camera);
      DisplayScene(window, scene, Plain());
      const Box3 box = window.Bounds();
      EXPECT_NEAR((box.max.x - box.min.x) * camera.Focal(), 40, 0.01f) << span << ' ' << scale;
    }
}

TEST_F(SceneView, PictureShowsTheBoneInItsColour) {
  Scene& scene = GetScene();
  INode* bone = AddBone({-5, 0, 0});
  bone->SetWireColor(0x00C800);
  Camera camera(ViewKind::Front, 120, 80);
  EXPECT_TRUE(FrameScene(camera, scene, Plain()));
  const QImage image = DrawScene(scene, camera, Plain());
  int green = 0;
  for (int y = 0; y < 80; ++y)
    for (int x = 0; x < 120; ++x) {
      const QRgb pixel = image.pixel(x, y);
      green += qGreen(pixel) > 60 && qRed(pixel) < 10 && qBlue(pixel) < 10;
    }
  EXPECT_GT(green, 500);
}

}  // namespace
