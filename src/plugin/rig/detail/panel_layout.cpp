// SPDX-License-Identifier: MIT
#include "plugin/rig/detail/panel_layout.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace tavrilon::detail {

bool Overlaps(const PanelRect& a, const PanelRect& b) {
  return a.x < b.x + b.width && b.x < a.x + a.width && a.y < b.y + b.height && b.y < a.y + a.height;
}

// With the heights above each one taken off, "no overlap" reads "not descending", and the nearest not descending row is
// found by pooling neighbours that are out of order (the pool adjacent violators algorithm of isotonic regression).
void SpreadColumn(std::vector<PanelRect>& column, float floor) {
  const auto centre = [&](size_t i) { return column[i].y + column[i].height / 2; };
  std::vector<size_t> order(column.size());
  std::iota(order.begin(), order.end(), size_t{0});
  std::stable_sort(order.begin(), order.end(), [&](size_t a, size_t b) { return centre(a) < centre(b); });

  struct Pool {
    float sum;
    int count;
    float Mean() const { return sum / static_cast<float>(count); }
  };
  std::vector<Pool> pools;
  float above = 0;
  for (const size_t i : order) {
    pools.push_back({column[i].y - above, 1});
    above += column[i].height + kPanelGap;
    while (pools.size() > 1 && pools[pools.size() - 2].Mean() >= pools.back().Mean()) {
      const Pool last = pools.back();
      pools.pop_back();
      pools.back().sum += last.sum;
      pools.back().count += last.count;
    }
  }
  size_t next = 0;
  above = 0;
  for (const Pool& pool : pools)
    for (int k = 0; k < pool.count; ++k, ++next) {
      PanelRect& rect = column[order[next]];
      rect.y = pool.Mean() + above;
      above += rect.height + kPanelGap;
    }
  for (auto i = order.rbegin(); i != order.rend(); ++i) {
    PanelRect& rect = column[*i];
    rect.y = std::min(rect.y, floor - rect.height);
    floor = rect.y - kPanelGap;
  }
}

namespace {

bool IsFree(const PanelRect& rect, const std::vector<PanelRect>& taken) {
  return std::none_of(taken.begin(), taken.end(), [&](const PanelRect& t) { return Overlaps(rect, t); });
}

bool Fits(const PanelRect& rect, const std::vector<PanelRect>& taken, int side) {
  if (!IsFree(rect, taken)) return false;
  if (side == kSideCenter) return true;
  const float toAxis = side == kSideLeft ? rect.x - kPanelAxis : kPanelAxis - rect.x - rect.width;
  return toAxis >= kPanelGap / 2 && IsFree(MirrorRect(rect), taken);
}

}  // namespace

// Rings of growing radius around the wish, sixteen places on each: the first that is free.
PanelRect FreePlace(const PanelRect& wish, const std::vector<PanelRect>& taken, int side) {
  constexpr int kDirections = 16;
  constexpr float kStep = 2, kFarthest = 2000;
  if (Fits(wish, taken, side)) return wish;
  for (float radius = kStep; radius < kFarthest; radius += kStep)
    for (int i = 0; i < kDirections; ++i) {
      const float angle = 2 * corvanta::kPi * static_cast<float>(i) / kDirections;
      PanelRect rect = wish;
      rect.x += radius * std::cos(angle);
      rect.y += radius * std::sin(angle);
      if (Fits(rect, taken, side)) return rect;
    }
  return wish;
}

}  // namespace tavrilon::detail
