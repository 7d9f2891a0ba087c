// SPDX-License-Identifier: MIT
// A controller whose value is computed from the parameters of its one block and that holds no keys itself.
#pragma once

#include "host/core/control.h"
#include "host/core/param_block.h"
#include "host/core/published.h"
#include "plugin/frame/class_table.h"
#include "plugin/frame/guard.h"

namespace tavrilon {

/// Reference and sub-animatable 0 is the block. The derived class answers its published functions in `Invoke`; a reason
/// in `result` becomes the text of a script's error.
class BlockControl : public corvanta::Control, protected corvanta::FPInterface {
 public:
  BlockControl(TavrilonClass row, const corvanta::ParamBlockDesc2& desc, const corvanta::FPInterfaceDesc& published,
               bool loading);
  corvanta::SClass_ID SuperClassID() const final { return DescOf(row_).superClass; }
  corvanta::Class_ID ClassID() const final { return DescOf(row_).classId; }
  corvanta::WStr GetClassName() const final { return DescOf(row_).className; }

  /// Null only while loading.
  corvanta::ParamBlock2* GetParamBlock() const { return block_; }
  /// Dropped: the parameters are what is written.
  void SetValue(corvanta::TimeValue, corvanta::ValueRef, bool, corvanta::GetSetMethod) override {}
  bool IsLeaf() const override { return false; }

  int NumRefs() const override { return 1; }
  corvanta::ReferenceTarget* GetReference(int which) const override { return which == 0 ? block_ : nullptr; }
  int NumSubs() const override { return 1; }
  corvanta::Animatable* SubAnim(int i) override { return GetReference(i); }
  corvanta::WStr SubAnimName(int i) override { return i == 0 ? L"Parameters" : L""; }
  int SubNumToRefNum(int i) override { return i == 0 ? 0 : -1; }
  using Control::GetInterface;
  int NumInterfaces() const override { return 1; }
  corvanta::FPInterface* GetInterfaceAt(int i) override { return i == 0 ? this : nullptr; }
  const corvanta::FPInterfaceDesc& GetDesc() const final { return published_; }

 protected:
  void SetReference(int which, corvanta::ReferenceTarget* target) override {
    if (which == 0) block_ = static_cast<corvanta::ParamBlock2*>(target);
  }
  float Param(corvanta::ParamID id, corvanta::TimeValue t, corvanta::Interval& valid) const {
    return block_->GetFloat(id, t, valid);
  }
  /// `last` becomes what `compute` gives. Asked again while it computes, it stays, and holds for no time but `t`.
  template <class Value, class Compute>
  static void Guarded(bool& evaluating, Value& last, corvanta::TimeValue t, corvanta::Interval& valid,
                      Compute&& compute) {
    const ReentryGuard guard(evaluating);
    if (guard.Reentered())
      valid &= corvanta::Interval::Instant(t);
    else
      last = compute();
  }

  corvanta::ParamBlock2* block_ = nullptr;

 private:
  TavrilonClass row_;
  const corvanta::FPInterfaceDesc& published_;
};

/// The ID of the interface of a class: that of the class itself.
inline corvanta::Interface_ID InterfaceIdOf(TavrilonClass row) { return {ClassIdOf(row).a, ClassIdOf(row).b}; }

/// `t` later by `seconds`, held within the range of times.
corvanta::TimeValue Later(corvanta::TimeValue t, float seconds);
/// `interval` earlier by `ticks`; an open end stays open.
corvanta::Interval Earlier(const corvanta::Interval& interval, corvanta::TimeValue ticks);

}  // namespace tavrilon
