// SPDX-License-Identifier: MIT
// What a link between two objects means, by the kinds of both.
#include "plugin/fbx/format/scene_reader.h"

namespace tavrilon::fbx {

const SceneReader::LinkRow SceneReader::kLinkRows[] = {
    {ObjectKind::Node, ObjectKind::Root, &SceneReader::LinkNode},
    {ObjectKind::Node, ObjectKind::Node, &SceneReader::LinkNode},
    {ObjectKind::Attribute, ObjectKind::Node, &SceneReader::LinkAttribute},
    {ObjectKind::Mesh, ObjectKind::Node, &SceneReader::LinkAttribute},
    {ObjectKind::Material, ObjectKind::Node, &SceneReader::LinkMaterial},
    {ObjectKind::Skin, ObjectKind::Mesh, &SceneReader::LinkSkin},
    {ObjectKind::Cluster, ObjectKind::Skin, &SceneReader::LinkCluster},
    {ObjectKind::Node, ObjectKind::Cluster, &SceneReader::LinkBone},
    {ObjectKind::BlendShape, ObjectKind::Mesh, &SceneReader::LinkBlendShape},
    {ObjectKind::Channel, ObjectKind::BlendShape, &SceneReader::LinkChannel},
    {ObjectKind::Shape, ObjectKind::Channel, &SceneReader::LinkShape},
    {ObjectKind::Texture, ObjectKind::Material, &SceneReader::LinkTexture},
    {ObjectKind::LayeredTexture, ObjectKind::Material, &SceneReader::LinkLayeredTexture},
    {ObjectKind::Texture, ObjectKind::LayeredTexture, &SceneReader::LinkTextureLayer},
    {ObjectKind::Layer, ObjectKind::Stack, &SceneReader::LinkLayer},
    {ObjectKind::CurveNode, ObjectKind::Layer, &SceneReader::LinkCurveNodeToLayer},
    {ObjectKind::CurveNode, ObjectKind::Node, &SceneReader::LinkCurveNode},
    {ObjectKind::CurveNode, ObjectKind::Channel, &SceneReader::LinkCurveNode},
    {ObjectKind::CurveNode, ObjectKind::Mesh, &SceneReader::LinkCurveNode},
    {ObjectKind::CurveNode, ObjectKind::Attribute, &SceneReader::LinkCurveNode},
    {ObjectKind::CurveNode, ObjectKind::Material, &SceneReader::LinkCurveNode},
    {ObjectKind::CurveNode, ObjectKind::Texture, &SceneReader::LinkCurveNode},
    {ObjectKind::Curve, ObjectKind::CurveNode, &SceneReader::LinkCurve},
};

bool SceneReader::ReadLinks() {
  constexpr auto kKinds = static_cast<size_t>(ObjectKind::Count);
  LinkFunction functions[kKinds][kKinds] = {};
  for (const LinkRow& row : kLinkRows) {
    functions[static_cast<size_t>(row.source)][static_cast<size_t>(row.destination)] = row.link;
  }
  const auto isSilent = [](const Entry& entry) {
    return entry.kind == ObjectKind::Unknown || entry.kind == ObjectKind::LeftOut;
  };
  for (const ObjectLink& link : table_.Links()) {
    Entry &source = At(link.source), &destination = At(link.destination);
    if (isSilent(source) || isSilent(destination)) continue;
    if (const LinkFunction function =
            functions[static_cast<size_t>(source.kind)][static_cast<size_t>(destination.kind)]) {
      if (!(this->*function)(source, destination, link.property)) return false;
    } else if (destination.kind != ObjectKind::Root) {
      scene_.Log().Note("Links that have no meaning here are left out", NameOf(source) + " to " + NameOf(destination));
    }
  }
  return Advance(0.7);
}

bool SceneReader::Own(Entry& entry, const Entry& owner) {
  if (entry.owner == Entry::kNone) {
    entry.owner = IndexOf(owner);
    return true;
  }
  if (entry.owner != IndexOf(owner)) {
    scene_.Log().Note(std::string(entry.record.Name()) + " linked to a second owner stays with the first",
                      NameOf(entry));
  }
  return false;
}

bool SceneReader::LinkNode(Entry& node, Entry& parent, std::string_view property) {
  if (!property.empty()) {
    scene_.Log().Note("Nodes linked to a property are left out there", NameOf(parent) + "." + std::string(property));
  } else if (Own(node, parent)) {
    nodeLinks_.push_back(IndexOf(node));
  }
  return true;
}

bool SceneReader::LinkAttribute(Entry& attribute, Entry& node, std::string_view) {
  auto* holder = static_cast<FbxNode*>(node.object);
  auto* value = static_cast<FbxNodeAttribute*>(attribute.object);
  if (!holder->GetNodeAttribute()) {
    holder->SetNodeAttribute(value);
  } else if (holder->GetNodeAttribute() != value) {
    scene_.Log().Note("Only the first attribute of a node is read", NameOf(node));
  }
  return true;
}

bool SceneReader::LinkMaterial(Entry& material, Entry& node, std::string_view) {
  static_cast<FbxNode*>(node.object)->materials.push_back(static_cast<FbxSurfaceMaterial*>(material.object));
  return true;
}

bool SceneReader::LinkSkin(Entry& skin, Entry& mesh, std::string_view) {
  if (Own(skin, mesh)) static_cast<FbxMesh*>(mesh.object)->skins.push_back(static_cast<FbxSkin*>(skin.object));
  return true;
}

bool SceneReader::LinkCluster(Entry& cluster, Entry& skin, std::string_view) {
  if (!Own(cluster, skin)) return true;
  std::vector<FbxCluster>& clusters = static_cast<FbxSkin*>(skin.object)->clusters;
  cluster.slot = static_cast<uint32_t>(clusters.size());
  return ReadCluster(context_, cluster.record, clusters.emplace_back());
}

bool SceneReader::LinkBone(Entry& node, Entry& cluster, std::string_view) {
  if (!cluster.link) cluster.link = static_cast<FbxNode*>(node.object);
  return true;
}

bool SceneReader::LinkBlendShape(Entry& blendShape, Entry& mesh, std::string_view) {
  if (!Own(blendShape, mesh)) return true;
  static_cast<FbxMesh*>(mesh.object)->blendShapes.push_back(static_cast<FbxBlendShape*>(blendShape.object));
  return true;
}

bool SceneReader::LinkChannel(Entry& channel, Entry& blendShape, std::string_view) {
  if (!Own(channel, blendShape)) return true;
  auto* holder = static_cast<FbxBlendShape*>(blendShape.object);
  holder->channels.push_back(static_cast<FbxBlendShapeChannel*>(channel.object));
  return true;
}

bool SceneReader::LinkShape(Entry& shape, Entry& channel, std::string_view) {
  if (!Own(shape, channel)) return true;
  return ReadShape(context_, shape.record, static_cast<FbxBlendShapeChannel*>(channel.object)->shapes.emplace_back());
}

bool SceneReader::LinkTexture(Entry& texture, Entry& material, std::string_view property) {
  static_cast<FbxSurfaceMaterial*>(material.object)
      ->textures.push_back({std::string(property), static_cast<FbxTexture*>(texture.object)});
  return true;
}

bool SceneReader::LinkLayeredTexture(Entry& texture, Entry& material, std::string_view property) {
  layeredLinks_.push_back({static_cast<FbxSurfaceMaterial*>(material.object), std::string(property), IndexOf(texture)});
  return true;
}

bool SceneReader::LinkTextureLayer(Entry& texture, Entry& layered, std::string_view) {
  if (!layered.object) {
    layered.object = texture.object;
  } else {
    scene_.Log().Note("Only the first texture of layered ones is read", NameOf(layered));
  }
  return true;
}

bool SceneReader::LinkLayer(Entry& layer, Entry& stack, std::string_view) {
  if (Own(layer, stack)) {
    static_cast<FbxAnimStack*>(stack.object)->layers.push_back(static_cast<FbxAnimLayer*>(layer.object));
  }
  return true;
}

bool SceneReader::LinkCurveNodeToLayer(Entry& curveNode, Entry& layer, std::string_view property) {
  if (!property.empty()) return LinkCurveNode(curveNode, layer, property);
  if (Own(curveNode, layer)) {
    static_cast<FbxAnimLayer*>(layer.object)->curveNodes.push_back(static_cast<FbxAnimCurveNode*>(curveNode.object));
  }
  return true;
}

bool SceneReader::LinkCurveNode(Entry& curveNode, Entry& target, std::string_view property) {
  auto* node = static_cast<FbxAnimCurveNode*>(curveNode.object);
  if (node->target) {
    scene_.Log().Note("Curves that drive a second property are left out there",
                      NameOf(target) + "." + std::string(property));
    return true;
  }
  node->target = target.object;
  node->property = std::string(property);
  return true;
}

bool SceneReader::LinkCurve(Entry& curve, Entry& curveNode, std::string_view property) {
  curveLinks_.push_back({IndexOf(curve), static_cast<FbxAnimCurveNode*>(curveNode.object), ChannelOf(property)});
  return true;
}

}  // namespace tavrilon::fbx
