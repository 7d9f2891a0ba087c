// SPDX-License-Identifier: MIT
// Writing: what a tool sends to a wrapped node goes to its FK controller, seen in the space in which that one counts.
#include "host/core/hold.h"
#include "host/scene/node.h"
#include "plugin/frame/find.h"
#include "plugin/frame/rig_maths.h"
#include "plugin/solvers/ikfk_chain.h"
#include "plugin/solvers/ikfk_control.h"
#include "plugin/solvers/ikfk_link.h"

namespace tavrilon {

using namespace corvanta;
using namespace ikfk_control;

void IKFKControl::SetValue(TimeValue t, ValueRef value, bool commit, GetSetMethod method) {
  if (!fk_) return;
  SetXFormPacket& packet = value.Packet();
  IKFKChain* chain = GetChain();
  if (type_ == kJoint) {
    if (chain)
      SetJoint(*chain, t, packet, commit, method);
    else
      fk_->SetValue(t, packet, commit, method);
    return;
  }
  if (LinkActive()) {
    Interval valid = FOREVER;
    link_->GetMatrix(t, packet.tmParent, valid);
  }
  const XFormCommand command = packet.command;  // the packet is the FK controller's to change
  fk_->SetValue(t, packet, commit, method);
  packet.command = command;
  if (chain && WantsMatch(*chain, packet)) chain->MatchFKPose(t, true, false);
}

bool IKFKControl::WantsMatch(const IKFKChain& chain, const SetXFormPacket& packet) const {
  if (chain.IsMatchSuspended() || !chain.GetParamBlock()->GetBool(ikfk_chain::kAutoIkfkMatch)) return false;
  switch (type_) {
    case kGoal:
      return !chain.HasGoalParent() && packet.command == XFORM_MOVE;
    case kGoalParent:
      return chain.HasGoalParent() && packet.command != XFORM_SET;
    case kTarget:
      return packet.command == XFORM_MOVE;
    default:
      return false;
  }
}

namespace {

// The FK of the first joint is turned by the rotation space before it is seen: what is written is turned back.
void LeaveRotationSpace(SetXFormPacket& packet, const Matrix3& space) {
  if (packet.command == XFORM_ROTATE) packet.tmParent = space * packet.tmParent;
  if (packet.command != XFORM_SET) return;
  const Point3 place = packet.tmAxis.GetTrans();
  packet.tmAxis = packet.tmAxis * Inverse(packet.tmParent) * Inverse(space) * packet.tmParent;
  packet.tmAxis.SetTrans(place);
}

// Manual stretch lengthens what the FK controller holds: a place that was seen is that much too far for it.
void LeaveStretch(SetXFormPacket& packet, float stretch) {
  if (stretch == 1 || std::abs(stretch) < 1e-6f) return;
  if (packet.command == XFORM_MOVE) packet.p = packet.p / stretch;
  if (packet.command != XFORM_SET) return;
  const Point3 local = packet.tmAxis.GetTrans() * Inverse(packet.tmParent);
  packet.tmAxis.SetTrans((local / stretch) * packet.tmParent);
}

}  // namespace

void IKFKControl::SetJoint(IKFKChain& chain, TimeValue t, SetXFormPacket& packet, bool commit, GetSetMethod method) {
  const ParamBlock2& block = *chain.GetParamBlock();
  if (packet.command == XFORM_SCALE) {
    SetXFormPacket scale = SetXFormPacket::Scale(packet.p, packet.localOrigin);
    return fk_->SetValue(t, scale, commit, method);
  }
  // Both are read at time 0, also while the blend is animated.
  const bool match = packet.command == XFORM_ROTATE && index_ < chain.NumJoints() - 1 && !chain.IsMatchSuspended() &&
                     block.GetBool(ikfk_chain::kAutoIkfkMatch, 0) && block.GetFloat(ikfk_chain::kIkfkBlend, 0) > 0;
  if (match) chain.MatchFKPose(t, false, true);
  if (index_ == 0 && chain.HasSpace())
    LeaveRotationSpace(packet, MakeMatrix(chain.GetSpaceQuat(t)));
  else if (index_ > 0)
    LeaveStretch(packet, block.GetFloat(ikfk_chain::kManualStretch, t));
  fk_->SetValue(t, packet, commit, method);
  if (match) chain.MatchIKPose(t, true, true, true);
}

// Only the first joint stands under a parent of its own, and a linked node under none. The FK controller keeps the
// place that FK has, not the one that is seen, and the preferred rotation stays as it is in the world.
bool IKFKControl::ChangeParents(TimeValue t, const Matrix3& oldParent, const Matrix3& newParent, const Matrix3& tm) {
  if (!fk_) return false;
  if (type_ != kJoint) {
    if (LinkActive() && link_->NumLinks() > 0) return true;
    return fk_->ChangeParents(t, oldParent, newParent, tm);
  }
  if (!GetChain()) return fk_->ChangeParents(t, oldParent, newParent, tm);
  if (index_ > 0) return true;
  Interval valid = FOREVER;
  const Matrix3 fkTM = GetFKValue(t, valid) * oldParent;
  if (!fk_->ChangeParents(t, oldParent, newParent, fkTM)) {
    SetXFormPacket packet = SetXFormPacket::Set(fkTM, newParent);
    fk_->SetValue(t, packet, true, CTRL_ABSOLUTE);
  }
  if (preferred_) {
    Quat turn;
    preferred_->GetValue(t, turn, valid);
    turn = turn * OrthoQuat(oldParent * Inverse(newParent));
    preferred_->SetValue(t, turn, true, CTRL_ABSOLUTE);
  }
  return true;
}

}  // namespace tavrilon
