// SPDX-License-Identifier: MIT
// One evaluation of a transform constraint with 1, 2 and 8 targets, whose own matrices are known already.
#include <benchmark/benchmark.h>

#include "../support/bench_scene.h"
#include "host/maths/euler.h"
#include "host/scene/point_helper.h"
#include "plugin/constraints/transform_constraint.h"

namespace {

using namespace corvanta;
using namespace tavrilon;

void BM_TransformConstraint(benchmark::State& state) {
  bench_scene::Fresh();
  const Ref<TransformConstraint> constraint(new TransformConstraint);
  for (int i = 0; i < state.range(0); ++i) {
    INode* node = GetScene().CreateObjectNode(new PointHelper);
    const float a = 0.3f * static_cast<float>(i);
    Matrix3 tm = EulerToMatrix({a, 2 * a, -a});
    tm.SetTrans({10 * a, a, 1});
    node->SetNodeTM(0, tm);
    node->GetNodeTM(0);
    constraint->AppendTarget(node, 10);
  }
  for (auto _ : state) {
    Matrix3 tm;
    Interval valid = FOREVER;
    constraint->GetValue(0, tm, valid, CTRL_RELATIVE);
    benchmark::DoNotOptimize(tm);
  }
}
BENCHMARK(BM_TransformConstraint)->Arg(1)->Arg(2)->Arg(8)->Unit(benchmark::kNanosecond);

}  // namespace
