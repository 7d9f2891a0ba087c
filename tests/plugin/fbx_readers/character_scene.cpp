// SPDX-License-Identifier: MIT
#include "plugin/fbx_readers/character_scene.h"

#include "plugin/fbx/import_scenes_test.h"

namespace tavrilon::fbx {

namespace {

constexpr int kRows = 6, kColumns = 4;

}  // namespace

CharacterScene::CharacterScene() {
  scene->GetGlobalSettings().SetTimeMode(FbxTime::ConvertFrameRateToTimeMode(kRate));
  FbxNode* hips = import_test::AddBone(*scene, "Hips", nullptr, {0, 90, 3});
  FbxNode* spine = import_test::AddBone(*scene, "Spine", hips, {0, 25, 1});
  FbxNode* head = import_test::AddBone(*scene, "Head", spine, {1, 30, 0});
  FbxNode* thigh = import_test::AddBone(*scene, "ns:Thigh", hips, {12, -5, 0});
  FbxNode* shin = import_test::AddBone(*scene, "Shin", thigh, {0, 40, 2});
  const Vector3 rotations[] = {{5, 10, -4}, {-10, 20, 30}, {0, -15, 8}, {170, 5, 0}, {15, 0, 0}};
  bones = {hips, spine, head, thigh, shin};
  for (size_t i = 0; i < bones.size(); ++i) bones[i]->transform.rotation = rotations[i];
  MakeMesh();
  MakeSkin();
  MakeShape();
  MakePose();
  Animate();
}

// A curved sheet of quads with a UV seam, one material in front and one behind.
void CharacterScene::MakeMesh() {
  body = FbxNode::Create(*scene, "Body");
  mesh = FbxMesh::Create(*scene, "Body mesh");
  body->SetNodeAttribute(mesh);
  body->transform.translation = {0, 1, 2};
  for (const char* name : {"Skin", "Cloth"}) {
    FbxSurfaceMaterial* material = FbxSurfaceMaterial::Create(*scene, name);
    material->diffuse = name[0] == 'S' ? Vector3{0.75, 0.5, 0.25} : Vector3{0.125, 0.25, 0.5};
    body->materials.push_back(material);
  }
  FbxTexture* texture = FbxTexture::Create(*scene, "weave");
  texture->fileName = texture->relativeFileName = "textures/weave.png";
  body->materials[1]->textures.push_back({"DiffuseColor", texture});
  for (int row = 0; row <= kRows; ++row) {
    for (int column = 0; column <= kColumns; ++column) {
      mesh->controlPoints.push_back({10.0 * column - 20, 20.0 * row, std::abs(column - 2.0) * 3});
    }
  }
  mesh->normals.mapping = Mapping::ByPolygonVertex;
  mesh->uvs.resize(2);
  mesh->materials.mapping = Mapping::ByPolygon;
  for (LayerElement<Vector2>& uv : mesh->uvs) uv.mapping = Mapping::ByPolygonVertex;
  mesh->uvs[0].name = "map1";
  mesh->uvs[1].name = "light";
  for (int row = 0; row < kRows; ++row) {
    for (int column = 0; column < kColumns; ++column) {
      const int first = row * (kColumns + 1) + column;
      for (const int point : {first, first + 1, first + kColumns + 2, first + kColumns + 1}) {
        mesh->polygonVertices.push_back(point);
        const Vector3& p = mesh->controlPoints[static_cast<size_t>(point)];
        mesh->normals.values.push_back({column < 2 ? -0.28 : 0.28, 0, 0.96});
        mesh->uvs[0].values.push_back({p.x / 40 + 0.5 + column, p.y / 120});
        mesh->uvs[1].values.push_back({p.y / 120, 1 - p.x / 40});
      }
      mesh->polygonStarts.push_back(static_cast<int>(mesh->polygonVertices.size()));
      mesh->materials.values.push_back(row < 2);
    }
  }
  FbxGeometryConverter::ComputeEdgeSmoothingFromNormals(*mesh);
}

// Points change over from one bone to the next with their height; the shin has none.
void CharacterScene::MakeSkin() {
  FbxSkin* skin = FbxSkin::Create(*scene, "Skin");
  SceneEvaluator rest(*scene, nullptr);
  for (FbxNode* bone : bones) {
    FbxCluster cluster{bone->GetName(), bone, {}, {}, rest.World(bone, {}), {}};
    cluster.transform = rest.World(body, {}) * Inverse(cluster.transformLink);
    skin->clusters.push_back(cluster);
  }
  for (size_t i = 0; i < mesh->controlPoints.size(); ++i) {
    const double height = std::min(mesh->controlPoints[i].y / 120, 1.0) * 3;
    const size_t lower = std::min<size_t>(static_cast<size_t>(height), 2);
    const double upperShare = lower == 2 ? height - 2 : height - static_cast<double>(lower);
    for (const auto& [bone, weight] : {std::pair(lower, 1 - upperShare), std::pair(lower + 1, upperShare)}) {
      if (weight <= 0) continue;
      skin->clusters[bone].indices.push_back(static_cast<int>(i));
      skin->clusters[bone].weights.push_back(weight);
    }
  }
  mesh->skins.push_back(skin);
}

void CharacterScene::MakeShape() {
  FbxBlendShape* blend = FbxBlendShape::Create(*scene, "Face");
  smile = FbxBlendShapeChannel::Create(*scene, "Smile");
  smile->fullWeights = {100};
  smile->shapes.push_back({"Smile", {26, 28, 31}, {{0, 3, 1}, {0, 3, 1}, {1, -2, 0}}, {}});
  blend->channels.push_back(smile);
  mesh->blendShapes.push_back(blend);
}

void CharacterScene::MakePose() {
  FbxPose* pose = FbxPose::Create(*scene, "Bind");
  SceneEvaluator rest(*scene, nullptr);
  for (FbxNode* node : scene->Nodes()) pose->entries.push_back({node, rest.World(node, {})});
}

// All bones turn; the hips also walk and the head grows. The frames begin away from zero.
void CharacterScene::Animate() {
  stack = FbxAnimStack::Create(*scene, "Walk");
  FbxAnimLayer* layer = FbxAnimLayer::Create(*scene, "Base");
  stack->layers.push_back(layer);
  stack->localStart = stack->referenceStart = FrameTime(10);
  stack->localStop = stack->referenceStop = FrameTime(10 + kFrames);
  const auto animate = [&](FbxObject* target, const char* property, size_t channels, const Vector3& rest, double size) {
    FbxAnimCurveNode* node = import_test::AddCurves(*scene, *layer, target, property);
    for (size_t i = 0; i < channels; ++i) {
      node->defaults[i] = rest[i];
      node->curves[i].shapes.resize(1);
      for (int frame = 10; frame <= 10 + kFrames; ++frame) {
        node->curves[i].times.push_back(FrameTime(frame).ticks);
        const double phase = 0.3 * frame + static_cast<double>(i);
        node->curves[i].values.push_back(static_cast<float>(rest[i] + size * std::sin(phase)));
      }
    }
  };
  for (FbxNode* bone : bones) animate(bone, "Lcl Rotation", 3, bone->transform.rotation, 20);
  animate(bones[0], "Lcl Translation", 3, bones[0]->transform.translation, 10);
  animate(bones[2], "Lcl Scaling", 3, bones[2]->transform.scaling, 0.25);
  animate(smile, "DeformPercent", 1, {50, 0, 0}, 50);
}

}  // namespace tavrilon::fbx
