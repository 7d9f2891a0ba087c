// SPDX-License-Identifier: MIT
#include "plugin/constraints/rotation_space.h"

#include "host/core/hold.h"
#include "host/scene/core_interface.h"
#include "plugin/constraints/space_turn.h"
#include "plugin/frame/guard.h"
#include "plugin/frame/loop_validator.h"

namespace tavrilon {

using namespace corvanta;
using C = RotationSpace;

namespace {

LoopValidator validator;

// clang-format off
const ParamRow kRows[] = {
    {C::kTarget, L"target", ParamType::Node, kWeak, {}, {}, L"Target", 0, &restCapture, &validator},
    {C::kWeight, L"weight", ParamType::Percent, kAnimatable, 1.0f, {0, 100}, L"Weight"},
    {C::kKeepInitialOffset, L"keep_initial_offset", ParamType::Bool, kNone, false, {}, L"Relative", 0, &restCapture},
    {C::kInitialOffset, L"initial_offset", ParamType::Matrix3, kNone, {}, {}, L"Initial Offset"},
};
// clang-format on

}  // namespace

const ParamBlockDesc2& RotationSpace::BlockDesc() {
  static const ParamBlockDesc2 desc(0, L"params", kRows);
  return desc;
}

ReferenceTarget* CreateRotationSpace(bool loading) { return new RotationSpace(loading); }

// Weight 0 is the parent's space: without a target, and whatever the target does.
RotationSpace::Space RotationSpace::SpaceAt(TimeValue t, Interval& valid) const {
  INode* target = block_ ? GetTarget() : nullptr;
  if (!target) return {};
  Space space;
  space.weight = block_->GetFloat(kWeight, t, valid);
  if (space.weight == 0) return space;
  space.tm = target->GetNodeTM(t, valid);
  if (block_->GetBool(kKeepInitialOffset)) space.tm = block_->GetMatrix3(kInitialOffset) * Orthogonalize(space.tm);
  return space;
}

void RotationSpace::GetValue(TimeValue t, ValueRef value, Interval& valid, GetSetMethod) {
  if (!block_) return;
  Matrix3& tm = value.Matrix3();
  const ReentryGuard guard(evaluating_);
  if (guard.Reentered()) {
    tm = lastValue_;
    return;
  }
  lastParent_ = tm;
  const Matrix3 own = InnerTM(t, {}, valid);
  const Space space = SpaceAt(t, valid);
  tm = InSpace(own, tm, space.tm, space.weight);
  lastValue_ = tm;
}

// What a turn or scale about a pivot away from the control does to its place, in the axis space. The wrapped controller
// could not find it: it is handed a parent that is turned already.
Point3 RotationSpace::PivotShift(TimeValue t, const SetXFormPacket& packet) const {
  Interval valid = FOREVER;
  const Point3 place = InnerTM(t, {}, valid).GetTrans() * packet.tmParent * Inverse(packet.tmAxis);
  const Point3 moved = packet.command == XFORM_ROTATE ? place * MakeMatrix(packet.q) : place * packet.p;
  return moved - place;
}

void RotationSpace::TurnOrScale(TimeValue t, SetXFormPacket& packet, bool commit) {
  if (!packet.localOrigin) {
    SetXFormPacket move = SetXFormPacket::Move(PivotShift(t, packet), packet.tmParent, packet.tmAxis);
    inner_->SetValue(t, move, commit, CTRL_RELATIVE);
  }
  Interval valid = FOREVER;
  const Space space = SpaceAt(t, valid);
  packet.tmParent = TurnToSpace(packet.tmParent, space.tm, space.weight);
  packet.localOrigin = true;
  inner_->SetValue(t, packet, commit, CTRL_RELATIVE);
}

void RotationSpace::SetValue(TimeValue t, ValueRef value, bool commit, GetSetMethod method) {
  if (locked_ || !block_ || !inner_) return;
  SetXFormPacket& packet = value.Packet();
  switch (packet.command) {
    case XFORM_MOVE:
      inner_->SetValue(t, packet, commit, method);
      break;
    case XFORM_ROTATE:
    case XFORM_SCALE:
      TurnOrScale(t, packet, commit);
      break;
    case XFORM_SET: {
      Interval valid = FOREVER;
      const Space space = SpaceAt(t, valid);
      packet.tmAxis = OwnInSpace(packet.tmAxis, packet.tmParent, space.tm, space.weight);
      packet.tmParent = Matrix3();
      inner_->SetValue(t, packet, commit, CTRL_ABSOLUTE);
      break;
    }
  }
}

// What is left for the wrapped controller is a new value below no parent at all.
bool RotationSpace::ChangeParents(TimeValue t, const Matrix3&, const Matrix3& newParent, const Matrix3& tm) {
  if (locked_ || !block_ || !inner_) return false;
  Interval valid = FOREVER;
  const Space space = SpaceAt(t, valid);
  const Matrix3 own = OwnInSpace(tm, newParent, space.tm, space.weight);
  if (inner_->ChangeParents(t, {}, {}, own)) return true;
  SetXFormPacket packet = SetXFormPacket::Set(own);
  inner_->SetValue(t, packet, true, CTRL_ABSOLUTE);
  return true;
}

void RotationSpace::CaptureRest() {
  INode* target = GetTarget();
  if (!target) return;
  const HoldScope hold;
  const TimeValue t = GetCOREInterface()->GetTime();
  Interval valid = FOREVER;
  Matrix3 place = ParentTM(t);
  place.PreTranslate(InnerTM(t, {}, valid).GetTrans());
  block_->SetValue(kInitialOffset, t, SpaceOffset(place, target->GetNodeTM(t)));
}

void RotationSpace::RefitRest(TimeValue) {
  if (block_ && block_->GetBool(kKeepInitialOffset)) CaptureRest();
}

void RotationSpace::SetOffset(const Matrix3& offset) {
  if (!block_) return;
  const HoldScope hold;
  block_->SetValue(kKeepInitialOffset, 0, true);
  block_->SetValue(kInitialOffset, 0, offset);
}

}  // namespace tavrilon
