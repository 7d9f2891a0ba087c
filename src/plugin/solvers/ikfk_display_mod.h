// SPDX-License-Identifier: MIT
// The modifier that shrinks the helpers of a limb with its blend: joints in IK, goal and target in FK.
#pragma once

#include "host/scene/object.h"
#include "plugin/frame/class_table.h"

namespace tavrilon {

/// How much of its helper a node shows at `t`: the blend of its chain for goal, goal parent and target, the rest of it
/// for a joint; 1 when the chain does not affect helpers, 0.5 for a node without an IKFKControl.
float HelperWeight(const corvanta::INode* node, corvanta::TimeValue t, corvanta::Interval& valid);

/// Scales what lies below it about the centre of its box by HelperWeight. No parameters.
class IKFKDisplayMod final : public corvanta::Modifier {
 public:
  static constexpr corvanta::Class_ID kClassId = ClassIdOf(TavrilonClass::IKFKDisplayMod);
  corvanta::Class_ID ClassID() const override { return kClassId; }
  corvanta::WStr GetClassName() const override { return DescOf(TavrilonClass::IKFKDisplayMod).className; }
  void ModifyDisplay(corvanta::TimeValue t, corvanta::INode* node, corvanta::ModifiedDisplay& display) override;
};

}  // namespace tavrilon
