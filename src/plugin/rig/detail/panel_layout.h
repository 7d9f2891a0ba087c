// SPDX-License-Identifier: MIT
// Where pickers go that want to stand on the same place: rectangles in, rectangles out, nothing overlaps.
#pragma once

#include <vector>

#include "plugin/rig/panel_record.h"
#include "plugin/rig/rig_point.h"

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

/// The free place nearest to `wish`. On the right and left (`RigSide`) the rectangle keeps to its side of the axis, and
/// its mirrored place is free too.
PanelRect FreePlace(const PanelRect& wish, const std::vector<PanelRect>& taken, int side);

}  // namespace tavrilon::detail
