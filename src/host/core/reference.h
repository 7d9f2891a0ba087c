// SPDX-License-Identifier: MIT
// Strong numbered references. A maker refers to targets by index; a target knows its dependents. An object that loses
// its last dependent goes, unless a `Ref` (an undo record, a local) holds it. Messages travel from a target up through
// its dependents, each link once a send.
#pragma once

#include <functional>
#include <optional>
#include <type_traits>
#include <utility>
#include <vector>

#include "host/core/animatable.h"
#include "host/core/chunks.h"
#include "host/core/evaluation_footprint.h"
#include "host/core/messages.h"

namespace corvanta {

class ReferenceTarget;
class RefTargMonitor;
class RemapDir;
class CustAttribContainer;
class INode;

/// One change on its way: the same message keeps its number through all levels.
struct RefNotice {
  Interval interval = FOREVER;
  PartID part = PART_ALL;
  RefMessage message = REFMSG_CHANGE;
  SClass_ID superClass = kAnySuper;
  bool propagate = true;
  /// Who started the message.
  ReferenceTarget* origin = nullptr;
  void* option = nullptr;
  uint32_t number = 0;
};

class ReferenceMaker : public Animatable {
 public:
  /// Index of the hidden reference to the custom attribute container.
  static constexpr int kCustAttribRef = -1;

  virtual int NumRefs() const { return 0; }
  /// Null beyond the last reference.
  virtual ReferenceTarget* GetReference(int which) const { return nullptr; }
  /// Does evaluation of this object look at that reference, while it evaluates?
  virtual bool ReadsReference(int which) const { return true; }

  /// The only way to bind reference `which`: drops the old link, adds the new one, records undo while holding, and
  /// refuses a target that depends on this maker (REF_FAIL, nothing changed). A target that loses its last dependent is
  /// deleted when `delOld` is on and nothing holds it. Undoable.
  RefResult ReplaceReference(int which, ReferenceTarget* target, bool delOld = true);
  /// Binds without undo and without the loop test: for construction, loading and undo itself.
  void BindReference(int which, ReferenceTarget* target, bool delOld = true);
  /// Binds a reference while a file is read: no undo, no loop test, no message. False, and nothing is bound, when the
  /// maker does not keep the target under this index.
  bool LoadReference(int which, ReferenceTarget* target);
  /// May a file bind `target` as reference `which`? No answer means: whatever is like the target that a new object of
  /// the class has there. A class that casts targets down answers for references that a new object leaves empty.
  virtual std::optional<bool> AcceptsReference(int which, const ReferenceTarget& target) const { return std::nullopt; }

  // Weak links outside parameter blocks: files keep them, and bind them when all references are bound.
  virtual int NumIndirectRefs() const { return 0; }
  virtual ReferenceTarget* GetIndirectRef(int i) const { return nullptr; }
  /// `i` may exceed the live count while loading.
  virtual void SetIndirectRef(int i, ReferenceTarget* target) {}

  /// Adds what evaluation reads of this object outside the object itself: tables, cells of its block.
  virtual void AddFootprint(EvaluationFootprint& footprint) const {}

  /// Drops every reference. Called before destruction while the virtual calls still work.
  void DeleteAllRefs();

  /// A message from a reference. `target` is the reference that sent it on; `part` may be rewritten for the next level.
  virtual RefResult NotifyRefChanged(const Interval& interval, ReferenceTarget* target, PartID& part,
                                     RefMessage message, bool propagate) {
    return REF_SUCCEED;
  }

  /// First reference index at or after `from` that holds `target`; -2 when none does.
  virtual int FindReference(const ReferenceTarget* target, int from = kCustAttribRef) const;
  static constexpr int kNotFound = -2;

  /// This maker as a target, when it is one.
  virtual ReferenceTarget* AsTarget() { return nullptr; }

 protected:
  friend class ReferenceTarget;
  friend class ReferenceRestore;
  /// Stores the pointer, nothing else. Must bear any index on load.
  virtual void SetReference(int which, ReferenceTarget* target) {}
  /// Link bookkeeping for classes that store their targets themselves.
  void AddLink(ReferenceTarget* target);
  void DropLink(ReferenceTarget* target, bool delOld = true);
  ReferenceTarget* ReferenceAt(int which) const;
  void StoreReference(int which, ReferenceTarget* target);

  CustAttribContainer* custAttribs_ = nullptr;
};

class ReferenceTarget : public ReferenceMaker {
 public:
  ReferenceTarget() = default;
  ~ReferenceTarget() override;

  ReferenceTarget* AsTarget() override { return this; }
  /// This target as a scene node, when it is one.
  virtual INode* AsNode() { return nullptr; }
  virtual Control* AsControl() { return nullptr; }

  /// Tells every dependent that something changed. Sends nothing while the object is dormant or messages are off.
  void NotifyDependents(const Interval& interval = FOREVER, PartID part = PART_ALL, RefMessage message = REFMSG_CHANGE,
                        SClass_ID superClass = kAnySuper, bool propagate = true, ReferenceTarget* origin = nullptr,
                        void* option = nullptr);
  /// Sends `notice` on to this target's dependents as part of the same message.
  void Propagate(RefNotice notice);
  /// The number of a message that the caller propagates by itself.
  static uint32_t NewNoticeNumber();
  /// Changes whenever any object of the process binds or drops a reference, leaves the scene or comes back.
  static uint64_t LinkStamp() { return linkStamp_; }
  /// Some way up through its dependents ends at an object that is not dormant, or at a node of the scene: it does not
  /// live in undo only.
  bool IsLive() const;
  /// The message that is being delivered, null outside of a delivery.
  static const RefNotice* CurrentNotice();

