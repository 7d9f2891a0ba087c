// SPDX-License-Identifier: MIT
// The weighted blend of the scales of its targets. There is no short way for a lone target: with weight 0 it gives the
// base.
#pragma once

#include "plugin/constraints/base_state.h"
#include "plugin/constraints/target_constraint.h"

namespace tavrilon {

class ScaleConstraint final : public TargetConstraint {
 public:
  enum Param : corvanta::ParamID { kLocalWorld = 3 };
  explicit ScaleConstraint(bool loading = false);
  static const corvanta::ParamBlockDesc2& BlockDesc();

  void GetValue(corvanta::TimeValue t, corvanta::ValueRef value, corvanta::Interval& valid,
                corvanta::GetSetMethod method) override;
  void SetValue(corvanta::TimeValue, corvanta::ValueRef, bool, corvanta::GetSetMethod) override {}
  void Copy(Control* from) override;
  void CopyStateFrom(corvanta::ReferenceTarget& source, corvanta::RemapDir& remap) override;
  corvanta::IOResult Save(corvanta::ISave& save) override { return state_.Save(save, locked_); }
  corvanta::IOResult Load(corvanta::ILoad& load) override { return state_.Load(load, locked_); }
  void StateRestored() { NotifyDependents(); }

 protected:
  void RecordTaken() override;

 private:
  corvanta::ScaleValue Blended(corvanta::TimeValue t, corvanta::Interval& valid, bool local);
  BaseState<corvanta::ScaleValue> state_;
};

}  // namespace tavrilon
