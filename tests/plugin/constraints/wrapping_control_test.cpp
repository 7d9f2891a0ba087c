// SPDX-License-Identifier: MIT
// What root constraint and rotation space share, for both.
#include "plugin/constraints/wrapping_control.h"

#include "host/core/hold.h"
#include "host/io/scene_file.h"
#include "host/scene/core_interface.h"
#include "host/scene/point_helper.h"
#include "plugin/constraints/constraint_values_test.h"
#include "plugin/constraints/root_constraint.h"
#include "plugin/constraints/rotation_space.h"
#include "plugin/controllers/rig_control.h"
#include "plugin/frame/find.h"
#include "plugin/frame/guard.h"
#include "support/alloc_counter.h"
#include "support/test_objects.h"

namespace tavrilon {
namespace {

using namespace corvanta;
using namespace corvanta::testing_objects;
using namespace constraint_tests;

// A control with a rig control, below a parent, that follows a target beside it.
template <class Wrapping>
class WrappingTest : public SceneTest {
 protected:
  void SetUp() override {
    SceneTest::SetUp();
    RegisterTavrilonClasses();
    target = Place(L"target", nullptr);
    parent = Place(L"parent", nullptr);
    node = Place(L"node", parent);
    inner = new RigControl;
    wrapping = new Wrapping;
    wrapping->SetInner(inner);
    node->SetTMController(wrapping);
    node->SetNodeTM(0, RandomRigid(rng));
    block = wrapping->GetParamBlock();
  }
  INode* Place(const WStr& name, INode* above) {
    INode* made = GetScene().CreateObjectNode(new PointHelper);
    made->SetName(name);
    if (above) above->AttachChild(made, false);
    made->SetNodeTM(0, RandomRigid(rng));
    return made;
  }

