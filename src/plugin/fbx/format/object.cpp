// SPDX-License-Identifier: MIT
// Making objects, and taking them out of their scene with every link to them.
#include "plugin/fbx/format/object.h"

#include "plugin/fbx/format/own_object.h"

namespace tavrilon::fbx {

void FbxObject::Destroy() { scene_->Destroy(this); }

FbxNull* FbxNull::Create(FbxScene& scene, std::string name) {
  return OwnObject(scene, new FbxNull(scene, std::move(name)));
}
FbxSkeleton* FbxSkeleton::Create(FbxScene& scene, std::string name) {
  return OwnObject(scene, new FbxSkeleton(scene, std::move(name)));
}
FbxOtherAttribute* FbxOtherAttribute::Create(FbxScene& scene, std::string name, AttributeKind kind,
                                             std::string typeName) {
  FbxOtherAttribute* attribute = OwnObject(scene, new FbxOtherAttribute(scene, std::move(name)));
  attribute->kind_ = kind;
  attribute->typeName_ = std::move(typeName);
  return attribute;
}
FbxMesh* FbxMesh::Create(FbxScene& scene, std::string name) {
  return OwnObject(scene, new FbxMesh(scene, std::move(name)));
}
FbxSkin* FbxSkin::Create(FbxScene& scene, std::string name) {
  return OwnObject(scene, new FbxSkin(scene, std::move(name)));
}
FbxBlendShapeChannel* FbxBlendShapeChannel::Create(FbxScene& scene, std::string name) {
  return OwnObject(scene, new FbxBlendShapeChannel(scene, std::move(name)));
}
FbxBlendShape* FbxBlendShape::Create(FbxScene& scene, std::string name) {
  return OwnObject(scene, new FbxBlendShape(scene, std::move(name)));
}
FbxTexture* FbxTexture::Create(FbxScene& scene, std::string name) {
  return OwnObject(scene, new FbxTexture(scene, std::move(name)));
}
FbxSurfaceMaterial* FbxSurfaceMaterial::Create(FbxScene& scene, std::string name) {
  return OwnObject(scene, new FbxSurfaceMaterial(scene, std::move(name)));
}
FbxAnimCurveNode* FbxAnimCurveNode::Create(FbxScene& scene, std::string name) {
  return OwnObject(scene, new FbxAnimCurveNode(scene, std::move(name)));
}
FbxAnimLayer* FbxAnimLayer::Create(FbxScene& scene, std::string name) {
  return OwnObject(scene, new FbxAnimLayer(scene, std::move(name)));
}
FbxAnimStack* FbxAnimStack::Create(FbxScene& scene, std::string name) {
  return OwnObject(scene, new FbxAnimStack(scene, std::move(name)));
}
FbxPose* FbxPose::Create(FbxScene& scene, std::string name) {
  return OwnObject(scene, new FbxPose(scene, std::move(name)));
}

void FbxNode::Unlink(const FbxObject& gone) {
  if (attribute_ == &gone) attribute_ = nullptr;
  std::erase(materials, &gone);
}
void FbxMesh::Unlink(const FbxObject& gone) {
  std::erase(skins, &gone);
  std::erase(blendShapes, &gone);
}
void FbxSkin::Unlink(const FbxObject& gone) {
  for (FbxCluster& cluster : clusters) {
    if (cluster.link == &gone) cluster.link = nullptr;
  }
}
void FbxBlendShape::Unlink(const FbxObject& gone) { std::erase(channels, &gone); }
void FbxSurfaceMaterial::Unlink(const FbxObject& gone) {
  std::erase_if(textures, [&gone](const TextureLink& link) { return link.texture == &gone; });
}
void FbxAnimCurveNode::Unlink(const FbxObject& gone) {
  if (target == &gone) target = nullptr;
}
void FbxAnimLayer::Unlink(const FbxObject& gone) { std::erase(curveNodes, &gone); }
void FbxAnimStack::Unlink(const FbxObject& gone) { std::erase(layers, &gone); }
void FbxPose::Unlink(const FbxObject& gone) {
  std::erase_if(entries, [&gone](const Entry& entry) { return entry.node == &gone; });
}

}  // namespace tavrilon::fbx
