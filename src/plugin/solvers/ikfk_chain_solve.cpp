// SPDX-License-Identifier: MIT
// Evaluation of a chain: what the controllers and nodes say goes into a LimbIn, the answer is kept for all joints.
#include "plugin/controllers/rig_control.h"
#include "plugin/controllers/rig_offset.h"
#include "plugin/frame/find.h"
#include "plugin/frame/guard.h"
#include "plugin/frame/rig_maths.h"
#include "plugin/solvers/ikfk_chain.h"
#include "plugin/solvers/ikfk_control.h"
#include "plugin/solvers/turn.h"

namespace tavrilon {

using namespace corvanta;
using namespace ikfk_chain;

// What is in use.

IKFKControl* IKFKChain::ControlOf(ParamID id, int tab) const {
  if (!block_ || tab < 0 || tab >= block_->Count(id)) return nullptr;
  IKFKControl* control = FindIKFKControl(NodeOf(id, tab));
  return control && FindIKFKChain(control->GetChainNode()) == this ? control : nullptr;
}

bool IKFKChain::HasGoalParent() const {
  if (!block_ || !block_->GetBool(kUseGoalParent)) return false;
  const INode* parent = NodeOf(kGoalParent);
  const INode* goal = parent ? NodeOf(kGoal) : nullptr;
  return goal && goal != parent && parent->IsAncestorOf(goal);
}

bool IKFKChain::HasTarget() const { return block_ && block_->GetBool(kUseTarget) && NodeOf(kTarget); }

bool IKFKChain::HasSpace() const {
  return block_ && block_->GetBool(kUseRotationSpace) && NodeOf(kRotationSpaceNode) && !InFigureMode();
}

bool IKFKChain::InFigureMode() const {
  if (NumJoints() == 0) return false;
  const RigControl* rig = FindNodeRigControl(NodeOf(kJoints));
  return rig && rig->GetFigureMode();
}

float IKFKChain::GetBlend(TimeValue t, Interval& valid) const {
  if (!block_ || suspendMatch_ > 0 || !NodeOf(kGoal) || InFigureMode()) return 0;
  return ClampValue(block_->GetFloat(kIkfkBlend, t, valid), 0.0f, 1.0f);
}

// Answers.

void IKFKChain::GetValue(TimeValue t, ValueRef value, Interval& valid, GetSetMethod) {
  GetJoint(NumJoints() - 1, t, value.Matrix3(), valid);
}

void IKFKChain::GetJoint(int i, TimeValue t, Matrix3& tm, Interval& valid) {
  if (!block_) return;
  EnsureSolved(t);
  valid &= valid_;
  if (i >= 0 && i < static_cast<int>(poses_.size())) tm = poses_[static_cast<size_t>(i)].tm;
}

JointPose IKFKChain::GetJointPose(int i, TimeValue t) {
  if (block_) EnsureSolved(t);
  return i >= 0 && i < static_cast<int>(poses_.size()) ? poses_[static_cast<size_t>(i)] : JointPose{};
}

float IKFKChain::GetStretch(TimeValue t) {
  if (block_) EnsureSolved(t);
  return stretch_;
}

Quat IKFKChain::GetSpaceQuat(TimeValue t) const {
  if (!HasSpace()) return {};
  Interval valid = FOREVER;
  return SpaceQuatAt(t, ParentTMAt(t, valid), valid);
}

Matrix3 IKFKChain::GetChainParentTM(TimeValue t) const {
  Interval valid = FOREVER;
  return ParentTMAt(t, valid);
}

// Solving.

void IKFKChain::SolveSeen(TimeValue t) {
  Interval valid = FOREVER;
  const float blend = GetBlend(t, valid);
  Solve(t, blend, -1);
  valid_ &= valid;
}

void IKFKChain::SolveOnce(TimeValue t, float blend, int fixedJoint) {
  Solve(t, NodeOf(kGoal) ? blend : 0, fixedJoint);
  dirty_ = true;
}

void IKFKChain::Solve(TimeValue t, float blend, int fixedJoint) {
  const ReentryGuard guard(solving_);
  if (guard.Reentered()) return;
  ++solveCount_;
  dirty_ = false;
  valid_ = FOREVER;
  const auto n = static_cast<size_t>(NumJoints());
  if (joints_.size() != n) {
    joints_.resize(n);
    poses_.resize(n);
  }
  LimbIn in;
  in.blend = blend;
  in.fixedJoint = fixedJoint;
  in.parentTM = parentTM_ = ParentTMAt(t, valid_);
  GatherJoints(t);
  if (n > 0 && blend < 1 && HasSpace()) joints_[0].rot = joints_[0].rot * SpaceQuatAt(t, parentTM_, valid_);
  if (blend > 0) GatherIK(t, in);
  in.joints = joints_;
  stretch_ = SolveLimb(in, poses_, work_);
}

Matrix3 IKFKChain::ParentTMAt(TimeValue t, Interval& valid) const {
  const INode* first = NumJoints() > 0 ? NodeOf(kJoints) : nullptr;
  INode* parent = first ? first->GetParentNode() : nullptr;
  return parent && !parent->IsRootNode() ? parent->GetNodeTM(t, valid) : Matrix3();
}

void IKFKChain::GatherJoints(TimeValue t) {
  const float stretch = block_->GetFloat(kManualStretch, t, valid_);
  for (size_t i = 0; i < joints_.size(); ++i) {
    LimbJoint& joint = joints_[i];
    const INode* node = NodeOf(kJoints, static_cast<int>(i));
    Control* own = node ? node->GetTMController() : nullptr;
    const IKFKControl* control = FindIKFKControl(node);
    Control* fk = control ? control->GetFK() : own;
    Matrix3 tm;
    if (fk && fk != this) fk->GetValue(t, tm, valid_, CTRL_RELATIVE);
    joint.pos = tm.GetTrans();
    joint.scale = RowLengths(tm);
    joint.rot = OrthoQuat(tm);
    joint.preferred = {};
    if (control && control->GetPreferred()) control->GetPreferred()->GetValue(t, joint.preferred, valid_);
    if (i == 0) continue;
    joint.pos = joint.pos * joints_[i - 1].scale * stretch;
    joint.scale = joint.scale * joints_[i - 1].scale;
  }
}

void IKFKChain::GatherIK(TimeValue t, LimbIn& in) {
  const ParamBlock2& block = *block_;
  in.goalTM = NodeOf(kGoal)->GetNodeTM(t, valid_);
  in.autoStretch = block.GetFloat(kAutoStretch, t, valid_);
  in.softness = block.GetFloat(kSoftIk, t, valid_);
  in.lastJointFollowsGoal = block.GetBool(kLastJointIkRotation);
  in.iterations = block.GetInt(kIterations);
  if (joints_.size() > 3) in.flexionBias = block.GetFloat(kFlexionBias, t, valid_);
  in.hasTarget = HasTarget();
  if (in.hasTarget) {
    in.target = NodeOf(kTarget)->GetNodeTM(t, valid_).GetTrans();
    if (joints_.size() == 2) in.aimTwist = AimTwist(t);
    return;
  }
  in.swivel = block.GetFloat(kSwivelAngle, t, valid_);
  constexpr int kGoalSpace = 0;
  if (block.GetInt(kParentSpace) == kGoalSpace)
    in.preferredSpace = OrthoQuat(GoalBaseTM(t, valid_) * Inverse(parentTM_));
}

// The matrix that the goal, or what moves it, is measured in.
Matrix3 IKFKChain::GoalBaseTM(TimeValue t, Interval& valid) const {
  INode* node = NodeOf(HasGoalParent() ? kGoalParent : kGoal);
  if (!node) return {};
  if (const IKFKControl* control = FindIKFKControl(node)) return control->GetBaseTM(t, valid);
  INode* parent = node->GetParentNode();
  return parent ? parent->GetNodeTM(t, valid) : Matrix3();
}

Quat IKFKChain::SpaceQuatAt(TimeValue t, const Matrix3& parentTM, Interval& valid) const {
  INode* node = NodeOf(kRotationSpaceNode);
  Matrix3 space = node ? node->GetNodeTM(t, valid) : Matrix3();
  if (block_->GetBool(kKeepInitialRotSpace)) space = block_->GetMatrix3(kInitialRotSpaceOffset) * space;
  const Quat turn = OrthoQuat(space * Inverse(parentTM));
  return SlerpClosest(Quat(), turn, block_->GetFloat(kRotationSpace, t, valid));
}

float IKFKChain::AimTwist(TimeValue t) {
  const IKFKControl* control = FindIKFKControl(NodeOf(kJoints));
  Control* rotation = control ? GetRealRotationController(control->GetFK()) : nullptr;
  if (!rotation) return 0;
  if (Control* x = rotation->GetXController()) {
    float angle = 0;
    x->GetValue(t, angle, valid_);
    return angle;
  }
  Quat turn;
  rotation->GetValue(t, turn, valid_);
  return TurnAbout(turn, 0);
}

}  // namespace tavrilon
