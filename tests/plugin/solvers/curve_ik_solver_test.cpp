// SPDX-License-Identifier: MIT
// The builder of curve chains, by script and by code.
#include "host/script/execute.h"
#include "plugin/frame/script_primitives.h"
#include "plugin/solvers/create_curve_ik_solver.h"
#include "plugin/solvers/curve_chain_test.h"

namespace tavrilon {
namespace {

using namespace corvanta;

class CurveIKSolverTest : public CurveChainTest {
 protected:
  void SetUp() override {
    CurveChainTest::SetUp();
    RegisterCurveIKSolverPrimitive();
    INode* parent = nullptr;
    for (int i = 0; i < 5; ++i) {
      parent = AddNode({20.0f * i, 0, 3.0f * (i % 2)}, parent);
      parent->SetName(L"joint" + std::to_wstring(i));
      row.push_back(parent);
    }
  }
  void TearDown() override {
    UnregisterCurveIKSolverPrimitive();
    CurveChainTest::TearDown();
  }
  std::vector<INode*> row;
};

TEST_F(CurveIKSolverTest, TellsWhatItExpected) {
  struct Row {
    const wchar_t* call;
    const wchar_t* error;
  };
  const Row rows[] = {
      {L"1 $joint4 3 3 0 false false", L"Expected a Node for the first argument, in function CreateCurveIKSolver"},
      {L"undefined $joint4 3 3 0 false false",
       L"Expected a Node for the first argument, in function CreateCurveIKSolver"},
      {L"$joint0 1 3 3 0 false false", L"Expected a Node for the second argument, in function CreateCurveIKSolver"},
      {L"$joint0 $joint4 true 3 0 false false",
       L"Expected a Number for the third argument, in function CreateCurveIKSolver"},
      {L"$joint0 $joint4 3 true 0 false false",
       L"Expected a Number for the fourth argument, in function CreateCurveIKSolver"},
      {L"$joint0 $joint4 3 3 true false false",
       L"Expected a Number for the fifth argument, in function CreateCurveIKSolver"},
      {L"$joint0 $joint4 3 3 0 1 false",
       L"Expected a Bool for the sixth argument  (Bones Controls), in function CreateCurveIKSolver"},
      {L"$joint0 $joint4 3 3 0 false 1",
       L"Expected a Bool for the seventh argument (Tangent Controls), in function CreateCurveIKSolver"},
      {L"$joint4 $joint0 3 3 0 false false", L"The end joint must hang below the start joint"},
      {L"$joint0 $joint4 1 3 0 false false", L"Expected 2 to 1000 control points"},
      {L"$joint0 $joint4 3 7 0 false false", L"Expected a point type from 0 to 3"},
  };
  const size_t nodes = GetScene().Nodes().size();
  for (const Row& r : rows) {
    SCOPED_TRACE(ToUtf8(r.call));
    const ScriptOutcome outcome = RunScript(WStr(L"CreateCurveIKSolver ") + r.call, L"test");
    EXPECT_NE(outcome.message.find(r.error), WStr::npos) << ToUtf8(outcome.message);
  }
  EXPECT_EQ(GetScene().Nodes().size(), nodes);
}

TEST_F(CurveIKSolverTest, JointsStayOnTheirLineAndUndoTakesAllBack) {
  const size_t nodes = GetScene().Nodes().size();
  std::vector<Point3> before;
  for (INode* joint : row) before.push_back(joint->GetNodeTM(0).GetTrans());
  const ScriptOutcome outcome = RunScript(L"c = CreateCurveIKSolver $joint0 $joint4 5 2 0 false true", L"test");
  EXPECT_EQ(outcome.message, L"");
  // Five corners on the five joints' zigzag.
  for (size_t i = 0; i < row.size(); ++i) ExpectNear(row[i]->GetNodeTM(0).GetTrans(), before[i]);
  EXPECT_EQ(GetScene().Nodes().size(), nodes + 1 + 5 + 8);
  theHold.Undo();
  EXPECT_EQ(GetScene().Nodes().size(), nodes);
  for (size_t i = 0; i < row.size(); ++i) ExpectNear(row[i]->GetNodeTM(0).GetTrans(), before[i]);
}

TEST_F(CurveIKSolverTest, NewBonesWithControls) {
  CurveIKSolverOptions options;
  options.bones = 4;
  options.bonesControls = true;
  INode* node = CreateCurveIKSolver(row.front(), row.back(), options);
  CurveIKChain* made = CurveIKChain::Of(node);
  ASSERT_NE(made, nullptr);
  EXPECT_NEAR(made->GetParamBlock()->GetFloat(curve_ik_chain::kChainLength), 80, kPlaceError);
  INode* bone = GetScene().GetINodeByName(L"joint0_3");
  ASSERT_NE(bone, nullptr);
  INode* joint = made->GetParamBlock()->GetINode(curve_ik_chain::kJoints, 0, 2);
  EXPECT_FLOAT_EQ(BlockOf(joint).GetFloat(curve_ik_control::kPercent), 0.5f);
  ExpectNear(bone->GetNodeTM(0), joint->GetNodeTM(0));
  INode* control = joint->GetChildNode(0);
  ASSERT_NE(control, nullptr);
  Matrix3 tm = control->GetNodeTM(0);
  tm.Translate({0, 0, 9});
  control->SetNodeTM(0, tm);
  ExpectNear(bone->GetNodeTM(0), tm);
  EXPECT_EQ(CreateCurveIKSolver(row.back(), row.front(), options), nullptr);
}

}  // namespace
}  // namespace tavrilon
