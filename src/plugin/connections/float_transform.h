// SPDX-License-Identifier: MIT
// How a float connection turns what it reads, and how a value that is written comes back. Plain values only.
#pragma once

#include "plugin/connections/connection_params.h"

namespace tavrilon {

/// A curve as the transform needs it: its value at x, and where its first and last points are.
struct CurveSample {
  float (*at)(const void* curve, float x) = nullptr;
  const void* curve = nullptr;
  float first = 0, last = 0;
};

struct FloatTransform {
  float_connection::Transform kind = float_connection::kDirect;
  bool clamp = false;
  float offset = 0, weight = 1;
  float inputMin = 0, inputMax = 100, outputMin = 0, outputMax = 100;
  /// Without `at`, a curve leaves x as it is.
  CurveSample curve;
};

/// Direct: x. Offset and weight: weight x + offset. Range: the input bounds go to the output bounds, linearly and
/// beyond them too unless `clamp` is on; bounds closer than 0.001 count as 0.001 apart. Curve: its value at x, with
/// `clamp` held between its ends. Any other kind: x.
float Transformed(const FloatTransform& transform, float x);

/// The x that gives `y`. False when there is none to speak of: a weight below 1e-6, a curve that is not monotone or
/// does not reach y. Range: exact inverse, held between the input bounds with `clamp` on; output bounds closer than
/// 0.001 count as 0.001 apart.
bool InverseTransformed(const FloatTransform& transform, float y, float& x);

}  // namespace tavrilon
