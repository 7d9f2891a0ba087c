// SPDX-License-Identifier: MIT
#include "host/anim/composite_control.h"

#include <algorithm>

#include "host/anim/class_ids.h"

namespace corvanta {

void* CompositeControl::GetInterface(uint32_t request) {
  if (request == I_LOCKED) return static_cast<ILockedTrack*>(this);
  return Control::GetInterface(request);
}

bool CompositeControl::IsAnimated() {
  bool animated = false;
  ForEachPart([&](Control& c) { animated = animated || c.IsAnimated(); });
  return animated;
}

// --- keys

std::vector<TimeValue> CompositeControl::KeyTimes() const {
  std::vector<TimeValue> times;
  ForEachPart([&](const Control& c) {
    for (int i = 0, n = c.NumKeys(); i < n; ++i) times.push_back(c.GetKeyTime(i));
  });
  std::sort(times.begin(), times.end());
  times.erase(std::unique(times.begin(), times.end()), times.end());
  return times;
}

TimeValue CompositeControl::GetKeyTime(int i) const {
  const std::vector<TimeValue> times = KeyTimes();
  return i >= 0 && i < static_cast<int>(times.size()) ? times[static_cast<size_t>(i)] : 0;
}

int CompositeControl::GetKeyIndex(TimeValue t) const {
  const std::vector<TimeValue> times = KeyTimes();
  const auto at = std::lower_bound(times.begin(), times.end(), t);
  return at != times.end() && *at == t ? static_cast<int>(at - times.begin()) : -1;
}

bool CompositeControl::GetNextKeyTime(TimeValue t, bool forward, TimeValue& next) const {
  bool found = false;
  ForEachPart([&](const Control& c) {
    TimeValue key = 0;
    if (!c.GetNextKeyTime(t, forward, key)) return;
    if (!found || (forward ? key < next : key > next)) next = key;
    found = true;
  });
  return found;
}

Interval CompositeControl::GetKeyRange() const {
  Interval range = NEVER;
  ForEachPart([&](const Control& c) {
    const Interval own = c.GetKeyRange();
    if (own.IsEmpty()) return;
    range = range.IsEmpty() ? own : Interval{std::min(range.start, own.start), std::max(range.end, own.end)};
  });
  return range;
}

bool CompositeControl::IsKeySelected(int i) const {
  const std::vector<TimeValue> times = KeyTimes();
  if (i < 0 || i >= static_cast<int>(times.size())) return false;
  bool selected = false;
  ForEachPart([&](const Control& c) {
    const int own = c.GetKeyIndex(times[static_cast<size_t>(i)]);
    selected = selected || (own >= 0 && c.IsKeySelected(own));
  });
  return selected;
}

void CompositeControl::AddNewKey(TimeValue t) {
  EditParts([&](Control& c) { c.AddNewKey(t); });
}
void CompositeControl::DeleteKeyAtTime(TimeValue t) {
  EditParts([&](Control& c) { c.DeleteKeyAtTime(t); });
}
void CompositeControl::DeleteKeys(bool selectedOnly) {
  EditParts([&](Control& c) { c.DeleteKeys(selectedOnly); });
}
void CompositeControl::SelectKeys(const Interval& range, bool on) {
  EditParts([&](Control& c) { c.SelectKeys(range, on); });
}
void CompositeControl::MapKeys(const TimeMap& map, uint32_t flags) {
  EditParts([&](Control& c) { c.MapKeys(map, flags); });
}
void CompositeControl::DeleteTime(const Interval& range, uint32_t flags) {
  EditParts([&](Control& c) { c.DeleteTime(range, flags); });
}
void CompositeControl::ReverseTime(const Interval& range, uint32_t flags) {
  EditParts([&](Control& c) { c.ReverseTime(range, flags); });
}
void CompositeControl::CopyKeysFromTime(TimeValue from, TimeValue to) {
  EditParts([&](Control& c) { c.CopyKeysFromTime(from, to); });
}
ORT CompositeControl::GetORT(bool after) const {
  for (int i = 0; i < NumParts(); ++i)
    if (const Control* part = Part(i)) return part->GetORT(after);
  return ORT::Constant;
}
void CompositeControl::SetORT(ORT ort, bool after) {
  EditParts([&](Control& c) { c.SetORT(ort, after); });
}

// --- parts

bool CompositeControl::CanAssignController(int subAnim) {
  if (locked_ || subAnim < 0 || subAnim >= NumParts()) return false;
  const ILockedTrack* lock = GetLockedTrack(Part(subAnim));
  return !lock || !lock->GetLocked();
}

bool CompositeControl::AssignController(Control* control, int subAnim) {
  if (!CanAssignController(subAnim)) return false;
  if (control && control->SuperClassID() != PartSuperClass(subAnim)) return false;
  if (ReplaceReference(subAnim, control) != REF_SUCCEED) return false;
  NotifyDependents(FOREVER, PART_ALL, REFMSG_CONTROLREF_CHANGE);
  NotifyDependents();
  return true;
}

IOResult CompositeControl::SaveLock(ISave& save) const {
  if (locked_) {
    save.BeginChunk(kLockChunk);
    save.Write(int32_t{1});
    save.EndChunk();
  }
  return save.Status();
}

}  // namespace corvanta
