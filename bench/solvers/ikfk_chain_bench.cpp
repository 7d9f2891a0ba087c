// SPDX-License-Identifier: MIT
// What a limb costs in a scene: the matrices of its joints with a goal that is keyed, at a new time and at the same
// time again, in IK, half way and in FK.
#include <benchmark/benchmark.h>

#include <vector>

#include "../support/bench_scene.h"
#include "host/scene/point_helper.h"
#include "plugin/solvers/ikfk_chain.h"

namespace {

using namespace corvanta;
using namespace tavrilon;

struct Limb {
  std::vector<INode*> joints;
  INode* goal = nullptr;
  IKFKChain* chain = nullptr;
};

INode* AddControl(INode* parent, const Matrix3& tm) {
  INode* node = GetScene().CreateObjectNode(new PointHelper);
  node->SetTMController(new RigControl);
  if (parent) parent->AttachChild(node, false);
  node->SetNodeTM(0, tm);
  return node;
}

Limb MakeLimb(int joints, float blend) {
  bench_scene::Fresh();
  Limb limb;
  INode* main = AddControl(nullptr, Matrix3());
  INode* clavicle = AddControl(main, TransMatrix({5, 0, 100}));
  INode* parent = clavicle;
  Matrix3 tm = clavicle->GetNodeTM(0);
  for (int i = 0; i < joints; ++i) {
    Matrix3 step = RotateZMatrix(-0.4f);
    step.SetTrans({30, 0, 0});
    tm = step * tm;
    limb.joints.push_back(parent = AddControl(parent, tm));
  }
  limb.goal = AddControl(main, tm);
  INode* pole = AddControl(main, TransMatrix({40, 60, 100}));
  INode* node = AddControl(main, tm);
  limb.chain = new IKFKChain;
  node->SetTMController(limb.chain);
  ParamBlock2& block = *limb.chain->GetParamBlock();
  for (INode* joint : limb.joints) block.Append(ikfk_chain::kJoints, joint);
  block.SetValue(ikfk_chain::kGoal, 0, limb.goal);
  block.SetValue(ikfk_chain::kTarget, 0, pole);
  block.SetValue(ikfk_chain::kIkfkBlend, 0, blend);
  AnimateOn();
  for (TimeValue t = 0; t <= 20000; t += 2000) {
    Matrix3 at = tm;
    at.SetTrans(tm.GetTrans() -
                Point3{static_cast<float>(t % 6000) * 0.002f, 0, static_cast<float>(t % 4000) * 0.003f});
    limb.goal->SetNodeTM(t, at);
  }
  AnimateOff();
  return limb;
}

void Evaluate(const Limb& limb, TimeValue t) {
  for (INode* joint : limb.joints) benchmark::DoNotOptimize(joint->GetNodeTM(t).row[3]);
}

void BM_NewTime(benchmark::State& state, int joints, float blend) {
  const Limb limb = MakeLimb(joints, blend);
  TimeValue t = 0;
  for (auto _ : state) {
    t = (t + 37) % 20000;
    if (blend == 0) limb.chain->MarkDirty(), limb.joints[0]->InvalidateTM();
    Evaluate(limb, t);
  }
}

void BM_SameTime(benchmark::State& state, int joints) {
  const Limb limb = MakeLimb(joints, 1);
  Evaluate(limb, 500);
  for (auto _ : state) Evaluate(limb, 500);
}

// The keyed goal alone, which is part of every new time.
void BM_GoalAlone(benchmark::State& state) {
  const Limb limb = MakeLimb(3, 1);
  TimeValue t = 0;
  for (auto _ : state) {
    t = (t + 37) % 20000;
    benchmark::DoNotOptimize(limb.goal->GetNodeTM(t).row[3]);
  }
}

// A drag of the goal, whose key is on that frame: the write, its messages, and the limb anew.
void BM_Drag(benchmark::State& state) {
  const Limb limb = MakeLimb(3, 1);
  TimeValue t = 0;
  Matrix3 tm = limb.goal->GetNodeTM(0);
  for (auto _ : state) {
    t = (t + 1) % 100;
    tm.SetTrans({60 + static_cast<float>(t) * 0.1f, 10, 90});
    limb.goal->SetNodeTM(0, tm);
    Evaluate(limb, 0);
  }
}

BENCHMARK_CAPTURE(BM_NewTime, arm_ik, 3, 1.0f);
BENCHMARK_CAPTURE(BM_NewTime, arm_half, 3, 0.5f);
BENCHMARK_CAPTURE(BM_NewTime, arm_fk_after_a_change, 3, 0.0f);
BENCHMARK_CAPTURE(BM_NewTime, aim_ik, 2, 1.0f);
BENCHMARK_CAPTURE(BM_NewTime, five_joints_ik, 5, 1.0f);
BENCHMARK_CAPTURE(BM_SameTime, arm, 3);
BENCHMARK(BM_GoalAlone);
BENCHMARK(BM_Drag);

}  // namespace
