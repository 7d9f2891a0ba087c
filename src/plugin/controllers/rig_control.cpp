// SPDX-License-Identifier: MIT
// Evaluation, references and storing. Writing is in rig_control_write.cpp, the figure pose in rig_control_figure.cpp.
#include "plugin/controllers/rig_control.h"

#include "host/scene/core_interface.h"
#include "plugin/controllers/gimbal_proxy.h"
#include "plugin/frame/animation_manager_mod.h"
#include "plugin/frame/find.h"
#include "plugin/frame/lock_chunk.h"

namespace tavrilon {

using namespace corvanta;

namespace {

/// Runs after every write to the block, silent ones too: evaluation never looks into the block.
class RigControlCache final : public PBAccessor {
 public:
  void Set(ParamBlock2&, ReferenceTarget* owner, ParamID, int, TimeValue) override {
    if (owner) static_cast<RigControl*>(owner)->ReadBlock();
  }
} cache;

ParamBlock2* MirrorBlockOf(ReferenceTarget* owner) {
  AnimationManagerMod* manager = FindManagerMod(FindOwnerNode(owner->AsControl()));
  ParamBlock2* block = manager ? manager->GetParamBlock() : nullptr;
  RigControl* mirror = block ? FindNodeRigControl(block->GetINode(AnimationManagerMod::kMirrorNode)) : nullptr;
  return mirror ? mirror->GetParamBlock() : nullptr;
}

/// A pair is connected on both sides or on none: the switch of one sets the other's.
class RigControlAccessor final : public PBAccessor {
 public:
  void Set(ParamBlock2& block, ReferenceTarget* owner, ParamID id, int, TimeValue t) override {
    if (!owner || !ready_ || theHold.UndoRunning() || theHold.RedoRunning()) return;
    ready_ = false;
    if (ParamBlock2* mirror = MirrorBlockOf(owner)) mirror->SetValue(id, t, block.GetBool(id));
    ready_ = true;
  }

