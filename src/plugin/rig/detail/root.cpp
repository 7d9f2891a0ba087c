// SPDX-License-Identifier: MIT
// The root bone carries a character's motion over the ground, for engines that want it apart from the body's.
#include "plugin/attributes/attributes.h"
#include "plugin/connections/connect.h"
#include "plugin/constraints/root_constraint.h"
#include "plugin/rig/detail/trunk.h"
#include "plugin/rig/detail/wiring.h"

namespace tavrilon::detail {

using namespace corvanta;

void FollowTorso(INode* root, INode* main, INode* torso) {
  if (!root || !main || !torso) return;
  auto* constraint = new RootConstraint;
  constraint->SetInner(root->GetTMController());
  AssignTransform(root, constraint);
  constraint->SetTarget(torso);
  ParamBlock2& block = *constraint->GetParamBlock();
  block.SetValue(RootConstraint::kVerticalAxis, 0, 2);
  block.SetValue(RootConstraint::kInitialTargetTM, 0, torso->GetNodeTM(0) * Inverse(main->GetNodeTM(0)));
  ParamBlock2* attrib = AddAttrib(main, TavrilonClass::RootAttrib);
  if (!attrib) return;
  const struct {
    ParamID constraint, attrib;
  } kWires[] = {{RootConstraint::kFollowHorizontal, root_attrib::kFollowHorizontal},
                {RootConstraint::kFollowVertical, root_attrib::kFollowVertical},
                {RootConstraint::kFollowTurning, root_attrib::kFollowTurning},
                {RootConstraint::kVerticalOffset, root_attrib::kVerticalOffset},
                {RootConstraint::kGroundOffset, root_attrib::kGroundOffset},
                {RootConstraint::kUseGround, root_attrib::kUseGround}};
  for (const auto& wire : kWires) ConnectFloat(block, wire.constraint, *attrib, wire.attrib, {.twoWay = true});
}

}  // namespace tavrilon::detail
