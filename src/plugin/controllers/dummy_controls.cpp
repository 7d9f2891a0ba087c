// SPDX-License-Identifier: MIT
#include "plugin/controllers/dummy_controls.h"

namespace tavrilon {

using namespace corvanta;

Control* DummyFloat::GetWrapped() const {
  ReferenceTarget* target = wrapped_.Target();
  return target ? target->AsControl() : nullptr;
}

void DummyFloat::Show(Control* control, float offset) {
  wrapped_.SetTarget(control);
  offset_ = offset;
  NotifyDependents();
}

void DummyFloat::GetValue(TimeValue t, ValueRef value, Interval& valid, GetSetMethod method) {
  float shown = 0;
  if (Control* wrapped = GetWrapped()) wrapped->GetValue(t, shown, valid, CTRL_ABSOLUTE);
  shown += offset_;
  value.Float() = method == CTRL_ABSOLUTE ? shown : value.Float() + shown;
}

void DummyFloat::SetValue(TimeValue t, ValueRef value, bool commit, GetSetMethod method) {
  float wanted = method == CTRL_ABSOLUTE ? value.Float() - offset_ : value.Float();
  if (Control* wrapped = GetWrapped()) wrapped->SetValue(t, wanted, commit, method);
}

void DummyRotation::Show(const Quat& q, bool multiplies) {
  q_ = q;
  multiplies_ = multiplies;
  NotifyDependents();
}

void DummyRotation::GetValue(TimeValue, ValueRef value, Interval&, GetSetMethod method) {
  if (method == CTRL_ABSOLUTE)
    value.Quat() = q_;
  else
    value.Matrix3() = multiplies_ ? MakeMatrix(q_) * value.Matrix3() : MakeMatrix(q_);
}

void DummyRotation::SetValue(TimeValue, ValueRef value, bool, GetSetMethod method) {
  q_ = method == CTRL_ABSOLUTE ? value.Quat() : q_ * QuatFromAngAxis(value.AngAxis());
}

ReferenceTarget* CreateDummyFloat(bool) { return new DummyFloat; }
ReferenceTarget* CreateDummyRotation(bool) { return new DummyRotation; }

}  // namespace tavrilon
