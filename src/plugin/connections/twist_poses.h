// SPDX-License-Identifier: MIT
// Values set at angles of a joint, and a smooth curve between them: what a twist or a bend drives.
#pragma once

#include "plugin/connections/exposed.h"
#include "plugin/connections/node_reader.h"

namespace tavrilon {

/// The driver angle is read off the node, the poses are two parallel lists. Before the first and after the last pose
/// their values hold; without poses, and without a node, the value is neutral. Takes no keys and no writes.
class TwistPoses : public NodeReader {
 public:
  /// Puts a pose where its angle (radians) belongs, over one within 1e-4 of it. Its index; -1 for a value of another
  /// kind. Undoable.
  int AddPose(float angle, const corvanta::FPValue& value);
  /// False beyond the end. Undoable.
  bool DeletePose(int i);
  int NumPoses() const;
  /// The driver's present angle.
  float AngleAt(corvanta::TimeValue t, corvanta::Interval& valid) const;

 protected:
  TwistPoses(TavrilonClass row, const corvanta::ParamBlockDesc2& desc, const corvanta::FPInterfaceDesc& published,
             bool loading);
  /// A number of the pose curve at the driver's angle. `at(i)` gives it for pose i.
  template <class At>
  float CurveValue(float angle, At&& at) const;
  bool IsDriven() const { return HasNode() && NumPoses() > 0; }
  corvanta::FPStatus Invoke(int id, corvanta::TimeValue t, corvanta::FPValue& result,
                            std::span<const corvanta::FPValue> args) override;
};

/// Value = weight * the poses' value.
class TwistPosesFloat final : public TwistPoses {
 public:
  explicit TwistPosesFloat(bool loading = false);
  static const corvanta::ParamBlockDesc2& BlockDesc();
  void GetValue(corvanta::TimeValue t, corvanta::ValueRef value, corvanta::Interval& valid,
                corvanta::GetSetMethod method) override;

 private:
  float Shown(corvanta::TimeValue t, corvanta::Interval& valid) const;
  float last_ = 0;
};

/// Values are Euler angles XYZ in radians, each on a curve of its own; the weight turns by a part of the result's
/// angle. Relative reads turn the incoming matrix.
class TwistPosesRotation final : public TwistPoses {
 public:
  explicit TwistPosesRotation(bool loading = false);
  static const corvanta::ParamBlockDesc2& BlockDesc();
  void GetValue(corvanta::TimeValue t, corvanta::ValueRef value, corvanta::Interval& valid,
                corvanta::GetSetMethod method) override;

 private:
  corvanta::Quat Shown(corvanta::TimeValue t, corvanta::Interval& valid) const;
  corvanta::Quat last_;
};

}  // namespace tavrilon
