// SPDX-License-Identifier: MIT
// Few cubic keys through many samples. Pure functions over plain values.
#pragma once

#include <span>
#include <vector>

#include "plugin/fbx/format/affine.h"

namespace tavrilon::fbx_import {

/// A key at a sample. Slopes are value units a sample, in the direction of time.
struct FittedKey {
  int sample = 0;
  fbx::Vector3 value, inSlope, outSlope;
};

/// Keys whose cubics (Hermite segments) pass every sample within `tolerance` in each of the first `dimensions`
/// components. The first and last sample are keys. Greedy from the left: each segment is as long as doubling and
/// halving find one, with its end slopes by least squares. Values are rounded to single precision before the fit, as
/// keys hold them. Two samples and more; O(n log n).
std::vector<FittedKey> FitKeys(std::span<const fbx::Vector3> samples, int dimensions, double tolerance);

/// The middle of what the samples span.
fbx::Vector3 MiddleOf(std::span<const fbx::Vector3> samples);
/// Largest spread of a component.
double SpreadOf(std::span<const fbx::Vector3> samples, int dimensions);
/// Largest magnitude of a component.
double SizeOf(std::span<const fbx::Vector3> samples, int dimensions);

}  // namespace tavrilon::fbx_import
