// SPDX-License-Identifier: MIT
// The components that a user adds to a rig.
#include <algorithm>

#include "plugin/rig/detail/rig_edit.h"

namespace tavrilon {

using namespace corvanta;

namespace {

constexpr int kMaxCount = 99;

int ClampCount(int count) { return std::clamp(count, 1, kMaxCount); }
bool IsSide(int side) { return side >= kSideNone && side <= kSideCenter; }

/// `word` at the start of a name without its side, followed by "_" or nothing, replaced by `by`.
WStr Renamed(const WStr& name, const WStr& word, const WStr& by) {
  const WStr plain = WithoutSide(name);
  if (plain.compare(0, word.size(), word) != 0) return name;
  return name.substr(0, name.size() - plain.size()) + by + plain.substr(word.size());
}

}  // namespace

const RigExtra* RigSystem::ExtraAt(int index) const {
  return index >= 0 && index < GetNumExtras() ? &state_.extras[static_cast<size_t>(index)] : nullptr;
}

bool RigSystem::HasExtra(const WStr& name) const {
  return std::any_of(state_.extras.begin(), state_.extras.end(), [&](const RigExtra& e) { return e.name == name; });
}

bool RigSystem::AddExtra(const WStr& name, const WStr& parent, int side, int num_controls, int num_bones,
                         bool use_bones) {
  RigExtra extra{name,     parent, IsSide(side) ? side : kSideNone, ClampCount(num_controls), ClampCount(num_bones),
                 use_bones};
  for (int n = 1; extra.name.empty(); ++n) {
    const WStr free = Format(L"extra_%02d", n);
    if (!HasExtra(free)) extra.name = free;
  }
  if (HasExtra(extra.name)) return false;
  HoldScope hold(L"Add Extra");
  RecordPoints();
  state_.extras.push_back(std::move(extra));
  Rebuild(false);
  PointsChanged();
  return true;
}

bool RigSystem::RemoveExtra(int index) {
  if (!ExtraAt(index)) return false;
  HoldScope hold(L"Remove Extra");
  RecordPoints();
  state_.extras.erase(state_.extras.begin() + index);
  Rebuild(false);
  PointsChanged();
  return true;
}

WStr RigSystem::GetExtraName(int index) const { return ExtraAt(index) ? ExtraAt(index)->name : WStr(); }
WStr RigSystem::GetExtraParent(int index) const { return ExtraAt(index) ? ExtraAt(index)->parent : WStr(); }
int RigSystem::GetExtraSide(int index) const { return ExtraAt(index) ? ExtraAt(index)->side : 0; }
int RigSystem::GetExtraNumControls(int index) const { return ExtraAt(index) ? ExtraAt(index)->num_controls : 0; }
int RigSystem::GetExtraNumBones(int index) const { return ExtraAt(index) ? ExtraAt(index)->num_bones : 0; }
bool RigSystem::GetExtraUseBones(int index) const { return ExtraAt(index) && ExtraAt(index)->use_bones; }

void RigSystem::SetExtraName(int index, const WStr& name) {
  if (!ExtraAt(index) || name.empty() || HasExtra(name)) return;
  const WStr old = GetExtraName(index);
  HoldScope hold(L"Change Extra");
  RecordPoints();
  for (RigPoint& point : state_.points)
    if (point.component == kFirstExtraComponent + index) point.name = Renamed(point.name, old, name);
  ChangeExtra(index, [&](RigExtra& extra) { extra.name = name; });
}

void RigSystem::SetExtraParent(int index, const WStr& parent) {
  ChangeExtra(index, [&](RigExtra& extra) { extra.parent = parent; });
}

void RigSystem::SetExtraSide(int index, int side) {
  if (IsSide(side)) ChangeExtra(index, [&](RigExtra& extra) { extra.side = side; });
}

void RigSystem::SetExtraNumControls(int index, int num_bones) {
  ChangeExtra(index, [&](RigExtra& extra) { extra.num_controls = ClampCount(num_bones); });
}

void RigSystem::SetExtraNumBones(int index, int num_bones) {
  ChangeExtra(index, [&](RigExtra& extra) { extra.num_bones = ClampCount(num_bones); });
}

bool RigSystem::SetExtraUseBones(int index, bool on) {
  return ChangeExtra(index, [&](RigExtra& extra) { extra.use_bones = on; });
}

}  // namespace tavrilon
