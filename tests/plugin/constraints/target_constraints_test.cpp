// SPDX-License-Identifier: MIT
#include "host/core/hold.h"
#include "host/scene/core_interface.h"
#include "plugin/constraints/blend.h"
#include "plugin/constraints/constraint_values_test.h"
#include "plugin/constraints/parent_constraint.h"
#include "plugin/constraints/scale_constraint.h"
#include "plugin/constraints/transform_constraint.h"
#include "plugin/frame/guard.h"
#include "plugin/frame/rig_maths.h"
#include "support/test_objects.h"

namespace tavrilon {
namespace {

using namespace corvanta;
using namespace corvanta::testing_objects;
using namespace constraint_tests;

class ConstraintTest : public SceneTest {
 protected:
  void SetUp() override {
    SceneTest::SetUp();
    a = MakeNode(L"a");
    b = MakeNode(L"b");
    child = MakeNode(L"child");
    a->SetNodeTM(0, RandomRigid(rng));
    b->SetNodeTM(0, RandomRigid(rng));
  }
  /// A parent constraint whose inner controller is the child's own.
  ParentConstraint* Constrain() {
    auto* constraint = new ParentConstraint;
    constraint->SetInner(child->GetTMController());
    child->SetTMController(constraint);
    child->GetNodeTM(0);
    return constraint;
  }
  std::mt19937 rng{3};
  INode *a = nullptr, *b = nullptr, *child = nullptr;
};

TEST_F(ConstraintTest, AppendingKeepsTheNodeAndFollowsFromThere) {
  child->SetNodeTM(0, RandomRigid(rng));
  const Matrix3 rest = child->GetNodeTM(0);
  ParentConstraint* constraint = Constrain();
  ExpectNear(child->GetNodeTM(0), rest, "before any target");
  ASSERT_TRUE(constraint->AppendTarget(a, 100));
  constraint->GetParamBlock()->SetValue(kRelative, 0, true);
  ExpectNear(child->GetNodeTM(0), rest, "with its first target");
  const Matrix3 local = rest * Inverse(a->GetNodeTM(0));
  a->SetNodeTM(0, RandomRigid(rng));
  ExpectNear(child->GetNodeTM(0), local * a->GetNodeTM(0), "after the target moved");
}

TEST_F(ConstraintTest, RefusedTargets) {
  ParentConstraint* constraint = Constrain();
  EXPECT_TRUE(constraint->AppendTarget(a, 100));
  EXPECT_FALSE(constraint->AppendTarget(a, 100)) << "in the list already";
  EXPECT_FALSE(constraint->AppendTarget(child, 100)) << "depends on the constraint";
  EXPECT_TRUE(constraint->AppendTarget(nullptr, 100)) << "the world";
  EXPECT_EQ(constraint->GetNumTargets(), 2);
  EXPECT_FALSE(constraint->DeleteTarget(2));
  EXPECT_TRUE(constraint->DeleteTarget(0));
  EXPECT_EQ(constraint->GetNode(0), nullptr);
}

struct WeightCase {
  const char* name;
  float weights[2];
  float parentShare, transformShare;  ///< how far from a to b; -1: the base
};
const WeightCase kWeightCases[] = {
    {"even", {50, 50}, 0.5f, 0.5f},
    {"first only", {100, 0}, 0, 0},
    {"a quarter", {75, 25}, 0.25f, 0.25f},
    {"nothing", {0, 0}, -1, -1},
};

TEST_F(ConstraintTest, TwoTargetsBlendByWeight) {
  for (const WeightCase& row : kWeightCases) {
    SCOPED_TRACE(row.name);
    auto* transform = new TransformConstraint;
    child->SetTMController(transform);
    transform->AppendTarget(a, row.weights[0]);
    transform->AppendTarget(b, row.weights[1]);
    const Matrix3 ta = a->GetNodeTM(0), tb = b->GetNodeTM(0);
    const Point3 place = child->GetNodeTM(0).GetTrans();
    const Point3 wanted = row.transformShare < 0 ? Point3() : Lerp(ta.GetTrans(), tb.GetTrans(), row.transformShare);
    EXPECT_LT(Length(place - wanted), kTolerance);
    if (row.transformShare >= 0)
      ExpectNear(child->GetNodeTM(0).WithoutTrans(), BlendMatrix(ta, tb, row.transformShare).WithoutTrans());
  }
}

TEST_F(ConstraintTest, LoneTargetIgnoresItsWeightButNotForScale) {
  a->SetNodeTM(0, ScaleMatrix({2, 3, 4}) * RandomRigid(rng));
  auto* transform = new TransformConstraint;
  child->SetTMController(transform);
  transform->AppendTarget(a, 0);
  EXPECT_EQ(child->GetNodeTM(0), a->GetNodeTM(0));
  const Ref<ScaleConstraint> scale(new ScaleConstraint);
  scale->AppendTarget(a, 0);
  ScaleValue value;
  Interval valid = FOREVER;
  scale->GetValue(0, value, valid, CTRL_ABSOLUTE);
  EXPECT_EQ(value, ScaleValue());
  scale->SetWeight(0, 10, 0);
  scale->GetValue(0, value, valid, CTRL_ABSOLUTE);
  EXPECT_LT(Length(value.s - Point3{2, 3, 4}), kTolerance);
}

TEST_F(ConstraintTest, FollowScaleOffLeavesARotation) {
  a->SetNodeTM(0, ScaleMatrix({2, 3, 4}) * RandomRigid(rng));
  auto* transform = new TransformConstraint;
  child->SetTMController(transform);
  transform->AppendTarget(a, 100);
  transform->GetParamBlock()->SetValue(TransformConstraint::kFollowScale, 0, false);
  ExpectNear(child->GetNodeTM(0), Orthogonalize(a->GetNodeTM(0)));
}

// A relative node whose base equals the reference follows the target exactly.
TEST_F(ConstraintTest, RelativeFollowsTheChangeOfTheTargets) {
  child->SetNodeTM(0, a->GetNodeTM(0));
  auto* transform = new TransformConstraint;
  transform->Copy(child->GetTMController());
  child->SetTMController(transform);
  child->GetNodeTM(0);
  transform->AppendTarget(a, 100);
  child->GetNodeTM(0);
  transform->GetParamBlock()->SetValue(kRelative, 0, true);
  ExpectNear(child->GetNodeTM(0), a->GetNodeTM(0), "at rest");
  const Quat turn = QuatFromAngAxis({{0.6f, 0, 0.8f}, 0.7f});
  Matrix3 moved = a->GetNodeTM(0) * MakeMatrix(turn);
  a->SetNodeTM(0, moved);
  ExpectNear(child->GetNodeTM(0), moved, "after a turn");
}

TEST_F(ConstraintTest, OppositeHemispheresBlendTheShortWay) {
  AffineParts p, q;
  p.q = QuatFromAngAxis({{0, 0, 1}, 0.2f});
  q.q = -QuatFromAngAxis({{0, 0, 1}, 0.4f});
  TransformBlend blend;
  blend.Add(p, 50);
  blend.Add(q, 50);
  const Quat result = blend.Result().q;
  const Quat wanted = QuatFromAngAxis({{0, 0, 1}, 0.3f});
  EXPECT_NEAR(std::abs(Dot(result, wanted)), 1, 1e-6f);  // one rounding of a unit quaternion
}

TEST_F(ConstraintTest, MissingWeightsCountAsToldByEachClass) {
  auto* transform = new TransformConstraint;
  child->SetTMController(transform);
  transform->AppendTarget(a, 1);
  transform->AppendTarget(b, 1);
  transform->GetParamBlock()->Delete(kWeight, 1);
  const Point3 half = Lerp(a->GetNodeTM(0).GetTrans(), b->GetNodeTM(0).GetTrans(), 0.5f);
  EXPECT_LT(Length(child->GetNodeTM(0).GetTrans() - half), kTolerance);
  ParentConstraint* parent = Constrain();
  parent->AppendTarget(a, 1);
  parent->AppendTarget(b, 1);
  parent->GetParamBlock()->Delete(kWeight, 1);
  Matrix3 tm;
  Interval valid = FOREVER;
  parent->SetInner(nullptr);
  parent->GetValue(0, tm, valid, CTRL_RELATIVE);
  ExpectNear(tm, a->GetNodeTM(0));
}

TEST_F(ConstraintTest, WritesLandWhereTheyAreWanted) {
  ParentConstraint* constraint = Constrain();
  constraint->AppendTarget(a, 60);
  constraint->AppendTarget(b, 40);
  for (int i = 0; i < 20; ++i) {
    const Matrix3 wanted = RandomRigid(rng);
    child->SetNodeTM(0, wanted);
    ExpectNear(child->GetNodeTM(0), wanted);
  }
}

// With pivot mode "pivot only" the target's object stays and its pivot moves; the constrained node must not.
TEST_F(ConstraintTest, MovingOnlyThePivotLeavesTheNode) {
  for (const bool relative : {false, true}) {
    SCOPED_TRACE(relative);
    ParentConstraint* constraint = Constrain();
    constraint->AppendTarget(a, 100);
    constraint->GetParamBlock()->SetValue(kRelative, 0, relative);
    child->SetNodeTM(0, RandomRigid(rng));
    const Matrix3 rest = child->GetNodeTM(0);
    const Matrix3 innerBefore = static_cast<TestMatrix*>(constraint->GetInner())->tm_;
    theHold.Begin();
    a->InvalidateTM();  // the first change shows the constraint its targets
    GetCOREInterface()->SetPivotMode(PivotMode::PivotOnly);
    Matrix3 pivot = a->GetNodeTM(0);
    pivot.Translate({5, 0, 0});
    a->SetNodeTM(0, pivot);
    GetCOREInterface()->SetPivotMode(PivotMode::None);
    theHold.Accept(L"pivot");
    ExpectNear(child->GetNodeTM(0), rest, "after the pivot moved");
    EXPECT_EQ(innerBefore == static_cast<TestMatrix*>(constraint->GetInner())->tm_, relative)
        << "the correction lands on the offset when relative, else on the inner controller";
    theHold.Undo();
    ExpectNear(child->GetNodeTM(0), rest, "after undo");
    child->SetTMController(new TestMatrix);
  }
}

TEST_F(ConstraintTest, EditsUndoAndRedo) {
  ParentConstraint* constraint = Constrain();
  const Matrix3 free = child->GetNodeTM(0);
  theHold.Begin();
  constraint->AppendTarget(a, 70);
  constraint->AppendTarget(b, 30);
  constraint->DeleteTarget(0);
  theHold.Accept(L"targets");
  const Matrix3 bound = child->GetNodeTM(0);
  theHold.Undo();
  EXPECT_EQ(constraint->GetNumTargets(), 0);
  ExpectNear(child->GetNodeTM(0), free);
  theHold.Redo();
  EXPECT_EQ(constraint->GetNode(0), b);
  ExpectNear(child->GetNodeTM(0), bound);
}

TEST_F(ConstraintTest, DeletedTargetIsTheWorld) {
  auto* transform = new TransformConstraint;
  child->SetTMController(transform);
  transform->AppendTarget(a, 100);
  GetScene().DeleteNode(a);
  EXPECT_EQ(transform->GetNumTargets(), 1);
  ExpectNear(child->GetNodeTM(0), Matrix3());
}

TEST_F(ConstraintTest, PublishedFunctions) {
  const Ref<TransformConstraint> transform(new TransformConstraint);
  FPInterface* published = transform->GetInterface(Interface_ID{0x45596D56, 0x1E847B45});
  ASSERT_NE(published, nullptr);
  FPValue result;
  const FPValue append[] = {TargetValue(a), 25.0f};
  EXPECT_EQ(published->Invoke(4, 0, result, append), FPStatus::OK);
  EXPECT_TRUE(result.ToBool());
  const FPValue index[] = {0};
  published->Invoke(2, 0, result, index);
  EXPECT_EQ(result.ToFloat(), 25);
  published->Invoke(1, 0, result, index);
  EXPECT_EQ(result.ToNode(), a);
  EXPECT_THROW(published->Invoke(3, 0, result, index), CorvantaSDK::Util::OutOfRangeException);
  EXPECT_EQ(published->Invoke(99, 0, result, {}), FPStatus::NoSuchFunction);
}

TEST_F(ConstraintTest, SaveLoadAndCloneKeepTheState) {
  child->SetNodeTM(0, RandomRigid(rng));
  const Ref<TransformConstraint> transform(new TransformConstraint);
  transform->Copy(child->GetTMController());
  Matrix3 tm;
  Interval valid = FOREVER;
  transform->GetValue(0, tm, valid, CTRL_RELATIVE);
  ISave save;
  transform->Save(save);
  const Ref<TransformConstraint> loaded(new TransformConstraint);
  ILoad load(save.Bytes());
  EXPECT_EQ(loaded->Load(load), IOResult::OK);
  ISave again;
  loaded->Save(again);
  EXPECT_EQ(save.Bytes(), again.Bytes());
  Matrix3 tm2;
  loaded->GetValue(0, tm2, valid, CTRL_RELATIVE);
  EXPECT_EQ(tm, tm2);
}

// Two constraints that follow each other by way of a parent: an answer comes, and the event is counted.
TEST_F(ConstraintTest, CyclesThroughParentsEnd) {
  auto* transform = new TransformConstraint;
  a->SetTMController(transform);
  b->AttachChild(a, false);
  auto* other = new ParentConstraint;
  b->SetTMController(other);
  transform->AppendTarget(b, 100);
  const int before = INode::ReentryCount() + GuardCount();
  other->AppendTarget(a, 100);
  a->GetNodeTM(0);
  b->GetNodeTM(0);
  EXPECT_GE(INode::ReentryCount() + GuardCount(), before);
}

}  // namespace
}  // namespace tavrilon
