// SPDX-License-Identifier: MIT
#include "plugin/solvers/link.h"

#include <algorithm>

namespace tavrilon {

using namespace corvanta;

int ActiveLink(std::span<const TimeValue> starts, TimeValue time) {
  if (starts.empty()) return -1;
  const auto after = std::upper_bound(starts.begin(), starts.end(), time);
  return std::max(static_cast<int>(after - starts.begin()) - 1, 0);
}

Interval LinkSpan(std::span<const TimeValue> starts, int index) {
  Interval span = FOREVER;
  const size_t next = static_cast<size_t>(index) + 1;
  if (index > 0) span.start = starts[next - 1];
  if (next < starts.size()) span.end = std::max(starts[next], kTimeMin + 1) - 1;
  return span;
}

}  // namespace tavrilon
