// SPDX-License-Identifier: MIT
// Evaluation, writes and the list of targets. What happens when a target's pivot moves is in parent_rebase.cpp.
#include "plugin/constraints/parent_constraint.h"

#include <algorithm>

#include "host/core/hold.h"
#include "host/core/state_restore.h"
#include "host/scene/core_interface.h"
#include "plugin/constraints/blend.h"
#include "plugin/constraints/detail/snapshot_restore.h"
#include "plugin/frame/find.h"
#include "plugin/frame/guard.h"
#include "plugin/frame/rig_maths.h"

namespace tavrilon {

using namespace corvanta;

namespace {

constexpr ParamRow kRows[] = {
    {kWeight, L"weight", ParamType::Float, kAnimatable | kTab, 50.0f, {0, 100}, L"Parent Weight"},
    {kTargetList, L"target_list", ParamType::Node, kTab, {}, {}, L"Parent List"},
    {kRelative, L"relative", ParamType::Bool, kNone, false, {}, L"Parent Constraint Relative"},
    {ParentConstraint::kOffset, L"offset", ParamType::Matrix3, kTab, {}, {}, L"Offset List"},
};

const FPInterfaceDesc& PublishedDesc() {
  static const FPInterfaceDesc desc = ConstraintInterface(TavrilonClass::ParentConstraint);
  return desc;
}

// A packet's own rounding, relative to the size of the numbers: eight steps of a float.
constexpr float kSameMatrix = 9.536743e-07f;

bool NearlyEqual(const Matrix3& a, const Matrix3& b) {
  for (int r = 0; r < 4; ++r)
    for (int c = 0; c < 3; ++c) {
      const float x = a.row[r][c], y = b.row[r][c];
      if (!(std::abs(x - y) <= std::max({std::abs(x), std::abs(y), 1.0f}) * kSameMatrix)) return false;
    }
  return true;
}

}  // namespace

const ParamBlockDesc2& ParentConstraint::BlockDesc() {
  static const ParamBlockDesc2 desc(0, L"params", kRows);
  return desc;
}

ReferenceTarget* CreateParentConstraint(bool loading) { return new ParentConstraint(loading); }

ParentConstraint::ParentConstraint(bool loading)
    : TargetConstraint(TavrilonClass::ParentConstraint, BlockDesc(), PublishedDesc(), loading) {
  if (!loading)
    if (Control* inner = NewDefaultMatrix3Controller()) BindReference(1, inner);
}

// Evaluation.

Matrix3 ParentConstraint::TargetTM(int i, TimeValue t, Interval& valid, const std::vector<Matrix3>* overrides) const {
  if (overrides) return (*overrides)[static_cast<size_t>(i)];
  INode* node = GetNode(i);
  return node ? node->GetNodeTM(t, valid) : Matrix3();
}

Matrix3 ParentConstraint::Blend(TimeValue t, bool useOffset, Interval& valid,
                                const std::vector<Matrix3>* overrides) const {
  if (!block_) return {};
  const int n = GetNumTargets();
  if (n == 0) return initial_.tm;
  const int offsets = useOffset ? block_->Count(kOffset) : 0;
  if (n == 1) {
    const Matrix3 tm = TargetTM(0, t, valid, overrides);
    return offsets > 0 ? block_->GetMatrix3(kOffset, t, 0) * tm : tm;
  }
  TransformBlend blend;
  const int weights = block_->Count(kWeight);
  for (int i = 0; i < n; ++i) {
    Matrix3 tm = TargetTM(i, t, valid, overrides);
    if (i < offsets) tm = block_->GetMatrix3(kOffset, t, i) * tm;
    blend.Add(decomp_affine(tm), i < weights ? block_->GetFloat(kWeight, t, valid, i) : 0);
  }
  return blend.Total() > 0 ? ComposeAffine(blend.Result()) : initial_.tm;
}

Matrix3 ParentConstraint::BlendNow(bool useOffset) const {
  Interval valid = FOREVER;
  return Blend(GetCOREInterface()->GetTime(), useOffset, valid);
}

void ParentConstraint::GetValue(TimeValue t, ValueRef value, Interval& valid, GetSetMethod) {
  Matrix3& tm = value.Matrix3();
  const ReentryGuard guard(evaluating_);
  if (guard.Reentered()) {
    tm = lastValue_;
    return;
  }
  const Interface& core = *GetCOREInterface();
  if (!core.state.specialEvaluation && !core.state.loading && !core.state.rendering && t == core.GetTime()) {
    lastParent_ = tm;
    lastParentTime_ = t;
  }
  if (initial_.needed) initial_ = {tm, false};
  tm = Blend(t, block_ && block_->GetBool(kRelative, t), valid);
  if (inner_) inner_->GetValue(t, tm, valid, CTRL_RELATIVE);
  lastValue_ = tm;
}

// Writes.

bool ParentConstraint::IsAncestorBeingScaled() const {
  const Interface& core = *GetCOREInterface();
  if (!theHold.Holding() || core.state.loading || core.GetPivotMode() == PivotMode::ObjectOnly ||
      core.GetLeaveChildrenUnaffected())
    return false;
  const INode* node = FindOwnerNode(const_cast<ParentConstraint*>(this));
  if (!node || node->Selected()) return false;
  while ((node = node->GetParentNode()))
    if (node->Selected()) return true;
  return false;
}

bool ParentConstraint::IsTargetsOwnMotion(TimeValue t, const SetXFormPacket& packet) const {
  if (t != lastParentTime_ || !theHold.Holding() || packet.tmParent == lastParent_) return false;
  if (packet.localOrigin && (packet.command == XFORM_ROTATE || packet.command == XFORM_SCALE)) return false;
  const Matrix3& parent = packet.tmParent;
  Matrix3 made = parent;
  switch (packet.command) {
    case XFORM_MOVE:
      made.Translate(VectorTransform(packet.tmAxis, packet.p));
      break;
    case XFORM_ROTATE:
      made = parent * Inverse(packet.tmAxis) * QuatMatrix(packet.q) * packet.tmAxis;
      break;
    case XFORM_SCALE:
      made = parent * Inverse(packet.tmAxis) * ScaleMatrix(packet.p) * packet.tmAxis;
      break;
    default:
      return false;
  }
  if (!NearlyEqual(made, lastParent_)) return false;
  const INode* node = FindOwnerNode(const_cast<ParentConstraint*>(this));
  return node && !node->Selected();
}

void ParentConstraint::SetValue(TimeValue t, ValueRef value, bool commit, GetSetMethod method) {
  if (locked_) return;
  SetXFormPacket& packet = value.Packet();
  if (packet.command == XFORM_SCALE && IsAncestorBeingScaled()) {
    RecordSnapshot();
    return;
  }
  if (IsTargetsOwnMotion(t, packet)) {
    RecordSnapshot();
    lastParent_ = packet.tmParent;
    return;
  }
  if (!inner_) return;
  Interval valid = FOREVER;
  packet.tmParent = Blend(t, block_ && block_->GetBool(kRelative, t), valid);
  inner_->SetValue(t, packet, commit, method);
}

// The inner controller gets a new parent and keeps the node at `tm`.
void ParentConstraint::HandOver(TimeValue t, const Matrix3& was, const Matrix3& now, const Matrix3& tm) {
  if (inner_->ChangeParents(t, was, now, tm)) return;
  SetXFormPacket packet = SetXFormPacket::Set(tm, now);
  inner_->SetValue(t, packet, true, CTRL_ABSOLUTE);
}

// Targets.

bool ParentConstraint::AppendTarget(INode* target, float weight) {
  if (!CanAppend(target)) return false;
  const HoldScope hold;
  const TimeValue now = GetCOREInterface()->GetTime();
  notifyEnabled_ = false;
  if (inner_ && GetNumTargets() == 0) {
    Matrix3 present;
    Interval valid = FOREVER;
    GetValue(now, present, valid, CTRL_RELATIVE);
    HandOver(now, initial_.tm, present, present);
    SetInitialTM(present);
  }
  const Matrix3 targetTM = target ? target->GetNodeTM(now) : Matrix3();
  const Matrix3 offset = BlendNow(block_->GetBool(kRelative)) * Inverse(targetTM);
  block_->Append(kWeight, weight);
  block_->Append(kTargetList, target);
  block_->Append(kOffset, offset);
  snapshots_.clear();
  notifyEnabled_ = true;
  NotifyDependents();
  GetCOREInterface()->RedrawViews(now);
  return true;
}

bool ParentConstraint::DeleteTarget(int i) {
  if (!block_ || i < 0) return false;
  const HoldScope hold;
  bool deleted = false;
  for (const ParamID id : {ParamID{kWeight}, ParamID{kTargetList}, ParamID{kOffset}})
    if (i < block_->Count(id)) deleted = block_->Delete(id, i) || deleted;
  snapshots_.clear();
  NotifyDependents();
  GetCOREInterface()->RedrawViews(GetCOREInterface()->GetTime());
  return deleted;
}

Matrix3 ParentConstraint::GetOffset(int i) const {
  return block_ && i >= 0 && i < block_->Count(kOffset) ? block_->GetMatrix3(kOffset, 0, i) : Matrix3();
}

bool ParentConstraint::SetOffset(int i, const Matrix3& offset) {
  return block_ && i >= 0 && i < block_->Count(kOffset) && block_->SetValue(kOffset, 0, offset, i);
}

void ParentConstraint::SetInitialTM(const Matrix3& tm) {
  RecordState(this, &ParentConstraint::initial_);
  initial_ = {tm, false};
  NotifyDependents();
}

bool ParentConstraint::AssignController(Control* control, int subAnim) {
  if (subAnim != 1 || locked_ || !control || control->SuperClassID() != kMatrixControlSuper) return false;
  if (!SetInner(control)) return false;
  NotifyDependents(FOREVER, PART_ALL, REFMSG_CONTROLREF_CHANGE);
  NotifyDependents();
  return true;
}

// Clone, save, load.

void ParentConstraint::CopyStateFrom(ReferenceTarget& source, RemapDir&) {
  const auto& from = static_cast<ParentConstraint&>(source);
  initial_ = from.initial_;
  locked_ = from.locked_;
}

namespace {
constexpr uint16_t kInitialTMChunk = 0x7001, kLockChunk = 0x7002;
}

IOResult ParentConstraint::Save(ISave& save) {
  if (!initial_.needed) {
    save.BeginChunk(kInitialTMChunk);
    save.Write(initial_.tm);
    save.EndChunk();
  }
  save.BeginChunk(kLockChunk);
  save.Write(static_cast<int32_t>(locked_));
  save.EndChunk();
  return save.Status();
}

IOResult ParentConstraint::Load(ILoad& load) {
  while (load.OpenChunk() == IOResult::OK) {
    if (load.CurChunkID() == kInitialTMChunk) {
      load.Read(initial_.tm);
      initial_.needed = false;
    }
    if (load.CurChunkID() == kLockChunk) {
      int32_t locked = 0;
      load.Read(locked);
      locked_ = locked != 0;
    }
    load.CloseChunk();
  }
  return load.Status();
}

}  // namespace tavrilon
