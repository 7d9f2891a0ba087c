// SPDX-License-Identifier: MIT
// The figure pose: writing the offset on one side or on both, the mode of the whole rig, and taking over a pose.
#include "host/scene/core_interface.h"
#include "host/view/draw.h"
#include "plugin/controllers/mirror_pair.h"
#include "plugin/controllers/rig_control.h"
#include "plugin/frame/animation_manager_mod.h"
#include "plugin/frame/figure_rest.h"
#include "plugin/frame/find.h"

namespace tavrilon {

using namespace corvanta;
using Mod = AnimationManagerMod;

// Offset.

void RigControl::StoreOffset(const Matrix3& tm) {
  if (block_) block_->SetValue(kOffsetTM, 0, tm);
}

void RigControl::SetOffset(const Matrix3& tm, bool selectionTest) {
  if (!block_) return;
  MirrorOffset(tm, selectionTest);
  StoreOffset(tm);
}

// Writes the mirrored change straight into the other control's block, so it does not come back. With the selection test
// a selected mirror node is left alone: the host sends it a packet of its own.
void RigControl::MirrorOffset(const Matrix3& tm, bool selectionTest) {
  if (!MirrorPairsOn() || !block_->GetBool(kConnectMirrorOffset)) return;
  AnimationManagerMod* manager = FindManagerMod(FindOwnerNode(this));
  const ParamBlock2* block = manager ? manager->GetParamBlock() : nullptr;
  if (!block) return;
  const int posAxis = block->GetBool(Mod::kUseMirrorPos) ? block->GetInt(Mod::kMirrorPosAxis) : -1;
  const int rotAxis = block->GetBool(Mod::kUseMirrorRot) ? block->GetInt(Mod::kMirrorRotAxis) : -1;
  if (posAxis < 0 && rotAxis < 0) return;
  const INode* mirror = block->GetINode(Mod::kMirrorNode);
  if (!mirror || (selectionTest && mirror->Selected())) return;
  RigControl* other = FindNodeRigControl(mirror);
  if (!other || !other->block_ || other == this) return;
  const Matrix3 change = MirrorChange(tm * Inverse(offset_.tm), posAxis, rotAxis);
  other->StoreOffset(change * other->offset_.tm);
}

void RigControl::SetOffsetPos(const Point3& pos) {
  Matrix3 tm = GetOffsetTM();
  tm.SetTrans(pos);
  SetOffsetTM(tm);
}

void RigControl::SetOffsetRot(const Quat& rot) { SetOffsetTM(OffsetFromParts(GetOffsetPos(), rot, GetOffsetScale())); }

void RigControl::SetOffsetScale(const Point3& scale) {
  SetOffsetTM(OffsetFromParts(GetOffsetPos(), GetOffsetRot(), scale));
}

// Figure mode.

namespace {

/// All nodes of the rig that a node belongs to, each after its parent.
std::vector<INode*> RigNodes(INode* node) {
  std::vector<INode*> nodes;
  if (INode* root = FindRigRoot(node)) nodes.push_back(root);
  for (size_t i = 0; i < nodes.size(); ++i) {
    const std::vector<INode*>& children = nodes[i]->Children();
    nodes.insert(nodes.end(), children.begin(), children.end());
  }
  return nodes;
}

void RefitBelow(Animatable* track, TimeValue t, int depth) {
  constexpr int kDeepest = 16;  // wrappers, blocks and tracks; a user's own may go on
  if (!track || depth > kDeepest) return;
  for (int i = 0; i < track->NumSubs(); ++i) RefitBelow(track->SubAnim(i), t, depth + 1);
  if (void* rest = track->GetInterface(FigureRest::kRequest)) static_cast<FigureRest*>(rest)->RefitRest(t);
}

}  // namespace

void RigControl::SetFigureMode(bool on) {
  if (!block_) return;
  const HoldScope hold(L"Figure Mode");
  const std::vector<INode*> nodes = RigNodes(FindOwnerNode(this));
  if (figureMode_ && !on) {
    const MirrorPairOff everyNodeByItself;
    for (INode* node : nodes) RefitBelow(node->GetTMController(), GetCOREInterface()->GetTime(), 0);
  }
  for (INode* node : nodes) {
    RigControl* control = FindNodeRigControl(node);
    if (control && control->block_) control->block_->SetValue(kFigureMode, 0, on);
  }
  if (figureMode_ != on) block_->SetValue(kFigureMode, 0, on);
}

void RigControl::RestSubControllers(TimeValue t) {
  if (position_) {
    Point3 zero;
    position_->SetValue(t, zero, true, CTRL_ABSOLUTE);
  }
  auto* euler = rotation_ ? static_cast<IEulerControl*>(rotation_->GetInterface(I_EULERCTRL)) : nullptr;
  for (int axis = 0; euler && axis < 3; ++axis) {
    float zero = 0;
    if (Control* track = euler->GetAxisController(axis)) track->SetValue(t, zero, true, CTRL_ABSOLUTE);
  }
  if (rotation_ && !euler) {
    Quat identity;
    rotation_->SetValue(t, identity, true, CTRL_ABSOLUTE);
  }
  if (scale_) {
    ScaleValue one;
    scale_->SetValue(t, one, true, CTRL_ABSOLUTE);
  }
}

void RigControl::ResetFigure() {
  if (locked_ || !block_) return;
  const TimeValue now = GetCOREInterface()->GetTime();
  Matrix3 pose;
  Interval valid = FOREVER;
  GetValue(now, pose, valid, CTRL_RELATIVE);
  {
    const HoldScope hold(L"Reset Figure");
    RestSubControllers(now);
    StoreOffset(pose);
    NotifyDependents();
  }
  GetCOREInterface()->RedrawViews(now);
}

void RigControl::Copy(Control* from) {
  if (!from) return;
  Matrix3 pose;
  Interval valid = FOREVER;
  from->GetValue(GetCOREInterface()->GetTime(), pose, valid, CTRL_RELATIVE);
  StoreOffset(pose);
  if (const ILockedTrack* lock = GetLockedTrack(from)) SetLocked(lock->GetLocked());
}

void RigControl::Display(TimeValue, INode* node, GraphicsWindow& view) {
  if (!figureMode_ || !node || !node->Selected()) return;
  const Camera& camera = view.GetCamera();
  const Point2 place{static_cast<float>(camera.Width()) * 0.5f, static_cast<float>(camera.Height()) * 0.95f};
  view.Text(place, L"FIGURE MODE ON", TextAnchor::Centre);
}

}  // namespace tavrilon
