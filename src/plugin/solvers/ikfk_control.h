// SPDX-License-Identifier: MIT
// The transform controller that a chain puts on its joints, goal, goal parent and target. It keeps the controller that
// was there before as its FK controller: reads of a joint go to the chain's answer, writes go to the FK controller.
#pragma once

#include "host/anim/composite_control.h"
#include "host/core/param_block.h"
#include "plugin/frame/class_table.h"
#include "plugin/frame/loop_validator.h"
#include "plugin/solvers/chain_params.h"

namespace tavrilon {

class IKFKChain;
class IKFKLink;

/// Key operations, lock, and the position, rotation and scale controllers are those of the FK controller. Without a
/// chain that lists its node the control is its FK controller.
class IKFKControl final : public corvanta::CompositeControl {
 public:
  enum Reference : int { kBlockRef = 0, kPreferredRef = 1, kFKRef = 2, kLinkRef = 3 };

  explicit IKFKControl(bool loading = false);

  static constexpr corvanta::Class_ID kClassId = ClassIdOf(TavrilonClass::IKFKControl);
  corvanta::SClass_ID SuperClassID() const override { return corvanta::kMatrixControlSuper; }
  corvanta::Class_ID ClassID() const override { return kClassId; }
  corvanta::WStr GetClassName() const override { return DescOf(TavrilonClass::IKFKControl).className; }
  static const corvanta::ParamBlockDesc2& BlockDesc();
  corvanta::ParamBlock2* GetParamBlock() const { return block_; }

  int Type() const { return type_; }
  int Index() const { return index_; }
  Control* GetFK() const { return fk_; }
  Control* GetPreferred() const { return preferred_; }
  IKFKLink* GetLink() const { return link_; }
  corvanta::INode* GetChainNode() const { return block_ ? block_->GetINode(ikfk_control::kChainNode) : nullptr; }
  /// The chain when it lists the node of this control; else null.
  IKFKChain* GetChain() const;
  /// May the link act? On a goal without an active goal parent, on a goal parent and on a target.
  bool LinkActive() const;
  /// Takes `control` as the FK controller. Undoable.
  bool SetFK(Control* control) { return ReplaceReference(kFKRef, control) == corvanta::REF_SUCCEED; }

  /// The world matrix in front of the FK controller of a goal, goal parent or target: the link's, or the node's
  /// parent's.
  corvanta::Matrix3 GetBaseTM(corvanta::TimeValue t, corvanta::Interval& valid) const;
  /// The FK controller's own matrix, relative to its base.
  corvanta::Matrix3 GetFKValue(corvanta::TimeValue t, corvanta::Interval& valid) const;
  /// The space in which a pose measures this control: of a joint its parent joint as solved, of joint 0 the chain's
  /// parent with the rotation space, of the others the chain's parent at the place of the first joint.
  corvanta::Matrix3 GetReferenceTM(corvanta::TimeValue t) const;

  // Control
  void GetValue(corvanta::TimeValue t, corvanta::ValueRef value, corvanta::Interval& valid,
                corvanta::GetSetMethod method) override;
  /// A packet for the FK controller. With `auto_ikfk_match` FK or IK follows. Undoable.
  void SetValue(corvanta::TimeValue t, corvanta::ValueRef value, bool commit, corvanta::GetSetMethod method) override;
  bool ChangeParents(corvanta::TimeValue t, const corvanta::Matrix3& oldParent, const corvanta::Matrix3& newParent,
                     const corvanta::Matrix3& tm) override;
  Control* GetPositionController() override { return fk_ ? fk_->GetPositionController() : nullptr; }
  Control* GetRotationController() override { return fk_ ? fk_->GetRotationController() : nullptr; }
  Control* GetScaleController() override { return fk_ ? fk_->GetScaleController() : nullptr; }
  bool SetPositionController(Control* c) override { return fk_ && fk_->SetPositionController(c); }
  bool SetRotationController(Control* c) override { return fk_ && fk_->SetRotationController(c); }
  bool SetScaleController(Control* c) override { return fk_ && fk_->SetScaleController(c); }
  bool InheritsPos() const override { return !fk_ || fk_->InheritsPos(); }
  uint32_t GetInheritanceFlags() const override { return fk_ ? fk_->GetInheritanceFlags() : 0; }
  bool IsReplaceable() const override { return !fk_ || fk_->IsReplaceable(); }
  bool CanOverwrite() const override { return !fk_ || fk_->CanOverwrite(); }
  /// The line from the goal to the first joint, or from the target to the second.
  void Display(corvanta::TimeValue t, corvanta::INode* node, corvanta::GraphicsWindow& view) override;
  void GetWorldBoundBox(corvanta::TimeValue t, corvanta::INode* node, corvanta::Box3& box) override;
  using CompositeControl::GetInterface;
  void* GetInterface(uint32_t request) override;
  /// Only a joint reads the chain: goal, goal parent and target may be followed by what the chain follows.
  bool ReadsReference(int which) const override { return which != kBlockRef || type_ == ikfk_control::kJoint; }

  // References and sub-animatables.
  int NumRefs() const override { return 4; }
  corvanta::ReferenceTarget* GetReference(int which) const override;
  std::optional<bool> AcceptsReference(int which, const corvanta::ReferenceTarget& target) const override;
  int NumSubs() const override { return 4; }
  corvanta::Animatable* SubAnim(int i) override;
  corvanta::WStr SubAnimName(int i) override;
  int SubNumToRefNum(int i) override { return i; }
  bool CanAssignController(int subAnim) override { return subAnim >= kPreferredRef && subAnim <= kLinkRef; }
  bool AssignController(Control* control, int subAnim) override;
  corvanta::RefResult NotifyRefChanged(const corvanta::Interval& interval, corvanta::ReferenceTarget* target,
                                       corvanta::PartID& part, corvanta::RefMessage message, bool propagate) override;
  corvanta::ReferenceTarget* Clone(corvanta::RemapDir& remap) override;
  void CopyStateFrom(corvanta::ReferenceTarget& source, corvanta::RemapDir& remap) override;
  corvanta::IOResult Save(corvanta::ISave& save) override;
  corvanta::IOResult Load(corvanta::ILoad& load) override;
  void PostLoad() override { ReadBlock(); }

  /// Copies what evaluation reads out of the block. Called after every write to it.
  void ReadBlock();

 protected:
  int NumParts() const override { return 1; }
  Control* Part(int i) const override { return i == 0 ? fk_ : nullptr; }
  corvanta::SClass_ID PartSuperClass(int) const override { return corvanta::kMatrixControlSuper; }
  void SetReference(int which, corvanta::ReferenceTarget* target) override;

 private:
  void SetJoint(IKFKChain& chain, corvanta::TimeValue t, corvanta::SetXFormPacket& packet, bool commit,
                corvanta::GetSetMethod method);
  bool WantsMatch(const IKFKChain& chain, const corvanta::SetXFormPacket& packet) const;
  bool LineOf(corvanta::TimeValue t, corvanta::INode* node, corvanta::Point3 (&line)[2]) const;

  // What evaluation reads comes first.
  corvanta::ParamBlock2* block_ = nullptr;
  Control* fk_ = nullptr;
  Control* preferred_ = nullptr;
  IKFKLink* link_ = nullptr;
  int type_ = 0;
  int index_ = 0;
};

/// The control on a node's transform; null for null and for other nodes.
IKFKControl* FindIKFKControl(const corvanta::INode* node);

}  // namespace tavrilon
