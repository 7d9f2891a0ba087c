// SPDX-License-Identifier: MIT
// Controllers that hold one constant value: no keys, no dependence on time, validity never narrowed. They stand where a
// rig needs a value that can be edited but never keyed.
#pragma once

#include "host/core/control.h"
#include "host/core/state_restore.h"
#include "plugin/frame/class_table.h"

namespace tavrilon {

/// What the five have in common; each says how it reads and writes.
template <class Value, TavrilonClass kRow>
class StaticControl : public corvanta::Control, public corvanta::ILockedTrackImp {
 public:
  static constexpr corvanta::Class_ID kClassId = ClassIdOf(kRow);
  corvanta::SClass_ID SuperClassID() const final { return DescOf(kRow).superClass; }
  corvanta::Class_ID ClassID() const final { return kClassId; }
  corvanta::WStr GetClassName() const final { return DescOf(kRow).className; }
  using Control::GetInterface;
  void* GetInterface(uint32_t request) final {
    return request == corvanta::I_LOCKED ? static_cast<corvanta::ILockedTrack*>(this) : Control::GetInterface(request);
  }
  bool IsReplaceable() const final { return !locked_; }
  bool CanOverwrite() const final { return !locked_; }

  const Value& Get() const { return value_; }
  /// Stores the value for all time, locked or not, and tells dependents. Undoable.
  void Set(const Value& value) {
    corvanta::RecordState(this, &StaticControl::value_);
    value_ = value;
    NotifyDependents();
  }
  /// After undo or redo.
  void StateRestored() { NotifyDependents(); }

  // Chunk 0 is the value as raw bytes, chunk 1 the lock, one byte.
  corvanta::IOResult Save(corvanta::ISave& save) final {
    save.BeginChunk(0);
    save.Write(value_);
    save.EndChunk();
    save.BeginChunk(1);
    save.Write(locked_);
    save.EndChunk();
    return save.Status();
  }
  corvanta::IOResult Load(corvanta::ILoad& load) final {
    while (load.OpenChunk() == corvanta::IOResult::OK) {
      if (load.CurChunkID() == 0) load.Read(value_);
      if (load.CurChunkID() == 1) load.Read(locked_);
      load.CloseChunk();
    }
    return load.Status();
  }
  void CopyStateFrom(corvanta::ReferenceTarget& source, corvanta::RemapDir& remap) final {
    auto& from = static_cast<StaticControl&>(source);
    value_ = from.value_;
    locked_ = from.locked_;
  }

 protected:
  /// Takes over the lock of a controller that this one replaces, when it has one.
  void CopyLock(corvanta::Control* from) {
    if (const corvanta::ILockedTrack* lock = corvanta::GetLockedTrack(from)) SetLocked(lock->GetLocked());
  }
  Value value_{};
};

}  // namespace tavrilon
