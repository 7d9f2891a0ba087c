// SPDX-License-Identifier: MIT
#include "host/scene/evaluation_plan.h"

#include "host/core/hold.h"
#include "host/scene/core_interface.h"
#include "support/alloc_counter.h"
#include "support/test_objects.h"

namespace corvanta {
namespace {

using namespace testing_objects;

class EvaluationPlanTest : public SceneTest {
 protected:
  /// A parent with keys and a child with none, 1 above it.
  void MakePair() {
    parent_ = MakeNode(L"parent");
    parent_->SetTMController(NewDefaultMatrix3Controller());
    child_ = MakeNode(L"child", parent_);
    child_->SetNodeTM(0, TransMatrix({0, 0, 1}));
    const AnimateScope animate;
    parent_->SetNodeTM(100, TransMatrix({10, 0, 0}));
  }
  static bool IsThere(INode* node, TimeValue t, const Point3& place) {
    return Length(node->GetNodeTM(t).GetTrans() - place) < 1e-5f;  // a place of ten units in single precision
  }
  INode* parent_ = nullptr;
  INode* child_ = nullptr;
};

// The plan is only about where memory is read: matrices, edits and undo come out as by asking the nodes one by one.
TEST_F(EvaluationPlanTest, GivesWhatTheNodesGiveThroughEveryEdit) {
  MakePair();
  Scene& scene = GetScene();
  scene.Evaluate(100);
  EXPECT_TRUE(IsThere(child_, 100, {10, 0, 1}));
  theHold.Begin();
  scene.DeleteNode(parent_);
  theHold.Accept(L"Delete");
  scene.Evaluate(100);
  EXPECT_EQ(child_->GetParentNode(), scene.GetRootNode());
  theHold.Undo();
  scene.Evaluate(100);
  EXPECT_TRUE(IsThere(child_, 100, {10, 0, 1}));
  child_->SetTMController(NewDefaultMatrix3Controller());
  scene.Evaluate(100);
  EXPECT_TRUE(IsThere(child_, 100, {10, 0, 0}));
}

TEST_F(EvaluationPlanTest, AllocatesNothingOnceMade) {
  MakePair();
  GetScene().Evaluate(1);
  const tests::AllocCounter counter;
  for (TimeValue t = 2; t < 90; ++t) GetScene().Evaluate(t);
  EXPECT_EQ(counter.Count(), 0u);
}

}  // namespace
}  // namespace corvanta
