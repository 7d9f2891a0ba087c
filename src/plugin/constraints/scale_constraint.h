// SPDX-License-Identifier: MIT
// The weighted blend of the scales of its targets. There is no short way for a lone target: with weight 0 it gives the
// base.
#pragma once

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
  corvanta::IOResult Save(corvanta::ISave& save) override;
  corvanta::IOResult Load(corvanta::ILoad& load) override;
  void StateRestored() { NotifyDependents(); }

 protected:
  void RecordTaken() override;

 private:
  struct State {
    corvanta::ScaleValue localBase, worldBase, reference;
    int referenceCount = 0;
    bool captureBase = false;
  };
  corvanta::ScaleValue Blended(corvanta::TimeValue t, corvanta::Interval& valid, bool local);
  State state_;
};

}  // namespace tavrilon
