// SPDX-License-Identifier: MIT
// Stable parameter numbers of the controllers that make one track follow another.
#pragma once

#include <cstdint>

namespace tavrilon {

namespace float_connection {
enum Param : int16_t {
  kTrackSubAnim = 0,
  kTwoWay = 1,
  kClamp = 2,
  kTransform = 3,
  kOffset = 4,
  kWeight = 5,
  kInputMin = 6,
  kInputMax = 7,
  kOutputMin = 8,
  kOutputMax = 9,
  kCurveCtrl = 10,
  kUseTimeOffset = 11,
  kTimeOffset = 12,
  // Of no script name: who owns the track that is followed, and the value that stands in for a track.
  kTrackOwner = 13,
  kConstant = 14,
};
enum Transform : int { kDirect = 0, kOffsetWeight = 1, kRange = 2, kCurve = 3 };
}  // namespace float_connection

/// PositionConnection, RotationConnection and ScaleConnection.
namespace vector_connection {
enum Param : int16_t {
  kTrackSubAnim = 0,
  kTwoWay = 1,
  kUseWeight = 2,
  kWeightX = 3,
  kWeightY = 4,
  kWeightZ = 5,
  kUseTimeOffset = 6,
  kTimeOffset = 7,
  kTrackOwner = 8,
  kConstant = 9,
};
}  // namespace vector_connection

namespace float_operation {
enum Param : int16_t {
  kOperation = 0,
  kA = 1,
  kB = 2,
  kC = 3,
  kLo = 4,
  kHi = 5,
  kScale = 6,
  kOffset = 7,
  kClampOutput = 8,
  kOutMin = 9,
  kOutMax = 10,
};
enum class Op : int {
  A,
  Add,
  Subtract,
  Multiply,
  Divide,
  Min,
  Max,
  Clamp,
  ClampTo,
  Abs,
  Mod,
  Power,
  Sin,
  Cos,
  Sqrt,
  Less,
  Blend
};
}  // namespace float_operation

namespace float_expose_tm {
enum Param : int16_t {
  kNode = 0,
  kReference = 1,
  kWorld = 2,
  kComponent = 3,
  kOrder = 4,
  kRest = 5,
  kScale = 6,
  kOffset = 7,
  kTimeOffset = 8,
};
enum class Component : int {
  PositionX,
  PositionY,
  PositionZ,
  EulerX,
  EulerY,
  EulerZ,
  Distance,
  Angle,
  TwistX,
  Swing,
  ScaleX,
  ScaleY,
  ScaleZ
};
}  // namespace float_expose_tm

namespace float_wave {
enum Param : int16_t { kType = 0, kAmplitude = 1, kPeriod = 2, kPhase = 3, kOffset = 4, kWeight = 5, kSeed = 6 };
enum class Wave : int { Sine, Triangle, Square, Saw, Noise };
}  // namespace float_wave

namespace twist_poses {
enum Param : int16_t { kNode = 0, kReference = 1, kComponent = 2, kRest = 3, kAngle = 4, kValue = 5, kWeight = 6 };
enum class Component : int { TwistX, SwingY, SwingZ, BendAngle };
}  // namespace twist_poses

}  // namespace tavrilon
