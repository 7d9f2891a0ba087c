// SPDX-License-Identifier: MIT
// Scenes for tests: read from short ASCII texts or files, and comparisons of their values.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

#include "plugin/fbx/format/sdk.h"

namespace tavrilon::fbx {

/// The default is what a handful of products of turns may lose in double precision.
inline void ExpectNear(const Vector3& a, const Vector3& b, double tolerance = 1e-12) {
  EXPECT_NEAR(a.x, b.x, tolerance);
  EXPECT_NEAR(a.y, b.y, tolerance);
  EXPECT_NEAR(a.z, b.z, tolerance);
}
inline void ExpectNear(const Affine& a, const Affine& b, double tolerance = 1e-12) {
  for (size_t r = 0; r < 4; ++r) {
    SCOPED_TRACE(testing::Message() << "row " << r);
    ExpectNear(a.row[r], b.row[r], tolerance);
  }
}

inline FbxTime Seconds(double seconds) { return FbxTime::FromSeconds(seconds); }

/// A file that was imported, or the error.
struct Imported {
  std::unique_ptr<FbxManager> manager = FbxManager::Create();
  std::unique_ptr<FbxImporter> importer = FbxImporter::Create(*manager, "");
  std::unique_ptr<FbxScene> scene = FbxScene::Create("sample");

  std::string Error() const { return importer->GetStatus().GetErrorString(); }
  std::string Log() const {
    std::string log;
    for (const std::string& line : scene->Log().Lines()) log += line + "\n";
    return log;
  }
  FbxNode* Node(const std::string& name) const {
    for (FbxNode* node : scene->Nodes()) {
      if (node->GetName() == name) return node;
    }
    return nullptr;
  }
  template <class T>
  std::vector<T*> All() const {
    std::vector<T*> all;
    for (const auto& object : scene->Objects()) {
      if (T* typed = dynamic_cast<T*>(object.get())) all.push_back(typed);
    }
    return all;
  }
};

inline std::string DataFile(const std::string& name) { return std::string(TAVRILON_SOURCE_DIR) + "/examples/" + name; }

inline std::unique_ptr<Imported> ReadFile(const std::string& name) {
  auto read = std::make_unique<Imported>();
  EXPECT_TRUE(read->importer->Initialize(DataFile(name)) && read->importer->Import(*read->scene)) << read->Error();
  return read;
}

/// What is not read is told by `Error`.
inline std::unique_ptr<Imported> ReadBytes(std::vector<uint8_t> bytes) {
  auto read = std::make_unique<Imported>();
  if (read->importer->Initialize(std::move(bytes), "sample.fbx")) read->importer->Import(*read->scene);
  return read;
}
inline std::unique_ptr<Imported> ReadText(const std::string& text) { return ReadBytes({text.begin(), text.end()}); }

/// `objects` and `links` are the insides of those records; `more` stands before them.
inline std::string SceneText(const std::string& objects, const std::string& links = "", const std::string& more = "") {
  return "; FBX 7.4.0 project file\n" + more + "\nObjects: {\n" + objects + "\n}\nConnections: {\n" + links + "\n}\n";
}

/// Links between objects, the child first.
inline std::string Links(std::initializer_list<std::pair<int, int>> pairs) {
  std::string text;
  for (const auto& [child, parent] : pairs) {
    text += "C: \"OO\"," + std::to_string(child) + "," + std::to_string(parent) + "\n";
  }
  return text;
}

/// A block of properties, each with its name and its values, and the rows `more` as they stand.
inline std::string Properties(const std::vector<std::pair<std::string, std::string>>& rows,
                              const std::string& more = "") {
  std::string text = " Properties70: {\n";
  for (const auto& [name, values] : rows) text += "P: \"" + name + "\", \"\", \"\", \"\"," + values + "\n";
  return text + more + "}\n";
}

/// A triangle under a node, with a bone, a shape, a curve, a surface and a pose: something of every kind of link.
struct SmallScene {
  std::unique_ptr<FbxScene> scene = FbxScene::Create("small");
  FbxNode* node = FbxNode::Create(*scene, "Body");
  FbxNode* bone = FbxNode::Create(*scene, "Hip");
  FbxNode* tip = FbxNode::Create(*scene, "Tip");
  FbxMesh* mesh = FbxMesh::Create(*scene, "Body");
  FbxSkin* skin = FbxSkin::Create(*scene, "Skin");
  FbxBlendShape* blend = FbxBlendShape::Create(*scene, "Morph");
  FbxBlendShapeChannel* channel = FbxBlendShapeChannel::Create(*scene, "Smile");
  FbxSurfaceMaterial* material = FbxSurfaceMaterial::Create(*scene, "Green");
  FbxTexture* texture = FbxTexture::Create(*scene, "Leaf");
  FbxPose* pose = FbxPose::Create(*scene, "Bind");
  FbxAnimStack* stack = FbxAnimStack::Create(*scene, "Take");
  FbxAnimLayer* layer = FbxAnimLayer::Create(*scene, "Base");
  FbxAnimCurveNode* curves = FbxAnimCurveNode::Create(*scene, "T");

  SmallScene() {
    node->AddChild(bone);
    bone->AddChild(tip);
    node->SetNodeAttribute(mesh);
    node->materials = {material, material};
    material->textures = {{"DiffuseColor", texture}};
    mesh->controlPoints = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
    mesh->polygonVertices = {0, 1, 2};
    mesh->polygonStarts = {0, 3};
    mesh->normals = {"", Mapping::ByPolygonVertex, {{0, 0, 1}, {0, 0, 1}, {0, 0, 1}}, {}};
    skin->clusters = {{"Bone", bone, {0, 1}, {1, 0.5}, {}, {}}};
    mesh->skins = {skin};
    channel->shapes = {{"Smile", {2}, {{0, 0, 1}}, {}}};
    channel->fullWeights = {100};
    blend->channels = {channel};
    mesh->blendShapes = {blend};
    pose->entries = {{bone, {}}, {node, {}}};
    stack->layers = {layer};
    layer->curveNodes = {curves};
    curves->target = bone;
    curves->property = "Lcl Translation";
    curves->curves[0] = {{0, 100}, {1, 2}, {KeyShape()}};
  }
};

}  // namespace tavrilon::fbx
