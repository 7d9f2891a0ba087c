// SPDX-License-Identifier: MIT
// What a user waits for while a count changes or a point is dragged: a template with 99 spine bones is made anew, its
// places are worked out, and the frames of all its points are read.
#include <benchmark/benchmark.h>

#include <string>

#include "plugin/rig/point_frame.h"
#include "plugin/rig/template.h"
#include "plugin/rig/type_defaults.h"

namespace {

using namespace tavrilon;

TemplateParams Params() {
  TemplateParams params = ParamsForType(RigType::Biped);
  params[rig_param::kSpineBones] = 99;
  return params;
}

void RebuildTemplate(benchmark::State& state) {
  const TemplateParams params = Params();
  const RigPoints saved = BuildTemplate(RigType::Biped, params, {}, {});
  for (auto _ : state) benchmark::DoNotOptimize(BuildTemplate(RigType::Biped, params, saved, {}));
  state.SetLabel(std::to_string(saved.size()) + " points");
}
BENCHMARK(RebuildTemplate)->Unit(benchmark::kMicrosecond);

void WorkOutPlaces(benchmark::State& state) {
  const RigPoints points = BuildTemplate(RigType::Biped, Params(), {}, {});
  for (auto _ : state) benchmark::DoNotOptimize(PointPlaces(points));
}
BENCHMARK(WorkOutPlaces)->Unit(benchmark::kMicrosecond);

void ReadAllFrames(benchmark::State& state) {
  const RigPoints points = BuildTemplate(RigType::Biped, Params(), {}, {});
  const PointPlaces places(points);
  for (auto _ : state) {
    const PointFrames frames(points, places);
    for (size_t i = 0; i < points.size(); ++i) benchmark::DoNotOptimize(frames.PointTM(static_cast<int>(i), 100));
  }
}
BENCHMARK(ReadAllFrames)->Unit(benchmark::kMicrosecond);

}  // namespace
