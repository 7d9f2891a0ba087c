// SPDX-License-Identifier: MIT
// Controllers that follow one node, at a new time each: the control's own animation and the target's are keyed. The
// rivals are the same controls without the constraint, so that what it adds is the difference.
#include <benchmark/benchmark.h>

#include "../support/bench_scene.h"
#include "host/scene/point_helper.h"
#include "plugin/constraints/root_constraint.h"
#include "plugin/constraints/root_transform.h"
#include "plugin/constraints/rotation_space.h"
#include "plugin/constraints/space_turn.h"

namespace {

using namespace corvanta;
using namespace tavrilon;

constexpr TimeValue kLast = 20000;

INode* Keyed(INode* parent) {
  INode* node = GetScene().CreateObjectNode(new PointHelper);
  node->SetTMController(new RigControl);
  if (parent) parent->AttachChild(node, false);
  return node;
}

/// A target, a parent and a control below it; `wrapping` null leaves the control free.
INode* MakeControl(WrappingControl* wrapping) {
  INode* target = Keyed(nullptr);
  INode* control = Keyed(Keyed(nullptr));
  bench_scene::Key(true);
  if (!wrapping) return control;
  wrapping->SetInner(control->GetTMController());
  control->SetTMController(wrapping);
  wrapping->SetTarget(target);
  return control;
}

void NewTime(benchmark::State& state, INode* control) {
  TimeValue t = 0;
  for (auto _ : state) {
    t = (t + 37) % kLast;
    benchmark::DoNotOptimize(control->GetNodeTM(t).row[3]);
  }
}

void BM_NewTime_free(benchmark::State& state) {
  bench_scene::Fresh();
  NewTime(state, MakeControl(nullptr));
}
void BM_NewTime_RotationSpace(benchmark::State& state) {
  bench_scene::Fresh();
  auto* space = new RotationSpace;
  INode* control = MakeControl(space);
  space->GetParamBlock()->SetValue(RotationSpace::kWeight, 0, 0.7f);
  space->GetParamBlock()->SetValue(RotationSpace::kKeepInitialOffset, 0, true);
  NewTime(state, control);
}
void BM_NewTime_RootConstraint(benchmark::State& state) {
  bench_scene::Fresh();
  NewTime(state, MakeControl(new RootConstraint));
}
BENCHMARK(BM_NewTime_free);
BENCHMARK(BM_NewTime_RotationSpace);
BENCHMARK(BM_NewTime_RootConstraint);

Matrix3 Pose(float a) {
  Matrix3 tm = EulerToMatrix({a, 2 * a, -a});
  tm.SetTrans({10 * a, a, 1});
  return tm;
}

void BM_TurnToSpace(benchmark::State& state) {
  Matrix3 m = Pose(0.3f);
  const Matrix3 space = Pose(1.1f);
  for (auto _ : state) {
    benchmark::DoNotOptimize(m);
    benchmark::DoNotOptimize(TurnToSpace(m, space, 0.7f));
  }
}
BENCHMARK(BM_TurnToSpace);

void BM_RootTransform(benchmark::State& state) {
  RootTransformIn in;
  in.parent = Pose(0.2f);
  in.hasTarget = in.useRest = true;
  in.target = Pose(1.1f);
  in.rest = Pose(0.9f);
  for (auto _ : state) {
    benchmark::DoNotOptimize(in);
    benchmark::DoNotOptimize(RootTransform(in));
  }
}
BENCHMARK(BM_RootTransform);

}  // namespace
