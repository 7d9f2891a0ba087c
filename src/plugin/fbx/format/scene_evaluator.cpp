// SPDX-License-Identifier: MIT
// Nodes at times. Curves are found once; then a call does arithmetic only, and every node's world matrix is worked out
// once a time, from the nearest ancestor that is known.
#include <algorithm>
#include <limits>
#include <unordered_map>

#include "plugin/fbx/format/layer_blend.h"
#include "plugin/fbx/format/scene.h"

namespace tavrilon::fbx {

namespace {

constexpr uint32_t kNone = std::numeric_limits<uint32_t>::max();
/// No time that is asked for: see `Asked`.
constexpr FbxTime kNever{std::numeric_limits<int64_t>::min()};
FbxTime Asked(FbxTime t) { return {std::max(t.ticks, kNever.ticks + 1)}; }

struct LayerState {
  const FbxAnimLayer* layer;
  bool isBase;
  LayerMode mode;
  size_t hint = 0;
};

/// One curve node on one layer; those of one property hang together, lowest layer first.
struct Source {
  const FbxAnimCurveNode* curves;
  uint32_t layer;
  uint32_t next = kNone;
  std::array<size_t, 3> hints{};
};

struct Track {
  uint32_t first = kNone, last = kNone;
  bool IsEmpty() const { return first == kNone; }
};

struct NodeState {
  NodeState(const FbxNode* node, uint32_t parent) : node(node), parent(parent) {}
  const FbxNode* node;
  uint32_t parent;
  Track translation, rotation, scaling;
  FbxTime transformAt = kNever, worldAt = kNever;
  NodeTransform transform;
  Affine world;
  // World rotation, and world scale applied before it: linear part of `world` = scale * rotation. `inherited` is the
  // scale without the node's own.
  Affine rotationPart, scalePart, inherited;
};

Affine Linear(Affine m) {
  m.row[3] = {};
  return m;
}
/// The inverse of a matrix with orthonormal rows.
Affine Transposed(const Affine& m) {
  return {{{m.row[0].x, m.row[1].x, m.row[2].x},
           {m.row[0].y, m.row[1].y, m.row[2].y},
           {m.row[0].z, m.row[1].z, m.row[2].z},
           {}}};
}

/// World parts of `state` from its local transform and its parent's world parts.
void Inherit(const NodeState& parent, NodeState& state) {
  const NodeTransform& t = state.transform;
  const Affine turn = LocalRotation(t);
  state.rotationPart = turn * parent.rotationPart;
  switch (t.inherit) {
    case InheritType::RrSs:
      state.inherited = parent.scalePart;
      break;
    case InheritType::Rrs:
      state.inherited = parent.inherited;
      break;
    case InheritType::RSrs:
      state.inherited = turn * Linear(parent.world) * Transposed(state.rotationPart);
      break;
  }
  state.scalePart = Scaling(t.scaling) * state.inherited;
  const Affine local = LocalMatrix(t);
  if (t.inherit == InheritType::RSrs) {
    state.world = local * parent.world;
    return;
  }
  state.world = state.scalePart * state.rotationPart;
  state.world.row[3] = local.row[3] * parent.world;
}

}  // namespace

struct SceneEvaluator::Impl {
  std::vector<LayerState> layers;
  std::vector<Source> sources;
  /// The root comes first.
  std::vector<NodeState> nodes;
  std::unordered_map<const FbxObject*, uint32_t> nodeIndex;
  std::unordered_map<const FbxObject*, Track> channels;
  std::vector<uint32_t> path;
  FbxTime weightsAt = kNever;

  void AddLayers(const FbxAnimStack& stack);
  void AddNodes(const FbxScene& scene);
  void AddCurves();
  void Append(Track& track, const FbxAnimCurveNode* curves, uint32_t layer);
  Track* TrackOf(const FbxAnimCurveNode& curves);
  uint32_t Find(const FbxNode* node) const;

