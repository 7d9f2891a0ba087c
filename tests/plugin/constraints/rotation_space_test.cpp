// SPDX-License-Identifier: MIT
#include "plugin/constraints/rotation_space.h"

#include "host/core/hold.h"
#include "host/scene/core_interface.h"
#include "plugin/constraints/constraint_values_test.h"
#include "plugin/constraints/space_turn.h"
#include "plugin/controllers/rig_control.h"
#include "plugin/frame/find.h"
#include "plugin/frame/rig_maths.h"
#include "support/test_objects.h"

namespace tavrilon {
namespace {

using namespace corvanta;
using namespace corvanta::testing_objects;
using namespace constraint_tests;

Matrix3 Orientation(const Matrix3& m) { return Orthogonalize(m).WithoutTrans(); }

// --- the mathematics

TEST(SpaceTurn, WeightGoesFromTheOwnToTheSpacesOrientation) {
  std::mt19937 rng(1);
  for (int i = 0; i < 100; ++i) {
    Matrix3 m = RandomRigid(rng);
    m.PreScale({Random(rng, 0.5f, 2), Random(rng, 0.5f, 2), Random(rng, 0.5f, 2)});
    const Matrix3 space = ScaleMatrix({1, 2, 3}) * RandomRigid(rng);
    EXPECT_EQ(TurnToSpace(m, space, 0), m);
    const Matrix3 turned = TurnToSpace(m, space, 1);
    EXPECT_EQ(turned.GetTrans(), m.GetTrans());
    ExpectNear(Orientation(turned), Orientation(space), "exactly there");
    EXPECT_NEAR(Determinant(turned), Determinant(m), kTolerance) << "size stays";
  }
}

TEST(SpaceTurn, HalfWeightIsHalfTheTurn) {
  const Matrix3 m = TransMatrix({1, 2, 3});
  ExpectNear(TurnToSpace(m, RotateZMatrix(1.2f), 0.5f), RotateZMatrix(0.6f) * m);
  ExpectNear(TurnToSpace(m, RotateZMatrix(1.5f * kPi), 0.5f), RotateZMatrix(-0.25f * kPi) * m, "the short way");
}

TEST(SpaceTurn, OwnInSpaceUndoesInSpace) {
  std::mt19937 rng(2);
  for (int i = 0; i < 200; ++i) {
    const Matrix3 own = RandomRigid(rng), space = RandomRigid(rng);
    Matrix3 parent = RandomRigid(rng);
    parent.PreScale(Point3{1, 1, 1} * Random(rng, 0.5f, 2));
    const float weight = Random(rng, 0, 1);
    const Matrix3 world = InSpace(own, parent, space, weight);
    ExpectNear(OwnInSpace(world, parent, space, weight), own);
  }
}

TEST(SpaceTurn, OffsetIsTheRestOfTheSpace) {
  std::mt19937 rng(3);
  for (int i = 0; i < 100; ++i) {
    const Matrix3 rest = ScaleMatrix({1, 2, 1}) * RandomRigid(rng);
    const Matrix3 node = ScaleMatrix({3, 1, 1}) * RandomRigid(rng);
    const Matrix3 offset = SpaceOffset(rest, node);
    ExpectNear(TurnToSpace(rest, offset * Orthogonalize(node), Random(rng, 0, 1)), rest);
    // Later the turn of the node, as the world sees it, is the turn of the control.
    const Matrix3 turn = RotateYMatrix(0.7f);
    ExpectNear(Orientation(TurnToSpace(rest, offset * Orthogonalize(node * turn), 1)), Orientation(rest) * turn);
  }
}

// --- the controller: a head below a torso that keeps the orientation of the main control

class RotationSpaceTest : public SceneTest {
 protected:
  void SetUp() override {
    SceneTest::SetUp();
    RegisterTavrilonClasses();
    main = MakeNode(L"main");
    torso = MakeNode(L"torso");
    head = MakeNode(L"head", torso);
    main->SetNodeTM(0, RandomRigid(rng));
    torso->SetNodeTM(0, RandomRigid(rng));
    head->SetNodeTM(0, RandomRigid(rng));
    space = new RotationSpace;
    space->SetInner(head->GetTMController());
    head->SetTMController(space);
    block = space->GetParamBlock();
  }
  std::mt19937 rng{11};
  INode *main = nullptr, *torso = nullptr, *head = nullptr;
  RotationSpace* space = nullptr;
  ParamBlock2* block = nullptr;
};

TEST_F(RotationSpaceTest, WithoutTargetOrWeightItIsTheParentsSpace) {
  const Matrix3 rest = head->GetNodeTM(0);
  ExpectNear(rest, static_cast<TestMatrix*>(space->GetInner())->tm_ * torso->GetNodeTM(0));
  space->SetTarget(main);
  block->SetValue(RotationSpace::kWeight, 0, 0.0f);
  for (int i = 0; i < 5; ++i) {
    main->SetNodeTM(0, RandomRigid(rng));
    ExpectNear(head->GetNodeTM(0), rest);
  }
}

TEST_F(RotationSpaceTest, FullWeightTakesTheTargetsOrientationWithTheControlsOnTop) {
  const Point3 place = head->GetNodeTM(0).GetTrans();
  space->SetTarget(main);
  const Matrix3 own = static_cast<TestMatrix*>(space->GetInner())->tm_.WithoutTrans();
  ExpectNear(head->GetNodeTM(0).WithoutTrans(), own * main->GetNodeTM(0).WithoutTrans());
  EXPECT_LT(Length(head->GetNodeTM(0).GetTrans() - place), kTolerance) << "the place goes by the parent";
}

TEST_F(RotationSpaceTest, KeptOffsetChangesNothingAtRest) {
  const Matrix3 rest = head->GetNodeTM(0);
  space->SetTarget(main);
  block->SetValue(RotationSpace::kKeepInitialOffset, 0, true);
  ExpectNear(head->GetNodeTM(0), rest, "the control's own turn acts once");
  torso->SetNodeTM(0, RandomRigid(rng));
  ExpectNear(head->GetNodeTM(0).WithoutTrans(), rest.WithoutTrans(), "a parent that turns does not turn the control");
  main->SetNodeTM(0, main->GetNodeTM(0) * RotateZMatrix(0.8f));
  ExpectNear(head->GetNodeTM(0).WithoutTrans(), rest.WithoutTrans() * RotateZMatrix(0.8f), "the target does");
}

TEST_F(RotationSpaceTest, WritesLandWhereTheyAreWanted) {
  space->SetTarget(main);
  for (int i = 0; i < 50; ++i) {
    main->SetNodeTM(0, RandomRigid(rng));
    torso->SetNodeTM(0, ScaleMatrix(Point3{1, 1, 1} * Random(rng, 0.5f, 2)) * RandomRigid(rng));
    block->SetValue(RotationSpace::kWeight, 0, Random(rng, 0, 1));
    if (i % 2) space->SetOffset(RandomRigid(rng));
    block->SetValue(RotationSpace::kKeepInitialOffset, 0, i % 2 == 1);
    const Matrix3 wanted = RandomRigid(rng);
    head->SetNodeTM(0, wanted);
    ExpectNear(head->GetNodeTM(0), wanted);
  }
}

TEST_F(RotationSpaceTest, ANewParentKeepsTheNode) {
  space->SetTarget(main);
  block->SetValue(RotationSpace::kWeight, 0, 0.4f);
  const Matrix3 rest = head->GetNodeTM(0);
  INode* other = MakeNode(L"other");
  other->SetNodeTM(0, RandomRigid(rng));
  ASSERT_TRUE(other->AttachChild(head));
  ExpectNear(head->GetNodeTM(0), rest);
}

// Tools send turns and scales about a pivot of their choice: the control goes round it, and turns by as much.
TEST_F(RotationSpaceTest, TurnsAndScalesGoAboutThePivot) {
  for (const bool rigControl : {false, true}) {
    SCOPED_TRACE(rigControl);
    space->SetInner(rigControl ? static_cast<Control*>(new RigControl) : NewDefaultMatrix3Controller());
    space->SetTarget(main);
    for (int i = 0; i < 20; ++i) {
      block->SetValue(RotationSpace::kWeight, 0, Random(rng, 0, 1));
      head->SetNodeTM(0, RandomRigid(rng));
      const Matrix3 before = head->GetNodeTM(0), axis = RandomRigid(rng);
      const Matrix3 parent = torso->GetNodeTM(0);
      const AngAxis turn{Normalize(Point3{1, Random(rng, -1, 1), 1}), Random(rng, -1, 1)};
      SetXFormPacket rotate = SetXFormPacket::Rotate(turn, false, parent, axis);
      space->SetValue(0, rotate, true, CTRL_RELATIVE);
      const Matrix3 wanted = before * Inverse(axis) * MakeMatrix(QuatFromAngAxis(turn)) * axis;
      ExpectNear(head->GetNodeTM(0), wanted, "turned");
      SetXFormPacket scale = SetXFormPacket::Scale({2, 2, 2}, false, parent, axis);
      space->SetValue(0, scale, true, CTRL_RELATIVE);
      const Point3 away = wanted.GetTrans() - axis.GetTrans();
      EXPECT_LT(Length(head->GetNodeTM(0).GetTrans() - (axis.GetTrans() + away * 2)), kTolerance * 2);
      SetXFormPacket local = SetXFormPacket::Rotate(turn, true, parent, axis);
      const Point3 stays = head->GetNodeTM(0).GetTrans();
      space->SetValue(0, local, true, CTRL_RELATIVE);
      EXPECT_LT(Length(head->GetNodeTM(0).GetTrans() - stays), kTolerance) << "about its own origin";
    }
  }
}

TEST_F(RotationSpaceTest, MovesGoByTheParent) {
  space->SetInner(new RigControl);
  space->SetTarget(main);
  const Point3 before = head->GetNodeTM(0).GetTrans();
  SetXFormPacket move = SetXFormPacket::Move({1, 2, 3}, torso->GetNodeTM(0));
  space->SetValue(0, move, true, CTRL_RELATIVE);
  EXPECT_LT(Length(head->GetNodeTM(0).GetTrans() - (before + Point3{1, 2, 3})), kTolerance);
}

}  // namespace
}  // namespace tavrilon
