// SPDX-License-Identifier: MIT
#include <algorithm>

#include "host/anim/key_curve.h"

namespace corvanta {
namespace {

// A key's slopes reach two keys far, the natural ends of TCB curves one more; with five on each side the inner three
// of a cut-out curve are those of the whole.
constexpr int kWindow = 5;
constexpr int kReach = 3;

// Whether the curve without key `i` stays near `before` around it.
template <class Key>
bool CanGo(const std::vector<Key>& keys, int i, const KeyCurve<Key>& before, float threshold, TimeValue step,
           TimeValue origin) {
  const int count = static_cast<int>(keys.size());
  const int lo = std::max(i - kWindow, 0), hi = std::min(i + kWindow, count - 1);
  KeyCurve<Key> part;
  part.keys.assign(keys.begin() + lo, keys.begin() + hi + 1);
  part.keys.erase(part.keys.begin() + (i - lo));
  part.Update();
  const int64_t from = keys[std::max(i - kReach, 0)].time, to = keys[std::min(i + kReach, count - 1)].time;
  Playhead<Key> head, headBefore;
  const int64_t first = origin + (from - origin) / step * step;
  for (int64_t t = first; t <= to; t += step) {
    if (t < from) continue;
    Interval ignored = FOREVER;
    const auto time = static_cast<TimeValue>(t);
    if (!(Difference(Evaluate(part, time, ignored, head), Evaluate(before, time, ignored, headBefore)) <= threshold))
      return false;
  }
  return true;
}

}  // namespace

template <class Key>
int ReduceKeys(KeyCurve<Key>& curve, float threshold, TimeValue step, const Interval& range) {
  curve.Update();
  const KeyCurve<Key> before = curve;
  auto& keys = curve.keys;
  step = std::max(step, 1);
  int first = 0, last = static_cast<int>(keys.size()) - 1;
  while (first <= last && !range.Contains(keys[first].time)) ++first;
  while (last > first && !range.Contains(keys[last].time)) --last;
  int gone = 0;
  for (int i = first + 1; i < last;) {
    if (CanGo(keys, i, before, threshold, step, keys[first].time)) {
      keys.erase(keys.begin() + i);
      --last;
      ++gone;
    } else {
      ++i;
    }
  }
  if (gone > 0) curve.Update();
  return gone;
}

template int ReduceKeys(KeyCurve<IBezFloatKey>&, float, TimeValue, const Interval&);
template int ReduceKeys(KeyCurve<IBezPoint3Key>&, float, TimeValue, const Interval&);
template int ReduceKeys(KeyCurve<IBezPoint4Key>&, float, TimeValue, const Interval&);
template int ReduceKeys(KeyCurve<IBezScaleKey>&, float, TimeValue, const Interval&);
template int ReduceKeys(KeyCurve<ITCBFloatKey>&, float, TimeValue, const Interval&);
template int ReduceKeys(KeyCurve<ITCBPoint3Key>&, float, TimeValue, const Interval&);
template int ReduceKeys(KeyCurve<ITCBRotKey>&, float, TimeValue, const Interval&);
template int ReduceKeys(KeyCurve<ITCBScaleKey>&, float, TimeValue, const Interval&);

}  // namespace corvanta
