// SPDX-License-Identifier: MIT
// List controllers: entries of one kind, each applied on what those before it made. Writes go to the active entry.
#pragma once

#include "host/anim/class_ids.h"
#include "host/anim/composite_control.h"
#include "host/core/published.h"

namespace corvanta {

inline constexpr Interface_ID kListControlInterface{0x444E7687, 0x722E6E36};

/// The published interface "list" of list controllers. Indices are 0-based; out of range gives null, empty or false.
class IListControl : public FPInterface {
 public:
  enum Function : int { kGetCount, kGetActive, kSetActive, kGetName, kSetName, kGetEntry, kAppend, kDelete, kReplace };

  virtual int GetListCount() const = 0;
  virtual Control* GetEntry(int i) const = 0;
  virtual WStr GetName(int i) const = 0;
  /// Undoable, as all that follow.
  virtual void SetName(int i, const WStr& name) = 0;
  virtual int GetActive() const = 0;
  virtual void SetActive(int i) = 0;
  /// The entry keeps its name. False for another super class or a control that depends on the list.
  virtual bool ReplaceEntry(int i, Control* control) = 0;
  virtual bool Append(Control* control) = 0;
  virtual bool Delete(int i) = 0;

  const FPInterfaceDesc& GetDesc() const override;
  FPStatus Invoke(int id, TimeValue t, FPValue& result, std::span<const FPValue> args) override;
};
/// Null when `anim` is no list.
IListControl* GetListControl(Animatable* anim);

/// One row of the table of list classes. `firstEntry` makes what a new list holds.
struct ListClass {
  const wchar_t* name;
  SClass_ID superClass;
  Class_ID id;
  Control* (*firstEntry)();
};

class ListControl final : public CompositeControl, public IListControl {
 public:
  ListControl(const ListClass& row, bool loading);

  SClass_ID SuperClassID() const override { return row_.superClass; }
  Class_ID ClassID() const override { return row_.id; }
  WStr GetClassName() const override { return row_.name; }
  using CompositeControl::GetInterface;
  FPInterface* GetInterface(const Interface_ID& id) override;
  int NumInterfaces() const override { return 1; }
  FPInterface* GetInterfaceAt(int i) override { return i == 0 ? static_cast<IListControl*>(this) : nullptr; }

  void GetValue(TimeValue t, ValueRef value, Interval& valid, GetSetMethod method) override;
  /// Writes the active entry so that the whole list takes the value, or the change. Dropped while locked. Undoable.
  void SetValue(TimeValue t, ValueRef value, bool commit, GetSetMethod method) override;
  /// The old controller (cloned) becomes the first entry and the present ones follow; lists are taken over whole.
  void Copy(Control* from) override;

  // IListControl
  int GetListCount() const override { return static_cast<int>(entries_.size()); }
  Control* GetEntry(int i) const override { return Part(i); }
  WStr GetName(int i) const override;
  void SetName(int i, const WStr& name) override;
  int GetActive() const override { return active_; }
  void SetActive(int i) override;
  bool ReplaceEntry(int i, Control* control) override;
  bool Append(Control* control) override;
  bool Delete(int i) override;

  WStr SubAnimName(int i) override { return GetName(i); }
  void CopyStateFrom(ReferenceTarget& source, RemapDir& remap) override;
  IOResult Save(ISave& save) override;
  IOResult Load(ILoad& load) override;

  struct State {
    std::vector<Ref<Control>> entries;
    std::vector<WStr> names;
    int active = 0;
  };
  State ListState() const;
  void PutListState(const State& state);

 protected:
  int NumParts() const override { return static_cast<int>(entries_.size()); }
  Control* Part(int i) const override { return i >= 0 && i < NumParts() ? entries_[static_cast<size_t>(i)] : nullptr; }
  SClass_ID PartSuperClass(int) const override { return row_.superClass; }
  void SetReference(int which, ReferenceTarget* target) override;

 private:
  bool MayHold(Control* control) const;
  void Change(const State& state);
  /// Entries `from` to before `to`, one on the other, onto `value`.
  void Apply(TimeValue t, int from, int to, ValueRef value, Interval& valid) const;
  Matrix3 MatrixOf(TimeValue t, int from, int to) const;

  std::vector<Control*> entries_;
  std::vector<WStr> names_;
  int active_ = 0;
  const ListClass& row_;
};

}  // namespace corvanta
