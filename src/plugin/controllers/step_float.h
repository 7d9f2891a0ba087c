// SPDX-License-Identifier: MIT
// Shows the keys of the float controller that it wraps as held steps.
#pragma once

#include "host/core/control.h"
#include "plugin/frame/class_table.h"

namespace tavrilon {

class StepFloat final : public corvanta::Control {
 public:
  explicit StepFloat(bool loading = false);

  static constexpr corvanta::Class_ID kClassId = ClassIdOf(TavrilonClass::StepFloat);
  corvanta::SClass_ID SuperClassID() const override { return corvanta::kFloatControlSuper; }
  corvanta::Class_ID ClassID() const override { return kClassId; }
  corvanta::WStr GetClassName() const override { return DescOf(TavrilonClass::StepFloat).className; }

  corvanta::Control* GetWrapped() const { return wrapped_; }
  /// Undoable. Only float controllers.
  bool SetWrapped(corvanta::Control* control);

  /// The value of the last key at or before `t`, before all keys that of the first. It holds up to the next key.
  void GetValue(corvanta::TimeValue t, corvanta::ValueRef value, corvanta::Interval& valid,
                corvanta::GetSetMethod method) override;
  void SetValue(corvanta::TimeValue t, corvanta::ValueRef value, bool commit, corvanta::GetSetMethod method) override;
  void Copy(corvanta::Control* from) override {
    if (wrapped_) wrapped_->Copy(from);
  }

  bool IsLeaf() const override { return false; }
  bool IsKeyable() const override { return wrapped_ && wrapped_->IsKeyable(); }
  bool IsAnimated() override { return wrapped_ && wrapped_->IsAnimated(); }

  // Keys are the wrapped controller's.
  int NumKeys() const override { return wrapped_ ? wrapped_->NumKeys() : 0; }
  corvanta::TimeValue GetKeyTime(int i) const override { return wrapped_ ? wrapped_->GetKeyTime(i) : 0; }
  int GetKeyIndex(corvanta::TimeValue t) const override { return wrapped_ ? wrapped_->GetKeyIndex(t) : -1; }
  bool GetNextKeyTime(corvanta::TimeValue t, bool forward, corvanta::TimeValue& next) const override {
    return wrapped_ && wrapped_->GetNextKeyTime(t, forward, next);
  }
  corvanta::Interval GetKeyRange() const override { return wrapped_ ? wrapped_->GetKeyRange() : corvanta::NEVER; }
  bool IsKeySelected(int i) const override { return wrapped_ && wrapped_->IsKeySelected(i); }
  void AddNewKey(corvanta::TimeValue t) override;
  void DeleteKeyAtTime(corvanta::TimeValue t) override;
  void DeleteKeys(bool selectedOnly) override;
  void SelectKeys(const corvanta::Interval& range, bool on) override;
  void MapKeys(const corvanta::TimeMap& map, uint32_t flags) override;
  void DeleteTime(const corvanta::Interval& range, uint32_t flags) override;
  void ReverseTime(const corvanta::Interval& range, uint32_t flags) override;
  void CopyKeysFromTime(corvanta::TimeValue from, corvanta::TimeValue to) override;
  corvanta::ORT GetORT(bool after) const override;
  void SetORT(corvanta::ORT ort, bool after) override;

  // Reference and sub-animatable 0: the wrapped controller.
  int NumRefs() const override { return 1; }
  corvanta::ReferenceTarget* GetReference(int which) const override { return which == 0 ? wrapped_ : nullptr; }
  int NumSubs() const override { return 1; }
  corvanta::Animatable* SubAnim(int i) override { return i == 0 ? wrapped_ : nullptr; }
  corvanta::WStr SubAnimName(int) override { return L"Value"; }
  int SubNumToRefNum(int i) override { return i; }
  bool CanAssignController(int subAnim) override { return subAnim == 0; }
  bool AssignController(corvanta::Control* control, int subAnim) override;

 protected:
  void SetReference(int which, corvanta::ReferenceTarget* target) override;

 private:
  float Sample(corvanta::TimeValue t, corvanta::Interval& valid);
  float Held(corvanta::TimeValue t, corvanta::Interval& valid);
  float Repeated(corvanta::TimeValue t, const corvanta::Interval& range);

  corvanta::Control* wrapped_ = nullptr;
};

}  // namespace tavrilon
