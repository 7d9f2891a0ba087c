// SPDX-License-Identifier: MIT
#include "plugin/constraints/wrapping_control.h"

#include "host/core/hold.h"
#include "host/core/remap.h"
#include "host/scene/core_interface.h"
#include "plugin/frame/find.h"
#include "plugin/frame/lock_chunk.h"
#include "plugin/frame/loop_validator.h"

namespace tavrilon {

using namespace corvanta;

RestCapture restCapture;

// Undo brings back what was captured. Clearing the target or the switch captures nothing.
void RestCapture::Set(ParamBlock2& block, ReferenceTarget* owner, ParamID id, int tab, TimeValue) {
  if (!owner || theHold.UndoRunning() || theHold.RedoRunning()) return;
  const bool on = IsTargetType(block.GetParamDef(id)->type) ? block.GetINode(id, 0, tab) != nullptr : block.GetBool(id);
  if (on) static_cast<WrappingControl*>(owner)->CaptureRest();
}

WrappingControl::WrappingControl(TavrilonClass row, const ParamBlockDesc2& desc, bool loading)
    : row_(row), published_(*this) {
  if (loading) return;
  BindReference(kBlockRef, new ParamBlock2(desc));
  BindReference(kInnerRef, NewDefaultMatrix3Controller());
}

// The wrapped controller and the target.

bool WrappingControl::SetInner(Control* control) {
  if (control && control->SuperClassID() != kMatrixControlSuper) return false;
  if (ReplaceReference(kInnerRef, control) != REF_SUCCEED) return false;
  NotifyDependents(FOREVER, PART_ALL, REFMSG_CONTROLREF_CHANGE);
  NotifyDependents();
  return true;
}

bool WrappingControl::SetTarget(INode* target) {
  if (target && !MayFollow(this, target)) return false;
  const HoldScope hold;
  return SetWeakNode(kTargetParam, target);
}

void WrappingControl::Copy(Control* from) {
  if (locked_ || !from || from == this) return;
  if (from->SuperClassID() == SuperClassID() && from->ClassID() == ClassID()) {
    auto* same = static_cast<WrappingControl*>(from);
    if (same->block_) ReplaceReference(kBlockRef, CloneRefHierarchy(same->block_));
    SetInner(same->inner_);
    SetLocked(same->locked_);
  } else {
    SetInner(from);
  }
}

Matrix3 WrappingControl::ParentTM(TimeValue t) const {
  INode* node = FindOwnerNode(this);
  if (!node) return lastParent_;
  if (node->GetTMController() == this) return node->GetParentTM(t);
  node->GetNodeTM(t);
  return lastParent_;
}

Matrix3 WrappingControl::InnerTM(TimeValue t, Matrix3 parent, Interval& valid) const {
  if (inner_) inner_->GetValue(t, parent, valid, CTRL_RELATIVE);
  return parent;
}

// References, state, files.

ReferenceTarget* WrappingControl::GetReference(int which) const {
  if (which == kBlockRef) return block_;
  return which == kInnerRef ? inner_ : nullptr;
}

void WrappingControl::SetReference(int which, ReferenceTarget* target) {
  if (which == kBlockRef) block_ = static_cast<ParamBlock2*>(target);
  if (which == kInnerRef) inner_ = static_cast<Control*>(target);
}

bool WrappingControl::CanAssignController(int subAnim) {
  return subAnim == kInnerRef && CompositeControl::CanAssignController(0);
}

bool WrappingControl::AssignController(Control* control, int subAnim) {
  return CanAssignController(subAnim) && SetInner(control);
}

void* WrappingControl::GetInterface(uint32_t request) {
  if (request == kRequest) return static_cast<WeakRefOwner*>(this);
  return CompositeControl::GetInterface(request);
}

void WrappingControl::CopyStateFrom(ReferenceTarget& source, RemapDir&) {
  locked_ = static_cast<WrappingControl&>(source).locked_;
}

IOResult WrappingControl::Save(ISave& save) { return SaveLockChunk(save, locked_); }

IOResult WrappingControl::Load(ILoad& load) { return LoadLockChunk(load, locked_); }

// Script interface.

namespace {

enum FunctionID { kSetTarget = 0, kGetTarget = 1 };

FPInterfaceDesc SpaceInterface(TavrilonClass row) {
  const Class_ID id = ClassIdOf(row);
  return FPInterfaceDesc(
      {id.a, id.b}, L"interface",
      {{kSetTarget, L"SetTarget", FPType::Bool, {{L"target", FPType::Node}, {L"owner", FPType::RefTarg, FPValue()}}},
       {kGetTarget, L"GetTarget", FPType::RefTarg, {{L"asController", FPType::Bool, FPValue(false)}}}});
}

const FPInterfaceDesc& InterfaceOf(TavrilonClass row) {
  static const FPInterfaceDesc root = SpaceInterface(TavrilonClass::RootConstraint);
  static const FPInterfaceDesc space = SpaceInterface(TavrilonClass::RotationSpace);
  return row == TavrilonClass::RootConstraint ? root : space;
}

}  // namespace

WrappingControl::Published::Published(WrappingControl& owner) : owner_(owner), desc_(InterfaceOf(owner.row_)) {}

FPStatus WrappingControl::Published::Invoke(int id, TimeValue, FPValue& result, std::span<const FPValue> args) {
  switch (id) {
    case kSetTarget:
      result = owner_.SetTarget(FPArg(args, 0).ToNode());
      return FPStatus::OK;
    case kGetTarget: {
      INode* target = owner_.GetTarget();
      const bool asController = FPArg(args, 0).ToInt() != 0;
      result = asController && target ? TargetValue(target->GetTMController()) : TargetValue(target);
      return FPStatus::OK;
    }
    default:
      return FPStatus::NoSuchFunction;
  }
}

}  // namespace tavrilon
