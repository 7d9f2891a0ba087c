// SPDX-License-Identifier: MIT
// How much memory files take on their way in: the most that was allocated at once beyond what was there before, as a
// multiple of the file's size, beside assimp's reading of the same file.
#include <assimp/scene.h>
#include <benchmark/benchmark.h>
#include <malloc.h>

#include <assimp/Importer.hpp>
#include <cstdlib>
#include <filesystem>
#include <new>

#include "host/scene/core_interface.h"
#include "plugin/fbx/fbx_import.h"
#include "plugin/fbx/format/sdk.h"
#include "plugin/frame/class_table.h"

namespace {

// One thread allocates here.
size_t live = 0, most = 0;

void* Take(size_t size) {
  void* p = std::malloc(size);
  if (!p) throw std::bad_alloc();
  live += malloc_usable_size(p);
  if (live > most) most = live;
  return p;
}
void Give(void* p) {
  if (p) live -= malloc_usable_size(p);
  std::free(p);
}

}  // namespace

void* operator new(size_t size) { return Take(size); }
void* operator new[](size_t size) { return Take(size); }
void operator delete(void* p) noexcept { Give(p); }
void operator delete[](void* p) noexcept { Give(p); }
void operator delete(void* p, size_t) noexcept { Give(p); }
void operator delete[](void* p, size_t) noexcept { Give(p); }

namespace {

using namespace corvanta;
using namespace tavrilon;

const char* const kFiles[] = {TAVRILON_SOURCE_DIR "/examples/mixamo_walk.fbx",
                              TAVRILON_SOURCE_DIR "/examples/character_skinned.fbx"};

/// Runs `work` for each pass and tells the peak of the last one.
template <class Work>
void Measure(benchmark::State& state, Work work) {
  const char* file = kFiles[state.range(0)];
  const auto size = static_cast<double>(std::filesystem::file_size(file));
  double peak = 0;
  for (auto _ : state) {
    const size_t before = live;
    most = live;
    if (!work(file)) state.SkipWithError("the file cannot be read");
    peak = static_cast<double>(most - before);
  }
  state.counters["KiB"] = peak / 1024;
  state.counters["times_the_file"] = peak / size;
}

void BM_Import(benchmark::State& state) {
  RegisterHostClasses();
  RegisterTavrilonClasses();
  Measure(state, [](const char* file) {
    ExchangeReport report;
    const bool done = ImportFbx(FromUtf8(file), {}, report);
    ReplaceScene(std::make_unique<Scene>());
    return done;
  });
}
BENCHMARK(BM_Import)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void BM_ReadScene(benchmark::State& state) {
  Measure(state, [](const char* file) {
    const auto manager = fbx::FbxManager::Create();
    const auto importer = fbx::FbxImporter::Create(*manager, "bench");
    const auto scene = fbx::FbxScene::Create("bench");
    return importer->Initialize(file) && importer->Import(*scene);
  });
}
BENCHMARK(BM_ReadScene)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void BM_Assimp(benchmark::State& state) {
  Measure(state, [](const char* file) {
    Assimp::Importer importer;
    return importer.ReadFile(file, 0) != nullptr;
  });
}
BENCHMARK(BM_Assimp)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

}  // namespace
