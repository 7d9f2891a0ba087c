// SPDX-License-Identifier: MIT
// What an animator waits for who sends a take to a game engine: 250 frames of a built biped's bones.
#include <benchmark/benchmark.h>

#include <filesystem>

#include "../support/bench_scene.h"
#include "host/scene/bone_object.h"
#include "plugin/fbx/exporter/scene_export.h"
#include "plugin/fbx/format/sdk.h"

namespace {

using namespace corvanta;
using namespace tavrilon;

constexpr int kFrames = 250;

/// Keys on position and rotation of every rig control, or of the first only, through all frames.
void Key(bool all) {
  AnimateOn();
  int i = 0;
  for (const Ref<INode>& node : GetScene().Nodes()) {
    RigControl* control = FindNodeRigControl(node.Get());
    if (!control || (!all && i > 0)) continue;
    ++i;
    for (int frame = 0; frame <= kFrames; frame += 25) {
      const TimeValue t = frame * GetCOREInterface()->GetTicksPerFrame();
      const float a = 0.05f * static_cast<float>((i + frame / 25 * 2) % 7);
      Point3 p{a, -a, a};
      Quat q = EulerToQuat({a, 2 * a, -a});
      control->GetPositionController()->SetValue(t, p);
      GetRealRotationController(control)->SetValue(t, q);
    }
  }
  AnimateOff();
}

/// The bones of a biped whose controls are all keyed, or its main ones only.
std::vector<INode*> Bones(bool allKeyed) {
  bench_scene::Fresh();
  bench_scene::AddRig().CreateRig();
  Key(allKeyed);
  GetScene().time.range = {0, (kFrames - 1) * GetCOREInterface()->GetTicksPerFrame()};
  std::vector<INode*> bones;
  for (const Ref<INode>& node : GetScene().Nodes())
    if (dynamic_cast<BoneObject*>(node->GetBaseObject())) bones.push_back(node.Get());
  return bones;
}

WStr File() { return FromUtf8((std::filesystem::temp_directory_path() / "tavrilon_export_bench.fbx").string()); }

void Label(benchmark::State& state, size_t bones, size_t bytes) {
  state.SetLabel(std::to_string(bones) + " bones, " + std::to_string(bytes >> 10) + " KiB");
}

/// Everything, the file on disk included.
void BM_ExportBiped(benchmark::State& state, bool allKeyed) {
  const std::vector<INode*> bones = Bones(allKeyed);
  ExchangeReport report;
  for (auto _ : state)
    if (!ExportFbx(bones, File(), {}, report)) state.SkipWithError(ToUtf8(report.error).c_str());
  std::error_code error;
  Label(state, bones.size(), std::filesystem::file_size(ToUtf8(File()), error));
  std::filesystem::remove(ToUtf8(File()), error);
}
BENCHMARK_CAPTURE(BM_ExportBiped, all_keyed, true)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_ExportBiped, main_keyed, false)->Unit(benchmark::kMillisecond);

// Its parts, for the same biped: the matrices alone, samples and curves with them, and the bytes.
void BM_PartEvaluate(benchmark::State& state) {
  const std::vector<INode*> bones = Bones(true);
  const int ticks = GetCOREInterface()->GetTicksPerFrame();
  for (auto _ : state)
    for (int frame = 0; frame < kFrames; ++frame)
      for (INode* bone : bones) benchmark::DoNotOptimize(bone->GetNodeTM(frame * ticks).row[3]);
  Label(state, bones.size(), 0);
}
BENCHMARK(BM_PartEvaluate)->Unit(benchmark::kMillisecond);

void BM_PartBuildScene(benchmark::State& state) {
  const std::vector<INode*> bones = Bones(true);
  ExchangeReport report;
  for (auto _ : state) benchmark::DoNotOptimize(fbx_export::BuildFbxScene(bones, File(), {}, report).get());
  Label(state, bones.size(), 0);
}
BENCHMARK(BM_PartBuildScene)->Unit(benchmark::kMillisecond);

void BM_PartWrite(benchmark::State& state) {
  const std::vector<INode*> bones = Bones(true);
  ExchangeReport report;
  const auto scene = fbx_export::BuildFbxScene(bones, File(), {}, report);
  const auto manager = fbx::FbxManager::Create();
  const auto exporter = fbx::FbxExporter::Create(*manager, "");
  exporter->Initialize("a.fbx", manager->GetIOPluginRegistry().GetNativeWriterFormat());
  size_t bytes = 0;
  for (auto _ : state) bytes = exporter->Write(*scene).size();
  Label(state, bones.size(), bytes);
}
BENCHMARK(BM_PartWrite)->Unit(benchmark::kMillisecond);

}  // namespace
