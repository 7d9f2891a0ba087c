// SPDX-License-Identifier: MIT
// The lines that show which limb a goal or a target belongs to.
#include "host/view/draw.h"
#include "plugin/frame/find.h"
#include "plugin/solvers/ikfk_chain.h"
#include "plugin/solvers/ikfk_control.h"

namespace tavrilon {

using namespace corvanta;
using namespace ikfk_control;

namespace {
enum LineDisplay : int { kNever = 0, kWhenSelected = 1, kAlways = 2 };
}

bool IKFKControl::LineOf(TimeValue t, INode* node, Point3 (&line)[2]) const {
  IKFKChain* chain = GetChain();
  if (!chain || !node || (type_ != kGoal && type_ != kTarget)) return false;
  const int shown =
      chain->GetParamBlock()->GetInt(type_ == kGoal ? ikfk_chain::kDisplayGoal : ikfk_chain::kDisplayTarget);
  if (shown == kNever || (shown == kWhenSelected && !node->Selected())) return false;
  if (type_ == kTarget && !chain->HasTarget()) return false;
  const int joint = type_ == kGoal ? 0 : 1;
  if (joint >= chain->NumJoints()) return false;
  line[0] = node->GetNodeTM(t).GetTrans();
  line[1] = chain->GetJointPose(joint, t).tm.GetTrans();
  return true;
}

// In FK the line is black.
void IKFKControl::Display(TimeValue t, INode* node, GraphicsWindow& view) {
  if (fk_) fk_->Display(t, node, view);
  Point3 line[2];
  if (!LineOf(t, node, line)) return;
  const float blend = GetChain()->GetParamBlock()->GetFloat(ikfk_chain::kIkfkBlend, t);
  const DrawScope scope(view);
  view.SetTransform(Matrix3());
  const Colour colour = node->Selected() ? Colour{1, 1, 1} : Colour{0.496f, 0.564f, 0.661f};
  view.SetColour(Colour{colour.r * blend, colour.g * blend, colour.b * blend});
  view.Segment(line[0], line[1]);
}

void IKFKControl::GetWorldBoundBox(TimeValue t, INode* node, Box3& box) {
  if (fk_) fk_->GetWorldBoundBox(t, node, box);
  Point3 line[2];
  if (!LineOf(t, node, line)) return;
  for (const Point3& p : line) box += p;
}

}  // namespace tavrilon
