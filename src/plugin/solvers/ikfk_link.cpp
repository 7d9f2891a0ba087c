// SPDX-License-Identifier: MIT
// Evaluation, references and storing. Edits and keys are in ikfk_link_edit.cpp, the script interface in
// ikfk_link_interface.cpp.
#include "plugin/solvers/ikfk_link.h"

#include "host/anim/class_ids.h"
#include "host/core/remap.h"
#include "host/scene/node.h"
#include "plugin/frame/lock_chunk.h"
#include "plugin/frame/loop_validator.h"
#include "plugin/solvers/link.h"

namespace tavrilon {

using namespace corvanta;
using namespace ikfk_link;

namespace {

/// Evaluation keeps the start times and an offset.
class LinkListHook final : public PBAccessor {
 public:
  void Set(ParamBlock2&, ReferenceTarget* owner, ParamID, int, TimeValue) override { Drop(owner); }
  void TabChanged(TabChange, ParamBlock2&, ReferenceTarget* owner, ParamID, int, int) override { Drop(owner); }

 private:
  static void Drop(ReferenceTarget* owner) {
    if (owner) static_cast<IKFKLink*>(owner)->ListsChanged();
  }
} listHook;

LoopValidator targetValidator;

const ParamRow kRows[] = {
    {kTargetList, L"target_list", ParamType::Node, kTab, {}, {}, L"Target List", 0, &listHook, &targetValidator},
    {kStartTime, L"start_time", ParamType::Time, kTab, {}, {}, L"Start Time", 0, &listHook},
    {kKeySelection, L"key_selection", ParamType::Bool, kTab, {}, {}, L"Key Selection", 0, &listHook},
};

}  // namespace

const ParamBlockDesc2& IKFKLink::BlockDesc() {
  static const ParamBlockDesc2 desc(0, L"params", kRows);
  return desc;
}

ReferenceTarget* CreateIKFKLink(bool loading) { return new IKFKLink(loading); }

IKFKLink::IKFKLink(bool loading) {
  if (!loading) BindReference(0, new ParamBlock2(BlockDesc()));
}

void IKFKLink::SetReference(int which, ReferenceTarget* target) {
  if (which != 0) return;
  block_ = static_cast<ParamBlock2*>(target);
  ListsChanged();
}

void* IKFKLink::GetInterface(uint32_t request) {
  return request == I_LOCKED ? static_cast<ILockedTrack*>(this) : Control::GetInterface(request);
}

FPInterface* IKFKLink::GetInterface(const Interface_ID& id) {
  return id == kId ? static_cast<IIKFKLink*>(this) : Control::GetInterface(id);
}

// Evaluation.

bool IKFKLink::ReadLists() {
  if (!stale_) return usable_;
  stale_ = false;
  const int n = NumLinks();
  usable_ = n > 0 && block_->Count(kTargetList) == n;
  starts_.resize(static_cast<size_t>(n));
  for (int i = 0; i < n; ++i) starts_[static_cast<size_t>(i)] = block_->GetTime(kStartTime, 0, i);
  return usable_;
}

Matrix3 IKFKLink::TargetTM(int i, TimeValue t, Interval& valid) const {
  INode* node = GetNode(i);
  return node ? node->GetNodeTM(t, valid) : Matrix3();
}

// It depends on the targets at the switches only, so it holds until a target or the lists change.
const Matrix3& IKFKLink::OffsetOf(int index) {
  if (offsetOf_ == index) return offset_;
  Interval ignored = FOREVER;
  offset_ = LinkMatrix(index, Matrix3(), [&](int i) {
    const TimeValue start = starts_[static_cast<size_t>(i)];
    return LinkSwitch{TargetTM(i - 1, start, ignored), TargetTM(i, start, ignored)};
  });
  offsetOf_ = index;
  return offset_;
}

void IKFKLink::GetMatrix(TimeValue t, Matrix3& tm, Interval& valid) {
  if (!ReadLists()) return;
  const int active = ActiveLink(starts_, t);
  valid &= LinkSpan(starts_, active);
  tm = TargetTM(active, t, valid);
  if (active > 0) tm = OffsetOf(active) * tm;
}

void IKFKLink::GetValue(TimeValue t, ValueRef value, Interval& valid, GetSetMethod method) {
  if (!value.Is(ValueKind::Float)) return;
  const int active = ReadLists() ? ActiveLink(starts_, t) : -1;
  if (active >= 0 && active + 1 == NumLinks())
    valid &= Interval{t, t};
  else if (active >= 0)
    valid &= LinkSpan(starts_, active);
  value.Float() = static_cast<float>(active) + (method == CTRL_RELATIVE ? value.Float() : 0);
}

// A target's place counts, nothing else of it.
RefResult IKFKLink::NotifyRefChanged(const Interval&, ReferenceTarget* target, PartID& part, RefMessage message, bool) {
  if (target != block_) return REF_SUCCEED;
  if (message == REFMSG_TARGET_DELETED) ListsChanged();
  if (message != REFMSG_CHANGE || !(part & PART_TM)) return REF_STOP;
  offsetOf_ = -1;
  part = PART_TM;
  return REF_SUCCEED;
}

// Clone, save, load.

ReferenceTarget* IKFKLink::Clone(RemapDir& remap) {
  auto* clone = static_cast<IKFKLink*>(Control::Clone(remap));
  // Targets may be cloned later than the link.
  remap.AddPostPatchProc([clone](RemapDir& map) {
    for (int i = 0; i < clone->GetNumTargets(); ++i)
      if (ReferenceTarget* target = map.Find(clone->GetNode(i))) clone->block_->LoadTarget(kTargetList, i, target);
    clone->ListsChanged();
  });
  return clone;
}

void IKFKLink::CopyStateFrom(ReferenceTarget& source, RemapDir&) {
  auto& from = static_cast<IKFKLink&>(source);
  locked_ = from.locked_;
  keepPosition_ = from.keepPosition_;
}

IOResult IKFKLink::Save(ISave& save) { return SaveLockChunk(save, locked_); }

IOResult IKFKLink::Load(ILoad& load) { return LoadLockChunk(load, locked_); }

}  // namespace tavrilon
