// SPDX-License-Identifier: MIT
// What can be done once all links are in: the hierarchy, checks of skins and shapes against their mesh, curves.
#include <algorithm>
#include <numeric>

#include "plugin/fbx/format/scene_reader.h"

namespace tavrilon::fbx {

namespace {

struct AnimatedProperty {
  std::string_view name;
  Vector3 NodeTransform::*still;
};
constexpr AnimatedProperty kAnimated[] = {{"Lcl Translation", &NodeTransform::translation},
                                          {"Lcl Rotation", &NodeTransform::rotation},
                                          {"Lcl Scaling", &NodeTransform::scaling}};

template <class T>
void KeepAt(std::vector<T>& values, const std::vector<size_t>& places) {
  if (values.empty()) return;
  for (size_t i = 0; i < places.size(); ++i) values[i] = values[places[i]];
  values.resize(places.size());
}

/// Places of the indices that are points of a mesh; empty when all are.
bool FindSound(const std::vector<int>& indices, size_t numPoints, std::vector<size_t>& sound) {
  sound.clear();
  for (size_t i = 0; i < indices.size(); ++i) {
    if (indices[i] >= 0 && static_cast<size_t>(indices[i]) < numPoints) sound.push_back(i);
  }
  return sound.size() < indices.size();
}

/// A weight for each shape, rising, and the shapes in that order. Files may give a weight for each point instead.
void SortShapes(FbxBlendShapeChannel& channel) {
  constexpr double kFull = 100;
  const size_t count = channel.shapes.size();
  if (channel.fullWeights.size() < count) {
    for (size_t i = channel.fullWeights.size(); i < count; ++i) {
      channel.fullWeights.push_back(kFull * static_cast<double>(i + 1) / static_cast<double>(count));
    }
  }
  channel.fullWeights.resize(count);
  if (std::is_sorted(channel.fullWeights.begin(), channel.fullWeights.end())) return;
  std::vector<size_t> order(count);
  std::iota(order.begin(), order.end(), size_t{0});
  std::stable_sort(order.begin(), order.end(),
                   [&channel](size_t a, size_t b) { return channel.fullWeights[a] < channel.fullWeights[b]; });
  std::vector<FbxShape> shapes;
  for (size_t i : order) shapes.push_back(std::move(channel.shapes[i]));
  channel.shapes = std::move(shapes);
  std::sort(channel.fullWeights.begin(), channel.fullWeights.end());
}

}  // namespace

/// Each walk up the parents marks its way; where a walk meets its own mark the loop is opened.
void SceneReader::CutNodeLoops() {
  std::vector<uint32_t> walkOf(table_.Entries().size(), Entry::kNone);
  walkOf[0] = 0;
  for (const uint32_t start : nodeLinks_) {
    uint32_t at = start;
    while (walkOf[at] == Entry::kNone) {
      walkOf[at] = start;
      const uint32_t parent = At(at).owner;
      if (parent == Entry::kNone) break;
      if (walkOf[parent] == start) {
        scene_.Log().Note("Nodes that are their own ancestors were put under the root", NameOf(At(at)));
        At(at).owner = 0;
        break;
      }
      at = parent;
    }
  }
}

void SceneReader::BuildHierarchy() {
  CutNodeLoops();
  scene_.GetRootNode()->children_.clear();
  for (const uint32_t index : nodeLinks_) {
    auto* node = static_cast<FbxNode*>(At(index).object);
    node->parent_ = static_cast<FbxNode*>(At(At(index).owner).object);
    node->parent_->children_.push_back(node);
  }
  for (const Entry& entry : table_.Entries()) {
    if (entry.kind != ObjectKind::Node) continue;
    auto* node = static_cast<FbxNode*>(entry.object);
    if (entry.owner == Entry::kNone) {
      scene_.Log().Note("Nodes without a parent were put under the root", node->GetName());
      scene_.GetRootNode()->children_.push_back(node);
    }
    // Bones may do without an attribute.
    if (!node->GetNodeAttribute()) node->SetNodeAttribute(MakeSkeleton(scene_, "", entry.record.Text(2), {}));
  }
}

void SceneReader::FinishSkins() {
  for (const Entry& entry : table_.Entries()) {
    if (entry.kind != ObjectKind::Cluster || entry.owner == Entry::kNone) continue;
    FbxCluster& cluster = static_cast<FbxSkin*>(At(entry.owner).object)->clusters[entry.slot];
    cluster.link = entry.link;
    if (!cluster.link) scene_.Log().Note("Clusters of a skin without a bone", cluster.name);
  }
  std::vector<size_t> sound;
  for (const Entry& entry : table_.Entries()) {
    if (entry.kind != ObjectKind::Mesh) continue;
    auto* mesh = static_cast<FbxMesh*>(entry.object);
    for (FbxSkin* skin : mesh->skins) {
      for (FbxCluster& cluster : skin->clusters) {
        if (!FindSound(cluster.indices, mesh->controlPoints.size(), sound)) continue;
        scene_.Log().Note("Weights of points that the mesh does not have were left out", cluster.name);
        KeepAt(cluster.indices, sound);
        KeepAt(cluster.weights, sound);
      }
    }
    FinishShapes(*mesh);
  }
}

void SceneReader::FinishShapes(FbxMesh& mesh) {
  std::vector<size_t> sound;
  for (FbxBlendShape* blendShape : mesh.blendShapes) {
    for (FbxBlendShapeChannel* channel : blendShape->channels) {
      SortShapes(*channel);
      for (FbxShape& shape : channel->shapes) {
        if (!FindSound(shape.indices, mesh.controlPoints.size(), sound)) continue;
        scene_.Log().Note("Offsets of points that the mesh does not have were left out", shape.name);
        KeepAt(shape.indices, sound);
        KeepAt(shape.offsets, sound);
        KeepAt(shape.normals, sound);
      }
    }
  }
}

void SceneReader::FinishMaterials() {
  for (const LayeredLink& link : layeredLinks_) {
    if (auto* texture = static_cast<FbxTexture*>(At(link.texture).object)) {
      link.material->textures.push_back({link.property, texture});
    }
  }
}

bool SceneReader::FinishCurves() {
  for (size_t i = 0; i < curveLinks_.size(); ++i) {
    const CurveLink& link = curveLinks_[i];
    if (i % 64 == 0 && !Advance(0.7 + 0.3 * static_cast<double>(i) / static_cast<double>(curveLinks_.size()))) {
      return false;
    }
    const FbxObject* target = link.node->target;
    const std::string where = (target ? target->GetName() : link.node->GetName()) + " " + link.node->property;
    FbxAnimCurve& curve = link.node->curves[link.channel];
    if (!curve.IsEmpty()) {
      scene_.Log().Note("Only the first curve of a channel is read", where);
    } else if (!ReadCurve(context_, At(link.curve).record, where, curve)) {
      return false;
    }
  }
  for (const Entry& entry : table_.Entries()) {
    if (entry.kind != ObjectKind::CurveNode) continue;
    auto* curves = static_cast<FbxAnimCurveNode*>(entry.object);
    if (auto* layer = dynamic_cast<FbxAnimLayer*>(curves->target)) {
      if (curves->property == "Weight") {
        layer->weightCurve = std::move(curves->curves[0]);
        std::erase(layer->curveNodes, curves);  // the layer has it now
      }
      continue;
    }
    if (dynamic_cast<FbxBlendShapeChannel*>(curves->target) && curves->property == "DeformPercent") continue;
    const auto* node = dynamic_cast<FbxNode*>(curves->target);
    const auto* known = std::find_if(std::begin(kAnimated), std::end(kAnimated),
                                     [curves](const AnimatedProperty& row) { return row.name == curves->property; });
    if (!node || known == std::end(kAnimated)) {
      if (curves->target) {
        scene_.Log().Note("Animation of other properties than movement and shapes is left out",
                          curves->target->GetName() + "." + curves->property);
      }
      continue;
    }
    for (size_t i = 0; i < 3; ++i) {
      if (!(entry.slot & (1U << i))) curves->defaults[i] = (node->transform.*known->still)[i];
    }
  }
  return true;
}

}  // namespace tavrilon::fbx
