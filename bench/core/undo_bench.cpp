// SPDX-License-Identifier: MIT
// Undo of 10,000 parameter writes: as many different places in one step.
#include <benchmark/benchmark.h>

#include "../support/bench_scene.h"
#include "host/scene/point_helper.h"

namespace {

using namespace corvanta;

constexpr int kWrites = 10000;

std::vector<ParamBlock2*> MakeBlocks() {
  bench_scene::Fresh();
  std::vector<ParamBlock2*> blocks;
  for (int i = 0; i < kWrites / 5; ++i) {
    auto* point = new PointHelper;
    GetScene().LoadNode(0)->BindReference(1, point);
    blocks.push_back(point->GetParamBlock());
  }
  return blocks;
}

void WriteAll(const std::vector<ParamBlock2*>& blocks, int value) {
  for (ParamBlock2* block : blocks)
    for (const ParamID id : {PointHelper::kSize, PointHelper::kCenterMarker, PointHelper::kAxisTripod,
                             PointHelper::kCross, PointHelper::kBox})
      block->SetValue(id, 0, value);
}

void BM_RecordWrites(benchmark::State& state) {
  const std::vector<ParamBlock2*> blocks = MakeBlocks();
  int value = 0;
  for (auto _ : state) {
    theHold.Begin();
    WriteAll(blocks, ++value % 2);
    theHold.Accept(L"writes");
    state.PauseTiming();
    theHold.Flush();
    state.ResumeTiming();
  }
}
BENCHMARK(BM_RecordWrites)->Unit(benchmark::kMillisecond);

void BM_UndoWrites(benchmark::State& state) {
  const std::vector<ParamBlock2*> blocks = MakeBlocks();
  theHold.Begin();
  WriteAll(blocks, 1);
  theHold.Accept(L"writes");
  bool undo = false;
  for (auto _ : state) (undo = !undo) ? theHold.Undo() : theHold.Redo();
}
BENCHMARK(BM_UndoWrites)->Unit(benchmark::kMillisecond);

}  // namespace
