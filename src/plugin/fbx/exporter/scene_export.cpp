// SPDX-License-Identifier: MIT
#include "plugin/fbx/exporter/scene_export.h"

#include "host/scene/core_interface.h"
#include "plugin/fbx/exporter/checks.h"
#include "plugin/fbx/exporter/hierarchy.h"
#include "plugin/fbx/exporter/mesh_export.h"
#include "plugin/fbx/exporter/transform_samples.h"
#include "plugin/fbx/format/sdk.h"

namespace tavrilon {

using namespace corvanta;
using namespace fbx;

namespace fbx_export {

namespace {

/// From here on files say their rate as a number, which every reader understands; the numbered modes few know.
constexpr int kFirstCustomRate = 120;

void FillSettings(ExportJob& job, const Scene& host, int frameRate) {
  FbxGlobalSettings& settings = job.scene.GetGlobalSettings();
  const bool isYUp = host.units.upAxis == UpAxis::Y;
  settings.SetAxisSystem(isYUp ? FbxAxisSystem::YUp() : FbxAxisSystem::ZUp());
  if (isYUp) job.axes = FbxAxisSystem::ZUp().ConversionTo(FbxAxisSystem::YUp());
  settings.SetSystemUnit({host.units.centimetres, 1.0});

  const TimeMode mode =
      frameRate < kFirstCustomRate ? FbxTime::ConvertFrameRateToTimeMode(frameRate) : TimeMode::Custom;
  settings.SetTimeMode(mode);
  if (mode == TimeMode::Custom) settings.SetCustomFrameRate(frameRate);
  settings.spanStart = ToFileTime(job.times.start);
  settings.spanStop = ToFileTime(job.times.At(job.times.count - 1));
}

bool MakeLayer(ExportJob& job) {
  FbxAnimStack* stack = FbxAnimStack::Create(job.scene, "Animation");
  job.layer = stack ? FbxAnimLayer::Create(job.scene, "Base Layer") : nullptr;
  if (!job.layer) return job.Fail(L"Could not create the FBX animation stack or layer.");
  stack->localStart = stack->referenceStart = ToFileTime(job.times.start);
  stack->localStop = stack->referenceStop = ToFileTime(job.times.At(job.times.count - 1));
  stack->layers.push_back(job.layer);
  job.scene.currentStack = stack->GetName();
  return true;
}

ExportSurroundings Surroundings(const Interface& core, size_t numNodes, const WStr& file) {
  return {numNodes,
          file,
          core.GetFrameRate(),
          core.GetFrameRate() > 0 ? core.GetTicksPerFrame() : 0,
          core.GetAnimRange(),
          core.GetTime()};
}

}  // namespace

std::unique_ptr<FbxScene> BuildFbxScene(const std::vector<INode*>& nodes, const WStr& file,
                                        const FbxExportOptions& options, ExchangeReport& report) {
  report = {};
  const Interface* core = GetCOREInterface();
  if (!core) {
    report.error = L"Could not access the Corvanta scene.";
    return nullptr;
  }
  const std::vector<INode*> ordered = InTreeOrder(nodes);
  SampleTimes times;
  report.error = CheckExport(Surroundings(*core, ordered.size(), file), options, times);
  if (!report.error.empty()) return nullptr;

  std::unique_ptr<FbxScene> scene = FbxScene::Create("Scene");
  if (!scene) {
    report.error = L"Could not create the FBX scene.";
    return nullptr;
  }
  ExportJob job(*scene, options, file, report);
  job.times = times;
  FillSettings(job, GetScene(), core->GetFrameRate());
  const bool done = ListNodes(job, ordered) && MakeNodes(job) && (!options.animation || MakeLayer(job)) &&
                    ExportMeshes(job) && ExportTransforms(job);
  if (!done) return nullptr;
  ExportBindPose(job);
  return scene;
}

}  // namespace fbx_export

namespace {

/// What the file holds, by the paths of the library's settings.
void FillSwitches(FbxIOSettings& settings, const FbxExportOptions& options) {
  settings.SetBoolProp("Export|AdvOptGrp|Fbx|Animation", options.animation);
  for (const char* path :
       {"Export|AdvOptGrp|Fbx|Material", "Export|AdvOptGrp|Fbx|Texture", "Export|IncludeGrp|Animation|Deformation",
        "Export|IncludeGrp|Animation|Deformation|Skins", "Export|AdvOptGrp|Fbx|Shape"})
    settings.SetBoolProp(path, options.skeletalMesh);
  settings.SetBoolProp("Export|AdvOptGrp|Fbx|EMBEDDED", false);
}

}  // namespace

bool ExportFbx(const std::vector<INode*>& nodes, const WStr& file, const FbxExportOptions& options,
               ExchangeReport& report) {
  const std::unique_ptr<FbxScene> scene = fbx_export::BuildFbxScene(nodes, file, options, report);
  if (!scene) return false;
  const std::unique_ptr<FbxManager> manager = FbxManager::Create();
  if (!manager) {
    report.error = L"Could not initialize the FBX SDK.";
    return false;
  }
  FillSwitches(manager->GetIOSettings(), options);
  if (!ShowProgress(L"Exporting FBX", 0.8)) {
    report.error = L"The FBX export was stopped.";
    return false;
  }
  const std::unique_ptr<FbxExporter> exporter = FbxExporter::Create(*manager, "FBX Exporter");
  const bool done = exporter &&
                    exporter->Initialize(ToUtf8(file), manager->GetIOPluginRegistry().GetNativeWriterFormat()) &&
                    exporter->Export(*scene);
  if (!done)
    report.error = exporter ? FromUtf8(exporter->GetStatus().GetErrorString()) : L"Could not create the FBX scene.";
  ShowProgress(L"Exporting FBX", 1);
  return done;
}

}  // namespace tavrilon
