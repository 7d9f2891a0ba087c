// SPDX-License-Identifier: MIT
// Corrective helpers: bones that turn half of the way with a joint and move out of it as it bends, so that skin keeps
// its volume there.
#include "host/core/param_block.h"
#include "plugin/connections/connection_params.h"
#include "plugin/rig/detail/limb.h"
#include "plugin/rig/detail/wiring.h"

namespace tavrilon::detail {

using namespace corvanta;

namespace {

/// How far the bone stands out at a bend: radians, and lengths of the upper segment.
struct Pose {
  float angle, distance;
};
constexpr Pose kPoses[] = {{0, 0}, {kHalfPi, 0.06f}, {140 * kDegToRad, 0.12f}};

Control* NewBulge(INode* lower, INode* upper, float length) {
  Control* poses = NewControl(TavrilonClass::TwistPosesFloat);
  ParamBlock2* block = BlockOf(poses);
  if (!block) return nullptr;
  using namespace twist_poses;
  block->SetValue(kComponent, 0, static_cast<int>(twist_poses::Component::BendAngle));
  block->SetValue(kReference, 0, static_cast<ReferenceTarget*>(upper));
  block->SetValue(kNode, 0, static_cast<ReferenceTarget*>(lower));
  block->SetValue(kRest, 0, lower->GetNodeTM(0) * Inverse(upper->GetNodeTM(0)));
  for (const Pose& pose : kPoses) {
    block->Append(kAngle, pose.angle);
    block->Append(kValue, pose.distance * length);
  }
  return poses;
}

void BuildCorrective(Limb& limb, size_t joint) {
  const JointRow& row = limb.row.joints[joint];
  INode* lower = limb.controls[joint];
  INode* upper = joint > 0 ? limb.controls[joint - 1] : limb.hung.control;
  if (!*row.corrective || !lower || !upper) return;
  const Matrix3 tm = lower->GetNodeTM(0);
  INode* helper = limb.parts.make.MakeHelper(limb.Name(row.corrective), tm, upper, 0);
  if (!helper) return;
  AssignRigControl(helper, 0);
  const float length = Length(upper->GetNodeTM(0).GetTrans() - tm.GetTrans());
  SetPositionTrack(helper, 1, NewBulge(lower, upper, row.outward * length));
  AddRotationSpace(helper, lower, 0.5f);
  // It hangs on the bone of the segment above.
  INode* bone = joint > 0 ? limb.bones[joint - 1] : limb.hung.bone;
  BoneSpec spec{limb.Name(row.corrective), tm, bone, 0.15f * length};
  spec.follows = helper;
  limb.parts.make.MakeBone(spec);
}

}  // namespace

void BuildCorrectives(Limb& limb) {
  if (!limb.Option(rig_param::kCorrectiveBones)) return;
  for (size_t i = 0; i < limb.controls.size(); ++i) BuildCorrective(limb, i);
}

}  // namespace tavrilon::detail
