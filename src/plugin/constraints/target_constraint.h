// SPDX-License-Identifier: MIT
// What the three target constraints share: the block's first rows, the list of weighted targets and its published
// interface.
#pragma once

#include "host/core/param_block.h"
#include "host/core/published.h"
#include "host/scene/node.h"
#include "plugin/frame/class_table.h"

namespace tavrilon {

/// Rows 0 to 2 are the same in all three.
enum TargetParam : corvanta::ParamID { kWeight = 0, kTargetList = 1, kRelative = 2 };

/// Control, block at reference 0, lock and script interface of a constraint. An empty entry is the world.
class TargetConstraint : public corvanta::Control, public corvanta::ILockedTrackImp {
 public:
  TargetConstraint(TavrilonClass row, const corvanta::ParamBlockDesc2& desc, const corvanta::FPInterfaceDesc& published,
                   bool loading);
  corvanta::SClass_ID SuperClassID() const final { return DescOf(row_).superClass; }
  corvanta::Class_ID ClassID() const final { return DescOf(row_).classId; }
  corvanta::WStr GetClassName() const final { return DescOf(row_).className; }

  int GetNumTargets() const { return block_ ? block_->Count(kTargetList) : 0; }
  /// Null for the world and beyond the end.
  corvanta::INode* GetNode(int i) const;
  /// 0 beyond the end.
  float GetWeight(int i, corvanta::TimeValue t) const;
  /// Undoable. False beyond the end.
  bool SetWeight(int i, float weight, corvanta::TimeValue t);
  /// Null stands for the world. A target that depends on this constraint and one that is in the list already are
  /// refused. Undoable.
  virtual bool AppendTarget(corvanta::INode* target, float weight);
  /// Undoable. False beyond the end.
  virtual bool DeleteTarget(int i);

  corvanta::ParamBlock2* GetParamBlock() const { return block_; }

  int NumRefs() const override { return 1; }
  corvanta::ReferenceTarget* GetReference(int which) const override { return which == 0 ? block_ : nullptr; }
  int NumSubs() const override { return 1; }
  corvanta::Animatable* SubAnim(int i) override { return GetReference(i); }
  corvanta::WStr SubAnimName(int i) override { return i == 0 ? L"Parameters" : L""; }
  int SubNumToRefNum(int i) override { return i; }
  using Animatable::GetInterface;
  void* GetInterface(uint32_t request) override {
    return request == corvanta::I_LOCKED ? static_cast<corvanta::ILockedTrack*>(this) : nullptr;
  }
  int NumInterfaces() const override { return 1; }
  corvanta::FPInterface* GetInterfaceAt(int) override { return &published_; }

 protected:
  void SetReference(int which, corvanta::ReferenceTarget* target) override {
    if (which == 0) block_ = static_cast<corvanta::ParamBlock2*>(target);
  }
  /// The list is about to count otherwise. What evaluation took from the targets of before belongs to the undo of that.
  virtual void RecordTaken() {}
  /// May `target` join the list?
  bool CanAppend(corvanta::INode* target) const;
  bool HasTarget(corvanta::INode* target) const;

  corvanta::ParamBlock2* block_ = nullptr;

 private:
  friend class TargetListHook;
  class Published final : public corvanta::FPMixinInterface {
   public:
    Published(TargetConstraint& owner, const corvanta::FPInterfaceDesc& desc) : owner_(owner), desc_(desc) {}
    const corvanta::FPInterfaceDesc& GetDesc() const override { return desc_; }
    corvanta::FPStatus Invoke(int id, corvanta::TimeValue t, corvanta::FPValue& result,
                              std::span<const corvanta::FPValue> args) override;

   private:
    TargetConstraint& owner_;
    const corvanta::FPInterfaceDesc& desc_;
  };
  TavrilonClass row_;
  Published published_;
};

/// For the rows of target lists: whoever changes the list, by the interface or by the parameter.
class TargetListHook final : public corvanta::PBAccessor {
 public:
  void TabChanged(corvanta::TabChange change, corvanta::ParamBlock2&, corvanta::ReferenceTarget* owner,
                  corvanta::ParamID, int, int) override {
    if (owner && change != corvanta::TabChange::EntryLost) static_cast<TargetConstraint*>(owner)->RecordTaken();
  }
};
extern TargetListHook targetListHook;

/// The table of the interface "constraints", with the ID of the class.
corvanta::FPInterfaceDesc ConstraintInterface(TavrilonClass row);

}  // namespace tavrilon
