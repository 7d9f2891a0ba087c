// SPDX-License-Identifier: MIT
// Switching between IK and FK: what is seen stays where it is.
#include "plugin/solvers/ikfk_rig_test.h"

namespace tavrilon {
namespace {

using namespace corvanta;
using namespace ikfk_chain;

// A limb that is animated in IK: goal, pole and clavicle move.
void Animate(const LimbRig& rig, std::mt19937& rng) {
  std::uniform_real_distribution<float> unit(-1, 1);
  AnimateOn();
  for (TimeValue t = 0; t <= 1200; t += 300) {
    const auto shift = [&](INode* node, float size) {
      Matrix3 tm = node->GetNodeTM(t);
      const Quat turn = Normalize(Quat{unit(rng), unit(rng), unit(rng), 4});
      const Point3 place = tm.GetTrans() + Point3{unit(rng), unit(rng), unit(rng)} * size;
      tm.SetTrans({});
      tm = tm * QuatMatrix(turn);
      tm.SetTrans(place);
      node->SetNodeTM(t, tm);
    };
    shift(rig.clavicle, 3);
    shift(rig.foot, 8);
    shift(rig.pole, 20);
  }
  AnimateOff();
}

struct MatchCase {
  const char* name;
  LimbRigOptions options;
  float soft = 0;
  int parentSpace = 1;
};
const MatchCase kCases[] = {
    {"arm with a pole", {3, true, false, 1, 1}},
    {"arm with a swivel", {3, false, false, 1, 2}},
    {"leg with a goal parent", {3, true, true, 1, 3}},
    {"swivel and goal parent", {3, false, true, 1, 4}},
    {"soft", {3, true, false, 1, 5}, 0.2f},
    {"swivel in the goal's space", {3, false, false, 1, 6}, 0, 0},
    {"small rig", {3, true, true, 0.1f, 7}},
    {"large rig, swivel", {3, false, false, 3, 8}},
    {"four joints, pole", {4, true, false, 1, 9}},
    {"four joints, swivel", {4, false, false, 1, 10}},
    {"five joints, goal parent", {5, true, true, 1, 11}},
    {"one bone, pole", {2, true, false, 1, 12}},
    {"one bone, swivel", {2, false, false, 1, 13}},
};

TEST_F(IKFKTest, SwitchingToFKAndBackMovesNothing) {
  for (const MatchCase& c : kCases) {
    SCOPED_TRACE(c.name);
    const LimbRig rig = Build(c.options);
    rig.Block().SetValue(kSoftIk, 0, c.soft);
    rig.Block().SetValue(kParentSpace, 0, c.parentSpace);
    Animate(rig, rng);
    float swivel = rig.Block().GetFloat(kSwivelAngle);
    for (TimeValue t = 0; t <= 1200; t += 100) {
      SCOPED_TRACE(t);
      GetCOREInterface()->SetTime(t);
      const std::vector<Matrix3> ik = Poses(rig.joints, t);
      const float slack = StraightSlack(rig, t);
      rig.chain->FK();
      EXPECT_EQ(rig.Block().GetFloat(kIkfkBlend, t), 0);
      ExpectSamePoses(Poses(rig.joints, t), ik, rig.Length(t), slack);
      rig.chain->IK();
      EXPECT_EQ(rig.Block().GetFloat(kIkfkBlend, t), 1);
      // A single bone's goal is its end only when it is as far away as the bone is long, which IK() sees to.
      ExpectSamePoses(Poses(rig.joints, t), ik, rig.Length(t), slack);
      const float now = rig.Block().GetFloat(kSwivelAngle, t);
      EXPECT_LE(std::abs(now - swivel), kPi) << "the swivel flipped";
      swivel = now;
    }
    GetCOREInterface()->SetTime(0);
  }
}

// From any FK pose IK finds handles that solve to it, unless the pose bends out of the limb's plane.
TEST_F(IKFKTest, IKTakesOnAnFKPose) {
  for (unsigned seed = 1; seed <= 30; ++seed) {
    SCOPED_TRACE(seed);
    const LimbRig rig = Build({3, seed % 2 == 0, seed % 3 == 0, 1, seed});
    rig.Block().SetValue(kIkfkBlend, 0, 0.0f);
    Matrix3 first = rig.joints[0]->GetNodeTM(0);
    const Point3 place = first.GetTrans();
    first = first.WithoutTrans() * QuatMatrix(Turn());
    first.SetTrans(place);
    rig.joints[0]->SetNodeTM(0, first);
    Matrix3 last = rig.End()->GetNodeTM(0);
    last = QuatMatrix(Turn()) * last;
    rig.End()->SetNodeTM(0, last);
    const std::vector<Matrix3> fk = Poses(rig.joints);
    rig.chain->IK();
    ExpectSamePoses(Poses(rig.joints), fk, rig.Length());
    EXPECT_LE(rig.Gap(), 1e-4f);
  }
}

TEST_F(IKFKTest, EachCommandIsOneStepThatUndoTakesBack) {
  struct Row {
    const char* name;
    void (*run)(IKFKChain&);
  };
  const Row kRows[] = {
      {"FK", [](IKFKChain& c) { c.FK(); }},
      {"IK", [](IKFKChain& c) { c.IK(); }},
      {"MatchFK", [](IKFKChain& c) { c.MatchFK(false); }},
      {"MatchFK toIK", [](IKFKChain& c) { c.MatchFK(true); }},
      {"MatchIK", [](IKFKChain& c) { c.MatchIK(false); }},
      {"MatchIK toFK", [](IKFKChain& c) { c.MatchIK(true); }},
      {"MatchManualStretch", [](IKFKChain& c) { c.MatchManualStretch(); }},
      {"MatchPreferredRotations", [](IKFKChain& c) { c.MatchPreferredRotations(); }},
  };
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.name);
    const LimbRig rig = Build({3, false, false, 1, 2});
    rig.Block().SetValue(kIkfkBlend, 0, 0.5f);
    MoveGoal(rig);
    const std::vector<Matrix3> before = Poses(rig.All());
    theHold.Flush();
    row.run(*rig.chain);
    ASSERT_EQ(theHold.NumUndo(), 1);
    EXPECT_EQ(theHold.UndoName(), L"IKFK Change");
    const std::vector<Matrix3> after = Poses(rig.All());
    ASSERT_TRUE(theHold.Undo());
    EXPECT_TRUE(Poses(rig.All()) == before);
    ASSERT_TRUE(theHold.Redo());
    EXPECT_TRUE(Poses(rig.All()) == after);
  }
}

