// SPDX-License-Identifier: MIT
// Key records, as the key interface hands them out and as scene files store them, and their flag word.
#pragma once

#include <cstdint>

#include "host/maths/interval.h"
#include "host/maths/matrix3.h"

namespace corvanta {

/// How a Bezier key shapes the curve on one side.
enum class Tangent : uint32_t { Smooth = 0, Linear = 1, Stepped = 2, Fast = 3, Slow = 4, User = 5, Auto = 6 };

enum KeyFlag : uint32_t {
  kKeySelected = 1u,
  kKeySelectedX = 2u,
  kKeySelectedY = 4u,
  kKeySelectedZ = 8u,
  kKeySelectedW = 0x40000000u,
  kKeySelectedComponents = 0x4000000Eu,
  kKeyBrokenX = 16u,
  kKeyBrokenY = 32u,
  kKeyBrokenZ = 64u,
  kKeyBrokenW = 0x200000u,
  kKeyFreeHandle = 0x100000u,  // handles may reach past the neighbour key
};
inline constexpr int kInTangentShift = 7;
inline constexpr int kOutTangentShift = 10;

inline Tangent InTangent(uint32_t flags) { return static_cast<Tangent>(flags >> kInTangentShift & 7); }
inline Tangent OutTangent(uint32_t flags) { return static_cast<Tangent>(flags >> kOutTangentShift & 7); }
inline uint32_t TangentFlags(Tangent in, Tangent out) {
  return static_cast<uint32_t>(in) << kInTangentShift | static_cast<uint32_t>(out) << kOutTangentShift;
}
inline uint32_t WithTangents(uint32_t flags, Tangent in, Tangent out) {
  return (flags & ~TangentFlags(Tangent{7}, Tangent{7})) | TangentFlags(in, out);
}
/// What a key gets that was made by writing a value.
inline constexpr uint32_t kNewKeyFlags = 6u << kInTangentShift | 6u << kOutTangentShift;
/// Length of a handle, as a share of the time to the neighbour, that leaves time linear along the curve.
inline constexpr float kThird = 1.0f / 3;

struct IKey {
  TimeValue time = 0;
  uint32_t flags = kNewKeyFlags;
  bool operator==(const IKey&) const = default;
};

/// Bezier key. Slopes are value units a tick, measured outward from the key, so that a smooth key has
/// inTan == -outTan; those of other than user tangents are filled in from the neighbours. Lengths are shares of the
/// time to the neighbour and count for user tangents only.
struct IBezFloatKey : IKey {
  float value = 0, inTan = 0, outTan = 0, inLength = kThird, outLength = kThird;
  bool operator==(const IBezFloatKey&) const = default;
};
struct IBezPoint3Key : IKey {
  Point3 value, inTan, outTan, inLength{kThird, kThird, kThird}, outLength{kThird, kThird, kThird};
  bool operator==(const IBezPoint3Key&) const = default;
};
struct IBezPoint4Key : IKey {
  Point4 value, inTan, outTan, inLength{kThird, kThird, kThird, kThird}, outLength{kThird, kThird, kThird, kThird};
  bool operator==(const IBezPoint4Key&) const = default;
};
struct IBezScaleKey : IKey {
  ScaleValue value;
  Point3 inTan, outTan, inLength{kThird, kThird, kThird}, outLength{kThird, kThird, kThird};
  bool operator==(const IBezScaleKey&) const = default;
};
static_assert(sizeof(IBezFloatKey) == 28 && sizeof(IBezPoint3Key) == 68);
static_assert(sizeof(IBezScaleKey) == 84 && sizeof(IBezPoint4Key) == 88);

/// Tension, continuity and bias in -1..1, eases in 0..1.
struct TcbShape {
  float tension = 0, continuity = 0, bias = 0, easeIn = 0, easeOut = 0;
  bool operator==(const TcbShape&) const = default;
};
struct ITCBFloatKey : IKey {
  float value = 0;
  TcbShape shape;
  bool operator==(const ITCBFloatKey&) const = default;
};
struct ITCBPoint3Key : IKey {
  Point3 value;
  TcbShape shape;
  bool operator==(const ITCBPoint3Key&) const = default;
};
/// The value is the orientation itself, not a turn from the key before.
struct ITCBRotKey : IKey {
  AngAxis value;
  TcbShape shape;
  bool operator==(const ITCBRotKey&) const = default;
};
struct ITCBScaleKey : IKey {
  ScaleValue value;
  TcbShape shape;
  bool operator==(const ITCBScaleKey&) const = default;
};
static_assert(sizeof(ITCBFloatKey) == 32 && sizeof(ITCBPoint3Key) == 40);
static_assert(sizeof(ITCBRotKey) == 44 && sizeof(ITCBScaleKey) == 56);

}  // namespace corvanta
