// SPDX-License-Identifier: MIT
// Controllers made of controllers: their keys are those of their parts, at merged times.
#pragma once

#include "host/core/control.h"

namespace corvanta {

/// References and sub-animatables of a derived class are its parts, in this order, null where one is missing. Key
/// operations go to every part in turn, and are dropped while locked.
class CompositeControl : public Control, public ILockedTrackImp {
 public:
  using Control::GetInterface;
  void* GetInterface(uint32_t request) override;

  bool IsLeaf() const override { return false; }
  bool IsKeyable() const override { return true; }
  bool IsAnimated() override;
  bool IsReplaceable() const override { return !locked_; }
  bool CanOverwrite() const override { return !locked_; }

  int NumKeys() const override { return static_cast<int>(KeyTimes().size()); }
  TimeValue GetKeyTime(int i) const override;
  int GetKeyIndex(TimeValue t) const override;
  bool GetNextKeyTime(TimeValue t, bool forward, TimeValue& next) const override;
  Interval GetKeyRange() const override;
  void AddNewKey(TimeValue t) override;
  void DeleteKeyAtTime(TimeValue t) override;
  void DeleteKeys(bool selectedOnly) override;
  void SelectKeys(const Interval& range, bool on) override;
  /// Whether any part's key at that time is selected.
  bool IsKeySelected(int i) const override;
  void MapKeys(const TimeMap& map, uint32_t flags) override;
  void DeleteTime(const Interval& range, uint32_t flags) override;
  void ReverseTime(const Interval& range, uint32_t flags) override;
  void CopyKeysFromTime(TimeValue from, TimeValue to) override;
  /// That of the first part.
  ORT GetORT(bool after) const override;
  void SetORT(ORT ort, bool after) override;

  int NumRefs() const override { return NumParts(); }
  ReferenceTarget* GetReference(int which) const override { return Part(which); }
  int NumSubs() const override { return NumParts(); }
  Animatable* SubAnim(int i) override { return Part(i); }
  int SubNumToRefNum(int i) override { return i; }
  bool CanAssignController(int subAnim) override;
  /// Refuses another super class than `PartSuperClass`, and everything while this or the old part is locked.
  bool AssignController(Control* control, int subAnim) override;

 protected:
  virtual int NumParts() const = 0;
  /// Null out of range, too.
  virtual Control* Part(int i) const = 0;
  virtual SClass_ID PartSuperClass(int i) const = 0;

  template <class F>
  void ForEachPart(F&& f) const {
    for (int i = 0; i < NumParts(); ++i)
      if (Control* part = Part(i)) f(*part);
  }
  IOResult SaveLock(ISave& save) const;

 private:
  /// Sorted and unique.
  std::vector<TimeValue> KeyTimes() const;
  template <class F>
  void EditParts(F&& f) {
    if (!locked_) ForEachPart(f);
  }
};

}  // namespace corvanta
