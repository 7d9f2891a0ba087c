// SPDX-License-Identifier: MIT
// Class_IDs of the host's controllers. Bezier Point4 and Euler XYZ share their words: the super class tells them apart.
#pragma once

#include "host/core/ids.h"

namespace corvanta {

inline constexpr Class_ID kBezierFloatId{0x2007, 0};
inline constexpr Class_ID kBezierPositionId{0x2008, 0};
inline constexpr Class_ID kBezierPoint3Id{0x200A, 0};
inline constexpr Class_ID kBezierScaleId{0x2010, 0};
inline constexpr Class_ID kBezierColourId{0x2011, 0};
inline constexpr Class_ID kBezierPoint4Id{0x2012, 0};
inline constexpr Class_ID kBezierRgbaId{0x2013, 0};
inline constexpr Class_ID kEulerXyzId{0x2012, 0};
inline constexpr Class_ID kTcbFloatId{0x442311, 0};
inline constexpr Class_ID kTcbPositionId{0x442312, 0};
inline constexpr Class_ID kTcbRotationId{0x442313, 0};
inline constexpr Class_ID kTcbScaleId{0x442315, 0};
inline constexpr Class_ID kRotationListId{0x4B4B1003, 0};
inline constexpr Class_ID kPrsId{kHostClassWord, 1};
inline constexpr Class_ID kPositionListId{kHostClassWord, 2};
inline constexpr Class_ID kScaleListId{kHostClassWord, 3};
inline constexpr Class_ID kFloatListId{kHostClassWord, 4};
inline constexpr Class_ID kTransformListId{kHostClassWord, 5};
inline constexpr Class_ID kTrackCurvesId{kHostClassWord, 6};
inline constexpr Class_ID kCurveControlId{kHostClassWord, 7};
inline constexpr Class_ID kPositionXyzId{kHostClassWord, 8};

/// Chunks of the controllers.
enum : uint16_t {
  kConstantChunk = 0x7000,
  kKeysChunk = 0x7001,
  kOrtChunk = 0x7002,
  kLockChunk = 0x7003,
  kOrderChunk = 0x7004,
  kListChunk = 0x7005,
  kTrackCurvesChunk = 0x7006,
  kCurvesChunk = 0x7007,
};

}  // namespace corvanta
