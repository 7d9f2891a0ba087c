// SPDX-License-Identifier: MIT
#include "plugin/connections/block_control.h"

#include <cmath>

namespace tavrilon {

using namespace corvanta;

BlockControl::BlockControl(TavrilonClass row, const ParamBlockDesc2& desc, const FPInterfaceDesc& published,
                           bool loading)
    : row_(row), published_(published) {
  if (!loading) BindReference(0, new ParamBlock2(desc));
}

namespace {
TimeValue Held(double t) {
  return static_cast<TimeValue>(std::clamp(t, static_cast<double>(kTimeMin), static_cast<double>(kTimeMax)));
}
}  // namespace

TimeValue Later(TimeValue t, float seconds) {
  return std::isfinite(seconds) ? Held(t + std::round(static_cast<double>(seconds) * kTicksPerSecond)) : t;
}

Interval Earlier(const Interval& interval, TimeValue ticks) {
  if (interval.IsEmpty()) return interval;
  Interval moved = interval;
  if (moved.start != kTimeMin) moved.start = Held(static_cast<double>(moved.start) - ticks);
  if (moved.end != kTimeMax) moved.end = Held(static_cast<double>(moved.end) - ticks);
  return moved;
}

}  // namespace tavrilon