  /// Distinct makers in the order of their first binding.
  std::vector<ReferenceMaker*> Dependents() const;
  bool HasDependents() const { return !dependents_.empty(); }
  /// First dependent for which `test` holds, without allocating; null when none.
  template <class Test>
  ReferenceMaker* FindDependent(Test&& test) const {
    for (const Dependent& d : dependents_)
      if (d.maker && test(d.maker)) return d.maker;
    return nullptr;
  }
  /// Would `maker` referring to this target close a loop?
  bool TestForLoop(ReferenceMaker* maker) const;

  /// A clone: a new object of the class, its plain state copied, its references cloned through `remap`.
  virtual ReferenceTarget* Clone(RemapDir& remap);
  /// Copies what lies outside references: values, keys, flags, lock. `remap` for post-patching weak links.
  virtual void CopyStateFrom(ReferenceTarget& source, RemapDir& remap) {}

  /// State outside references and parameter blocks. Load runs before references are bound.
  virtual IOResult Save(ISave& save) { return IOResult::OK; }
  virtual IOResult Load(ILoad& load) { return IOResult::OK; }
  /// After a whole scene is loaded: rebuild caches.
  virtual void PostLoad() {}

  CustAttribContainer* GetCustAttribContainer() const { return custAttribs_; }
  /// The container, made when there is none.
  CustAttribContainer* MakeCustAttribContainer();

  /// Deletes the object unless it has dependents or is held: for what was never bound.
  void MaybeDelete();
  /// Tells every dependent that the target goes (message 32) and takes it out of all their references.
  void UnlinkDependents();
  /// After the object has gone dormant or come back: tells those who watch it, or what only it and its parts own, that
  /// they changed. Weak links to them read otherwise now, and who evaluated while the message of its going was still on
  /// the way keeps what it saw then.
  void TellWatchers();
  /// The object has left the scene, or come back.
  void SetDormant(bool on) {
    ++linkStamp_;
    on ? SetFlag(A_DORMANT) : ClearFlag(A_DORMANT);
  }

 protected:
  /// A maker has bound or dropped this target.
  virtual void LinkAdded(ReferenceMaker* maker) {}
  virtual void LinkDropped(ReferenceMaker* maker) {}
  /// The last dependent has gone and the object may go. Scene nodes answer false: the scene owns them.
  virtual bool DiesWithLastDependent() const { return true; }
  /// Binds clones of this object's references into `clone`, index by index.
  void CloneReferencesInto(ReferenceTarget& clone, RemapDir& remap);

 private:
  friend class ReferenceMaker;
  friend class RefTargMonitor;
  friend class RefBase;
  struct Dependent {
    ReferenceMaker* maker;
    uint32_t count;
    uint32_t heard;
  };
  void AddDependent(ReferenceMaker* maker);
  void DropDependent(ReferenceMaker* maker, bool deleteIfLast);
  void Deliver(const RefNotice& notice);

  bool IsLive(int depth) const;

  inline static uint64_t linkStamp_ = 1;
  std::vector<Dependent> dependents_;
  std::vector<RefTargMonitor*> monitors_;
  int keepAlive_ = 0;
  int delivering_ = 0;
  /// Bound or held at some time: it goes when nothing binds or holds it any more.
  bool everOwned_ = false;
  mutable uint32_t loopWalk_ = 0;
};

/// Sends nothing anywhere while at least one DisableRefMsgs is open; nothing is replayed afterwards.
void DisableRefMsgs();
void EnableRefMsgs();
bool RefMsgsEnabled();

/// Counting part of `Ref` and `RefGuard`.
class RefBase {
 protected:
  static void Hold(ReferenceTarget* target) {
    if (!target) return;
    ++target->keepAlive_;
    target->everOwned_ = true;
  }
  static void Guard(ReferenceTarget* target) {
    if (target) ++target->keepAlive_;
  }
  static void Release(ReferenceTarget* target);
};

/// Keeps a target alive while it is worked on, and owns nothing: a fresh object that nobody has bound yet outlives it.
class RefGuard : private RefBase {
 public:
  explicit RefGuard(ReferenceTarget* target) : target_(target) { Guard(target_); }
  ~RefGuard() { Release(target_); }
  RefGuard(const RefGuard&) = delete;
  RefGuard& operator=(const RefGuard&) = delete;

 private:
  ReferenceTarget* target_;
};

/// Keeps a target alive without being its dependent. A new object goes straight into one.
template <class T>
class Ref : private RefBase {
 public:
  Ref() = default;
  Ref(T* p) : p_(p) { Hold(p_); }  // NOLINT: implicit on purpose
  Ref(const Ref& r) : p_(r.p_) { Hold(p_); }
  Ref(Ref&& r) noexcept : p_(std::exchange(r.p_, nullptr)) {}
  template <class U, class = std::enable_if_t<std::is_convertible_v<U*, T*>>>
  Ref(const Ref<U>& r) : p_(r.Get()) {
    Hold(p_);
  }
  ~Ref() { Release(p_); }
  Ref& operator=(Ref r) noexcept {
    std::swap(p_, r.p_);
    return *this;
  }
  T* Get() const { return p_; }
  T* operator->() const { return p_; }
  T& operator*() const { return *p_; }
  explicit operator bool() const { return p_ != nullptr; }
  bool operator==(const Ref& r) const { return p_ == r.p_; }

 private:
  T* p_ = nullptr;
};

}  // namespace corvanta
