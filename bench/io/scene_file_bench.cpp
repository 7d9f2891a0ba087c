// SPDX-License-Identifier: MIT
// How long does it take to save and to load a scene? Nodes with the host's transform controllers, ten keys a track.
#include <benchmark/benchmark.h>

#include "host/core/class_desc.h"
#include "host/core/control.h"
#include "host/core/hold.h"
#include "host/io/scene_file.h"
#include "host/scene/scene.h"

namespace corvanta {
namespace {

void Fill(int nodes) {
  RegisterHostClasses();
  ResetScene();
  const HoldSuspend noUndo;
  std::vector<INode*> made;
  for (int i = 0; i < nodes; ++i) {
    INode* node = GetScene().CreateObjectNode(static_cast<Object*>(CreateInstance(kHelperSuper, {0x2013, 0})));
    if (i) made[static_cast<size_t>(i - 1) / 2]->AttachChild(node, false);
    made.push_back(node);
    AnimateOn();
    for (int k = 1; k < 10; ++k) {
      Matrix3 tm;
      tm.RotateX(0.1f * static_cast<float>(k));
      tm.SetTrans({static_cast<float>(i), static_cast<float>(k), 1});
      node->SetNodeTM(k * 200, tm);
    }
    AnimateOff();
  }
}

void BM_SaveToBytes(benchmark::State& state) {
  Fill(static_cast<int>(state.range(0)));
  std::vector<uint8_t> bytes;
  for (auto _ : state)
    if (!SaveSceneToBytes(GetScene(), &bytes).empty()) state.SkipWithError("the scene cannot be saved");
  state.counters["bytes"] = static_cast<double>(bytes.size());
}
BENCHMARK(BM_SaveToBytes)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);

/// With dropping the scene before it, which is as large.
void BM_LoadFromBytes(benchmark::State& state) {
  Fill(static_cast<int>(state.range(0)));
  std::vector<uint8_t> bytes;
  if (!SaveSceneToBytes(GetScene(), &bytes).empty()) state.SkipWithError("the scene cannot be saved");
  for (auto _ : state)
    if (!LoadSceneFromBytes(bytes).empty()) state.SkipWithError("the scene cannot be loaded");
}
BENCHMARK(BM_LoadFromBytes)->Arg(100)->Arg(1000)->Unit(benchmark::kMillisecond);

}  // namespace
}  // namespace corvanta
