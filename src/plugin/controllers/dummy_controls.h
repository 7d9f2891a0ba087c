// SPDX-License-Identifier: MIT
// The value holders of the gimbal proxy. They watch what they show and keep nothing alive, so that the one proxy of the
// process never ties itself into a scene; they are not stored.
#pragma once

#include "host/core/control.h"
#include "host/core/monitor.h"
#include "plugin/frame/class_table.h"

namespace tavrilon {

/// A float controller of someone else with an offset on top: reading adds it, an absolute write takes it off again.
class DummyFloat final : public corvanta::Control {
 public:
  static constexpr corvanta::Class_ID kClassId = ClassIdOf(TavrilonClass::DummyFloat);
  corvanta::SClass_ID SuperClassID() const override { return corvanta::kFloatControlSuper; }
  corvanta::Class_ID ClassID() const override { return kClassId; }
  corvanta::WStr GetClassName() const override { return DescOf(TavrilonClass::DummyFloat).className; }

  /// Null when empty and once the controller is gone.
  corvanta::Control* GetWrapped() const;
  /// Tells dependents, since the shown controller does not.
  void Show(corvanta::Control* control, float offset);
  float GetOffset() const { return offset_; }

  void GetValue(corvanta::TimeValue t, corvanta::ValueRef value, corvanta::Interval& valid,
                corvanta::GetSetMethod method) override;
  void SetValue(corvanta::TimeValue t, corvanta::ValueRef value, bool commit, corvanta::GetSetMethod method) override;
  int NumSubs() const override { return 1; }
  corvanta::Animatable* SubAnim(int i) override { return i == 0 ? GetWrapped() : nullptr; }
  corvanta::WStr SubAnimName(int) override { return L"Value"; }

 private:
  corvanta::RefTargMonitor wrapped_;
  float offset_ = 0;
};

/// A rotation of its own. With `multiplies` on, a relative read puts it in front of the incoming matrix; with it off,
/// it replaces the matrix.
class DummyRotation final : public corvanta::Control {
 public:
  static constexpr corvanta::Class_ID kClassId = ClassIdOf(TavrilonClass::DummyRotation);
  corvanta::SClass_ID SuperClassID() const override { return corvanta::kRotationControlSuper; }
  corvanta::Class_ID ClassID() const override { return kClassId; }
  corvanta::WStr GetClassName() const override { return DescOf(TavrilonClass::DummyRotation).className; }

  void Show(const corvanta::Quat& q, bool multiplies);

  void GetValue(corvanta::TimeValue t, corvanta::ValueRef value, corvanta::Interval& valid,
                corvanta::GetSetMethod method) override;
  void SetValue(corvanta::TimeValue t, corvanta::ValueRef value, bool commit, corvanta::GetSetMethod method) override;

 private:
  corvanta::Quat q_;
  bool multiplies_ = false;
};

}  // namespace tavrilon
