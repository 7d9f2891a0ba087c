// SPDX-License-Identifier: MIT
// Where pickers go that want to stand on the same place: rectangles in, rectangles out, nothing overlaps.
#pragma once

#include <vector>

#include "plugin/rig/panel_record.h"

namespace tavrilon::detail {

/// Pairs mirror about this line.
inline constexpr float kPanelAxis = 340;
/// Room between two pickers.
inline constexpr float kPanelGap = 2;

inline PanelRect MirrorRect(PanelRect r) {
  r.x = 2 * kPanelAxis - r.x - r.width;
  return r;
}
/// Touching edges do not overlap.
bool Overlaps(const PanelRect& a, const PanelRect& b);

/// Moves the rectangles of a column up and down, as little as squares can tell, until none overlaps the next. They keep
/// the order of their centres; of two on one height the earlier goes above. None reaches below `floor`.
void SpreadColumn(std::vector<PanelRect>& column, float floor);

/// The free place nearest to `wish`. With `paired` the mirrored rectangle is free too and both keep to their sides.
PanelRect FreePlace(const PanelRect& wish, const std::vector<PanelRect>& taken, bool paired);

}  // namespace tavrilon::detail
