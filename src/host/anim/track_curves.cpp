// SPDX-License-Identifier: MIT
#include "host/anim/track_curves.h"

#include <algorithm>
#include <cmath>

#include "host/anim/entries_restore.h"

namespace corvanta {

// --- evaluation

bool TrackCurves::HasEase() const {
  return std::any_of(state_.entries.begin(), state_.entries.begin() + state_.easeCount,
                     [](const Entry& e) { return e.curve && e.enabled; });
}

TimeValue TrackCurves::LocalTime(TimeValue t, Interval& valid) const {
  for (int i = 0; i < state_.easeCount; ++i) {
    const Entry& e = state_.entries[static_cast<size_t>(i)];
    if (!e.curve || !e.enabled) continue;
    float eased = 0;
    e.curve->GetValue(t, eased, valid, CTRL_ABSOLUTE);
    t = static_cast<TimeValue>(std::clamp(std::round(static_cast<double>(eased)), double{kTimeMin}, double{kTimeMax}));
  }
  return t;
}

float TrackCurves::Multiplier(TimeValue t, Interval& valid) const {
  float product = 1;
  for (size_t i = static_cast<size_t>(state_.easeCount); i < state_.entries.size(); ++i) {
    const Entry& e = state_.entries[i];
    if (!e.curve || !e.enabled) continue;
    float m = 1;
    e.curve->GetValue(t, m, valid, CTRL_ABSOLUTE);
    product *= m;
  }
  return product;
}

// --- the list

int TrackCurves::Index(Kind kind, int i) const {
  return i < 0 || i >= Count(kind) ? -1 : (kind == kEase ? i : state_.easeCount + i);
}

Control* TrackCurves::Get(Kind kind, int i) const {
  const int at = Index(kind, i);
  return at < 0 ? nullptr : state_.entries[static_cast<size_t>(at)].curve;
}

bool TrackCurves::IsEnabled(Kind kind, int i) const {
  const int at = Index(kind, i);
  return at >= 0 && state_.entries[static_cast<size_t>(at)].enabled;
}

TrackCurves::State TrackCurves::ListState() const {
  State s;
  s.easeCount = state_.easeCount;
  for (const Entry& e : state_.entries) {
    s.curves.emplace_back(e.curve);
    s.enabled.push_back(e.enabled);
  }
  return s;
}

void TrackCurves::PutListState(const State& state) {
  const State keep = ListState();  // nothing dies between two places
  for (int i = 0; i < NumRefs(); ++i) BindReference(i, nullptr);
  state_.entries.assign(state.curves.size(), {});
  state_.easeCount = state.easeCount;
  for (size_t i = 0; i < state.curves.size(); ++i) {
    BindReference(static_cast<int>(i), state.curves[i].Get());
    state_.entries[i].enabled = state.enabled[i];
  }
  NotifyDependents(FOREVER, PART_ALL, REFMSG_SUBANIM_STRUCTURE);
  NotifyDependents();
}

void TrackCurves::Change(const State& state) {
  if (theHold.Holding()) theHold.Put(std::make_unique<EntriesRestore<TrackCurves, State>>(this));
  PutListState(state);
}

bool TrackCurves::Append(Kind kind, Control* curve) {
  if (!curve || curve->SuperClassID() != kFloatControlSuper || curve->TestForLoop(this)) return false;
  State s = ListState();
  const auto at = kind == kEase ? s.easeCount++ : static_cast<int>(s.curves.size());
  s.curves.insert(s.curves.begin() + at, Ref<Control>(curve));
  s.enabled.insert(s.enabled.begin() + at, uint8_t{1});
  Change(s);
  return true;
}

void TrackCurves::Delete(Kind kind, int i) {
  const int at = Index(kind, i);
  if (at < 0) return;
  State s = ListState();
  s.curves.erase(s.curves.begin() + at);
  s.enabled.erase(s.enabled.begin() + at);
  if (kind == kEase) --s.easeCount;
  Change(s);
}

void TrackCurves::SetEnabled(Kind kind, int i, bool on) {
  const int at = Index(kind, i);
  if (at < 0 || IsEnabled(kind, i) == on) return;
  State s = ListState();
  s.enabled[static_cast<size_t>(at)] = on;
  Change(s);
}

// --- references, cloning, chunks

ReferenceTarget* TrackCurves::GetReference(int which) const {
  return which >= 0 && which < NumRefs() ? state_.entries[static_cast<size_t>(which)].curve : nullptr;
}

void TrackCurves::SetReference(int which, ReferenceTarget* target) {
  if (which < 0) return;
  if (which >= NumRefs()) {
    if (!target) return;
    state_.entries.resize(static_cast<size_t>(which) + 1);
  }
  state_.entries[static_cast<size_t>(which)].curve = target ? target->AsControl() : nullptr;
}

void TrackCurves::CopyStateFrom(ReferenceTarget& source, RemapDir&) {
  const auto& from = static_cast<TrackCurves&>(source);
  state_.easeCount = from.state_.easeCount;
  state_.entries.resize(from.state_.entries.size());
  for (size_t i = 0; i < state_.entries.size(); ++i) state_.entries[i].enabled = from.state_.entries[i].enabled;
}

IOResult TrackCurves::Save(ISave& save) {
  save.BeginChunk(kTrackCurvesChunk);
  save.Write(int32_t{state_.easeCount});
  save.Write(static_cast<uint32_t>(state_.entries.size()));
  for (const Entry& e : state_.entries) save.Write(e.enabled);
  save.EndChunk();
  return save.Status();
}

IOResult TrackCurves::Load(ILoad& load) {
  while (load.OpenChunk() == IOResult::OK) {
    if (load.CurChunkID() == kTrackCurvesChunk) {
      int32_t easeCount = 0;
      uint32_t count = 0;
      load.Read(easeCount);
      load.ReadCount(count, 1);
      if (easeCount < 0 || static_cast<uint32_t>(easeCount) > count)
        return load.Fail("a track has more ease curves than curves");
      state_.easeCount = easeCount;
      state_.entries.resize(count);
      for (Entry& e : state_.entries) load.Read(e.enabled);
    }
    load.CloseChunk();
  }
  return load.Status();
}

}  // namespace corvanta
