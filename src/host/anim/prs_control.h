// SPDX-License-Identifier: MIT
// The transform of ordinary nodes: position, rotation and scale, each a controller of its own.
#pragma once

#include "host/anim/class_ids.h"
#include "host/anim/composite_control.h"

namespace corvanta {

/// Parts 0 position, 1 rotation, 2 scale. The value is scale * rotation * position * parent for either method; a
/// missing part is the identity.
class PrsControl final : public CompositeControl {
 public:
  explicit PrsControl(bool loading = false);

  SClass_ID SuperClassID() const override { return kMatrixControlSuper; }
  Class_ID ClassID() const override { return kPrsId; }
  WStr GetClassName() const override { return L"Position/Rotation/Scale"; }

  void GetValue(TimeValue t, ValueRef value, Interval& valid, GetSetMethod method) override;
  /// Takes a packet. Rotate and scale packets without `localOrigin` move the position about the origin of `tmAxis`,
  /// too. A set splits the local matrix by `decomp_affine`. Dropped while locked. Undoable.
  void SetValue(TimeValue t, ValueRef value, bool commit, GetSetMethod method) override;
  /// Sets the other's matrix at time 0, or makes keys at its key times.
  void Copy(Control* from) override;

  Control* GetPositionController() override { return parts_[0]; }
  Control* GetRotationController() override { return parts_[1]; }
  Control* GetScaleController() override { return parts_[2]; }
  bool SetPositionController(Control* c) override { return AssignController(c, 0); }
  bool SetRotationController(Control* c) override { return AssignController(c, 1); }
  bool SetScaleController(Control* c) override { return AssignController(c, 2); }

  WStr SubAnimName(int i) override;
  void CopyStateFrom(ReferenceTarget& source, RemapDir& remap) override;
  IOResult Save(ISave& save) override { return SaveLock(save); }
  IOResult Load(ILoad& load) override;

 protected:
  int NumParts() const override { return 3; }
  Control* Part(int i) const override { return i >= 0 && i < 3 ? parts_[i] : nullptr; }
  SClass_ID PartSuperClass(int i) const override;
  void SetReference(int which, ReferenceTarget* target) override;

 private:
  void SetMatrix(TimeValue t, const Matrix3& local, bool commit);
  void Move(TimeValue t, const SetXFormPacket& packet, bool commit);
  void Rotate(TimeValue t, const SetXFormPacket& packet, bool commit);
  void Scale(TimeValue t, const SetXFormPacket& packet, bool commit);
  void MoveAbout(TimeValue t, const SetXFormPacket& packet, const Matrix3& change, bool commit);

  Control* parts_[3] = {nullptr, nullptr, nullptr};
};

}  // namespace corvanta
