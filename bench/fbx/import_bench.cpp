// SPDX-License-Identifier: MIT
// A skinned character with a walk (650 kB, 53 bones) from its file into nodes, skin and keys of the scene, beside
// assimp's reading of the same file into its own structures, which samples no curves and makes no scene with undo.
#include <assimp/scene.h>
#include <benchmark/benchmark.h>

#include <assimp/Importer.hpp>

#include "host/core/hold.h"
#include "host/scene/core_interface.h"
#include "plugin/fbx/fbx_import.h"
#include "plugin/fbx/format/sdk.h"
#include "plugin/frame/class_table.h"

namespace {

using namespace corvanta;
using namespace tavrilon;

constexpr char kWalk[] = TAVRILON_SOURCE_DIR "/examples/mixamo_walk.fbx";

void BM_Import(benchmark::State& state, bool animation) {
  RegisterHostClasses();
  RegisterTavrilonClasses();
  FbxImportOptions options;
  options.animation = animation;
  ExchangeReport report;
  for (auto _ : state) {
    if (!ImportFbx(FromUtf8(kWalk), options, report)) state.SkipWithError("the file cannot be imported");
    state.PauseTiming();
    ReplaceScene(std::make_unique<Scene>());
    state.ResumeTiming();
  }
}
BENCHMARK_CAPTURE(BM_Import, still, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Import, animated, true)->Unit(benchmark::kMillisecond);

/// The file's scene alone, before anything is made of it.
void BM_ReadScene(benchmark::State& state) {
  for (auto _ : state) {
    const auto manager = fbx::FbxManager::Create();
    const auto importer = fbx::FbxImporter::Create(*manager, "bench");
    const auto scene = fbx::FbxScene::Create("bench");
    if (!importer->Initialize(kWalk) || !importer->Import(*scene)) state.SkipWithError("the file cannot be read");
    benchmark::DoNotOptimize(scene->Nodes().data());
  }
}
BENCHMARK(BM_ReadScene)->Unit(benchmark::kMillisecond);

void BM_Assimp(benchmark::State& state) {
  for (auto _ : state) {
    Assimp::Importer importer;
    const aiScene* scene = importer.ReadFile(kWalk, 0);
    if (!scene) state.SkipWithError("assimp cannot read the file");
    benchmark::DoNotOptimize(scene);
  }
}
BENCHMARK(BM_Assimp)->Unit(benchmark::kMillisecond);

}  // namespace
