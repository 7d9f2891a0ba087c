// SPDX-License-Identifier: MIT
// The rotation controller of rig controls: three float tracks and an Euler order. Writes keep the angles continuous,
// and a turn about one gimbal ring changes exactly one track.
#pragma once

#include <optional>

#include "host/anim/composite_control.h"
#include "plugin/frame/class_table.h"

namespace tavrilon {

/// Limits of the three joints. Kept and stored; nothing evaluates them.
struct JointParams {
  struct Axis {
    float min, max, damping;
  };
  int32_t flags[3] = {0, 0, 0};
  Axis axis[3] = {};
};

/// Parts 0, 1, 2 are the tracks X, Y, Z; key operations go to all three.
class RotationXYZ final : public corvanta::CompositeControl, public corvanta::IEulerControl {
 public:
  explicit RotationXYZ(bool loading = false);

  static constexpr corvanta::Class_ID kClassId = ClassIdOf(TavrilonClass::RotationXYZ);
  corvanta::SClass_ID SuperClassID() const override { return corvanta::kRotationControlSuper; }
  corvanta::Class_ID ClassID() const override { return kClassId; }
  corvanta::WStr GetClassName() const override { return DescOf(TavrilonClass::RotationXYZ).className; }
  using CompositeControl::GetInterface;
  void* GetInterface(uint32_t request) override;

  /// Absolute: a Quat. Relative: rotates the incoming matrix.
  void GetValue(corvanta::TimeValue t, corvanta::ValueRef value, corvanta::Interval& valid,
                corvanta::GetSetMethod method) override;
  /// Absolute: a Quat, set near the present angles, or with animate on near those of the last key before `t`.
  /// Relative: an AngAxis, see TurnAngles. Dropped while locked. Undoable.
  void SetValue(corvanta::TimeValue t, corvanta::ValueRef value, bool commit, corvanta::GetSetMethod method) override;
  /// Takes over value or keys of a controller of another class, each key continuous with the one before.
  void Copy(corvanta::Control* from) override;

  // IEulerControl
  int GetOrder() const override { return order_; }
  /// 0 to 8; the tracks keep their values. Dropped while locked. Undoable, "Change Euler Order".
  void SetOrder(int order) override;
  corvanta::Control* GetAxisController(int axis) override { return Part(axis); }
  corvanta::Control* GetXController() override { return tracks_[0]; }
  corvanta::Control* GetYController() override { return tracks_[1]; }
  corvanta::Control* GetZController() override { return tracks_[2]; }

  /// The values of the tracks at `t`, a missing one 0.
  corvanta::Point3 GetTrackValues(corvanta::TimeValue t);
  std::optional<JointParams>& Joints() { return joints_; }
  /// Loaded from a scene that stored orders in their older meaning.
  bool HasLegacyOrder() const { return legacyOrder_; }
  void StateRestored();

  corvanta::WStr SubAnimName(int i) override;
  corvanta::ParamDimension GetParamDimension(int) override { return corvanta::ParamDimension::Angle; }
  corvanta::RefResult NotifyRefChanged(const corvanta::Interval& interval, corvanta::ReferenceTarget* target,
                                       corvanta::PartID& part, corvanta::RefMessage message, bool propagate) override;
  void CopyStateFrom(corvanta::ReferenceTarget& source, corvanta::RemapDir& remap) override;
  corvanta::IOResult Save(corvanta::ISave& save) override;
  corvanta::IOResult Load(corvanta::ILoad& load) override;
  void PostLoad() override { valid_.SetEmpty(); }

 protected:
  int NumParts() const override { return 3; }
  corvanta::Control* Part(int i) const override { return i >= 0 && i < 3 ? tracks_[i] : nullptr; }
  corvanta::SClass_ID PartSuperClass(int) const override { return corvanta::kFloatControlSuper; }
  void SetReference(int which, corvanta::ReferenceTarget* target) override;

 private:
  void UpdateCache(corvanta::TimeValue t);
  void KeepAngles(const corvanta::Point3& angles, const corvanta::Interval& valid);
  void WriteTracks(corvanta::TimeValue t, const corvanta::Point3& angles);

  // What evaluation reads comes first: how long the angles hold, the matrix that they make, and the tracks.
  corvanta::Interval valid_ = corvanta::NEVER;
  bool writing_ = false;
  bool turns_ = false;
  corvanta::Matrix3 tm_;
  corvanta::Point3 angles_;
  corvanta::Control* tracks_[3] = {nullptr, nullptr, nullptr};
  int order_ = 0;
  int cachedOrder_ = 0;
  bool legacyOrder_ = false;
  std::optional<JointParams> joints_;
};

}  // namespace tavrilon
