// SPDX-License-Identifier: MIT
// The transform controller that a curve chain puts on its joints: the joint stands where the chain has it, and what the
// animator adds on top lives in an inner controller.
#pragma once

#include "host/scene/node.h"
#include "plugin/frame/class_table.h"
#include "plugin/frame/weak_ref_owner.h"
#include "plugin/solvers/chain_params.h"

namespace tavrilon {

class CurveIKChain;

class CurveIKControl final : public corvanta::Control, public corvanta::ILockedTrackImp, public WeakRefOwner {
 public:
  static constexpr corvanta::Class_ID kClassId = ClassIdOf(TavrilonClass::CurveIKControl);
  explicit CurveIKControl(bool loading = false);
  static const corvanta::ParamBlockDesc2& BlockDesc();
  /// The transform controller of `node` when it is of this class; null otherwise and for null.
  static CurveIKControl* Of(const corvanta::INode* node);

  corvanta::SClass_ID SuperClassID() const override { return corvanta::kMatrixControlSuper; }
  corvanta::Class_ID ClassID() const override { return kClassId; }
  corvanta::WStr GetClassName() const override { return DescOf(TavrilonClass::CurveIKControl).className; }

  corvanta::ParamBlock2* GetParamBlock() const { return block_; }
  /// Null without a chain, and while its node is deleted.
  CurveIKChain* Chain() const;
  corvanta::INode* ChainNode() const;
  int Index() const { return block_ ? block_->GetInt(curve_ik_control::kIndex) : 0; }
  float Percent(corvanta::TimeValue t, corvanta::Interval& valid) const {
    return block_ ? block_->GetFloat(curve_ik_control::kPercent, t, valid) : 0;
  }
  float Squash(corvanta::TimeValue t, corvanta::Interval& valid) const {
    return block_ ? block_->GetFloat(curve_ik_control::kSquash, t, valid) : 0;
  }
  Control* GetInner() const { return inner_; }
  /// Undoable.
  bool SetInner(Control* control) { return ReplaceReference(1, control) == corvanta::REF_SUCCEED; }

  /// The chain's place of the joint, then the inner controller. Without a chain the joint hangs on its parent.
  void GetValue(corvanta::TimeValue t, corvanta::ValueRef value, corvanta::Interval& valid,
                corvanta::GetSetMethod method) override;
  /// Goes to the inner controller; dropped without one, and while locked.
  void SetValue(corvanta::TimeValue t, corvanta::ValueRef value, bool commit, corvanta::GetSetMethod method) override;
  /// The joint's place does not depend on its parent.
  bool ChangeParents(corvanta::TimeValue, const corvanta::Matrix3&, const corvanta::Matrix3&,
                     const corvanta::Matrix3&) override {
    return true;
  }

  // The inner controller answers for the joint's own animation.
  Control* GetPositionController() override { return inner_ ? inner_->GetPositionController() : nullptr; }
  Control* GetRotationController() override { return inner_ ? inner_->GetRotationController() : nullptr; }
  Control* GetScaleController() override { return inner_ ? inner_->GetScaleController() : nullptr; }
  bool SetPositionController(Control* c) override { return inner_ && inner_->SetPositionController(c); }
  bool SetRotationController(Control* c) override { return inner_ && inner_->SetRotationController(c); }
  bool SetScaleController(Control* c) override { return inner_ && inner_->SetScaleController(c); }
  bool InheritsPos() const override { return !inner_ || inner_->InheritsPos(); }
  uint32_t GetInheritanceFlags() const override { return inner_ ? inner_->GetInheritanceFlags() : 0; }
  bool IsLeaf() const override { return false; }
  bool IsReplaceable() const override { return !locked_; }
  bool CanOverwrite() const override { return !locked_; }
  int NumKeys() const override { return inner_ ? inner_->NumKeys() : 0; }
  corvanta::TimeValue GetKeyTime(int i) const override { return inner_ ? inner_->GetKeyTime(i) : 0; }
  int GetKeyIndex(corvanta::TimeValue t) const override { return inner_ ? inner_->GetKeyIndex(t) : -1; }
  void AddNewKey(corvanta::TimeValue t) override;
  void DeleteKeyAtTime(corvanta::TimeValue t) override;
  void DeleteKeys(bool selectedOnly) override;
  void SelectKeys(const corvanta::Interval& range, bool on) override;
  bool IsKeySelected(int i) const override { return inner_ && inner_->IsKeySelected(i); }
  void MapKeys(const corvanta::TimeMap& map, uint32_t flags) override;
  void DeleteTime(const corvanta::Interval& range, uint32_t flags) override;
  void ReverseTime(const corvanta::Interval& range, uint32_t flags) override;
  void CopyKeysFromTime(corvanta::TimeValue from, corvanta::TimeValue to) override;

  int NumRefs() const override { return 2; }
  corvanta::ReferenceTarget* GetReference(int which) const override;
  std::optional<bool> AcceptsReference(int which, const corvanta::ReferenceTarget& target) const override;
  int NumSubs() const override { return 2; }
  corvanta::Animatable* SubAnim(int i) override { return GetReference(i); }
  corvanta::WStr SubAnimName(int i) override { return i == 0 ? L"Parameters" : i == 1 ? L"Transform" : L""; }
  int SubNumToRefNum(int i) override { return i; }
  bool CanAssignController(int subAnim) override { return subAnim == 1; }
  bool AssignController(Control* control, int subAnim) override;
  using Control::GetInterface;
  void* GetInterface(uint32_t request) override;
  void CopyStateFrom(corvanta::ReferenceTarget& source, corvanta::RemapDir& remap) override;
  corvanta::IOResult Save(corvanta::ISave& save) override;
  corvanta::IOResult Load(corvanta::ILoad& load) override;

 protected:
  void SetReference(int which, corvanta::ReferenceTarget* target) override;
  ReferenceTarget* WeakOwner() override { return this; }
  corvanta::ParamBlock2* GetWeakBlock() const override { return block_; }

 private:
  corvanta::ParamBlock2* block_ = nullptr;
  Control* inner_ = nullptr;
};

}  // namespace tavrilon
