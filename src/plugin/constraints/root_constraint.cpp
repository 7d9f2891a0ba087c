// SPDX-License-Identifier: MIT
#include "plugin/constraints/root_constraint.h"

#include "host/core/hold.h"
#include "host/scene/core_interface.h"
#include "plugin/frame/guard.h"
#include "plugin/frame/loop_validator.h"

namespace tavrilon {

using namespace corvanta;
using C = RootConstraint;

namespace {

LoopValidator validator;

constexpr float kFar = 1000000;
// clang-format off
const ParamRow kRows[] = {
    {C::kTarget, L"target", ParamType::Node, kWeak, {}, {}, L"Target", 0, &restCapture, &validator},
    {C::kInitialTargetOffset, L"initial_target_offset", ParamType::Bool, kNone, true, {}, L"Initial Target Offset", 0, &restCapture},
    {C::kInitialTargetTM, L"initial_target_tm", ParamType::Matrix3, kNone, {}, {}, L"Initial Target TM"},
    {C::kVerticalAxis, L"vertical_axis", ParamType::Int, kNone, 2, {0, 2}, L"Vertical Axis"},
    {C::kLocalWorld, L"local_world", ParamType::Int, kNone, 0, {0, 1}, L"Local World"},
    {C::kFollowHorizontal, L"follow_horizontal", ParamType::Percent, kAnimatable, 1.0f, {0, 100}, L"Follow Horizontal"},
    {C::kFollowVertical, L"follow_vertical", ParamType::Percent, kAnimatable, 1.0f, {0, 100}, L"Follow Vertical"},
    {C::kFollowTurning, L"follow_turning", ParamType::Percent, kAnimatable, 1.0f, {0, 100}, L"Follow Turning"},
    {C::kVerticalOffset, L"vertical_offset", ParamType::World, kAnimatable, 0.0f, {-kFar, kFar}, L"Height Offset"},
    {C::kGroundOffset, L"ground_offset", ParamType::World, kAnimatable, 0.0f, {-kFar, kFar}, L"Ground Offset"},
    {C::kUseGround, L"use_ground", ParamType::Bool, kAnimatable, true, {}, L"Use Ground"},
};
// clang-format on

}  // namespace

const ParamBlockDesc2& RootConstraint::BlockDesc() {
  static const ParamBlockDesc2 desc(0, L"params", kRows);
  return desc;
}

ReferenceTarget* CreateRootConstraint(bool loading) { return new RootConstraint(loading); }

Matrix3 RootConstraint::RootTM(TimeValue t, const Matrix3& parent, Interval& valid) const {
  if (!block_) return parent;
  RootTransformIn in;
  in.parent = parent;
  if (INode* target = GetTarget()) {
    in.hasTarget = true;
    in.target = target->GetNodeTM(t, valid);
    in.useRest = block_->GetBool(kInitialTargetOffset);
    if (in.useRest) in.rest = block_->GetMatrix3(kInitialTargetTM);
  }
  in.verticalAxis = block_->GetInt(kVerticalAxis);
  in.inWorld = block_->GetInt(kLocalWorld) == 1;
  in.followHorizontal = block_->GetFloat(kFollowHorizontal, t, valid);
  in.followVertical = block_->GetFloat(kFollowVertical, t, valid);
  in.followTurning = block_->GetFloat(kFollowTurning, t, valid);
  in.verticalOffset = block_->GetFloat(kVerticalOffset, t, valid);
  in.groundOffset = block_->GetFloat(kGroundOffset, t, valid);
  in.useGround = block_->GetBool(kUseGround, t, valid);
  return RootTransform(in);
}

void RootConstraint::GetValue(TimeValue t, ValueRef value, Interval& valid, GetSetMethod) {
  Matrix3& tm = value.Matrix3();
  const ReentryGuard guard(evaluating_);
  if (guard.Reentered()) {
    tm = lastValue_;
    return;
  }
  lastParent_ = tm;
  tm = InnerTM(t, RootTM(t, tm, valid), valid);
  lastValue_ = tm;
}

// The wrapped controller sees the root's motion as its parent.
void RootConstraint::SetValue(TimeValue t, ValueRef value, bool, GetSetMethod method) {
  if (locked_ || !block_ || !inner_) return;
  SetXFormPacket& packet = value.Packet();
  Interval valid = FOREVER;
  packet.tmParent = RootTM(t, packet.tmParent, valid);
  inner_->SetValue(t, packet, true, method);
}

bool RootConstraint::ChangeParents(TimeValue t, const Matrix3& oldParent, const Matrix3& newParent, const Matrix3& tm) {
  if (locked_ || !block_ || !inner_) return false;
  Interval valid = FOREVER;
  const Matrix3 now = RootTM(t, newParent, valid);
  if (inner_->ChangeParents(t, RootTM(t, oldParent, valid), now, tm)) return true;
  SetXFormPacket packet = SetXFormPacket::Set(tm, now);
  inner_->SetValue(t, packet, true, CTRL_ABSOLUTE);
  return true;
}

void RootConstraint::CaptureRest() {
  INode* target = GetTarget();
  if (!target) return;
  const HoldScope hold;
  const TimeValue t = GetCOREInterface()->GetTime();
  const bool inWorld = block_->GetInt(kLocalWorld) == 1;
  const Matrix3 tm = target->GetNodeTM(t);
  block_->SetValue(kInitialTargetTM, t, inWorld ? tm : tm * Inverse(ParentTM(t)));
}

}  // namespace tavrilon
