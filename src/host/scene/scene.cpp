// SPDX-License-Identifier: MIT
#include "host/scene/scene.h"

#include <algorithm>

#include "host/core/notify.h"
#include "host/core/remap.h"
#include "host/core/state_restore.h"
#include "host/scene/detail/node_detachment.h"

namespace corvanta {

namespace {

std::unique_ptr<Scene>& Current() {
  static auto* scene = new std::unique_ptr<Scene>;  // objects of plug-ins may be torn down after statics here
  return *scene;
}

}  // namespace

/// Undo of the selection, which is a list in the order of selecting.
class SelectionRestore final : public RestoreObj {
 public:
  explicit SelectionRestore(Scene* scene) : scene_(scene), kept_(Copy()) {}
  void Restore(bool) override { Swap(); }
  void Redo() override { Swap(); }

 private:
  std::vector<Ref<INode>> Copy() const { return {scene_->selection_.begin(), scene_->selection_.end()}; }
  void Swap() {
    std::vector<INode*> selection;
    for (const Ref<INode>& node : kept_)
      if (node->IsInScene()) selection.push_back(node.Get());
    kept_ = Copy();
    scene_->ApplySelection(selection);
  }
  Scene* scene_;
  std::vector<Ref<INode>> kept_;
};

/// Undo of a new layer.
class LayerRecord final : public RestoreObj {
 public:
  LayerRecord(Scene* scene, SceneLayer* layer) : scene_(scene), layer_(layer) {}
  void Restore(bool) override { std::erase(scene_->layers_, layer_); }
  void Redo() override { scene_->layers_.push_back(layer_); }

