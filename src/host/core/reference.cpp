// SPDX-License-Identifier: MIT
#include "host/core/reference.h"

#include <algorithm>
#include <cassert>
#include <memory>

#include "host/core/after_delivery.h"
#include "host/core/class_desc.h"
#include "host/core/cust_attrib.h"
#include "host/core/hold.h"
#include "host/core/monitor.h"
#include "host/core/remap.h"

namespace corvanta {

namespace {

int messagesOff = 0;
uint32_t lastNotice = 0;
int openSends = 0;
int openDeliveries = 0;
const RefNotice* currentNotice = nullptr;

// A handler may send messages of its own while one is delivered; handlers that answer one another for ever end here.
constexpr int kMaxNestedSends = 200;

struct Waiting {
  std::unique_ptr<RefGuard> keep;
  ReferenceTarget* owner;
  void (*work)(ReferenceTarget*);
};
std::vector<Waiting> waiting;
bool runningWaiting = false;

}  // namespace

void AfterDelivery(ReferenceTarget* owner, void (*work)(ReferenceTarget* owner)) {
  if (openDeliveries == 0) return work(owner);
  waiting.push_back({std::make_unique<RefGuard>(owner), owner, work});
}

DeliveryScope::DeliveryScope() { ++openDeliveries; }
// What waits may send messages, after which more may wait.
DeliveryScope::~DeliveryScope() {
  if (--openDeliveries > 0 || waiting.empty() || runningWaiting) return;
  runningWaiting = true;
  for (size_t i = 0; i < waiting.size(); ++i) {
    const Waiting next = std::move(waiting[i]);
    next.work(next.owner);
  }
  waiting.clear();
  runningWaiting = false;
}

void DisableRefMsgs() { ++messagesOff; }
void EnableRefMsgs() { messagesOff = std::max(0, messagesOff - 1); }
bool RefMsgsEnabled() { return messagesOff == 0; }

/// Undo of one bound reference.
class ReferenceRestore final : public RestoreObj {
 public:
  ReferenceRestore(ReferenceTarget* maker, int which, ReferenceTarget* before, ReferenceTarget* after)
      : maker_(maker), which_(which), before_(before), after_(after) {}
  void Restore(bool) override { Put(before_.Get()); }
  void Redo() override { Put(after_.Get()); }

