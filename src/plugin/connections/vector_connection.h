// SPDX-License-Identifier: MIT
// Connections of positions, rotations and scales. They follow a controller of their own kind, in its own space, or a
// Point3 parameter: a place, three Euler angles XYZ in radians, three scale factors.
#pragma once

#include "plugin/connections/connection_control.h"
#include "plugin/connections/vector_weights.h"

namespace tavrilon {

/// The block and the weights that the three share.
class VectorConnection : public ConnectionControl {
 public:
  VectorConnection(TavrilonClass row, const corvanta::FPInterfaceDesc& published, bool loading);
  static const corvanta::ParamBlockDesc2& BlockDesc();

 protected:
  /// 1, 1, 1 with the weights off.
  corvanta::Point3 Weights(corvanta::TimeValue t, corvanta::Interval& valid) const;
  /// What is read of the target, as the three numbers that weights apply to.
  template <class Value>
  Value Source(corvanta::TimeValue t, corvanta::Interval& valid) const;
  /// Gives `value` to the target at the time that it is read for `t`.
  template <class Value>
  void WriteSource(corvanta::TimeValue t, Value value, bool commit);
};

/// Value = the target's position times the weights by component. Relative reads move the incoming matrix in its own
/// axes. Re-entered it gives its last value.
class PositionConnection final : public VectorConnection {
 public:
  explicit PositionConnection(bool loading = false);
  void GetValue(corvanta::TimeValue t, corvanta::ValueRef value, corvanta::Interval& valid,
                corvanta::GetSetMethod method) override;
  /// With two-way on the target gets value / weight; a component of no weight keeps its value. Undoable.
  void SetValue(corvanta::TimeValue t, corvanta::ValueRef value, bool commit, corvanta::GetSetMethod method) override;

 private:
  corvanta::Point3 Shown(corvanta::TimeValue t, corvanta::Interval& valid) const;
  corvanta::Point3 last_;
};

/// Value = the target's Euler angles XYZ times the weights. Relative reads turn the incoming matrix.
class RotationConnection final : public VectorConnection {
 public:
  explicit RotationConnection(bool loading = false);
  void GetValue(corvanta::TimeValue t, corvanta::ValueRef value, corvanta::Interval& valid,
                corvanta::GetSetMethod method) override;
  /// As for positions, by angles. A relative write takes an AngAxis. Undoable.
  void SetValue(corvanta::TimeValue t, corvanta::ValueRef value, bool commit, corvanta::GetSetMethod method) override;

 private:
  corvanta::Point3 Angles(corvanta::TimeValue t, corvanta::Interval& valid) const;
  corvanta::Quat Shown(corvanta::TimeValue t, corvanta::Interval& valid) const;
  corvanta::Quat last_;
};

/// Value = 1 + (s - 1) weight by component, in the axes of the target's scale.
class ScaleConnection final : public VectorConnection {
 public:
  explicit ScaleConnection(bool loading = false);
  void GetValue(corvanta::TimeValue t, corvanta::ValueRef value, corvanta::Interval& valid,
                corvanta::GetSetMethod method) override;
  /// As for positions. A relative write multiplies. Undoable.
  void SetValue(corvanta::TimeValue t, corvanta::ValueRef value, bool commit, corvanta::GetSetMethod method) override;

 private:
  corvanta::ScaleValue Shown(corvanta::TimeValue t, corvanta::Interval& valid) const;
  corvanta::ScaleValue last_;
};

}  // namespace tavrilon
