// SPDX-License-Identifier: MIT
// One float track follows another: a slider moves a bone, a finger curl makes a fist.
#pragma once

#include "plugin/connections/connection_control.h"
#include "plugin/connections/float_transform.h"

namespace tavrilon {

class FloatConnection final : public ConnectionControl {
 public:
  explicit FloatConnection(bool loading = false);
  static const corvanta::ParamBlockDesc2& BlockDesc();

  /// The transform of what the target gives, of 0 without one. Re-entered it gives its last value.
  void GetValue(corvanta::TimeValue t, corvanta::ValueRef value, corvanta::Interval& valid,
                corvanta::GetSetMethod method) override;
  /// With two-way on the target gets what the transform turns into the value; where there is no such value, and with
  /// two-way off or while locked, nothing is written. A relative write adds to what is shown. Undoable.
  void SetValue(corvanta::TimeValue t, corvanta::ValueRef value, bool commit, corvanta::GetSetMethod method) override;

 private:
  float Source(corvanta::TimeValue t, corvanta::Interval& valid) const;
  float Shown(corvanta::TimeValue t, corvanta::Interval& valid) const;
  FloatTransform Transform(corvanta::TimeValue t, corvanta::Interval& valid) const;

  float last_ = 0;
};

}  // namespace tavrilon
