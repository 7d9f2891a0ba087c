// SPDX-License-Identifier: MIT
// Classes and scenes for tests of scene files: every kind of parameter, tables sized by a stream, weak links, locks,
// shared objects, custom attributes, track-view items.
#pragma once

#include <random>

#include "host/core/class_desc.h"
#include "host/core/control.h"
#include "host/core/cust_attrib.h"
#include "host/core/monitor.h"
#include "host/core/param_block.h"
#include "host/scene/scene.h"

namespace corvanta::scene_samples {

inline constexpr uint32_t kSampleWord = 0x7E570002;

enum SampleParam : ParamID {
  kFloatParam = 40,
  kIntParam = 1,
  kBoolParam = 2,
  kColourParam = 3,
  kPointParam = 5,
  kPoint2Param = 6,
  kMatrixParam = 7,
  kTextParam = 8,
  kTimeParam = 9,
  kNodeParam = 10,
  kTargetParam = 11,
  kWeakParam = 12,
  kFloatsParam = 13,
  kNodesParam = 14,
  kWeaksParam = 15,
  kTextsParam = 16,
  kPassingParam = 17,
};

inline constexpr ParamRow kSampleRows[] = {
    {kFloatParam, L"amount", ParamType::Percent, kAnimatable, 0.5f},
    {kIntParam, L"count", ParamType::Int, kNone, 3},
    {kBoolParam, L"on", ParamType::Bool, kNone, true},
    {kColourParam, L"tint", ParamType::Colour, kNone, {0.25f, 0.5f, 1}},
    {kPointParam, L"point", ParamType::Point3, kNone, {1, 2, 3}},
    {kPoint2Param, L"point2", ParamType::Point2},
    {kMatrixParam, L"tm", ParamType::Matrix3},
    {kTextParam, L"text", ParamType::String, kNone, L"hello"},
    {kTimeParam, L"time", ParamType::Time},
    {kNodeParam, L"node", ParamType::Node},
    {kTargetParam, L"target", ParamType::RefTarg},
    {kWeakParam, L"watched", ParamType::Node, kWeak},
    {kFloatsParam, L"weights", ParamType::Float, kTab | kAnimatable, 1.5f},
    {kNodesParam, L"nodes", ParamType::Node, kTab},
    {kWeaksParam, L"watched_all", ParamType::RefTarg, kTab | kWeak},
    {kTextsParam, L"texts", ParamType::String, kTab, L"-"},
    {kPassingParam, L"passing", ParamType::Int, kTransient, 1},
};
inline const ParamBlockDesc2& SampleBlockDesc() {
  static const ParamBlockDesc2 desc(7, L"params", kSampleRows);
  return desc;
}

/// The common part of the classes with a block as reference 0.
template <class Base>
class WithBlock : public Base {
 public:
  explicit WithBlock(bool loading) {
    if (!loading) this->BindReference(0, new ParamBlock2(SampleBlockDesc()));
  }
  int NumRefs() const override { return 1; }
  ReferenceTarget* GetReference(int i) const override { return i == 0 ? block : nullptr; }
  int NumSubs() const override { return 1; }
  Animatable* SubAnim(int i) override { return GetReference(i); }
  ParamBlock2* block = nullptr;

 protected:
  void SetReference(int i, ReferenceTarget* target) override {
    if (i == 0) block = static_cast<ParamBlock2*>(target);
  }
};

/// A helper with a block, a stream of its own and weak links outside the block.
class SampleObject final : public WithBlock<HelperObject> {
 public:
  static constexpr Class_ID kId{kSampleWord, 1};
  explicit SampleObject(bool loading = false) : WithBlock(loading) {}
  Class_ID ClassID() const override { return kId; }
  WStr GetClassName() const override { return L"Sample"; }
  ParamBlock2* GetParamBlock() override { return block; }
  int NumIndirectRefs() const override { return 2; }
  ReferenceTarget* GetIndirectRef(int i) const override { return i >= 0 && i < 2 ? watched[i].Target() : nullptr; }
  void SetIndirectRef(int i, ReferenceTarget* target) override {
    order += 'w';
    if (i >= 0 && i < 2) watched[i].SetTarget(target);
  }
  IOResult Save(ISave& save) override {
    save.BeginChunk(0x7001);
    save.Write(number);
    save.BeginChunk(2);
    save.WriteWStr(note);
    save.EndChunk();
    save.EndChunk();
    return save.Status();
  }
  IOResult Load(ILoad& load) override {
    order += block ? 'b' : 'l';
    while (load.OpenChunk() == IOResult::OK) {
      if (load.CurChunkID() == 0x7001) {
        load.Read(number);
        if (load.OpenChunk() == IOResult::OK) {
          load.ReadWStr(note);
          load.CloseChunk();
        }
      }
      load.CloseChunk();
    }
    return load.Status();
  }
  void PostLoad() override { order += 'p'; }

