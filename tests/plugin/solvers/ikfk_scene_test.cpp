// SPDX-License-Identifier: MIT
// A chain among the things that happen to scenes: lists edited, undo, files, copies, deletions.
#include <algorithm>

#include "host/io/scene_file.h"
#include "host/view/recorder.h"
#include "plugin/solvers/ikfk_display_mod.h"
#include "plugin/solvers/ikfk_rig_test.h"

namespace tavrilon {
namespace {

using namespace corvanta;
using namespace ikfk_chain;

bool IsWrapped(const INode* node) { return FindIKFKControl(node) != nullptr; }

std::vector<uint8_t> Saved() {
  std::vector<uint8_t> bytes;
  EXPECT_EQ(SaveSceneToBytes(GetScene(), &bytes), L"");
  return bytes;
}

TEST_F(IKFKTest, NodesAreWrappedAndGetTheirControllersBack) {
  const LimbRig rig = Build({3, true, true});
  for (INode* node : rig.joints) EXPECT_TRUE(IsWrapped(node));
  EXPECT_EQ(FindIKFKControl(rig.joints[2])->Index(), 2);
  EXPECT_EQ(FindIKFKControl(rig.foot)->Type(), ikfk_control::kGoalParent);
  EXPECT_NE(FindNodeRigControl(rig.joints[1]), nullptr) << "the rig control is found below the wrapping";
  EXPECT_EQ(FindOwnerNode(FindNodeRigControl(rig.joints[1])), rig.joints[1]);

  Control* own = FindIKFKControl(rig.joints[0])->GetFK();
  rig.Block().Delete(kJoints, 0);
  EXPECT_EQ(rig.joints[0]->GetTMController(), own);
  EXPECT_EQ(FindIKFKControl(rig.joints[2])->Index(), 1);
  rig.Block().Insert(kJoints, 0, TargetValue(rig.joints[0]));
  EXPECT_EQ(FindIKFKControl(rig.joints[0])->GetFK(), own);
  EXPECT_EQ(FindIKFKControl(rig.joints[2])->Index(), 2);

  INode* other = AddControl(L"other goal", rig.foot, rig.goal->GetNodeTM(0));
  rig.Block().SetValue(kGoal, 0, other);
  EXPECT_FALSE(IsWrapped(rig.goal));
  EXPECT_TRUE(IsWrapped(other));
  rig.Block().SetValue(kTarget, 0, nullptr);
  EXPECT_FALSE(IsWrapped(rig.pole));
  rig.Block().SetValue(kGoalParent, 0, rig.pole);
  EXPECT_EQ(rig.Block().GetINode(kGoalParent), nullptr) << "the pole does not stand above the goal";
  EXPECT_FALSE(IsWrapped(rig.foot));
}

// A chain may be set up before it sits on a node.
TEST_F(IKFKTest, NodesAreWrappedWhenTheChainGetsItsNode) {
  INode *a = AddNode(L"a"), *b = AddNode(L"b", a), *goal = AddNode(L"goal"), *node = AddNode(L"chain");
  b->SetNodeTM(0, At({10, 0, 0}));
  auto* chain = new IKFKChain;
  for (INode* joint : {a, b}) chain->GetParamBlock()->Append(kJoints, joint);
  chain->GetParamBlock()->SetValue(kGoal, 0, goal);
  EXPECT_FALSE(IsWrapped(a));
  node->SetTMController(chain);
  for (const INode* wrapped : {a, b, goal}) EXPECT_TRUE(IsWrapped(wrapped));
  goal->SetNodeTM(0, At({0, 10, 0}));
  EXPECT_LE(Length(b->GetNodeTM(0).GetTrans() - Point3{0, 10, 0}), 1e-3f);
}

TEST_F(IKFKTest, LinesShowWhatBelongsTogether) {
  const LimbRig rig = Build();
  rig.Block().SetValue(kIkfkBlend, 0, 0.5f);
  const struct {
    INode* node;
    ParamID id;
    int display;
    bool selected, drawn;
    INode* to;
  } kRows[] = {
      {rig.goal, kDisplayGoal, 0, true, false, nullptr},
      {rig.goal, kDisplayGoal, 1, false, false, nullptr},
      {rig.goal, kDisplayGoal, 1, true, true, rig.joints[0]},
      {rig.pole, kDisplayTarget, 2, false, true, rig.joints[1]},
      {rig.joints[1], kDisplayTarget, 2, true, false, nullptr},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(testing::Message() << row.id << ' ' << row.display << ' ' << row.selected);
    rig.Block().SetValue(row.id, 0, row.display);
    GetScene().ClearNodeSelection();
    if (row.selected) GetScene().SelectNode(row.node);
    RecordingWindow window;
    Box3 box;
    row.node->GetTMController()->Display(0, row.node, window);
    row.node->GetTMController()->GetWorldBoundBox(0, row.node, box);
    ASSERT_EQ(window.Primitives().size(), row.drawn ? 1u : 0u);
    EXPECT_EQ(box.IsEmpty(), !row.drawn);
    if (!row.drawn) continue;
    const Primitive& line = window.Primitives()[0];
    EXPECT_LE(Length(line.points[0] - row.node->GetNodeTM(0).GetTrans()), 1e-4f);
    EXPECT_LE(Length(line.points[1] - row.to->GetNodeTM(0).GetTrans()), 1e-4f);
    EXPECT_NEAR(line.state.colour.r, (row.selected ? 1 : 0.496f) * 0.5f, 1e-5f) << "the colour goes by the blend";
  }
}

// Where a pose measures a control: a joint under its parent as it is solved, handles in the chain's parent.
TEST_F(IKFKTest, ReferenceFrames) {
  const LimbRig rig = Build();
  MoveGoal(rig);
  const auto frame = [](const INode* node) { return FindIKFKControl(node)->GetReferenceTM(0); };
  EXPECT_TRUE(frame(rig.joints[2]) == rig.joints[1]->GetNodeTM(0));
  EXPECT_TRUE(frame(rig.joints[0]) == rig.clavicle->GetNodeTM(0));
  Matrix3 handles = rig.clavicle->GetNodeTM(0);
  handles.SetTrans(rig.joints[0]->GetNodeTM(0).GetTrans());
  EXPECT_TRUE(frame(rig.goal) == handles);
  EXPECT_TRUE(frame(rig.pole) == handles);
}

TEST_F(IKFKTest, TheNodesBetweenGoalAndItsParentAreListed) {
  const LimbRig rig = Build();
  INode* pivot = AddControl(L"pivot", rig.foot, rig.foot->GetNodeTM(0));
  INode* toe = AddControl(L"toe", pivot, rig.foot->GetNodeTM(0));
  toe->AttachChild(rig.goal);
  rig.Block().SetValue(kGoalParent, 0, rig.foot);
  ASSERT_EQ(rig.Block().Count(kGoalInbetweenParents), 2);
  EXPECT_EQ(rig.Block().GetINode(kGoalInbetweenParents, 0, 0), pivot);
  EXPECT_EQ(rig.Block().GetINode(kGoalInbetweenParents, 0, 1), toe);
  // A pivot moves the goal and the limb with it, and IK on a turned foot still moves the foot only.
  const Point3 there = rig.goal->GetNodeTM(0).GetTrans();
  pivot->SetNodeTM(0, At({0.5f, 0.5f, 0}, Normalize(Quat{0, 0.02f, 0.02f, 1})) * pivot->GetNodeTM(0));
  EXPECT_GT(Length(rig.goal->GetNodeTM(0).GetTrans() - there), 0.1f);
  EXPECT_LE(rig.Gap(), 1e-4f);
  rig.chain->FK();
  rig.joints[0]->SetNodeTM(0, QuatMatrix(Normalize(Quat{0, 0, 0.2f, 1})) * rig.joints[0]->GetNodeTM(0));
  const Matrix3 turned = pivot->GetNodeTM(0) * Inverse(rig.foot->GetNodeTM(0));
  const std::vector<Matrix3> fk = Poses(rig.joints);
  rig.chain->IK();
  ExpectSamePoses(Poses(rig.joints), fk, rig.Length());
  ExpectSamePoses({pivot->GetNodeTM(0) * Inverse(rig.foot->GetNodeTM(0))}, {turned}, 10);
}

// What users and scripts may put into the slots: nothing that the limb would have to wait for itself.
TEST_F(IKFKTest, SlotsRefuseLoops) {
  const LimbRig rig = Build();
  INode* hand = AddNode(L"hand", rig.End());
  INode* above = AddNode(L"above", rig.main);
  const struct {
    ParamID id;
    INode* node;
    bool fits;
  } kRows[] = {
      {kGoal, rig.End(), false},
      {kGoal, hand, false},
      {kGoal, rig.goal, true},
      {kGoal, above, true},
      {kTarget, hand, false},
      {kTarget, rig.goal, true},
      {kTarget, rig.chainNode, false},
      {kRotationSpaceNode, hand, false},
      {kRotationSpaceNode, rig.main, true},
      {kJoints, hand, true},
      {kJoints, rig.foot, false},
      {kJoints, rig.main, false},
      {kGoalParent, rig.foot, true},
      {kGoalParent, above, false},
      {kGoalParent, rig.goal, false},
  };
  for (const auto& row : kRows)
    EXPECT_EQ(rig.Block().GetParamDef(row.id)->validator->Validate(rig.chain, row.id, row.node), row.fits)
        << row.id << ToUtf8(row.node->GetName());
}

// Random edits of a rig, all taken back: the scene saves as before, and shows the same matrices to the bit.
TEST_F(IKFKTest, UndoTakesEverythingBack) {
  for (unsigned seed = 1; seed <= 6; ++seed) {
    SCOPED_TRACE(seed);
    const LimbRig rig = Build({3, true, seed % 2 == 0, 1, seed});
    INode* spare = AddControl(L"spare", rig.main, rig.joints[1]->GetNodeTM(0));
    INode* other = AddControl(L"other", rig.main, rig.pole->GetNodeTM(0));
    const std::vector<Matrix3> before = Poses(rig.All());
    const std::vector<uint8_t> saved = Saved();
    theHold.Flush();
    std::uniform_int_distribution<int> kind(0, 9);
    for (int step = 0; step < 60; ++step) {
      theHold.Begin();
      INode* node = rig.All()[static_cast<size_t>(step) % rig.All().size()];
      const int joints = rig.Block().Count(kJoints);
      switch (kind(rng)) {
        case 0:
          rig.Block().Append(kJoints, spare);
          break;
        case 1:
          if (joints > 1) rig.Block().Delete(kJoints, step % joints);
          break;
        case 2:
          rig.Block().SetValue(kTarget, 0, step % 2 ? other : rig.pole);
          break;
        case 3:
          rig.Block().SetValue(kGoalParent, 0, step % 2 ? rig.foot : nullptr);
          break;
        case 4:
          rig.Block().SetValue(kRotationSpaceNode, 0, rig.main);
          break;
        case 5:
          rig.chain->FK();
          break;
        case 6:
          rig.chain->IK();
          break;
        case 7:
          if (FindIKFKControl(rig.goal)) FindIKFKControl(rig.goal)->GetLink()->AddTarget(rig.main, step);
          break;
        case 8:
          if (node->IsInScene() && node != rig.main) GetScene().DeleteNode(node);
          break;
        default:
          node->SetNodeTM(0, At(Place(3), Turn()) * node->GetNodeTM(0));
      }
      Poses(rig.All());
      theHold.Accept(L"edit");
    }
    while (theHold.Undo()) Poses(rig.All());
    EXPECT_TRUE(Poses(rig.All()) == before);
    EXPECT_TRUE(Saved() == saved);
    // Redo and undo again walk the same way.
    while (theHold.Redo()) Poses(rig.All());
    while (theHold.Undo()) {
    }
    EXPECT_TRUE(Poses(rig.All()) == before);
    theHold.Flush();
  }
}

TEST_F(IKFKTest, AFileBringsItBackWorking) {
  const LimbRig rig = Build({4, true, true, 1, 2});
  FindIKFKControl(rig.foot)->GetLink()->AddTarget(rig.clavicle, 10);
  FindIKFKControl(rig.foot)->GetLink()->AddWorld(20);
  const std::vector<TimeValue> times{0, 2100, 5000};
  std::vector<std::vector<Matrix3>> before;
  for (const TimeValue t : times) before.push_back(Poses(rig.joints, t));
  const std::vector<uint8_t> saved = Saved();
  ASSERT_EQ(LoadSceneFromBytes(saved), L"");
  IKFKChain* chain = FindIKFKChain(GetScene().GetINodeByName(L"chain"));
  ASSERT_NE(chain, nullptr);
  std::vector<INode*> joints;
  for (int i = 0; i < 4; ++i) joints.push_back(chain->GetParamBlock()->GetINode(kJoints, 0, i));
  for (size_t i = 0; i < times.size(); ++i) EXPECT_TRUE(Poses(joints, times[i]) == before[i]) << times[i];
  // The loaded chain knows what it has wrapped.
  chain->GetParamBlock()->Delete(kJoints, 3);
  EXPECT_FALSE(IsWrapped(joints[3]));
}

TEST_F(IKFKTest, ACopyDrivesItself) {
  const LimbRig rig = Build({3, true, true});
  FindIKFKControl(rig.foot)->GetLink()->AddTarget(rig.main, 0);
  std::vector<INode*> sources = rig.All();
  std::reverse(sources.begin(), sources.end());
  std::vector<INode*> copies = GetScene().CloneNodes(sources);
  ASSERT_EQ(copies.size(), sources.size());
  std::reverse(copies.begin(), copies.end());
  const std::vector<Matrix3> original = Poses(rig.All());
  EXPECT_TRUE(Poses(copies) == original);
  INode* main = copies[0];
  main->SetNodeTM(0, At({100, 0, 0}) * main->GetNodeTM(0));
  INode* foot = copies[2];
  foot->SetNodeTM(0, At({3, 2, 1}) * foot->GetNodeTM(0));
  EXPECT_TRUE(Poses(rig.All()) == original) << "the copy moved the original";
  const IKFKChain* chain = FindIKFKChain(copies[5]);
  EXPECT_EQ(chain->GetWeakNode(kGoal), copies[3]);
  EXPECT_LE(Length(copies.back()->GetNodeTM(0).GetTrans() - copies[3]->GetNodeTM(0).GetTrans()), 1e-2f);
  EXPECT_EQ(FindIKFKControl(foot)->GetLink()->GetNode(0), main);
}

// A copy of a joint or goal without its chain is a node of its own; a copy of the chain leaves the original's nodes be.
TEST_F(IKFKTest, CopiesOfPartsStandAlone) {
  const LimbRig rig = Build();
  INode* joint = GetScene().CloneNodes({rig.joints[1]})[0];
  INode* goal = GetScene().CloneNodes({rig.goal})[0];
  const std::vector<Matrix3> original = Poses(rig.All());
  joint->SetNodeTM(0, At({7, 0, 0}) * joint->GetNodeTM(0));
  goal->SetNodeTM(0, At({7, 0, 0}));
  EXPECT_TRUE(Poses(rig.All()) == original);
  EXPECT_LE(Length(goal->GetNodeTM(0).GetTrans() - Point3{7, 0, 0}), 1e-3f);
  INode* chainNode = GetScene().CloneNodes({rig.chainNode})[0];
  FindIKFKChain(chainNode)->GetParamBlock()->SetCount(kJoints, 0);
  EXPECT_TRUE(IsWrapped(rig.joints[0]));
  EXPECT_TRUE(Poses(rig.All()) == original);
}

TEST_F(IKFKTest, AnyNodeMayBeDeleted) {
  for (size_t i = 0; i < 9; ++i) {
    for (const bool undo : {false, true}) {
      SCOPED_TRACE(testing::Message() << i << (undo ? " with undo" : ""));
      const LimbRig rig = Build({3, true, true});
      std::vector<INode*> left = rig.All();
      const std::vector<Matrix3> before = Poses(left);
      INode* gone = left[i];
      left.erase(left.begin() + static_cast<std::ptrdiff_t>(i));
      theHold.Flush();
      if (undo) theHold.Begin();
      GetScene().DeleteNode(gone);
      for (const Matrix3& tm : Poses(left)) EXPECT_TRUE(std::isfinite(tm.row[3].x));
      if (rig.chainNode != gone) {
        rig.chain->FK();
        rig.chain->IK();
      }
      if (!undo) continue;
      theHold.Accept(L"delete");
      ASSERT_TRUE(theHold.Undo());
      EXPECT_TRUE(Poses(rig.All()) == before);
      ASSERT_TRUE(theHold.Redo());
      Poses(left);
    }
  }
}

TEST_F(IKFKTest, WithoutItsChainAJointIsItsFK) {
  const LimbRig rig = Build();
  rig.joints[0]->SetNodeTM(0, At({}, Turn()) * rig.joints[0]->GetNodeTM(0));
  rig.Block().SetValue(kIkfkBlend, 0, 0.0f);
  const std::vector<Matrix3> fk = Poses(rig.joints);
  rig.Block().SetValue(kIkfkBlend, 0, 1.0f);
  GetScene().DeleteNode(rig.chainNode);
  ExpectSamePoses(Poses(rig.joints), fk, 10);
}

TEST_F(IKFKTest, KeysLocksAndPartsAreThoseOfTheFKController) {
  const LimbRig rig = Build();
  IKFKControl* control = FindIKFKControl(rig.goal);
  Control* fk = control->GetFK();
  AnimateOn();
  rig.goal->SetNodeTM(600, At({1, 2, 3}));
  AnimateOff();
  EXPECT_GT(control->NumKeys(), 0);
  EXPECT_EQ(control->NumKeys(), fk->NumKeys());
  EXPECT_EQ(control->GetPositionController(), fk->GetPositionController());
  EXPECT_EQ(control->GetScaleController(), fk->GetScaleController());
  GetLockedTrack(control)->SetLocked(true);
  EXPECT_TRUE(GetLockedTrack(fk)->GetLocked());
  const Matrix3 locked = rig.goal->GetNodeTM(0);
  rig.goal->SetNodeTM(0, At({50, 0, 0}));
  EXPECT_TRUE(rig.goal->GetNodeTM(0) == locked);
}

// A first joint that changes its parent keeps its place, in FK and in IK.
TEST_F(IKFKTest, ANewParentMovesNothing) {
  const LimbRig rig = Build({3, false, false});
  INode* other = AddControl(L"other", nullptr, At(Place(30), Turn()));
  const std::vector<Matrix3> ik = Poses(rig.joints);
  rig.Block().SetValue(kIkfkBlend, 0, 0.0f);
  rig.joints[0]->SetNodeTM(0, QuatMatrix(Turn()) * rig.joints[0]->GetNodeTM(0));
  const std::vector<Matrix3> fk = Poses(rig.joints);
  ASSERT_TRUE(other->AttachChild(rig.joints[0]));
  ExpectSamePoses(Poses(rig.joints), fk, rig.Length());
  rig.Block().SetValue(kIkfkBlend, 0, 1.0f);
  ExpectSamePoses(Poses(rig.joints), ik, rig.Length());
}

TEST_F(IKFKTest, HelpersFadeWithTheBlend) {
  const LimbRig rig = Build();
  rig.Block().SetValue(kIkfkBlend, 0, 0.25f);
  INode* stray = AddNode(L"stray");
  for (INode* node : {rig.goal, rig.joints[0], stray}) node->AddModifier(new IKFKDisplayMod);
  const struct {
    INode* node;
    float weight;
  } kRows[] = {{rig.goal, 0.25f}, {rig.joints[0], 0.75f}, {stray, 0.5f}};
  for (const auto& row : kRows) {
    const Box3 plain = row.node->GetBaseObject()->GetLocalBoundBox(0, row.node);
    const Box3 shown = row.node->GetObjectRef()->GetLocalBoundBox(0, row.node);
    EXPECT_NEAR(shown.Diagonal(), plain.Diagonal() * row.weight, 1e-4f);
    EXPECT_LE(Length(shown.Center() - plain.Center()), 1e-4f);
  }
  rig.Block().SetValue(kAffectHelpersDisplay, 0, false);
  Interval valid = FOREVER;
  EXPECT_EQ(HelperWeight(rig.goal, 0, valid), 1);
}

}  // namespace
}  // namespace tavrilon
