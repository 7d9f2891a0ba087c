// SPDX-License-Identifier: MIT
#include "plugin/fbx/fbx_export_settings.h"

#include "host/io/settings.h"

namespace tavrilon {

using namespace corvanta;

namespace {

struct SwitchRow {
  const wchar_t* key;
  bool FbxExportOptions::*value;
};
constexpr SwitchRow kSwitches[] = {
    {L"FBXExportMesh", &FbxExportOptions::skeletalMesh},
    {L"FBXExportAnimation", &FbxExportOptions::animation},
};

struct NumberRow {
  const wchar_t* key;
  int FbxExportOptions::*value;
};
constexpr NumberRow kNumbers[] = {
    {L"FBXExportStartFrame", &FbxExportOptions::startFrame},
    {L"FBXExportEndFrame", &FbxExportOptions::endFrame},
    {L"FBXExportSubSamples", &FbxExportOptions::subSamples},
};

/// A switch that stands for the time segment.
constexpr const wchar_t* kUseActiveRange = L"FBXExportUseActiveRange";

}  // namespace

FbxExportOptions LoadFbxExportOptions() {
  FbxExportOptions options;
  int value = 0;
  for (const SwitchRow& row : kSwitches)
    if (ReadIntSetting(row.key, &value)) options.*row.value = value != 0;
  for (const NumberRow& row : kNumbers) ReadIntSetting(row.key, &(options.*row.value));
  if (ReadIntSetting(kUseActiveRange, &value))
    options.timeSegment = static_cast<int>(value != 0 ? FbxTimeSegment::Active : FbxTimeSegment::Range);
  return options;
}

bool SaveFbxExportOptions(const FbxExportOptions& options) {
  const bool isActive = options.timeSegment == static_cast<int>(FbxTimeSegment::Active);
  bool done = WriteIntSetting(kUseActiveRange, isActive);
  for (const SwitchRow& row : kSwitches) done = WriteIntSetting(row.key, options.*row.value) && done;
  for (const NumberRow& row : kNumbers) done = WriteIntSetting(row.key, options.*row.value) && done;
  return done;
}

}  // namespace tavrilon
