// SPDX-License-Identifier: MIT
#include "host/scene/detail/node_detachment.h"

#include <algorithm>

namespace corvanta {

void NodeDetachment::CutLinks() {
  links_.clear();
  INode* node = node_.Get();
  const std::vector<ReferenceMaker*> makers = node->Dependents();
  for (ReferenceMaker* maker : makers) {
    ReferenceTarget* target = maker->AsTarget();
    for (int which = maker->FindReference(node); target && which != ReferenceMaker::kNotFound;
         which = maker->FindReference(node, which + 1))
      links_.push_back({target, which});
  }
  node->UnlinkDependents();
}

void NodeDetachment::Detach() {
  INode* node = node_.Get();
  if (!node->inScene_) return;
  const HoldSuspend suspend;
  Scene& scene = node->GetScene();
  BroadcastNotification(NOTIFY_NODE_DELETING, node);
  CutLinks();

  parent_ = node->parent_;
  auto& siblings = parent_->children_;
  const auto child = std::find(siblings.begin(), siblings.end(), node);
  childPlace_ = static_cast<int>(child - siblings.begin());
  siblings.erase(child);
  // Children that are still there go up a level as they are; they come back with the node.
  children_.assign(node->children_.begin(), node->children_.end());
  for (const Ref<INode>& orphan : children_) {
    orphan->parent_ = parent_.Get();
    siblings.push_back(orphan.Get());
    orphan->InvalidateTM();
  }
  node->children_.clear();
  node->parent_ = nullptr;

  selected_ = node->selected_;
  if (selected_) {
    const auto at = std::find(scene.selection_.begin(), scene.selection_.end(), node);
    selectionPlace_ = static_cast<size_t>(at - scene.selection_.begin());
    scene.selection_.erase(at);
    node->selected_ = false;
    BroadcastNotification(NOTIFY_SELECTION_CHANGED);
  }
  // Most deletions and undone creations are near the end of the list.
  const auto at =
      std::find_if(scene.nodes_.rbegin(), scene.nodes_.rend(), [node](const Ref<INode>& n) { return n.Get() == node; });
  place_ = static_cast<size_t>(scene.nodes_.rend() - at) - 1;
  scene.nodes_.erase(scene.nodes_.begin() + static_cast<std::ptrdiff_t>(place_));
  scene.byHandle_.erase(node->handle_);
  node->inScene_ = false;
  node->SetDormant(true);
  node->TellWatchers();
}

void NodeDetachment::Attach() {
  INode* node = node_.Get();
  if (node->inScene_) return;
  const HoldSuspend suspend;
  Scene& scene = node->GetScene();
  node->SetDormant(false);
  scene.Insert(node, std::min(place_, scene.nodes_.size()));
  node->parent_ = parent_.Get();
  for (const Ref<INode>& orphan : children_) {
    std::erase(orphan->parent_->children_, orphan.Get());
    orphan->parent_ = node;
    node->children_.push_back(orphan.Get());
  }
  children_.clear();
  auto& siblings = parent_->children_;
  siblings.insert(siblings.begin() + std::min<std::ptrdiff_t>(childPlace_, std::ssize(siblings)), node);
  for (const Link& link : links_) {
    // The slot may have gone with a tab that another record brings back.
    if (link.which < link.maker->NumRefs()) link.maker->BindReference(link.which, node);
  }
  links_.clear();
  if (selected_) {
    auto& selection = scene.selection_;
    selection.insert(selection.begin() +
                         std::min<std::ptrdiff_t>(static_cast<std::ptrdiff_t>(selectionPlace_), std::ssize(selection)),
                     node);
    node->selected_ = true;
    BroadcastNotification(NOTIFY_SELECTION_CHANGED);
  }
  node->TellWatchers();
  node->InvalidateTM();
  BroadcastNotification(NOTIFY_NODE_CREATED, node);
}

}  // namespace corvanta
