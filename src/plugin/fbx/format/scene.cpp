// SPDX-License-Identifier: MIT
#include "plugin/fbx/format/scene.h"

#include <algorithm>
#include <cassert>

namespace tavrilon::fbx {

FbxScene::FbxScene(std::string name) : name_(std::move(name)), root_(new FbxNode(*this, "RootNode")) {}
FbxScene::~FbxScene() = default;

std::unique_ptr<FbxScene> FbxScene::Create(std::string name) {
  return std::unique_ptr<FbxScene>(new FbxScene(std::move(name)));
}

FbxAnimStack* FbxScene::CurrentStack() const {
  for (FbxAnimStack* stack : stacks_) {
    if (stack->GetName() == currentStack) return stack;
  }
  return stacks_.empty() ? nullptr : stacks_.front();
}

void FbxScene::Destroy(FbxObject* object) {
  assert(object != root_.get() && "the root goes with its scene");
  if (object == root_.get()) return;
  if (auto* node = dynamic_cast<FbxNode*>(object)) {
    while (!node->children_.empty()) node->parent_->AddChild(node->children_.back());
    std::erase(node->parent_->children_, node);
  }
  for (const std::unique_ptr<FbxObject>& other : objects_) other->Unlink(*object);
  root_->Unlink(*object);
  std::erase(nodes_, object);
  std::erase(stacks_, object);
  std::erase(poses_, object);
  std::erase(materials_, object);
  std::erase_if(objects_, [object](const auto& owned) { return owned.get() == object; });
}

void FbxAnimStack::GetKeySpan(FbxTime& first, FbxTime& last) const {
  bool any = false;
  for (const FbxAnimLayer* layer : layers) {
    for (const FbxAnimCurveNode* node : layer->curveNodes) {
      for (const FbxAnimCurve& curve : node->curves) {
        if (curve.IsEmpty()) continue;
        first.ticks = any ? std::min(first.ticks, curve.times.front()) : curve.times.front();
        last.ticks = any ? std::max(last.ticks, curve.times.back()) : curve.times.back();
        any = true;
      }
    }
  }
  if (any) return;
  first = localStart;
  last = localStop;
}

namespace {

template <class T>
size_t BytesOf(const std::vector<T>& values) {
  return values.capacity() * sizeof(T);
}
template <class T>
size_t BytesOf(const LayerElement<T>& element) {
  return BytesOf(element.values) + BytesOf(element.indices);
}
size_t BytesOf(const FbxAnimCurve& curve) {
  return BytesOf(curve.times) + BytesOf(curve.values) + BytesOf(curve.shapes);
}

// What one object holds beside itself; small texts are left out.
size_t Held(const FbxNode& node) {
  size_t bytes = sizeof(node) + node.materials.size() * sizeof(void*);
  bytes += static_cast<size_t>(node.GetChildCount()) * sizeof(void*);
  for (const auto& [key, value] : node.userProperties) bytes += sizeof(key) * 3 + key.size() + value.size();
  return bytes;
}
size_t Held(const FbxMesh& mesh) {
  size_t bytes = sizeof(mesh) + BytesOf(mesh.controlPoints) + BytesOf(mesh.polygonStarts) +
                 BytesOf(mesh.polygonVertices) + BytesOf(mesh.edges) + BytesOf(mesh.normals) + BytesOf(mesh.smoothing) +
                 BytesOf(mesh.materials);
  for (const auto& uv : mesh.uvs) bytes += sizeof(uv) + BytesOf(uv);
  return bytes;
}
size_t Held(const FbxSkin& skin) {
  size_t bytes = sizeof(skin) + BytesOf(skin.clusters);
  for (const FbxCluster& cluster : skin.clusters) bytes += BytesOf(cluster.indices) + BytesOf(cluster.weights);
  return bytes;
}
size_t Held(const FbxBlendShapeChannel& channel) {
  size_t bytes = sizeof(channel) + BytesOf(channel.shapes);
  for (const FbxShape& shape : channel.shapes) {
    bytes += BytesOf(shape.indices) + BytesOf(shape.offsets) + BytesOf(shape.normals);
  }
  return bytes;
}
size_t Held(const FbxAnimCurveNode& node) {
  size_t bytes = sizeof(node);
  for (const FbxAnimCurve& curve : node.curves) bytes += BytesOf(curve);
  return bytes;
}
size_t Held(const FbxPose& pose) { return sizeof(pose) + BytesOf(pose.entries); }

/// The first of the classes that the object is; the size of a plain object for all others.
template <class T, class... More>
size_t HeldAs(const FbxObject& object) {
  if (const T* typed = dynamic_cast<const T*>(&object)) return Held(*typed);
  if constexpr (sizeof...(More) > 0) {
    return HeldAs<More...>(object);
  } else {
    return sizeof(FbxSurfaceMaterial);
  }
}

}  // namespace

size_t FbxScene::MemoryUsed() const {
  size_t bytes = sizeof(*this) + BytesOf(objects_) + BytesOf(nodes_) + Held(*root_);
  for (const std::unique_ptr<FbxObject>& object : objects_) {
    bytes += HeldAs<FbxAnimCurveNode, FbxNode, FbxMesh, FbxSkin, FbxBlendShapeChannel, FbxPose>(*object);
  }
  return bytes;
}

}  // namespace tavrilon::fbx
