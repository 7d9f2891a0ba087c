// SPDX-License-Identifier: MIT
// The chain through its nodes: what it reads, when it evaluates, whom it tells.
#include "plugin/solvers/curve_ik_chain.h"

#include "host/io/scene_file.h"
#include "host/view/recorder.h"
#include "plugin/solvers/curve_chain_test.h"
#include "support/alloc_counter.h"

namespace tavrilon {
namespace {

using namespace corvanta;
using namespace curve_ik_chain;

TEST_F(CurveChainTest, JointsSpanTheCurve) {
  AddPoint({10, 0, 0});
  AddPoint({10, 30, 10});
  AddPoint({-20, 40, 0});
  AddJoints(5);
  ExpectNear(JointPos(0), {10, 0, 0});
  ExpectNear(JointPos(4), {-20, 40, 0});
  for (int i = 0; i < 5; ++i) EXPECT_FLOAT_EQ(BlockOf(joints[static_cast<size_t>(i)]).GetFloat(2), 0.25f * i);
  ExpectNear(chainNode->GetNodeTM(0), joints[4]->GetNodeTM(0));
  Move(points[2], {0, 80, 0});
  ExpectNear(JointPos(4), {0, 80, 0});
}

TEST_F(CurveChainTest, KeepsItsPassWhileItHolds) {
  for (int i = 0; i < 3; ++i) AddPoint({10.0f * i, 0, 5.0f * (i % 2)});
  AddJoints(4);
  JointPos(0);
  const int passes = chain->EvaluationCount();
  for (const TimeValue t : {0, 100, 5000})
    for (int i = 0; i < 4; ++i) JointPos(i, t);
  EXPECT_EQ(chain->EvaluationCount(), passes);
  AnimateOn();
  Move(points[1], {10, 20, 0}, 1000);
  AnimateOff();
  for (const TimeValue t : {0, 500, 1000})
    for (int i = 0; i < 4; ++i) JointPos(i, t);
  EXPECT_EQ(chain->EvaluationCount(), passes + 3);
  EXPECT_NE(JointPos(1, 0), JointPos(1, 1000));
}

TEST_F(CurveChainTest, EvaluationAllocatesNothing) {
  for (int i = 0; i < 3; ++i) AddPoint({10.0f * i, 0, 5.0f * (i % 2)});
  AddJoints(4);
  AnimateOn();
  Move(points[1], {10, 20, 0}, 1000);
  AnimateOff();
  for (int i = 0; i < 4; ++i) JointPos(i, 0);
  const int passes = chain->EvaluationCount();
  const tests::AllocCounter counter;
  for (TimeValue t = 10; t < 500; t += 10)
    for (int i = 0; i < 4; ++i) JointPos(i, t);
  EXPECT_EQ(counter.Count(), 0u);
  EXPECT_EQ(chain->EvaluationCount(), passes + 49);
}

// What each read narrows the interval by: the chain never gives a joint for longer than that.
TEST_F(CurveChainTest, IntervalIsThatOfAllItReads) {
  AddPoint({0, 0, 0}, kBezier);
  AddPoint({30, 0, 0});
  AddJoints(3);
  chain->SetOutTangent(0, AddNode({5, 5, 0}));
  INode* parent = AddNode({1, 1, 1});
  parent->AttachChild(joints[0], false);
  const auto interval = [&] {
    Interval valid = FOREVER;
    chain->GetJointTM(0, 1, valid);
    return valid;
  };
  EXPECT_EQ(interval(), FOREVER);
  const auto keyed = [&](auto&& write) {
    theHold.Begin();
    AnimateOn();
    write();
    AnimateOff();
    const bool narrow = interval() == Interval{0, 0};
    theHold.Cancel();
    return narrow && interval() == FOREVER;
  };
  EXPECT_TRUE(keyed([&] { Move(points[1], {9, 9, 9}, 500); }));
  EXPECT_TRUE(keyed([&] { Move(chain->GetOutTangent(0), {9, 9, 9}, 500); }));
  EXPECT_TRUE(keyed([&] { Move(parent, {9, 9, 9}, 500); }));
  EXPECT_TRUE(keyed([&] { BlockOf(joints[1]).SetValue(curve_ik_control::kPercent, 500, 0.2f); }));
  for (const ParamID id :
       {kPercent, kRotation, kTwist, kManualStretch, kAutoStretch, kSquash, kBackwards, kSlideJoints, kChainLength})
    EXPECT_TRUE(keyed([&] { Block().SetValue(id, 500, 0.3f); })) << id;
  EXPECT_TRUE(keyed([&] { chain->SetTwist(1, 1, 500); }));
  EXPECT_FALSE(keyed([&] { Block().SetValue(kWaveLength, 500, 20.0f); })) << "there is no wave";
}

TEST_F(CurveChainTest, HearsOfAllItReads) {
  AddPoint({0, 0, 0}, kBezier);
  AddPoint({30, 0, 0});
  AddJoints(3);
  INode* tangent = AddNode({10, 0, 0});
  chain->SetOutTangent(0, tangent);
  INode* parent = AddNode({1, 1, 1});
  parent->AttachChild(joints[0], false);
  const auto moved = [&](auto&& change) {
    const Matrix3 before = joints[1]->GetNodeTM(0);
    change();
    return !(joints[1]->GetNodeTM(0) == before);
  };
  EXPECT_TRUE(moved([&] { Move(points[1], {30, 9, 0}); }));
  EXPECT_TRUE(moved([&] { Move(tangent, {10, 9, 0}); }));
  EXPECT_TRUE(moved([&] { BlockOf(joints[1]).SetValue(curve_ik_control::kPercent, 0, 0.2f); }));
  EXPECT_TRUE(moved([&] { Block().SetValue(kTwist, 0, 1.0f); }));
  EXPECT_TRUE(moved([&] { chain->SetPointType(0, kCorner); }));
  // In the space of the parent with a turn of its own, what its axes mean changes with it.
  Block().SetValue(kUsePointsRotation, 0, false);
  Block().SetValue(kFollowType, 0, kFollowNone);
  EXPECT_TRUE(moved([&] {
    Matrix3 tm = RotateZMatrix(1);
    parent->SetNodeTM(0, tm);
  }));
  INode* space = AddNode({});
  Block().SetValue(kParentSpaceNode, 0, space);
  Block().SetValue(kParentSpace, 0, kNodeSpace);
  JointPos(1);
  EXPECT_TRUE(moved([&] { space->SetNodeTM(0, RotateXMatrix(1)); }));
  EXPECT_FALSE(moved([&] { Move(parent, {5, 5, 5}); }));
}

TEST_F(CurveChainTest, WholeRigMovesRigidly) {
  INode* root = AddNode({});
  for (int i = 0; i < 3; ++i) root->AttachChild(AddPoint({20.0f * i, 7.0f * (i % 2), 3}), true);
  AddJoints(4);
  for (INode* joint : joints) root->AttachChild(joint, false);
  std::vector<Matrix3> before;
  for (INode* joint : joints) before.push_back(joint->GetNodeTM(0));
  Matrix3 motion = EulerToMatrix({0.4f, 1, -2});
  motion.SetTrans({5, 6, 7});
  for (const int space : {kChainParentSpace, kWorldSpace}) {
    Block().SetValue(kParentSpace, 0, space);
    root->SetNodeTM(0, motion);
    for (size_t i = 0; i < joints.size(); ++i) ExpectNear(joints[i]->GetNodeTM(0), before[i] * motion);
    root->SetNodeTM(0, Matrix3());
  }
}

// Joints.

TEST_F(CurveChainTest, ALeavingJointStaysAndTheOthersSpread) {
  AddPoint({0, 0, 0});
  AddPoint({60, 0, 0});
  AddJoints(4);
  ExpectNear(JointPos(1), {20, 0, 0});
  theHold.Begin();
  Block().Delete(kJoints, 1);
  theHold.Accept(L"Delete");
  EXPECT_EQ(CurveIKControl::Of(joints[1]), nullptr);
  ExpectNear(JointPos(1), {20, 0, 0});
  ExpectNear(JointPos(2), {30, 0, 0});
  EXPECT_EQ(CurveIKControl::Of(joints[2])->Index(), 1);
  theHold.Undo();
  ASSERT_NE(CurveIKControl::Of(joints[1]), nullptr);
  Move(points[1], {90, 0, 0});
  for (int i = 0; i < 4; ++i) ExpectNear(JointPos(i), {30.0f * i, 0, 0});
}

TEST_F(CurveChainTest, UndoOfAdoptionBringsTheControllerBack) {
  AddPoint({0, 0, 0});
  AddPoint({60, 0, 0});
  INode* node = AddNode({7, 8, 9});
  Control* before = node->GetTMController();
  theHold.Begin();
  Block().Append(kJoints, node);
  theHold.Accept(L"Add");
  EXPECT_NE(CurveIKControl::Of(node), nullptr);
  theHold.Undo();
  EXPECT_EQ(node->GetTMController(), before);
  EXPECT_EQ(Block().Count(kJoints), 0);
  ExpectNear(node->GetNodeTM(0).GetTrans(), {7, 8, 9});
  theHold.Redo();
  ExpectNear(node->GetNodeTM(0).GetTrans(), {0, 0, 0});
  theHold.Begin();
  Block().Delete(kJoints, 0);
  theHold.Cancel();
  Move(points[0], {1, 2, 3});
  ExpectNear(node->GetNodeTM(0).GetTrans(), {1, 2, 3});
}

TEST_F(CurveChainTest, InnerControllerComesOnTop) {
  AddPoint({0, 0, 0});
  AddPoint({60, 0, 0});
  AddJoints(2);
  CurveIKControl* control = CurveIKControl::Of(joints[1]);
  EXPECT_EQ(control->GetPositionController(), nullptr);
  Move(joints[1], {1, 1, 1});  // nothing takes it
  ExpectNear(JointPos(1), {60, 0, 0});
  Control* inner = NewDefaultMatrix3Controller();
  EXPECT_TRUE(control->AssignController(inner, 1));
  EXPECT_EQ(control->GetPositionController(), inner->GetPositionController());
  Move(joints[1], {60, 5, 0});
  ExpectNear(JointPos(1), {60, 5, 0});
  Move(points[1], {80, 0, 0});
  ExpectNear(JointPos(1), {80, 5, 0});
  control->SetLocked(true);
  Move(joints[1], {0, 0, 0});
  ExpectNear(JointPos(1), {80, 5, 0});
  control->SetLocked(false);
  Block().Delete(kJoints, 1);
  EXPECT_EQ(joints[1]->GetTMController(), inner);
}

TEST_F(CurveChainTest, EvenRowsStayEvenAndOwnPercentsStay) {
  AddPoint({0, 0, 0});
  AddPoint({60, 0, 0});
  AddJoints(3);
  BlockOf(joints[1]).SetValue(curve_ik_control::kPercent, 0, 0.1f);
  AddJoints(1);
  for (const auto& [i, x] : {std::pair{0, 0.0f}, {1, 6.0f}, {2, 40.0f}, {3, 60.0f}}) ExpectNear(JointPos(i), {x, 0, 0});
}

// Life.

TEST_F(CurveChainTest, AnyNodeMayGo) {
  for (int i = 0; i < 3; ++i) AddPoint({30.0f * i, 10.0f * (i % 2), 0}, kBezier);
  AddJoints(4);
  INode* tangent = AddNode({35, 15, 0});
  chain->SetOutTangent(1, tangent);
  std::vector<INode*> doomed = points;
  doomed.insert(doomed.end(), joints.begin(), joints.end());
  doomed.push_back(tangent);
  doomed.push_back(chainNode);
  std::vector<Matrix3> before;
  for (INode* joint : joints) before.push_back(joint->GetNodeTM(0));
  for (INode* node : doomed) {
    theHold.Begin();
    GetScene().DeleteNode(node);
    theHold.Accept(L"Delete");
    for (INode* joint : joints) joint->GetNodeTM(0);
    theHold.Undo();
    for (size_t i = 0; i < joints.size(); ++i) ExpectNear(joints[i]->GetNodeTM(0), before[i]);
  }
  for (INode* node : doomed) {
    GetScene().DeleteNode(node);
    for (const auto& left : GetScene().Nodes()) left->GetNodeTM(0);
  }
}

TEST_F(CurveChainTest, CloneDrivesItself) {
  AddPoint({0, 0, 0});
  AddPoint({60, 0, 0});
  AddJoints(3);
  std::vector<INode*> all{joints[2], joints[0], chainNode, points[0], points[1], joints[1]};
  const std::vector<INode*> clones = GetScene().CloneNodes(all);
  ASSERT_EQ(clones.size(), all.size());
  Move(points[1], {90, 0, 0});
  ExpectNear(clones[0]->GetNodeTM(0).GetTrans(), {60, 0, 0});
  Move(clones[4], {0, 30, 0});
  ExpectNear(clones[5]->GetNodeTM(0).GetTrans(), {0, 15, 0});
  ExpectNear(JointPos(1), {45, 0, 0});
  // Alone, it drives none.
  INode* alone = GetScene().CloneNodes({chainNode})[0];
  ParamBlock2& block = *CurveIKChain::Of(alone)->GetParamBlock();
  for (int i = 0; i < 3; ++i) EXPECT_EQ(block.GetINode(kJoints, 0, i), nullptr);
  block.SetCount(kJoints, 0);
  ExpectNear(JointPos(1), {45, 0, 0});
}

TEST_F(CurveChainTest, SavedAndLoadedItGoesOn) {
  AddPoint({0, 0, 0});
  AddPoint({60, 0, 0});
  AddJoints(3);
  points[1]->SetName(L"point");
  joints[1]->SetName(L"joint");
  chain->SetTwist(0, 0.5f, 0);
  std::vector<uint8_t> bytes, again;
  ASSERT_EQ(SaveSceneToBytes(GetScene(), &bytes), L"");
  ASSERT_EQ(LoadSceneFromBytes(bytes), L"");
  ASSERT_EQ(SaveSceneToBytes(GetScene(), &again), L"");
  EXPECT_EQ(bytes, again);
  INode* joint = GetScene().GetINodeByName(L"joint");
  Move(GetScene().GetINodeByName(L"point"), {0, 60, 0});
  ExpectNear(joint->GetNodeTM(0).GetTrans(), {0, 30, 0});
  CurveIKControl::Of(joint)->Chain()->GetParamBlock()->Delete(kJoints, 1);
  EXPECT_EQ(CurveIKControl::Of(joint), nullptr);
}

// The published interface.

TEST_F(CurveChainTest, PointsByTheInterface) {
  INode* a = AddPoint({0, 0, 0});
  INode* b = AddPoint({60, 0, 0}, kCorner);
  INode* tangent = AddNode({50, 5, 0});
  EXPECT_EQ(chain->NumPoints(), 2);
  EXPECT_EQ(chain->GetPointType(0), kSmooth);
  EXPECT_EQ(chain->GetPointType(1), kCorner);
  EXPECT_FALSE(chain->SetPointType(1, 4));
  EXPECT_TRUE(chain->SetPointType(1, kBezier));
  EXPECT_TRUE(chain->SetInTangent(1, tangent));
  EXPECT_EQ(chain->GetInTangent(1), tangent);
  EXPECT_EQ(chain->GetOutTangent(1), nullptr);
  EXPECT_FLOAT_EQ(chain->GetAmplitude(1, 0), 1);
  EXPECT_TRUE(chain->SetAmplitude(1, 0.5f, 0));
  EXPECT_FLOAT_EQ(chain->GetAmplitude(1, 0), 0.5f);
  EXPECT_FALSE(chain->AddPoint(nullptr));
  EXPECT_FALSE(chain->AddPoint(chainNode));
  EXPECT_THROW(chain->GetPoint(2), CorvantaSDK::Util::TabOutOfRangeException);
  EXPECT_THROW(chain->SetTwist(-1, 0, 0), CorvantaSDK::Util::TabOutOfRangeException);
  theHold.Begin();
  EXPECT_TRUE(chain->RemovePoint(0));
  theHold.Accept(L"Remove");
  EXPECT_EQ(chain->GetPoint(0), b);
  EXPECT_EQ(chain->GetInTangent(0), tangent);
  theHold.Undo();
  EXPECT_EQ(chain->GetPoint(0), a);
  EXPECT_EQ(chain->GetInTangent(1), tangent);
  FPValue result;
  const FPValue args[] = {TargetValue(AddNode({90, 0, 0})),
                          FPValue(1),
                          TargetValue(nullptr),
                          TargetValue(nullptr),
                          FPValue(0.25f),
                          FPValue(2.0f),
                          FPValue(false)};
  EXPECT_EQ(chain->Invoke(ICurveIKChain::kAddPoint, 0, result, args), FPStatus::OK);
  EXPECT_TRUE(result.ToBool());
  EXPECT_EQ(chain->GetPointType(2), kBezier);
  EXPECT_FLOAT_EQ(chain->GetTwist(2, 0), 0.25f);
  EXPECT_FALSE(chain->GetUseTangentNodes(2));
  // A node that hangs on a joint cannot shape the curve.
  AddJoints(2);
  EXPECT_FALSE(chain->SetPoint(0, AddNode({}, joints[1])));
}

TEST_F(CurveChainTest, TangentsByNodesOrInside) {
  AddPoint({0, 0, 0}, kBezier);
  AddPoint({60, 0, 0}, kBezier);
  AddJoints(3);
  chain->SetOutTangent(0, AddNode({0, 30, 0}));
  chain->SetInTangent(1, AddNode({60, 30, 0}));
  const Point3 bent = JointPos(1);
  EXPECT_GT(bent.y, 20);
  for (const int i : {0, 1}) EXPECT_TRUE(chain->SetUseTangentNodes(i, false));
  ExpectNear(JointPos(1), bent);
  Move(chain->GetOutTangent(0), {0, 0, 90});
  ExpectNear(JointPos(1), bent);
  // Inside the point they turn with it.
  points[0]->SetNodeTM(0, RotateXMatrix(kHalfPi));
  EXPECT_GT(JointPos(1).z, 5);
  chain->ResetTangents();
  ExpectNear(JointPos(1), {30, 0, 0});
  ExpectNear(chain->GetOutTangent(0)->GetNodeTM(0).GetTrans(), {20, 0, 0});
  for (const int i : {0, 1}) EXPECT_TRUE(chain->SetUseTangentNodes(i, true));
  ExpectNear(JointPos(1), {30, 0, 0});
}

TEST_F(CurveChainTest, ResetLengthHoldsTheJoints) {
  for (int i = 0; i < 3; ++i) AddPoint({30.0f * i, 20.0f * (i % 2), 0});
  AddJoints(5);
  std::vector<Point3> before;
  for (int i = 0; i < 5; ++i) before.push_back(JointPos(i));
  chain->ResetLength();
  Block().SetValue(kAutoStretch, 0, 0.0f);
  for (int i = 0; i < 5; ++i) ExpectNear(JointPos(i), before[static_cast<size_t>(i)]);
}

TEST_F(CurveChainTest, DrawsCurveAndTangents) {
  AddPoint({0, 0, 0}, kBezier);
  AddPoint({60, 20, 0});
  AddJoints(2);
  chain->SetOutTangent(0, AddNode({0, 30, 0}));
  const auto lines = [&](int curve, int tangents) {
    Block().SetValue(kDisplayCurve, 0, curve);
    Block().SetValue(kDisplayTangents, 0, tangents);
    RecordingWindow window;
    chain->Display(0, chainNode, window);
    return window.Count(PrimitiveKind::Polyline);
  };
  EXPECT_EQ(lines(0, 0), 0);
  EXPECT_EQ(lines(1, 1), 0);
  EXPECT_EQ(lines(2, 0), 1);
  EXPECT_EQ(lines(2, 2), 2);
  GetScene().SelectNode(points[0]);
  EXPECT_EQ(lines(1, 1), 2);
  Box3 box;
  chain->GetWorldBoundBox(0, chainNode, box);
  EXPECT_TRUE(box.max.x >= 59.9f && box.max.y >= 19);
}

}  // namespace
}  // namespace tavrilon
