// SPDX-License-Identifier: MIT
// One million loop passes of arithmetic, in a script.
#include <benchmark/benchmark.h>

#include "../support/bench_scene.h"
#include "host/script/execute.h"

namespace {

using namespace corvanta;

void BM_MillionPasses(benchmark::State& state) {
  bench_scene::Fresh();
  const WStr text = L"(local x = 0.0\nfor i = 1 to 1000000 do x = x * 0.5 + i\nx)";
  for (auto _ : state) {
    FPValue result;
    if (!ExecuteCorvantaScriptScript(text, L"bench", true, &result)) state.SkipWithError("the script failed");
    benchmark::DoNotOptimize(result);
  }
}
BENCHMARK(BM_MillionPasses)->Unit(benchmark::kMillisecond);

}  // namespace
