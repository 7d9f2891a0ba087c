// SPDX-License-Identifier: MIT
// The order matters: objects are made bare, each loads its own stream (which may size its tables), then all references
// are bound, then weak links. Blocks are bound to their owners before anything else refers to them, since the first
// dependent of a block is its owner.
#include "host/io/detail/scene_build.h"

#include <algorithm>

#include "host/core/control.h"
#include "host/core/hold.h"
#include "host/core/param_block.h"
#include "host/io/detail/class_shape.h"
#include "host/io/detail/opaque.h"
#include "host/io/detail/param_io.h"

namespace corvanta {
namespace {

using namespace scene_format;

class SceneBuilder {
 public:
  explicit SceneBuilder(const ParsedScene& parsed) : parsed_(parsed) {}

  BuiltScene Build() {
    BuiltScene out;
    scene_ = std::make_unique<Scene>();
    CreateAll();
    LoadAll();
    BindBlocksToOwners();
    for (uint32_t n = 1; n < parsed_.EndNumber() && error_.empty(); ++n) BindReferences(n);
    if (error_.empty()) CompleteBlocks();
    for (uint32_t n = 1; n < parsed_.EndNumber() && error_.empty(); ++n) BindWeakLinks(n);
    out.error = error_;
    if (error_.empty()) {
      FinishScene();
      out.things = std::move(things_);
      out.scene = std::move(scene_);
    }
    // What was made in vain goes before the scene that it may refer to.
    things_.clear();
    return out;
  }

 private:
  ReferenceTarget* At(uint32_t number) const { return things_[number].Get(); }
  const ObjectEntry& ObjectAt(uint32_t number) const { return parsed_.objects[number - parsed_.FirstObject()]; }
  const ClassEntry& ClassOf(uint32_t number) const { return parsed_.classes[ObjectAt(number).classIndex]; }

  void Fail(uint32_t number, const WStr& what) {
    if (!error_.empty()) return;
    const ReferenceTarget* thing = At(number);
    error_ = Format(L"number %u, class \"%s\": %s", number, thing ? thing->GetClassName().c_str() : L"?", what.c_str());
  }

  // --- making

  void CreateAll() {
    things_.resize(parsed_.EndNumber());
    things_[1] = scene_->GetRootNode();
    for (uint32_t i = 1; i < parsed_.nodes.size(); ++i) things_[i + 1] = scene_->LoadNode(parsed_.nodes[i].handle);
    for (uint32_t i = 0; i < parsed_.layers.size(); ++i) {
      Ref<SceneLayer> layer(new SceneLayer);
      things_[parsed_.FirstLayer() + i] = layer;
      scene_->LoadLayer(layer);
    }
    things_[parsed_.TrackRoot()] = scene_->GetTrackViewRootNode();
    for (const ClassEntry& entry : parsed_.classes) descs_.push_back(FindCreatable(entry.superClass, entry.classId));
    // Owners first: what a block is depends on its owner's class.
    for (const bool blocks : {false, true})
      for (uint32_t n = parsed_.FirstObject(); n < parsed_.EndNumber(); ++n)
        if (((ObjectAt(n).flags & kIsBlock) != 0) == blocks) things_[n] = blocks ? NewBlock(n) : NewObject(n);
  }

  ReferenceTarget* NewObject(uint32_t number) const {
    const ObjectEntry& entry = ObjectAt(number);
    const ClassDesc* desc = descs_[entry.classIndex];
    ReferenceTarget* object = desc ? desc->Create(true) : nullptr;
    return object ? object : NewPlaceholder(number);
  }

  ReferenceTarget* NewBlock(uint32_t number) {
    const ObjectEntry& entry = ObjectAt(number);
    const ReferenceTarget* owner = At(entry.owner);
    if (!owner || AsOpaque(*owner)) return NewPlaceholder(number);
    const ParamBlockDesc2* desc = FindBlockDesc(*owner, entry.blockId);
    if (desc) return new ParamBlock2(*desc);
    Fail(entry.owner, Format(L"it has no parameter block %d in this version", entry.blockId));
    return NewPlaceholder(number);
  }

  ReferenceTarget* NewPlaceholder(uint32_t number) const {
    const ObjectEntry& entry = ObjectAt(number);
    const ClassEntry& known = ClassOf(number);
    OpaqueState state;
    state.superClass = known.superClass;
    state.classId = known.classId;
    state.className = known.name;
    state.locked = entry.flags & kLocked;
    state.isBlock = entry.flags & kIsBlock;
    state.blockId = entry.blockId;
    state.params.assign(entry.params.begin(), entry.params.end());
    state.data.assign(entry.links.data.begin(), entry.links.data.end());
    state.refs.assign(entry.links.refs.Count(), nullptr);
    return NewOpaque(std::move(state));
  }

  // --- own streams

  void LoadAll() {
    for (uint32_t n = 1; n < parsed_.EndNumber() && error_.empty(); ++n) {
      ReferenceTarget* thing = At(n);
      if (parsed_.IsObject(n) && (ObjectAt(n).flags & kLocked))
        if (ILockedTrack* lock = GetLockedTrack(thing)) lock->SetLocked(true);
      if (AsOpaque(*thing)) continue;
      const Links& links = parsed_.LinksOf(n);
      ILoad load(links.data, links.dataOffset);
      const IOResult result = thing->Load(load);
      if (load.Status() != IOResult::OK)
        Fail(n, FromUtf8(load.ErrorText()));
      else if (result == IOResult::Error)
        Fail(n, L"its own data is wrong");
    }
  }

