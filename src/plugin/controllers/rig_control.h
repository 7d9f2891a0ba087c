// SPDX-License-Identifier: MIT
// The transform controller on every control node of a rig: position, rotation and scale with an offset between them and
// the parent. The offset holds the figure pose, so that a control at rest reads 0, 0, 1.
#pragma once

#include "host/anim/composite_control.h"
#include "host/core/param_block.h"
#include "plugin/controllers/rig_control_interface.h"
#include "plugin/controllers/rig_offset.h"

namespace tavrilon {

/// Parts are position, rotation and scale: key operations go to all three.
class RigControl final : public corvanta::CompositeControl, public IRigControl {
 public:
  enum Param : corvanta::ParamID {
    kFigureMode = 0,
    kOffsetTM = 1,
    kIndependentOffset = 2,
    kStraightScale = 3,
    kConnectMirrorOffset = 12,
  };
  enum Reference : int { kBlockRef = 0, kPositionRef = 1, kRotationRef = 2, kScaleRef = 3 };

  explicit RigControl(bool loading = false);

  static constexpr corvanta::Class_ID kClassId = ClassIdOf(TavrilonClass::RigControl);
  corvanta::SClass_ID SuperClassID() const override { return corvanta::kMatrixControlSuper; }
  corvanta::Class_ID ClassID() const override { return kClassId; }
  corvanta::WStr GetClassName() const override { return DescOf(TavrilonClass::RigControl).className; }
  static const corvanta::ParamBlockDesc2& BlockDesc();
  /// Null only while loading.
  corvanta::ParamBlock2* GetParamBlock() const { return block_; }

  // Control. Both methods read alike: the parent's matrix comes in, the node's goes out.
  void GetValue(corvanta::TimeValue t, corvanta::ValueRef value, corvanta::Interval& valid,
                corvanta::GetSetMethod method) override;
  /// A packet; in figure mode it changes the offset instead of the animation. Dropped while locked. Undoable.
  void SetValue(corvanta::TimeValue t, corvanta::ValueRef value, bool commit, corvanta::GetSetMethod method) override;
  /// The value of the replaced controller becomes the offset, so the node stays and the sub-controllers are at rest.
  void Copy(corvanta::Control* from) override;
  bool ChangeParents(corvanta::TimeValue t, const corvanta::Matrix3& oldParent, const corvanta::Matrix3& newParent,
                     const corvanta::Matrix3& tm) override;
  corvanta::Control* GetPositionController() override { return position_; }
  /// In gimbal coordinates, with the proxy switch on, a proxy that shows the rotation with the offset in front of it.
  corvanta::Control* GetRotationController() override;
  corvanta::Control* GetScaleController() override { return scale_; }
  bool SetPositionController(corvanta::Control* c) override { return AssignController(c, kPositionRef); }
  bool SetRotationController(corvanta::Control* c) override { return AssignController(c, kRotationRef); }
  bool SetScaleController(corvanta::Control* c) override { return AssignController(c, kScaleRef); }
  /// "FIGURE MODE ON" while the mode is on and the node is selected.
  void Display(corvanta::TimeValue t, corvanta::INode* node, corvanta::GraphicsWindow& view) override;
  using CompositeControl::GetInterface;

  // IRigControl
  corvanta::Point3 GetOffsetPos() const override { return GetOffsetTM().GetTrans(); }
  void SetOffsetPos(const corvanta::Point3& pos) override;
  corvanta::Quat GetOffsetRot() const override { return OffsetRotation(GetOffsetTM()); }
  void SetOffsetRot(const corvanta::Quat& rot) override;
  corvanta::Point3 GetOffsetScale() const override { return OffsetScale(GetOffsetTM()); }
  void SetOffsetScale(const corvanta::Point3& scale) override;
  corvanta::Matrix3 GetOffsetTM() const override { return block_ ? offset_.tm : corvanta::Matrix3(); }
  void SetOffsetTM(const corvanta::Matrix3& tm) override { SetOffset(tm, false); }
  bool GetFigureMode() const override { return figureMode_; }
  void SetFigureMode(bool on) override;
  void ResetFigure() override;
  corvanta::FPInterface* GetInterface(const corvanta::Interface_ID& id) override;
  int NumInterfaces() const override { return 1; }
  corvanta::FPInterface* GetInterfaceAt(int i) override { return i == 0 ? static_cast<IRigControl*>(this) : nullptr; }

  // References and sub-animatables.
  /// What evaluation needs of the block is copied out of it.
  bool ReadsReference(int which) const override { return which != kBlockRef; }
  int NumRefs() const override { return 4; }
  corvanta::ReferenceTarget* GetReference(int which) const override;
  int NumSubs() const override { return 4; }
  corvanta::Animatable* SubAnim(int i) override { return GetReference(i); }
  corvanta::WStr SubAnimName(int i) override;
  /// Only sub-animatables 1 to 3, with a controller of their kind.
  bool CanAssignController(int subAnim) override { return subAnim >= kPositionRef && subAnim <= kScaleRef; }
  bool AssignController(corvanta::Control* control, int subAnim) override;
  void CopyStateFrom(corvanta::ReferenceTarget& source, corvanta::RemapDir& remap) override;
  corvanta::IOResult Save(corvanta::ISave& save) override;
  corvanta::IOResult Load(corvanta::ILoad& load) override;
  void PostLoad() override { ReadBlock(); }

  /// Copies what evaluation reads out of the block. Called after every write to it.
  void ReadBlock();

 protected:
  int NumParts() const override { return 3; }
  corvanta::Control* Part(int i) const override;
  corvanta::SClass_ID PartSuperClass(int i) const override;
  void SetReference(int which, corvanta::ReferenceTarget* target) override;

 private:
  friend class RigControlWrite;
  void SetOffset(const corvanta::Matrix3& tm, bool selectionTest);
  void StoreOffset(const corvanta::Matrix3& tm);
  void MirrorOffset(const corvanta::Matrix3& tm, bool selectionTest);
  void RestSubControllers(corvanta::TimeValue t);

  // What evaluation reads comes first: plain copies of the parameters and the split offset.
  corvanta::ParamBlock2* block_ = nullptr;
  corvanta::Control* position_ = nullptr;
  corvanta::Control* rotation_ = nullptr;
  corvanta::Control* scale_ = nullptr;
  bool figureMode_ = false;
  bool independent_ = true;
  bool straight_ = false;
  SplitOffset offset_;
};

/// Turns off, for its lifetime, the mirroring of moves of a selected pair and of figure offsets: around moves that a
/// chain sends to its controls.
class MirrorPairOff {
 public:
  MirrorPairOff();
  ~MirrorPairOff();
  MirrorPairOff(const MirrorPairOff&) = delete;

 private:
  bool was_;
};

/// The rotation controller itself, never the gimbal proxy.
corvanta::Control* GetRealRotationController(corvanta::Control* transform);

}  // namespace tavrilon
