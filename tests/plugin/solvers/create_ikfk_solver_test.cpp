// SPDX-License-Identifier: MIT
#include "plugin/solvers/create_ikfk_solver.h"

#include "host/script/execute.h"
#include "plugin/frame/script_primitives.h"
#include "plugin/solvers/ikfk_rig_test.h"

namespace tavrilon {
namespace {

using namespace corvanta;
using namespace ikfk_chain;

class CreateSolverTest : public IKFKTest {
 protected:
  void SetUp() override {
    IKFKTest::SetUp();
    RegisterIKFKSolverPrimitive();
    INode* parent = nullptr;
    for (const wchar_t* name : {L"root", L"thigh", L"shin", L"foot"}) {
      INode* node = AddNode(name, parent);
      const Matrix3 parentTM = parent ? parent->GetNodeTM(0) : Matrix3();
      node->SetNodeTM(0, At({10, 0, 0}, QuatFromMatrix(RotateZMatrix(-0.3f))) * parentTM);
      bones.push_back(parent = node);
    }
  }
  void TearDown() override {
    UnregisterIKFKSolverPrimitive();
    IKFKTest::TearDown();
  }
  std::vector<INode*> bones;
};

TEST_F(CreateSolverTest, MakesAWorkingLimbAndMovesNothing) {
  const std::vector<Matrix3> before = Poses(bones);
  INode* node = MakeIKFKSolver(bones[1], bones[3]);
  IKFKChain* chain = FindIKFKChain(node);
  ASSERT_NE(chain, nullptr);
  EXPECT_TRUE(node->Selected());
  EXPECT_EQ(node->GetName().substr(0, 9), L"IKFKChain");
  EXPECT_EQ(chain->NumJoints(), 3);
  ExpectSamePoses(Poses(bones), before, 30);
  INode* goal = chain->GetWeakNode(kGoal);
  const Point3 place = goal->GetNodeTM(0).GetTrans() + Point3{-2, 1, 1};
  goal->SetNodeTM(0, At(place));
  EXPECT_LE(Length(bones[3]->GetNodeTM(0).GetTrans() - place), 2e-3f);
  EXPECT_EQ(MakeIKFKSolver(bones[3], bones[1]), nullptr);
  EXPECT_EQ(theHold.NumUndo(), 1);
  ASSERT_TRUE(theHold.Undo());
  EXPECT_TRUE(Poses(bones) == before);
  EXPECT_EQ(GetScene().Nodes().size(), bones.size());
}

TEST_F(CreateSolverTest, ScriptErrors) {
  const struct {
    const wchar_t *script, *error;
  } kRows[] = {
      {L"CreateIKFKSolver 5 $foot", L"Expected a Node for the first argument, in function CreateIKFKSolver"},
      {L"CreateIKFKSolver $thigh \"x\"", L"Expected a Node for the second argument, in function CreateIKFKSolver"},
      {L"CreateIKFKSolver undefined $foot", L"Expected a valid Node for Start Joint, in function CreateIKFKSolver"},
      {L"CreateIKFKSolver $thigh undefined", L"Expected a valid Node for End Joint, in function CreateIKFKSolver"},
      {L"CreateIKFKSolver $thigh", L"CreateIKFKSolver"},
      {L"CreateIKFKSolver $foot $thigh", L""},
      {L"c = CreateIKFKSolver $thigh $foot; c.controller.FK(); c.controller.interface.MatchIK toFK:true", L""},
  };
  for (const auto& row : kRows) {
    SCOPED_TRACE(ToUtf8(row.script));
    const ScriptOutcome outcome = RunScript(row.script, L"test");
    if (*row.error)
      EXPECT_NE(outcome.message.find(row.error), WStr::npos) << ToUtf8(outcome.message);
    else
      EXPECT_EQ(outcome.message, L"");
  }
}

}  // namespace
}  // namespace tavrilon
