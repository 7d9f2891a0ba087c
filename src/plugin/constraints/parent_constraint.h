// SPDX-License-Identifier: MIT
// Follows the weighted blend of its targets as it would a parent; what the animator adds lives in an inner transform
// controller on top. While targets are edited (their pivots moved), the node is kept where it is.
#pragma once

#include "plugin/constraints/target_constraint.h"

namespace tavrilon {

class ParentConstraint final : public TargetConstraint {
 public:
  enum Param : corvanta::ParamID { kOffset = 3 };
  explicit ParentConstraint(bool loading = false);
  static const corvanta::ParamBlockDesc2& BlockDesc();

  void GetValue(corvanta::TimeValue t, corvanta::ValueRef value, corvanta::Interval& valid,
                corvanta::GetSetMethod method) override;
  void SetValue(corvanta::TimeValue t, corvanta::ValueRef value, bool commit, corvanta::GetSetMethod method) override;
  /// Keeps the node where it is: the new target gets the offset that the present blend has from it. Undoable.
  bool AppendTarget(corvanta::INode* target, float weight) override;
  bool DeleteTarget(int i) override;
  /// Identity beyond the end.
  corvanta::Matrix3 GetOffset(int i) const;
  bool SetOffset(int i, const corvanta::Matrix3& offset);
  /// The node's place does not depend on its parent, so there is nothing to do.
  bool ChangeParents(corvanta::TimeValue, const corvanta::Matrix3&, const corvanta::Matrix3&,
                     const corvanta::Matrix3&) override {
    return true;
  }

  /// The matrix under which the node stands without targets. Undoable.
  void SetInitialTM(const corvanta::Matrix3& tm);
  const corvanta::Matrix3& GetInitialTM() const { return initial_.tm; }
  Control* GetInner() const { return inner_; }
  /// Undoable.
  bool SetInner(Control* control) { return ReplaceReference(1, control) == corvanta::REF_SUCCEED; }

  // The inner controller answers for the node's own animation.
  Control* GetPositionController() override { return inner_ ? inner_->GetPositionController() : nullptr; }
  Control* GetRotationController() override { return inner_ ? inner_->GetRotationController() : nullptr; }
  Control* GetScaleController() override { return inner_ ? inner_->GetScaleController() : nullptr; }
  bool SetPositionController(Control* c) override { return inner_ && inner_->SetPositionController(c); }
  bool SetRotationController(Control* c) override { return inner_ && inner_->SetRotationController(c); }
  bool SetScaleController(Control* c) override { return inner_ && inner_->SetScaleController(c); }
  bool InheritsPos() const override { return !inner_ || inner_->InheritsPos(); }
  uint32_t GetInheritanceFlags() const override { return inner_ ? inner_->GetInheritanceFlags() : 0; }
  bool IsLeaf() const override { return false; }

  int NumRefs() const override { return 2; }
  corvanta::ReferenceTarget* GetReference(int which) const override {
    return which == 1 ? inner_ : TargetConstraint::GetReference(which);
  }
  int NumSubs() const override { return 2; }
  corvanta::WStr SubAnimName(int i) override { return i == 1 ? L"Transform" : TargetConstraint::SubAnimName(i); }
  bool CanAssignController(int subAnim) override { return subAnim == 1; }
  bool AssignController(Control* control, int subAnim) override;
  corvanta::RefResult NotifyRefChanged(const corvanta::Interval& interval, corvanta::ReferenceTarget* target,
                                       corvanta::PartID& part, corvanta::RefMessage message, bool propagate) override;
  void CopyStateFrom(corvanta::ReferenceTarget& source, corvanta::RemapDir& remap) override;
  corvanta::IOResult Save(corvanta::ISave& save) override;
  corvanta::IOResult Load(corvanta::ILoad& load) override;
  void StateRestored() { NotifyDependents(); }

 protected:
  void SetReference(int which, corvanta::ReferenceTarget* target) override {
    if (which == 1)
      inner_ = static_cast<Control*>(target);
    else
      TargetConstraint::SetReference(which, target);
  }

 private:
  friend class ParentTransformSnapshotRestore;
  /// What a target looked like when last seen, and one change before.
  struct Snapshot {
    corvanta::AnimHandle node = 0;
    corvanta::TimeValue time = 0;
    corvanta::Matrix3 tm, offset, olderTM, olderOffset;
    bool absorbed = false;
  };
  struct InitialState {
    corvanta::Matrix3 tm;
    bool needed = true;
  };
  corvanta::Matrix3 TargetTM(int i, corvanta::TimeValue t, corvanta::Interval& valid,
                             const std::vector<corvanta::Matrix3>* overrides) const;
  corvanta::Matrix3 Blend(corvanta::TimeValue t, bool useOffset, corvanta::Interval& valid,
                          const std::vector<corvanta::Matrix3>* overrides = nullptr) const;
  corvanta::Matrix3 BlendNow(bool useOffset) const;
  bool IsTargetsOwnMotion(corvanta::TimeValue t, const corvanta::SetXFormPacket& packet) const;
  void HandOver(corvanta::TimeValue t, const corvanta::Matrix3& was, const corvanta::Matrix3& now,
                const corvanta::Matrix3& tm);
  bool IsAncestorBeingScaled() const;
  void RecordSnapshot();
  void Rebase(corvanta::TimeValue t);
  bool Absorb(Snapshot& seen, corvanta::INode* node, corvanta::TimeValue t, corvanta::Matrix3& correction);

  Control* inner_ = nullptr;
  InitialState initial_;
  corvanta::Matrix3 lastParent_;
  corvanta::TimeValue lastParentTime_ = corvanta::kTimeMin;
  corvanta::Matrix3 lastValue_;
  std::vector<Snapshot> snapshots_;
  uint32_t snapshotStamp_ = 0;
  bool notifyEnabled_ = true;
  bool rebasing_ = false;
  bool rebaseWaits_ = false;
  bool evaluating_ = false;
};

}  // namespace tavrilon
