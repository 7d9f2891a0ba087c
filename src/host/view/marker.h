// SPDX-License-Identifier: MIT
// The strokes of markers, in half widths about the middle, y down.
#pragma once

#include <span>

#include "host/view/draw.h"

namespace corvanta {

struct MarkerStroke {
  float ax, ay, bx, by;
};

/// Empty for a dot, which is filled.
inline std::span<const MarkerStroke> MarkerStrokes(MarkerKind kind) {
  static constexpr MarkerStroke kCross[] = {{-1, -1, 1, 1}, {-1, 1, 1, -1}};
  static constexpr MarkerStroke kPlus[] = {{-1, 0, 1, 0}, {0, -1, 0, 1}};
  static constexpr MarkerStroke kBox[] = {{-1, -1, 1, -1}, {1, -1, 1, 1}, {1, 1, -1, 1}, {-1, 1, -1, -1}};
  static constexpr MarkerStroke kDiamond[] = {{0, -1, 1, 0}, {1, 0, 0, 1}, {0, 1, -1, 0}, {-1, 0, 0, -1}};
  static constexpr float c = 0.92388f, s = 0.38268f, d = 0.70711f;  // 22.5 and 45 degrees
  static constexpr MarkerStroke kCircle[] = {{1, 0, c, s},    {c, s, d, d},     {d, d, s, c},     {s, c, 0, 1},
                                             {0, 1, -s, c},   {-s, c, -d, d},   {-d, d, -c, s},   {-c, s, -1, 0},
                                             {-1, 0, -c, -s}, {-c, -s, -d, -d}, {-d, -d, -s, -c}, {-s, -c, 0, -1},
                                             {0, -1, s, -c},  {s, -c, d, -d},   {d, -d, c, -s},   {c, -s, 1, 0}};
  switch (kind) {
    case MarkerKind::Cross:
      return kCross;
    case MarkerKind::Plus:
      return kPlus;
    case MarkerKind::Box:
      return kBox;
    case MarkerKind::Circle:
      return kCircle;
    case MarkerKind::Diamond:
      return kDiamond;
    case MarkerKind::Dot:
      break;
  }
  return {};
}

}  // namespace corvanta
