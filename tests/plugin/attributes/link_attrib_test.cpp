// SPDX-License-Identifier: MIT
#include "plugin/attributes/link_attrib.h"

#include "host/core/hold.h"
#include "host/io/scene_file.h"
#include "host/maths/euler.h"
#include "host/scene/core_interface.h"
#include "host/scene/point_helper.h"
#include "host/script/execute.h"
#include "plugin/constraints/parent_constraint.h"
#include "plugin/controllers/rig_control.h"
#include "support/test_objects.h"

namespace tavrilon {
namespace {

using namespace corvanta;

// Products of a few single-precision matrices with places up to 100: some 1e-5 of rounding; a blend of targets is
// split and composed again.
constexpr float kTolerance = 2e-3f;

float Distance(const Matrix3& a, const Matrix3& b) {
  float most = 0;
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 3; ++c) most = std::max(most, std::abs(a.row[r][c] - b.row[r][c]));
  return most;
}

// A hand below an arm, and two more spaces; all but the hand move all the time.
class LinkAttribTest : public testing_objects::SceneTest {
 protected:
  void SetUp() override {
    SceneTest::SetUp();
    RegisterTavrilonClasses();
    core().SetAnimRange({0, Frame(100)});
    arm = Moving(L"arm", 0.3f);
    chest = Moving(L"chest", -0.5f);
    head = Moving(L"head", 0.8f);
    hand = GetScene().CreateObjectNode(new PointHelper);
    hand->SetName(L"hand");
    arm->AttachChild(hand, false);
    hand->SetTMController(new RigControl);
    hand->SetNodeTM(0, arm->GetNodeTM(0) * TransMatrix({5, 6, 7}));
    AddAttrib(hand, TavrilonClass::LinkAttrib);
    links = FindLinkAttrib(hand);
    links->SetSpace(0, chest, L"Chest");
    links->SetSpace(2, head, L"Head");
  }
  static Interface& core() { return *GetCOREInterface(); }
  static TimeValue Frame(int frame) { return frame * core().GetTicksPerFrame(); }
  static INode* Moving(const WStr& name, float speed) {
    INode* node = GetScene().CreateObjectNode(new PointHelper);
    node->SetName(name);
    const AnimateScope animate;
    for (int frame = 0; frame <= 100; frame += 10) {
      const float a = speed * static_cast<float>(frame) / 20;
      Matrix3 tm = EulerToMatrix({a, -a, a / 2});
      tm.SetTrans({10 * a, 20, 30 * a});
      node->SetNodeTM(Frame(frame), tm);
    }
    return node;
  }
  bool LinkAt(int frame, int row) {
    core().SetTime(Frame(frame));
    return row < 0 ? links->AddWorld() : links->AddLink(row);
  }
  /// The hand's place at a frame, in the space of a node or of the world.
  Matrix3 In(INode* space, int frame) const {
    const Matrix3 tm = hand->GetNodeTM(Frame(frame));
    return space ? tm * Inverse(space->GetNodeTM(Frame(frame))) : tm;
  }
  /// The hand keeps its place in `space` from `first` to before `last`.
  void ExpectFollows(INode* space, int first, int last) const {
    const Matrix3 start = In(space, first);
    for (int frame = first; frame < last; frame += 3) EXPECT_LT(Distance(In(space, frame), start), kTolerance) << frame;
  }
  void ExpectSteadyAt(int frame) const {
    // Over two ticks a hand that moves by some units a frame goes a small part of one.
    EXPECT_LT(Distance(hand->GetNodeTM(Frame(frame) - 1), hand->GetNodeTM(Frame(frame))), 0.1f) << frame;
  }
  INode *arm = nullptr, *chest = nullptr, *head = nullptr, *hand = nullptr;
  LinkAttrib* links = nullptr;
};

TEST_F(LinkAttribTest, EachStretchHasItsSpaceAndTheHandStaysAtTheChanges) {
  std::vector<Matrix3> before;
  for (int frame = 0; frame < 100; ++frame) before.push_back(hand->GetNodeTM(Frame(frame)));
  ASSERT_TRUE(LinkAt(20, 0));
  ASSERT_TRUE(LinkAt(45, -1));
  ASSERT_TRUE(LinkAt(60, 2));
  ASSERT_TRUE(LinkAt(80, 0));
  for (int frame = 0; frame < 20; ++frame)
    EXPECT_LT(Distance(hand->GetNodeTM(Frame(frame)), before[static_cast<size_t>(frame)]), kTolerance) << frame;
  EXPECT_LT(Distance(hand->GetNodeTM(Frame(20)), before[20]), kTolerance);
  ExpectFollows(arm, 0, 20);
  ExpectFollows(chest, 20, 45);
  ExpectFollows(nullptr, 45, 60);
  ExpectFollows(head, 60, 80);
  ExpectFollows(chest, 80, 100);
  for (const int frame : {20, 45, 60, 80}) ExpectSteadyAt(frame);
  const struct {
    INode* node;
    int frame;
  } kRows[] = {{arm, 0}, {chest, 20}, {nullptr, 45}, {head, 60}, {chest, 80}};
  ASSERT_EQ(links->NumLinks(), 5);
  for (int i = 0; i < 5; ++i) {
    EXPECT_EQ(links->GetLink(i), kRows[i].node) << i;
    EXPECT_EQ(links->GetLinkTime(i), Frame(kRows[i].frame)) << i;
  }
}

TEST_F(LinkAttribTest, LinkAtATakenTimeReplaces) {
  LinkAt(20, 0);
  LinkAt(50, -1);
  const Matrix3 tm = hand->GetNodeTM(Frame(50));
  LinkAt(50, 2);
  EXPECT_EQ(links->NumLinks(), 3);
  EXPECT_EQ(links->GetLink(2), head);
  EXPECT_LT(Distance(hand->GetNodeTM(Frame(50)), tm), kTolerance);
  ExpectFollows(chest, 20, 50);
  ExpectFollows(head, 50, 100);
}

TEST_F(LinkAttribTest, DeletedLinkLeavesTheStretchToTheOneBefore) {
  LinkAt(20, 0);
  LinkAt(50, 2);
  const Matrix3 tm = hand->GetNodeTM(Frame(50));
  EXPECT_FALSE(links->DeleteLink(3));
  ASSERT_TRUE(links->DeleteLink(2));
  EXPECT_EQ(links->NumLinks(), 2);
  EXPECT_LT(Distance(hand->GetNodeTM(Frame(50)), tm), kTolerance);
  ExpectFollows(chest, 51, 100);
  ASSERT_TRUE(links->DeleteLink(1));
  ASSERT_TRUE(links->DeleteLink(0));
  EXPECT_EQ(links->NumLinks(), 0);
  EXPECT_FALSE(links->DeleteLink(0));
  ExpectFollows(arm, 51, 100);
}

TEST_F(LinkAttribTest, RefusesWhatCannotBe) {
  EXPECT_FALSE(LinkAt(20, 1)) << "a row without a name";
  EXPECT_FALSE(LinkAt(20, 7)) << "no row";
  EXPECT_FALSE(links->SetSpace(4, chest, L"Fifth"));
  EXPECT_FALSE(links->SetSpace(1, chest, L""));
  INode* finger = GetScene().CreateObjectNode(new PointHelper);
  hand->AttachChild(finger);
  links->SetSpace(1, finger, L"Finger");
  links->SetSpace(3, hand, L"Self");
  EXPECT_FALSE(LinkAt(20, 1)) << "depends on the control";
  EXPECT_FALSE(LinkAt(20, 3)) << "is the control";
  EXPECT_FALSE(IsOfClass(hand->GetTMController(), TavrilonClass::ParentConstraint)) << "nothing was made";
  GetLockedTrack(hand->GetTMController())->SetLocked(true);
  EXPECT_FALSE(LinkAt(20, 0)) << "locked";
  links->GetParamBlock()->SetValue(link_attrib::kLinkNode, 0, nullptr);
  EXPECT_FALSE(links->AddWorld()) << "nothing to serve";
  EXPECT_EQ(links->NumLinks(), 0);
}

TEST_F(LinkAttribTest, StepsUndoAndRedoByteForByte) {
  const auto bytes = [] {
    std::vector<uint8_t> out;
    EXPECT_EQ(SaveSceneToBytes(GetScene(), &out), L"");
    return out;
  };
  core().SetTime(Frame(30));
  std::vector<std::vector<uint8_t>> states = {bytes()};
  theHold.Flush();
  links->AddLink(0);
  states.push_back(bytes());
  links->AddWorld();
  states.push_back(bytes());
  links->DeleteLink(0);
  states.push_back(bytes());
  for (size_t i = states.size() - 1; i > 0; --i) {
    EXPECT_TRUE(bytes() == states[i]) << i;
    ASSERT_TRUE(theHold.Undo());
  }
  EXPECT_TRUE(bytes() == states[0]);
  for (size_t i = 1; i < states.size(); ++i) {
    ASSERT_TRUE(theHold.Redo());
    EXPECT_TRUE(bytes() == states[i]) << i;
  }
}

TEST_F(LinkAttribTest, SceneFileAndCloneKeepTheLinks) {
  LinkAt(20, 0);
  LinkAt(50, -1);
  std::vector<Matrix3> poses;
  for (int frame = 0; frame < 100; frame += 7) poses.push_back(hand->GetNodeTM(Frame(frame)));
  const std::vector<INode*> clones = GetScene().CloneNodes({arm, chest, head, hand});
  EXPECT_EQ(FindLinkAttrib(clones[3])->GetServed(), clones[3]);
  EXPECT_EQ(FindLinkAttrib(clones[3])->GetLink(1), clones[1]);
  EXPECT_LT(Distance(clones[3]->GetNodeTM(Frame(30)), hand->GetNodeTM(Frame(30))), kTolerance);
  std::vector<uint8_t> bytes;
  ASSERT_EQ(SaveSceneToBytes(GetScene(), &bytes), L"");
  ASSERT_EQ(LoadSceneFromBytes(bytes), L"");
  INode* loaded = GetScene().GetINodeByName(L"hand");
  EXPECT_EQ(FindLinkAttrib(loaded)->NumLinks(), 3);
  for (size_t i = 0; i < poses.size(); ++i)
    EXPECT_LT(Distance(loaded->GetNodeTM(Frame(static_cast<int>(i) * 7)), poses[i]), kTolerance);
}

TEST_F(LinkAttribTest, ScriptsLinkByRowsFromOne) {
  core().SetTime(Frame(20));
  const ScriptOutcome outcome = RunScript(
      L"made = $hand.AddLink 1\n"
      L"sliderTime = 50\n"
      L"$hand.AddWorld()\n"
      L"#(made, $hand.NumLinks(), ($hand.GetLink 2).name, $hand.GetLink 3, $hand.GetLinkFrame 3)",
      L"test");
  EXPECT_TRUE(outcome.ok) << ToUtf8(outcome.report);
  EXPECT_EQ(ToUtf8(outcome.text), "#(true, 3, \"chest\", undefined, 50)");
}

}  // namespace
}  // namespace tavrilon
