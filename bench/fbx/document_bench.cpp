// SPDX-License-Identifier: MIT
// What reading and writing of FBX files cost before anything is made of the records: a skinned character with a walk
// (650 kB), and 900 curves of 250 keys.
#include <benchmark/benchmark.h>

#include <cmath>

#include "plugin/fbx/format/document.h"
#include "plugin/fbx/format/document_writer.h"

namespace {

using namespace tavrilon::fbx;

constexpr char kWalk[] = TAVRILON_SOURCE_DIR "/examples/mixamo_walk.fbx";
constexpr int kCurves = 900, kKeys = 250;
constexpr int64_t kTicksPerFrame = 1539538600;

/// Reads all arrays into vectors of the type that the scene uses.
size_t ReadArrays(RecordView::Range records) {
  static std::vector<double> reals;
  static std::vector<int64_t> wholes;
  size_t count = 0;
  for (const RecordView record : records) {
    for (size_t i = 0; i < record.NumProperties(); ++i) {
      const PropertyView property = record.Property(i);
      if (!property.IsArray()) continue;
      const bool real = property.Type() == PropertyType::FloatArray || property.Type() == PropertyType::DoubleArray;
      count += (real ? property.Read(reals) : property.Read(wholes)) ? property.Count() : 0;
    }
    count += ReadArrays(record.Children());
  }
  return count;
}

void BM_LoadWalk(benchmark::State& state) {
  for (auto _ : state) {
    FbxDocument document;
    if (!document.Load(kWalk)) state.SkipWithError("the file cannot be read");
    benchmark::DoNotOptimize(document.NumRecords());
  }
}
BENCHMARK(BM_LoadWalk)->Unit(benchmark::kMillisecond);

void BM_LoadWalkAndReadItsArrays(benchmark::State& state) {
  for (auto _ : state) {
    FbxDocument document;
    if (!document.Load(kWalk)) state.SkipWithError("the file cannot be read");
    benchmark::DoNotOptimize(ReadArrays(document.Records()));
  }
}
BENCHMARK(BM_LoadWalkAndReadItsArrays)->Unit(benchmark::kMillisecond);

/// Either all curves have their keys at the same times, as baked ones do, or each at its own.
void BM_WriteCurves(benchmark::State& state, bool sameTimes) {
  std::vector<int64_t> times(kKeys);
  std::vector<float> values(kKeys);
  for (int i = 0; i < kKeys; ++i) values[i] = std::sin(static_cast<float>(i) * 0.1f);
  for (auto _ : state) {
    FbxDocumentWriter out(7400);
    out.Begin("Objects");
    for (int curve = 0; curve < kCurves; ++curve) {
      for (int i = 0; i < kKeys; ++i) times[i] = i * kTicksPerFrame + (sameTimes ? 0 : curve);
      out.Begin("AnimationCurve");
      out.Long(curve);
      out.ObjectName("", "AnimCurve");
      out.Text("");
      out.ArrayLeaf("KeyTime", times);
      out.ArrayLeaf("KeyValueFloat", values);
      out.End();
    }
    out.End();
    benchmark::DoNotOptimize(out.Finish().data());
  }
}
BENCHMARK_CAPTURE(BM_WriteCurves, same_times, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_WriteCurves, own_times, false)->Unit(benchmark::kMillisecond);

}  // namespace