  uint32_t number = 0;
  WStr note;
  /// What happened in which order: l load, r reference, w weak link, p post-load.
  std::string order;
  RefTargMonitor watched[2];

 protected:
  void SetReference(int i, ReferenceTarget* target) override {
    if (target) order += 'r';
    WithBlock::SetReference(i, target);
  }
};

class SampleAttrib final : public WithBlock<CustAttrib> {
 public:
  static constexpr Class_ID kId{kSampleWord, 2};
  explicit SampleAttrib(bool loading = false) : WithBlock(loading) {}
  Class_ID ClassID() const override { return kId; }
  WStr GetClassName() const override { return L"SampleAttrib"; }
};

class SampleModifier final : public WithBlock<Modifier> {
 public:
  static constexpr Class_ID kId{kSampleWord, 3};
  explicit SampleModifier(bool loading = false) : WithBlock(loading) {}
  Class_ID ClassID() const override { return kId; }
  WStr GetClassName() const override { return L"SampleModifier"; }
};

/// A float controller with keys, which can be locked.
class SampleFloat final : public Control, public ILockedTrack {
 public:
  static constexpr Class_ID kId{kSampleWord, 4};
  SClass_ID SuperClassID() const override { return kFloatControlSuper; }
  Class_ID ClassID() const override { return kId; }
  WStr GetClassName() const override { return L"SampleFloat"; }
  void* GetInterface(uint32_t request) override {
    return request == I_LOCKED ? static_cast<ILockedTrack*>(this) : nullptr;
  }
  using Control::GetInterface;
  void GetValue(TimeValue, ValueRef value, Interval&, GetSetMethod) override {
    value.Float() = keys.empty() ? 0 : keys[0].value;
  }
  void SetValue(TimeValue, ValueRef value, bool, GetSetMethod) override { keys = {{0, value.Float()}}; }
  int NumKeys() const override { return static_cast<int>(keys.size()); }
  TimeValue GetKeyTime(int i) const override { return i >= 0 && i < NumKeys() ? keys[static_cast<size_t>(i)].time : 0; }
  IOResult Save(ISave& save) override {
    save.BeginChunk(1);
    save.Write(static_cast<uint32_t>(keys.size()));
    save.Write(keys.data(), keys.size() * sizeof(Key));
    save.EndChunk();
    return save.Status();
  }
  IOResult Load(ILoad& load) override {
    uint32_t count;
    if (load.OpenChunk() != IOResult::OK || load.ReadCount(count, sizeof(Key)) != IOResult::OK) return load.Status();
    keys.resize(count);
    return load.Read(keys.data(), count * sizeof(Key));
  }
  struct Key {
    TimeValue time;
    float value;
  };
  std::vector<Key> keys;
};

/// A transform controller of three float controllers.
class SampleTransform final : public Control {
 public:
  static constexpr Class_ID kId{kSampleWord, 5};
  explicit SampleTransform(bool loading = false) {
    for (int i = 0; i < 3 && !loading; ++i) BindReference(i, new SampleFloat);
  }
  SClass_ID SuperClassID() const override { return kMatrixControlSuper; }
  Class_ID ClassID() const override { return kId; }
  WStr GetClassName() const override { return L"SampleTransform"; }
  void GetValue(TimeValue t, ValueRef value, Interval& valid, GetSetMethod) override {
    float p[3] = {0, 0, 0};
    for (int i = 0; i < 3; ++i)
      if (axes[i]) axes[i]->GetValue(t, p[i], valid);
    value.Matrix3().PreTranslate({p[0], p[1], p[2]});
  }
  void SetValue(TimeValue, ValueRef, bool, GetSetMethod) override {}
  bool IsLeaf() const override { return false; }
  int NumRefs() const override { return 3; }
  ReferenceTarget* GetReference(int i) const override { return i >= 0 && i < 3 ? axes[i] : nullptr; }
  int NumSubs() const override { return 3; }
  Animatable* SubAnim(int i) override { return GetReference(i); }
  Control* axes[3] = {nullptr, nullptr, nullptr};