  void SetWeights(FbxTime t);
  Vector3 Values(Source& source, FbxTime t) const;
  template <class Blend>
  void Apply(const Track& track, FbxTime t, Vector3& value, Blend blend);
  void UpdateTransform(NodeState& state, FbxTime t);
};

void SceneEvaluator::Impl::AddLayers(const FbxAnimStack& stack) {
  const bool anySolo =
      std::any_of(stack.layers.begin(), stack.layers.end(), [](const FbxAnimLayer* layer) { return layer->solo; });
  for (const FbxAnimLayer* layer : stack.layers) {
    if (anySolo ? !layer->solo : layer->mute) continue;
    LayerMode mode{layer->blend, layer->rotationAccumulation == 0, layer->scaleAccumulation == 0, 1};
    layers.push_back({layer, layer == stack.layers.front(), mode});
  }
}

void SceneEvaluator::Impl::AddNodes(const FbxScene& scene) {
  nodes.reserve(scene.Nodes().size() + 1);
  nodes.emplace_back(scene.GetRootNode(), kNone);
  nodes[0].world = scene.topConversion;
  nodes[0].rotationPart = Linear(scene.topConversion);
  nodeIndex.reserve(scene.Nodes().size() + 1);
  nodeIndex[scene.GetRootNode()] = 0;
  // Parents before children, so that an index names a parent that is there already.
  for (size_t i = 0; i < nodes.size(); ++i) {
    const FbxNode* node = nodes[i].node;
    for (int c = 0; c < node->GetChildCount(); ++c) {
      nodeIndex[node->GetChild(c)] = static_cast<uint32_t>(nodes.size());
      nodes.emplace_back(node->GetChild(c), static_cast<uint32_t>(i));
    }
  }
  path.reserve(nodes.size());
}

Track* SceneEvaluator::Impl::TrackOf(const FbxAnimCurveNode& curves) {
  if (dynamic_cast<const FbxBlendShapeChannel*>(curves.target)) {
    return curves.property == "DeformPercent" ? &channels[curves.target] : nullptr;
  }
  const auto found = nodeIndex.find(curves.target);
  if (found == nodeIndex.end()) return nullptr;
  NodeState& state = nodes[found->second];
  if (curves.property == "Lcl Translation") return &state.translation;
  if (curves.property == "Lcl Rotation") return &state.rotation;
  if (curves.property == "Lcl Scaling") return &state.scaling;
  return nullptr;
}

void SceneEvaluator::Impl::Append(Track& track, const FbxAnimCurveNode* curves, uint32_t layer) {
  const auto index = static_cast<uint32_t>(sources.size());
  sources.push_back({curves, layer});
  (track.IsEmpty() ? track.first : sources[track.last].next) = index;
  track.last = index;
}

void SceneEvaluator::Impl::AddCurves() {
  for (uint32_t i = 0; i < layers.size(); ++i) {
    for (const FbxAnimCurveNode* curves : layers[i].layer->curveNodes) {
      if (!curves->target) continue;
      if (Track* track = TrackOf(*curves)) Append(*track, curves, i);
    }
  }
}

uint32_t SceneEvaluator::Impl::Find(const FbxNode* node) const {
  const auto found = nodeIndex.find(node);
  return found == nodeIndex.end() ? kNone : found->second;
}

void SceneEvaluator::Impl::SetWeights(FbxTime t) {
  if (weightsAt == t) return;
  weightsAt = t;
  for (LayerState& state : layers) {
    const FbxAnimLayer& layer = *state.layer;
    const double percent = layer.weightCurve.IsEmpty() ? layer.weight : layer.weightCurve.Evaluate(t, state.hint);
    state.mode.weight = std::clamp(percent / 100, 0.0, 1.0);
  }
}

Vector3 SceneEvaluator::Impl::Values(Source& source, FbxTime t) const {
  Vector3 values;
  for (size_t i = 0; i < 3; ++i) {
    const FbxAnimCurve& curve = source.curves->curves[i];
    values[i] = curve.IsEmpty() ? source.curves->defaults[i] : curve.Evaluate(t, source.hints[i]);
  }
  return values;
}

/// The lowest layer takes the place of the still value, whatever its mode and weight.
template <class Blend>
void SceneEvaluator::Impl::Apply(const Track& track, FbxTime t, Vector3& value, Blend blend) {
  for (uint32_t i = track.first; i != kNone; i = sources[i].next) {
    const LayerState& layer = layers[sources[i].layer];
    const Vector3 values = Values(sources[i], t);
    value = layer.isBase ? values : blend(value, values, layer.mode);
  }
}

void SceneEvaluator::Impl::UpdateTransform(NodeState& state, FbxTime t) {
  if (state.transformAt == t) return;
  SetWeights(t);
  state.transformAt = t;
  NodeTransform& transform = state.transform;
  transform = state.node->transform;
  const RotationOrder order = transform.rotationActive ? transform.order : RotationOrder::XYZ;
  Apply(state.translation, t, transform.translation, BlendPosition);
  Apply(state.scaling, t, transform.scaling, BlendScale);
  Apply(state.rotation, t, transform.rotation,
        [order](const Vector3& below, const Vector3& layer, const LayerMode& mode) {
          return BlendRotation(below, layer, mode, order);
        });
}

SceneEvaluator::SceneEvaluator(const FbxScene& scene, const FbxAnimStack* stack) : impl_(new Impl) {
  impl_->AddNodes(scene);
  if (!stack) return;
  impl_->AddLayers(*stack);
  impl_->AddCurves();
}

SceneEvaluator::~SceneEvaluator() = default;

NodeTransform SceneEvaluator::Transform(const FbxNode* node, FbxTime time) {
  const FbxTime t = Asked(time);
  const uint32_t index = impl_->Find(node);
  if (index == kNone) return {};
  impl_->UpdateTransform(impl_->nodes[index], t);
  return impl_->nodes[index].transform;
}

Affine SceneEvaluator::World(const FbxNode* node, FbxTime time) {
  const FbxTime t = Asked(time);
  const uint32_t index = impl_->Find(node);
  if (index == kNone) return {};
  std::vector<uint32_t>& path = impl_->path;
  path.clear();
  for (uint32_t i = index; i != 0 && impl_->nodes[i].worldAt != t; i = impl_->nodes[i].parent) path.push_back(i);
  for (; !path.empty(); path.pop_back()) {
    NodeState& state = impl_->nodes[path.back()];
    impl_->UpdateTransform(state, t);
    Inherit(impl_->nodes[state.parent], state);
    state.worldAt = t;
  }
  return impl_->nodes[index].world;
}

bool SceneEvaluator::IsAnimated(const FbxNode* node) const {
  const uint32_t index = impl_->Find(node);
  if (index == kNone) return false;
  const NodeState& state = impl_->nodes[index];
  return !state.translation.IsEmpty() || !state.rotation.IsEmpty() || !state.scaling.IsEmpty();
}

double SceneEvaluator::DeformPercent(const FbxBlendShapeChannel* channel, FbxTime time) {
  const FbxTime t = Asked(time);
  Vector3 value{channel->deformPercent, 0, 0};
  const auto found = impl_->channels.find(channel);
  if (found == impl_->channels.end()) return value.x;
  impl_->SetWeights(t);
  impl_->Apply(found->second, t, value, BlendPosition);
  return value.x;
}

bool SceneEvaluator::IsAnimated(const FbxBlendShapeChannel* channel) const {
  return impl_->channels.count(channel) != 0;
}

}  // namespace tavrilon::fbx
