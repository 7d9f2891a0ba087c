// SPDX-License-Identifier: MIT
// Lets a character's root follow its hips over the ground. The root's own animation rides on top, in the wrapped
// controller.
#pragma once

#include "plugin/constraints/root_transform.h"
#include "plugin/constraints/wrapping_control.h"

namespace tavrilon {

class RootConstraint final : public WrappingControl {
 public:
  /// In the order that files know; the rows of the table show another.
  enum Param : corvanta::ParamID {
    kTarget = 0,
    kVerticalAxis = 1,
    kFollowHorizontal = 3,
    kFollowTurning = 4,
    kVerticalOffset = 5,
    kGroundOffset = 6,
    kInitialTargetOffset = 7,
    kInitialTargetTM = 8,
    kLocalWorld = 9,
    kFollowVertical = 10,
    kUseGround = 11,
  };
  explicit RootConstraint(bool loading = false)
      : WrappingControl(TavrilonClass::RootConstraint, BlockDesc(), loading) {}
  static const corvanta::ParamBlockDesc2& BlockDesc();

  void GetValue(corvanta::TimeValue t, corvanta::ValueRef value, corvanta::Interval& valid,
                corvanta::GetSetMethod method) override;
  void SetValue(corvanta::TimeValue t, corvanta::ValueRef value, bool commit, corvanta::GetSetMethod method) override;
  bool ChangeParents(corvanta::TimeValue t, const corvanta::Matrix3& oldParent, const corvanta::Matrix3& newParent,
                     const corvanta::Matrix3& tm) override;
  /// Stores the target's matrix, in the parent's space or in the world as `local_world` says.
  void CaptureRest() override;

 private:
  corvanta::Matrix3 RootTM(corvanta::TimeValue t, const corvanta::Matrix3& parent, corvanta::Interval& valid) const;
};

}  // namespace tavrilon
