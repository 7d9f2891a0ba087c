// SPDX-License-Identifier: MIT
// Matching: FK takes on the pose of IK and the other way round. What is written is first worked out as a whole, since a
// write makes the chain solve anew.
#include "host/core/hold.h"
#include "host/scene/core_interface.h"
#include "plugin/controllers/rig_control.h"
#include "plugin/frame/rig_maths.h"
#include "plugin/solvers/ikfk_chain.h"
#include "plugin/solvers/ikfk_control.h"
#include "plugin/solvers/match.h"

namespace tavrilon {

using namespace corvanta;
using namespace ikfk_chain;

namespace {

constexpr const wchar_t* kStepName = L"IKFK Change";

TimeValue Now() { return GetCOREInterface()->GetTime(); }

Matrix3 Rigid(const Quat& turn, const Point3& place) {
  Matrix3 tm = QuatMatrix(turn);
  tm.SetTrans(place);
  return tm;
}

// Moves a wrapped node, or one of its own, in the world. The mirrored twin is not moved along.
class NodeMove {
 public:
  NodeMove(INode& node, TimeValue t) : node_(node), t_(t) {}
  void TurnBy(const Quat& world) {
    Send(SetXFormPacket::Rotate(world, true, node_.GetParentTM(t_), TransMatrix(node_.GetNodeTM(t_).GetTrans())));
  }
  void PlaceAt(const Point3& world) {
    Send(SetXFormPacket::Move(world - node_.GetNodeTM(t_).GetTrans(), node_.GetParentTM(t_)));
  }

 private:
  void Send(SetXFormPacket packet) {
    const MirrorPairOff off;
    if (Control* control = node_.GetTMController()) control->SetValue(t_, packet, true, CTRL_RELATIVE);
  }
  INode& node_;
  TimeValue t_;
};

/// Brings an FK controller to a local rotation. An Euler controller takes a turn about nearly one of its rings for one
/// about the ring itself: what is missing then is far from any ring.
void TurnFK(const IKFKControl& control, TimeValue t, const Quat& wanted) {
  constexpr int kMost = 3;
  constexpr float kClose = 1e-6f;  // of the quaternion's vector: half a millionth of a turn's angle
  const MirrorPairOff off;
  for (int i = 0; i < kMost; ++i) {
    Interval valid = FOREVER;
    const Quat turn = OrthoQuat(control.GetFKValue(t, valid));
    const Quat missing = MakeClosest(wanted, turn) * Conjugate(turn);
    if (i > 0 && Length(Point3{missing.x, missing.y, missing.z}) < kClose) return;
    SetXFormPacket packet = SetXFormPacket::Rotate(missing, true, Matrix3(), QuatMatrix(turn));
    control.GetFK()->SetValue(t, packet, true, CTRL_RELATIVE);
  }
}

/// While the chain writes its own handles nothing matches by itself.
class WritingHandles {
 public:
  explicit WritingHandles(int& count) : count_(count) { ++count_; }
  ~WritingHandles() { --count_; }
  WritingHandles(const WritingHandles&) = delete;

