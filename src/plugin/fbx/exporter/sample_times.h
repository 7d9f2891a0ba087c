// SPDX-License-Identifier: MIT
// When a node is looked at during an export: every frame, or several times a frame.
#pragma once

#include "host/maths/interval.h"
#include "plugin/fbx/format/time.h"

namespace tavrilon::fbx_export {

/// Host time as file time; exact, since a host tick is a whole number of file ticks.
inline fbx::FbxTime ToFileTime(corvanta::TimeValue t) {
  static_assert(fbx::FbxTime::kTicksPerSecond % corvanta::kTicksPerSecond == 0);
  return {int64_t{t} * (fbx::FbxTime::kTicksPerSecond / corvanta::kTicksPerSecond)};
}

struct SampleTimes {
  corvanta::TimeValue start = 0;
  int ticksPerFrame = 1;
  int subSamples = 1;
  int count = 1;

  /// Of samples that fit from `start` to `end`, both included.
  static int64_t Count(corvanta::TimeValue start, corvanta::TimeValue end, int ticksPerFrame, int subSamples) {
    return (int64_t{end} - start) * subSamples / ticksPerFrame + 1;
  }
  /// To the nearest tick, counted from `start`, so that whole frames are met also when the samples of a frame are no
  /// whole ticks apart.
  corvanta::TimeValue At(int i) const {
    const int64_t ticks = (int64_t{i} * ticksPerFrame * 2 + subSamples) / (2 * int64_t{subSamples});
    return static_cast<corvanta::TimeValue>(start + ticks);
  }
};

}  // namespace tavrilon::fbx_export
