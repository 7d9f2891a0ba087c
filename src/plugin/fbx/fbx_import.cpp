// SPDX-License-Identifier: MIT
#include "plugin/fbx/fbx_import.h"

#include "host/scene/core_interface.h"
#include "plugin/fbx/format/sdk.h"
#include "plugin/fbx/importer/conversion.h"
#include "plugin/fbx/importer/scene_building.h"

namespace tavrilon {

using namespace corvanta;
using namespace fbx_import;

namespace {

/// Share of the whole that reading the file takes.
constexpr double kReading = 0.25;

bool Fail(ExchangeReport& report, const WStr& error) {
  report.error = error;
  return false;
}

/// Switches of what is read, by the option that they follow.
struct SettingRow {
  const char* path;
  bool FbxImportOptions::*option;
};
constexpr SettingRow kSettings[] = {
    {"Import|AdvOptGrp|FileFormat|Fbx|Animation", &FbxImportOptions::animation},
    {"Import|AdvOptGrp|FileFormat|Fbx|Material", &FbxImportOptions::skeletalMesh},
    {"Import|AdvOptGrp|FileFormat|Fbx|Texture", &FbxImportOptions::skeletalMesh},
    {"Import|IncludeGrp|Animation|Deformation", &FbxImportOptions::skeletalMesh},
    {"Import|IncludeGrp|Animation|Deformation|Skins", &FbxImportOptions::skeletalMesh},
    {"Import|AdvOptGrp|FileFormat|Fbx|Shape", &FbxImportOptions::skeletalMesh},
};

bool CheckOptions(const WStr& file, const FbxImportOptions& options, ExchangeReport& report) {
  if (!options.skeletalMesh && !options.animation) return Fail(report, L"Enable skeletal mesh or animation import.");
  if (file.empty()) return Fail(report, L"Invalid input filename.");
  if (!GetCOREInterface()) return Fail(report, L"Could not access the Corvanta scene interface.");
  return true;
}

ImportContext PresentContext(const WStr& file) {
  const Scene& scene = GetScene();
  return {scene.units.centimetres, scene.time.frameRate, scene.Nodes().empty(), file};
}

bool ConvertAndBuild(fbx::FbxScene& scene, const WStr& file, const FbxImportOptions& options, ExchangeReport& report) {
  ImportPlan plan;
  WStr error = ConvertScene(scene, options, PresentContext(file), plan);
  if (error.empty()) error = BuildScene(plan);
  for (const std::string& line : scene.Log().Lines()) report.log.push_back(FromUtf8(line));
  if (!error.empty()) return Fail(report, error);
  ShowProgress(kImportTitle, 1);
  return true;
}

/// `open` gives an importer the file.
template <class Open>
bool ReadAndImport(const WStr& file, const FbxImportOptions& options, ExchangeReport& report, Open&& open) {
  const auto manager = fbx::FbxManager::Create();
  if (!manager) return Fail(report, L"Could not initialize the FBX SDK.");
  for (const SettingRow& row : kSettings) manager->GetIOSettings().SetBoolProp(row.path, options.*row.option);
  const auto importer = fbx::FbxImporter::Create(*manager, "FBX Importer");
  const auto scene = fbx::FbxScene::Create("Import");
  if (!importer || !scene) return Fail(report, L"Could not create the FBX import scene.");
  const auto progress = [](double share) { return ShowProgress(kImportTitle, kReading * share); };
  if (!open(*importer) || !importer->Import(*scene, progress))
    return Fail(report, FromUtf8(importer->GetStatus().GetErrorString()));
  return ConvertAndBuild(*scene, file, options, report);
}

/// Runs `work`; an exception is a failure like another.
template <class Work>
bool Guarded(const WStr& file, const FbxImportOptions& options, ExchangeReport& report, Work&& work) {
  report = {};
  try {
    return CheckOptions(file, options, report) && work();
  } catch (...) {
    return Fail(report, L"Unknown exception");
  }
}

}  // namespace

bool ImportFbx(const WStr& file, const FbxImportOptions& options, ExchangeReport& report) {
  return Guarded(file, options, report, [&] {
    return ReadAndImport(file, options, report,
                         [&](fbx::FbxImporter& importer) { return importer.Initialize(ToUtf8(file)); });
  });
}

bool ImportFbx(std::vector<uint8_t> bytes, const WStr& fileName, const FbxImportOptions& options,
               ExchangeReport& report) {
  return Guarded(fileName, options, report, [&] {
    return ReadAndImport(fileName, options, report, [&](fbx::FbxImporter& importer) {
      return importer.Initialize(std::move(bytes), ToUtf8(fileName));
    });
  });
}

bool ImportFbxScene(fbx::FbxScene& scene, const WStr& fileName, const FbxImportOptions& options,
                    ExchangeReport& report) {
  return Guarded(fileName, options, report, [&] { return ConvertAndBuild(scene, fileName, options, report); });
}

}  // namespace tavrilon
