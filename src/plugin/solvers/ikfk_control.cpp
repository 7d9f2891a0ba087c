// SPDX-License-Identifier: MIT
// Reading, references and storing. Writing is in ikfk_control_write.cpp, drawing in ikfk_control_display.cpp.
#include "plugin/solvers/ikfk_control.h"

#include "host/anim/class_ids.h"
#include "host/core/remap.h"
#include "host/scene/node.h"
#include "plugin/frame/find.h"
#include "plugin/frame/lock_chunk.h"
#include "plugin/solvers/ikfk_chain.h"
#include "plugin/solvers/ikfk_link.h"

namespace tavrilon {

using namespace corvanta;
using namespace ikfk_control;

namespace {

/// Evaluation never looks into the block for what a control is.
class ControlCache final : public PBAccessor {
 public:
  void Set(ParamBlock2&, ReferenceTarget* owner, ParamID, int, TimeValue) override {
    if (owner) static_cast<IKFKControl*>(owner)->ReadBlock();
  }
} cache;

// No rollup shows them: a chain writes them.
constexpr int kHidden = -1;

const ParamRow kRows[] = {
    {kChainNode, L"ikfkchain_node", ParamType::Node, kNone, {}, {}, L"", kHidden},
    {kType, L"type", ParamType::Int, kNone, 0, {0, 3}, L"", kHidden, &cache},
    {kIndex, L"index", ParamType::Int, kNone, 0, {}, L"", kHidden, &cache},
};

ParamID SlotOf(int type) {
  static constexpr ParamID kSlots[] = {ikfk_chain::kJoints, ikfk_chain::kGoal, ikfk_chain::kGoalParent,
                                       ikfk_chain::kTarget};
  return type >= 0 && type < 4 ? kSlots[type] : ParamID{-1};
}

}  // namespace

const ParamBlockDesc2& IKFKControl::BlockDesc() {
  static const ParamBlockDesc2 desc(0, L"params", kRows);
  return desc;
}

ReferenceTarget* CreateIKFKControl(bool loading) { return new IKFKControl(loading); }

IKFKControl::IKFKControl(bool loading) {
  if (!loading) BindReference(kBlockRef, new ParamBlock2(BlockDesc()));
}

void IKFKControl::ReadBlock() {
  if (!block_) return;
  type_ = block_->GetInt(kType);
  index_ = block_->GetInt(kIndex);
}

IKFKControl* FindIKFKControl(const INode* node) {
  Control* control = node ? node->GetTMController() : nullptr;
  return IsOfClass(control, TavrilonClass::IKFKControl) ? static_cast<IKFKControl*>(control) : nullptr;
}

// A copy of a node refers to the chain as well, but the chain does not know it.
IKFKChain* IKFKControl::GetChain() const {
  IKFKChain* chain = FindIKFKChain(GetChainNode());
  const ParamBlock2* slots = chain ? chain->GetParamBlock() : nullptr;
  const ParamID slot = SlotOf(type_);
  const int tab = type_ == kJoint ? index_ : 0;
  if (!slots || tab < 0 || tab >= slots->Count(slot)) return nullptr;
  const INode* node = slots->GetINode(slot, 0, tab);
  return node && node->GetTMController() == this ? chain : nullptr;
}

bool IKFKControl::LinkActive() const {
  if (!link_ || type_ == kJoint) return false;
  if (type_ != kGoal) return true;
  const IKFKChain* chain = GetChain();
  return !chain || !chain->HasGoalParent();
}

// Reading.

Matrix3 IKFKControl::GetBaseTM(TimeValue t, Interval& valid) const {
  Matrix3 tm;
  const INode* node = FindOwnerNode(this);
  INode* parent = node ? node->GetParentNode() : nullptr;
  if (parent) tm = parent->GetNodeTM(t, valid);
  if (LinkActive()) link_->GetMatrix(t, tm, valid);
  return tm;
}

Matrix3 IKFKControl::GetFKValue(TimeValue t, Interval& valid) const {
  Matrix3 tm;
  if (fk_) fk_->GetValue(t, tm, valid, CTRL_RELATIVE);
  return tm;
}

Matrix3 IKFKControl::GetReferenceTM(TimeValue t) const {
  IKFKChain* chain = GetChain();
  if (!chain) {
    INode* node = FindOwnerNode(this);
    return node ? node->GetParentTM(t) : Matrix3();
  }
  if (type_ == kJoint && index_ >= 1) return chain->GetJointPose(index_ - 1, t).tm;
  Matrix3 tm = chain->GetChainParentTM(t);
  if (type_ == kJoint) return MakeMatrix(chain->GetSpaceQuat(t)) * tm;
  tm.SetTrans(chain->GetJointPose(0, t).tm.GetTrans());
  return tm;
}

void IKFKControl::GetValue(TimeValue t, ValueRef value, Interval& valid, GetSetMethod method) {
  if (type_ == kJoint) {
    if (IKFKChain* chain = GetChain()) return chain->GetJoint(index_, t, value.Matrix3(), valid);
  } else if (LinkActive()) {
    link_->GetMatrix(t, value.Matrix3(), valid);
  }
  if (fk_) fk_->GetValue(t, value, valid, method);
}

void* IKFKControl::GetInterface(uint32_t request) {
  if (request == I_LOCKED && fk_)
    if (void* lock = fk_->GetInterface(request)) return lock;
  return CompositeControl::GetInterface(request);
}

// References.

ReferenceTarget* IKFKControl::GetReference(int which) const {
  switch (which) {
    case kBlockRef:
      return block_;
    case kPreferredRef:
      return preferred_;
    case kFKRef:
      return fk_;
    case kLinkRef:
      return link_;
    default:
      return nullptr;
  }
}

namespace {

bool Fits(int which, const ReferenceTarget& target) {
  switch (which) {
    case IKFKControl::kPreferredRef:
      return target.SuperClassID() == kRotationControlSuper;
    case IKFKControl::kFKRef:
      return target.SuperClassID() == kMatrixControlSuper;
    case IKFKControl::kLinkRef:
      return IsOfClass(&target, TavrilonClass::IKFKLink);
    default:
      return false;
  }
}

}  // namespace

std::optional<bool> IKFKControl::AcceptsReference(int which, const ReferenceTarget& target) const {
  if (which < kPreferredRef || which > kLinkRef) return std::nullopt;
  return Fits(which, target);
}

void IKFKControl::SetReference(int which, ReferenceTarget* target) {
  Control* control = target ? target->AsControl() : nullptr;
  switch (which) {
    case kBlockRef:
      block_ = static_cast<ParamBlock2*>(target);
      ReadBlock();
      break;
    case kPreferredRef:
      preferred_ = control;
      break;
    case kFKRef:
      fk_ = control;
      break;
    case kLinkRef:
      link_ = static_cast<IKFKLink*>(control);
      break;
    default:
      break;
  }
}

Animatable* IKFKControl::SubAnim(int i) {
  if (i == kLinkRef && !LinkActive()) return nullptr;
  return GetReference(i);
}

WStr IKFKControl::SubAnimName(int i) {
  static const wchar_t* const kNames[] = {L"Parameters", L"Preferred Rotation", L"", L"Links"};
  static const wchar_t* const kFKNames[] = {L"FK Sub-Control", L"IK Goal", L"IK Goal Parent", L"IK Target"};
  if (i == kFKRef) return type_ >= 0 && type_ < 4 ? kFKNames[type_] : L"";
  return i >= 0 && i < 4 ? kNames[i] : L"";
}

bool IKFKControl::AssignController(Control* control, int subAnim) {
  if (!CanAssignController(subAnim) || (control && !Fits(subAnim, *control))) return false;
  if (ReplaceReference(subAnim, control) != REF_SUCCEED) return false;
  NotifyDependents(FOREVER, PART_ALL, REFMSG_CONTROLREF_CHANGE);
  NotifyDependents();
  return true;
}

// What the chain tells comes by way of its node and the block. While it passes on the change of a node, goal, goal
// parent and target are left alone: they do not depend on the joints.
RefResult IKFKControl::NotifyRefChanged(const Interval&, ReferenceTarget* target, PartID& part, RefMessage message,
                                        bool) {
  if (target != block_) return REF_SUCCEED;
  if (message != REFMSG_CHANGE) return REF_STOP;
  part = PART_TM;
  if (type_ == kJoint) return REF_SUCCEED;
  const IKFKChain* chain = FindIKFKChain(GetChainNode());
  return chain && chain->NotifyOrigin() != IKFKChain::kNone ? REF_STOP : REF_SUCCEED;
}

// Clone and load.

ReferenceTarget* IKFKControl::Clone(RemapDir& remap) {
  auto* clone = static_cast<IKFKControl*>(CompositeControl::Clone(remap));
  // The chain's node may be cloned later than this one.
  remap.AddPostPatchProc([clone](RemapDir& map) {
    ReferenceTarget* chain = map.Find(clone->GetChainNode());
    if (chain) clone->block_->LoadTarget(kChainNode, 0, chain);
  });
  return clone;
}

void IKFKControl::CopyStateFrom(ReferenceTarget& source, RemapDir&) {
  locked_ = static_cast<IKFKControl&>(source).locked_;
}

IOResult IKFKControl::Save(ISave& save) { return SaveLockChunk(save, locked_); }

IOResult IKFKControl::Load(ILoad& load) { return LoadLockChunk(load, locked_); }

}  // namespace tavrilon
