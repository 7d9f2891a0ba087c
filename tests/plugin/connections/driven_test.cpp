// SPDX-License-Identifier: MIT
// Controllers that compute: operations, waves, and what is read off nodes, with poses on top.
#include <cmath>

#include "plugin/connections/connect.h"
#include "plugin/connections/float_expose_tm.h"
#include "plugin/connections/float_operation.h"
#include "plugin/connections/float_wave.h"
#include "plugin/connections/twist_poses.h"
#include "plugin/connections/wires_test.h"
#include "plugin/controllers/static_controls.h"
#include "plugin/frame/guard.h"
#include "plugin/frame/rig_maths.h"
#include "support/alloc_counter.h"

namespace tavrilon {
namespace {

using namespace corvanta;

constexpr float kPi = 3.14159265f;

class DrivenTest : public WiresTest {
 protected:
  void SetUp() override {
    WiresTest::SetUp();
    upper = AddNode(L"upper");
    lower = AddNode(L"lower", upper);
    for (INode* node : {upper, lower}) node->SetTMController(new StaticTransform);
    upper->SetNodeTM(0, EulerToMatrix({0.3f, 0.5f, -0.4f}));
    Pose(0, 0);
  }
  /// Twists the lower node by `a` and swings it by `b` about Z, from a rest that is turned against the upper one.
  void Pose(float a, float b) {
    lower->SetNodeTM(0, RotateXMatrix(a) * RotateZMatrix(b) * EulerToMatrix({0.2f, 0.1f, 0.6f}) * upper->GetNodeTM(0));
  }
  INode* upper = nullptr;
  INode* lower = nullptr;
};

// Operations.

TEST_F(DrivenTest, AnOperationOfTwoConnections) {
  ParamBlock2& source = AddSource(upper);
  const Ref<FloatOperation> made(new FloatOperation);
  ParamBlock2& block = *made->GetParamBlock();
  EXPECT_EQ(Read(*made), 0) << "a new one is neutral";
  ASSERT_TRUE(ConnectFloat(block, float_operation::kA, source, source_attrib::kValue));
  ASSERT_TRUE(ConnectFloat(block, float_operation::kB, source, source_attrib::kOther));
  block.SetValue(float_operation::kOperation, 0, static_cast<int>(float_operation::Op::Subtract));
  block.SetValue(float_operation::kScale, 0, 2.0f);
  source.SetValue(source_attrib::kValue, 0, 5.0f);
  source.SetValue(source_attrib::kOther, 0, 2.0f);
  EXPECT_FLOAT_EQ(Read(*made), 6);
  block.SetValue(float_operation::kClampOutput, 0, true);
  block.SetValue(float_operation::kOutMax, 0, 4.0f);
  const tests::AllocCounter counter;
  EXPECT_FLOAT_EQ(Read(*made), 4);
  EXPECT_EQ(counter.Count(), 0u);
  Write(*made, 9);
  made->AddNewKey(0);
  EXPECT_FLOAT_EQ(Read(*made), 4);
  EXPECT_EQ(made->NumKeys(), 0);
  EXPECT_FALSE(made->IsKeyable());
}

TEST_F(DrivenTest, AnOperationHoldsAsLongAsTheInputsItReads) {
  const Ref<FloatOperation> made(new FloatOperation);
  ParamBlock2& block = *made->GetParamBlock();
  AnimateOn();
  block.SetValue(float_operation::kB, 0, 0.0f);
  block.SetValue(float_operation::kB, 100, 5.0f);
  AnimateOff();
  Interval valid = FOREVER;
  Read(*made, 50, valid);
  EXPECT_TRUE(valid == FOREVER) << "A does not look at b";
  block.SetValue(float_operation::kOperation, 0, static_cast<int>(float_operation::Op::Add));
  Read(*made, 50, valid);
  EXPECT_TRUE(valid == Interval::Instant(50));
}

// A wave.

TEST_F(DrivenTest, AWaveComesBackEachPeriod) {
  const Ref<FloatWave> made(new FloatWave);
  ParamBlock2& block = *made->GetParamBlock();
  const int frame = GetCOREInterface()->GetTicksPerFrame();
  EXPECT_EQ(Read(*made, 0), 0);
  block.SetValue(float_wave::kPeriod, 0, 8.0f);
  block.SetValue(float_wave::kOffset, 0, 10.0f);
  block.SetValue(float_wave::kAmplitude, 0, 4.0f);
  block.SetValue(float_wave::kWeight, 0, 0.5f);
  Interval valid = FOREVER;
  EXPECT_NEAR(Read(*made, 2 * frame, valid), 12, 1e-5f);
  EXPECT_TRUE(valid == Interval::Instant(2 * frame));
  EXPECT_NEAR(Read(*made, 10 * frame), 12, 1e-5f);
  block.SetValue(float_wave::kPhase, 0, 0.5f);
  EXPECT_NEAR(Read(*made, 2 * frame), 8, 1e-5f);
  block.SetValue(float_wave::kPeriod, 0, 0.0f);
  EXPECT_TRUE(std::isfinite(Read(*made, 77)));
  block.SetValue(float_wave::kWeight, 0, 0.0f);
  valid = FOREVER;
  EXPECT_EQ(Read(*made, 77, valid), 10);
  EXPECT_TRUE(valid == FOREVER);
}

// What is read off a node.

class ExposeTest : public DrivenTest {
 protected:
  void SetUp() override {
    DrivenTest::SetUp();
    made = new FloatExposeTM;
    block = made->GetParamBlock();
    block->SetValue(float_expose_tm::kNode, 0, lower);
  }
  void TearDown() override {
    made = {};
    DrivenTest::TearDown();
  }
  float Component(float_expose_tm::Component component) {
    block->SetValue(float_expose_tm::kComponent, 0, static_cast<int>(component));
    return Read(*made);
  }
  Ref<FloatExposeTM> made;
  ParamBlock2* block = nullptr;
};

TEST_F(ExposeTest, TwistIsMeasuredFromTheRestThatTheNodeHad) {
  EXPECT_NEAR(Component(float_expose_tm::Component::TwistX), 0, 1e-5f);
  Pose(0.7f, 0.4f);
  EXPECT_NEAR(Read(*made), 0.7f, 1e-4f);
  block->SetValue(float_expose_tm::kScale, 0, -1.0f);
  block->SetValue(float_expose_tm::kOffset, 0, 10.0f);
  EXPECT_NEAR(Read(*made), 9.3f, 1e-4f);
  made->TakeRest(0);
  EXPECT_NEAR(Read(*made), 10, 1e-4f);
  // The parent is the frame: turning both changes nothing.
  upper->SetNodeTM(0, EulerToMatrix({1, 1, 1}));
  EXPECT_NEAR(Read(*made), 10, 1e-4f);
}

TEST_F(ExposeTest, FramesAreParentReferenceAndWorld) {
  using C = float_expose_tm::Component;
  INode* frame = AddNode(L"frame");
  frame->SetNodeTM(0, TransMatrix({10, 0, 0}));
  upper->SetNodeTM(0, TransMatrix({0, 5, 0}));
  lower->SetNodeTM(0, TransMatrix({1, 7, 0}));
  EXPECT_FLOAT_EQ(Component(C::PositionY), 2);
  block->SetValue(float_expose_tm::kReference, 0, frame);
  EXPECT_FLOAT_EQ(Component(C::PositionX), -9);
  EXPECT_FLOAT_EQ(Component(C::Distance), std::hypot(9.0f, 7.0f));
  block->SetValue(float_expose_tm::kWorld, 0, true);
  EXPECT_FLOAT_EQ(Component(C::PositionX), 1);
  block->SetValue(float_expose_tm::kWorld, 0, false);
  GetScene().DeleteNode(frame);
  EXPECT_FLOAT_EQ(Component(C::PositionX), 1) << "in the parent's frame again";
  GetScene().DeleteNode(lower);
  EXPECT_EQ(Component(C::PositionX), 0);
}

TEST_F(ExposeTest, ReadsAtItsTimeOffset) {
  lower->SetTMController(NewDefaultMatrix3Controller());
  AnimateOn();
  lower->SetNodeTM(0, TransMatrix({0, 0, 0}) * upper->GetNodeTM(0));
  lower->SetNodeTM(6000, TransMatrix({60, 0, 0}) * upper->GetNodeTM(0));
  AnimateOff();
  const float later = Read(*made, 3000);
  EXPECT_GT(later, 10);
  block->SetValue(float_expose_tm::kTimeOffset, 0, 0.5f);
  EXPECT_NEAR(Read(*made, 0), later, 1e-4f);
}

TEST_F(ExposeTest, RefusesTheNodeThatItMoves) {
  const ParamRow& row = *block->GetParamDef(float_expose_tm::kNode);
  upper->SetTMController(NewDefaultMatrix3Controller());
  Control* rotation = upper->GetTMController()->GetRotationController();
  ASSERT_TRUE(rotation->AssignController(made.Get(), 0));
  EXPECT_FALSE(row.validator->Validate(made.Get(), row.id, upper));
  EXPECT_FALSE(row.validator->Validate(made.Get(), row.id, lower)) << "a child of it";
  EXPECT_TRUE(row.validator->Validate(made.Get(), row.id, AddNode(L"free")));
  // Code can make the circle all the same; it ends and is counted.
  const int before = GuardCount() + INode::ReentryCount();
  upper->InvalidateTM();
  upper->GetNodeTM(0);
  EXPECT_GT(GuardCount() + INode::ReentryCount(), before);
}

TEST_F(ExposeTest, UndoBringsNodeAndRestBackTogether) {
  const Matrix3 rest = block->GetMatrix3(float_expose_tm::kRest);
  Pose(0.5f, 0);
  theHold.Begin();
  block->SetValue(float_expose_tm::kNode, 0, upper);
  theHold.Accept(L"Node");
  const Matrix3 other = block->GetMatrix3(float_expose_tm::kRest);
  EXPECT_FALSE(other == rest);
  theHold.Undo();
  EXPECT_EQ(block->GetINode(float_expose_tm::kNode), lower);
  EXPECT_TRUE(block->GetMatrix3(float_expose_tm::kRest) == rest);
  theHold.Redo();
  EXPECT_TRUE(block->GetMatrix3(float_expose_tm::kRest) == other);
}

// Poses.

class PosesTest : public DrivenTest {
 protected:
  template <class T>
  Ref<T> Make() {
    Ref<T> made(new T);
    made->GetParamBlock()->SetValue(twist_poses::kNode, 0, lower);
    return made;
  }
};

TEST_F(PosesTest, FloatPosesFollowTheTwist) {
  const Ref<TwistPosesFloat> made = Make<TwistPosesFloat>();
  ParamBlock2& block = *made->GetParamBlock();
  EXPECT_EQ(Read(*made), 0) << "no poses";
  EXPECT_EQ(made->AddPose(1, 10.0f), 0);
  EXPECT_EQ(made->AddPose(-1, -4.0f), 0) << "sorted in";
  EXPECT_EQ(made->AddPose(0, 2), 1);
  EXPECT_EQ(made->AddPose(0.00001f, 0.0f), 1) << "over the one at the same angle";
  EXPECT_EQ(made->AddPose(2, WStr(L"x")), -1);
  EXPECT_EQ(made->AddPose(NAN, 1.0f), -1);
  EXPECT_EQ(made->NumPoses(), 3);
  const std::pair<float, float> kSamples[] = {{-1, -4}, {0, 0}, {1, 10}, {-2, -4}, {3, 10}};
  for (const auto& [angle, value] : kSamples) {
    Pose(angle, 0.5f);
    // The twist is read to about 1e-5 off matrices, and the curve is no steeper than 30.
    EXPECT_NEAR(Read(*made), value, 1e-3f) << angle;
  }
  block.SetValue(twist_poses::kWeight, 0, 0.5f);
  EXPECT_NEAR(Read(*made), 5, 1e-3f);
  const tests::AllocCounter counter;
  Read(*made);
  EXPECT_EQ(counter.Count(), 0u);
  block.SetCount(twist_poses::kValue, 1);
  EXPECT_NEAR(Read(*made), -2, 1e-5f) << "one whole pose is left";
  EXPECT_TRUE(made->DeletePose(0));
  EXPECT_FALSE(made->DeletePose(0));
  EXPECT_EQ(Read(*made), 0);
}

TEST_F(PosesTest, AddingAPoseIsOneUndo) {
  const Ref<TwistPosesFloat> made = Make<TwistPosesFloat>();
  theHold.Flush();
  made->AddPose(0.5f, 3.0f);
  EXPECT_EQ(theHold.NumUndo(), 1);
  theHold.Undo();
  EXPECT_EQ(made->NumPoses(), 0);
  theHold.Redo();
  EXPECT_EQ(made->NumPoses(), 1);
  EXPECT_EQ(Read(*made), 3);
}

TEST_F(PosesTest, RotationPosesTurn) {
  const Ref<TwistPosesRotation> made = Make<TwistPosesRotation>();
  ParamBlock2& block = *made->GetParamBlock();
  block.SetValue(twist_poses::kComponent, 0, static_cast<int>(twist_poses::Component::SwingZ));
  ASSERT_EQ(made->AddPose(0, Point3{0, 0, 0}), 0);
  ASSERT_EQ(made->AddPose(1, EulerToQuat({0.4f, 0, 0})), 1);
  EXPECT_EQ(made->AddPose(2, 1.0f), -1);
  const auto read = [&] {
    Quat q;
    Interval valid = FOREVER;
    made->GetValue(0, q, valid, CTRL_ABSOLUTE);
    return q;
  };
  Pose(0.9f, 1);
  // Angles read off matrices are good to about 1e-4 here.
  EXPECT_NEAR(Dot(read(), EulerToQuat({0.4f, 0, 0})), 1, 1e-6f);
  Pose(0.9f, 0.5f);
  EXPECT_NEAR(Dot(read(), EulerToQuat({0.2f, 0, 0})), 1, 1e-6f);
  block.SetValue(twist_poses::kWeight, 0, 0.5f);
  EXPECT_NEAR(Dot(read(), EulerToQuat({0.1f, 0, 0})), 1, 1e-6f);
  Matrix3 m = TransMatrix({1, 2, 3});
  Interval valid = FOREVER;
  made->GetValue(0, m, valid, CTRL_RELATIVE);
  EXPECT_TRUE(m == MakeMatrix(read()) * TransMatrix({1, 2, 3}));
}

TEST_F(PosesTest, AngleStaysWithinAHalfTurn) {
  const Ref<TwistPosesFloat> made = Make<TwistPosesFloat>();
  Interval valid = FOREVER;
  for (float a = -9; a < 9; a += 0.5f) {
    Pose(a, 0.3f);
    EXPECT_NEAR(made->AngleAt(0, valid), std::remainder(a, 2 * kPi), 1e-4f);
  }
}

}  // namespace
}  // namespace tavrilon
