// SPDX-License-Identifier: MIT
// The figure pose, mirror pairs, undo, and what scripts see.
#include "host/core/tab.h"
#include "host/view/recorder.h"
#include "plugin/controllers/mirror_pair.h"
#include "plugin/controllers/rig_control_fixture_test.h"

namespace tavrilon {
namespace {

using namespace corvanta;

class RigFigure : public RigControlTest {};

TEST_F(RigFigure, ModeShowsTheOffsetAndLeavesAnimationAlone) {
  const Made made = AddControl(L"a");
  made.control->SetOffsetTM(TransMatrix({0, 0, 5}));
  made.Move({1, 0, 0});
  made.control->SetFigureMode(true);
  EXPECT_TRUE(made.node->GetNodeTM(0) == TransMatrix({0, 0, 5}));
  Interval valid = FOREVER;
  Matrix3 m;
  made.control->GetValue(3, m, valid, CTRL_RELATIVE);
  EXPECT_TRUE(valid == FOREVER);
  made.Move({0, 2, 0});
  made.Rotate({{0, 0, 1}, 0.5f});
  EXPECT_TRUE(IsNear(Position(made), {1, 0, 0}, 1e-6f));
  EXPECT_TRUE(IsNear(made.control->GetOffsetPos(), {0, 2, 5}, 1e-6f));
  made.control->SetFigureMode(false);
  EXPECT_TRUE(IsNear(made.node->GetNodeTM(0).GetTrans(), Point3{1, 2, 5}, 1e-5f));
}

TEST_F(RigFigure, ModeIsOneForTheRig) {
  const Made main = AddControl(L"main");
  main.manager->SetValue(AnimationManagerMod::kRoot, 0, true);
  const Made hand = AddControl(L"hand", AddNode(L"bone", main.node));
  const Made stranger = AddControl(L"other");
  hand.control->SetFigureMode(true);
  EXPECT_TRUE(main.control->GetFigureMode() && hand.control->GetFigureMode());
  EXPECT_FALSE(stranger.control->GetFigureMode());
  const Ref<RigControl> loose(new RigControl);
  loose->SetFigureMode(true);
  EXPECT_TRUE(loose->GetFigureMode());
}

TEST_F(RigFigure, SetMatrixInFigureModeIsTheOffset) {
  const Made parent = AddControl(L"parent");
  parent.node->SetNodeTM(0, TransMatrix({10, 0, 0}));
  const Made made = AddControl(L"a", parent.node);
  made.Set(RigControl::kFigureMode, true);
  made.node->SetNodeTM(0, TransMatrix({12, 0, 0}));
  EXPECT_TRUE(IsNear(made.control->GetOffsetTM(), TransMatrix({2, 0, 0}), 1e-6f));
  EXPECT_TRUE(Position(made) == Point3());
}

TEST_F(RigFigure, StraightScaleInFigureModeScalesRows) {
  const Made made = AddControl(L"a");
  made.control->SetOffsetTM(OffsetFromParts({1, 2, 3}, EulerToQuat({0.5f, 0, 0}), {2, 2, 2}));
  made.Set(RigControl::kFigureMode, true);
  made.Set(RigControl::kStraightScale, true);
  made.Scale({1, 2, 3});
  EXPECT_TRUE(IsNear(made.control->GetOffsetScale(), {2, 4, 6}, 1e-5f));
  EXPECT_TRUE(IsNear(made.control->GetOffsetPos(), {1, 2, 3}, 1e-6f));
}

TEST_F(RigFigure, ResetTakesThePoseOver) {
  std::mt19937 rng(41);
  const Made made = AddControl(L"a");
  made.control->SetOffsetTM(RandomRigid(rng, 5));
  Matrix3 pose = RandomRigid(rng, 5);
  made.node->SetNodeTM(0, pose);
  const int steps = theHold.NumUndo();
  made.control->ResetFigure();
  EXPECT_TRUE(IsNear(made.node->GetNodeTM(0), pose, 1e-4f));
  EXPECT_TRUE(IsNear(made.control->GetOffsetTM(), pose, 1e-4f));
  EXPECT_TRUE(Position(made) == Point3());
  EXPECT_TRUE(Sub<Quat>(made.control->GetRotationController()) == Quat());
  ASSERT_EQ(theHold.NumUndo(), steps + 1);
  EXPECT_EQ(theHold.UndoName(), L"Reset Figure");
  theHold.Undo();
  EXPECT_FALSE(Position(made) == Point3());
  EXPECT_TRUE(IsNear(made.node->GetNodeTM(0), pose, 1e-4f));
  theHold.Redo();
  EXPECT_TRUE(Position(made) == Point3());
  EXPECT_TRUE(IsNear(made.node->GetNodeTM(0), pose, 1e-4f));
}

// --- mirror pairs

struct PairCase {
  const char* name;
  RefCoordSys system;
  bool bothSelected;
  const wchar_t* tags;
  bool flips;
};
TEST_F(RigFigure, PairSelectedTogetherMovesSymmetrically) {
  const PairCase kCases[] = {
      {"local", RefCoordSys::Local, true, L"r_hand", true},
      {"capital tag", RefCoordSys::Local, true, L"R_hand", true},
      {"world", RefCoordSys::World, true, L"r_hand", false},
      {"one selected", RefCoordSys::Local, false, L"r_hand", false},
      {"no side in the tag", RefCoordSys::Local, true, L"r", false},
  };
  for (const PairCase& c : kCases) {
    SCOPED_TRACE(c.name);
    const Pair pair = AddPair();
    pair.right.manager->SetValue(AnimationManagerMod::kTags, 0, c.tags);
    GetCOREInterface()->SetRefCoordSys(c.system);
    Select({pair.right.node});
    if (c.bothSelected) Select({pair.left.node, pair.right.node});
    for (const Made* made : {&pair.left, &pair.right}) {
      made->Move({1, 2, 3});
      made->Rotate({{0, 0, 1}, 0.5f});
    }
    EXPECT_TRUE(IsNear(Position(pair.left), {1, 2, 3}, 1e-6f));
    EXPECT_TRUE(IsNear(Position(pair.right), {c.flips ? -1.0f : 1.0f, 2, 3}, 1e-6f));
    const Quat left = Sub<Quat>(pair.left.control->GetRotationController());
    const Quat right = Sub<Quat>(pair.right.control->GetRotationController());
    EXPECT_TRUE(IsNear(right, c.flips ? Conjugate(left) : left, 1e-6f));
  }
}

TEST_F(RigFigure, MirroringCanBeTurnedOff) {
  const Pair pair = AddPair();
  GetCOREInterface()->SetRefCoordSys(RefCoordSys::Local);
  Select({pair.left.node, pair.right.node});
  {
    const MirrorPairOff off;
    EXPECT_EQ(MirrorAxesOf(pair.right.control, 0).position, -1);
  }
  EXPECT_EQ(MirrorAxesOf(pair.right.control, 0).position, 0);
}

TEST_F(RigFigure, OffsetEditIsCopiedToTheOtherSide) {
  const Pair pair = AddPair();
  pair.right.control->SetFigureMode(true);
  pair.left.control->SetFigureMode(true);
  Select({pair.left.node});
  pair.left.Move({1, 2, 3});
  EXPECT_TRUE(IsNear(pair.left.control->GetOffsetPos(), {1, 2, 3}, 1e-6f));
  EXPECT_TRUE(IsNear(pair.right.control->GetOffsetPos(), {-1, 2, 3}, 1e-6f));

  pair.left.control->SetOffsetRot(EulerToQuat({0.1f, 0.2f, 0.3f}));
  EXPECT_TRUE(IsNear(pair.right.control->GetOffsetRot(), EulerToQuat({0.1f, -0.2f, -0.3f}), 1e-5f));

  // Both selected: the tool sends each its own packet.
  Select({pair.left.node, pair.right.node});
  const Point3 before = pair.right.control->GetOffsetPos();
  pair.left.Send(SetXFormPacket::Move({5, 0, 0}));
  EXPECT_TRUE(pair.right.control->GetOffsetPos() == before);
}

TEST_F(RigFigure, ConnectionIsSwitchedOnBothSides) {
  const Pair pair = AddPair();
  pair.left.Set(RigControl::kConnectMirrorOffset, false);
  EXPECT_FALSE(pair.right.control->GetParamBlock()->GetBool(RigControl::kConnectMirrorOffset));
  pair.left.control->SetOffsetPos({1, 0, 0});
  EXPECT_TRUE(pair.right.control->GetOffsetPos() == Point3());
}

TEST_F(RigFigure, OffsetEditUndoesOnBothSides) {
  const Pair pair = AddPair();
  theHold.Begin();
  pair.left.control->SetOffsetPos({1, 0, 0});
  pair.left.control->SetOffsetPos({2, 0, 0});
  theHold.Accept(L"Edit");
  EXPECT_TRUE(IsNear(pair.right.node->GetNodeTM(0).GetTrans(), {-2, 0, 0}, 1e-6f));
  theHold.Undo();
  EXPECT_TRUE(pair.left.node->GetNodeTM(0) == Matrix3());
  EXPECT_TRUE(pair.right.node->GetNodeTM(0) == Matrix3());
  theHold.Redo();
  EXPECT_TRUE(IsNear(pair.right.node->GetNodeTM(0).GetTrans(), {-2, 0, 0}, 1e-6f));
}

// Writes without any message reach evaluation too: animation files are loaded that way.
TEST_F(RigFigure, SilentWritesCount) {
  const Made made = AddControl(L"a");
  ParamBlock2& block = *made.control->GetParamBlock();
  block.EnableNotifications(false);
  DisableRefMsgs();
  block.SetValue(RigControl::kOffsetTM, 0, TransMatrix({1, 2, 3}));
  EnableRefMsgs();
  block.EnableNotifications(true);
  Matrix3 m;
  Interval valid = FOREVER;
  made.control->GetValue(0, m, valid, CTRL_RELATIVE);
  EXPECT_TRUE(m == TransMatrix({1, 2, 3}));
}

// --- scripts and display

TEST_F(RigFigure, PublishedProperties) {
  const Made made = AddControl(L"a");
  FPInterface* interface = made.control->GetInterface(Interface_ID{0x45596D56, 0x1E847B58});
  ASSERT_NE(interface, nullptr);
  EXPECT_EQ(made.control->GetInterfaceAt(0), interface);
  EXPECT_STREQ(interface->GetDesc().scriptName, L"interface");
  const auto set = [&](const wchar_t* name, const FPValue& value) {
    FPValue result;
    const FPValue args[] = {value};
    return interface->Invoke(interface->GetDesc().FindProperty(name)->setId, 0, result, args);
  };
  const auto get = [&](const wchar_t* name) {
    FPValue result;
    EXPECT_EQ(interface->Invoke(interface->GetDesc().FindProperty(name)->getId, 0, result, {}), FPStatus::OK);
    return result;
  };
  const Quat rotation = EulerToQuat({0.3f, 0, 0});
  EXPECT_EQ(set(L"offset_pos", Point3{1, 2, 3}), FPStatus::OK);
  EXPECT_EQ(set(L"offset_rot", rotation), FPStatus::OK);
  EXPECT_EQ(set(L"offset_scale", Point3{1, 2, -3}), FPStatus::OK);
  EXPECT_TRUE(IsNear(*get(L"offset_pos").As<Point3>(), {1, 2, 3}, 1e-6f));
  EXPECT_TRUE(IsNear(*get(L"offset_rot").As<Quat>(), rotation, 1e-5f));
  EXPECT_TRUE(IsNear(*get(L"offset_scale").As<Point3>(), {1, 2, -3}, 1e-5f));
  EXPECT_EQ(set(L"offset_tm", Matrix3()), FPStatus::OK);
  EXPECT_TRUE(*get(L"offset_tm").As<Matrix3>() == Matrix3());
  EXPECT_EQ(set(L"offset_tm", 3), FPStatus::Failed);
  EXPECT_EQ(set(L"figure_mode", true), FPStatus::OK);
  EXPECT_TRUE(get(L"figure_mode").ToBool());
  FPValue result;
  EXPECT_THROW(interface->Invoke(IRigControl::kSetOffsetPos, 0, result, {}), CorvantaSDK::Util::OutOfRangeException);
  EXPECT_EQ(interface->Invoke(77, 0, result, {}), FPStatus::NoSuchFunction);
}

TEST_F(RigFigure, SelectedNodesSayThatTheModeIsOn) {
  const Made made = AddControl(L"a");
  const Camera camera(ViewKind::Front, 400, 200);
  const auto drawn = [&] {
    RecordingWindow window(camera);
    made.control->Display(0, made.node, window);
    return window.Primitives().size();
  };
  made.control->SetFigureMode(true);
  EXPECT_EQ(drawn(), 0u);
  Select({made.node});
  EXPECT_EQ(drawn(), 1u);
  made.control->SetFigureMode(false);
  EXPECT_EQ(drawn(), 0u);
}

}  // namespace
}  // namespace tavrilon
