// SPDX-License-Identifier: MIT
// A position of three float tracks, for positions of which one component is driven.
#pragma once

#include "host/anim/class_ids.h"
#include "host/anim/composite_control.h"

namespace corvanta {

/// Parts 0, 1, 2: the tracks of X, Y, Z in scene units. A missing track counts as 0.
class PositionXyzControl final : public CompositeControl {
 public:
  explicit PositionXyzControl(bool loading = false);

  SClass_ID SuperClassID() const override { return kPositionControlSuper; }
  Class_ID ClassID() const override { return kPositionXyzId; }
  WStr GetClassName() const override { return L"Position XYZ"; }

  /// Absolute: a Point3. Relative: adds to a Point3, or moves the matrix that comes in along its own axes.
  void GetValue(TimeValue t, ValueRef value, Interval& valid, GetSetMethod method) override;
  /// A Point3, to all three tracks. Dropped while locked. Undoable.
  void SetValue(TimeValue t, ValueRef value, bool commit, GetSetMethod method) override;
  /// Takes over the value, or the keys, of another position.
  void Copy(Control* from) override;

  Control* GetXController() override { return tracks_[0]; }
  Control* GetYController() override { return tracks_[1]; }
  Control* GetZController() override { return tracks_[2]; }

  WStr SubAnimName(int i) override;
  ParamDimension GetParamDimension(int) override { return ParamDimension::World; }
  RefResult NotifyRefChanged(const Interval&, ReferenceTarget*, PartID&, RefMessage message, bool) override;
  void CopyStateFrom(ReferenceTarget& source, RemapDir& remap) override;
  IOResult Save(ISave& save) override { return SaveLock(save); }
  IOResult Load(ILoad& load) override;

 protected:
  int NumParts() const override { return 3; }
  Control* Part(int i) const override { return i >= 0 && i < 3 ? tracks_[i] : nullptr; }
  SClass_ID PartSuperClass(int) const override { return kFloatControlSuper; }
  void SetReference(int which, ReferenceTarget* target) override;

 private:
  Point3 At(TimeValue t, Interval& valid) const;
  void Write(TimeValue t, const Point3& position);

  Control* tracks_[3] = {nullptr, nullptr, nullptr};
  bool writing_ = false;
};

}  // namespace corvanta
