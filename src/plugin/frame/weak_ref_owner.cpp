// SPDX-License-Identifier: MIT
#include "plugin/frame/weak_ref_owner.h"

#include "host/scene/node.h"

namespace tavrilon {

using namespace corvanta;

namespace {

// Runs `tell` unless it is running already.
template <class Tell>
void Guarded(bool& running, Tell&& tell) {
  if (running) return;
  running = true;
  tell();
  running = false;
}

}  // namespace

int WeakRefOwner::NumWeakParams() const {
  int count = 0;
  if (const ParamBlock2* block = GetWeakBlock())
    for (const ParamRow& row : block->GetDesc().rows) count += row.Is(kWeak);
  return count;
}

ParamID WeakRefOwner::GetWeakParam(int i) const {
  if (const ParamBlock2* block = GetWeakBlock())
    for (const ParamRow& row : block->GetDesc().rows)
      if (row.Is(kWeak) && i-- == 0) return row.id;
  return -1;
}

INode* WeakRefOwner::GetWeakNode(ParamID id, int tab) const {
  const ParamBlock2* block = GetWeakBlock();
  return block ? block->GetINode(id, 0, tab) : nullptr;
}

bool WeakRefOwner::SetWeakNode(ParamID id, INode* node, int tab) {
  ParamBlock2* block = GetWeakBlock();
  return block && block->SetValue(id, 0, node, tab);
}

void WeakRefOwner::WeakTargetNotice(ParamBlock2& block, ParamID id, int tab, const RefNotice& notice) {
  ReferenceTarget* owner = WeakOwner();
  if (PassesOn(id, tab, notice)) return Guarded(passing_, [&] { owner->Propagate(notice); });
  RefNotice told = notice;
  switch (notice.message) {
    case REFMSG_TARGET_DELETED:
      Guarded(tellingGone_, [&] { owner->NotifyDependents(FOREVER, PART_ALL, REFMSG_MONITORED_GONE); });
      break;
    case REFMSG_NODE_SELECTION:
      told.propagate = true;
      Guarded(tellingSelection_, [&] { owner->Propagate(told); });
      break;
    case REFMSG_NODE_RENAMED:
      told.part = PART_ALL;
      Guarded(tellingRename_, [&] { owner->Propagate(told); });
      break;
    default:
      break;
  }
}

}  // namespace tavrilon