 protected:
  void SetReference(int i, ReferenceTarget* target) override {
    if (i >= 0 && i < 3) axes[i] = target ? target->AsControl() : nullptr;
  }
};

inline void RegisterSampleClasses() {
  static const ClassDesc descs[] = {
      {L"Sample", L"Sample", kHelperSuper, SampleObject::kId, L"", false,
       [](bool loading) -> ReferenceTarget* { return new SampleObject(loading); }},
      {L"SampleAttrib", L"SampleAttrib", kCustAttribSuper, SampleAttrib::kId, L"", false,
       [](bool loading) -> ReferenceTarget* { return new SampleAttrib(loading); }},
      {L"SampleModifier", L"SampleModifier", kModifierSuper, SampleModifier::kId, L"", false,
       [](bool loading) -> ReferenceTarget* { return new SampleModifier(loading); }},
      {L"SampleFloat", L"SampleFloat", kFloatControlSuper, SampleFloat::kId, L"", false,
       [](bool) -> ReferenceTarget* { return new SampleFloat; }},
      {L"SampleTransform", L"SampleTransform", kMatrixControlSuper, SampleTransform::kId, L"", false,
       [](bool loading) -> ReferenceTarget* { return new SampleTransform(loading); }},
  };
  RegisterHostClasses();
  for (const ClassDesc& desc : descs) ClassDirectory::Get().Register(&desc);
}

inline SampleObject* SampleOf(INode* node) { return dynamic_cast<SampleObject*>(node->GetBaseObject()); }

/// A node with a sample object and keys, under the root.
inline INode* AddSampleNode(Scene& scene, const WStr& name, int keys = 2) {
  INode* node = scene.CreateObjectNode(new SampleObject);
  auto* tm = new SampleTransform;
  node->SetTMController(tm);
  for (int k = 0; k < keys; ++k) static_cast<SampleFloat*>(tm->axes[0])->keys.push_back({k * 200, k * 0.5f});
  node->SetName(name);
  return node;
}

/// A small scene in which everything that a file can hold is there once.
inline void FillSampleScene(Scene& scene) {
  scene.time = {24, {-250, 12000}, 500};
  INode* hip = AddSampleNode(scene, L"H\x00FCfte \x4E2D");
  INode* knee = AddSampleNode(scene, L"knee", 0);
  INode* bare = scene.CreateObjectNode(nullptr);
  bare->SetName(L"hip");
  hip->AttachChild(bare, false);
  hip->AttachChild(knee, false);
  SceneLayer* body = scene.MakeLayer(L"body");
  SceneLayer* legs = scene.MakeLayer(L"legs", body);
  body->Hide(true);
  legs->Freeze(true);
  NodeState state = knee->State();
  state.wireColour = 0x123456;
  state.boneOn = true;
  state.renderable = false;
  state.locks = 0x155;
  state.offsetPos = {1, 2, 3};
  state.offsetScale.s = {2, 2, 2};
  state.layer = legs;
  state.userProps = {{L"tag", L"L\x00E4ngs"}, {L"a", L"b"}};
  knee->SetState(state);
  scene.SelectNodeTab({knee, hip}, true);

  SampleObject* sample = SampleOf(hip);
  sample->number = 77;
  sample->note = L"note \x20AC";
  sample->watched[1].SetTarget(bare);
  ParamBlock2& block = *sample->block;
  block.SetValue(kIntParam, 0, -9);
  block.SetValue(kTextParam, 0, L"C:\\x \x00E4");
  block.SetValue(kMatrixParam, 0, [] {
    Matrix3 m;
    m.SetTrans({7, 8, 9});
    return m;
  }());
  block.SetValue(kTargetParam, 0, knee->GetObjectRef());
  block.SetValue(kWeakParam, 0, hip);
  block.SetCount(kFloatsParam, 3);
  block.SetController(kFloatsParam, new SampleFloat, 1);
  block.SetController(kFloatParam, new SampleFloat);
  block.Append(kNodesParam, bare);
  block.Append(kNodesParam, static_cast<INode*>(nullptr));
  block.Append(kWeaksParam, static_cast<ReferenceTarget*>(knee));
  block.Append(kTextsParam, WStr(L"one"));

  knee->AddModifier(new SampleModifier);
  bare->SetObjectRef(knee->GetBaseObject());  // one object on two nodes
  auto* visibility = new SampleFloat;
  visibility->SetLocked(true);
  knee->SetVisController(visibility);
  auto* attrib = new SampleAttrib;
  knee->MakeCustAttribContainer()->AppendCustAttrib(attrib);
  attrib->block->SetValue(kNodeParam, 0, bare);
  scene.GetTrackViewRootNode()->AddItem(new SampleObject, L"item", {1, 2});
  scene.GetTrackViewRootNode()->AddItem(visibility, L"shared", {3, 4});
}

/// A chain of nodes with the host's own controllers and `keys` keys on each track of their transforms.
inline void FillKeyedScene(Scene& scene, int nodes, int keys) {
  INode* parent = nullptr;
  for (int i = 0; i < nodes; ++i) {
    INode* node = scene.CreateObjectNode(static_cast<Object*>(CreateInstance(kHelperSuper, {0x2013, 0})));
    if (parent) parent->AttachChild(node, false);
    if (i % 4 == 0) parent = node;
    AnimateOn();
    for (int k = 1; k < keys; ++k) {
      Matrix3 tm;
      tm.RotateX(0.1f * static_cast<float>(k));
      tm.SetTrans({static_cast<float>(i), static_cast<float>(k), 1});
      node->SetNodeTM(k * 200, tm);
    }
    AnimateOff();
  }
}

/// Any scene of up to about `size` nodes.
inline void FillRandomScene(Scene& scene, std::mt19937& rng, int size) {
  const auto pick = [&](const auto& list) { return list[rng() % list.size()]; };
  std::vector<INode*> nodes;
  std::vector<SceneLayer*> layers{nullptr};
  for (int i = 0; i < 4; ++i) layers.push_back(scene.MakeLayer(Format(L"layer %d", i), pick(layers)));
  for (int i = 0; i < size; ++i) {
    INode* node = rng() % 5 ? AddSampleNode(scene, Format(L"n%d", i % 7), static_cast<int>(rng() % 4))
                            : scene.CreateObjectNode(nullptr);
    if (!nodes.empty() && rng() % 3) pick(nodes)->AttachChild(node, rng() % 2);
    nodes.push_back(node);
    if (layers.size() > 1) node->SetLayer(pick(layers));
    if (rng() % 4 == 0) node->AddModifier(new SampleModifier);
    if (rng() % 4 == 0) node->MakeCustAttribContainer()->AppendCustAttrib(new SampleAttrib);
    SampleObject* sample = SampleOf(node);
    if (!sample) continue;
    ParamBlock2& block = *sample->block;
    block.SetValue(kFloatParam, 0, static_cast<float>(rng() % 1000));
    block.SetValue(kNodeParam, 0, pick(nodes));  // refused where it would close a loop
    block.SetValue(kWeakParam, 0, pick(nodes));
    for (int k = rng() % 3; k > 0; --k) block.Append(kNodesParam, pick(nodes));
    for (int k = rng() % 3; k > 0; --k) block.Append(kWeaksParam, static_cast<ReferenceTarget*>(pick(nodes)));
    for (int k = rng() % 3; k > 0; --k) block.Append(kFloatsParam, static_cast<float>(k));
    if (block.Count(kFloatsParam) && rng() % 2) block.SetController(kFloatsParam, new SampleFloat, 0);
    if (rng() % 3 == 0) block.SetValue(kTargetParam, 0, static_cast<ReferenceTarget*>(pick(nodes)->GetObjectRef()));
    sample->watched[rng() % 2].SetTarget(pick(nodes));
  }
  for (int i = size / 6; i > 0; --i) scene.DeleteNode(scene.Nodes()[rng() % scene.Nodes().size()].Get());
  for (int i = 0; i < size / 4; ++i) scene.SelectNode(pick(scene.Nodes()).Get(), false);
}

}  // namespace corvanta::scene_samples
