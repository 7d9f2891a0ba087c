// SPDX-License-Identifier: MIT
#include "plugin/rig/detail/wiring.h"

#include "host/anim/class_ids.h"
#include "host/core/class_desc.h"
#include "host/core/hold.h"
#include "host/core/param_block.h"
#include "plugin/controllers/rig_control.h"
#include "plugin/frame/find.h"

namespace tavrilon::detail {

using namespace corvanta;

namespace {

namespace rotation_space {
enum Param : ParamID { kTarget = 0, kWeight = 1, kKeepInitialOffset = 2, kInitialOffset = 3 };
constexpr int kWrapped = 1;
}  // namespace rotation_space

}  // namespace

ReferenceTarget* NewObject(TavrilonClass row) {
  const ClassDesc& desc = DescOf(row);
  return desc.create ? desc.create(false) : nullptr;
}

Control* NewControl(TavrilonClass row) {
  ReferenceTarget* object = NewObject(row);
  return object ? object->AsControl() : nullptr;
}

ParamBlock2* BlockOf(const ReferenceTarget* object) {
  return object && object->NumRefs() > 0 ? dynamic_cast<ParamBlock2*>(object->GetReference(0)) : nullptr;
}

void AssignTransform(INode* node, Control* control) {
  const HoldResume recorded;
  node->SetTMController(control);
}

Control* AssignRigControl(INode* node, int rotationOrder) {
  const Matrix3 tm = node->GetNodeTM(0);
  auto* control = new RigControl;
  if (Control* rotation = GetRealRotationController(control))
    if (auto* euler = static_cast<IEulerControl*>(rotation->GetInterface(I_EULERCTRL))) euler->SetOrder(rotationOrder);
  AssignTransform(node, control);
  control->GetParamBlock()->SetValue(RigControl::kFigureMode, 0, true);
  node->SetNodeTM(0, tm);
  return control;
}

// What is kept is the turn from the target to the parent, without the wrapped controller's own: that one acts on top.
ParamBlock2* AddRotationSpace(INode* node, INode* target, float weight) {
  Control* space = NewControl(TavrilonClass::RotationSpace);
  ParamBlock2* block = BlockOf(space);
  if (!node || !target || !block) return nullptr;
  const Matrix3 offset = Orthogonalize(node->GetParentTM(0) * Inverse(target->GetNodeTM(0)));
  space->ReplaceReference(rotation_space::kWrapped, node->GetTMController());
  AssignTransform(node, space);
  block->SetValue(rotation_space::kWeight, 0, weight);
  block->SetValue(rotation_space::kKeepInitialOffset, 0, true);
  block->SetValue(rotation_space::kTarget, 0, static_cast<ReferenceTarget*>(target));
  block->SetValue(rotation_space::kInitialOffset, 0, offset);
  return block;
}

bool SetRotationTrack(INode* node, int axis, Control* track) {
  Control* rotation = GetRealRotationController(node->GetTMController());
  return rotation && track && rotation->AssignController(track, axis);
}

bool SetPositionTrack(INode* node, int axis, Control* track) {
  Control* transform = node->GetTMController();
  Control* position = transform ? transform->GetPositionController() : nullptr;
  if (position && !position->CanAssignController(axis)) {
    position = static_cast<Control*>(CreateInstance(kPositionControlSuper, kPositionXyzId));
    if (!transform->SetPositionController(position)) return false;
  }
  return position && track && position->AssignController(track, axis);
}

}  // namespace tavrilon::detail
