// SPDX-License-Identifier: MIT
// What is looked at before an export begins.
#pragma once

#include "plugin/fbx/exporter/sample_times.h"
#include "plugin/fbx/fbx_export.h"

namespace tavrilon::fbx_export {

/// What an export stands on besides its options.
struct ExportSurroundings {
  size_t numNodes = 0;
  corvanta::WStr file;
  int frameRate = 30;
  int ticksPerFrame = 200;
  corvanta::Interval activeRange;
  corvanta::TimeValue now = 0;
};

/// Checks in a fixed order and finds the times to sample. Gives an empty text, or the first thing that is wrong.
/// Without animation there is one sample, at the present time.
corvanta::WStr CheckExport(const ExportSurroundings& around, const FbxExportOptions& options, SampleTimes& times);

}  // namespace tavrilon::fbx_export
