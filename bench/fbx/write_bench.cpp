// SPDX-License-Identifier: MIT
// How long writing baked animation takes: 100 bones, translation, rotation and scale, 250 linear keys a curve. The
// rival is deflating every array of the same file with a zlib stream of its own.
#include <benchmark/benchmark.h>
#include <zlib.h>

#include <cmath>

#include "plugin/fbx/format/sdk.h"

namespace {

using namespace tavrilon::fbx;

constexpr int kBones = 100, kKeys = 250;

void AddCurves(FbxAnimLayer& layer, FbxNode& node, const char* property, double phase) {
  FbxAnimCurveNode* curves = FbxAnimCurveNode::Create(node.GetScene(), property);
  curves->target = &node;
  curves->property = property;
  layer.curveNodes.push_back(curves);
  for (FbxAnimCurve& curve : curves->curves) {
    curve.shapes.resize(1);
    for (int key = 0; key < kKeys; ++key) {
      curve.times.push_back(FbxTime::FromSeconds(key / 30.0).ticks);
      curve.values.push_back(static_cast<float>(90 * std::sin(0.05 * key + phase)));
    }
    phase += 1;
  }
}

std::unique_ptr<FbxScene> BakedScene() {
  std::unique_ptr<FbxScene> scene = FbxScene::Create("Baked");
  FbxAnimStack* stack = FbxAnimStack::Create(*scene, "Take 001");
  FbxAnimLayer* layer = FbxAnimLayer::Create(*scene, "Base");
  stack->layers.push_back(layer);
  FbxNode* parent = scene->GetRootNode();
  for (int i = 0; i < kBones; ++i) {
    FbxNode* bone = FbxNode::Create(*scene, "bone " + std::to_string(i));
    parent->AddChild(bone);
    bone->SetNodeAttribute(FbxSkeleton::Create(*scene, bone->GetName()));
    for (const char* property : {"Lcl Translation", "Lcl Rotation", "Lcl Scaling"})
      AddCurves(*layer, *bone, property, i);
    parent = bone;
  }
  return scene;
}

void WriteBakedCurves(benchmark::State& state) {
  const std::unique_ptr<FbxScene> scene = BakedScene();
  const std::unique_ptr<FbxManager> manager = FbxManager::Create();
  size_t bytes = 0;
  for (auto _ : state) {
    const std::unique_ptr<FbxExporter> exporter = FbxExporter::Create(*manager, "bench");
    exporter->Initialize("baked.fbx", static_cast<int>(state.range(0)));
    bytes = exporter->Write(*scene).size();
    benchmark::DoNotOptimize(bytes);
  }
  state.counters["KiB"] = static_cast<double>(bytes) / 1024;
}
BENCHMARK(WriteBakedCurves)->Arg(0)->Arg(1)->Unit(benchmark::kMillisecond);

void DeflateEachArrayAnew(benchmark::State& state) {
  const std::unique_ptr<FbxScene> scene = BakedScene();
  size_t bytes = 0;
  for (auto _ : state) {
    bytes = 0;
    for (const FbxAnimCurveNode* node : scene->Stacks()[0]->layers[0]->curveNodes) {
      for (const FbxAnimCurve& curve : node->curves) {
        std::vector<Bytef> packed(compressBound(curve.times.size() * sizeof(int64_t)));
        for (const auto& [data, size] :
             {std::pair<const void*, size_t>(curve.times.data(), curve.times.size() * 8),
              std::pair<const void*, size_t>(curve.values.data(), curve.values.size() * 4)}) {
          uLongf length = packed.size();
          compress2(packed.data(), &length, static_cast<const Bytef*>(data), size, Z_DEFAULT_COMPRESSION);
          bytes += length;
        }
      }
    }
    benchmark::DoNotOptimize(bytes);
  }
  state.counters["KiB"] = static_cast<double>(bytes) / 1024;
}
BENCHMARK(DeflateEachArrayAnew)->Unit(benchmark::kMillisecond);

}  // namespace
