// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cmath>
#include <limits>

#include "host/anim/slopes.h"

namespace corvanta {
namespace {

constexpr float kShortestHandle = 1e-6f;
// Beyond this a free handle is a vertical line to any eye, and the cubic of times would lose its digits.
constexpr float kLongestFreeHandle = 1e4f;

// Component access by kind of value.
template <class Key>
struct Parts;
template <>
struct Parts<IBezFloatKey> {
  static constexpr int kCount = 1;
  static float Value(const IBezFloatKey& k, int) { return k.value; }
  static float In(const IBezFloatKey& k, int) { return k.inTan; }
  static float Out(const IBezFloatKey& k, int) { return k.outTan; }
  static float InLength(const IBezFloatKey& k, int) { return k.inLength; }
  static float OutLength(const IBezFloatKey& k, int) { return k.outLength; }
  static void SetIn(IBezFloatKey& k, int, float v) { k.inTan = v; }
  static void SetOut(IBezFloatKey& k, int, float v) { k.outTan = v; }
};
template <class Key, int N>
struct VectorParts {
  static constexpr int kCount = N;
  static float In(const Key& k, int i) { return k.inTan[i]; }
  static float Out(const Key& k, int i) { return k.outTan[i]; }
  static float InLength(const Key& k, int i) { return k.inLength[i]; }
  static float OutLength(const Key& k, int i) { return k.outLength[i]; }
  static void SetIn(Key& k, int i, float v) { k.inTan[i] = v; }
  static void SetOut(Key& k, int i, float v) { k.outTan[i] = v; }
};
template <>
struct Parts<IBezPoint3Key> : VectorParts<IBezPoint3Key, 3> {
  static float Value(const IBezPoint3Key& k, int i) { return k.value[i]; }
};
template <>
struct Parts<IBezPoint4Key> : VectorParts<IBezPoint4Key, 4> {
  static float Value(const IBezPoint4Key& k, int i) { return k.value[i]; }
};
template <>
struct Parts<IBezScaleKey> : VectorParts<IBezScaleKey, 3> {
  static float Value(const IBezScaleKey& k, int i) { return k.value.s[i]; }
};

// The slopes of the chords around a key; a missing neighbour has none.
struct Chords {
  double previous = 0, next = 0, across = 0;
  bool inside = false;
};

// Along the curve where it has neighbours on both sides. The bound of three chords keeps the inner control points
// of both segments between their end values (Fritsch and Carlson, "Monotone piecewise cubic interpolation", 1980).
double AutoSlope(const Chords& c) {
  if (!c.inside || c.previous * c.next <= 0) return 0;
  const double bound = 3 * std::min(std::abs(c.previous), std::abs(c.next));
  return std::clamp(c.across, -bound, bound);
}

// The slope in the direction of time on the side whose chord is `chord`.
double Slope(Tangent type, const Chords& c, double chord) {
  switch (type) {
    case Tangent::Smooth:
      return c.inside ? c.across : 0;
    case Tangent::Linear:
      return chord;
    case Tangent::Fast:
      return 3 * chord;
    case Tangent::Auto:
      return AutoSlope(c);
    default:
      return 0;
  }
}

template <class Key>
void FillSlopes(std::vector<Key>& keys) {
  using P = Parts<Key>;
  const size_t n = keys.size();
  for (size_t i = 0; i < n; ++i) {
    Key& key = keys[i];
    const Tangent in = InTangent(key.flags), out = OutTangent(key.flags);
    if (in == Tangent::User && out == Tangent::User) continue;
    for (int c = 0; c < P::kCount; ++c) {
      Chords chords;
      const double value = P::Value(key, c);
      const double before = i > 0 ? static_cast<double>(key.time) - keys[i - 1].time : 0;
      const double after = i + 1 < n ? static_cast<double>(keys[i + 1].time) - key.time : 0;
      if (before > 0) chords.previous = (value - P::Value(keys[i - 1], c)) / before;
      if (after > 0) chords.next = (P::Value(keys[i + 1], c) - value) / after;
      chords.inside = before > 0 && after > 0;
      if (chords.inside) chords.across = (chords.previous * before + chords.next * after) / (before + after);
      if (in != Tangent::User) P::SetIn(key, c, static_cast<float>(-Slope(in, chords, chords.previous)));
      if (out != Tangent::User) P::SetOut(key, c, static_cast<float>(Slope(out, chords, chords.next)));
    }
  }
}

float HandleLength(Tangent type, uint32_t flags, float stored) {
  if (type != Tangent::User) return kThird;
  const float longest = flags & kKeyFreeHandle ? kLongestFreeHandle : 1.0f;
  return stored > kShortestHandle ? std::min(stored, longest) : kShortestHandle;  // NaN is the shortest, too
}

template <class Key>
void FillCubic(const Key& a, const Key& b, CubicSegment<Parts<Key>::kCount>& segment) {
  using P = Parts<Key>;
  const double dt = static_cast<double>(b.time) - a.time;
  const Tangent out = OutTangent(a.flags), in = InTangent(b.flags);
  bool flat = true;
  for (int c = 0; c < P::kCount; ++c) {
    const double v0 = P::Value(a, c), v1 = P::Value(b, c);
    const float outLength = HandleLength(out, a.flags, P::OutLength(a, c));
    const float inLength = HandleLength(in, b.flags, P::InLength(b, c));
    if (outLength != kThird || inLength != kThird) segment.weighted = true;
    segment.x1[c] = outLength;
    segment.x2[c] = 1 - inLength;
    const double p1 = v0 + static_cast<double>(P::Out(a, c)) * outLength * dt;
    const double p2 = v1 + static_cast<double>(P::In(b, c)) * inLength * dt;
    auto& cubic = segment.cubic[c];
    cubic.c0 = P::Value(a, c);
    if (out == Tangent::Linear && in == Tangent::Linear) {
      cubic.c1 = static_cast<float>(v1 - v0);
    } else {
      cubic.c1 = static_cast<float>(3 * (p1 - v0));
      cubic.c2 = static_cast<float>(3 * (p2 - 2 * p1 + v0));
      cubic.c3 = static_cast<float>(v1 - 3 * p2 + 3 * p1 - v0);
    }
    if (v0 != v1 || p1 != v0 || p2 != v0) flat = false;
  }
  if (out == Tangent::Stepped || in == Tangent::Stepped) {
    segment.kind = SegmentKind::Held;
  } else if (flat) {
    segment.kind = SegmentKind::Flat;
  }
}

}  // namespace

template <class Key>
void BuildBezier(std::vector<Key>& keys, std::vector<typename KeyKind<Key>::Segment>& segments) {
  FillSlopes(keys);
  segments.assign(keys.empty() ? 0 : keys.size() - 1, {});
  for (size_t i = 0; i < segments.size(); ++i) {
    FillCubic(keys[i], keys[i + 1], segments[i]);
    if constexpr (std::is_same_v<Key, IBezScaleKey>) {
      segments[i].q0 = keys[i].value.q;
      segments[i].q1 = MakeClosest(keys[i + 1].value.q, keys[i].value.q);
      if (segments[i].kind == SegmentKind::Flat && segments[i].q0 != segments[i].q1)
        segments[i].kind = SegmentKind::Moving;
    }
  }
}
template void BuildBezier(std::vector<IBezFloatKey>&, std::vector<CubicSegment<1>>&);
template void BuildBezier(std::vector<IBezPoint3Key>&, std::vector<CubicSegment<3>>&);
template void BuildBezier(std::vector<IBezPoint4Key>&, std::vector<CubicSegment<4>>&);
template void BuildBezier(std::vector<IBezScaleKey>&, std::vector<ScaleSegment>&);

}  // namespace corvanta
