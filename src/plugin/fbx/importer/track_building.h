// SPDX-License-Identifier: MIT
// From samples at whole frames to keys, or to one value where nothing moves.
#pragma once

#include <span>

#include "plugin/fbx/format/affine.h"
#include "plugin/fbx/importer/import_plan.h"

namespace tavrilon::fbx_import {

// How far a key curve may be from its samples.
//
// What is asked for is the place and turn of every bone of a figure of two metres over chains of twelve: 0.1 mm and
// 0.01 degree. Errors of the joints add up, in the worst case all with one sign. Twelve equal bones along two metres
// have levers of 2 m * 13 / 12 on average and of 13 m in sum. A turn that is off by e in each of three angles is off by
// 3 e at most, so that the chain's end moves by 39 m * e: 0.02 mm for the value below. A scale that is off by e moves
// it by 13 m * e: 0.065 mm. Places that are off by e in three directions move it by 12 * sqrt(3) * e: 0.01 mm. The
// turn of the last bone is off by 36 e, 0.001 degree. What remains is for the single precision of the scene's matrices.
// A coarser bound, a hundredth of a degree a joint, would let the end of the chain stray by seven millimetres.
inline constexpr double kPositionTolerance = 5e-5;  // centimetres
inline constexpr double kRotationTolerance = 5e-7;  // radians
inline constexpr double kScaleTolerance = 5e-6;
/// Percent: a shape that moves points by ten centimetres is off by a thousandth of a millimetre.
inline constexpr double kWeightTolerance = 1e-3;

/// Where the samples lie in time.
struct SampleTimes {
  corvanta::TimeValue start = 0;
  int step = 1;
  corvanta::TimeValue At(int sample) const { return start + sample * step; }
};

// Samples within twice the tolerance become their middle, without keys. Of an empty list the track stays as it is.
void BuildTrack(std::span<const fbx::Vector3> samples, const SampleTimes& times, double tolerance,
                PositionTrack& track);
void BuildTrack(std::span<const fbx::Vector3> samples, const SampleTimes& times, double tolerance, ScaleTrack& track);
/// Reads the first component.
void BuildTrack(std::span<const fbx::Vector3> samples, const SampleTimes& times, double tolerance, FloatTrack& track);

}  // namespace tavrilon::fbx_import