 private:
  // The maker hears it as a change of what it refers to now, so that what it keeps of the other goes.
  void Put(ReferenceTarget* target) {
    maker_->BindReference(which_, target);
    if (target) target->NotifyDependents();
    maker_->NotifyDependents();
  }
  Ref<ReferenceTarget> maker_;
  int which_;
  Ref<ReferenceTarget> before_, after_;
};

// ReferenceMaker.

ReferenceTarget* ReferenceMaker::ReferenceAt(int which) const {
  return which == kCustAttribRef ? custAttribs_ : GetReference(which);
}

void ReferenceMaker::StoreReference(int which, ReferenceTarget* target) {
  if (which == kCustAttribRef)
    custAttribs_ = static_cast<CustAttribContainer*>(target);
  else
    SetReference(which, target);
}

RefResult ReferenceMaker::ReplaceReference(int which, ReferenceTarget* target, bool delOld) {
  ReferenceTarget* old = ReferenceAt(which);
  if (old == target) return REF_SUCCEED;
  if (target && target->TestForLoop(this)) return REF_FAIL;
  if (theHold.Holding())
    if (ReferenceTarget* self = AsTarget()) theHold.Put(std::make_unique<ReferenceRestore>(self, which, old, target));
  BindReference(which, target, delOld);
  return REF_SUCCEED;
}

void ReferenceMaker::BindReference(int which, ReferenceTarget* target, bool delOld) {
  const RefGuard keep(target);
  ReferenceTarget* old = ReferenceAt(which);
  if (old == target) return;
  StoreReference(which, target);
  if (target) AddLink(target);
  if (old) DropLink(old, delOld);
}

bool ReferenceMaker::LoadReference(int which, ReferenceTarget* target) {
  ReferenceTarget* old = ReferenceAt(which);
  if (old == target) return true;
  StoreReference(which, target);
  if (which >= NumRefs() || ReferenceAt(which) != target) {
    StoreReference(which, old);
    return false;
  }
  if (target) AddLink(target);
  if (old) DropLink(old);
  return true;
}

void ReferenceMaker::AddLink(ReferenceTarget* target) { target->AddDependent(this); }
void ReferenceMaker::DropLink(ReferenceTarget* target, bool delOld) { target->DropDependent(this, delOld); }

void ReferenceMaker::DeleteAllRefs() {
  for (int i = NumRefs() - 1; i >= kCustAttribRef; --i) BindReference(i, nullptr);
}

int ReferenceMaker::FindReference(const ReferenceTarget* target, int from) const {
  for (int i = from; i < NumRefs(); ++i)
    if (ReferenceAt(i) == target) return i;
  return kNotFound;
}

// ReferenceTarget.

ReferenceTarget::~ReferenceTarget() {
  assert(dependents_.empty() && "an object is destroyed while something refers to it");
  for (RefTargMonitor* monitor : monitors_) monitor->target_ = nullptr;
}

bool ReferenceTarget::IsLive(int depth) const {
  if (TestFlag(A_DORMANT)) return false;
  // A node is the scene's, whoever follows it.
  if (!HasDependents() || !DiesWithLastDependent() || depth == 0) return true;
  return FindDependent([depth](ReferenceMaker* maker) {
           const ReferenceTarget* up = maker->AsTarget();
           return !up || up->IsLive(depth - 1);
         }) != nullptr;
}

bool ReferenceTarget::IsLive() const {
  constexpr int kDeepEnough = 64;  // deeper than controllers nest
  return IsLive(kDeepEnough);
}

void ReferenceTarget::AddDependent(ReferenceMaker* maker) {
  const bool wasLive = IsLive();
  ++linkStamp_;
  everOwned_ = true;
  ClearFlag(A_DORMANT);
  const auto found =
      std::find_if(dependents_.begin(), dependents_.end(), [maker](const Dependent& d) { return d.maker == maker; });
  if (found != dependents_.end()) {
    ++found->count;
  } else {
    dependents_.push_back({maker, 1, 0});
    LinkAdded(maker);
  }
  if (!wasLive) AfterDelivery(this, [](ReferenceTarget* back) { back->TellWatchers(); });
}

void ReferenceTarget::DropDependent(ReferenceMaker* maker, bool deleteIfLast) {
  ++linkStamp_;
  const auto found =
      std::find_if(dependents_.begin(), dependents_.end(), [maker](const Dependent& d) { return d.maker == maker; });
  if (found == dependents_.end() || --found->count > 0) return;
  // While a message goes round, places in the list must stay: the entry is only emptied.
  if (delivering_ > 0)
    found->maker = nullptr;
  else
    dependents_.erase(found);
  LinkDropped(maker);
  const bool isLast = !FindDependent([](ReferenceMaker*) { return true; });
  if (!isLast || keepAlive_ > 0) {
    if (!DiesWithLastDependent()) return;
    if (isLast) SetFlag(A_DORMANT);
    // Those that are left may live in undo only.
    if (!IsLive()) AfterDelivery(this, [](ReferenceTarget* gone) { gone->TellWatchers(); });
  } else if (deleteIfLast) {
    MaybeDelete();
  }
}

// A long chain of objects of which each is the last dependent of the next goes without recursion: what dies meanwhile
// waits in a list.
void ReferenceTarget::MaybeDelete() {
  static auto& dying = *new std::vector<ReferenceTarget*>;  // objects may die after statics here
  static bool running = false;
  if (keepAlive_ > 0 || delivering_ > 0 || !dependents_.empty()) return;
  ++keepAlive_;  // nothing that happens while the references go may come back here
  const bool wasLive = !TestFlag(A_DORMANT);
  SetDormant(true);
  if (wasLive && !monitors_.empty() && RefMsgsEnabled()) {
    const DeliveryScope scope;
    Deliver({FOREVER, PART_ALL, REFMSG_CHANGE, kAnySuper, true, this, nullptr, ++lastNotice});
  }
  dying.push_back(this);
  if (running) return;
  running = true;
  while (!dying.empty()) {
    ReferenceTarget* target = dying.back();
    dying.pop_back();
    target->DeleteAllRefs();
    delete target;
  }
  running = false;
}

void RefBase::Release(ReferenceTarget* target) {
  if (target && --target->keepAlive_ == 0 && target->everOwned_) target->MaybeDelete();
}

std::vector<ReferenceMaker*> ReferenceTarget::Dependents() const {
  std::vector<ReferenceMaker*> makers;
  for (const Dependent& d : dependents_)
    if (d.maker) makers.push_back(d.maker);
  return makers;
}

// Walks up from the maker: there are few objects above a maker, and many below a target.
bool ReferenceTarget::TestForLoop(ReferenceMaker* maker) const {
  const ReferenceTarget* start = maker->AsTarget();
  if (!start) return false;
  if (start == this) return true;
  if (NumRefs() == 0 && !custAttribs_) return false;
  static uint32_t walk = 0;
  ++walk;
  std::vector<const ReferenceTarget*> open{start};
  while (!open.empty()) {
    const ReferenceTarget* target = open.back();
    open.pop_back();
    if (target == this) return true;
    for (const Dependent& d : target->dependents_) {
      ReferenceTarget* up = d.maker ? d.maker->AsTarget() : nullptr;
      if (!up || up->loopWalk_ == walk) continue;
      up->loopWalk_ = walk;
      open.push_back(up);
    }
  }
  return false;
}

void ReferenceTarget::NotifyDependents(const Interval& interval, PartID part, RefMessage message, SClass_ID superClass,
                                       bool propagate, ReferenceTarget* origin, void* option) {
  if (messagesOff > 0 || TestFlag(A_DORMANT) || (dependents_.empty() && monitors_.empty())) return;
  if (openSends >= kMaxNestedSends) return;
  const DeliveryScope scope;
  ++openSends;
  Deliver({interval, part, message, superClass, propagate, origin ? origin : this, option, ++lastNotice});
  --openSends;
}

void ReferenceTarget::Propagate(RefNotice notice) {
  if (messagesOff > 0 || TestFlag(A_DORMANT)) return;
  const DeliveryScope scope;
  Deliver(notice);
}

uint32_t ReferenceTarget::NewNoticeNumber() { return ++lastNotice; }

const RefNotice* ReferenceTarget::CurrentNotice() { return currentNotice; }

void ReferenceTarget::Deliver(const RefNotice& notice) {
  const RefGuard keep(this);
  const RefNotice* outer = std::exchange(currentNotice, &notice);
  ++delivering_;
  const size_t count = dependents_.size();
  for (size_t i = 0; i < count; ++i) {
    ReferenceMaker* maker = dependents_[i].maker;
    if (!maker || dependents_[i].heard == notice.number) continue;
    if (notice.superClass != kAnySuper && maker->SuperClassID() != notice.superClass) continue;
    dependents_[i].heard = notice.number;
    ReferenceTarget* up = maker->AsTarget();
    const RefGuard keepUp(up);
    PartID part = notice.part;
    const RefResult answer = maker->NotifyRefChanged(notice.interval, this, part, notice.message, notice.propagate);
    if (answer == REF_STOP || !notice.propagate || !up) continue;
    RefNotice next = notice;
    next.part = part;
    if (!up->TestFlag(A_DORMANT)) up->Deliver(next);
  }
  for (size_t i = 0; i < monitors_.size(); ++i) {
    RefTargMonitor* monitor = monitors_[i];
    if (monitor->heard_ == notice.number || !monitor->client_) continue;
    monitor->heard_ = notice.number;
    monitor->client_->MonitoredNotice(*monitor, notice);
  }
  if (--delivering_ == 0) std::erase_if(dependents_, [](const Dependent& d) { return !d.maker; });
  currentNotice = outer;
}

void ReferenceTarget::UnlinkDependents() {
  const RefGuard keep(this);
  const RefNotice notice{FOREVER, PART_ALL, REFMSG_TARGET_DELETED, kAnySuper, false, this, nullptr, ++lastNotice};
  const DeliveryScope scope;
  if (RefMsgsEnabled()) Deliver(notice);
  for (ReferenceMaker* maker : Dependents()) {
    for (int which; (which = maker->FindReference(this)) != kNotFound;) maker->BindReference(which, nullptr, false);
    if (ReferenceTarget* target = maker->AsTarget()) target->NotifyDependents();
  }
}

void ReferenceTarget::TellWatchers() {
  if (!RefMsgsEnabled()) return;
  const RefGuard keep(this);
  const DeliveryScope scope;
  if (!monitors_.empty()) Deliver({FOREVER, PART_ALL, REFMSG_CHANGE, kAnySuper, true, this, nullptr, ++lastNotice});
  for (int i = kCustAttribRef, n = NumRefs(); i < n; ++i) {
    ReferenceTarget* part = ReferenceAt(i);
    if (part && !part->AsNode()) part->TellWatchers();
  }
}

ReferenceTarget* ReferenceTarget::Clone(RemapDir& remap) {
  const ClassDesc* desc = ClassDirectory::Get().Find(SuperClassID(), ClassID());
  ReferenceTarget* clone = desc ? desc->Create(true) : nullptr;
  if (!clone) return nullptr;
  remap.AddEntry(this, clone);
  clone->CopyStateFrom(*this, remap);
  CloneReferencesInto(*clone, remap);
  return clone;
}

void ReferenceTarget::CloneReferencesInto(ReferenceTarget& clone, RemapDir& remap) {
  for (int i = kCustAttribRef; i < NumRefs(); ++i) {
    ReferenceTarget* source = ReferenceAt(i);
    if (source) clone.BindReference(i, remap.CloneRef(source));
  }
}

CustAttribContainer* ReferenceTarget::MakeCustAttribContainer() {
  if (!custAttribs_) ReplaceReference(kCustAttribRef, new CustAttribContainer);
  return custAttribs_;
}

// Monitors.

void RefTargMonitor::SetTarget(ReferenceTarget* target) {
  if (target_ == target) return;
  if (target_) std::erase(target_->monitors_, this);
  target_ = target;
  seenStamp_ = 0;
  if (target_) target_->monitors_.push_back(this);
}

// Cloning.

ReferenceTarget* RemapDir::Find(ReferenceTarget* source) const {
  const auto found = map_.find(source);
  return found == map_.end() ? nullptr : found->second;
}

ReferenceTarget* RemapDir::CloneRef(ReferenceTarget* source) {
  if (!source) return nullptr;
  if (ReferenceTarget* clone = Find(source)) return clone;
  if (source->AsNode()) return source;
  ReferenceTarget* clone = source->Clone(*this);
  if (clone) AddEntry(source, clone);
  return clone;
}

void RemapDir::Backpatch() {
  for (size_t i = 0; i < procs_.size(); ++i) procs_[i](*this);
  procs_.clear();
}

ReferenceTarget* CloneRefHierarchy(ReferenceTarget* source) {
  RemapDir remap;
  ReferenceTarget* clone = remap.CloneRef(source);
  remap.Backpatch();
  return clone;
}

}  // namespace corvanta