  std::mt19937 rng{21};
  INode *target = nullptr, *parent = nullptr, *node = nullptr;
  RigControl* inner = nullptr;
  Wrapping* wrapping = nullptr;
  ParamBlock2* block = nullptr;
};

using Both = ::testing::Types<RootConstraint, RotationSpace>;
TYPED_TEST_SUITE(WrappingTest, Both);

TYPED_TEST(WrappingTest, AnswersForTheWrappedController) {
  EXPECT_EQ(FindRigControl(this->wrapping), this->inner);
  EXPECT_EQ(FindNodeRigControl(this->node), this->inner);
  EXPECT_EQ(FindOwnerNode(this->inner), this->node);
  EXPECT_EQ(this->wrapping->GetPositionController(), this->inner->GetPositionController());
  EXPECT_EQ(this->wrapping->GetRotationController(), this->inner->GetRotationController());
  EXPECT_EQ(this->wrapping->GetScaleController(), this->inner->GetScaleController());
  Control* position = NewDefaultPositionController();
  EXPECT_TRUE(this->wrapping->SetPositionController(position));
  EXPECT_EQ(this->inner->GetPositionController(), position);
  AnimateOn();
  this->node->SetNodeTM(800, RandomRigid(this->rng));
  AnimateOff();
  EXPECT_EQ(this->wrapping->NumKeys(), this->inner->NumKeys());
  EXPECT_GT(this->wrapping->NumKeys(), 0);
  this->wrapping->DeleteKeys(false);
  EXPECT_EQ(this->inner->NumKeys(), 0);
  EXPECT_EQ(this->wrapping->SubAnim(1), this->inner);
}

TYPED_TEST(WrappingTest, TakesOnlyTransformControllersIn) {
  EXPECT_FALSE(this->wrapping->CanAssignController(0));
  const Ref<Control> wrong(NewDefaultFloatController());
  EXPECT_FALSE(this->wrapping->SetInner(wrong.Get()));
  EXPECT_FALSE(this->wrapping->AssignController(wrong.Get(), 1));
  EXPECT_TRUE(this->wrapping->AssignController(new RigControl, 1));
  EXPECT_TRUE(this->wrapping->SetInner(nullptr));
  this->node->SetNodeTM(0, RandomRigid(this->rng));  // dropped
  ExpectNear(this->node->GetNodeTM(0), this->parent->GetNodeTM(0));
}

TYPED_TEST(WrappingTest, LockedTakesNoWrites) {
  const Matrix3 rest = this->node->GetNodeTM(0);
  GetLockedTrack(this->wrapping)->SetLocked(true);
  this->node->SetNodeTM(0, RandomRigid(this->rng));
  ExpectNear(this->node->GetNodeTM(0), rest);
  EXPECT_FALSE(this->wrapping->CanAssignController(1));
  GetLockedTrack(this->wrapping)->SetLocked(false);
  this->node->SetNodeTM(0, RandomRigid(this->rng));
  EXPECT_FALSE(this->node->GetNodeTM(0) == rest);
}

// Assigned as a user does it: the node stays, with its animation below the new controller.
TYPED_TEST(WrappingTest, AssignedByAUserItWrapsWhatWasThere) {
  const Matrix3 rest = this->target->GetNodeTM(0);
  Control* old = this->target->GetTMController();
  theHold.Begin();
  ASSERT_TRUE(AssignWithCopy(this->target, 0, new TypeParam));
  theHold.Accept(L"assign");
  ExpectNear(this->target->GetNodeTM(0), rest);
  EXPECT_EQ(this->target->GetTMController()->SubAnim(1), old);
  theHold.Undo();
  EXPECT_EQ(this->target->GetTMController(), old);
  // Over another of its class it takes the other's place.
  this->wrapping->SetTarget(this->target);
  const Matrix3 here = this->node->GetNodeTM(0);
  ASSERT_TRUE(AssignWithCopy(this->node, 0, new TypeParam));
  auto* second = static_cast<TypeParam*>(this->node->GetTMController());
  EXPECT_EQ(second->GetTarget(), this->target);
  EXPECT_EQ(second->GetInner(), this->inner);
  ExpectNear(this->node->GetNodeTM(0), here);
}

TYPED_TEST(WrappingTest, RefusesTargetsThatDependOnIt) {
  INode* below = this->Place(L"below", this->node);
  EXPECT_FALSE(this->wrapping->SetTarget(this->node));
  EXPECT_FALSE(this->wrapping->SetTarget(below));
  EXPECT_TRUE(this->wrapping->SetTarget(this->parent));
  EXPECT_TRUE(this->wrapping->SetTarget(nullptr));
  EXPECT_EQ(this->wrapping->GetTarget(), nullptr);
}

TYPED_TEST(WrappingTest, FollowsItsTargetAtOnce) {
  this->wrapping->SetTarget(this->target);
  const Matrix3 before = this->node->GetNodeTM(0);
  this->target->SetNodeTM(0, RandomRigid(this->rng));
  EXPECT_FALSE(this->node->GetNodeTM(0) == before);
}

// Only the target is keyed, and after that only the first parameter that counts: the kept matrix must not outlive them.
TYPED_TEST(WrappingTest, KeysOfTargetAndParametersNarrowTheValidity) {
  const ParamID amount = std::is_same_v<TypeParam, RootConstraint> ? ParamID{RootConstraint::kFollowTurning}
                                                                   : ParamID{RotationSpace::kWeight};
  this->wrapping->SetTarget(this->target);
  this->node->GetNodeTM(0);
  AnimateOn();
  this->target->SetNodeTM(800, RandomRigid(this->rng));
  AnimateOff();
  const Matrix3 first = this->node->GetNodeTM(0);
  EXPECT_FALSE(this->node->GetNodeTM(800) == first);
  EXPECT_EQ(this->node->GetNodeTM(0), first);
  this->target->GetTMController()->AsControl()->DeleteKeys(false);
  this->target->SetNodeTM(0, RandomRigid(this->rng));
  AnimateOn();
  this->block->SetValue(amount, 800, 0.25f);
  AnimateOff();
  const Matrix3 whole = this->node->GetNodeTM(0);
  EXPECT_FALSE(this->node->GetNodeTM(800) == whole);
}

TYPED_TEST(WrappingTest, DeletedTargetLeavesTheParentsSpaceAndUndoBringsItBack) {
  const Matrix3 free = this->node->GetNodeTM(0);
  this->wrapping->SetTarget(this->target);
  this->target->SetNodeTM(0, RandomRigid(this->rng));
  const Matrix3 bound = this->node->GetNodeTM(0);
  theHold.Begin();
  GetScene().DeleteNode(this->target);
  theHold.Accept(L"delete");
  ExpectNear(this->node->GetNodeTM(0), free, "the target is gone");
  theHold.Undo();
  ExpectNear(this->node->GetNodeTM(0), bound, "the target is back");
  theHold.Redo();
  ExpectNear(this->node->GetNodeTM(0), free, "gone again");
}

TYPED_TEST(WrappingTest, EditsUndoAndRedoByteForByte) {
  const auto bytes = [] {
    std::vector<uint8_t> out;
    EXPECT_EQ(SaveSceneToBytes(GetScene(), &out), L"");
    return out;
  };
  const auto before = bytes();
  theHold.Begin();
  this->wrapping->SetTarget(this->target);
  this->target->SetNodeTM(0, RandomRigid(this->rng));
  this->wrapping->SetTarget(this->parent);
  this->wrapping->SetInner(new RigControl);
  GetLockedTrack(this->wrapping)->SetLocked(true);
  theHold.Accept(L"edits");
  const auto after = bytes();
  theHold.Undo();
  EXPECT_TRUE(bytes() == before);
  theHold.Redo();
  EXPECT_TRUE(bytes() == after);
}

TYPED_TEST(WrappingTest, CloneFollowsTheCloneOfItsTarget) {
  this->wrapping->SetTarget(this->target);
  GetLockedTrack(this->wrapping)->SetLocked(true);
  const std::vector<INode*> clones = GetScene().CloneNodes({this->target, this->parent, this->node});
  auto* clone = static_cast<TypeParam*>(clones[2]->GetTMController());
  EXPECT_EQ(clone->GetTarget(), clones[0]);
  EXPECT_NE(clone->GetInner(), this->wrapping->GetInner());
  EXPECT_TRUE(GetLockedTrack(clone)->GetLocked());
  ExpectNear(clones[2]->GetNodeTM(0), this->node->GetNodeTM(0));
  const std::vector<INode*> alone = GetScene().CloneNodes({this->node});
  EXPECT_EQ(static_cast<TypeParam*>(alone[0]->GetTMController())->GetTarget(), this->target);
}

TYPED_TEST(WrappingTest, SceneFileBringsItBack) {
  this->wrapping->SetTarget(this->target);
  this->target->SetNodeTM(0, RandomRigid(this->rng));
  const Matrix3 tm = this->node->GetNodeTM(0);
  std::vector<uint8_t> bytes, again;
  ASSERT_EQ(SaveSceneToBytes(GetScene(), &bytes), L"");
  ASSERT_EQ(LoadSceneFromBytes(bytes), L"");
  INode* loaded = GetScene().GetINodeByName(L"node");
  ASSERT_NE(loaded, nullptr);
  ExpectNear(loaded->GetNodeTM(0), tm);
  EXPECT_EQ(static_cast<TypeParam*>(loaded->GetTMController())->GetTarget(), GetScene().GetINodeByName(L"target"));
  ASSERT_EQ(SaveSceneToBytes(GetScene(), &again), L"");
  EXPECT_TRUE(bytes == again);
}

TYPED_TEST(WrappingTest, EvaluationAllocatesNothing) {
  this->wrapping->SetTarget(this->target);
  AnimateOn();
  this->target->SetNodeTM(800, RandomRigid(this->rng));
  this->parent->SetNodeTM(800, RandomRigid(this->rng));
  AnimateOff();
  this->node->GetNodeTM(0);
  const tests::AllocCounter counter;
  for (TimeValue t = 0; t < 800; t += 37) this->node->GetNodeTM(t);
  EXPECT_EQ(counter.Count(), 0u);
}

// A link that slips past the validator: the value of before comes, and the event is counted.
TYPED_TEST(WrappingTest, ReentryGivesTheLastValue) {
  INode* twin = this->Place(L"twin", nullptr);
  twin->SetTMController(this->wrapping);
  const int before = GuardCount();
  this->block->SetValue(WrappingControl::kTargetParam, 0, twin);
  const Matrix3 tm = this->node->GetNodeTM(0);
  EXPECT_GT(GuardCount(), before);
  for (int r = 0; r < 4; ++r) EXPECT_TRUE(std::isfinite(Length(tm.row[r])));
}

TYPED_TEST(WrappingTest, PublishedFunctions) {
  const Class_ID id = this->wrapping->ClassID();
  FPInterface* published = this->wrapping->GetInterface(Interface_ID{id.a, id.b});
  ASSERT_NE(published, nullptr);
  FPValue result;
  const FPValue set[] = {TargetValue(this->target), FPValue()};
  EXPECT_EQ(published->Invoke(0, 0, result, set), FPStatus::OK);
  EXPECT_TRUE(result.ToBool());
  const FPValue asNode[] = {false}, asController[] = {true};
  published->Invoke(1, 0, result, asNode);
  EXPECT_EQ(result.ToNode(), this->target);
  published->Invoke(1, 0, result, asController);
  EXPECT_EQ(result.ToTarget(), this->target->GetTMController());
  const FPValue self[] = {TargetValue(this->node), FPValue()};
  published->Invoke(0, 0, result, self);
  EXPECT_FALSE(result.ToBool());
  EXPECT_EQ(published->Invoke(2, 0, result, {}), FPStatus::NoSuchFunction);
}

// --- the root alone

class RootConstraintTest : public WrappingTest<RootConstraint> {};

TEST_F(RootConstraintTest, StandsBelowItsTargetAtRest) {
  for (const int world : {0, 1}) {
    SCOPED_TRACE(world);
    block->SetValue(RootConstraint::kLocalWorld, 0, world);
    wrapping->SetInner(nullptr);
    wrapping->SetTarget(target);
    const Matrix3 space = world ? Matrix3() : parent->GetNodeTM(0);
    Point3 floor = target->GetNodeTM(0).GetTrans() * Inverse(space);
    floor.z = 0;
    ExpectNear(node->GetNodeTM(0), TransMatrix(floor) * space, "turned by nothing, on the floor");
    wrapping->SetTarget(nullptr);
  }
}

TEST_F(RootConstraintTest, SwitchingTheOffsetOnTakesTheRestAnew) {
  wrapping->SetInner(nullptr);
  wrapping->SetTarget(target);
  block->SetValue(RootConstraint::kInitialTargetOffset, 0, false);
  target->SetNodeTM(0, RandomRigid(rng));
  const Matrix3 rest = block->GetMatrix3(RootConstraint::kInitialTargetTM);
  theHold.Begin();
  block->SetValue(RootConstraint::kInitialTargetOffset, 0, true);
  theHold.Accept(L"on");
  ExpectNear(block->GetMatrix3(RootConstraint::kInitialTargetTM), target->GetNodeTM(0) * Inverse(parent->GetNodeTM(0)));
  theHold.Undo();
  EXPECT_EQ(block->GetMatrix3(RootConstraint::kInitialTargetTM), rest);
}

TEST_F(RootConstraintTest, WritesLandWhereTheyAreWanted) {
  wrapping->SetTarget(target);
  for (int i = 0; i < 30; ++i) {
    block->SetValue(RootConstraint::kFollowTurning, 0, Random(rng, 0, 1));
    block->SetValue(RootConstraint::kLocalWorld, 0, i % 2);
    target->SetNodeTM(0, RandomRigid(rng));
    const Matrix3 wanted = RandomRigid(rng);
    node->SetNodeTM(0, wanted);
    ExpectNear(node->GetNodeTM(0), wanted);
  }
  const Matrix3 rest = node->GetNodeTM(0);
  target->AttachChild(node);
  ExpectNear(node->GetNodeTM(0), rest, "with a new parent");
}

// A switch with keys takes effect at its key, though nothing else moves.
TEST_F(RootConstraintTest, KeyedGroundSwitchNarrowsTheValidity) {
  wrapping->SetInner(nullptr);
  block->SetValue(RootConstraint::kGroundOffset, 0, 10.0f);
  AnimateOn();
  block->SetValue(RootConstraint::kUseGround, 0, true);
  block->SetValue(RootConstraint::kUseGround, 1600, false);
  AnimateOff();
  const float onGround = (node->GetNodeTM(0) * Inverse(parent->GetNodeTM(0))).GetTrans().z;
  const float off = (node->GetNodeTM(1600) * Inverse(parent->GetNodeTM(1600))).GetTrans().z;
  EXPECT_NEAR(onGround, 10, kTolerance);
  EXPECT_NEAR(off, 0, kTolerance);
}

}  // namespace
}  // namespace tavrilon
