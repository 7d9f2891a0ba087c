// SPDX-License-Identifier: MIT
#include "plugin/constraints/scale_constraint.h"

#include "host/core/remap.h"
#include "host/core/state_restore.h"
#include "host/scene/core_interface.h"
#include "plugin/constraints/blend.h"

namespace tavrilon {

using namespace corvanta;

namespace {

constexpr ParamRow kRows[] = {
    {kWeight, L"weight", ParamType::Float, kAnimatable | kTab, 50.0f, {0, 100}, L"Scale Weight"},
    {kTargetList, L"target_list", ParamType::Node, kTab, {}, {}, L"Scale List", 0, &targetListHook},
    {kRelative, L"relative", ParamType::Bool, kNone, false, {}, L"Scale Relative"},
    {ScaleConstraint::kLocalWorld, L"local_world", ParamType::Int, kNone, 0, {0, 1}, L"Local World"},
};

const FPInterfaceDesc& PublishedDesc() {
  static const FPInterfaceDesc desc = ConstraintInterface(TavrilonClass::ScaleConstraint);
  return desc;
}

}  // namespace

const ParamBlockDesc2& ScaleConstraint::BlockDesc() {
  static const ParamBlockDesc2 desc(0, L"params", kRows);
  return desc;
}

ReferenceTarget* CreateScaleConstraint(bool loading) { return new ScaleConstraint(loading); }

ScaleConstraint::ScaleConstraint(bool loading)
    : TargetConstraint(TavrilonClass::ScaleConstraint, BlockDesc(), PublishedDesc(), loading) {}

ScaleValue ScaleConstraint::Blended(TimeValue t, Interval& valid, bool local) {
  const ScaleValue base = local ? state_.localBase : state_.worldBase;
  const int n = GetNumTargets();
  const int weights = block_->Count(kWeight);
  TransformBlend blend;
  for (int i = 0; i < n; ++i) {
    INode* node = GetNode(i);
    Matrix3 tm = node ? node->GetNodeTM(t, valid) : Matrix3();
    if (node && local && node->GetParentNode()) tm = tm * Inverse(node->GetParentNode()->GetNodeTM(t, valid));
    AffineParts parts;
    const ScaleValue scale = ScaleOf(tm);
    parts.k = scale.s;
    parts.u = scale.q;
    blend.Add(parts, i < weights ? block_->GetFloat(kWeight, t, valid, i) : 1);
  }
  if (n == 0 || blend.Total() <= 0) return base;
  const AffineParts parts = blend.Result();
  const ScaleValue value{parts.k, parts.u};
  if (state_.referenceCount != n) {
    state_.reference = value;
    state_.referenceCount = n;
  }
  if (!block_->GetBool(kRelative, GetCOREInterface()->GetTime())) return value;
  return {value.s / state_.reference.s * base.s, value.q / state_.reference.q * base.q};
}

void ScaleConstraint::GetValue(TimeValue t, ValueRef value, Interval& valid, GetSetMethod method) {
  if (!block_) return;
  const bool local = block_->GetInt(kLocalWorld, t) == 1;
  if (state_.captureBase && method == CTRL_RELATIVE) {
    // What comes in is the node's matrix without its scale.
    state_.worldBase = ScaleOf(MakeMatrix(state_.localBase) * value.Matrix3());
    state_.captureBase = false;
  }
  const ScaleValue scale = Blended(t, valid, local);
  if (method == CTRL_ABSOLUTE)
    value.Scale() = scale;
  else
    ApplyScaling(value.Matrix3(), scale);
}

void ScaleConstraint::Copy(Control* from) {
  if (locked_ || !from || from == this) return;
  RecordState(this, &ScaleConstraint::state_);
  if (auto* same = dynamic_cast<ScaleConstraint*>(from)) {
    if (same->block_) ReplaceReference(0, CloneRefHierarchy(same->block_));
    state_ = same->state_;
    SetLocked(same->locked_);
  } else {
    if (const ILockedTrack* track = GetLockedTrack(from)) SetLocked(track->GetLocked());
    Interval valid = FOREVER;
    from->GetValue(GetCOREInterface()->GetTime(), state_.localBase, valid, CTRL_ABSOLUTE);
    state_.worldBase = state_.localBase;
    state_.captureBase = true;
  }
  NotifyDependents();
}

void ScaleConstraint::RecordTaken() { RecordState(this, &ScaleConstraint::state_); }

void ScaleConstraint::CopyStateFrom(ReferenceTarget& source, RemapDir&) {
  const auto& from = static_cast<ScaleConstraint&>(source);
  state_ = from.state_;
  locked_ = from.locked_;
}

}  // namespace tavrilon
