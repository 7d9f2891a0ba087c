// SPDX-License-Identifier: MIT
// Edits of the links. Whatever is edited, the same happens: the node's places are remembered, the rows are changed, and
// the FK controller is fitted to what the node hangs on now.
#include <algorithm>

#include "host/core/hold.h"
#include "host/scene/core_interface.h"
#include "plugin/frame/loop_validator.h"
#include "plugin/solvers/ikfk_control.h"
#include "plugin/solvers/ikfk_link.h"

namespace tavrilon {

using namespace corvanta;
using namespace ikfk_link;

namespace {
constexpr const wchar_t* kStepName = L"IKFK Change";

TimeValue Clamped(int64_t time) { return static_cast<TimeValue>(std::clamp<int64_t>(time, kTimeMin, kTimeMax)); }
TimeValue FrameToTime(int64_t frame) { return Clamped(frame * GetCOREInterface()->GetTicksPerFrame()); }
}  // namespace

// Rows.

INode* IKFKLink::GetNode(int i) const {
  return i >= 0 && i < GetNumTargets() ? block_->GetINode(kTargetList, 0, i) : nullptr;
}

int IKFKLink::GetFrameNo(int i) const { return GetKeyTime(i) / GetCOREInterface()->GetTicksPerFrame(); }

std::vector<IKFKLink::Link> IKFKLink::GetLinks() const {
  std::vector<Link> links(static_cast<size_t>(NumLinks()));
  for (int i = 0; i < NumLinks(); ++i)
    links[static_cast<size_t>(i)] = {block_->GetTime(kStartTime, 0, i), GetNode(i), IsKeySelected(i)};
  return links;
}

// In the order of their times; of several at one time the last one stays.
void IKFKLink::PutLinks(std::vector<Link> links) {
  std::stable_sort(links.begin(), links.end(), [](const Link& a, const Link& b) { return a.start < b.start; });
  std::vector<Link> unique;
  for (const Link& link : links) {
    if (!unique.empty() && unique.back().start == link.start) unique.pop_back();
    unique.push_back(link);
  }
  const auto n = static_cast<int>(unique.size());
  for (const ParamID id : {ParamID{kTargetList}, ParamID{kStartTime}, ParamID{kKeySelection}}) {
    block_->RecordTab(id);
    block_->SetCount(id, n);
  }
  for (int i = 0; i < n; ++i) {
    const Link& link = unique[static_cast<size_t>(i)];
    block_->SetValue(kTargetList, 0, link.target, i);
    block_->SetValue(kStartTime, 0, link.start, i);
    block_->SetValue(kKeySelection, 0, link.selected, i);
  }
}

// Keeping the node in its place.

IKFKControl* IKFKLink::FindControl() const {
  ReferenceMaker* owner =
      FindDependent([](ReferenceMaker* maker) { return IsOfClass(maker->AsTarget(), TavrilonClass::IKFKControl); });
  return owner ? static_cast<IKFKControl*>(owner->AsTarget()->AsControl()) : nullptr;
}

std::vector<IKFKLink::Kept> IKFKLink::Remember(TimeValue anchor) const {
  std::vector<Kept> kept;
  const IKFKControl* control = FindControl();
  const Control* fk = control ? control->GetFK() : nullptr;
  if (!fk || !control->LinkActive()) return kept;
  const int keys = fk->NumKeys();
  for (int i = 0; i < std::max(keys, 1); ++i) {
    Kept at;
    at.key = keys > 0;
    at.time = at.key ? fk->GetKeyTime(i) : anchor;
    Interval valid = FOREVER;
    at.base = control->GetBaseTM(at.time, valid);
    at.world = control->GetFKValue(at.time, valid) * at.base;
    kept.push_back(at);
  }
  return kept;
}

namespace {

// A place that is not keyed is written without making a key.
void FitConstant(Control& fk, TimeValue t, const Matrix3& was, const Matrix3& now, const Matrix3& world) {
  SuspendAnimate();
  if (!fk.ChangeParents(t, was, now, world)) {
    SetXFormPacket packet = SetXFormPacket::Set(world, now);
    fk.SetValue(t, packet, true, CTRL_ABSOLUTE);
  }
  ResumeAnimate();
}

void FitKey(Control& fk, TimeValue t, const Matrix3& now, const Matrix3& world) {
  const AnimateScope animate;
  SetXFormPacket packet = SetXFormPacket::Set(world, now);
  fk.SetValue(t, packet, true, CTRL_ABSOLUTE);
}

}  // namespace

void IKFKLink::Refit(const std::vector<Kept>& kept) const {
  const IKFKControl* control = FindControl();
  if (!control || !control->GetFK()) return;
  for (const Kept& at : kept) {
    Interval valid = FOREVER;
    const Matrix3 now = control->GetBaseTM(at.time, valid);
    if (now == at.base) continue;
    if (at.key)
      FitKey(*control->GetFK(), at.time, now, at.world);
    else
      FitConstant(*control->GetFK(), at.time, at.base, now, at.world);
  }
}

template <class Edit>
void IKFKLink::EditLinks(TimeValue anchor, bool keepTM, Edit&& edit) {
  const HoldScope hold(kStepName);
  std::vector<Kept> kept;
  if (keepTM && keepPosition_) kept = Remember(anchor);
  std::vector<Link> links = GetLinks();
  edit(links);
  PutLinks(std::move(links));
  Refit(kept);
  NotifyDependents();
}

// The interface.

bool IKFKLink::AddTarget(INode* target, int frame, bool keepTM) {
  if (!block_ || locked_) return false;
  if (target && (!MayFollow(this, target) || target->TestForLoop(block_))) return false;
  const TimeValue start = FrameToTime(frame);
  EditLinks(start, keepTM, [&](std::vector<Link>& links) {
    const auto same = std::find_if(links.begin(), links.end(), [&](const Link& l) { return l.start == start; });
    if (same != links.end())
      same->target = target;
    else
      links.push_back({start, target, false});
  });
  return true;
}

bool IKFKLink::DeleteTarget(int i, bool keepTM) {
  if (!block_ || locked_ || i < 0 || i >= NumLinks()) return false;
  // The place that stays is that of the next link's start, or what is seen now when none is left.
  TimeValue anchor = GetCOREInterface()->GetTime();
  if (NumLinks() > 1) anchor = GetKeyTime(i == 0 ? 1 : i);
  EditLinks(anchor, keepTM, [&](std::vector<Link>& links) { links.erase(links.begin() + i); });
  return true;
}

bool IKFKLink::SetFrameNo(int i, int frame) {
  if (!block_ || locked_ || i < 0 || i >= NumLinks()) return false;
  const TimeValue start = FrameToTime(frame);
  const int there = GetKeyIndex(start);
  if (there >= 0) return there == i;
  EditLinks(start, true, [&](std::vector<Link>& links) { links[static_cast<size_t>(i)].start = start; });
  return true;
}

// Keys.

TimeValue IKFKLink::GetKeyTime(int i) const { return i >= 0 && i < NumLinks() ? block_->GetTime(kStartTime, 0, i) : 0; }

int IKFKLink::GetKeyIndex(TimeValue t) const {
  for (int i = 0; i < NumLinks(); ++i)
    if (GetKeyTime(i) == t) return i;
  return -1;
}

bool IKFKLink::IsKeySelected(int i) const {
  return block_ && i >= 0 && i < block_->Count(kKeySelection) && block_->GetBool(kKeySelection, 0, i);
}

void IKFKLink::SelectKeys(const Interval& range, bool on) {
  for (int i = 0; i < NumLinks(); ++i)
    if (range.Contains(GetKeyTime(i)) && i < block_->Count(kKeySelection)) block_->SetValue(kKeySelection, 0, on, i);
}

void IKFKLink::DeleteKeyAtTime(TimeValue t) { DeleteTarget(GetKeyIndex(t)); }

void IKFKLink::DeleteKeys(bool selectedOnly) {
  if (!block_ || locked_) return;
  EditLinks(GetCOREInterface()->GetTime(), true, [&](std::vector<Link>& links) {
    std::erase_if(links, [&](const Link& link) { return !selectedOnly || link.selected; });
  });
}

void IKFKLink::MapKeys(const TimeMap& map, uint32_t flags) {
  if (!block_ || locked_ || NumLinks() == 0) return;
  EditLinks(GetCOREInterface()->GetTime(), true, [&](std::vector<Link>& links) {
    for (Link& link : links)
      if (link.selected || !(flags & KEYMAP_SELECTED)) link.start = map.Map(link.start);
  });
}

void IKFKLink::DeleteTime(const Interval& range, uint32_t flags) {
  if (!block_ || locked_ || range.IsEmpty() || NumLinks() == 0) return;
  const int64_t length = int64_t{range.end} - range.start;
  EditLinks(GetCOREInterface()->GetTime(), true, [&](std::vector<Link>& links) {
    std::erase_if(links, [&](const Link& link) { return range.Contains(link.start); });
    if (flags & TIME_NOSLIDE) return;
    for (Link& link : links)
      if (link.start > range.end) link.start = Clamped(link.start - length);
  });
}

void IKFKLink::ReverseTime(const Interval& range, uint32_t) {
  if (!block_ || locked_ || range.IsEmpty() || NumLinks() == 0) return;
  EditLinks(GetCOREInterface()->GetTime(), true, [&](std::vector<Link>& links) {
    for (Link& link : links)
      if (range.Contains(link.start)) link.start = Clamped(int64_t{range.start} + range.end - link.start);
  });
}

void IKFKLink::CopyKeysFromTime(TimeValue from, TimeValue to) {
  const int source = GetKeyIndex(from);
  if (!block_ || locked_ || source < 0 || from == to) return;
  EditLinks(to, true, [&](std::vector<Link>& links) {
    Link copy = links[static_cast<size_t>(source)];
    copy.start = to;
    links.push_back(copy);
  });
}

}  // namespace tavrilon
