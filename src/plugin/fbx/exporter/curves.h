// SPDX-License-Identifier: MIT
// From values at every sample to curves.
#pragma once

#include <span>

#include "plugin/fbx/format/animation.h"

namespace tavrilon::fbx_export {

/// The constant that stands for all of `values`, when they differ by `tolerance` or less; `neat` itself when that is so
/// near too. False when they move.
bool FindConstant(std::span<const float> values, double tolerance, double neat, float& constant);

/// A curve of linear keys through `values` at `times`; one key for a constant.
fbx::FbxAnimCurve MakeCurve(const std::vector<int64_t>& times, std::span<const float> values, double tolerance,
                            double neat);

}  // namespace tavrilon::fbx_export
