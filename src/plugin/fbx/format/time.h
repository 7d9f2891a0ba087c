// SPDX-License-Identifier: MIT
// File time: whole ticks, 46186158000 a second, so that all usual frame rates have whole frames.
#pragma once

#include <compare>
#include <cstdint>

namespace tavrilon::fbx {

/// The time modes as numbered in files.
enum class TimeMode : int {
  Default = 0,
  Frames120 = 1,
  Frames100 = 2,
  Frames60 = 3,
  Frames50 = 4,
  Frames48 = 5,
  Frames30 = 6,
  Frames30Drop = 7,
  NtscDropFrame = 8,
  NtscFullFrame = 9,
  Pal = 10,
  Frames24 = 11,
  Frames1000 = 12,
  FilmFullFrame = 13,
  Custom = 14,
  Frames96 = 15,
  Frames72 = 16,
  Frames5994 = 17,
  Frames11988 = 18,
};

struct FbxTime {
  static constexpr int64_t kTicksPerSecond = 46186158000;

  int64_t ticks = 0;
  double Seconds() const { return static_cast<double>(ticks) / static_cast<double>(kTicksPerSecond); }
  /// To the nearest tick; NaN gives 0, what 64 bits do not hold (some six years either way) is clamped.
  static FbxTime FromSeconds(double seconds);
  auto operator<=>(const FbxTime&) const = default;

  /// The mode of a rate in frames a second, within `tolerance`; Custom when none is.
  static TimeMode ConvertFrameRateToTimeMode(double rate, double tolerance = 1e-8);
  /// Frames a second of a mode; 0 for Custom and Default.
  static double GetFrameRate(TimeMode mode);
};

}  // namespace tavrilon::fbx
