// SPDX-License-Identifier: MIT
// Curves through keys: plain data and pure functions, without a scene. `Update` turns the keys into polynomial
// segments once a change; evaluation then works out the cubic under the playhead and allocates nothing.
#pragma once

#include <vector>

#include "host/anim/keys.h"
#include "host/anim/segments.h"
#include "host/core/out_of_range.h"

namespace corvanta {

/// Per kind of key: the evaluated value, the segment, and how one becomes the other.
template <class Key>
struct KeyKind;
template <>
struct KeyKind<IBezFloatKey> {
  using Value = float;
  using Segment = CubicSegment<1>;
};
template <>
struct KeyKind<IBezPoint3Key> {
  using Value = Point3;
  using Segment = CubicSegment<3>;
};
template <>
struct KeyKind<IBezPoint4Key> {
  using Value = Point4;
  using Segment = CubicSegment<4>;
};
template <>
struct KeyKind<IBezScaleKey> {
  using Value = ScaleValue;
  using Segment = ScaleSegment;
};
template <>
struct KeyKind<ITCBFloatKey> {
  using Value = float;
  using Segment = CubicSegment<1>;
};
template <>
struct KeyKind<ITCBPoint3Key> {
  using Value = Point3;
  using Segment = CubicSegment<3>;
};
template <>
struct KeyKind<ITCBRotKey> {
  using Value = Quat;
  using Segment = RotationSegment;
};
template <>
struct KeyKind<ITCBScaleKey> {
  using Value = ScaleValue;
  using Segment = ScaleSegment;
};

template <class Key>
struct KeyCurve {
  using Value = typename KeyKind<Key>::Value;
  using Segment = typename KeyKind<Key>::Segment;

  /// Sorted by time, times unique, once `Update` has run.
  std::vector<Key> keys;
  /// From key i to key i + 1.
  std::vector<Segment> segments;
  ORT before = ORT::Constant;
  ORT after = ORT::Constant;

  /// Sorts, drops all but the last of keys at one time, works out slopes and segments. To be called after every
  /// change of `keys`, before evaluation.
  void Update();
};

/// Where a curve was evaluated last: while the time stays between the same two keys, their segment lies here and the
/// keys are not looked at. Belongs to one curve; to be reset when that changes.
template <class Key>
struct Playhead {
  /// Of the segment, empty while there is none. It is a moving one.
  TimeValue start = 0, end = 0;
  float length = 0;
  int index = 0;
  typename KeyKind<Key>::Segment segment{};
};

/// Sorts by time; of equal times the key that stood later stays.
template <class Key>
void SortKeys(std::vector<Key>& keys);

/// The value of an updated curve at `t`. `valid` is narrowed to where the value holds: not at all without keys or
/// with one, to the stretch between keys where the curve is stepped or flat, else to the instant. Without keys
/// the value is the kind's neutral one.
template <class Key>
typename KeyKind<Key>::Value Evaluate(const KeyCurve<Key>& curve, TimeValue t, Interval& valid, Playhead<Key>& head);

/// The value that a key stands for.
inline float ValueOf(const IBezFloatKey& key) { return key.value; }
inline Point3 ValueOf(const IBezPoint3Key& key) { return key.value; }
inline Point4 ValueOf(const IBezPoint4Key& key) { return key.value; }
inline ScaleValue ValueOf(const IBezScaleKey& key) { return key.value; }
inline float ValueOf(const ITCBFloatKey& key) { return key.value; }
inline Point3 ValueOf(const ITCBPoint3Key& key) { return key.value; }
inline Quat ValueOf(const ITCBRotKey& key) { return QuatFromAngAxis(key.value); }
inline ScaleValue ValueOf(const ITCBScaleKey& key) { return key.value; }
template <class Key, class Value>
void SetValueOf(Key& key, const Value& value) {
  key.value = value;
}
inline void SetValueOf(ITCBRotKey& key, const Quat& value) { key.value = AngAxisFromQuat(value); }

/// `v` with `w` times the step from `from` to `to` added (rotations: multiplied on the right).
inline float AddStep(float v, float from, float to, float w) { return v + (to - from) * w; }
inline Point3 AddStep(const Point3& v, const Point3& from, const Point3& to, float w) { return v + (to - from) * w; }
inline Point4 AddStep(const Point4& v, const Point4& from, const Point4& to, float w) { return v + (to - from) * w; }
inline Quat AddStep(const Quat& v, const Quat& from, const Quat& to, float w) {
  return Normalize(v * SlerpClosest({}, Inverse(from) * to, w));
}
inline ScaleValue AddStep(const ScaleValue& v, const ScaleValue& from, const ScaleValue& to, float w) {
  return {AddStep(v.s, from.s, to.s, w), AddStep(v.q, from.q, to.q, w)};
}
/// The largest difference of components; of rotations the angle between them, in radians.
float Difference(float a, float b);
float Difference(const Point3& a, const Point3& b);
float Difference(const Point4& a, const Point4& b);
float Difference(const Quat& a, const Quat& b);
float Difference(const ScaleValue& a, const ScaleValue& b);

/// Greedy thinning from the left: drops every key between the first and last inside `range` without which the curve,
/// sampled each `step` ticks, stays within `threshold` (value units) of what it was before the call. Returns how
/// many keys went; the curve is updated.
template <class Key>
int ReduceKeys(KeyCurve<Key>& curve, float threshold, TimeValue step, const Interval& range);

}  // namespace corvanta
