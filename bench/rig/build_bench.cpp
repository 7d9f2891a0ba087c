// SPDX-License-Identifier: MIT
// What a rigger waits for: editing a template, building a biped, taking it back, and moving it through time.
#include <benchmark/benchmark.h>

#include "../support/bench_scene.h"

namespace {

using namespace corvanta;
using namespace tavrilon;

void BM_TemplateRebuild99SpineBones(benchmark::State& state) {
  bench_scene::Fresh();
  auto* rig = new RigSystem;
  GetCOREInterface()->CreateObjectNode(rig);
  ParamBlock2& block = *rig->GetParamBlock();
  block.SetValue(rig_param::kSpineBones, 0, 99);
  bool on = false;
  for (auto _ : state) {
    block.SetValue(rig_param::kEndBones, 0, on = !on);
    benchmark::DoNotOptimize(rig->PointBox().max);
  }
}
BENCHMARK(BM_TemplateRebuild99SpineBones)->Unit(benchmark::kMicrosecond);

void BM_CreateRigBiped(benchmark::State& state) {
  bench_scene::Fresh();
  RigSystem& rig = bench_scene::AddRig();
  for (auto _ : state) {
    rig.CreateRig();
    state.PauseTiming();
    rig.ResetRig();
    theHold.Flush();
    state.ResumeTiming();
  }
}
BENCHMARK(BM_CreateRigBiped)->Unit(benchmark::kMillisecond);

/// Undo and redo of the build in turn; the time is that of one of them.
void BM_UndoOrRedoCreateRig(benchmark::State& state, bool undo) {
  bench_scene::Fresh();
  RigSystem& rig = bench_scene::AddRig();
  rig.CreateRig();
  for (auto _ : state) {
    if (!undo) {
      state.PauseTiming();
      theHold.Undo();
      state.ResumeTiming();
      theHold.Redo();
      continue;
    }
    theHold.Undo();
    state.PauseTiming();
    theHold.Redo();
    state.ResumeTiming();
  }
}
BENCHMARK_CAPTURE(BM_UndoOrRedoCreateRig, undo, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_UndoOrRedoCreateRig, redo, false)->Unit(benchmark::kMillisecond);

enum class Keyed { Main, All };

/// Every node of n built rigs, controls, solvers and bones, at a new time.
void BM_EvaluateRigs(benchmark::State& state, RigType type, Keyed keyed) {
  bench_scene::Fresh();
  for (int i = 0; i < state.range(0); ++i) bench_scene::AddRig(type).CreateRig();
  bench_scene::Key(keyed == Keyed::All);
  TimeValue t = 0;
  for (auto _ : state) {
    t = (t + 37) % 20000;
    GetScene().Evaluate(t);
    benchmark::DoNotOptimize(GetScene().Nodes().back()->GetNodeTM(t).row[3]);
  }
  state.SetLabel(std::to_string(GetScene().Nodes().size()) + " nodes");
}
BENCHMARK_CAPTURE(BM_EvaluateRigs, biped_main_keyed, RigType::Biped, Keyed::Main)
    ->Arg(1)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_EvaluateRigs, biped_all_keyed, RigType::Biped, Keyed::All)
    ->Arg(1)
    ->Arg(10)
    ->Arg(100)
    ->Unit(benchmark::kMicrosecond);
BENCHMARK_CAPTURE(BM_EvaluateRigs, quadruped_all_keyed, RigType::Quadruped, Keyed::All)
    ->Arg(1)
    ->Unit(benchmark::kMicrosecond);

void BM_EvaluateBipedSameTime(benchmark::State& state) {
  bench_scene::Fresh();
  bench_scene::AddRig().CreateRig();
  bench_scene::Key(true);
  for (auto _ : state) {
    GetScene().Evaluate(100);
    benchmark::DoNotOptimize(GetScene().Nodes().back()->GetNodeTM(100).row[3]);
  }
}
BENCHMARK(BM_EvaluateBipedSameTime)->Unit(benchmark::kMicrosecond);

}  // namespace
