// SPDX-License-Identifier: MIT
// Curves that a parameter refers to: the shape of a mapping, drawn by the user.
#pragma once

#include "host/anim/class_ids.h"
#include "host/anim/point_curve.h"
#include "host/core/published.h"
#include "host/core/state_restore.h"

namespace corvanta {

class CurveControl final : public ReferenceTarget, private FPInterface {
 public:
  static constexpr Class_ID kClassId = kCurveControlId;
  SClass_ID SuperClassID() const override { return kReferenceTargetSuper; }
  Class_ID ClassID() const override { return kClassId; }
  WStr GetClassName() const override { return L"Curve Control"; }

  int NumCurves() const { return static_cast<int>(curves_.size()); }
  /// Null beyond the end.
  const PointCurve* GetCurve(int i) const {
    return i >= 0 && i < NumCurves() ? &curves_[static_cast<size_t>(i)] : nullptr;
  }
  /// Appends a curve; its index. Points out of order are sorted in. Undoable.
  int AddCurve(const PointCurve& curve = Straight());
  /// From (0, 0) to (1, 1): the value is x.
  static PointCurve Straight() { return {{{0, 0, 1, 1}, {1, 1, 1, 1}}}; }
  /// False beyond the end. Undoable.
  bool DeleteCurve(int i);
  /// The index of the point, which replaces one at the same x; -1 when refused. Undoable.
  int SetPoint(int curve, const CurvePoint& point);
  /// False beyond the end. Undoable.
  bool DeletePoint(int curve, int point);

  using Animatable::GetInterface;
  int NumInterfaces() const override { return 1; }
  FPInterface* GetInterfaceAt(int i) override { return i == 0 ? this : nullptr; }
  void CopyStateFrom(ReferenceTarget& source, RemapDir&) override {
    curves_ = static_cast<CurveControl&>(source).curves_;
  }
  IOResult Save(ISave& save) override;
  IOResult Load(ILoad& load) override;
  void StateRestored() { NotifyDependents(); }

 private:
  const FPInterfaceDesc& GetDesc() const override;
  FPStatus Invoke(int id, TimeValue t, FPValue& result, std::span<const FPValue> args) override;
  PointCurve* Changing(int curve);

  std::vector<PointCurve> curves_;
};

/// Null for anything else.
const CurveControl* AsCurveControl(const ReferenceTarget* target);

}  // namespace corvanta
