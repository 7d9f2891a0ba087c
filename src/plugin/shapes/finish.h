// SPDX-License-Identifier: MIT
// What happens to every outline after its recipe: rounding, bending, placing.
#pragma once

#include "plugin/shapes/spline.h"

namespace tavrilon {

/// Drops knots that coincide with the one before and strokes with fewer than two knots. Recipes meet them at the
/// ends of the range of `thickness`.
void DropDegenerate(Outline& outline);

/// Replaces each corner between two spans by an arc. Both spans are cut at `corner` units from the knot, at most 0.49
/// of the shorter one. Ends of open strokes that stand on a rounded corner move to the middle of its arc.
void RoundCorners(Outline& outline, float corner);

struct WarpInput {
  /// -1 to 1.
  float amount = 0;
  /// 0 or 1 bends z along x or y; 2 widens x and y along z.
  int axis = 0;
  /// Half widths on x, y, z: at this distance the warp has its full amount.
  Point3 half{1, 1, 1};
};
/// Bends all knots: axis k of 0 or 1 gives z += amount * p_k^2 / half_k; axis 2 scales x and y by
/// 1 + amount * z / half_z. Handles go through the derivative of the same map, so a straight span becomes the exact
/// curve. An axis without extent does nothing.
void Warp(Outline& outline, const WarpInput& warp);

/// Applies `map` to knots and handles.
template <class Map>
void TransformKnots(Outline& outline, Map map) {
  for (Spline& spline : outline)
    for (Knot& k : spline.knots) k.point = map(k.point), k.inVec = map(k.inVec), k.outVec = map(k.outVec);
}

}  // namespace tavrilon
