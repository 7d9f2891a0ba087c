// SPDX-License-Identifier: MIT
#include "plugin/solvers/ikfk_link.h"

#include "host/core/remap.h"
#include "plugin/solvers/ikfk_rig_test.h"

namespace tavrilon {
namespace {

using namespace corvanta;

class IKFKLinkTest : public IKFKTest {
 protected:
  void SetUp() override {
    IKFKTest::SetUp();
    rig = Build();
    link = FindIKFKControl(rig.goal)->GetLink();
    a = AddNode(L"a");
    b = AddNode(L"b");
    ticks = GetCOREInterface()->GetTicksPerFrame();
    AnimateOn();
    for (INode* node : {a, b})
      for (TimeValue t = 0; t <= 60 * ticks; t += 20 * ticks) node->SetNodeTM(t, At(Place(40), Turn()));
    AnimateOff();
  }
  TimeValue Frame(int frame) const { return frame * ticks; }
  Matrix3 Goal(int frame) const { return rig.goal->GetNodeTM(Frame(frame)); }
  static void ExpectSame(const Matrix3& x, const Matrix3& y) { ExpectSamePoses({x}, {y}, 100); }

  LimbRig rig;
  IKFKLink* link = nullptr;
  INode *a = nullptr, *b = nullptr;
  int ticks = 200;
};

TEST_F(IKFKLinkTest, TheNodeStaysAtEverySwitchAndFollowsInBetween) {
  const Matrix3 before = Goal(10);
  ASSERT_TRUE(link->AddTarget(a, 10));
  ExpectSame(Goal(10), before);
  const Matrix3 atA = Goal(30) * Inverse(a->GetNodeTM(Frame(30)));
  ExpectSame(Goal(10) * Inverse(a->GetNodeTM(Frame(10))), atA);
  ASSERT_TRUE(link->AddTarget(b, 25));
  ASSERT_EQ(link->AddWorld(40), 1);
  ASSERT_TRUE(link->AddTarget(a, 50));
  EXPECT_EQ(link->GetNumTargets(), 4);
  EXPECT_EQ(link->GetNode(2), nullptr);
  for (const int frame : {25, 40, 50}) {
    SCOPED_TRACE(frame);
    const TimeValue t = Frame(frame);
    // A tick before the switch the targets have moved by next to nothing.
    const Matrix3 last = rig.goal->GetNodeTM(t - 1), next = rig.goal->GetNodeTM(t);
    EXPECT_LE(Length(last.GetTrans() - next.GetTrans()), 0.1f);
    EXPECT_LE(Turned(last, next), 0.5f);
  }
  ExpectSame(Goal(40), Goal(49));
  ExpectSame(Goal(25) * Inverse(b->GetNodeTM(Frame(25))), Goal(39) * Inverse(b->GetNodeTM(Frame(39))));
  // The first link serves before its start, too.
  ExpectSame(Goal(0) * Inverse(a->GetNodeTM(Frame(0))), Goal(10) * Inverse(a->GetNodeTM(Frame(10))));
  EXPECT_LE(rig.Gap(Frame(10)), 1e-4f);
}

TEST_F(IKFKLinkTest, ALinkAtATimeThatIsTakenReplacesTheTarget) {
  link->AddTarget(a, 10);
  link->AddTarget(b, 20);
  const Matrix3 before = Goal(20);
  EXPECT_TRUE(link->AddTarget(a, 20));
  EXPECT_EQ(link->GetNumTargets(), 2);
  EXPECT_EQ(link->GetNode(1), a);
  ExpectSame(Goal(20), before);
}

TEST_F(IKFKLinkTest, DeletingAllHandsTheNodeBack) {
  link->AddTarget(a, 10);
  link->AddTarget(b, 20);
  GetCOREInterface()->SetTime(Frame(33));
  const Matrix3 at20 = Goal(20);
  EXPECT_TRUE(link->DeleteTarget(0));
  ExpectSame(Goal(20), at20);
  const Matrix3 now = Goal(33);
  EXPECT_TRUE(link->DeleteTarget(0));
  EXPECT_EQ(link->NumLinks(), 0);
  ExpectSame(Goal(33), now);
  ExpectSame(Goal(0), now);  // under the real parent, which does not move
  EXPECT_FALSE(link->DeleteTarget(0));
}

// Keys of the goal stay where they were in the world, whatever happens to the links.
TEST_F(IKFKLinkTest, KeyedPlacesStay) {
  AnimateOn();
  for (const int frame : {0, 15, 30, 45, 60}) rig.goal->SetNodeTM(Frame(frame), At(Place(60), Turn()));
  AnimateOff();
  std::vector<Matrix3> keys;
  for (const int frame : {0, 15, 30, 45, 60}) keys.push_back(Goal(frame));
  const auto check = [&](const char* what) {
    SCOPED_TRACE(what);
    int i = 0;
    for (const int frame : {0, 15, 30, 45, 60}) ExpectSame(Goal(frame), keys[static_cast<size_t>(i++)]);
  };
  link->AddTarget(a, 10);
  check("first");
  link->AddTarget(b, 40);
  check("second");
  link->AddWorld(20);
  check("world between");
  link->SetFrameNo(1, 50);
  check("moved past the last");
  EXPECT_EQ(link->GetFrameNo(2), 50);
  EXPECT_EQ(link->GetNode(2), nullptr);
  link->DeleteTarget(0);
  check("first gone");
  link->DeleteTime({Frame(35), Frame(42)}, 0);
  check("time cut");
  EXPECT_EQ(link->NumLinks(), 1);
  EXPECT_EQ(link->GetFrameNo(0), 43);
}

TEST_F(IKFKLinkTest, LinksAreKeys) {
  for (const int frame : {10, 20, 30}) link->AddTarget(frame == 20 ? b : a, frame);
  EXPECT_EQ(link->NumKeys(), 3);
  EXPECT_EQ(link->GetKeyTime(1), Frame(20));
  EXPECT_EQ(link->GetKeyIndex(Frame(30)), 2);
  EXPECT_EQ(link->GetKeyIndex(Frame(31)), -1);
  float active = 0;
  const struct {
    int frame;
    float index;
  } kRows[] = {{0, 0}, {10, 0}, {19, 0}, {20, 1}, {30, 2}, {99, 2}};
  for (const auto& row : kRows) {
    Interval valid = FOREVER;
    link->GetValue(Frame(row.frame), active, valid, CTRL_ABSOLUTE);
    EXPECT_EQ(active, row.index) << row.frame;
  }
  link->SelectKeys({Frame(15), Frame(25)}, true);
  EXPECT_TRUE(link->IsKeySelected(1));
  EXPECT_FALSE(link->IsKeySelected(0));
  struct Later : TimeMap {
    TimeValue Map(TimeValue t) const override { return t + 1000; }
  };
  link->MapKeys(Later(), KEYMAP_SELECTED);
  EXPECT_EQ(link->GetKeyTime(1), Frame(20) + 1000);
  EXPECT_TRUE(link->IsKeySelected(1));
  link->ReverseTime({0, Frame(40)}, 0);
  EXPECT_EQ(link->GetNode(1), b);
  EXPECT_EQ(link->GetKeyTime(0), Frame(10));
  link->DeleteKeys(true);
  EXPECT_EQ(link->NumKeys(), 2);
  link->CopyKeysFromTime(Frame(10), Frame(50));
  EXPECT_EQ(link->NumKeys(), 3);
  link->DeleteKeyAtTime(Frame(50));
  EXPECT_EQ(link->NumKeys(), 2);
}

TEST_F(IKFKLinkTest, RefusesLoopsAndBadNumbers) {
  EXPECT_FALSE(link->AddTarget(rig.End(), 0)) << "the joint hangs on the goal";
  EXPECT_FALSE(link->AddTarget(rig.goal, 0));
  EXPECT_FALSE(link->SetFrameNo(0, 3));
  EXPECT_FALSE(link->DeleteTarget(-1));
  EXPECT_EQ(link->GetNode(4), nullptr);
  EXPECT_EQ(link->GetFrameNo(4), 0);
  // The pole may follow the hand's goal, and then not the other way round.
  EXPECT_TRUE(FindIKFKControl(rig.pole)->GetLink()->AddTarget(rig.goal, 0));
  EXPECT_FALSE(link->AddTarget(rig.pole, 0));
  const Matrix3 pole = rig.pole->GetNodeTM(0);
  rig.goal->SetNodeTM(0, TransMatrix({5, 0, 0}) * rig.goal->GetNodeTM(0));
  EXPECT_GT(Length(rig.pole->GetNodeTM(0).GetTrans() - pole.GetTrans()), 1);
}

TEST_F(IKFKLinkTest, EachEditIsOneStep) {
  const Matrix3 start = Goal(30);
  theHold.Flush();
  link->AddTarget(a, 10);
  link->AddTarget(b, 20);
  link->SetFrameNo(1, 25);
  link->DeleteTarget(0);
  ASSERT_EQ(theHold.NumUndo(), 4);
  EXPECT_EQ(theHold.UndoName(), L"IKFK Change");
  const Matrix3 end = Goal(30);
  while (theHold.Undo()) {
  }
  EXPECT_TRUE(Goal(30) == start);
  EXPECT_EQ(link->NumLinks(), 0);
  while (theHold.Redo()) {
  }
  EXPECT_TRUE(Goal(30) == end);
}

TEST_F(IKFKLinkTest, AGoneTargetIsTheWorld) {
  link->AddTarget(a, 10);
  const Matrix3 linked = Goal(30);
  theHold.Begin();
  GetScene().DeleteNode(a);
  theHold.Accept(L"delete");
  EXPECT_EQ(link->GetNode(0), nullptr);
  EXPECT_EQ(link->NumLinks(), 1);
  Goal(30);
  ASSERT_TRUE(theHold.Undo());
  EXPECT_TRUE(Goal(30) == linked);
}

// An active goal parent takes the goal's link out of play; the parent's own link acts.
TEST_F(IKFKLinkTest, UnderAGoalParentTheParentsLinkActs) {
  link->AddTarget(a, 0);
  rig.Block().SetValue(ikfk_chain::kGoalParent, 0, rig.foot);
  EXPECT_FALSE(FindIKFKControl(rig.goal)->LinkActive());
  EXPECT_EQ(FindIKFKControl(rig.goal)->SubAnim(IKFKControl::kLinkRef), nullptr);
  const Matrix3 under = Goal(40) * Inverse(rig.foot->GetNodeTM(Frame(40)));
  ASSERT_TRUE(FindIKFKControl(rig.foot)->GetLink()->AddTarget(b, 10));
  ExpectSame(Goal(50) * Inverse(rig.foot->GetNodeTM(Frame(50))), under);
  EXPECT_GT(Length(Goal(50).GetTrans() - Goal(20).GetTrans()), 1);
}

}  // namespace
}  // namespace tavrilon
