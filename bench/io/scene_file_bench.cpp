// SPDX-License-Identifier: MIT
// Saving and loading scenes: 1,000 nodes with keys, and one built biped.
#include <benchmark/benchmark.h>

#include "../support/bench_scene.h"
#include "host/io/scene_file.h"
#include "host/scene/point_helper.h"

namespace {

using namespace corvanta;

enum class Content { KeyedNodes, Biped };

void MakeScene(Content content) {
  bench_scene::Fresh();
  if (content == Content::Biped) {
    bench_scene::AddRig().CreateRig();
    return;
  }
  AnimateOn();
  for (int i = 0; i < 1000; ++i) {
    INode* node = GetScene().CreateObjectNode(new PointHelper);
    for (TimeValue t = 0; t <= 2000; t += 200) node->SetNodeTM(t, TransMatrix({float(i), float(t), 0}));
  }
  AnimateOff();
}

void BM_Save(benchmark::State& state, Content content) {
  MakeScene(content);
  size_t bytes = 0;
  for (auto _ : state)
    if (SaveScene(L"/tmp/tavrilon_bench.tvs") != L"") state.SkipWithError("cannot save");
  std::vector<uint8_t> out;
  if (SaveSceneToBytes(GetScene(), &out).empty()) bytes = out.size();
  state.SetLabel(std::to_string(bytes) + " bytes");
}
BENCHMARK_CAPTURE(BM_Save, keyed_nodes, Content::KeyedNodes)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Save, biped, Content::Biped)->Unit(benchmark::kMillisecond);

void BM_Load(benchmark::State& state, Content content) {
  MakeScene(content);
  if (SaveScene(L"/tmp/tavrilon_bench.tvs") != L"") state.SkipWithError("cannot save");
  for (auto _ : state)
    if (LoadScene(L"/tmp/tavrilon_bench.tvs") != L"") state.SkipWithError("cannot load");
}
BENCHMARK_CAPTURE(BM_Load, keyed_nodes, Content::KeyedNodes)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Load, biped, Content::Biped)->Unit(benchmark::kMillisecond);

}  // namespace
