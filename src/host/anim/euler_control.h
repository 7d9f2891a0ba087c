// SPDX-License-Identifier: MIT
// Rotation by three float tracks and an Euler order: the default rotation controller.
#pragma once

#include "host/anim/class_ids.h"
#include "host/anim/composite_control.h"
#include "host/maths/euler.h"

namespace corvanta {

/// Parts 0, 1, 2: the tracks of X, Y, Z in radians. For the orders that repeat an axis they are the first, second and
/// third turn. A missing track counts as 0.
class EulerControl final : public CompositeControl, public IEulerControl {
 public:
  explicit EulerControl(bool loading = false);

  SClass_ID SuperClassID() const override { return kRotationControlSuper; }
  Class_ID ClassID() const override { return kEulerXyzId; }
  WStr GetClassName() const override { return L"Euler XYZ"; }
  using CompositeControl::GetInterface;
  void* GetInterface(uint32_t request) override;

  /// Absolute: a Quat. Relative: turns the matrix that comes in.
  void GetValue(TimeValue t, ValueRef value, Interval& valid, GetSetMethod method) override;
  /// Absolute: a Quat, as the triple nearest to the present one, with animate on to that of the last key before `t`.
  /// Relative: an AngAxis; about the ring of one track it changes that track alone, else it goes in steps of at most
  /// 135 degrees, each to the nearest triple. Dropped while locked. Undoable.
  void SetValue(TimeValue t, ValueRef value, bool commit, GetSetMethod method) override;
  void Copy(Control* from) override;

  // IEulerControl
  int GetOrder() const override { return order_; }
  void SetOrder(int order) override;
  Control* GetAxisController(int axis) override { return Part(axis); }
  Control* GetXController() override { return tracks_[0]; }
  Control* GetYController() override { return tracks_[1]; }
  Control* GetZController() override { return tracks_[2]; }

  WStr SubAnimName(int i) override;
  ParamDimension GetParamDimension(int) override { return ParamDimension::Angle; }
  RefResult NotifyRefChanged(const Interval&, ReferenceTarget*, PartID&, RefMessage, bool) override;
  void CopyStateFrom(ReferenceTarget& source, RemapDir& remap) override;
  IOResult Save(ISave& save) override;
  IOResult Load(ILoad& load) override;
  void StateRestored();

 protected:
  int NumParts() const override { return 3; }
  Control* Part(int i) const override { return i >= 0 && i < 3 ? tracks_[i] : nullptr; }
  SClass_ID PartSuperClass(int) const override { return kFloatControlSuper; }
  void SetReference(int which, ReferenceTarget* target) override;

 private:
  /// Angles in the order of application.
  Point3 AnglesAt(TimeValue t, Interval& valid) const;
  void Write(TimeValue t, const Point3& angles);
  void Turn(Point3& e, const AngAxis& aa) const;

  // What evaluation reads comes first.
  Interval cachedValid_ = NEVER;
  Matrix3 cached_;
  Control* tracks_[3] = {nullptr, nullptr, nullptr};
  int order_ = kXYZ;
  bool writing_ = false;
};

}  // namespace corvanta
