// SPDX-License-Identifier: MIT
// The five static controllers. Writes at any time change the one value for all time; a locked one drops them.
#pragma once

#include "plugin/controllers/static_control.h"

namespace tavrilon {

class StaticFloat final : public StaticControl<float, TavrilonClass::StaticFloat> {
 public:
  void GetValue(corvanta::TimeValue t, corvanta::ValueRef value, corvanta::Interval& valid,
                corvanta::GetSetMethod method) override;
  void SetValue(corvanta::TimeValue t, corvanta::ValueRef value, bool commit, corvanta::GetSetMethod method) override;
  void Copy(corvanta::Control* from) override;
};

class StaticPosition final : public StaticControl<corvanta::Point3, TavrilonClass::StaticPosition> {
 public:
  void GetValue(corvanta::TimeValue t, corvanta::ValueRef value, corvanta::Interval& valid,
                corvanta::GetSetMethod method) override;
  void SetValue(corvanta::TimeValue t, corvanta::ValueRef value, bool commit, corvanta::GetSetMethod method) override;
  void Copy(corvanta::Control* from) override;
};

class StaticRotation final : public StaticControl<corvanta::Quat, TavrilonClass::StaticRotation> {
 public:
  void GetValue(corvanta::TimeValue t, corvanta::ValueRef value, corvanta::Interval& valid,
                corvanta::GetSetMethod method) override;
  void SetValue(corvanta::TimeValue t, corvanta::ValueRef value, bool commit, corvanta::GetSetMethod method) override;
  void Copy(corvanta::Control* from) override;
};

class StaticScale final : public StaticControl<corvanta::ScaleValue, TavrilonClass::StaticScale> {
 public:
  void GetValue(corvanta::TimeValue t, corvanta::ValueRef value, corvanta::Interval& valid,
                corvanta::GetSetMethod method) override;
  /// A relative write multiplies s by component and puts the stored q in front of the given one.
  void SetValue(corvanta::TimeValue t, corvanta::ValueRef value, bool commit, corvanta::GetSetMethod method) override;
  void Copy(corvanta::Control* from) override;
};

class StaticTransform final : public StaticControl<corvanta::Matrix3, TavrilonClass::StaticTransform> {
 public:
  /// Absolute gives the stored matrix; relative puts it in front of the incoming one.
  void GetValue(corvanta::TimeValue t, corvanta::ValueRef value, corvanta::Interval& valid,
                corvanta::GetSetMethod method) override;
  /// A SetXFormPacket, whatever the method.
  void SetValue(corvanta::TimeValue t, corvanta::ValueRef value, bool commit, corvanta::GetSetMethod method) override;
  void Copy(corvanta::Control* from) override;
  /// Keeps the world place, also of a locked track.
  bool ChangeParents(corvanta::TimeValue t, const corvanta::Matrix3& oldParent, const corvanta::Matrix3& newParent,
                     const corvanta::Matrix3& tm) override;
};

/// The matrix `m` of a node after a packet, `m` being relative to the packet's parent.
corvanta::Matrix3 ApplyPacket(const corvanta::Matrix3& m, const corvanta::SetXFormPacket& packet);

}  // namespace tavrilon
