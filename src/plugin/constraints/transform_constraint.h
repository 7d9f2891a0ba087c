// SPDX-License-Identifier: MIT
// Stands where its targets stand: their weighted blend, or, relative, the base moved as the blend moved since the
// targets were taken.
#pragma once

#include "plugin/constraints/base_state.h"
#include "plugin/constraints/target_constraint.h"

namespace tavrilon {

class TransformConstraint final : public TargetConstraint {
 public:
  enum Param : corvanta::ParamID { kLocalWorld = 3, kFollowScale = 4 };
  enum Space { kWorld = 0, kLocal = 1 };
  explicit TransformConstraint(bool loading = false);
  static const corvanta::ParamBlockDesc2& BlockDesc();

  void GetValue(corvanta::TimeValue t, corvanta::ValueRef value, corvanta::Interval& valid,
                corvanta::GetSetMethod method) override;
  /// The targets decide; nothing is written.
  void SetValue(corvanta::TimeValue, corvanta::ValueRef, bool, corvanta::GetSetMethod) override {}
  void Copy(Control* from) override;
  bool ChangeParents(corvanta::TimeValue, const corvanta::Matrix3&, const corvanta::Matrix3&,
                     const corvanta::Matrix3&) override {
    return GetNumTargets() > 0;
  }
  void CopyStateFrom(corvanta::ReferenceTarget& source, corvanta::RemapDir& remap) override;
  corvanta::IOResult Save(corvanta::ISave& save) override { return state_.Save(save, locked_); }
  corvanta::IOResult Load(corvanta::ILoad& load) override { return state_.Load(load, locked_); }
  void StateRestored() { NotifyDependents(); }

 protected:
  void RecordTaken() override;

 private:
  corvanta::Matrix3 TargetTM(int i, corvanta::TimeValue t, corvanta::Interval& valid, bool local) const;
  corvanta::Matrix3 Blended(corvanta::TimeValue t, corvanta::Interval& valid, bool local);
  corvanta::Matrix3 RelativeToBase(const corvanta::AffineParts& blend, bool local) const;
  BaseState<corvanta::Matrix3> state_;
};

}  // namespace tavrilon
