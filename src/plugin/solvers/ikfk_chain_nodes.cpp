// SPDX-License-Identifier: MIT
// Wrapping: every node that a chain gets as joint, goal, goal parent or target carries an IKFKControl around its own
// controller, and gets its own controller back when it leaves.
#include <algorithm>

#include "host/core/hold.h"
#include "host/scene/core_interface.h"
#include "plugin/controllers/static_controls.h"
#include "plugin/frame/find.h"
#include "plugin/frame/rig_maths.h"
#include "plugin/solvers/ikfk_chain.h"
#include "plugin/solvers/ikfk_control.h"
#include "plugin/solvers/ikfk_link.h"

namespace tavrilon {

using namespace corvanta;
using namespace ikfk_chain;

INode* IKFKChain::OwnNode() const { return FindOwnerNode(this); }

void IKFKChain::CollectNodes(std::vector<Adopted>& nodes) const {
  const auto add = [&](ParamID id, int tab, int type) {
    INode* node = NodeOf(id, tab);
    if (node) nodes.push_back({Animatable::GetHandleByAnim(node), type, type == ikfk_control::kJoint ? tab : 0});
  };
  for (int i = 0; i < NumJoints(); ++i) add(kJoints, i, ikfk_control::kJoint);
  add(kGoal, 0, ikfk_control::kGoal);
  add(kGoalParent, 0, ikfk_control::kGoalParent);
  add(kTarget, 0, ikfk_control::kTarget);
}

void IKFKChain::RememberNodes() {
  adopted_.clear();
  if (block_) CollectNodes(adopted_);
  dirty_ = true;
}

namespace {

INode* NodeByHandle(AnimHandle handle) {
  auto* target = dynamic_cast<ReferenceTarget*>(Animatable::GetAnimByHandle(handle));
  return target ? target->AsNode() : nullptr;
}

bool IsOwnChange() { return !theHold.UndoRunning() && !theHold.RedoRunning() && !GetCOREInterface()->state.loading; }

}  // namespace

// Undo, redo and files bring controllers and lists back by themselves.
void IKFKChain::NodesChanged(ParamID id) {
  dirty_ = true;
  if (!block_ || adopting_) return;
  if (!IsOwnChange()) return RememberNodes();
  if (id == kRotationSpaceNode) return StoreSpaceOffset(GetCOREInterface()->GetTime());
  if (id != kJoints) CheckGoalParent();
  AdoptNodes();
}

void IKFKChain::LinkAdded(ReferenceMaker* maker) {
  if (block_ && IsOwnChange() && maker->AsTarget() && maker->AsTarget()->AsNode()) AdoptNodes();
}

void IKFKChain::AdoptNodes() {
  std::vector<Adopted> nodes;
  CollectNodes(nodes);
  const auto keepsPlace = [&](const Adopted& entry) {
    return std::any_of(nodes.begin(), nodes.end(),
                       [&](const Adopted& now) { return now.node == entry.node && now.type == entry.type; });
  };
  adopting_ = true;
  for (const Adopted& entry : adopted_)
    if (!keepsPlace(entry)) Release(NodeByHandle(entry.node));
  for (const Adopted& entry : nodes) Adopt(entry);
  adopting_ = false;
  adopted_ = std::move(nodes);
  dirty_ = true;
}

void IKFKChain::Adopt(const Adopted& entry) {
  INode* node = NodeByHandle(entry.node);
  INode* own = OwnNode();
  Control* old = node ? node->GetTMController() : nullptr;
  if (!own || !old || node == own) return;
  if (const IKFKControl* control = FindIKFKControl(node)) {
    if (control->GetChainNode() == own && control->Type() == entry.type && control->Index() != entry.index)
      control->GetParamBlock()->SetValue(ikfk_control::kIndex, 0, entry.index);
    return;
  }
  if (!old->IsReplaceable()) return;
  const TimeValue now = GetCOREInterface()->GetTime();
  const Ref<IKFKControl> control(new IKFKControl);
  control->GetParamBlock()->SetValue(ikfk_control::kChainNode, 0, own);
  control->GetParamBlock()->SetValue(ikfk_control::kType, 0, entry.type);
  control->GetParamBlock()->SetValue(ikfk_control::kIndex, 0, entry.index);
  if (entry.type == ikfk_control::kJoint) {
    auto* preferred = new StaticRotation;
    preferred->Set(OrthoQuat(node->GetNodeTM(now) * Inverse(node->GetParentTM(now))));
    control->ReplaceReference(IKFKControl::kPreferredRef, preferred);
  } else {
    control->ReplaceReference(IKFKControl::kLinkRef, new IKFKLink);
  }
  control->SetFK(old);
  node->SetTMController(control.Get());
}

void IKFKChain::Release(INode* node) {
  const IKFKControl* control = FindIKFKControl(node);
  if (!control || control->GetChainNode() != OwnNode()) return;
  const Ref<Control> own(control->GetFK() ? control->GetFK() : NewDefaultMatrix3Controller());
  node->SetTMController(own.Get());
}

// The nodes between the goal and its parent go with the parent; one that does not stand above the goal is dropped.
void IKFKChain::CheckGoalParent() {
  INode* parent = NodeOf(kGoalParent);
  INode* goal = NodeOf(kGoal);
  const bool stands = parent && goal && parent != goal && parent->IsAncestorOf(goal);
  block_->SetCount(kGoalInbetweenParents, 0);
  if (parent && goal && !stands) block_->SetValue(kGoalParent, 0, nullptr);
  if (!stands) return;
  std::vector<INode*> between;
  for (INode* node = goal->GetParentNode(); node != parent; node = node->GetParentNode()) between.push_back(node);
  for (size_t i = between.size(); i-- > 0;) block_->Append(kGoalInbetweenParents, between[i]);
}

// Measured on the chain's parent at rest, so that the pose stays when the space comes into use.
void IKFKChain::StoreSpaceOffset(TimeValue t) {
  if (INode* node = NodeOf(kRotationSpaceNode))
    block_->SetValue(kInitialRotSpaceOffset, 0, GetChainParentTM(t) * Inverse(node->GetNodeTM(t)));
}

}  // namespace tavrilon
