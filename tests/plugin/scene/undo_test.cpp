// SPDX-License-Identifier: MIT
// Random edits, undone and redone. Run one seed alone with TAVRILON_STORY_SEED; TAVRILON_STORY_TRACE tells each edit as
// it happens, for stories that end in a crash.
#include <gtest/gtest.h>

#include <cstdlib>

#include "plugin/constraints/parent_constraint.h"
#include "plugin/constraints/transform_constraint.h"
#include "plugin/controllers/static_controls.h"
#include "plugin/scene/scene_story_test.h"
#include "plugin/scene/scene_test.h"

namespace tavrilon::scene_tests {
namespace {

class UndoStory : public SceneTest, public testing::WithParamInterface<uint64_t> {
 protected:
  static uint64_t Seed() {
    const char* wanted = std::getenv("TAVRILON_STORY_SEED");
    return wanted ? std::strtoull(wanted, nullptr, 10) : GetParam();
  }
};

TEST_P(UndoStory, BringsEveryMomentBack) { EXPECT_EQ(CheckStory(Seed(), StoryLength(2000), SceneEdits()), ""); }
TEST_P(UndoStory, WithRigsBuiltAndReset) { EXPECT_EQ(CheckStory(Seed(), StoryLength(300), RigEdits()), ""); }

INSTANTIATE_TEST_SUITE_P(Seeds, UndoStory, testing::Values(1, 2, 3, 31, 62));

using namespace corvanta;

class UndoCase : public SceneTest {
 protected:
  static INode* MakeNode() { return GetScene().CreateObjectNode(nullptr); }
  template <class Constraint>
  static Constraint* Follow(INode* node, std::initializer_list<INode*> targets) {
    auto* constraint = new Constraint;
    node->SetTMController(constraint);
    for (INode* target : targets) constraint->AppendTarget(target, 50);
    return constraint;
  }
};

// The message of the driver reaches the blend by way of one target while the other still keeps its old place. The
// parent constraint, which looks at the blend on hearing of it, must not make it keep that.
TEST_F(UndoCase, WhoEvaluatesOnHearingReadsTheWholeChange) {
  INode *driver = MakeNode(), *first = MakeNode(), *second = MakeNode(), *blend = MakeNode(), *follower = MakeNode();
  driver->SetTMController(new StaticTransform);  // tells of a move with one message
  Follow<TransformConstraint>(first, {driver});
  Follow<TransformConstraint>(second, {driver});
  Follow<TransformConstraint>(blend, {first, second});
  Follow<ParentConstraint>(follower, {blend});
  SceneMatrices();
  theHold.Begin();
  for (const float x : {10.0f, 20.0f}) {
    driver->SetNodeTM(0, TransMatrix({x, 0, 0}));
    EXPECT_EQ(blend->GetNodeTM(0).GetTrans(), (Point3{x, 0, 0}));
  }
  theHold.Accept(L"Move");
}

// A relative constraint measures from where its targets were when they were taken.
TEST_F(UndoCase, UndoOfATargetBringsTheReferenceBack) {
  INode *first = MakeNode(), *second = MakeNode(), *follower = MakeNode();
  auto* constraint = Follow<TransformConstraint>(follower, {first});
  SceneMatrices();
  constraint->GetParamBlock()->SetValue(kRelative, 0, true);
  first->SetNodeTM(0, TransMatrix({10, 0, 0}));
  const Matrix3 before = follower->GetNodeTM(0);
  EXPECT_EQ(before.GetTrans(), (Point3{10, 0, 0}));
  constraint->AppendTarget(second, 50);
  follower->GetNodeTM(0);
  ASSERT_TRUE(theHold.Undo());
  EXPECT_EQ(follower->GetNodeTM(0), before);
}

// An entry whose value is refused is there all the same, as the world: the blend must hear of it.
TEST_F(UndoCase, AnInsertedEntryOfARefusedValueIsTold) {
  INode *target = MakeNode(), *follower = MakeNode(), *child = MakeNode();
  target->SetNodeTM(0, TransMatrix({10, 0, 0}));
  auto* constraint = Follow<TransformConstraint>(follower, {target});
  follower->AttachChild(child);
  EXPECT_EQ(follower->GetNodeTM(0).GetTrans(), (Point3{10, 0, 0}));
  EXPECT_FALSE(constraint->GetParamBlock()->Insert(kTargetList, 1, TargetValue(follower))) << "it would follow itself";
  ASSERT_EQ(constraint->GetNumTargets(), 2);
  EXPECT_LT(follower->GetNodeTM(0).GetTrans().x, 10);
}

}  // namespace
}  // namespace tavrilon::scene_tests
