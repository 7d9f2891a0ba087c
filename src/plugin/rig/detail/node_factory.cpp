// SPDX-License-Identifier: MIT
#include "plugin/rig/detail/node_factory.h"

#include <algorithm>

#include "host/core/hold.h"
#include "host/scene/bone_object.h"
#include "host/scene/core_interface.h"
#include "host/scene/point_helper.h"
#include "plugin/constraints/parent_constraint.h"
#include "plugin/constraints/transform_constraint.h"
#include "plugin/controllers/rig_control.h"
#include "plugin/controllers/static_controls.h"
#include "plugin/frame/animation_manager_mod.h"
#include "plugin/frame/find.h"
#include "plugin/rig/detail/wiring.h"
#include "plugin/shapes/control_shape.h"

namespace tavrilon::detail {

using namespace corvanta;

namespace {

constexpr uint32_t kBoneColour = 0xCAB9AD;
constexpr uint32_t kHelperColour = 0x808080;
constexpr uint16_t kAllLocks = 0x1FF;

}  // namespace

ParamBlock2* ManagerBlock(INode* node) {
  AnimationManagerMod* manager = FindManagerMod(node);
  return manager ? manager->GetParamBlock() : nullptr;
}

INode* NodeFactory::MakeNode(Object* object, const wchar_t* kind, const WStr& base) {
  INode* node = nullptr;
  {
    const HoldResume recorded;
    node = GetCOREInterface()->CreateObjectNode(object);
  }
  if (!node) return nullptr;
  rig_.OwnNode(node);
  const WStr prefix = rig_.RigName() + L"_";
  node->SetName(*kind ? prefix + kind + L"_" + base : prefix + base);
  return node;
}

void NodeFactory::SetShape(const ControlSpec& spec, ParamBlock2& block) const {
  // Nothing has drawn the shape yet and nothing listens: the writes need not be told one by one.
  block.EnableNotifications(false);
  block.SetValue(kControlType, 0, static_cast<int>(spec.shape));
  block.SetValue(kControlGizmo, 0, TransMatrix(spec.shapeOffset));
  block.SetValue(kControlUniform, 0, true);
  for (const ParamID id : {kControlSize, kControlLength, kControlWidth, kControlHeight})
    block.SetValue(id, 0, spec.size);
  block.SetValue(kControlAxis, 0, spec.shapeAxis);
  block.SetValue(kControlThickness, 0, 0.5f);
  block.SetValue(kControlCorner, 0, 0.0f);
  block.SetValue(kControlSteps, 0, 6);
  for (const ParamID id :
       {kControlOffsetLine, kControlFaceCamera, kControlConstantScreenSize, kControlDrawOnTop, kSelectorActive})
    block.SetValue(id, 0, false);
  block.SetValue(kControlWarpAmount, 0, 0.0f);
  block.SetValue(kControlWarpAxis, 0, 0);
  block.EnableNotifications(true);
}

void NodeFactory::SetSide(const ControlSpec& spec, INode* node) {
  using namespace rig_param;
  const bool right = spec.name.side == kSideRight, left = spec.name.side == kSideLeft;
  if (right) {
    // The right shape is the reflection of the left one, whose object it will share.
    const Point3 mirror = spec.mirrorPosAxis != 0 ? Point3{1, 1, -1} : Point3{-1, 1, 1};
    node->SetObjOffsetScale({mirror, Quat()});
    state_.rightControls.push_back(node);
  } else if (left) {
    state_.leftControls.push_back(node);
  }
  const ID dark = right ? kColor1 : left ? kColor3 : kColor5;
  const ID colour = spec.secondary ? dark : static_cast<ID>(dark + 1);
  node->SetWireColor(PackColour(rig_.Block().GetColour(colour)));
}

void NodeFactory::AddManager(const ControlSpec& spec, INode* node) const {
  auto* manager = new AnimationManagerMod;
  ParamBlock2& block = *manager->GetParamBlock();
  using Manager = AnimationManagerMod;
  block.SetValue(Manager::kTags, 0, spec.name.Base());
  block.SetValue(Manager::kUseMirrorPos, 0, true);
  block.SetValue(Manager::kUseMirrorRot, 0, true);
  block.SetValue(Manager::kMirrorPosAxis, 0, spec.mirrorPosAxis);
  block.SetValue(Manager::kMirrorRotAxis, 0, spec.mirrorRotAxis);
  block.SetValue(Manager::kGroup, 0, spec.group);
  node->AddModifier(manager);
}

INode* NodeFactory::MakeControl(const ControlSpec& spec) {
  auto* shape = new ControlShape;
  INode* node = MakeNode(shape, L"", spec.name.Base());
  if (!node) return nullptr;
  state_.controls.push_back(node);
  auto* control = new RigControl;
  if (spec.rotationOrder != 0)
    if (Control* rotation = GetRealRotationController(control))
      if (auto* euler = static_cast<IEulerControl*>(rotation->GetInterface(I_EULERCTRL)))
        euler->SetOrder(spec.rotationOrder);
  AssignTransform(node, control);
  control->GetParamBlock()->SetValue(RigControl::kFigureMode, 0, true);
  SetShape(spec, *shape->GetParamBlock());
  node->SetRenderable(false);
  SetSide(spec, node);
  AddManager(spec, node);
  if (spec.parent) spec.parent->AttachChild(node, false);
  node->SetNodeTM(0, spec.tm);
  node->SetLayer(state_.controlLayer.Get());
  return node;
}

INode* NodeFactory::MakeBone(const BoneSpec& spec) {
  auto* bone = new BoneObject;
  INode* node = MakeNode(bone, L"bone", spec.name.Base());
  if (!node) return nullptr;
  state_.bones.push_back(node);
  ParamBlock2& block = *bone->GetParamBlock();
  block.EnableNotifications(false);
  block.SetValue(BoneObject::kWidth, 0, spec.width);
  block.SetValue(BoneObject::kHeight, 0, spec.width);
  block.SetValue(BoneObject::kLength, 0, spec.length);
  block.SetValue(BoneObject::kTaper, 0, spec.taper ? 0.9f : 0.0f);
  for (const ParamID id : {BoneObject::kSideFins, BoneObject::kFrontFin, BoneObject::kBackFin})
    block.SetValue(id, 0, false);
  block.EnableNotifications(true);
  node->SetWireColor(kBoneColour);
  if (spec.parent) spec.parent->AttachChild(node, false);
  if (spec.follows) {
    auto* constraint = new TransformConstraint;
    ParamBlock2& targets = *constraint->GetParamBlock();
    targets.Append(kWeight, 1.0f);
    targets.Append(kTargetList, spec.follows);
    AssignTransform(node, constraint);
  } else {
    AssignTransform(node, new StaticTransform);
    node->SetNodeTM(0, spec.tm);
  }
  node->SetBoneOnOff(true);
  node->SetBoneFreeze(false);
  node->SetBoneAutoAlign(false);
  if (spec.lock) node->SetTransformLocks(kAllLocks);
  node->SetLayer(state_.boneLayer.Get());
  return node;
}

INode* NodeFactory::MakeHelper(const PartName& name, const Matrix3& tm, INode* parent, float size) {
  auto* point = new PointHelper;
  INode* node = MakeNode(point, L"helper", name.Base());
  if (!node) return nullptr;
  state_.helpers.push_back(node);
  point->GetParamBlock()->SetValue(PointHelper::kSize, 0, size);
  node->SetWireColor(kHelperColour);
  if (parent) parent->AttachChild(node, false);
  AssignTransform(node, new StaticTransform);
  node->SetNodeTM(0, tm);
  node->SetLayer(state_.helperLayer.Get());
  return node;
}

// The blend at rest is then the parent's matrix, and the node's own controller, now the inner one, is untouched. It
// stays so when main is moved, since offsets and targets move together.
ParamBlock2* NodeFactory::BindParents(INode* node, std::span<const ParentTarget> targets) {
  const auto missing = [](const ParentTarget& target) { return !target.node; };
  if (!node || targets.empty() || std::any_of(targets.begin(), targets.end(), missing)) return nullptr;
  const Matrix3 parent = node->GetParentTM(0);
  auto* constraint = new ParentConstraint(true);
  constraint->BindReference(0, new ParamBlock2(ParentConstraint::BlockDesc()));
  constraint->SetInner(node->GetTMController());
  constraint->SetInitialTM(parent);
  ParamBlock2& block = *constraint->GetParamBlock();
  block.SetValue(kRelative, 0, true);
  for (const ParentTarget& target : targets) {
    block.Append(kWeight, target.weight);
    block.Append(kTargetList, target.node);
    block.Append(ParentConstraint::kOffset, parent * Inverse(target.node->GetNodeTM(0)));
  }
  AssignTransform(node, constraint);
  return &block;
}

}  // namespace tavrilon::detail
