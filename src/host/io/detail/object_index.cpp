// SPDX-License-Identifier: MIT
#include "host/io/detail/object_index.h"

#include "host/core/cust_attrib.h"
#include "host/io/detail/param_io.h"

namespace corvanta {

namespace {
bool IsLayer(const ReferenceTarget& target) {
  return target.SuperClassID() == kReferenceTargetSuper && target.ClassID() == SceneLayer::kClassId &&
         dynamic_cast<const SceneLayer*>(&target);
}
}  // namespace

void CollectTargets(ReferenceTarget& maker, Targets* out) {
  out->strong.clear();
  out->weak.clear();
  if (const ParamBlock2* block = AsBlock(maker)) {
    CollectBlockTargets(*block, &out->strong, &out->weak);
    return;
  }
  for (int i = 0; i < maker.NumRefs(); ++i) out->strong.push_back(maker.GetReference(i));
  for (int i = 0; i < maker.NumIndirectRefs(); ++i) out->weak.push_back(maker.GetIndirectRef(i));
}

ObjectIndex::ObjectIndex(const Scene& scene) : trackRoot_(scene.GetTrackViewRootNode()) {
  nodes_.push_back(scene.GetRootNode());
  for (const Ref<INode>& node : scene.Nodes()) nodes_.push_back(node.Get());
  for (const Ref<SceneLayer>& layer : scene.Layers()) layers_.push_back(layer.Get());
  numbers_.reserve(nodes_.size() * 16);
  for (INode* node : nodes_) Add(node);
  for (SceneLayer* layer : layers_) Add(layer);
  Add(trackRoot_);
  for (INode* node : nodes_) Walk(node);
  for (SceneLayer* layer : layers_) Walk(layer);
  Walk(trackRoot_);
}

uint32_t ObjectIndex::NumberOf(const ReferenceTarget* target) const {
  const auto found = numbers_.find(target);
  return found == numbers_.end() ? 0 : found->second;
}

void ObjectIndex::Push(ReferenceTarget* maker) {
  CollectTargets(*maker, &targets_);
  // Backwards, since the walk takes from the end.
  for (auto target = targets_.strong.rbegin(); target != targets_.strong.rend(); ++target)
    if (*target) open_.push_back(*target);
  if (ReferenceTarget* attribs = maker->GetCustAttribContainer()) open_.push_back(attribs);
}

void ObjectIndex::Walk(ReferenceTarget* from) {
  Push(from);
  while (!open_.empty()) {
    ReferenceTarget* target = open_.back();
    open_.pop_back();
    // Nodes and layers of the scene are numbered already; others belong to another scene or to undo.
    if (target->AsNode() || IsLayer(*target) || numbers_.contains(target)) continue;
    // A block whose owner is gone says nothing: what its values are is the owner's class. Who holds it finds nothing.
    if (const ParamBlock2* block = AsBlock(*target); block && !block->GetOwner()) continue;
    Add(target);
    objects_.push_back(target);
    Push(target);
  }
}

}  // namespace corvanta
