// SPDX-License-Identifier: MIT
// The outline of a control, from its parameters to finished strokes. A pure function over plain values.
#pragma once

#include "plugin/shapes/spline.h"

namespace tavrilon {

/// The parameters of a control, as its block stores them. Percent values are fractions.
struct OutlineInput {
  int type = 9;
  bool uniform = true;
  /// Scene units, as the three dimensions: whole extents, so that radii are half of them.
  float size = 20;
  float length = 20, width = 20, height = 20;
  /// The axis that a flat shape faces: 0 X, 1 Y, 2 Z.
  int axis = 2;
  float thickness = 0.5f;
  float corner = 0;
  float warpAmount = 0;
  int warpAxis = 0;
  Matrix3 gizmo;
  float scale = 1;
};

/// Half the extents on x, y and z before `axis` turns the shape: half `width`, `length` and `height`, or half `size`
/// when `uniform` is on. Never negative.
Point3 HalfExtents(const OutlineInput& in);

/// Replaces `outline` with the strokes of `in`: recipe, corner, warp, axis, gizmo, scale. Values outside their ranges
/// are held to them; an unknown type draws nothing, as "None" does. The result is finite for finite input.
void BuildOutline(const OutlineInput& in, Outline& outline);

}  // namespace tavrilon