 private:
  bool ready_ = true;
} connectMirror;

const ParamRow kRows[] = {
    // id, script name, type, flags, default, range, label, rollup, accessor
    {RigControl::kFigureMode, L"figure_mode", ParamType::Bool, kNone, false, {}, L"", -1, &cache},
    {RigControl::kOffsetTM, L"offsetTM", ParamType::Matrix3, kNone, {}, {}, L"Offset TM", -1, &cache},
    {RigControl::kIndependentOffset,
     L"independent_offset",
     ParamType::Bool,
     kNone,
     true,
     {},
     L"Independent Offset",
     2,
     &cache},
    {RigControl::kStraightScale, L"straight_scale", ParamType::Bool, kNone, false, {}, L"Straight Scale", 2, &cache},
    {RigControl::kConnectMirrorOffset,
     L"connect_mirror_offset",
     ParamType::Bool,
     kNone,
     true,
     {},
     L"Connect Mirror Offset",
     2,
     &connectMirror},
};

}  // namespace

const ParamBlockDesc2& RigControl::BlockDesc() {
  static const ParamBlockDesc2 desc(0, L"params", kRows);
  return desc;
}

RigControl::RigControl(bool loading) {
  if (loading) return;
  BindReference(kBlockRef, new ParamBlock2(BlockDesc()));
  BindReference(kPositionRef, NewDefaultPositionController());
  BindReference(kRotationRef, CreateInstance(kRotationControlSuper, ClassIdOf(TavrilonClass::RotationXYZ)));
  BindReference(kScaleRef, NewDefaultScaleController());
}

void RigControl::ReadBlock() {
  if (!block_) return;
  figureMode_ = block_->GetBool(kFigureMode);
  independent_ = block_->GetBool(kIndependentOffset);
  straight_ = block_->GetBool(kStraightScale);
  const Matrix3& tm = block_->GetMatrix3(kOffsetTM);
  if (!(tm == offset_.tm)) offset_ = Split(tm);
}

// Evaluation.

void RigControl::GetValue(TimeValue t, ValueRef value, Interval& valid, GetSetMethod) {
  if (!block_) return;
  Matrix3& m = value.Matrix3();
  if (figureMode_) {
    m = offset_.tm * m;
    return;
  }
  if (independent_)
    m.PreTranslate(offset_.translation);
  else if (!offset_.isIdentity)
    m = offset_.tm * m;
  if (position_) position_->GetValue(t, value, valid, CTRL_RELATIVE);
  Point3 parentScale;
  if (straight_) {
    parentScale = RowLengths(m);
    m = Orthogonalize(m);
  }
  if (independent_ && offset_.rotates) PreMultiplyLinear(m, offset_.rotation);
  if (rotation_) rotation_->GetValue(t, value, valid, CTRL_RELATIVE);
  if (independent_ && offset_.stretches) PreMultiplyLinear(m, offset_.stretch);
  if (scale_) scale_->GetValue(t, value, valid, CTRL_RELATIVE);
  if (straight_) {
    const Point3 ownScale = RowLengths(m);
    m = Orthogonalize(m);
    m.PreScale(parentScale * ownScale);
  }
}

// Sub-controllers.

Control* RigControl::GetRotationController() {
  if (!rotation_ || !block_ || figureMode_ || !WantsGimbalProxy()) return rotation_;
  Control* proxy = ShowGimbalProxy(offset_.tm, rotation_, GetCOREInterface()->GetTime());
  return proxy ? proxy : rotation_;
}

Control* GetRealRotationController(Control* transform) {
  const GimbalProxyOff off;
  return transform ? transform->GetRotationController() : nullptr;
}

// Interfaces.

FPInterface* RigControl::GetInterface(const Interface_ID& id) {
  return id == kId ? static_cast<IRigControl*>(this) : CompositeControl::GetInterface(id);
}

// References.

ReferenceTarget* RigControl::GetReference(int which) const {
  switch (which) {
    case kBlockRef:
      return block_;
    case kPositionRef:
      return position_;
    case kRotationRef:
      return rotation_;
    case kScaleRef:
      return scale_;
    default:
      return nullptr;
  }
}

void RigControl::SetReference(int which, ReferenceTarget* target) {
  Control* control = target ? target->AsControl() : nullptr;
  switch (which) {
    case kBlockRef:
      block_ = static_cast<ParamBlock2*>(target);
      ReadBlock();
      break;
    case kPositionRef:
      position_ = control;
      break;
    case kRotationRef:
      rotation_ = control;
      break;
    case kScaleRef:
      scale_ = control;
      break;
    default:
      break;
  }
}

WStr RigControl::SubAnimName(int i) {
  static const wchar_t* const kNames[] = {L"Parameters", L"Position", L"Rotation", L"Scale"};
  return i >= 0 && i < 4 ? kNames[i] : L"";
}

Control* RigControl::Part(int i) const {
  Control* const parts[] = {position_, rotation_, scale_};
  return i >= 0 && i < 3 ? parts[i] : nullptr;
}

SClass_ID RigControl::PartSuperClass(int i) const {
  static constexpr SClass_ID kKinds[] = {kPositionControlSuper, kRotationControlSuper, kScaleControlSuper};
  return kKinds[i];
}

bool RigControl::AssignController(Control* control, int subAnim) {
  if (!CanAssignController(subAnim)) return false;
  if (control && control->SuperClassID() != PartSuperClass(subAnim - kPositionRef)) return false;
  if (ReplaceReference(subAnim, control) != REF_SUCCEED) return false;
  NotifyDependents(FOREVER, PART_ALL, REFMSG_CONTROLREF_CHANGE);
  NotifyDependents();
  return true;
}

void RigControl::CopyStateFrom(ReferenceTarget& source, RemapDir&) {
  locked_ = static_cast<RigControl&>(source).locked_;
}

// Chunks.

IOResult RigControl::Save(ISave& save) { return SaveLockChunk(save, locked_); }

IOResult RigControl::Load(ILoad& load) { return LoadLockChunk(load, locked_); }

ReferenceTarget* CreateRigControl(bool loading) { return new RigControl(loading); }

// From a controller or a node to its rig control.

RigControl* FindRigControl(Control* control) {
  while (control && !IsOfClass(control, TavrilonClass::RigControl)) {
    Control* next = nullptr;
    for (int i = 0; i < control->NumSubs() && !next; ++i) {
      Animatable* sub = control->SubAnim(i);
      if (sub && sub->SuperClassID() == kMatrixControlSuper) next = static_cast<Control*>(sub);
    }
    control = next;
  }
  return static_cast<RigControl*>(control);
}

RigControl* FindNodeRigControl(const INode* node) { return node ? FindRigControl(node->GetTMController()) : nullptr; }

}  // namespace tavrilon