TEST_F(IKFKTest, ManualStretchTakesOverTheAutomaticOne) {
  const LimbRig rig = Build();
  rig.Block().SetValue(kAutoStretch, 0, 1.0f);
  Matrix3 far = rig.goal->GetNodeTM(0);
  far.SetTrans(rig.joints[0]->GetNodeTM(0).GetTrans() + Point3{0, 0, 1.5f * rig.Length()});
  rig.goal->SetNodeTM(0, far);
  const std::vector<Matrix3> stretched = Poses(rig.joints);
  EXPECT_LE(rig.Gap(), 1e-4f);
  EXPECT_GT(rig.chain->GetStretch(0), 1.2f);
  rig.chain->MatchManualStretch();
  rig.Block().SetValue(kAutoStretch, 0, 0.0f);
  ExpectSamePoses(Poses(rig.joints), stretched, rig.Length());
}

// With auto match, FK follows the goal and the goal follows FK.
TEST_F(IKFKTest, AutoMatchKeepsBothSidesTogether) {
  for (const bool goalParent : {false, true}) {
    SCOPED_TRACE(goalParent);
    const LimbRig rig = Build({3, true, goalParent, 1, 4});
    rig.Block().SetValue(kAutoIkfkMatch, 0, true);
    INode* handle = goalParent ? rig.foot : rig.goal;
    // Towards the root, so that the goal stays in reach.
    const Point3 inward = (rig.joints[0]->GetNodeTM(0).GetTrans() - rig.goal->GetNodeTM(0).GetTrans()) * 0.3f;
    SetXFormPacket move = SetXFormPacket::Move(inward, handle->GetParentTM(0));
    handle->GetTMController()->SetValue(0, move);
    const std::vector<Matrix3> ik = Poses(rig.joints);
    EXPECT_LE(rig.Gap(), 1e-4f);
    rig.Block().SetValue(kIkfkBlend, 0, 0.0f);
    std::vector<Matrix3> fk = Poses(rig.joints);
    fk.back() = ik.back();  // the last joint's rotation is left out of the match
    ExpectSamePoses(fk, ik, rig.Length());

    rig.Block().SetValue(kIkfkBlend, 0, 1.0f);
    SetXFormPacket turn = SetXFormPacket::Rotate(AngAxis{{0, 0, 1}, 0.3f}, true, rig.joints[0]->GetParentTM(0),
                                                 rig.joints[0]->GetNodeTM(0));
    rig.joints[0]->GetTMController()->SetValue(0, turn);
    const std::vector<Matrix3> turned = Poses(rig.joints);
    EXPECT_GT(Turned(turned[0], ik[0]), 10);
    EXPECT_LE(rig.Gap(), 1e-4f);
    rig.Block().SetValue(kIkfkBlend, 0, 0.0f);
    ExpectSamePoses(Poses(rig.joints), turned, rig.Length());
  }
}

