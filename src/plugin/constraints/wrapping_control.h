// SPDX-License-Identifier: MIT
// What `RootConstraint` and `RotationSpace` share: a transform controller around another one, which keeps the control's
// own animation, and a node that it follows without depending on it.
#pragma once

#include "host/anim/composite_control.h"
#include "host/core/param_block.h"
#include "host/core/published.h"
#include "host/scene/node.h"
#include "plugin/frame/class_table.h"
#include "plugin/frame/weak_ref_owner.h"

namespace tavrilon {

/// References and sub-animatables: 0 the block, 1 the wrapped controller. Its only part is the wrapped controller, so
/// keys, tracks and parts are that one's. Row 0 of every block is the target.
class WrappingControl : public corvanta::CompositeControl, public WeakRefOwner {
 public:
  enum Reference : int { kBlockRef = 0, kInnerRef = 1 };
  static constexpr corvanta::ParamID kTargetParam = 0;

  WrappingControl(TavrilonClass row, const corvanta::ParamBlockDesc2& desc, bool loading);
  corvanta::SClass_ID SuperClassID() const final { return DescOf(row_).superClass; }
  corvanta::Class_ID ClassID() const final { return DescOf(row_).classId; }
  corvanta::WStr GetClassName() const final { return DescOf(row_).className; }

  /// Null only while loading.
  corvanta::ParamBlock2* GetParamBlock() const { return block_; }
  Control* GetInner() const { return inner_; }
  /// Null leaves the control without animation of its own. False for another kind of controller and for one that
  /// depends on this. Undoable.
  bool SetInner(Control* control);
  corvanta::INode* GetTarget() const { return GetWeakNode(kTargetParam); }
  /// The present pose becomes the rest pose: see `CaptureRest`. Null follows nothing. False for a node that depends on
  /// this controller. Undoable.
  bool SetTarget(corvanta::INode* target);
  /// Writes into the block what makes the present pose of target and parent the one at rest. Without a target nothing
  /// happens. Undoable.
  virtual void CaptureRest() = 0;

  /// Wraps the controller that it replaces; of one of its own class it takes the parameters and what that wraps.
  void Copy(Control* from) override;
  Control* GetPositionController() override { return inner_ ? inner_->GetPositionController() : nullptr; }
  Control* GetRotationController() override { return inner_ ? inner_->GetRotationController() : nullptr; }
  Control* GetScaleController() override { return inner_ ? inner_->GetScaleController() : nullptr; }
  bool SetPositionController(Control* c) override { return inner_ && inner_->SetPositionController(c); }
  bool SetRotationController(Control* c) override { return inner_ && inner_->SetRotationController(c); }
  bool SetScaleController(Control* c) override { return inner_ && inner_->SetScaleController(c); }
  bool InheritsPos() const override { return !inner_ || inner_->InheritsPos(); }
  uint32_t GetInheritanceFlags() const override { return inner_ ? inner_->GetInheritanceFlags() : 0; }

  int NumRefs() const override { return 2; }
  corvanta::ReferenceTarget* GetReference(int which) const override;
  int NumSubs() const override { return 2; }
  corvanta::Animatable* SubAnim(int i) override { return GetReference(i); }
  corvanta::WStr SubAnimName(int i) override { return i == 0 ? L"Parameters" : i == 1 ? L"Transform" : L""; }
  bool CanAssignController(int subAnim) override;
  bool AssignController(Control* control, int subAnim) override;
  using CompositeControl::GetInterface;
  void* GetInterface(uint32_t request) override;
  int NumInterfaces() const override { return 1; }
  corvanta::FPInterface* GetInterfaceAt(int i) override { return i == 0 ? &published_ : nullptr; }

  void CopyStateFrom(corvanta::ReferenceTarget& source, corvanta::RemapDir& remap) override;
  corvanta::IOResult Save(corvanta::ISave& save) override;
  corvanta::IOResult Load(corvanta::ILoad& load) override;

 protected:
  int NumParts() const override { return 1; }
  Control* Part(int i) const override { return i == 0 ? inner_ : nullptr; }
  corvanta::SClass_ID PartSuperClass(int) const override { return corvanta::kMatrixControlSuper; }
  void SetReference(int which, corvanta::ReferenceTarget* target) override;
  corvanta::ReferenceTarget* WeakOwner() override { return this; }
  corvanta::ParamBlock2* GetWeakBlock() const override { return block_; }
  /// The matrix that the controller stands under at `t`: of the node's parent, or what an outer controller gives it.
  corvanta::Matrix3 ParentTM(corvanta::TimeValue t) const;
  /// The inner controller's matrix below `parent`; `parent` without one.
  corvanta::Matrix3 InnerTM(corvanta::TimeValue t, corvanta::Matrix3 parent, corvanta::Interval& valid) const;

  // What evaluation reads and keeps.
  corvanta::ParamBlock2* block_ = nullptr;
  Control* inner_ = nullptr;
  corvanta::Matrix3 lastParent_;
  corvanta::Matrix3 lastValue_;
  bool evaluating_ = false;

 private:
  class Published final : public corvanta::FPMixinInterface {
   public:
    explicit Published(WrappingControl& owner);
    const corvanta::FPInterfaceDesc& GetDesc() const override { return desc_; }
    corvanta::FPStatus Invoke(int id, corvanta::TimeValue t, corvanta::FPValue& result,
                              std::span<const corvanta::FPValue> args) override;

   private:
    WrappingControl& owner_;
    const corvanta::FPInterfaceDesc& desc_;
  };
  TavrilonClass row_;
  Published published_;
};

/// For the target and for the switch that makes the rest pose count: setting either captures the rest.
class RestCapture final : public corvanta::PBAccessor {
 public:
  void Set(corvanta::ParamBlock2& block, corvanta::ReferenceTarget* owner, corvanta::ParamID id, int tab,
           corvanta::TimeValue t) override;
};
extern RestCapture restCapture;

}  // namespace tavrilon
