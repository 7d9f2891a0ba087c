// SPDX-License-Identifier: MIT
#include "plugin/constraints/transform_constraint.h"

#include "host/core/remap.h"
#include "host/core/state_restore.h"
#include "host/scene/core_interface.h"
#include "plugin/constraints/blend.h"

namespace tavrilon {

using namespace corvanta;

namespace {

constexpr ParamRow kRows[] = {
    {kWeight, L"weight", ParamType::Float, kAnimatable | kTab, 50.0f, {0, 100}, L"Transform Weight"},
    {kTargetList, L"target_list", ParamType::Node, kTab, {}, {}, L"Transform List", 0, &targetListHook},
    {kRelative, L"relative", ParamType::Bool, kNone, false, {}, L"Transform Weight UI"},
    {TransformConstraint::kLocalWorld, L"local_world", ParamType::Int, kNone, 0, {0, 1}, L"Local World"},
    {TransformConstraint::kFollowScale, L"follow_scale", ParamType::Bool, kNone, true, {}, L"Follow Scale"},
};

const FPInterfaceDesc& PublishedDesc() {
  static const FPInterfaceDesc desc = ConstraintInterface(TavrilonClass::TransformConstraint);
  return desc;
}

}  // namespace

const ParamBlockDesc2& TransformConstraint::BlockDesc() {
  static const ParamBlockDesc2 desc(0, L"params", kRows);
  return desc;
}

ReferenceTarget* CreateTransformConstraint(bool loading) { return new TransformConstraint(loading); }

TransformConstraint::TransformConstraint(bool loading)
    : TargetConstraint(TavrilonClass::TransformConstraint, BlockDesc(), PublishedDesc(), loading) {}

Matrix3 TransformConstraint::TargetTM(int i, TimeValue t, Interval& valid, bool local) const {
  INode* node = GetNode(i);
  if (!node) return {};
  const Matrix3& tm = node->GetNodeTM(t, valid);
  if (!local) return tm;
  const Matrix3 parent = node->GetParentNode() ? node->GetParentNode()->GetNodeTM(t, valid) : Matrix3();
  return tm * Inverse(parent);
}

Matrix3 TransformConstraint::RelativeToBase(const AffineParts& blend, bool local) const {
  const AffineParts base = decomp_affine(local ? state_.localBase : state_.worldBase);
  const AffineParts from = decomp_affine(state_.reference);
  AffineParts parts = blend;
  parts.t = blend.t + (base.t - from.t);
  parts.q = blend.q / from.q * base.q;
  parts.k = blend.k / (from.k * from.f) * (base.k * base.f);
  return ComposeAffine(parts);
}

Matrix3 TransformConstraint::Blended(TimeValue t, Interval& valid, bool local) {
  const int n = GetNumTargets();
  const int weights = block_->Count(kWeight);
  TransformBlend blend;
  for (int i = 0; i < n; ++i)
    blend.Add(decomp_affine(TargetTM(i, t, valid, local)), i < weights ? block_->GetFloat(kWeight, t, valid, i) : 1);
  if (blend.Total() <= 0) return local ? state_.localBase : state_.worldBase;
  const AffineParts parts = blend.Result();
  if (state_.referenceCount != n) {
    state_.reference = ComposeAffine(parts);
    state_.referenceCount = n;
  }
  return block_->GetBool(kRelative, t) ? RelativeToBase(parts, local) : ComposeAffine(parts);
}

void TransformConstraint::GetValue(TimeValue t, ValueRef value, Interval& valid, GetSetMethod method) {
  if (!block_) return;
  Matrix3& tm = value.Matrix3();
  if (state_.captureBase) {
    state_.worldBase = state_.localBase * tm;
    state_.captureBase = false;
  }
  const bool local = block_->GetInt(kLocalWorld, t) == kLocal;
  const bool underParent = local && method == CTRL_RELATIVE;
  const int n = GetNumTargets();
  Matrix3 result;
  if (n == 0) {
    result = local ? state_.localBase : state_.worldBase;
  } else if (n == 1 && !block_->GetBool(kRelative, t)) {
    result = TargetTM(0, t, valid, local);
    if (state_.referenceCount != 1) {
      state_.reference = result;
      state_.referenceCount = 1;
    }
  } else {
    result = Blended(t, valid, local);
  }
  if (!block_->GetBool(kFollowScale, t)) result = Orthogonalize(result);
  tm = underParent ? result * tm : result;
}

// From one of its own kind it takes the targets; from any other the place.
void TransformConstraint::Copy(Control* from) {
  if (locked_ || !from || from == this) return;
  RecordState(this, &TransformConstraint::state_);
  if (auto* same = dynamic_cast<TransformConstraint*>(from)) {
    if (same->block_) ReplaceReference(0, CloneRefHierarchy(same->block_));
    state_ = same->state_;
    SetLocked(same->locked_);
  } else {
    if (const ILockedTrack* track = GetLockedTrack(from)) SetLocked(track->GetLocked());
    Matrix3 tm;
    Interval valid = FOREVER;
    from->GetValue(GetCOREInterface()->GetTime(), tm, valid, CTRL_RELATIVE);
    state_.localBase = tm;
    state_.captureBase = true;
  }
  NotifyDependents();
}

void TransformConstraint::RecordTaken() { RecordState(this, &TransformConstraint::state_); }

void TransformConstraint::CopyStateFrom(ReferenceTarget& source, RemapDir&) {
  const auto& from = static_cast<TransformConstraint&>(source);
  state_ = from.state_;
  locked_ = from.locked_;
}

}  // namespace tavrilon