 private:
  Scene* scene_;
  Ref<SceneLayer> layer_;
};

Scene::Scene() : root_(new INode(*this, true)), trackRoot_(new TrackViewNode) {
  root_->state_.name = L"Scene Root";
  root_->inScene_ = true;
}

// Links among the nodes go first, from the newest to the oldest, so that each object dies with its last dependent.
Scene::~Scene() {
  selection_.clear();
  for (auto it = nodes_.rbegin(); it != nodes_.rend(); ++it) (*it)->UnlinkDependents();
  for (auto it = nodes_.rbegin(); it != nodes_.rend(); ++it) {
    (*it)->DeleteAllRefs();
    (*it)->parent_ = nullptr;
    (*it)->children_.clear();
    (*it)->inScene_ = false;
  }
  root_->children_.clear();
  root_->DeleteAllRefs();
  trackRoot_->DeleteAllRefs();
}

// Nodes.

void Scene::Insert(INode* node, size_t at) {
  nodes_.insert(nodes_.begin() + static_cast<std::ptrdiff_t>(at), node);
  byHandle_[node->handle_] = node;
  node->inScene_ = true;
}

INode* Scene::LoadNode(uint32_t handle) {
  auto* node = new INode(*this);
  if (handle == 0 || byHandle_.contains(handle)) handle = nextHandle_;
  node->handle_ = handle;
  nextHandle_ = std::max(nextHandle_, handle + 1);
  Insert(node, nodes_.size());
  node->parent_ = root_.Get();
  root_->children_.push_back(node);
  return node;
}

bool Scene::LoadParent(INode* child, INode* parent) {
  if (!parent || child->IsAncestorOf(parent)) return false;
  std::erase(child->parent_->children_, child);
  child->parent_ = parent;
  parent->children_.push_back(child);
  return true;
}

void Scene::LoadHierarchy(const std::vector<std::pair<INode*, INode*>>& tree) {
  root_->children_.clear();
  for (const Ref<INode>& node : nodes_) node->children_.clear();
  for (const auto& [child, parent] : tree) {
    child->parent_ = parent;
    parent->children_.push_back(child);
  }
}

INode* Scene::CreateObjectNode(Object* object) {
  const Ref<Object> keep(object);
  INode* node = LoadNode(0);
  node->state_.name = MakeUniqueName(object ? object->GetClassName() : L"Node");
  if (Control* control = NewDefaultMatrix3Controller()) node->BindReference(0, control);
  if (object) node->BindReference(1, object);
  if (theHold.Holding()) theHold.Put(std::make_unique<NodeRecord>(NodeDetachment(node), true));
  BroadcastNotification(NOTIFY_NODE_CREATED, node);
  return node;
}

void Scene::DeleteNode(INode* node) { DeleteNodes({node}); }

void Scene::DeleteNodes(const Tab<INode*>& nodes) {
  std::vector<std::pair<int, Ref<INode>>> doomed;
  for (INode* node : nodes) {
    if (!node || node->isRoot_ || !node->inScene_ || node->TestFlag(A_WORK1)) continue;
    node->SetFlag(A_WORK1);
    int depth = 0;
    for (const INode* up = node; (up = up->parent_);) ++depth;
    doomed.emplace_back(depth, node);
  }
  if (doomed.empty()) return;
  // Deepest first: a child that goes too need not be moved up before.
  std::stable_sort(doomed.begin(), doomed.end(), [](const auto& a, const auto& b) { return a.first > b.first; });
  const HoldScope scope(L"Delete");
  for (auto& [depth, node] : doomed) {
    node->ClearFlag(A_WORK1);
    const std::vector<INode*> children = node->children_;
    for (INode* child : children) node->parent_->AttachChild(child, true);
    NodeDetachment detachment(node.Get());
    detachment.Detach();
    if (theHold.Holding()) {
      theHold.Put(std::make_unique<NodeRecord>(std::move(detachment), false));
    } else {
      node->DeleteAllRefs();
    }
  }
}

INode* Scene::GetINodeByName(const WStr& name) const {
  const auto found =
      std::find_if(nodes_.begin(), nodes_.end(), [&](const Ref<INode>& n) { return n->state_.name == name; });
  return found == nodes_.end() ? nullptr : found->Get();
}

INode* Scene::GetNodeByHandle(uint32_t handle) const {
  const auto found = byHandle_.find(handle);
  return found == byHandle_.end() ? nullptr : found->second;
}

WStr Scene::MakeUniqueName(const WStr& base) {
  for (int& n = lastNumber_[base];;) {
    WStr name = Format(L"%s%03d", base.c_str(), ++n);
    if (!GetINodeByName(name)) return name;
  }
}

std::vector<INode*> Scene::CloneNodes(const std::vector<INode*>& nodes) {
  RemapDir remap;
  std::vector<INode*> clones;
  // Bare nodes first: a controller that refers to another node of the set must find its clone.
  for (INode* node : nodes) {
    if (!node || node->isRoot_ || !node->inScene_ || remap.Find(node)) continue;
    INode* clone = LoadNode(0);
    remap.AddEntry(node, clone);
    clone->state_ = node->state_;
    clone->state_.name = MakeUniqueName(node->GetName());
    clones.push_back(clone);
    if (theHold.Holding()) theHold.Put(std::make_unique<NodeRecord>(NodeDetachment(clone), true));
  }
  for (INode* node : nodes) {
    ReferenceTarget* mapped = node ? remap.Find(node) : nullptr;
    if (!mapped || mapped->TestFlag(A_WORK1)) continue;
    mapped->SetFlag(A_WORK1);
    INode* clone = mapped->AsNode();
    node->CloneInto(*clone, remap);
    ReferenceTarget* parent = remap.Find(node->parent_);
    LoadParent(clone, parent ? parent->AsNode() : node->parent_);
  }
  remap.Backpatch();
  for (INode* clone : clones) {
    clone->ClearFlag(A_WORK1);
    clone->InvalidateTM();
    BroadcastNotification(NOTIFY_NODE_CREATED, clone);
  }
  return clones;
}

// Selection.

void Scene::ApplySelection(const std::vector<INode*>& selection) {
  std::vector<INode*> changed;
  for (INode* node : selection_) node->SetFlag(A_WORK2);
  for (INode* node : selection) {
    if (node->TestFlag(A_WORK2))
      node->ClearFlag(A_WORK2);
    else
      changed.push_back(node);
  }
  for (INode* node : selection_) {
    if (!node->TestFlag(A_WORK2)) continue;
    node->ClearFlag(A_WORK2);
    changed.push_back(node);
  }
  if (selection == selection_) return;
  selection_ = selection;
  for (INode* node : changed) {
    node->selected_ = !node->selected_;
    node->NotifyDependents(FOREVER, PART_ALL, REFMSG_NODE_SELECTION, kAnySuper, true);
  }
  BroadcastNotification(NOTIFY_SELECTION_CHANGED);
}

void Scene::SelectNodeTab(const std::vector<INode*>& nodes, bool on) {
  std::vector<INode*> selection = selection_;
  for (INode* node : nodes) {
    if (!node || node->isRoot_ || !node->inScene_) continue;
    const auto at = std::find(selection.begin(), selection.end(), node);
    if (on && at == selection.end()) selection.push_back(node);
    if (!on && at != selection.end()) selection.erase(at);
  }
  if (selection == selection_) return;
  if (theHold.Holding()) theHold.Put(std::make_unique<SelectionRestore>(this));
  ApplySelection(selection);
}

void Scene::SelectNode(INode* node, bool clear) {
  if (!node || node->isRoot_ || !node->inScene_) return;
  if (!clear) return SelectNodeTab({node}, true);
  if (selection_.size() == 1 && selection_[0] == node) return;
  if (theHold.Holding()) theHold.Put(std::make_unique<SelectionRestore>(this));
  ApplySelection({node});
}

void Scene::DeselectNode(INode* node) { SelectNodeTab({node}, false); }

void Scene::ClearNodeSelection() {
  if (selection_.empty()) return;
  if (theHold.Holding()) theHold.Put(std::make_unique<SelectionRestore>(this));
  ApplySelection({});
}

void Scene::LoadSelection(std::vector<INode*> nodes) {
  for (INode* node : selection_) node->selected_ = false;
  selection_.clear();
  for (INode* node : nodes) {
    if (!node || node->selected_ || node->isRoot_) continue;
    node->selected_ = true;
    selection_.push_back(node);
  }
}

// Layers.

SceneLayer* Scene::FindLayer(const WStr& name) const {
  const auto found =
      std::find_if(layers_.begin(), layers_.end(), [&](const Ref<SceneLayer>& l) { return l->GetName() == name; });
  return found == layers_.end() ? nullptr : found->Get();
}

SceneLayer* Scene::MakeLayer(const WStr& name, SceneLayer* parent) {
  if (SceneLayer* layer = FindLayer(name)) return layer;
  const Ref<SceneLayer> layer(new SceneLayer);
  layer->state_.name = name;
  layer->state_.parent = parent;
  layers_.push_back(layer);
  if (theHold.Holding()) theHold.Put(std::make_unique<LayerRecord>(this, layer.Get()));
  return layer.Get();
}

void SceneLayer::SetName(const WStr& name) {
  RecordState(this, &SceneLayer::state_);
  state_.name = name;
  StateRestored();
}

void SceneLayer::Hide(bool on) {
  RecordState(this, &SceneLayer::state_);
  state_.hidden = on;
  StateRestored();
}

void SceneLayer::Freeze(bool on) {
  RecordState(this, &SceneLayer::state_);
  state_.frozen = on;
  StateRestored();
}

bool SceneLayer::SetParent(SceneLayer* parent) {
  for (const SceneLayer* up = parent; up; up = up->GetParent())
    if (up == this) return false;
  RecordState(this, &SceneLayer::state_);
  state_.parent = parent;
  StateRestored();
  return true;
}

void SceneLayer::StateRestored() {
  NotifyDependents(FOREVER, PART_ALL, REFMSG_CHANGE);
  BroadcastNotification(NOTIFY_LAYER_CHANGED, nullptr);
}

// Track-view root.

ReferenceTarget* TrackViewNode::GetReference(int which) const {
  return which >= 0 && which < static_cast<int>(targets_.size()) ? targets_[static_cast<size_t>(which)] : nullptr;
}

void TrackViewNode::SetReference(int which, ReferenceTarget* target) {
  if (which < 0) return;
  const auto at = static_cast<size_t>(which);
  if (at >= targets_.size()) targets_.resize(at + 1);
  targets_[at] = target;
}

void TrackViewNode::AddItem(ReferenceTarget* item, const WStr& name, Class_ID tag) {
  RecordState(this, &TrackViewNode::items_);
  const int at = NumItems();
  items_.push_back({name, tag});
  ReplaceReference(at, item);
  StateRestored();
}

void TrackViewNode::RemoveItem(int i) {
  if (i < 0 || i >= NumItems()) return;
  RecordState(this, &TrackViewNode::items_);
  // Those behind move up one by one, each an ordinary reference with its undo.
  for (int k = i; k + 1 < NumItems(); ++k) {
    const Ref<ReferenceTarget> next(GetReference(k + 1));
    ReplaceReference(k + 1, nullptr);
    ReplaceReference(k, next.Get());
  }
  ReplaceReference(NumItems() - 1, nullptr);
  items_.erase(items_.begin() + i);
  StateRestored();
}

namespace {
constexpr uint16_t kItemChunk = 0x7010;
}

IOResult TrackViewNode::Save(ISave& save) {
  for (const Item& item : items_) {
    save.BeginChunk(kItemChunk);
    save.Write(item.tag.a);
    save.Write(item.tag.b);
    save.WriteWStr(item.name);
    save.EndChunk();
  }
  return save.Status();
}

IOResult TrackViewNode::Load(ILoad& load) {
  items_.clear();
  while (load.OpenChunk() == IOResult::OK) {
    if (load.CurChunkID() == kItemChunk) {
      Item item;
      load.Read(item.tag.a);
      load.Read(item.tag.b);
      load.ReadWStr(item.name);
      items_.push_back(std::move(item));
    }
    load.CloseChunk();
  }
  targets_.resize(items_.size());
  return load.Status();
}

// The scene on show.

Scene& GetScene() {
  if (!Current()) Current() = std::make_unique<Scene>();
  return *Current();
}

void ReplaceScene(std::unique_ptr<Scene> scene) {
  theHold.Flush();
  Current() = std::move(scene);
  BroadcastNotification(NOTIFY_SCENE_RESET);
}

}  // namespace corvanta
