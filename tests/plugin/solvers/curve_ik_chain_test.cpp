// SPDX-License-Identifier: MIT
// The chain through its nodes: what it reads, when it evaluates, whom it tells.
#include "plugin/solvers/curve_ik_chain.h"

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

}  // namespace
}  // namespace tavrilon