 private:
  int& count_;
};

// The end of a straight limb lies at its very reach: rounded a little inwards the goal would bend the limb by a
// visible angle, since the bend goes by the square root. A millionth further out nothing bends.
Point3 BeyondReach(const LimbIn& in, std::span<const JointPose> poses, const Point3& goal) {
  if (poses.size() < 3 || in.softness > 0 || in.autoStretch > 0) return goal;
  float reach = 0;
  for (size_t i = 1; i < poses.size(); ++i) reach += Length(poses[i].tm.GetTrans() - poses[i - 1].tm.GetTrans());
  const Point3 root = poses[0].tm.GetTrans(), toGoal = goal - root;
  constexpr float kRounding = 4e-7f, kFurther = 1e-6f;
  return Length(toGoal) > reach * (1 - kRounding) ? root + toGoal * (1 + kFurther) : goal;
}

}  // namespace

// FK from the pose.

void IKFKChain::MatchFKPose(TimeValue t, bool toIK, bool withLast, int onlyJoint) {
  if (!block_) return;
  if (toIK)
    SolveOnce(t, 1);
  else
    EnsureSolved(t);
  const std::vector<JointPose> poses = poses_;
  const int n = NumJoints() - (withLast ? 0 : 1);
  const Quat space = GetSpaceQuat(t);
  for (int i = 0; i < n; ++i) {
    const IKFKControl* control = onlyJoint < 0 || onlyJoint == i ? JointControl(i) : nullptr;
    if (!control || !control->GetFK()) continue;
    Quat wanted = poses[static_cast<size_t>(i)].rot;
    if (i == 0) wanted = wanted * Conjugate(space);
    TurnFK(*control, t, wanted);
  }
  dirty_ = true;
}

// IK from the pose.

void IKFKChain::MatchIKPose(TimeValue t, bool toFK, bool moveGoal, bool moveBend) {
  if (!block_ || !NodeOf(kGoal) || NumJoints() < 2) return;
  if (toFK)
    SolveOnce(t, 0);
  else
    EnsureSolved(t);
  const std::vector<JointPose> poses = poses_;
  const std::vector<LimbJoint> joints = joints_;
  LimbIn in;
  in.parentTM = parentTM_;
  GatherIK(t, in);
  in.joints = joints;
  Matrix3 end = poses.back().tm;
  end.SetTrans(BeyondReach(in, poses, MatchGoal(in, poses)));
  const Point3 target = in.hasTarget ? MatchTarget(in, poses, block_->GetFloat(kTargetDistPercent), work_) : Point3();
  const float swivel = in.hasTarget ? 0 : MatchSwivel(in, poses, work_);
  dirty_ = true;
  const WritingHandles writing(writing_);
  if (moveGoal) MoveGoal(t, end);
  if (moveBend && in.hasTarget) NodeMove(*NodeOf(kTarget), t).PlaceAt(target);
  if (moveBend && !in.hasTarget) block_->SetValue(kSwivelAngle, t, swivel);
}

// The goal parent moves so that the goal, which keeps its place in it, arrives.
void IKFKChain::MoveGoal(TimeValue t, const Matrix3& end) {
  INode* goal = NodeOf(kGoal);
  INode* moved = HasGoalParent() ? NodeOf(kGoalParent) : goal;
  const Matrix3 goalTM = goal->GetNodeTM(t), movedTM = moved->GetNodeTM(t);
  const Quat from = OrthoQuat(goalTM);
  const Quat to = block_->GetBool(kLastJointIkRotation) ? OrthoQuat(end) : from;
  const Matrix3 change = Inverse(Rigid(from, goalTM.GetTrans())) * Rigid(to, end.GetTrans());
  NodeMove move(*moved, t);
  if (block_->GetBool(kLastJointIkRotation)) move.TurnBy(Conjugate(from) * to);
  move.PlaceAt(movedTM.GetTrans() * change);
}

// The commands. One step each.

void IKFKChain::FK() {
  if (!block_) return;
  {
    const HoldScope hold(kStepName);
    MatchFKPose(Now(), false, true);
    block_->SetValue(kIkfkBlend, Now(), 0.0f);
  }
  GetCOREInterface()->RedrawViews(Now());
}

void IKFKChain::IK() {
  if (!block_) return;
  {
    const HoldScope hold(kStepName);
    MatchIKPose(Now(), false, true, true);
    block_->SetValue(kIkfkBlend, Now(), 1.0f);
  }
  GetCOREInterface()->RedrawViews(Now());
}

void IKFKChain::MatchFK(bool toIK) {
  const HoldScope hold(kStepName);
  MatchFKPose(Now(), toIK, true);
}

void IKFKChain::MatchIK(bool toFK) {
  const HoldScope hold(kStepName);
  MatchIKPose(Now(), toFK, true, true);
}

void IKFKChain::MatchManualStretch() {
  if (!block_) return;
  const HoldScope hold(kStepName);
  const float stretch = GetStretch(Now());
  block_->SetValue(kManualStretch, Now(), block_->GetFloat(kManualStretch, Now()) * stretch);
}

void IKFKChain::MatchPreferredRotations() {
  if (!block_) return;
  const HoldScope hold(kStepName);
  EnsureSolved(Now());
  PreferPose(Now(), poses_);
}

// The first joint's is kept in the space in which the solver reads it.
void IKFKChain::PreferPose(TimeValue t, std::vector<JointPose> poses) {
  Interval valid = FOREVER;
  constexpr int kGoalSpace = 0;
  if (!poses.empty() && block_->GetInt(kParentSpace) == kGoalSpace)
    poses[0].rot = poses[0].rot * Conjugate(OrthoQuat(GoalBaseTM(t, valid) * Inverse(parentTM_)));
  for (size_t i = 0; i < poses.size(); ++i) {
    const IKFKControl* control = JointControl(static_cast<int>(i));
    if (control && control->GetPreferred()) control->GetPreferred()->SetValue(t, poses[i].rot, true, CTRL_ABSOLUTE);
  }
}

void IKFKChain::GuaranteeBend(TimeValue t) {
  constexpr float kStraight = 0.01745f, kBend = -0.0872665f;
  SolveOnce(t, 0);
  if (poses_.size() != 3) return;
  if (AngleBetween(poses_[1].pos, VectorTransform(QuatMatrix(poses_[1].rot), poses_[2].pos)) >= kStraight) return;
  const IKFKControl* middle = JointControl(1);
  if (!middle || !middle->GetPreferred()) return;
  Quat bent = OrthoQuat(RotateZMatrix(kBend) * QuatMatrix(poses_[1].rot));
  middle->GetPreferred()->SetValue(t, bent, true, CTRL_ABSOLUTE);
}

// Rounding grows with how straight a limb is: a thousandth of a percent of its length is what a nearly straight one
// shows.
bool IKFKChain::IKGivesRest(TimeValue t) {
  SolveOnce(t, 0);
  const std::vector<JointPose> rest = poses_;
  SolveOnce(t, 1);
  float length = 0;
  for (size_t i = 1; i < rest.size(); ++i) length += Length(rest[i].pos);
  for (size_t i = 0; i < rest.size(); ++i) {
    const Matrix3 apart = poses_[i].tm * Inverse(rest[i].tm);
    if (Length(poses_[i].tm.GetTrans() - rest[i].tm.GetTrans()) > 1e-5f * length) return false;
    if (Length(apart.GetRow(0) - Point3{1, 0, 0}) + Length(apart.GetRow(1) - Point3{0, 1, 0}) > 2e-5f) return false;
  }
  return true;
}

// In figure mode the controls write their rest pose instead of their animation, which is what is wanted here.
void IKFKChain::RefitRest(TimeValue t) {
  if (!block_) return;
  const HoldScope hold(kStepName);
  if (NodeOf(kRotationSpaceNode)) StoreSpaceOffset(t);
  SolveOnce(t, 0);
  PreferPose(t, poses_);
  GuaranteeBend(t);
  if (!IKGivesRest(t)) MatchIKPose(t, true, true, true);
}

}  // namespace tavrilon
