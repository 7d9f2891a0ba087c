// SPDX-License-Identifier: MIT
#include "host/anim/key_curve.h"

#include <algorithm>
#include <cmath>

#include "host/anim/slopes.h"

namespace corvanta {
namespace {

float SegmentValue(const CubicSegment<1>& s, float u) { return s.At(0, s.Warp(u)); }
Point3 SegmentValue(const CubicSegment<3>& s, float u) {
  u = s.Warp(u);
  return {s.At(0, u), s.At(1, u), s.At(2, u)};
}
Point4 SegmentValue(const CubicSegment<4>& s, float u) {
  u = s.Warp(u);
  return {s.At(0, u), s.At(1, u), s.At(2, u), s.At(3, u)};
}
ScaleValue SegmentValue(const ScaleSegment& s, float u) {
  u = s.Warp(u);
  return {{s.At(0, u), s.At(1, u), s.At(2, u)}, s.q0 == s.q1 ? s.q0 : Slerp(s.q0, s.q1, u)};
}
Quat SegmentValue(const RotationSegment& s, float u) {
  u = EaseTime(u, s.easeOut, s.easeIn);
  const float v = 1 - u;
  const float b1 = 1 - v * v * v, b2 = u * u * (3 - 2 * u), b3 = u * u * u;
  return s.q0 * ExpTurn(s.w1 * b1) * ExpTurn(s.w2 * b2) * ExpTurn(s.w3 * b3);
}

// The value `share` segments of time beyond an end of the segment, along the curve's direction there. `still` is set
// when the curve stands still at that end.
enum class End { Start, Last };
template <int N>
float Speed(const CubicSegment<N>& s, int i, End end) {
  return end == End::Start ? s.StartSpeed(i) : s.EndSpeed(i);
}
float Beyond(const CubicSegment<1>& s, End end, float v, float share, bool& still) {
  const float speed = Speed(s, 0, end);
  still = speed == 0;
  return v + speed * share;
}
Point3 Beyond(const CubicSegment<3>& s, End end, const Point3& v, float share, bool& still) {
  const Point3 speed{Speed(s, 0, end), Speed(s, 1, end), Speed(s, 2, end)};
  still = speed == Point3{};
  return v + speed * share;
}
Point4 Beyond(const CubicSegment<4>& s, End end, const Point4& v, float share, bool& still) {
  const Point4 speed{Speed(s, 0, end), Speed(s, 1, end), Speed(s, 2, end), Speed(s, 3, end)};
  still = speed == Point4{};
  return v + speed * share;
}
ScaleValue Beyond(const ScaleSegment& s, End end, const ScaleValue& v, float share, bool& still) {
  return {Beyond(static_cast<const CubicSegment<3>&>(s), end, v.s, share, still), v.q};
}
Quat Beyond(const RotationSegment& s, End end, const Quat& v, float share, bool& still) {
  const bool eased = (end == End::Start ? s.easeOut : s.easeIn) > 0;
  const Point3 speed = eased ? Point3{} : (end == End::Start ? s.w1 : s.w3) * 3;
  still = speed == Point3{};
  return Normalize(v * ExpTurn(speed * share));
}

// The segment that starts at or before `t`, for times from the first to before the last key.
template <class Key>
int SegmentAt(const std::vector<Key>& keys, TimeValue t, int& hint) {
  const int last = static_cast<int>(keys.size()) - 2;
  if (hint >= 0 && hint <= last && keys[hint].time <= t) {
    if (t < keys[hint + 1].time) return hint;
    if (hint < last && t < keys[hint + 2].time) return ++hint;  // the next one, in playback
  }
  const auto after =
      std::upper_bound(keys.begin(), keys.end(), t, [](TimeValue a, const Key& k) { return a < k.time; });
  return hint = static_cast<int>(after - keys.begin()) - 1;
}

template <class Key>
typename KeyKind<Key>::Value AtHead(const Playhead<Key>& head, TimeValue t, Interval& valid) {
  valid &= Interval::Instant(t);
  return SegmentValue(head.segment, static_cast<float>(static_cast<int64_t>(t) - head.start) / head.length);
}

// Between the first and the last key, both included.
template <class Key>
typename KeyKind<Key>::Value InRange(const KeyCurve<Key>& curve, TimeValue t, Interval& valid, Playhead<Key>& head) {
  const auto& keys = curve.keys;
  if (t >= keys.back().time) {
    valid &= Interval::Instant(t);
    return ValueOf(keys.back());
  }
  const int i = SegmentAt(keys, t, head.index);
  const auto& segment = curve.segments[i];
  const TimeValue start = keys[i].time, end = keys[i + 1].time;
  if (segment.kind != SegmentKind::Moving) {
    valid &= {start, segment.kind == SegmentKind::Held ? end - 1 : end};
    return ValueOf(keys[i]);
  }
  head.start = start;
  head.end = end;
  head.length = static_cast<float>(static_cast<int64_t>(end) - start);
  head.segment = segment;
  return AtHead(head, t, valid);
}

// Cycle number and time inside it; cycles before the first key are negative.
struct Cycle {
  int64_t number, offset;
};
Cycle CycleAt(int64_t fromStart, int64_t length) {
  const int64_t n = fromStart >= 0 ? fromStart / length : -((length - 1 - fromStart) / length);
  return {n, fromStart - n * length};
}

// A loop adds the step between its ends to the interval next to the keys, fading out, so that the value goes on from
// the key it left.
template <class Key, class Value>
Value BlendLoop(const KeyCurve<Key>& curve, const Value& v, int64_t offset, bool after) {
  const auto& keys = curve.keys;
  const Value start = ValueOf(keys.front()), end = ValueOf(keys.back());
  const int64_t first = keys.front().time;
  if (after) {
    const int64_t interval = keys[1].time - first;
    return offset >= interval ? v
                              : AddStep(v, start, end, 1 - static_cast<float>(offset) / static_cast<float>(interval));
  }
  const int64_t from = keys[keys.size() - 2].time - first, interval = keys.back().time - first - from;
  return offset <= from ? v : AddStep(v, end, start, static_cast<float>(offset - from) / static_cast<float>(interval));
}

template <class Key>
typename KeyKind<Key>::Value OutsideRange(const KeyCurve<Key>& curve, TimeValue t, Interval& valid,
                                          Playhead<Key>& head) {
  const auto& keys = curve.keys;
  const bool after = t > keys.back().time;
  const ORT type = after ? curve.after : curve.before;
  const Key& end = after ? keys.back() : keys.front();
  const Interval beyond = after ? Interval{end.time, kTimeMax} : Interval{kTimeMin, end.time};
  if (type == ORT::Linear) {
    const auto& segment = after ? curve.segments.back() : curve.segments.front();
    const size_t i = after ? keys.size() - 2 : 0;
    const double length = static_cast<double>(keys[i + 1].time) - keys[i].time;
    bool still = false;
    const auto value = Beyond(segment, after ? End::Last : End::Start, ValueOf(end),
                              static_cast<float>((static_cast<double>(t) - end.time) / length), still);
    valid &= still ? beyond : Interval::Instant(t);
    return value;
  }
  const int64_t first = keys.front().time, length = keys.back().time - first;
  const Cycle cycle = CycleAt(t - first, length);
  const auto at = [&](int64_t offset) {
    Interval ignored = FOREVER;
    return InRange(curve, static_cast<TimeValue>(first + offset), ignored, head);
  };
  valid &= Interval::Instant(t);
  switch (type) {
    case ORT::Cycle:
      return at(cycle.offset);
    case ORT::Loop:
      return BlendLoop(curve, at(cycle.offset), cycle.offset, after);
    case ORT::PingPong:
      return at(cycle.number % 2 == 0 ? cycle.offset : length - cycle.offset);
    case ORT::RelativeRepeat:
      return AddStep(at(cycle.offset), ValueOf(keys.front()), ValueOf(keys.back()), static_cast<float>(cycle.number));
    default:
      return ValueOf(end);
  }
}

}  // namespace

template <class Key>
void SortKeys(std::vector<Key>& keys) {
  const auto earlier = [](const Key& a, const Key& b) { return a.time < b.time; };
  if (!std::is_sorted(keys.begin(), keys.end(), earlier)) std::stable_sort(keys.begin(), keys.end(), earlier);
  // From the back, so that of equal times the later one is met first.
  const auto same = [](const Key& a, const Key& b) { return a.time == b.time; };
  keys.erase(keys.begin(), std::unique(keys.rbegin(), keys.rend(), same).base());
}

template <class Key>
void KeyCurve<Key>::Update() {
  SortKeys(keys);
  if constexpr (requires(Key k) { k.shape; }) {
    BuildTcb(keys, segments);
  } else {
    BuildBezier(keys, segments);
  }
}

template <class Key>
typename KeyKind<Key>::Value Evaluate(const KeyCurve<Key>& curve, TimeValue t, Interval& valid, Playhead<Key>& head) {
  if (t >= head.start && t < head.end) return AtHead(head, t, valid);
  const auto& keys = curve.keys;
  if (keys.size() < 2) return keys.empty() ? typename KeyKind<Key>::Value{} : ValueOf(keys[0]);
  if (t < keys.front().time) {
    if (curve.before != ORT::Constant) return OutsideRange(curve, t, valid, head);
    valid &= {kTimeMin, keys.front().time};
    return ValueOf(keys.front());
  }
  if (t >= keys.back().time) {
    if (curve.after != ORT::Constant && t > keys.back().time) return OutsideRange(curve, t, valid, head);
    valid &= curve.after == ORT::Constant ? Interval{keys.back().time, kTimeMax} : Interval::Instant(t);
    return ValueOf(keys.back());
  }
  return InRange(curve, t, valid, head);
}

float Difference(float a, float b) { return std::abs(a - b); }
float Difference(const Point3& a, const Point3& b) {
  return std::max({std::abs(a.x - b.x), std::abs(a.y - b.y), std::abs(a.z - b.z)});
}
float Difference(const Point4& a, const Point4& b) {
  return std::max({std::abs(a.x - b.x), std::abs(a.y - b.y), std::abs(a.z - b.z), std::abs(a.w - b.w)});
}
float Difference(const Quat& a, const Quat& b) { return 2 * Length(LogTurn(Inverse(a) * b)); }
float Difference(const ScaleValue& a, const ScaleValue& b) {
  return std::max(Difference(a.s, b.s), Difference(a.q, b.q));
}

template void SortKeys(std::vector<IBezFloatKey>&);
template void SortKeys(std::vector<IBezPoint3Key>&);
template void SortKeys(std::vector<IBezPoint4Key>&);
template void SortKeys(std::vector<IBezScaleKey>&);
template void SortKeys(std::vector<ITCBFloatKey>&);
template void SortKeys(std::vector<ITCBPoint3Key>&);
template void SortKeys(std::vector<ITCBRotKey>&);
template void SortKeys(std::vector<ITCBScaleKey>&);
template struct KeyCurve<IBezFloatKey>;
template struct KeyCurve<IBezPoint3Key>;
template struct KeyCurve<IBezPoint4Key>;
template struct KeyCurve<IBezScaleKey>;
template struct KeyCurve<ITCBFloatKey>;
template struct KeyCurve<ITCBPoint3Key>;
template struct KeyCurve<ITCBRotKey>;
template struct KeyCurve<ITCBScaleKey>;
template float Evaluate(const KeyCurve<IBezFloatKey>&, TimeValue, Interval&, Playhead<IBezFloatKey>&);
template Point3 Evaluate(const KeyCurve<IBezPoint3Key>&, TimeValue, Interval&, Playhead<IBezPoint3Key>&);
template Point4 Evaluate(const KeyCurve<IBezPoint4Key>&, TimeValue, Interval&, Playhead<IBezPoint4Key>&);
template ScaleValue Evaluate(const KeyCurve<IBezScaleKey>&, TimeValue, Interval&, Playhead<IBezScaleKey>&);
template float Evaluate(const KeyCurve<ITCBFloatKey>&, TimeValue, Interval&, Playhead<ITCBFloatKey>&);
template Point3 Evaluate(const KeyCurve<ITCBPoint3Key>&, TimeValue, Interval&, Playhead<ITCBPoint3Key>&);
template Quat Evaluate(const KeyCurve<ITCBRotKey>&, TimeValue, Interval&, Playhead<ITCBRotKey>&);
template ScaleValue Evaluate(const KeyCurve<ITCBScaleKey>&, TimeValue, Interval&, Playhead<ITCBScaleKey>&);

}  // namespace corvanta
