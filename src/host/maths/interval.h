// SPDX-License-Identifier: MIT
// Time in ticks, and intervals of time.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>

namespace corvanta {

/// Signed ticks; kTicksPerSecond of them a second, whole at every usual frame rate.
using TimeValue = int32_t;
inline constexpr int kTicksPerSecond = 6000;
inline constexpr TimeValue kTimeMin = std::numeric_limits<int32_t>::min();
inline constexpr TimeValue kTimeMax = std::numeric_limits<int32_t>::max();

/// The closed interval start..end; empty when end is before start.
struct Interval {
  TimeValue start = 0;
  TimeValue end = -1;

  static constexpr Interval Forever() { return {kTimeMin, kTimeMax}; }
  static constexpr Interval Never() { return {0, -1}; }
  static constexpr Interval Instant(TimeValue t) { return {t, t}; }

  bool IsEmpty() const { return end < start; }
  bool Contains(TimeValue t) const { return start <= t && t <= end; }
  void SetEmpty() { *this = Never(); }
  void SetInstant(TimeValue t) { *this = Instant(t); }
  Interval& operator&=(const Interval& b) {
    start = std::max(start, b.start);
    end = std::min(end, b.end);
    if (end < start) SetEmpty();
    return *this;
  }
  bool operator==(const Interval& b) const { return (IsEmpty() && b.IsEmpty()) || (start == b.start && end == b.end); }
};
inline Interval operator&(Interval a, const Interval& b) { return a &= b; }
inline constexpr Interval FOREVER = Interval::Forever();
inline constexpr Interval NEVER = Interval::Never();

}  // namespace corvanta
