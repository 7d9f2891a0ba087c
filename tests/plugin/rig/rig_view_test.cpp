// SPDX-License-Identifier: MIT
// Points in the viewport: drawing, picking, selecting, moving.
#include "host/view/hit_test.h"
#include "host/view/recorder.h"
#include "rig_system_test.h"

namespace tavrilon {
namespace {

using namespace rig_param;

class RigView : public RigSystemTest {
 protected:
  RigView() {
    node->SetNodeTM(0, RotateZMatrix(.5f) * TransMatrix({10, 20, 30}));
    camera.FrameBox(rig->GetLocalBoundBox(0, node) * node->GetObjectTM(0));
    theHold.Flush();
  }
  void DrawInto(GraphicsWindow& view) {
    view.SetTransform(node->GetObjectTM(0));
    view.SetHitTag(node);
    rig->Display(0, node, view);
  }
  std::vector<HitRecord> Pick(const wchar_t* name) {
    const Point3 world = rig->GetPointPos(name) * rig->Size() * node->GetObjectTM(0);
    ScreenPoint screen;
    EXPECT_TRUE(camera.WorldToScreen(world, screen));
    HitTestWindow window(camera, MakeHitRegion(Point2{screen.x, screen.y}, 6));
    DrawInto(window);
    return window.Hits();
  }
  void Edit() { rig->ActivateSubobjSel(kRigPointLevel); }
  Point3 At(const wchar_t* name) { return rig->GetPointPos(name); }

  Camera camera{ViewKind::Front};
};

TEST_F(RigView, TemplatesAreDrawnAndRigsAreNot) {
  RecordingWindow window(camera);
  DrawInto(window);
  int crosses = 0, dots = 0;
  for (const Primitive& p : window.Primitives()) {
    EXPECT_FALSE(p.state.depthTest);
    crosses += p.kind == PrimitiveKind::Marker && p.marker == MarkerKind::Cross && p.size == 4;
    dots += p.kind == PrimitiveKind::Marker && p.marker == MarkerKind::Dot && p.size == 2;
  }
  EXPECT_EQ(dots, 6);
  EXPECT_EQ(crosses + dots, static_cast<int>(rig->Points().size()));
  EXPECT_NEAR(window.Bounds().Diagonal(), (rig->GetLocalBoundBox(0, node) * node->GetObjectTM(0)).Diagonal(), 20);
  block().SetValue(kDrawOnTop, 0, false);
  window.Clear();
  DrawInto(window);
  EXPECT_TRUE(window.Primitives().front().state.depthTest);
  for (const bool built : {false, true}) {
    built ? rig->CreateRig() : static_cast<void>(block().SetValue(kHelperSize, 0, 0.0f));
    window.Clear();
    DrawInto(window);
    EXPECT_TRUE(window.Primitives().empty());
    EXPECT_TRUE(rig->GetLocalBoundBox(0, node).IsEmpty());
  }
}

TEST_F(RigView, APointIsPickedInEditModeOnly) {
  ASSERT_FALSE(Pick(L"r_forearm_1").empty());
  EXPECT_EQ(Pick(L"r_forearm_1").front().subIndex, -1);
  Edit();
  const std::vector<HitRecord> hits = Pick(L"r_forearm_1");
  const auto isPoint = [&](const HitRecord& hit) { return hit.subIndex == rig->FindPoint(L"r_forearm_1"); };
  EXPECT_TRUE(std::any_of(hits.begin(), hits.end(), isPoint));
}

TEST_F(RigView, AClickSelectsThePointAndShowsItsComponent) {
  Edit();
  HitRecord hit;
  hit.subIndex = rig->FindPoint(L"r_thigh_1");
  rig->SelectSubComponent({&hit, 1}, true, true, false);
  EXPECT_EQ(rig->NumSelected(), 1);
  EXPECT_EQ(block().GetInt(kSelectedComponent), kLegPairs);
  rig->SelectSubComponent({&hit, 1}, true, true, true);
  EXPECT_EQ(rig->NumSelected(), 0) << "inverted";
  rig->SelectAll(kRigPointLevel);
  EXPECT_EQ(rig->NumSelected() + 6, static_cast<int>(rig->Points().size())) << "all but the in-between points";
  rig->ClearSelection(kRigPointLevel);
  EXPECT_EQ(rig->NumSelected(), 0);
  hit.subIndex = 100000;
  rig->SelectSubComponent({&hit, 1}, true, true, false);
  EXPECT_EQ(rig->NumSelected(), 0);
}

TEST_F(RigView, ToolsMoveThePointsAndNotTheNode) {
  Edit();
  HitRecord hit;
  hit.subIndex = rig->FindPoint(L"r_forearm_1");
  rig->SelectSubComponent({&hit, 1}, true, true, false);
  theHold.Flush();
  const Matrix3 tm = node->GetObjectTM(0);
  const Point3 right = At(L"r_forearm_1"), left = At(L"l_forearm_1"), finger = At(L"r_finger_2_2");
  theHold.Begin();
  rig->Move(0, tm, Matrix3(), {0, 0, 10}, false);
  theHold.Accept(L"Move");
  EXPECT_EQ(node->GetObjectTM(0), tm);
  // Through the node's matrix and back.
  EXPECT_LT(Length(At(L"r_forearm_1") - right - Point3{0, 0, .1f}), 1e-6f);
  EXPECT_LT(Length(At(L"l_forearm_1") - left - Point3{0, 0, .1f}), 1e-6f);
  EXPECT_LT(Length(At(L"r_finger_2_2") - finger - Point3{0, 0, .1f}), 1e-6f);
  ASSERT_TRUE(theHold.Undo());
  EXPECT_EQ(At(L"r_forearm_1"), right);
  // Half a turn about the forearm's own place: it stays, the hand points the other way.
  rig->Rotate(0, tm, tm, QuatFromAngAxis({{0, 0, 1}, kPi}), true);
  EXPECT_LT(Length(At(L"r_forearm_1") - right), 1e-6f);
  EXPECT_GT(At(L"r_hand_1").x, right.x);
  EXPECT_EQ(rig->GetSubObjectCenters(0, node).size(), 1u);
  block().SetValue(kHelperSize, 0, 0.0f);
  const RigPoints before = rig->Points();
  rig->Move(0, tm, Matrix3(), {0, 0, 10}, false);
  EXPECT_EQ(rig->Points(), before) << "a rig without size cannot be dragged";
}

}  // namespace
}  // namespace tavrilon