TEST_F(IKFKTest, AScaledGoalMatchesNothing) {
  const LimbRig rig = Build();
  rig.Block().SetValue(kAutoIkfkMatch, 0, true);
  MoveGoal(rig);
  Interval valid = FOREVER;
  const Matrix3 fk = FindIKFKControl(rig.joints[0])->GetFKValue(0, valid);
  SetXFormPacket scale = SetXFormPacket::Scale({2, 2, 2}, true, rig.goal->GetParentTM(0), rig.goal->GetNodeTM(0));
  rig.goal->GetTMController()->SetValue(0, scale);
  EXPECT_TRUE(FindIKFKControl(rig.joints[0])->GetFKValue(0, valid) == fk);
}

TEST_F(IKFKTest, ARotationSpaceHoldsTheJointWhileItsParentTurns) {
  const LimbRig rig = Build();
  rig.Block().SetValue(kIkfkBlend, 0, 0.0f);
  const Matrix3 rest = rig.joints[0]->GetNodeTM(0);
  rig.Block().SetValue(kRotationSpaceNode, 0, rig.main);
  EXPECT_LE(Turned(rig.joints[0]->GetNodeTM(0), rest), 0.01f) << "taking a space must not turn the joint";
  rig.clavicle->SetNodeTM(0, At({5, 0, 0}, Turn()) * rig.clavicle->GetNodeTM(0));
  EXPECT_LE(Turned(rig.joints[0]->GetNodeTM(0), rest), 0.01f);
  // A set matrix arrives, the space notwithstanding.
  Matrix3 wanted = rig.joints[0]->GetNodeTM(0);
  const Point3 place = wanted.GetTrans();
  wanted = wanted.WithoutTrans() * QuatMatrix(Turn());
  wanted.SetTrans(place);
  rig.joints[0]->SetNodeTM(0, wanted);
  ExpectSamePoses({rig.joints[0]->GetNodeTM(0)}, {wanted}, 1);
  // IK takes the pose on as it is seen.
  const std::vector<Matrix3> fk = Poses(rig.joints);
  rig.chain->IK();
  ExpectSamePoses(Poses(rig.joints), fk, rig.Length());
  rig.chain->FK();
  ExpectSamePoses(Poses(rig.joints), fk, rig.Length());
}

TEST_F(IKFKTest, SuspendedTheChainShowsFKAndWholePosesLandExactly) {
  const LimbRig rig = Build({4, true, false, 1, 3});
  MoveGoal(rig);
  rig.chain->SuspendMatch(true);
  std::vector<Matrix3> wanted;
  for (INode* joint : rig.joints) {
    Matrix3 tm = QuatMatrix(Turn()) * joint->GetNodeTM(0);
    joint->SetNodeTM(0, tm);
    wanted.push_back(tm);
  }
  ExpectSamePoses(Poses(rig.joints), wanted, rig.Length());
  rig.chain->SuspendMatch(false);
  EXPECT_LE(rig.Gap(), 1e-4f);
}

// After the rest pose was edited in figure mode, leaving it shows that pose, in FK and in IK.
TEST_F(IKFKTest, ARefittedRestDoesNotSnap) {
  for (const bool target : {true, false}) {
    for (const bool goalParent : {true, false}) {
      SCOPED_TRACE(testing::Message() << "target " << target << " goal parent " << goalParent);
      const LimbRig rig = Build({3, target, goalParent, 1, 6});
      for (INode* node : rig.All())
        if (RigControl* control = FindNodeRigControl(node)) control->ResetFigure();
      const auto figure = [&](bool on) {
        for (INode* node : rig.All())
          if (RigControl* control = FindNodeRigControl(node))
            control->GetParamBlock()->SetValue(RigControl::kFigureMode, 0, on);
      };
      figure(true);
      rig.joints[0]->SetNodeTM(0, At({3, 1, 2}, Turn()) * rig.joints[0]->GetNodeTM(0));
      rig.joints[1]->SetNodeTM(0, TransMatrix({8, 0, 0}) * rig.joints[1]->GetNodeTM(0));
      const std::vector<Matrix3> rest = Poses(rig.joints);
      rig.chain->RefitRest(0);
      figure(false);
      ExpectSamePoses(Poses(rig.joints), rest, rig.Length());
      rig.Block().SetValue(kIkfkBlend, 0, 0.0f);
      ExpectSamePoses(Poses(rig.joints), rest, rig.Length());
    }
  }
}

}  // namespace
}  // namespace tavrilon
