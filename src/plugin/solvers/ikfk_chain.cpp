// SPDX-License-Identifier: MIT
// Parameters, references, messages and storing. Evaluation is in ikfk_chain_solve.cpp, the wrapping of nodes in
// ikfk_chain_nodes.cpp, matching in ikfk_match.cpp.
#include "plugin/solvers/ikfk_chain.h"

#include "host/anim/class_ids.h"
#include "host/core/remap.h"
#include "host/scene/core_interface.h"
#include "plugin/frame/find.h"
#include "plugin/frame/lock_chunk.h"
#include "plugin/frame/loop_validator.h"
#include "plugin/solvers/ikfk_control.h"

namespace tavrilon {

using namespace corvanta;
using namespace ikfk_chain;

namespace {

/// Runs after every write of a node, by code, script, undo and list edits alike.
class ChainNodeHook final : public PBAccessor {
 public:
  void Set(ParamBlock2&, ReferenceTarget* owner, ParamID id, int, TimeValue) override {
    if (owner) static_cast<IKFKChain*>(owner)->NodesChanged(id);
  }
  void TabChanged(TabChange change, ParamBlock2&, ReferenceTarget* owner, ParamID id, int, int) override {
    if (owner && change != TabChange::EntryLost) static_cast<IKFKChain*>(owner)->NodesChanged(id);
  }
} nodeHook;

/// A goal parent moves the goal, so it stands above it, and nothing of its own hangs on the chain.
class IKFKChainValidator final : public PBValidator {
 public:
  bool Validate(ReferenceTarget* owner, ParamID, ReferenceTarget* candidate) override {
    INode* node = candidate ? candidate->AsNode() : nullptr;
    if (!node) return false;
    const INode* goal = static_cast<IKFKChain*>(owner)->GetWeakNode(kGoal);
    if (goal && (goal == node || !node->IsAncestorOf(goal))) return false;
    return MayFollow(owner, node);
  }
} goalParentValidator;

/// The solved pose goes with every write, silent ones too.
class ChainDirtyHook final : public PBAccessor {
 public:
  void Set(ParamBlock2&, ReferenceTarget* owner, ParamID, int, TimeValue) override {
    if (owner) static_cast<IKFKChain*>(owner)->MarkDirty();
  }
} dirtyHook;

LoopValidator inputValidator;

/// What the chain reads must not hang on a joint.
class JointValidator final : public PBValidator {
 public:
  bool Validate(ReferenceTarget* owner, ParamID, ReferenceTarget* candidate) override {
    const auto& chain = static_cast<const IKFKChain&>(*owner);
    if (!candidate || !candidate->AsNode()) return false;
    for (const ParamID id : {ParamID{kGoal}, ParamID{kGoalParent}, ParamID{kTarget}, ParamID{kRotationSpaceNode}})
      if (TransformDependsOn(chain.GetWeakNode(id), candidate)) return false;
    return true;
  }
} jointValidator;

constexpr int kParameters = 0, kOptions = 1, kDisplay = 2;

// clang-format off
const ParamRow kRows[] = {
  // id, script name, type, flags, default, range, label, rollup, accessor, validator
  {kJoints, L"joints", ParamType::Node, kTab | kWeak, {}, {}, L"Joints", -1, &nodeHook, &jointValidator},
  {kGoal, L"goal", ParamType::Node, kWeak, {}, {}, L"Goal", -1, &nodeHook, &inputValidator},
  {kGoalParent, L"goal_parent", ParamType::Node, kWeak, {}, {}, L"Goal Parent", kOptions, &nodeHook, &goalParentValidator},
  {kGoalInbetweenParents, L"", ParamType::Node, kTab | kWeak, {}, {}, L"Goal Inbetween Parents", -1},
  {kTarget, L"target", ParamType::Node, kWeak, {}, {}, L"Target", kOptions, &nodeHook, &inputValidator},
  {kRotationSpaceNode, L"rotation_space_node", ParamType::Node, kWeak, {}, {}, L"Rotation Space Node", kOptions, &nodeHook, &inputValidator},
  {kIkfkBlend, L"ikfk_blend", ParamType::Percent, kAnimatable, 1.0f, {0, 100}, L"IKFK Blend", kParameters, &dirtyHook},
  {kManualStretch, L"manual_stretch", ParamType::Percent, kAnimatable, 1.0f, {0, 1000000}, L"Manual Stretch", kParameters, &dirtyHook},
  {kAutoStretch, L"auto_stretch", ParamType::Percent, kAnimatable, 0.0f, {0, 100}, L"Auto Stretch", kParameters, &dirtyHook},
  {kRotationSpace, L"rotation_space", ParamType::Percent, kAnimatable, 1.0f, {0, 100}, L"Rotation Space", kParameters, &dirtyHook},
  {kFlexionBias, L"flexion_bias", ParamType::Angle, kAnimatable, 0.0f, {}, L"Flexion Bias", kParameters, &dirtyHook},
  {kUseTarget, L"use_target", ParamType::Bool, kNone, true, {}, L"Use Target", kOptions, &dirtyHook},
  {kSwivelAngle, L"swivel_angle", ParamType::Angle, kAnimatable, 0.0f, {-1000000, 1000000}, L"Swivel Angle", kParameters, &dirtyHook},
  {kUseGoalParent, L"use_goal_parent", ParamType::Bool, kNone, true, {}, L"Use Goal Parent", kOptions, &dirtyHook},
  {kUseRotationSpace, L"use_rotation_space", ParamType::Bool, kNone, true, {}, L"", kOptions, &dirtyHook},
  {kAutoIkfkMatch, L"auto_ikfk_match", ParamType::Bool, kNone, false, {}, L"Auto IKFK Match", kOptions, &dirtyHook},
  {kLastJointIkRotation, L"last_joint_ik_rotation", ParamType::Bool, kNone, true, {}, L"Last Joint IK Rotation", kOptions, &dirtyHook},
  {kKeepInitialRotSpace, L"keep_initial_rot_space", ParamType::Bool, kNone, true, {}, L"Keep Initial Rot Space", kOptions, &dirtyHook},
  {kInitialRotSpaceOffset, L"initial_rot_space_offset", ParamType::Matrix3, kNone, {}, {}, L"Initial Rot Space Offset", -1, &dirtyHook},
  {kTargetDistPercent, L"target_dist_percent", ParamType::Percent, kNone, 0.5f, {0, 1000000}, L"Target Dist Percent", kOptions, &dirtyHook},
  {kParentSpace, L"parent_space", ParamType::Int, kNone, 1, {0, 1}, L"Parent Space", kOptions, &dirtyHook},
  {kIterations, L"iterations", ParamType::Int, kNone, 40, {0, 9999}, L"IK Iterations", kOptions, &dirtyHook},
  {kDisplayGoal, L"display_goal", ParamType::Int, kNone, 1, {0, 2}, L"Display Goal", kDisplay, &dirtyHook},
  {kDisplayTarget, L"display_target", ParamType::Int, kNone, 2, {0, 2}, L"Display Target", kDisplay, &dirtyHook},
  {kAffectHelpersDisplay, L"affect_helpers_display", ParamType::Bool, kNone, true, {}, L"Affect Helpers Display", kDisplay, &dirtyHook},
  {kSoftIk, L"soft_ik", ParamType::Percent, kAnimatable, 0.0f, {0, 100}, L"Soft IK", kParameters, &dirtyHook},
};
// clang-format on

}  // namespace

const ParamBlockDesc2& IKFKChain::BlockDesc() {
  static const ParamBlockDesc2 desc(0, L"params", kRows);
  return desc;
}

ReferenceTarget* CreateIKFKChain(bool loading) { return new IKFKChain(loading); }

IKFKChain::IKFKChain(bool loading) {
  if (!loading) BindReference(0, new ParamBlock2(BlockDesc()));
}

void IKFKChain::SetReference(int which, ReferenceTarget* target) {
  if (which != 0) return;
  block_ = static_cast<ParamBlock2*>(target);
  dirty_ = true;
}

void* IKFKChain::GetInterface(uint32_t request) {
  switch (request) {
    case I_LOCKED:
      return static_cast<ILockedTrack*>(this);
    case WeakRefOwner::kRequest:
      return static_cast<WeakRefOwner*>(this);
    case FigureRest::kRequest:
      return static_cast<FigureRest*>(this);
    default:
      return Control::GetInterface(request);
  }
}

FPInterface* IKFKChain::GetInterface(const Interface_ID& id) {
  return id == kId ? static_cast<IIKFKChain*>(this) : Control::GetInterface(id);
}

IKFKChain* FindIKFKChain(const INode* node) {
  Control* control = node ? node->GetTMController() : nullptr;
  return IsOfClass(control, TavrilonClass::IKFKChain) ? static_cast<IKFKChain*>(control) : nullptr;
}

// Messages. The controls refer to the chain's node, so what the chain tells reaches them and their nodes.

RefResult IKFKChain::NotifyRefChanged(const Interval&, ReferenceTarget* target, PartID& part, RefMessage message,
                                      bool) {
  if (target != block_ || message != REFMSG_CHANGE) return REF_SUCCEED;
  dirty_ = true;
  part = PART_TM;
  return REF_SUCCEED;
}

namespace {

IKFKChain::Origin OriginOf(ParamID id, int tab, int joints) {
  switch (id) {
    case kJoints:
      return tab == joints - 1 ? IKFKChain::kLastJoint : IKFKChain::kOtherJoint;
    case kGoal:
    case kGoalParent:
    case kTarget:
      return IKFKChain::kGoalOrTarget;
    case kRotationSpaceNode:
      return IKFKChain::kSpaceNode;
    default:
      return IKFKChain::kNone;
  }
}

}  // namespace

// A change of a node goes on as part of the same message, so that a link that has heard it is not bothered again.
void IKFKChain::WeakTargetNotice(ParamBlock2& block, ParamID id, int tab, const RefNotice& notice) {
  if (notice.message == REFMSG_CHANGE) {
    if (!(notice.part & PART_TM)) return;
    dirty_ = true;
    const Origin origin = OriginOf(id, tab, NumJoints());
    if (notifyOrigin_ != kNone || origin == kNone) return;
    notifyOrigin_ = origin;
    RefNotice told = notice;
    told.part = PART_TM;
    Propagate(told);
    notifyOrigin_ = kNone;
    return;
  }
  if (notice.message != REFMSG_TARGET_DELETED) return;
  dirty_ = true;
  WeakRefOwner::WeakTargetNotice(block, id, tab, notice);
}

void IKFKChain::SuspendMatch(bool on) {
  suspendMatch_ += on ? 1 : -1;
  dirty_ = true;
  NotifyDependents(FOREVER, PART_TM);
}

// Clone, save, load.

// A clone that came alone keeps the nodes of its source, but they stay with the chain that drives them.
ReferenceTarget* IKFKChain::Clone(RemapDir& remap) {
  auto* clone = static_cast<IKFKChain*>(Control::Clone(remap));
  // Behind the block's own patch, which points the slots at the clones.
  remap.AddPostPatchProc([clone](RemapDir&) { clone->RememberNodes(); });
  return clone;
}

void IKFKChain::CopyStateFrom(ReferenceTarget& source, RemapDir&) { locked_ = static_cast<IKFKChain&>(source).locked_; }

IOResult IKFKChain::Save(ISave& save) { return SaveLockChunk(save, locked_); }

IOResult IKFKChain::Load(ILoad& load) { return LoadLockChunk(load, locked_); }

}  // namespace tavrilon
