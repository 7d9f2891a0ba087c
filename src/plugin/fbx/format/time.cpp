// SPDX-License-Identifier: MIT
#include "plugin/fbx/format/time.h"

#include <cmath>

namespace tavrilon::fbx {

namespace {
struct ModeRate {
  TimeMode mode;
  double rate;
};
// Of several modes of one rate the first is the one that a rate is converted to.
constexpr ModeRate kRates[] = {
    {TimeMode::Frames24, 24},
    {TimeMode::Pal, 25},
    {TimeMode::Frames30, 30},
    {TimeMode::Frames30Drop, 30},
    {TimeMode::Frames48, 48},
    {TimeMode::Frames50, 50},
    {TimeMode::Frames60, 60},
    {TimeMode::Frames72, 72},
    {TimeMode::Frames96, 96},
    {TimeMode::Frames100, 100},
    {TimeMode::Frames120, 120},
    {TimeMode::Frames1000, 1000},
    {TimeMode::NtscFullFrame, 30000.0 / 1001},
    {TimeMode::NtscDropFrame, 30000.0 / 1001},
    {TimeMode::FilmFullFrame, 24000.0 / 1001},
    {TimeMode::Frames5994, 60000.0 / 1001},
    {TimeMode::Frames11988, 120000.0 / 1001},
};
}  // namespace

FbxTime FbxTime::FromSeconds(double seconds) {
  // The last double below 2^63.
  constexpr double kMost = 9223372036854774784.0;
  if (std::isnan(seconds)) return {};
  const double ticks = std::round(seconds * static_cast<double>(kTicksPerSecond));
  if (ticks >= kMost) return {static_cast<int64_t>(kMost)};
  if (ticks <= -kMost) return {-static_cast<int64_t>(kMost)};
  return {static_cast<int64_t>(ticks)};
}

TimeMode FbxTime::ConvertFrameRateToTimeMode(double rate, double tolerance) {
  for (const ModeRate& row : kRates) {
    if (std::abs(row.rate - rate) <= tolerance) return row.mode;
  }
  return TimeMode::Custom;
}

double FbxTime::GetFrameRate(TimeMode mode) {
  for (const ModeRate& row : kRates) {
    if (row.mode == mode) return row.rate;
  }
  return 0;
}

}  // namespace tavrilon::fbx
