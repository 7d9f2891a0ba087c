// SPDX-License-Identifier: MIT
// The IK/FK chain of one limb. It sits on a helper node and holds the solver's parameters; joints, goal, goal parent
// and target carry an IKFKControl each. The chain reads the joints' FK controllers, solves, blends, and keeps the
// answer for all joints until something that it read changes.
#pragma once

#include <vector>

#include "plugin/frame/figure_rest.h"
#include "plugin/frame/weak_ref_owner.h"
#include "plugin/solvers/chain_params.h"
#include "plugin/solvers/ikfk_chain_interface.h"
#include "plugin/solvers/limb.h"

namespace tavrilon {

class IKFKControl;

class IKFKChain final : public corvanta::Control,
                        public corvanta::ILockedTrackImp,
                        public IIKFKChain,
                        public WeakRefOwner,
                        public FigureRest {
 public:
  /// Who started the message that the chain is passing on.
  enum Origin : int { kNone = 0, kOtherJoint = 1, kLastJoint = 2, kGoalOrTarget = 3, kSpaceNode = 4 };

  explicit IKFKChain(bool loading = false);
  ~IKFKChain() override = default;

  static constexpr corvanta::Class_ID kClassId = ClassIdOf(TavrilonClass::IKFKChain);
  corvanta::SClass_ID SuperClassID() const override { return corvanta::kMatrixControlSuper; }
  corvanta::Class_ID ClassID() const override { return kClassId; }
  corvanta::WStr GetClassName() const override { return DescOf(TavrilonClass::IKFKChain).className; }
  static const corvanta::ParamBlockDesc2& BlockDesc();
  /// Null only while loading.
  corvanta::ParamBlock2* GetParamBlock() const { return block_; }

  // Control. The chain's own value is the world matrix of the last joint; it cannot be set.
  void GetValue(corvanta::TimeValue t, corvanta::ValueRef value, corvanta::Interval& valid,
                corvanta::GetSetMethod method) override;
  void SetValue(corvanta::TimeValue, corvanta::ValueRef, bool, corvanta::GetSetMethod) override {}

  // Joints.
  int NumJoints() const { return block_ ? block_->Count(ikfk_chain::kJoints) : 0; }
  /// World matrix of joint `i` at `t`, with its scale; `tm` stays as it is beyond the last joint.
  void GetJoint(int i, corvanta::TimeValue t, corvanta::Matrix3& tm, corvanta::Interval& valid);
  /// The same as solved: local rotation, local place and world matrix. A default pose beyond the last joint.
  JointPose GetJointPose(int i, corvanta::TimeValue t);
  /// The factor of automatic stretch at `t`, 1 for none.
  float GetStretch(corvanta::TimeValue t);
  /// What `rotation_space` turns the FK of joint 0 by at `t`; identity while it is not in use.
  corvanta::Quat GetSpaceQuat(corvanta::TimeValue t) const;
  /// World matrix that joint 0 hangs on.
  corvanta::Matrix3 GetChainParentTM(corvanta::TimeValue t) const;
  /// The control of a slot when the slot's node is driven by this chain; else null.
  IKFKControl* JointControl(int i) const { return ControlOf(corvanta::ParamID{ikfk_chain::kJoints}, i); }
  IKFKControl* ControlOf(corvanta::ParamID id, int tab = 0) const;

  // What is in use.
  bool HasGoalParent() const;
  bool HasTarget() const;
  bool HasSpace() const;
  /// `ikfk_blend` as the solve takes it: 0 in figure mode, while matching is suspended and without a goal.
  float GetBlend(corvanta::TimeValue t, corvanta::Interval& valid) const;
  float GetBlend(corvanta::TimeValue t) const {
    corvanta::Interval valid = corvanta::FOREVER;
    return GetBlend(t, valid);
  }

  // IIKFKChain
  void FK() override;
  void IK() override;
  void MatchFK(bool toIK) override;
  void MatchIK(bool toFK) override;
  void MatchManualStretch() override;
  void MatchPreferredRotations() override;
  /// Makes the rest pose of the joints the one that IK bends from, and puts goal and target on it. To be called while
  /// figure mode is still on, right before it is left: the controls then take the writes as their rest. Undoable.
  void RefitRest(corvanta::TimeValue t) override;
  /// A straight limb of three joints has no plane to bend in: its middle joint then prefers a bend of five degrees,
  /// a negative turn about its Z. Undoable.
  void GuaranteeBend(corvanta::TimeValue t);

  /// Matching as the controls use it while they are written to. No step of its own. Undoable.
  /// `toIK`: the pose of full IK instead of the one that is seen. `onlyJoint` -1 for all.
  void MatchFKPose(corvanta::TimeValue t, bool toIK, bool withLast, int onlyJoint = -1);
  /// `toFK`: the pose of FK. `moveGoal`, `moveBend`: the goal, and the target or swivel.
  void MatchIKPose(corvanta::TimeValue t, bool toFK, bool moveGoal, bool moveBend);

  /// While on, the chain solves as FK and nothing matches by itself: for code that writes whole poses. Nests by
  /// counter.
  void SuspendMatch(bool on);
  bool IsMatchSuspended() const { return suspendMatch_ > 0 || writing_ > 0; }
  Origin NotifyOrigin() const { return notifyOrigin_; }
  /// How often the limb was solved, for tests.
  int SolveCount() const { return solveCount_; }

  /// Nodes of the parameters were written: those that left get their own controller back, new ones are wrapped.
  void NodesChanged(corvanta::ParamID id);
  /// Forgets the solved pose, without telling anyone.
  void MarkDirty() { dirty_ = true; }

  // References and sub-animatables.
  int NumRefs() const override { return 1; }
  corvanta::ReferenceTarget* GetReference(int which) const override { return which == 0 ? block_ : nullptr; }
  void AddFootprint(corvanta::EvaluationFootprint& footprint) const override {
    footprint.Add(joints_);
    footprint.Add(poses_);
  }
  int NumSubs() const override { return 1; }
  corvanta::Animatable* SubAnim(int i) override { return GetReference(i); }
  corvanta::WStr SubAnimName(int i) override { return i == 0 ? L"Parameters" : L""; }
  int SubNumToRefNum(int i) override { return i; }
  void* GetInterface(uint32_t request) override;
  corvanta::FPInterface* GetInterface(const corvanta::Interface_ID& id) override;
  int NumInterfaces() const override { return 1; }
  corvanta::FPInterface* GetInterfaceAt(int i) override { return i == 0 ? static_cast<IIKFKChain*>(this) : nullptr; }
  corvanta::RefResult NotifyRefChanged(const corvanta::Interval& interval, corvanta::ReferenceTarget* target,
                                       corvanta::PartID& part, corvanta::RefMessage message, bool propagate) override;
  corvanta::ReferenceTarget* Clone(corvanta::RemapDir& remap) override;
  void CopyStateFrom(corvanta::ReferenceTarget& source, corvanta::RemapDir& remap) override;
  corvanta::IOResult Save(corvanta::ISave& save) override;
  corvanta::IOResult Load(corvanta::ILoad& load) override;
  void PostLoad() override { RememberNodes(); }
  void WeakTargetNotice(corvanta::ParamBlock2& block, corvanta::ParamID id, int tab,
                        const corvanta::RefNotice& notice) override;

 protected:
  void SetReference(int which, corvanta::ReferenceTarget* target) override;
  void LinkAdded(corvanta::ReferenceMaker* maker) override;
  corvanta::ReferenceTarget* WeakOwner() override { return this; }
  corvanta::ParamBlock2* GetWeakBlock() const override { return block_; }

 private:
  /// A node that the chain has wrapped, and as what.
  struct Adopted {
    corvanta::AnimHandle node = 0;
    int type = 0, index = 0;
    bool operator==(const Adopted&) const = default;
  };

  corvanta::INode* NodeOf(corvanta::ParamID id, int tab = 0) const {
    return block_ ? block_->GetINode(id, 0, tab) : nullptr;
  }
  void EnsureSolved(corvanta::TimeValue t) {
    if (dirty_ || !valid_.Contains(t)) SolveSeen(t);
  }
  void SolveSeen(corvanta::TimeValue t);
  void Solve(corvanta::TimeValue t, float blend, int fixedJoint);
  /// Solves with a blend that is not the chain's own; what comes next solves anew.
  void SolveOnce(corvanta::TimeValue t, float blend, int fixedJoint = -1);
  void GatherJoints(corvanta::TimeValue t);
  void GatherIK(corvanta::TimeValue t, LimbIn& in);
  corvanta::Matrix3 ParentTMAt(corvanta::TimeValue t, corvanta::Interval& valid) const;
  corvanta::Matrix3 GoalBaseTM(corvanta::TimeValue t, corvanta::Interval& valid) const;
  corvanta::Quat SpaceQuatAt(corvanta::TimeValue t, const corvanta::Matrix3& parentTM, corvanta::Interval& valid) const;
  float AimTwist(corvanta::TimeValue t);
  bool InFigureMode() const;

  corvanta::INode* OwnNode() const;
  void CollectNodes(std::vector<Adopted>& nodes) const;
  void AdoptNodes();
  void RememberNodes();
  void Adopt(const Adopted& entry);
  void Release(corvanta::INode* node);
  void CheckGoalParent();
  void StoreSpaceOffset(corvanta::TimeValue t);

  void MoveGoal(corvanta::TimeValue t, const corvanta::Matrix3& end);
  bool IKGivesRest(corvanta::TimeValue t);
  void PreferPose(corvanta::TimeValue t, std::vector<JointPose> poses);

  // What evaluation reads and keeps comes first.
  corvanta::ParamBlock2* block_ = nullptr;
  corvanta::Interval valid_ = corvanta::NEVER;
  bool dirty_ = true;
  bool solving_ = false;
  Origin notifyOrigin_ = kNone;
  int suspendMatch_ = 0;
  float stretch_ = 1;
  corvanta::Matrix3 parentTM_;
  std::vector<LimbJoint> joints_;
  std::vector<JointPose> poses_;
  LimbWork work_;
  int solveCount_ = 0;
  std::vector<Adopted> adopted_;
  bool adopting_ = false;
  int writing_ = 0;
};

/// The chain on a node's transform; null for null and for other nodes.
IKFKChain* FindIKFKChain(const corvanta::INode* node);

}  // namespace tavrilon
