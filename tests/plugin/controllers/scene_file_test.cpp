// SPDX-License-Identifier: MIT
// Rigs through scene files: what is loaded is what was saved, and saves to the same bytes.
#include "host/io/scene_file.h"

#include "plugin/controllers/rig_control_fixture_test.h"
#include "plugin/controllers/rotation_xyz.h"
#include "plugin/controllers/static_controls.h"
#include "plugin/controllers/step_float.h"
#include "plugin/frame/find.h"
#include "plugin/frame/holder_control.h"

namespace tavrilon {
namespace {

using namespace corvanta;

class RigSceneFile : public RigControlTest {
 protected:
  static std::vector<uint8_t> Bytes() {
    std::vector<uint8_t> bytes;
    EXPECT_EQ(SaveSceneToBytes(GetScene(), &bytes), L"");
    return bytes;
  }
};

TEST_F(RigSceneFile, LoadsWhatWasSaved) {
  std::mt19937 rng(51);
  const Pair pair = AddPair();
  const Made child = AddControl(L"child", pair.left.node);
  child.control->SetOffsetTM(RandomRigid(rng, 4));
  child.Set(RigControl::kStraightScale, true);
  pair.left.control->SetOffsetTM(RandomRigid(rng, 4));
  static_cast<RotationXYZ*>(child.control->GetRotationController())->SetOrder(kZXY);
  AnimateOn();
  child.Rotate({{1, 1, 0}, 0.5f});
  SetXFormPacket later = SetXFormPacket::Move({3, 0, 0});
  child.control->SetValue(500, later, true, CTRL_RELATIVE);
  AnimateOff();
  auto* rotation = static_cast<RotationXYZ*>(pair.right.control->GetRotationController());
  auto* step = new StepFloat;
  rotation->AssignController(step, 0);
  pair.right.control->SetScaleController(new StaticScale);
  pair.right.control->SetLocked(true);
  GetUIPanelHolder();

  const std::vector<uint8_t> saved = Bytes();
  const Matrix3 at0 = child.node->GetNodeTM(0), at250 = child.node->GetNodeTM(250);
  ASSERT_EQ(LoadSceneFromBytes(saved), L"");
  EXPECT_EQ(Bytes(), saved);

  INode* loaded = GetScene().GetINodeByName(L"child");
  ASSERT_NE(loaded, nullptr);
  EXPECT_TRUE(loaded->GetNodeTM(0) == at0);
  EXPECT_TRUE(loaded->GetNodeTM(250) == at250);
  RigControl* right = FindNodeRigControl(GetScene().GetINodeByName(L"r_hand"));
  ASSERT_NE(right, nullptr);
  EXPECT_TRUE(right->GetLocked());
  EXPECT_TRUE(IsOfClass(right->GetRotationController()->GetXController(), TavrilonClass::StepFloat));
  const AnimationManagerMod* manager = FindManagerMod(GetScene().GetINodeByName(L"l_hand"));
  ASSERT_NE(manager, nullptr);
  EXPECT_EQ(const_cast<AnimationManagerMod*>(manager)->GetParamBlock()->GetINode(AnimationManagerMod::kMirrorNode),
            GetScene().GetINodeByName(L"r_hand"));
  EXPECT_EQ(GetScene().GetTrackViewRootNode()->NumItems(), 1);
  GetUIPanelHolder();
  EXPECT_EQ(GetScene().GetTrackViewRootNode()->NumItems(), 1);
}

// Random edits in steps, all undone, give the scene that was there, and all redone the one that was made.
TEST_F(RigSceneFile, UndoGivesTheSameBytes) {
  std::mt19937 rng(52);
  const Pair pair = AddPair();
  const Made child = AddControl(L"child", pair.left.node);
  const std::vector<Made> all{pair.left, pair.right, child};
  theHold.Flush();
  const std::vector<uint8_t> before = Bytes();
  for (int i = 0; i < 60; ++i) {
    const Made& made = all[static_cast<size_t>(i) % 3];
    theHold.Begin();
    if (i % 5 == 0) AnimateOn();
    switch (rng() % 8) {
      case 0:
        made.Move(RandomPoint(rng, -1, 1));
        break;
      case 1:
        made.Rotate({RandomPoint(rng, -1, 1), 0.7f});
        break;
      case 2:
        made.Scale(RandomPoint(rng, 0.5f, 2));
        break;
      case 3:
        made.control->SetFigureMode(i % 2 == 0);
        break;
      case 4:
        made.control->SetOffsetTM(RandomRigid(rng, 3));
        break;
      case 5:
        made.control->ResetFigure();
        break;
      case 6:
        made.control->SetRotationController(new StaticRotation);
        break;
      default:
        made.node->SetNodeTM(0, RandomRigid(rng, 3));
        break;
    }
    if (i % 5 == 0) AnimateOff();
    theHold.Accept(L"Edit");
  }
  const std::vector<uint8_t> after = Bytes();
  while (theHold.NumUndo() > 0) ASSERT_TRUE(theHold.Undo());
  EXPECT_EQ(Bytes(), before);
  while (theHold.NumRedo() > 0) ASSERT_TRUE(theHold.Redo());
  EXPECT_EQ(Bytes(), after);
}

}  // namespace
}  // namespace tavrilon
