// SPDX-License-Identifier: MIT
#include "control_test.h"
#include "host/core/class_desc.h"
#include "host/view/backdrop.h"

namespace tavrilon {
namespace {

using ControlDisplayTest = ControlTest<ControlShape>;

TEST_F(ControlDisplayTest, NoneDrawsNothing) {
  SetType(ShapeType::None);
  EXPECT_TRUE(Draw().empty());
  EXPECT_TRUE(control->GetLocalBoundBox(0, node).IsEmpty());
}

TEST_F(ControlDisplayTest, StrokesAreDrawnAtTheNode) {
  SetType(ShapeType::Rectangle);
  Matrix3 tm;
  tm.SetTrans({5, 6, 7});
  window = std::make_unique<RecordingWindow>();
  window->SetTransform(tm);
  control->Display(0, node, *window);
  ASSERT_EQ(window->Primitives().size(), 1u);
  EXPECT_TRUE(window->Primitives()[0].closed);
  EXPECT_LT(Length(window->Bounds().Center() - Point3{5, 6, 7}), 1e-4f);
}

TEST_F(ControlDisplayTest, OnTopMeansNoDepthTest) {
  EXPECT_TRUE(Draw()[0].state.depthTest);
  block().SetValue(kControlDrawOnTop, 0, true);
  for (const Primitive& p : Draw()) EXPECT_FALSE(p.state.depthTest);
  EXPECT_TRUE(window->State().depthTest) << "the window gets its state back";
}

TEST_F(ControlDisplayTest, TripodHasTheAxesColours) {
  SetType(ShapeType::AxisTripod);
  Box3 byColour[3];
  for (const Primitive& p : Draw())
    for (int i = 0; i < 3; ++i)
      if (PackColour(p.state.colour) == kAxisColours[i])
        for (const Point3& q : p.points) byColour[i] += q;
  for (int i = 0; i < 3; ++i) EXPECT_NEAR(byColour[i].max[i], 10, 1e-4f);
}

// A transform controller with the parameter that an IK/FK chain has.
class BlendControl final : public Control {
 public:
  BlendControl() { BindReference(0, new ParamBlock2(Desc())); }
  static const ParamBlockDesc2& Desc() {
    static const ParamRow rows[] = {{3, L"ikfk_blend", ParamType::Percent, kAnimatable, 1.0f, {0, 100}, L""}};
    static const ParamBlockDesc2 desc(0, L"params", rows);
    return desc;
  }
  SClass_ID SuperClassID() const override { return kMatrixControlSuper; }
  Class_ID ClassID() const override { return {0x7E57, 2}; }
  void GetValue(TimeValue, ValueRef, Interval&, GetSetMethod) override {}
  void SetValue(TimeValue, ValueRef, bool, GetSetMethod) override {}
  int NumRefs() const override { return 1; }
  ReferenceTarget* GetReference(int which) const override { return which == 0 ? block : nullptr; }
  ParamBlock2* block = nullptr;

 protected:
  void SetReference(int, ReferenceTarget* target) override { block = static_cast<ParamBlock2*>(target); }
};

TEST_F(ControlDisplayTest, LettersShowWhichModeLeads) {
  SetType(ShapeType::IKFK);
  const auto opacityAbove = [this](bool upper) {
    for (const Primitive& p : Draw())
      if ((p.points[0].y > 0) == upper) return p.state.opacity;
    return -1.0f;
  };
  EXPECT_EQ(opacityAbove(true), 1) << "without a chain IK leads";
  EXPECT_NEAR(opacityAbove(false), 0.35f, 1e-6f);
  auto* chain = new BlendControl;
  node->SetTMController(chain);
  const struct {
    float blend, upper, lower;
  } rows[] = {{1, 1, 0.35f}, {0.5f, 1, 0.35f}, {0.49f, 0.35f, 1}, {0, 0.35f, 1}};
  for (const auto& row : rows) {
    chain->block->SetValue(3, 0, row.blend);
    EXPECT_NEAR(opacityAbove(true), row.upper, 1e-6f) << row.blend;
    EXPECT_NEAR(opacityAbove(false), row.lower, 1e-6f) << row.blend;
  }
}

TEST_F(ControlDisplayTest, FacesTheCameraWhateverItsAxis) {
  SetType(ShapeType::Hand);
  block().SetValue(kControlFaceCamera, 0, true);
  for (const ViewKind kind : {ViewKind::Front, ViewKind::Side, ViewKind::Top, ViewKind::Perspective})
    for (int axis = 0; axis < 3; ++axis) {
      block().SetValue(kControlAxis, 0, axis);
      const Camera camera(kind);
      const std::vector<Primitive>& drawn = Draw(camera);
      float lowest = 100, highest = -100;
      for (const Point3& p : drawn[0].points) {
        EXPECT_NEAR(Dot(p, camera.Forward()), 0, 1e-4f);
        lowest = std::min(lowest, Dot(p, camera.Up())), highest = std::max(highest, Dot(p, camera.Up()));
      }
      EXPECT_NEAR(lowest, -10, 1e-3f) << "the wrist is below";
      EXPECT_GT(highest, 9);
      // The thumb stays on the viewer's left: the outline is turned, not mirrored.
      float left = 100, right = -100;
      for (const Point3& p : drawn[0].points)
        left = std::min(left, Dot(p, camera.Right())), right = std::max(right, Dot(p, camera.Right()));
      EXPECT_GT(-left, right);
    }
}

TEST_F(ControlDisplayTest, ConstantScreenSizeIsInPixels) {
  SetType(ShapeType::Rectangle);
  block().SetValue(kControlConstantScreenSize, 0, true);
  block().SetValue(kControlSize, 0, 40.0f);
  Camera camera(ViewKind::Top, 800, 600);
  for (const float zoom : {1.0f, 3.0f, 7.0f}) {
    camera.Zoom(zoom);
    const std::vector<Primitive>& drawn = Draw(camera);
    ScreenPoint a, b;
    ASSERT_TRUE(camera.WorldToScreen(drawn[0].points[0], a) && camera.WorldToScreen(drawn[0].points[1], b));
    EXPECT_NEAR(std::hypot(a.x - b.x, a.y - b.y), 40, 0.05f);  // pixels
  }
}

TEST_F(ControlDisplayTest, OffsetLineRunsFromGizmoToNode) {
  SetType(ShapeType::None);
  block().SetValue(kControlOffsetLine, 0, true);
  EXPECT_TRUE(Draw().empty()) << "the gizmo is at the origin";
  block().SetValue(kControlGizmo, 0, TransMatrix({3, 0, 4}));
  block().SetValue(kControlScale, 0, 2.0f);
  node->SetObjOffsetPos({0, 1, 0});
  const std::vector<Primitive>& drawn = Draw();
  ASSERT_EQ(drawn.size(), 1u);
  EXPECT_LT(Length(drawn[0].points[0] - Point3{6, 1, 8}), 1e-4f);
  EXPECT_LT(Length(drawn[0].points[1] - node->GetNodeTM(0).GetTrans()), 1e-4f);
}

TEST_F(ControlDisplayTest, GizmoLevelShowsItsAxes) {
  SetType(ShapeType::None);
  control->ActivateSubobjSel(kGizmoLevel);
  const std::vector<Primitive>& drawn = Draw();
  ASSERT_EQ(drawn.size(), 3u);
  for (const Primitive& p : drawn) EXPECT_EQ(p.state.subIndex, kGizmoPart);
}

}  // namespace
}  // namespace tavrilon
