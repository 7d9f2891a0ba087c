// SPDX-License-Identifier: MIT
#include "plugin/solvers/ikfk_chain.h"

#include "plugin/solvers/ikfk_rig_test.h"
#include "support/alloc_counter.h"

namespace tavrilon {
namespace {

using namespace corvanta;
using namespace ikfk_chain;

TEST_F(IKFKTest, TheEndComesToTheGoal) {
  for (unsigned seed = 1; seed <= 60; ++seed) {
    const int joints = 2 + static_cast<int>(seed % 4);
    const float scale = seed % 3 == 0 ? 0.4f : 1;
    const LimbRig rig = Build({joints, seed % 2 == 0, seed % 5 == 0, scale, seed});
    SCOPED_TRACE(testing::Message() << joints << " joints, seed " << seed);
    if (joints == 2) rig.Block().SetValue(kAutoStretch, 0, 1.0f);
    for (int move = 0; move < 3; ++move) {
      if (move > 0) MoveGoal(rig);
      // A search by bisection over floats; the analytic limbs are far better.
      EXPECT_LE(rig.Gap(), 1e-4f) << "move " << move;
      EXPECT_LE(Turned(rig.End()->GetNodeTM(0), rig.goal->GetNodeTM(0)), 0.01f);
    }
  }
}

TEST_F(IKFKTest, BlendZeroIsFK) {
  for (unsigned seed = 1; seed <= 20; ++seed) {
    LimbRig rig = Build({2 + static_cast<int>(seed % 4), true, false, 1, seed});
    std::vector<Matrix3> solved, fk;
    rig.Block().SetValue(kIkfkBlend, 0, 0.0f);
    for (INode* joint : rig.joints) joint->SetNodeTM(0, At(Place(30), Turn()) * joint->GetParentTM(0));
    MoveGoal(rig);
    solved = Poses(rig.joints);
    rig.Block().SetCount(kJoints, 0);
    fk = Poses(rig.joints);
    for (size_t i = 0; i < fk.size(); ++i)
      for (int row = 0; row < 4; ++row)
        // Products of rotations taken as quaternions, of places up to 100.
        EXPECT_LE(Length(solved[i].row[row] - fk[i].row[row]), 2e-4f) << seed << " joint " << i << " row " << row;
  }
}

TEST_F(IKFKTest, SolvesOnceForAllJointsAndKeepsTheAnswer) {
  const LimbRig rig = Build();
  Poses(rig.joints);
  const int before = rig.chain->SolveCount();
  const tests::AllocCounter counter;
  for (const TimeValue t : {0, 500, -700, 0}) {
    for (INode* joint : rig.joints) joint->GetNodeTM(t);
    Matrix3 tm;
    Interval valid = FOREVER;
    rig.chain->GetJoint(1, t, tm, valid);
    EXPECT_EQ(valid, FOREVER);
  }
  EXPECT_EQ(rig.chain->SolveCount(), before);
  rig.chain->MarkDirty();
  Matrix3 tm;
  Interval valid = FOREVER;
  rig.chain->GetJoint(1, 0, tm, valid);
  EXPECT_EQ(rig.chain->SolveCount(), before + 1);
  EXPECT_EQ(counter.Count(), 0u);
}

// Whatever is edited, the scene shows what it would show if it forgot all that it keeps.
TEST_F(IKFKTest, NothingStaleIsSeen) {
  const LimbRig rig = Build({4, true, true, 1, 5});
  rig.Block().SetValue(kIkfkBlend, 0, 0.6f);
  std::vector<INode*> edited = rig.All();
  std::uniform_int_distribution<size_t> pick(0, edited.size() - 1);
  std::uniform_int_distribution<int> param(kIkfkBlend, kSoftIk);
  for (int step = 0; step < 300; ++step) {
    SCOPED_TRACE(step);
    if (step % 3 == 0) {
      const auto id = static_cast<ParamID>(param(rng));
      const ParamRow& row = *rig.Block().GetParamDef(id);
      if (row.type == ParamType::Bool) rig.Block().SetValue(id, 0, unit(rng) > 0);
      if (IsFloatType(row.type)) rig.Block().SetValue(id, 0, 0.5f + 0.5f * unit(rng));
      if (id == kParentSpace) rig.Block().SetValue(id, 0, step % 2);
    } else {
      INode* node = edited[pick(rng)];
      node->SetNodeTM(0, At(Place(3), Turn()) * node->GetNodeTM(0));
    }
    const std::vector<Matrix3> seen = Poses(rig.All());
    rig.chain->MarkDirty();
    rig.main->InvalidateTM();
    const std::vector<Matrix3> fresh = Poses(rig.All());
    for (size_t i = 0; i < seen.size(); ++i) ASSERT_TRUE(seen[i] == fresh[i]) << ToUtf8(edited[i]->GetName()) << i;
  }
}

TEST_F(IKFKTest, ReadsNarrowTheInterval) {
  const LimbRig rig = Build();
  AnimateOn();
  for (const TimeValue t : {0, 1000}) rig.goal->SetNodeTM(t, At(Place(5)) * rig.goal->GetNodeTM(t));
  AnimateOff();
  Interval valid = FOREVER;
  Matrix3 tm;
  rig.chain->GetJoint(1, 500, tm, valid);
  EXPECT_EQ(valid, Interval::Instant(500));
  for (TimeValue t = 0; t <= 1000; t += 100) EXPECT_LE(rig.Gap(t), 1e-4f);
}

TEST_F(IKFKTest, AKeyOnTheBlendPlaysBack) {
  const LimbRig rig = Build();
  rig.joints[0]->SetNodeTM(0, At({}, Turn()) * rig.joints[0]->GetNodeTM(0));
  AnimateOn();
  rig.Block().SetValue(kIkfkBlend, 0, 0.0f);
  rig.Block().SetValue(kIkfkBlend, 600, 1.0f);
  AnimateOff();
  EXPECT_GT(rig.Gap(0), 0.01f);
  EXPECT_LE(rig.Gap(600), 1e-4f);
  EXPECT_GT(rig.Gap(300), 1e-3f);
}

TEST_F(IKFKTest, AFigurePoseIsSeenAsItIs) {
  const LimbRig rig = Build();
  const Matrix3 rest = rig.joints[1]->GetNodeTM(0);
  MoveGoal(rig);
  EXPECT_GT(Length(rig.joints[1]->GetNodeTM(0).GetTrans() - rest.GetTrans()), 0.1f);
  FindNodeRigControl(rig.joints[0])->GetParamBlock()->SetValue(RigControl::kFigureMode, 0, true);
  Interval valid = FOREVER;
  EXPECT_EQ(rig.chain->GetBlend(0, valid), 0);
}

}  // namespace
}  // namespace tavrilon
