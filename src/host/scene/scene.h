// SPDX-License-Identifier: MIT
// One scene: its nodes in the order of creation, layers, selection, track-view root and time settings.
#pragma once

#include <memory>
#include <unordered_map>

#include "host/core/tab.h"
#include "host/scene/evaluation_plan.h"
#include "host/scene/node.h"
#include "host/scene/units.h"

namespace corvanta {

/// A named layer; nodes point at it.
class SceneLayer final : public ReferenceTarget {
 public:
  struct State {
    WStr name;
    Ref<SceneLayer> parent;
    bool hidden = false;
    bool frozen = false;
  };
  static constexpr Class_ID kClassId{kHostClassWord, 0x121};
  SClass_ID SuperClassID() const override { return kReferenceTargetSuper; }
  Class_ID ClassID() const override { return kClassId; }
  WStr GetClassName() const override { return L"Layer"; }

  const State& GetState() const { return state_; }
  const WStr& GetName() const { return state_.name; }
  SceneLayer* GetParent() const { return state_.parent.Get(); }
  bool IsHidden() const { return state_.hidden || (GetParent() && GetParent()->IsHidden()); }
  bool IsFrozen() const { return state_.frozen || (GetParent() && GetParent()->IsFrozen()); }
  /// Undoable, all four. A parent that would close a loop is refused.
  void SetName(const WStr& name);
  void Hide(bool on);
  void Freeze(bool on);
  bool SetParent(SceneLayer* parent);
  void StateRestored();
  State state_;
};

/// A named item under the track-view root, with the tag it was added under.
class TrackViewNode final : public ReferenceTarget {
 public:
  struct Item {
    WStr name;
    Class_ID tag;
  };
  static constexpr Class_ID kClassId{kHostClassWord, 0x122};
  SClass_ID SuperClassID() const override { return kReferenceTargetSuper; }
  Class_ID ClassID() const override { return kClassId; }
  WStr GetClassName() const override { return L"TrackViewRoot"; }

  int NumItems() const { return static_cast<int>(items_.size()); }
  const WStr& GetName(int i) const { return items_[static_cast<size_t>(i)].name; }
  Class_ID GetTag(int i) const { return items_[static_cast<size_t>(i)].tag; }
  ReferenceTarget* GetItem(int i) const { return GetReference(i); }
  /// Undoable.
  void AddItem(ReferenceTarget* item, const WStr& name, Class_ID tag);
  /// Undoable.
  void RemoveItem(int i);

  int NumRefs() const override { return NumItems(); }
  ReferenceTarget* GetReference(int which) const override;
  int NumSubs() const override { return NumItems(); }
  Animatable* SubAnim(int i) override { return GetReference(i); }
  WStr SubAnimName(int i) override { return GetName(i); }
  IOResult Save(ISave& save) override;
  IOResult Load(ILoad& load) override;
  void InsertSlot(int at) { targets_.insert(targets_.begin() + at, nullptr); }
  void RemoveSlot(int at) { targets_.erase(targets_.begin() + at); }
  void StateRestored() { NotifyDependents(FOREVER, PART_ALL, REFMSG_SUBANIM_STRUCTURE); }
  std::vector<Item> items_;

 protected:
  void SetReference(int which, ReferenceTarget* target) override;

 private:
  std::vector<ReferenceTarget*> targets_;
};

struct TimeConfig {
  int frameRate = 30;
  Interval range{0, 100 * (kTicksPerSecond / 30)};
  TimeValue time = 0;
};

class Scene {
 public:
  Scene();
  ~Scene();
  Scene(const Scene&) = delete;

  INode* GetRootNode() const { return root_.Get(); }
  TrackViewNode* GetTrackViewRootNode() const { return trackRoot_.Get(); }
  /// All nodes but the root, in the order of creation.
  const std::vector<Ref<INode>>& Nodes() const { return nodes_; }

  /// A new node under the root with a unique default name and the default transform controller, not selected. Undoable.
  INode* CreateObjectNode(Object* object);
  /// Children go to the parent and keep their place. Undoable.
  void DeleteNode(INode* node);
  /// Null and double entries are passed over. One undo step when none is open.
  void DeleteNodes(const Tab<INode*>& nodes);
  /// First in the order of creation; null when none.
  INode* GetINodeByName(const WStr& name) const;
  INode* GetNodeByHandle(uint32_t handle) const;
  /// The name with a number behind it that no node has yet: "Box001".
  WStr MakeUniqueName(const WStr& base);
  /// Clones nodes with their controllers and objects; a cloned child of a cloned parent hangs under the clone.
  std::vector<INode*> CloneNodes(const std::vector<INode*>& nodes);

  // Selection, in the order of selecting. Undoable; sends 274 a node and notification 1001 once.
  const std::vector<INode*>& Selection() const { return selection_; }
  void SelectNode(INode* node, bool clear = true);
  void DeselectNode(INode* node);
  /// Adds or removes, never clears.
  void SelectNodeTab(const std::vector<INode*>& nodes, bool on);
  void ClearNodeSelection();

  // Layers.
  const std::vector<Ref<SceneLayer>>& Layers() const { return layers_; }
  SceneLayer* FindLayer(const WStr& name) const;
  /// The layer of that name, made when there is none. Undoable.
  SceneLayer* MakeLayer(const WStr& name, SceneLayer* parent = nullptr);

  TimeConfig time;
  UnitConfig units;

  /// Brings every node's matrix to `t`: the way to evaluate a whole scene, many figures above all.
  void Evaluate(TimeValue t) { plan_.Evaluate(*this, t); }

  // For loading: no undo, no messages.
  /// A bare node under the root, with this handle or, when it is 0 or taken, a new one.
  INode* LoadNode(uint32_t handle);
  void LoadLayer(Ref<SceneLayer> layer) { layers_.push_back(std::move(layer)); }
  void LoadSelection(std::vector<INode*> nodes);
  bool LoadParent(INode* child, INode* parent);
  /// The whole tree anew: `tree` has every node but the root once, with its parent, in the order of the children. The
  /// caller has made sure that there is no loop.
  void LoadHierarchy(const std::vector<std::pair<INode*, INode*>>& tree);

 private:
  friend class NodeDetachment;
  friend class NodeRecord;
  friend class SelectionRestore;
  friend class LayerRecord;
  void ApplySelection(const std::vector<INode*>& selection);
  void Insert(INode* node, size_t at);

  Ref<INode> root_;
  Ref<TrackViewNode> trackRoot_;
  std::vector<Ref<INode>> nodes_;
  std::vector<INode*> selection_;
  std::vector<Ref<SceneLayer>> layers_;
  EvaluationPlan plan_;
  std::unordered_map<uint32_t, INode*> byHandle_;
  std::unordered_map<WStr, int> lastNumber_;
  uint32_t nextHandle_ = 1;
};

/// The scene on show. Replacing it flushes undo and sends NOTIFY_SCENE_RESET.
Scene& GetScene();
void ReplaceScene(std::unique_ptr<Scene> scene);

}  // namespace corvanta
