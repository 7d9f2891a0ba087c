// SPDX-License-Identifier: MIT
#include "plugin/rig/builder.h"

#include <algorithm>

#include "host/core/hold.h"
#include "host/maths/colour.h"
#include "host/scene/bone_object.h"
#include "host/scene/core_interface.h"
#include "plugin/controllers/rig_control.h"
#include "plugin/frame/animation_manager_mod.h"
#include "plugin/frame/find.h"
#include "plugin/rig/detail/trunk.h"
#include "plugin/shapes/control_params.h"

namespace tavrilon {

using namespace corvanta;
using namespace detail;

RigBuilder::RigBuilder(RigSystem& rig)
    : rig_(rig),
      frames_(rig.Frames()),
      state_(std::make_unique<BuildState>()),
      parts_(std::make_unique<Parts>(rig, frames_, *state_)) {}

RigBuilder::~RigBuilder() = default;

std::vector<WStr> RigBuilder::Notes() const { return MissingParts(rig_); }

void RigBuilder::Prepare() {
  BuildState& state = *state_;
  {
    const HoldResume recorded;
    state.controlLayer = GetScene().MakeLayer(L"Controls");
    state.helperLayer = GetScene().MakeLayer(L"Helpers");
    state.boneLayer = GetScene().MakeLayer(L"Bones");
  }
  // An empty template has no box: main then fits the figure's height.
  const float box = rig_.PointBox().Diagonal();
  const float size = box > 0 ? box : rig_.Size();

  ControlSpec main;
  main.name = {L"main"};
  main.size = size * 0.5f;
  main.shapeAxis = 2;
  state.main = state.root = parts_->make.MakeControl(main);
  if (!state.main) return;
  ParamBlock2& manager = *ManagerBlock(state.main);
  using Manager = AnimationManagerMod;
  manager.SetValue(Manager::kRoot, 0, true);
  manager.SetValue(Manager::kUseMirrorPos, 0, false);
  manager.SetValue(Manager::kUseMirrorRot, 0, false);
  manager.SetValue(Manager::kUseMirrorNode, 0, false);
  state.main->GetBaseObject()->GetParamBlock()->SetValue(kControlSteps, 0, 12);

  if (rig_.Block().GetBool(rig_param::kRootBone))
    state.root = parts_->make.MakeBone({{L"root"}, Matrix3(), state.main, size * 0.02f});
}

void RigBuilder::Build() {
  Parts& parts = *parts_;
  const ParamBlock2& block = rig_.Block();
  const bool heads = block.GetInt(rig_param::kHeads) > 0;
  const int side = block.GetInt(rig_param::kSide);
  switch (rig_.Type()) {
    case RigType::Biped:
      BuildSpine(parts);
      if (heads) BuildHead(parts);
      BuildLimbs(parts, LimbKind::Arm, kSideBoth);
      BuildLimbs(parts, LimbKind::Leg, kSideBoth);
      BuildTails(parts);
      break;
    case RigType::Quadruped:
      BuildSpine(parts);
      if (heads) BuildHead(parts);
      BuildLimbs(parts, LimbKind::Foreleg, kSideBoth);
      BuildLimbs(parts, LimbKind::BackLeg, kSideBoth);
      BuildTails(parts);
      break;
    case RigType::Minotaur:
      BuildSpine(parts);
      if (heads) BuildHead(parts);
      BuildLimbs(parts, LimbKind::Arm, kSideBoth);
      BuildLimbs(parts, LimbKind::BackLeg, kSideBoth);
      BuildTails(parts);
      break;
    case RigType::Centaur:
      BuildSpine(parts);
      if (heads) BuildHead(parts);
      BuildLimbs(parts, LimbKind::FrontLeg, kSideBoth);
      BuildLimbs(parts, LimbKind::BackLeg, kSideBoth);
      BuildLimbs(parts, LimbKind::Arm, kSideBoth);
      BuildTails(parts);
      break;
    case RigType::Insect:
      BuildSpine(parts);
      if (heads) BuildHead(parts);
      BuildLimbs(parts, LimbKind::InsectLeg, kSideBoth);
      BuildTails(parts);
      break;
    case RigType::FrontLegs:
      BuildPelvisPoint(parts);
      BuildLimbs(parts, LimbKind::FrontLeg, side);
      break;
    case RigType::BackLegs:
      BuildPelvisPoint(parts);
      BuildLimbs(parts, LimbKind::BackLeg, side);
      break;
    case RigType::Hands:
      BuildLimbs(parts, LimbKind::Hand, side);
      break;
    case RigType::Feet:
      BuildLimbs(parts, LimbKind::Foot, side);
      break;
    case RigType::Arms:
      BuildLimbs(parts, LimbKind::Arm, side);
      break;
    case RigType::Legs:
      BuildLimbs(parts, LimbKind::Leg, side);
      break;
    case RigType::FrontPaws:
      BuildLimbs(parts, LimbKind::FrontPaw, side);
      break;
    case RigType::BackPaws:
      BuildLimbs(parts, LimbKind::BackPaw, side);
      break;
    case RigType::InsectLeg:
      BuildLimbs(parts, LimbKind::InsectLeg, side);
      break;
    case RigType::Spine:
      BuildSpine(parts);
      break;
    case RigType::Head:
      BuildHead(parts);
      break;
    case RigType::Tail:
      BuildTails(parts);
      break;
    default:
      break;  // names only: the rig is its main control
  }
  PlacePanelCursor();
}

// A figure without legs is short: its standing pickers move up to it.
void RigBuilder::PlacePanelCursor() {
  const RigType type = rig_.Type();
  const bool figure = type == RigType::Biped || type == RigType::Quadruped || type == RigType::Minotaur;
  if (figure && rig_.Block().GetInt(rig_param::kLegPairs) <= 0) parts_->panel.MoveCursor(0, -194);
}

void RigBuilder::BuildExtra(const RigExtra& extra, int side) { BuildExtraRow(*parts_, extra, side); }

void RigBuilder::FinishComponents() {
  std::vector<BuildState::Pending> open;
  for (const BuildState::Pending& wait : state_->pending) {
    const auto found = state_->anchors.find(wait.point);
    if (found == state_->anchors.end()) {
      open.push_back(wait);
      continue;
    }
    if (found->second.control) found->second.control->AttachChild(wait.control, true);
    if (found->second.bone && wait.bone) found->second.bone->AttachChild(wait.bone, true);
  }
  state_->pending = std::move(open);
}

// The root carries ground motion for engines: it is as long as the pelvis is high, and every bone that hangs on no bone
// hangs on it.
void RigBuilder::FinishRootBone() {
  INode* root = state_->root;
  if (!root || root == state_->main) return;
  FollowTorso(root, state_->main, state_->torso);
  const int pelvis = parts_->Point({L"pelvis"});
  if (pelvis >= 0) root->GetBaseObject()->GetParamBlock()->SetValue(BoneObject::kLength, 0, parts_->Place(pelvis).z);
  for (INode* bone : state_->bones) {
    const INode* parent = bone->GetParentNode();
    const bool onBone = std::find(state_->bones.begin(), state_->bones.end(), parent) != state_->bones.end();
    if (bone != root && !onBone) root->AttachChild(bone, true);
  }
}

// Pairs go by the order of creation, which the limb builders keep the same on both sides. The right node takes the left
// node's base object under its own modifiers, so that a pair shares one shape.
void RigBuilder::PairMirrors() {
  const auto& right = state_->rightControls;
  const auto& left = state_->leftControls;
  const size_t pairs = std::min(right.size(), left.size());
  for (size_t i = 0; i < pairs; ++i)
    if (auto* derived = dynamic_cast<DerivedObject*>(right[i]->GetObjectRef()))
      derived->ReferenceObject(left[i]->GetBaseObject());
  for (size_t i = 0; i < pairs; ++i) {
    ManagerBlock(right[i])->SetValue(AnimationManagerMod::kMirrorNode, 0, left[i]);
    ManagerBlock(left[i])->SetValue(AnimationManagerMod::kMirrorNode, 0, right[i]);
  }
}

void RigBuilder::Finish() {
  if (!state_->main) return;
  FinishRootBone();
  panel_ = parts_->panel.Finish(*state_, PackColour(rig_.Block().GetColour(rig_param::kColor6)));
  PairMirrors();
  if (INode* node = rig_.ObjectNode()) state_->main->SetNodeTM(0, node->GetNodeTM(0));
  if (RigControl* control = FindNodeRigControl(state_->main)) control->SetFigureMode(false);
}

}  // namespace tavrilon
