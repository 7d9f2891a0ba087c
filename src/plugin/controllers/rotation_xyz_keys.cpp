// SPDX-License-Identifier: MIT
// Key operations go to the three tracks in the order X, Y, Z; a locked controller takes and tells nothing.
#include <algorithm>

#include "plugin/controllers/rotation_xyz.h"

namespace tavrilon {

using namespace corvanta;

template <class F>
void RotationXYZ::EditTracks(F&& f) {
  if (!locked_) tracks_.ForEach(f);
}

bool RotationXYZ::IsAnimated() {
  bool animated = false;
  tracks_.ForEach([&](Control& c) { animated = animated || c.IsAnimated() || c.NumKeys() > 0; });
  return animated;
}

int RotationXYZ::NumKeys() const { return locked_ ? 0 : static_cast<int>(tracks_.Times().size()); }

TimeValue RotationXYZ::GetKeyTime(int i) const {
  const std::vector<TimeValue> times = tracks_.Times();
  return !locked_ && i >= 0 && i < static_cast<int>(times.size()) ? times[static_cast<size_t>(i)] : 0;
}

int RotationXYZ::GetKeyIndex(TimeValue t) const {
  if (locked_) return -1;
  const std::vector<TimeValue> times = tracks_.Times();
  const auto found = std::lower_bound(times.begin(), times.end(), t);
  return found != times.end() && *found == t ? static_cast<int>(found - times.begin()) : -1;
}

bool RotationXYZ::GetNextKeyTime(TimeValue t, bool forward, TimeValue& next) const {
  bool found = false;
  if (!locked_)
    tracks_.ForEach([&](const Control& c) {
      TimeValue key = 0;
      if (!c.GetNextKeyTime(t, forward, key)) return;
      if (!found || (forward ? key < next : key > next)) next = key;
      found = true;
    });
  return found;
}

bool RotationXYZ::IsKeySelected(int i) const {
  const std::vector<TimeValue> times = tracks_.Times();
  if (locked_ || i < 0 || i >= static_cast<int>(times.size())) return false;
  bool selected = false;
  tracks_.ForEach([&](const Control& c) {
    const int own = c.GetKeyIndex(times[static_cast<size_t>(i)]);
    selected = selected || (own >= 0 && c.IsKeySelected(own));
  });
  return selected;
}

void RotationXYZ::AddNewKey(TimeValue t) {
  EditTracks([&](Control& c) { c.AddNewKey(t); });
}
void RotationXYZ::DeleteKeyAtTime(TimeValue t) {
  EditTracks([&](Control& c) { c.DeleteKeyAtTime(t); });
}
void RotationXYZ::DeleteKeys(bool selectedOnly) {
  EditTracks([&](Control& c) { c.DeleteKeys(selectedOnly); });
}
void RotationXYZ::SelectKeys(const Interval& range, bool on) {
  EditTracks([&](Control& c) { c.SelectKeys(range, on); });
}
void RotationXYZ::MapKeys(const TimeMap& map, uint32_t flags) {
  EditTracks([&](Control& c) { c.MapKeys(map, flags); });
}
void RotationXYZ::DeleteTime(const Interval& range, uint32_t flags) {
  EditTracks([&](Control& c) { c.DeleteTime(range, flags); });
}
void RotationXYZ::ReverseTime(const Interval& range, uint32_t flags) {
  EditTracks([&](Control& c) { c.ReverseTime(range, flags); });
}
void RotationXYZ::CopyKeysFromTime(TimeValue from, TimeValue to) {
  EditTracks([&](Control& c) { c.CopyKeysFromTime(from, to); });
}

ORT RotationXYZ::GetORT(bool after) const {
  for (const Control* c : tracks_.track)
    if (c) return c->GetORT(after);
  return ORT::Constant;
}
void RotationXYZ::SetORT(ORT ort, bool after) {
  EditTracks([&](Control& c) { c.SetORT(ort, after); });
}

}  // namespace tavrilon