  // --- references

  void Bind(uint32_t maker, int which, uint32_t target) {
    if (target == 0 || !error_.empty()) return;
    if (!MayBind(*At(maker), which, *At(target)) || !At(maker)->LoadReference(which, At(target)))
      Fail(maker, Format(L"it does not take number %u, class \"%s\", as its reference %d", target,
                         At(target)->GetClassName().c_str(), which));
  }

  void BindBlocksToOwners() {
    for (uint32_t n = parsed_.FirstObject(); n < parsed_.EndNumber(); ++n) {
      const NumberList& refs = parsed_.LinksOf(n).refs;
      if (AsBlock(*At(n))) continue;  // its list has no indices
      for (size_t i = 0; i < refs.Count(); ++i)
        if (IsBlockOf(refs[i], n)) Bind(n, static_cast<int>(i), refs[i]);
    }
  }

  bool IsBlockOf(uint32_t block, uint32_t owner) const {
    return parsed_.IsObject(block) && (ObjectAt(block).flags & kIsBlock) && ObjectAt(block).owner == owner;
  }

  std::vector<ReferenceTarget*> Resolve(const NumberList& numbers) const {
    std::vector<ReferenceTarget*> out(numbers.Count());
    for (size_t i = 0; i < out.size(); ++i) out[i] = At(numbers[i]);
    return out;
  }

  void BindReferences(uint32_t number) {
    const Links& links = parsed_.LinksOf(number);
    Bind(number, ReferenceMaker::kCustAttribRef, links.attribs);
    if (ParamBlock2* block = AsBlock(*At(number))) {
      const ObjectEntry& entry = ObjectAt(number);
      ILoad load(entry.params, entry.paramsOffset);
      ReadParams(*block, load, {Resolve(links.refs), Resolve(links.weak)});
      if (load.Status() != IOResult::OK) Fail(number, FromUtf8(load.ErrorText()));
      return;
    }
    for (size_t i = 0; i < links.refs.Count(); ++i) Bind(number, static_cast<int>(i), links.refs[i]);
  }

  /// An object never lacks a block: one that the file does not have comes with its defaults.
  void CompleteBlocks() {
    for (uint32_t n = parsed_.FirstObject(); n < parsed_.EndNumber(); ++n) {
      const ClassDesc* desc = descs_[ObjectAt(n).classIndex];
      if (!desc || (ObjectAt(n).flags & kIsBlock)) continue;
      const std::vector<ClassShape::Slot>& slots = ShapeOf(*desc).slots;
      for (size_t i = 0; i < slots.size(); ++i)
        if (slots[i].block && !At(n)->GetReference(static_cast<int>(i)))
          At(n)->LoadReference(static_cast<int>(i), new ParamBlock2(*slots[i].block));
    }
  }

  void BindWeakLinks(uint32_t number) {
    const NumberList& weak = parsed_.LinksOf(number).weak;
    if (AsBlock(*At(number))) return;  // bound with its values
    for (size_t i = 0; i < weak.Count(); ++i) At(number)->SetIndirectRef(static_cast<int>(i), At(weak[i]));
  }

  // --- the scene around them

  INode* NodeAt(uint32_t number) const { return number ? At(number)->AsNode() : nullptr; }
  SceneLayer* LayerAt(uint32_t number) const { return static_cast<SceneLayer*>(At(number)); }

  void FinishScene() {
    scene_->time = parsed_.time;
    scene_->units = parsed_.units;
    for (uint32_t i = 0; i < parsed_.layers.size(); ++i) {
      const LayerEntry& entry = parsed_.layers[i];
      SceneLayer::State& state = LayerAt(parsed_.FirstLayer() + i)->state_;
      state.name = entry.name;
      state.hidden = entry.flags & kHidden;
      state.frozen = entry.flags & kFrozen;
      if (entry.parent) state.parent = LayerAt(entry.parent);
    }
    for (uint32_t i = 0; i < parsed_.nodes.size(); ++i) {
      NodeState state = parsed_.nodes[i].state;
      if (parsed_.nodes[i].layer) state.layer = LayerAt(parsed_.nodes[i].layer);
      NodeAt(i + 1)->SetState(state);
    }
    std::vector<std::pair<INode*, INode*>> tree;
    for (const ParentEntry& entry : parsed_.hierarchy) tree.emplace_back(NodeAt(entry.child), NodeAt(entry.parent));
    scene_->LoadHierarchy(tree);
    std::vector<INode*> selection;
    for (size_t i = 0; i < parsed_.selection.Count(); ++i) selection.push_back(NodeAt(parsed_.selection[i]));
    scene_->LoadSelection(std::move(selection));
  }

  const ParsedScene& parsed_;
  std::unique_ptr<Scene> scene_;
  std::vector<Ref<ReferenceTarget>> things_;  // by number; nothing at 0
  std::vector<const ClassDesc*> descs_;       // by class index; null for unknown ones
  WStr error_;
};

}  // namespace

BuiltScene BuildScene(const ParsedScene& parsed) { return SceneBuilder(parsed).Build(); }

}  // namespace corvanta
