// SPDX-License-Identifier: MIT
#include "plugin/solvers/create_ikfk_solver.h"

#include <algorithm>
#include <vector>

#include "host/core/hold.h"
#include "host/scene/core_interface.h"
#include "host/script/primitives.h"
#include "plugin/constraints/transform_constraint.h"
#include "plugin/frame/class_factories.h"
#include "plugin/frame/script_primitives.h"
#include "plugin/shapes/control_params.h"
#include "plugin/shapes/shape_type.h"
#include "plugin/solvers/ikfk_chain.h"

namespace tavrilon {

using namespace corvanta;

namespace {

constexpr const wchar_t* kName = L"CreateIKFKSolver";

/// The rows of what is made beside the bones.
struct HelperRow {
  const wchar_t* name;
  ShapeType shape;
  uint32_t colour;
};
constexpr HelperRow kControl{L"IKFKControl", ShapeType::Circle, 0xFFD200};
constexpr HelperRow kChain{L"IKFKChain", ShapeType::IKFK, 0xC8C8C8};
constexpr HelperRow kGoal{L"IKFKGoal", ShapeType::Diamond, 0xFF4000};
constexpr HelperRow kTarget{L"IKFKTarget", ShapeType::Sphere, 0x00A0FF};

INode* MakeHelper(const HelperRow& row, float size, INode* parent, const Matrix3& tm) {
  auto* object = static_cast<Object*>(CreateControlHelper(false));
  INode* node = GetScene().CreateObjectNode(object);
  node->SetName(GetScene().MakeUniqueName(row.name));
  node->SetWireColor(row.colour);
  object->GetParamBlock()->SetValue(kControlType, 0, static_cast<int>(row.shape));
  object->GetParamBlock()->SetValue(kControlSize, 0, size);
  if (parent && !parent->IsRootNode()) parent->AttachChild(node, false);
  node->SetNodeTM(0, tm);
  return node;
}

// From start to end; empty when the end does not hang on the start.
std::vector<INode*> JointsBetween(INode* start, INode* end) {
  std::vector<INode*> joints;
  for (INode* at = end; at && !at->IsRootNode(); at = at->GetParentNode()) {
    joints.push_back(at);
    if (at != start) continue;
    std::reverse(joints.begin(), joints.end());
    return joints;
  }
  return {};
}

float LengthOf(const std::vector<INode*>& joints) {
  float length = 0;
  for (size_t i = 1; i < joints.size(); ++i)
    length += Length(joints[i]->GetNodeTM(0).GetTrans() - joints[i - 1]->GetNodeTM(0).GetTrans());
  return length;
}

std::vector<INode*> MakeControls(const std::vector<INode*>& joints, float size) {
  std::vector<INode*> controls;
  INode* parent = joints.front()->GetParentNode();
  for (INode* joint : joints) {
    parent = MakeHelper(kControl, size, parent, joint->GetNodeTM(0));
    controls.push_back(parent);
  }
  for (size_t i = 0; i < joints.size(); ++i) {
    auto* follow = new TransformConstraint;
    joints[i]->SetTMController(follow);
    follow->AppendTarget(controls[i], 100);
  }
  return controls;
}

}  // namespace

INode* MakeIKFKSolver(INode* start, INode* end) {
  const std::vector<INode*> joints = JointsBetween(start, end);
  if (joints.empty()) return nullptr;
  const float bones = static_cast<float>(std::max<size_t>(joints.size() - 1, 1));
  const float length = LengthOf(joints), big = 0.3f * length / bones, small = 0.1f * length / bones;
  GetCOREInterface()->DisableSceneRedraw();
  INode* chainNode = nullptr;
  {
    const HoldScope hold(L"Create IKFK Solver");
    const std::vector<INode*> controls = MakeControls(joints, big);
    const Matrix3 endTM = joints.back()->GetNodeTM(0);
    chainNode = MakeHelper(kChain, small * 1.5f, nullptr, endTM);
    INode* goal = MakeHelper(kGoal, big, nullptr, endTM);
    INode* target = MakeHelper(kTarget, small, nullptr, joints[joints.size() / 2]->GetNodeTM(0));
    auto* chain = new IKFKChain;
    chainNode->SetTMController(chain);
    for (INode* control : controls) chain->GetParamBlock()->Append(ikfk_chain::kJoints, control);
    chain->GetParamBlock()->SetValue(ikfk_chain::kGoal, 0, goal);
    chain->GetParamBlock()->SetValue(ikfk_chain::kTarget, 0, target);
    chain->MatchIKPose(0, true, true, true);
    GetScene().SelectNode(chainNode);
  }
  GetCOREInterface()->EnableSceneRedraw();
  GetCOREInterface()->RedrawViews(GetCOREInterface()->GetTime());
  return chainNode;
}

// The script primitive `CreateIKFKSolver start end`.
void RegisterIKFKSolverPrimitive() {
  RegisterScriptPrimitive(kName, [](const PrimitiveArgs& args) {
    args.RequireCount(2);
    INode* start = args.Node(0, L"Start Joint");
    INode* end = args.Node(1, L"End Joint");
    INode* chain = MakeIKFKSolver(start, end);
    return chain ? TargetValue(chain) : FPValue();
  });
}

void UnregisterIKFKSolverPrimitive() { UnregisterScriptPrimitive(kName); }

}  // namespace tavrilon
