// SPDX-License-Identifier: MIT
// The IK side of a limb: goal, pole and chain control, and the wiring of the chain to them and to the limb's attribute.
#include "host/core/hold.h"
#include "host/core/param_block.h"
#include "plugin/attributes/attributes.h"
#include "plugin/connections/connect.h"
#include "plugin/frame/rig_maths.h"
#include "plugin/rig/detail/limb.h"
#include "plugin/rig/detail/wiring.h"
#include "plugin/shapes/control_params.h"
#include "plugin/solvers/ikfk_chain.h"
#include "plugin/solvers/ikfk_display_mod.h"

namespace tavrilon::detail {

using namespace corvanta;

namespace {

constexpr int kGoalRotationOrder = 5;
/// Of the limb's length: how far the pole stands from the middle joint.
constexpr float kPoleDistance = 0.5f;

Matrix3 PoleTM(const Limb& limb) {
  const size_t first = static_cast<size_t>(limb.row.firstJoint);
  const Point3 a = limb.Place(first), b = limb.Place(first + 1), c = limb.Place(limb.points.size() - 1);
  // The side to which a straight limb will bend is row 1 of its first joint. 0.02 radians is where matching gives up
  // on the plane of the bend, too.
  const Matrix3 plane = AngleBetween(c - a, b - a) < 0.02f
                            ? FrameFromVectors(c - a, limb.First()->GetNodeTM(0).GetRow(1))
                            : FrameFromPoints(a, c, b);
  Matrix3 tm = limb.controls[first + 1]->GetNodeTM(0);
  tm.SetTrans(b + plane.GetRow(1) * (kPoleDistance * limb.Length()));
  return tm;
}

// The goal of an arm is the control itself, with the hand's matrix. A foot's control stands flat on the ground, and the
// goal is the innermost of the pivots under it.
void BuildGoal(Limb& limb) {
  Parts& parts = limb.parts;
  const bool pivots = limb.HasPivots();
  const Matrix3 tm =
      pivots ? parts.frames.GroundTM(limb.points.back(), parts.height) : parts.TM(limb.Name(limb.row.Last().word));
  ControlSpec spec = limb.Spec(limb.Name(limb.row.goal), tm, parts.state.main);
  spec.rotationOrder = kGoalRotationOrder;
  if (limb.row.foot) {
    spec.shape = ShapeType::Foot;
    spec.shapeAxis = pivots ? 1 : 0;
    spec.size = 1.15f * limb.EndLength();
    // The sole: on the ground, between heel and tip.
    if (pivots) {
      const Point3 heel = parts.Place(parts.Point(limb.FootName(L"_heel")));
      const Point3 tip = parts.Place(parts.Point(limb.FootName(L"_tip")));
      spec.shapeOffset = ((heel + tip) * 0.5f) * Inverse(tm);
    }
  } else {
    spec.shape = ShapeType::Diamond;
    spec.size = 1.3f * limb.EndLength();
  }
  INode* control = parts.make.MakeControl(spec);
  if (!control) return;
  if (limb.OwnsShape() && !limb.row.foot) control->GetBaseObject()->GetParamBlock()->SetValue(kControlSteps, 0, 0);
  if (pivots) limb.goalParent = control;
  limb.goal = pivots ? BuildReverseFoot(limb, control) : control;
}

void BuildPole(Limb& limb) {
  ControlSpec spec = limb.Spec(limb.Name(limb.row.pole), PoleTM(limb), limb.parts.state.main);
  spec.shape = ShapeType::Sphere;
  spec.size = 0.1f * limb.Length();
  limb.pole = limb.parts.make.MakeControl(spec);
}

void BuildChainControl(Limb& limb) {
  ControlSpec spec = limb.Spec(limb.Name(limb.row.chain), limb.controls.back()->GetNodeTM(0), limb.parts.state.main);
  spec.shape = ShapeType::IKFK;
  spec.size = 0.16f * limb.Length();
  const float end = limb.EndLength();
  spec.shapeOffset = limb.row.foot ? Point3{-0.55f * end, 0.3f * end, 0} : Point3{0, 0.9f * end, 0};
  limb.chain = limb.parts.make.MakeControl(spec);
  limb.attrib = AddAttrib(limb.chain, TavrilonClass::LimbAttrib);
}

/// A space that a control can be linked to, and its name for the animator.
struct Space {
  INode* node;
  const wchar_t* name;
};

void AddLinks(INode* control, std::span<const Space, 4> spaces) {
  ParamBlock2* block = AddAttrib(control, TavrilonClass::LinkAttrib);
  if (!block) return;
  using namespace link_attrib;
  constexpr Param kNodes[] = {kLink1, kLink2, kLink3, kLink4};
  constexpr Param kNames[] = {kLink1Name, kLink2Name, kLink3Name, kLink4Name};
  block->SetValue(kLinkNode, 0, static_cast<ReferenceTarget*>(control));
  for (size_t i = 0; i < 4; ++i) {
    if (!spaces[i].node || spaces[i].node == control) continue;
    block->SetValue(kNodes[i], 0, static_cast<ReferenceTarget*>(spaces[i].node));
    block->SetValue(kNames[i], 0, spaces[i].name);
  }
}

void AddLinkAttribs(const Limb& limb) {
  const BuildState& state = limb.parts.state;
  const auto pelvis = state.anchors.find(L"pelvis");
  INode* hips = pelvis == state.anchors.end() ? nullptr : pelvis->second.control;
  INode* goal = limb.goalParent ? limb.goalParent : limb.goal;
  const bool arm = limb.row.kind == LimbKind::Arm;
  const Space last = arm ? Space{state.head, L"Head"} : Space{state.torso, L"Torso"};
  const Space goalSpaces[4] = {{state.main, L"Main"}, {hips, L"Pelvis"}, {state.chest, L"Chest"}, last};
  const Space poleSpaces[4] = {
      {state.main, L"Main"}, {hips, L"Pelvis"}, {state.chest, L"Chest"}, {goal, arm ? L"Hand" : L"Foot"}};
  AddLinks(goal, goalSpaces);
  AddLinks(limb.pole, poleSpaces);
}

struct Wire {
  ParamID chain;
  ParamID attrib;
};
constexpr Wire kWires[] = {
    {ikfk_chain::kIkfkBlend, limb_attrib::kIkfkBlend},     {ikfk_chain::kManualStretch, limb_attrib::kManualStretch},
    {ikfk_chain::kAutoStretch, limb_attrib::kAutoStretch}, {ikfk_chain::kRotationSpace, limb_attrib::kRotationSpace},
    {ikfk_chain::kSoftIk, limb_attrib::kSoftness},
};

// Animation lives in the attribute: what the chain writes when it matches goes there, too.
void WireAttrib(const Limb& limb, ParamBlock2& chain) {
  ConnectionSpec both;
  both.twoWay = true;
  for (const Wire& wire : kWires) ConnectFloat(chain, wire.chain, *limb.attrib, wire.attrib, both);
  if (limb.controls.size() - static_cast<size_t>(limb.row.firstJoint) >= 4)
    ConnectFloat(chain, ikfk_chain::kFlexionBias, *limb.attrib, limb_attrib::kFlexionBias, both);
}

void SetNode(ParamBlock2& block, ParamID id, INode* node) {
  if (node) block.SetValue(id, 0, static_cast<ReferenceTarget*>(node));
}

// In this order: the goal parent is taken as such only when it stands above the goal.
void FillChain(const Limb& limb, ParamBlock2& chain) {
  using namespace ikfk_chain;
  for (size_t i = static_cast<size_t>(limb.row.firstJoint); i < limb.controls.size(); ++i) {
    limb.controls[i]->SetBoneOnOff(true);
    chain.Append(kJoints, static_cast<ReferenceTarget*>(limb.controls[i]));
  }
  SetNode(chain, kGoal, limb.goal);
  SetNode(chain, kGoalParent, limb.goalParent);
  SetNode(chain, kTarget, limb.pole);
  const BuildState& state = limb.parts.state;
  INode* space = limb.row.space == SpaceAnchor::Chest ? state.chest : state.torso;
  SetNode(chain, kRotationSpaceNode, space);
  chain.SetValue(kUseRotationSpace, 0, space != nullptr);
  chain.SetValue(kTargetDistPercent, 0, kPoleDistance);
  chain.SetValue(kKeepInitialRotSpace, 0, true);
  // The parent's matrix and not the joint's own, or the joint's rest rotation would act twice.
  const Matrix3 parent = limb.First()->GetParentTM(0);
  chain.SetValue(kInitialRotSpaceOffset, 0, space ? parent * Inverse(space->GetNodeTM(0)) : Matrix3());
  chain.SetValue(kLastJointIkRotation, 0, true);
  chain.SetValue(kParentSpace, 0, 1);
}

void AddDisplay(INode* node) {
  if (node) node->AddModifier(new IKFKDisplayMod);
}

}  // namespace

void BuildLoneFoot(Limb& limb) {
  if (limb.IsLoneFoot()) BuildGoal(limb);
}

void BuildLimbSolver(Limb& limb) {
  if (!limb.IsWhole() || !limb.row.HasSolver() || !limb.Option(rig_param::kIkfkSolvers)) return;
  BuildGoal(limb);
  BuildPole(limb);
  BuildChainControl(limb);
}

void ConnectLimbSolver(Limb& limb) {
  if (!limb.goal || !limb.pole || !limb.chain || !limb.attrib) return;
  const HoldResume recorded;
  auto* solver = new IKFKChain;
  ParamBlock2& block = *solver->GetParamBlock();
  limb.chain->SetTMController(solver);
  FillChain(limb, block);
  solver->GuaranteeBend(0);
  WireAttrib(limb, block);
  using namespace limb_attrib;
  SetNode(*limb.attrib, kChainNode, limb.chain);
  limb.attrib->SetValue(kSquashActive, 0, !limb.twists.empty());
  limb.attrib->SetValue(kBendyActive, 0, !limb.bendy.empty());
  AddLinkAttribs(limb);
  for (size_t i = static_cast<size_t>(limb.row.firstJoint); i < limb.controls.size(); ++i) AddDisplay(limb.controls[i]);
  AddDisplay(limb.goalParent ? limb.goalParent : limb.goal);
  AddDisplay(limb.pole);
}

}  // namespace tavrilon::detail
