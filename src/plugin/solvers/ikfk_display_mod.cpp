// SPDX-License-Identifier: MIT
#include "plugin/solvers/ikfk_display_mod.h"

#include "host/scene/node.h"
#include "plugin/solvers/ikfk_chain.h"
#include "plugin/solvers/ikfk_control.h"

namespace tavrilon {

using namespace corvanta;

ReferenceTarget* CreateIKFKDisplayMod(bool) { return new IKFKDisplayMod; }

float HelperWeight(const INode* node, TimeValue t, Interval& valid) {
  const IKFKControl* control = FindIKFKControl(node);
  if (!control) return 0.5f;
  const IKFKChain* chain = control->GetChain();
  if (!chain || !chain->GetParamBlock()->GetBool(ikfk_chain::kAffectHelpersDisplay)) return 1;
  const float blend = chain->GetParamBlock()->GetFloat(ikfk_chain::kIkfkBlend, t, valid);
  return control->Type() == ikfk_control::kJoint ? 1 - blend : blend;
}

void IKFKDisplayMod::ModifyDisplay(TimeValue t, INode* node, ModifiedDisplay& display) {
  Object* object = node ? node->GetBaseObject() : nullptr;
  if (!object) return;
  const float weight = HelperWeight(node, t, display.valid);
  const Point3 centre = (object->GetLocalBoundBox(t, node) * display.tm).Center();
  display.tm = display.tm * TransMatrix(-centre) * ScaleMatrix({weight, weight, weight}) * TransMatrix(centre);
}

}  // namespace tavrilon
