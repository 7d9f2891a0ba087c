// SPDX-License-Identifier: MIT
#include "plugin/rig/detail/wiring.h"

#include "host/anim/class_ids.h"
#include "host/core/class_desc.h"
#include "host/core/hold.h"
#include "host/core/param_block.h"
#include "plugin/constraints/rotation_space.h"
#include "plugin/controllers/rig_control.h"

namespace tavrilon::detail {

using namespace corvanta;

Control* NewControl(TavrilonClass row) {
  ReferenceTarget* object = DescOf(row).Create();
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

ParamBlock2* AddRotationSpace(INode* node, INode* target, float weight) {
  if (!node || !target) return nullptr;
  auto* space = new RotationSpace;
  space->SetInner(node->GetTMController());
  AssignTransform(node, space);
  ParamBlock2* block = space->GetParamBlock();
  block->SetValue(RotationSpace::kWeight, 0, weight);
  block->SetValue(RotationSpace::kKeepInitialOffset, 0, true);
  space->SetTarget(target);  // takes the present pose as the rest
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
