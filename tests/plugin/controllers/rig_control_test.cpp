// SPDX-License-Identifier: MIT
// Evaluation and packets of a single control.
#include "host/core/remap.h"
#include "plugin/controllers/rig_control_fixture_test.h"
#include "plugin/controllers/static_controls.h"
#include "plugin/frame/find.h"
#include "support/alloc_counter.h"

namespace tavrilon {
namespace {

using namespace corvanta;

TEST_F(RigControlTest, AtRestWithoutOffsetNothingChanges) {
  const Made made = AddControl(L"a");
  Matrix3 m = RotateXMatrix(0.3f);
  m.SetTrans({1, 2, 3});
  const Matrix3 before = m;
  Interval valid{5, 6};
  made.control->GetValue(5, m, valid, CTRL_RELATIVE);
  EXPECT_TRUE(m == before);
  EXPECT_TRUE(valid == (Interval{5, 6}));
}

TEST_F(RigControlTest, ReferencesAndSlots) {
  const Made made = AddControl(L"a");
  ASSERT_NE(made.control->GetPositionController(), nullptr);
  EXPECT_TRUE(IsOfClass(made.control->GetRotationController(), TavrilonClass::RotationXYZ));
  EXPECT_EQ(made.control->SubAnimName(2), L"Rotation");
  const Ref<Control> other(new StaticPosition);
  EXPECT_FALSE(made.control->AssignController(other.Get(), 0));
  EXPECT_FALSE(made.control->AssignController(other.Get(), 2));
  EXPECT_TRUE(made.control->SetPositionController(other.Get()));
  EXPECT_EQ(made.control->GetPositionController(), other.Get());
  const RigControl loading(true);
  for (int i = 0; i < 4; ++i) EXPECT_EQ(loading.GetReference(i), nullptr);
}

struct SetCase {
  const char* name;
  bool independent, straight;
  Point3 offsetScale;
};
// A wanted matrix set on the node is the matrix it has, under rigid and uniformly scaled offsets and parents.
TEST_F(RigControlTest, SetThenGetIsTheSameMatrix) {
  const SetCase kCases[] = {
      {"parts", true, false, {1, 1, 1}},         {"parts, scaled", true, false, {2, 2, 2}},
      {"whole offset", false, false, {1, 1, 1}}, {"whole offset, scaled", false, false, {0.5f, 0.5f, 0.5f}},
      {"straight", true, true, {1, 1, 1}},       {"straight, whole offset", false, true, {1, 1, 1}},
  };
  std::mt19937 rng(31);
  const Made parent = AddControl(L"parent");
  const Made child = AddControl(L"child", parent.node);
  for (const SetCase& c : kCases) {
    SCOPED_TRACE(c.name);
    child.Set(RigControl::kIndependentOffset, c.independent);
    child.Set(RigControl::kStraightScale, c.straight);
    for (int i = 0; i < 40; ++i) {
      parent.node->SetNodeTM(0, RandomRigid(rng, 10));
      Matrix3 offset = RandomRigid(rng, 5);
      offset.PreScale(c.offsetScale);
      child.control->SetOffsetTM(offset);
      Matrix3 wanted = RandomRigid(rng, 10);
      // What a straight control cannot show: a stretch that is not along its own axes.
      if (!c.straight) wanted = wanted * MakeMatrix(ScaleValue{RandomPoint(rng, 0.5f, 2), RandomQuat(rng)});
      if (i % 4 == 0 && !c.straight) wanted.PreScale({-1, 1, 1});
      child.node->SetNodeTM(0, wanted);
      // Places reach 30 units over a chain of some twenty float products.
      ASSERT_TRUE(IsNear(child.node->GetNodeTM(0), wanted, 1e-4f)) << i;
    }
  }
}

TEST_F(RigControlTest, RotatePacketUnderATurnedParent) {
  const Made parent = AddControl(L"parent");
  parent.node->SetNodeTM(0, RotateZMatrix(kHalfPi));
  const Made made = AddControl(L"a", parent.node);
  made.Send(SetXFormPacket::Rotate(AngAxis{{1, 0, 0}, kHalfPi}, false, parent.node->GetNodeTM(0), Matrix3()));
  const float h = 0.707107f;
  EXPECT_TRUE(IsNear(Sub<Quat>(made.control->GetRotationController()), Quat{0, -h, 0, h}, 1e-5f));
  Matrix3 expected;
  expected.row[0] = {0, 0, -1};
  expected.row[1] = {-1, 0, 0};
  expected.row[2] = {0, 1, 0};
  EXPECT_TRUE(IsNear(made.node->GetNodeTM(0), expected, 1e-5f));
}

// In its own axes, whatever the offset: a move goes along the node's axis, a turn keeps the turning axis, a scale
// lengthens the node's row. The world change is the same in figure mode, where the offset takes it.
TEST_F(RigControlTest, PacketsActInTheAxesGiven) {
  std::mt19937 rng(32);
  for (const bool independent : {true, false})
    for (const bool figure : {false, true}) {
      SCOPED_TRACE(testing::Message() << "independent " << independent << " figure " << figure);
      const Made parent = AddControl(L"parent");
      parent.node->SetNodeTM(0, RandomRigid(rng, 5));
      const Made made = AddControl(L"a", parent.node);
      made.Set(RigControl::kIndependentOffset, independent);
      made.control->SetOffsetTM(RandomRigid(rng, 5));
      made.node->SetNodeTM(0, RandomRigid(rng, 5));
      made.Set(RigControl::kFigureMode, figure);
      const Matrix3 before = made.node->GetNodeTM(0);

      made.Move({2, 0, 0});
      const Matrix3 moved = made.node->GetNodeTM(0);
      EXPECT_TRUE(IsNear(moved.GetTrans(), before.GetTrans() + before.row[0] * 2, 1e-4f));
      EXPECT_TRUE(IsNear(moved.WithoutTrans(), before.WithoutTrans(), 1e-4f));

      const AngAxis turn{{0, 1, 0}, 0.5f};
      made.Rotate(turn);
      const Matrix3 turned = made.node->GetNodeTM(0);
      EXPECT_TRUE(IsNear(turned.WithoutTrans(), MakeMatrix(QuatFromAngAxis(turn)) * moved.WithoutTrans(), 1e-4f));
      EXPECT_TRUE(IsNear(turned.GetTrans(), moved.GetTrans(), 1e-4f));

      made.Scale({1, 1, 3});
      Matrix3 scaled = turned;
      scaled.PreScale({1, 1, 3});
      EXPECT_TRUE(IsNear(made.node->GetNodeTM(0), scaled, 1e-4f));
    }
}

// The axis of a turn is a direction: a stretched parent does not bend it.
TEST_F(RigControlTest, TurnUnderAStretchedParentKeepsItsAxis) {
  const Made parent = AddControl(L"parent");
  parent.Scale({3, 1, 1});
  const Made made = AddControl(L"a", parent.node);
  made.Send(SetXFormPacket::Rotate(AngAxis{{1, 1, 0}, 0.5f}, false, parent.node->GetNodeTM(0), Matrix3()));
  const AngAxis turn = AngAxisFromQuat(Sub<Quat>(made.control->GetRotationController()));
  EXPECT_TRUE(IsNear(turn.axis, Normalize(Point3{1, 1, 0}), 1e-5f));
}

// Straight controls stretch along their own axes only.
TEST_F(RigControlTest, StraightSetHasNoStretchRotation) {
  const Made made = AddControl(L"a");
  const Matrix3 sheared = MakeMatrix(ScaleValue{{1, 2, 3}, EulerToQuat({0.3f, 0.4f, 0.5f})});
  made.node->SetNodeTM(0, sheared);
  EXPECT_FALSE(Sub<ScaleValue>(made.control->GetScaleController()).q == Quat());
  made.Set(RigControl::kStraightScale, true);
  made.node->SetNodeTM(0, sheared);
  EXPECT_TRUE(Sub<ScaleValue>(made.control->GetScaleController()).q == Quat());
}

TEST_F(RigControlTest, StraightScaleKeepsChildrenSquare) {
  const Made parent = AddControl(L"parent");
  const Made child = AddControl(L"child", parent.node);
  child.Rotate({{0, 0, 1}, 0.7f});
  parent.Scale({3, 1, 1});
  const auto shear = [&] {
    const Matrix3& m = child.node->GetNodeTM(0);
    return std::abs(Dot(Normalize(m.row[0]), Normalize(m.row[1])));
  };
  EXPECT_GT(shear(), 0.1f);
  child.Set(RigControl::kStraightScale, true);
  EXPECT_LT(shear(), 1e-5f);
  EXPECT_TRUE(IsNear(RowLengths(child.node->GetNodeTM(0)), {3, 1, 1}, 1e-4f));
}

TEST_F(RigControlTest, LockDropsWrites) {
  const Made made = AddControl(L"a");
  made.control->SetLocked(true);
  made.Move({1, 0, 0});
  made.control->ResetFigure();
  EXPECT_TRUE(made.node->GetNodeTM(0) == Matrix3());
  EXPECT_EQ(GetLockedTrack(made.control), static_cast<ILockedTrack*>(made.control));
}

TEST_F(RigControlTest, ReparentingKeepsThePlace) {
  std::mt19937 rng(33);
  const Made a = AddControl(L"a");
  const Pair pair = AddPair();
  a.node->SetNodeTM(0, RandomRigid(rng, 5));
  pair.left.node->SetNodeTM(0, RandomRigid(rng, 5));
  Matrix3 before = pair.left.node->GetNodeTM(0);
  a.node->AttachChild(pair.left.node, true);
  EXPECT_TRUE(IsNear(pair.left.node->GetNodeTM(0), before, 1e-4f));

  pair.left.control->SetFigureMode(true);
  before = pair.left.node->GetNodeTM(0);
  const Matrix3 position = TransMatrix(Position(pair.left)), other = pair.right.control->GetOffsetTM();
  GetScene().GetRootNode()->AttachChild(pair.left.node, true);
  EXPECT_TRUE(IsNear(pair.left.node->GetNodeTM(0), before, 1e-4f));
  EXPECT_TRUE(TransMatrix(Position(pair.left)) == position);
  EXPECT_TRUE(pair.right.control->GetOffsetTM() == other);  // the other hand stays
}

TEST_F(RigControlTest, CopyMakesTheValueTheOffset) {
  INode* node = AddNode(L"a");
  auto* old = new StaticTransform;
  Matrix3 place = RotateYMatrix(0.4f);
  place.SetTrans({1, 2, 3});
  old->Set(place);
  old->SetLocked(true);
  node->SetTMController(old);
  const Ref<RigControl> control(new RigControl);
  ASSERT_TRUE(AssignWithCopy(node, 0, control.Get()));
  EXPECT_TRUE(IsNear(node->GetNodeTM(0), place, 1e-6f));
  EXPECT_TRUE(Sub<Point3>(control->GetPositionController()) == Point3());
  EXPECT_TRUE(control->GetLocked());
}

TEST_F(RigControlTest, CloneSharesNothing) {
  const Made made = AddControl(L"a");
  made.control->SetOffsetTM(TransMatrix({1, 2, 3}));
  made.Set(RigControl::kStraightScale, true);
  made.Move({4, 0, 0});
  made.control->SetLocked(true);
  INode* clone = GetScene().CloneNodes({made.node}).at(0);
  RigControl* copy = FindNodeRigControl(clone);
  ASSERT_NE(copy, nullptr);
  EXPECT_TRUE(clone->GetNodeTM(0) == made.node->GetNodeTM(0));
  EXPECT_TRUE(copy->GetLocked());
  for (int i = 0; i < 4; ++i) EXPECT_NE(copy->GetReference(i), made.control->GetReference(i));
  copy->SetLocked(false);
  copy->SetOffsetTM(TransMatrix({9, 9, 9}));
  EXPECT_TRUE(IsNear(made.node->GetNodeTM(0).GetTrans(), {5, 2, 3}, 1e-6f));
}

TEST_F(RigControlTest, KeysAreThoseOfTheParts) {
  const Made made = AddControl(L"a");
  AnimateOn();
  SetXFormPacket move = SetXFormPacket::Move({1, 0, 0}), turn = SetXFormPacket::Rotate(AngAxis{{0, 0, 1}, 1});
  made.control->SetValue(100, move, true, CTRL_RELATIVE);
  made.control->SetValue(300, turn, true, CTRL_RELATIVE);
  AnimateOff();
  ASSERT_EQ(made.control->NumKeys(), 3);  // 0, 100, 300
  EXPECT_EQ(made.control->GetKeyTime(2), 300);
  EXPECT_TRUE(made.control->IsAnimated());
  made.control->DeleteKeyAtTime(300);
  EXPECT_EQ(made.control->NumKeys(), 2);
}

TEST_F(RigControlTest, LockIsStored) {
  const Made made = AddControl(L"a");
  made.control->SetLocked(true);
  ISave save;
  ASSERT_EQ(made.control->Save(save), IOResult::OK);
  ILoad load(save.Bytes());
  RigControl loaded(true);
  ASSERT_EQ(loaded.Load(load), IOResult::OK);
  EXPECT_TRUE(loaded.GetLocked());
}

TEST_F(RigControlTest, EvaluationAllocatesNothing) {
  std::mt19937 rng(34);
  std::vector<Made> chain;
  for (int i = 0; i < 8; ++i) {
    chain.push_back(AddControl(L"joint", chain.empty() ? nullptr : chain.back().node));
    chain.back().control->SetOffsetTM(RandomRigid(rng, 2));
    chain.back().Set(RigControl::kStraightScale, i % 2 == 0);
    chain.back().Set(RigControl::kFigureMode, i == 3);
  }
  chain.back().node->GetNodeTM(0);
  const tests::AllocCounter counter;
  Interval valid = FOREVER;
  Matrix3 m;
  for (int i = 0; i < 20; ++i)
    for (const Made& made : chain) made.control->GetValue(i, m, valid, CTRL_RELATIVE);
  EXPECT_EQ(counter.Count(), 0u);
}

}  // namespace
}  // namespace tavrilon
