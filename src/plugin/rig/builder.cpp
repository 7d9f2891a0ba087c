// SPDX-License-Identifier: MIT
// So far a build makes the rig's top control only; spines, limbs, heads and extras are not built yet.
#include "plugin/rig/builder.h"

#include "host/scene/core_interface.h"
#include "plugin/shapes/control_shape.h"
#include "plugin/shapes/shape_type.h"

namespace tavrilon {

using namespace corvanta;

RigBuilder::RigBuilder(RigSystem& rig) : rig_(rig), frames_(rig.Frames()) {}

void RigBuilder::Prepare() {
  auto* shape = new ControlShape;
  {
    HoldResume recorded;
    main_ = GetCOREInterface()->CreateObjectNode(shape);
  }
  rig_.OwnNode(main_);
  main_->SetName(rig_.RigName() + L"_main");
  ParamBlock2& block = *shape->GetParamBlock();
  block.SetValue(kControlType, 0, 5);
  block.SetValue(kControlAxis, 0, 2);
  // An empty template has no box: the control then fits the figure's height.
  const float box = rig_.PointBox().Diagonal();
  block.SetValue(kControlSize, 0, (box > 0 ? box : rig_.Size()) * 0.5f);
}

void RigBuilder::Build() {}
void RigBuilder::FinishComponents() {}
void RigBuilder::BuildExtra(const RigExtra&, int) {}

void RigBuilder::Finish() {
  if (INode* node = rig_.ObjectNode()) main_->SetNodeTM(GetCOREInterface()->GetTime(), node->GetNodeTM(0));
}

}  // namespace tavrilon
