// SPDX-License-Identifier: MIT
#include "plugin/fbx/exporter/checks.h"

#include <algorithm>
#include <filesystem>
#include <limits>

namespace tavrilon::fbx_export {

using namespace corvanta;

namespace {

constexpr int kMaxSubSamples = 100;
/// Nodes times samples; with nine channels of four bytes some 4 GB.
constexpr double kMaxSamples = 1e8;

bool IsFileName(const WStr& file) {
  if (file.find_first_not_of(L" \t") == WStr::npos || file.find(L'\0') != WStr::npos) return false;
  std::error_code error;
  const std::filesystem::path path(ToUtf8(file));
  return path.has_filename() && !std::filesystem::is_directory(path, error);
}

/// The range in ticks; false when it is empty or no host time.
bool FindRange(const ExportSurroundings& around, const FbxExportOptions& options, Interval& range) {
  if (static_cast<FbxTimeSegment>(options.timeSegment) == FbxTimeSegment::Active) {
    range = around.activeRange;
    return range.start <= range.end;
  }
  const int64_t start = int64_t{options.startFrame} * around.ticksPerFrame;
  const int64_t end = int64_t{options.endFrame} * around.ticksPerFrame;
  using Limits = std::numeric_limits<TimeValue>;
  if (start > end || start < Limits::min() || end > Limits::max()) return false;
  range = Interval{static_cast<TimeValue>(start), static_cast<TimeValue>(end)};
  return true;
}

}  // namespace

WStr CheckExport(const ExportSurroundings& around, const FbxExportOptions& options, SampleTimes& times) {
  if (around.numNodes == 0) return L"No nodes are selected for export.";
  if (!IsFileName(around.file)) return L"Invalid output filename.";
  if (around.frameRate <= 0) return L"Invalid frame rate.";
  if (!options.skeletalMesh && !options.animation) return L"Enable skeletal mesh or animation export.";
  if (options.timeSegment != static_cast<int>(FbxTimeSegment::Active) &&
      options.timeSegment != static_cast<int>(FbxTimeSegment::Range))
    return L"Time Segment must be Active or Range.";
  Interval range;
  if (options.animation && !FindRange(around, options, range)) return L"Invalid animation frame range.";
  if (options.subSamples < 1 || options.subSamples > std::min(around.ticksPerFrame, kMaxSubSamples))
    return L"Sub Samples must be between 1 and the available ticks per frame, up to 100.";

  times = {around.now, around.ticksPerFrame, options.subSamples, 1};
  if (!options.animation) return {};
  const int64_t count = SampleTimes::Count(range.start, range.end, around.ticksPerFrame, options.subSamples);
  if (count < 1) return L"No valid transform samples in the export range.";
  if (static_cast<double>(count) * static_cast<double>(around.numNodes) > kMaxSamples)
    return L"Invalid export time range.";
  times.start = range.start;
  times.count = static_cast<int>(count);
  return {};
}

}  // namespace tavrilon::fbx_export
