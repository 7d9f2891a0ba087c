// SPDX-License-Identifier: MIT
// The rotation controller of rig controls: three float tracks and an Euler order. Writes keep the angles continuous, and
// a turn about one gimbal ring changes exactly one track.
#pragma once

#include <optional>

#include "host/core/control.h"
#include "plugin/controllers/euler_key_tracks.h"
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

class RotationXYZ final : public corvanta::Control,
                          public corvanta::IEulerControl,
                          public corvanta::ILockedTrackImp {
 public:
  explicit RotationXYZ(bool loading = false);

  static constexpr corvanta::Class_ID kClassId = ClassIdOf(TavrilonClass::RotationXYZ);
  corvanta::SClass_ID SuperClassID() const override { return corvanta::kRotationControlSuper; }
  corvanta::Class_ID ClassID() const override { return kClassId; }
  corvanta::WStr GetClassName() const override { return DescOf(TavrilonClass::RotationXYZ).className; }
  using Control::GetInterface;
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
  corvanta::Control* GetAxisController(int axis) override { return axis >= 0 && axis < 3 ? tracks_.track[axis] : nullptr; }
  corvanta::Control* GetXController() override { return tracks_.track[0]; }
  corvanta::Control* GetYController() override { return tracks_.track[1]; }
  corvanta::Control* GetZController() override { return tracks_.track[2]; }

  /// The values of the tracks at `t`, a missing one 0.
  corvanta::Point3 GetTrackValues(corvanta::TimeValue t);
  std::optional<JointParams>& Joints() { return joints_; }
  /// Loaded from a scene that stored orders in their older meaning.
  bool HasLegacyOrder() const { return legacyOrder_; }
  void StateRestored();

  bool IsLeaf() const override { return false; }
  bool IsKeyable() const override { return true; }
  bool IsAnimated() override;
  bool IsReplaceable() const override { return !locked_; }
  bool CanOverwrite() const override { return !locked_; }

  // Keys of the three tracks as one. All return at once while locked.
  int NumKeys() const override;
  corvanta::TimeValue GetKeyTime(int i) const override;
  int GetKeyIndex(corvanta::TimeValue t) const override;
  bool GetNextKeyTime(corvanta::TimeValue t, bool forward, corvanta::TimeValue& next) const override;
  void AddNewKey(corvanta::TimeValue t) override;
  void DeleteKeyAtTime(corvanta::TimeValue t) override;
  void DeleteKeys(bool selectedOnly) override;
  void SelectKeys(const corvanta::Interval& range, bool on) override;
  bool IsKeySelected(int i) const override;
  void MapKeys(const corvanta::TimeMap& map, uint32_t flags) override;
  void DeleteTime(const corvanta::Interval& range, uint32_t flags) override;
  void ReverseTime(const corvanta::Interval& range, uint32_t flags) override;
  void CopyKeysFromTime(corvanta::TimeValue from, corvanta::TimeValue to) override;
  corvanta::ORT GetORT(bool after) const override;
  void SetORT(corvanta::ORT ort, bool after) override;

  // References and sub-animatables: 0 X, 1 Y, 2 Z.
  int NumRefs() const override { return 3; }
  corvanta::ReferenceTarget* GetReference(int which) const override;
  int NumSubs() const override { return 3; }
  corvanta::Animatable* SubAnim(int i) override { return GetAxisController(i); }
  corvanta::WStr SubAnimName(int i) override;
  int SubNumToRefNum(int i) override { return i; }
  corvanta::ParamDimension GetParamDimension(int) override { return corvanta::ParamDimension::Angle; }
  bool CanAssignController(int subAnim) override;
  bool AssignController(corvanta::Control* control, int subAnim) override;
  corvanta::RefResult NotifyRefChanged(const corvanta::Interval& interval, corvanta::ReferenceTarget* target,
                                       corvanta::PartID& part, corvanta::RefMessage message, bool propagate) override;
  void CopyStateFrom(corvanta::ReferenceTarget& source, corvanta::RemapDir& remap) override;
  corvanta::IOResult Save(corvanta::ISave& save) override;
  corvanta::IOResult Load(corvanta::ILoad& load) override;
  void PostLoad() override { valid_.SetEmpty(); }

 protected:
  void SetReference(int which, corvanta::ReferenceTarget* target) override;

 private:
  void UpdateCache(corvanta::TimeValue t);
  void KeepAngles(const corvanta::Point3& angles, const corvanta::Interval& valid);
  void WriteTracks(corvanta::TimeValue t, const corvanta::Point3& angles);
  template <class F>
  void EditTracks(F&& f);

  // What evaluation reads comes first: how long the angles hold, the matrix that they make, and the tracks.
  corvanta::Interval valid_ = corvanta::NEVER;
  bool writing_ = false;
  bool turns_ = false;
  corvanta::Matrix3 tm_;
  corvanta::Point3 angles_;
  KeyTracks tracks_;
  int order_ = 0;
  int cachedOrder_ = 0;
  bool legacyOrder_ = false;
  std::optional<JointParams> joints_;
};

}  // namespace tavrilon
