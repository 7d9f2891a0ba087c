// SPDX-License-Identifier: MIT
// Nodes and what they hold, layers, selection, modifiers, custom attributes, track-view items.
#include "host/scene/bone_object.h"
#include "host/scene/core_interface.h"
#include "host/scene/point_helper.h"
#include "plugin/frame/animation_manager_mod.h"
#include "plugin/rig/rig_system.h"
#include "plugin/scene/edit_picks_test.h"
#include "plugin/shapes/control_helper.h"
#include "plugin/shapes/control_shape.h"
#include "support/scene_samples.h"

namespace tavrilon::scene_tests {

using namespace corvanta;

namespace {

constexpr size_t kMostNodes = 40;

Object* MakeObject(Dice& dice) {
  switch (dice.Int(9)) {
    case 0:
    case 1:
      return new PointHelper;
    case 2:
      return new BoneObject;
    case 3:
      return new ControlShape;
    case 4:
      return new ControlHelper;
    case 5:
      return new RigSystem;
    case 6:
      return nullptr;
    default:
      return new scene_samples::SampleObject;
  }
}

std::string DeleteNodes(Dice& dice) {
  Tab<INode*> nodes;
  std::string told = "delete";
  for (INode* node : PickNodes(dice, 1 + static_cast<int>(GetScene().Nodes().size() / 6))) {
    nodes.Append(node);
    told += " " + Tell(node);
  }
  GetScene().DeleteNodes(nodes);
  return told;
}

std::string CreateNode(Dice& dice) {
  if (GetScene().Nodes().size() > kMostNodes) return DeleteNodes(dice);
  INode* node = GetScene().CreateObjectNode(MakeObject(dice));
  node->SetNodeTM(0, PickMatrix(dice));
  return "create " + Tell(node);
}

std::string DeleteNode(Dice& dice) {
  INode* node = PickNode(dice);
  if (!node) return {};
  const std::string told = "delete " + Tell(node);
  GetScene().DeleteNode(node);
  return told;
}

std::string CloneNodes(Dice& dice) {
  if (GetScene().Nodes().size() > kMostNodes) return {};
  std::string told = "clone";
  const std::vector<INode*> nodes = PickNodes(dice, 3);
  for (INode* node : nodes) told += " " + Tell(node);
  GetScene().CloneNodes(nodes);
  return told;
}

std::string Attach(Dice& dice) {
  INode* child = PickNode(dice);
  INode* parent = dice.OneIn(4) ? GetScene().GetRootNode() : PickNode(dice);
  const bool keep = dice.OneIn(2);
  if (!child || !parent || child == parent || !MayFollowNode(child, parent)) return {};
  parent->AttachChild(child, keep);
  return "attach " + Tell(child) + " to " + Tell(parent) + (keep ? " where it is" : "");
}

std::string SetObject(Dice& dice) {
  INode* node = PickNode(dice);
  if (!node) return {};
  INode* other = PickNode(dice);
  if (dice.OneIn(3)) {
    node->SetObjectRef(MakeObject(dice));
    return "another object for " + Tell(node);
  }
  node->SetObjectRef(other->GetObjectRef());
  return "the object of " + Tell(other) + " on " + Tell(node);
}

std::string SetProperty(Dice& dice) {
  INode* node = PickNode(dice);
  if (!node) return {};
  const int which = dice.Int(15);
  const bool on = dice.OneIn(2);
  switch (which) {
    case 0:
      node->SetName(Format(L"name%d", dice.Int(9)));
      break;
    case 1:
      node->SetWireColor(static_cast<uint32_t>(dice.Int(0x1000000)));
      break;
    case 2:
      node->Hide(on);
      break;
    case 3:
      node->Freeze(on);
      break;
    case 4:
      node->SetRenderable(on);
      break;
    case 5:
      node->SetBoneOnOff(on);
      break;
    case 6:
      node->SetBoneFreeze(on);
      break;
    case 7:
      node->SetBoneAutoAlign(on);
      break;
    case 8:
      node->SetTransformLocks(static_cast<uint16_t>(dice.Int(512)));
      break;
    case 9:
      node->SetObjOffsetPos(PickPoint(dice));
      break;
    case 10:
      node->SetObjOffsetRot(PickTurn(dice));
      break;
    case 11:
      node->SetObjOffsetScale({PickStretch(dice), PickTurn(dice)});
      break;
    case 12: {
      NodeState state = node->State();
      state.name += L"'";
      state.hidden = on;
      node->SetState(state);
      break;
    }
    default:
      node->SetUserPropString(Format(L"key%d", dice.Int(3)), on ? Format(L"value%d", dice.Int(9)) : L"");
  }
  return "property " + std::to_string(which) + " of " + Tell(node);
}

std::string ChangeLayer(Dice& dice) {
  const auto& layers = GetScene().Layers();
  const int which = dice.Int(7);
  if (which == 0 || layers.empty()) {
    const WStr name = Format(L"layer%d", dice.Int(6));
    GetScene().MakeLayer(name, layers.empty() || dice.OneIn(2) ? nullptr : dice.Pick(layers).Get());
    return "make layer " + ToUtf8(name);
  }
  SceneLayer* layer = dice.Pick(layers).Get();
  const std::string told = "layer " + ToUtf8(layer->GetName());
  const bool on = dice.OneIn(2);
  if (which == 1) layer->SetName(Format(L"layer%d", dice.Int(6)));
  if (which == 2) layer->Hide(on);
  if (which == 3) layer->Freeze(on);
  if (which == 4) layer->SetParent(on ? nullptr : dice.Pick(layers).Get());
  if (which > 4)
    for (INode* node : PickNodes(dice, 3)) node->SetLayer(on ? layer : nullptr);
  return told + " change " + std::to_string(which);
}

std::string Select(Dice& dice) {
  Scene& scene = GetScene();
  const int which = dice.Int(5);
  const std::vector<INode*> nodes = PickNodes(dice, 4);
  if (which == 0) scene.ClearNodeSelection();
  if (which == 1 && !nodes.empty()) scene.SelectNode(nodes[0], dice.OneIn(2));
  if (which == 2 && !nodes.empty()) scene.DeselectNode(nodes[0]);
  if (which > 2) scene.SelectNodeTab(nodes, which == 3);
  return "select " + std::to_string(which);
}

Modifier* MakeModifier(Dice& dice) {
  if (dice.OneIn(2)) return new AnimationManagerMod;
  return new scene_samples::SampleModifier;
}

std::string ChangeModifiers(Dice& dice) {
  INode* node = PickNode(dice);
  if (!node) return {};
  auto* derived = dynamic_cast<DerivedObject*>(node->GetObjectRef());
  if (!derived || dice.OneIn(3)) {
    node->AddModifier(MakeModifier(dice));
    return "modifier on " + Tell(node);
  }
  if (dice.OneIn(2) || derived->NumModifiers() == 0) {
    derived->AddModifier(MakeModifier(dice), dice.Int(derived->NumModifiers() + 1));
    return "modifier into " + Tell(node);
  }
  derived->DeleteModifier(dice.Int(derived->NumModifiers()));
  return "modifier off " + Tell(node);
}

std::string ChangeAttributes(Dice& dice) {
  INode* node = PickNode(dice);
  if (!node) return {};
  ReferenceTarget* owner = node;
  if (dice.OneIn(3) && node->GetObjectRef()) owner = node->GetObjectRef();
  CustAttribContainer* attribs = owner->MakeCustAttribContainer();
  if (attribs->GetNumCustAttribs() > 0 && dice.OneIn(2)) {
    attribs->RemoveCustAttrib(dice.Int(attribs->GetNumCustAttribs()));
    return "attribute off " + Tell(node);
  }
  attribs->AppendCustAttrib(new scene_samples::SampleAttrib);
  return "attribute on " + Tell(node);
}

std::string ChangeTrackRoot(Dice& dice) {
  TrackViewNode* root = GetScene().GetTrackViewRootNode();
  if (root->NumItems() > 3 || (root->NumItems() > 0 && dice.OneIn(2))) {
    root->RemoveItem(dice.Int(root->NumItems()));
    return "track item off";
  }
  INode* node = PickNode(dice);
  ReferenceTarget* item = node && dice.OneIn(2) ? static_cast<ReferenceTarget*>(node->GetTMController()) : nullptr;
  if (!item) item = MakeController(dice, kFloatControlSuper);
  root->AddItem(item, Format(L"item%d", dice.Int(9)), {1, 2});
  return "track item on";
}

SetXFormPacket MakePacket(Dice& dice, const Matrix3& parent) {
  const Matrix3 axis = dice.OneIn(2) ? Matrix3() : PickMatrix(dice);
  switch (dice.Int(4)) {
    case 0:
      return SetXFormPacket::Move(PickPoint(dice, 20), parent, axis);
    case 1:
      return SetXFormPacket::Rotate(PickTurn(dice), dice.OneIn(2), parent, axis);
    case 2:
      return SetXFormPacket::Scale(PickStretch(dice), dice.OneIn(2), parent, axis);
    default:
      return SetXFormPacket::Set(PickMatrix(dice), parent);
  }
}

std::string Transform(Dice& dice) {
  INode* node = PickNode(dice);
  if (!node || !node->GetTMController()) return {};
  const TimeValue t = PickTime(dice);
  const bool animate = dice.OneIn(3);
  std::unique_ptr<AnimateScope> scope;
  if (animate) scope = std::make_unique<AnimateScope>();
  Interface& core = *GetCOREInterface();
  core.SetPivotMode(dice.OneIn(5) ? PivotMode::PivotOnly : PivotMode::None);
  core.SetLeaveChildrenUnaffected(dice.OneIn(8));
  core.SetRefCoordSys(dice.OneIn(3) ? RefCoordSys::Local : RefCoordSys::World);
  std::string told = "set";
  if (dice.OneIn(2)) {
    node->SetNodeTM(t, PickMatrix(dice));
  } else {
    SetXFormPacket packet = MakePacket(dice, node->GetParentTM(t));
    told = "packet " + std::to_string(packet.command);
    node->GetTMController()->SetValue(t, packet, true, CTRL_RELATIVE);
  }
  core.SetPivotMode(PivotMode::None);
  core.SetLeaveChildrenUnaffected(false);
  core.SetRefCoordSys(RefCoordSys::World);
  return told + " to " + Tell(node) + " at " + std::to_string(t) + (animate ? " animated" : "");
}

}  // namespace

const std::vector<EditRow> kNodeEdits = {
    {"create", 10, CreateNode},
    {"delete", 3, DeleteNode},
    {"delete set", 2, DeleteNodes},
    {"clone", 2, CloneNodes},
    {"attach", 6, Attach},
    {"object", 2, SetObject},
    {"property", 8, SetProperty},
    {"layer", 5, ChangeLayer},
    {"select", 5, Select},
    {"modifier", 4, ChangeModifiers},
    {"attribute", 3, ChangeAttributes},
    {"track root", 2, ChangeTrackRoot},
    {"transform", 12, Transform},
};

}  // namespace tavrilon::scene_tests
