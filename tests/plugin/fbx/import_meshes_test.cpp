// SPDX-License-Identifier: MIT
// Meshes with their layers, blend shapes and materials.
#include <filesystem>
#include <fstream>

#include "host/scene/material.h"
#include "host/scene/mesh_object.h"
#include "host/scene/morpher_modifier.h"
#include "host/scene/skin_modifier.h"
#include "host/scene/subdivision_modifier.h"
#include "import_scenes_test.h"
#include "plugin/fbx/importer/smoothing_groups.h"

namespace tavrilon::import_test {
namespace {

using namespace fbx;

/// Points 0 to 5 in two rows of three, and two quads side by side: 0 1 4 3 and 1 2 5 4.
FbxMesh* AddQuads(FbxScene& scene, FbxNode* node) {
  FbxMesh* mesh = FbxMesh::Create(scene, "quads");
  node->SetNodeAttribute(mesh);
  mesh->controlPoints = {{0, 0, 0}, {1, 0, 0}, {2, 0, 0}, {0, 1, 0}, {1, 1, 0}, {2, 1, 0}};
  mesh->polygonVertices = {0, 1, 4, 3, 1, 2, 5, 4};
  mesh->polygonStarts = {0, 4, 8};
  return mesh;
}

class ImportMeshes : public ImportTest {
 protected:
  void SetUp() override {
    ImportTest::SetUp();
    scene_ = NewScene();
    node_ = AddNode(*scene_, "mesh");
    mesh_ = AddQuads(*scene_, node_);
  }
  const Mesh& Imported() {
    EXPECT_TRUE(Import(*scene_)) << Log();
    return static_cast<MeshObject*>(GetScene().Nodes()[0]->GetBaseObject())->GetMesh();
  }
  std::unique_ptr<FbxScene> scene_;
  FbxNode* node_ = nullptr;
  FbxMesh* mesh_ = nullptr;
};

TEST_F(ImportMeshes, PolygonsStayAsTheyAre) {
  const Mesh& mesh = Imported();
  EXPECT_EQ(mesh.starts, (std::vector<int>{0, 4, 8}));
  EXPECT_EQ(mesh.corners, (std::vector<int>{0, 1, 4, 3, 1, 2, 5, 4}));
  EXPECT_EQ(mesh.points[5], (Point3{2, 1, 0}));
  EXPECT_TRUE(mesh.normals.empty() && mesh.maps.empty() && mesh.materials.empty());
  EXPECT_TRUE(report.log.empty()) << Log();
}

// Each way of laying values over a mesh, read at the eight corners.
TEST_F(ImportMeshes, LayersByEveryMapping) {
  struct Row {
    Mapping mapping;
    std::vector<Vector2> values;
    std::vector<int> indices;
    std::vector<float> expected;  // u at each corner; empty when the layer is left out
  };
  const Row kRows[] = {
      {Mapping::ByControlPoint, {{0, 0}, {1, 0}, {2, 0}, {3, 0}, {4, 0}, {5, 0}}, {}, {0, 1, 4, 3, 1, 2, 5, 4}},
      {Mapping::ByPolygonVertex, {{7, 0}, {8, 0}}, {0, 1, 0, 1, 1, 1, 0, 0}, {7, 8, 7, 8, 8, 8, 7, 7}},
      {Mapping::ByPolygon, {{1, 0}, {2, 0}}, {}, {1, 1, 1, 1, 2, 2, 2, 2}},
      {Mapping::AllSame, {{3, 0}}, {}, {3, 3, 3, 3, 3, 3, 3, 3}},
      {Mapping::ByPolygonVertex, {{7, 0}}, {0, 0, 0, -1, 0, 0, 0, 0}, {}},
      {Mapping::ByPolygonVertex, {{7, 0}}, {0, 0, 0, 9, 0, 0, 0, 0}, {}},
      {Mapping::ByEdge, {{7, 0}}, {}, {}},
  };
  for (const Row& row : kRows) {
    ReplaceScene(std::make_unique<Scene>());
    mesh_->uvs = {{"first", Mapping::AllSame, {{0, 1}}, {}}, {"second", row.mapping, row.values, row.indices}};
    const Mesh& mesh = Imported();
    ASSERT_EQ(mesh.maps.size(), row.expected.empty() ? 1u : 2u);
    EXPECT_EQ(IsLogged(L"do not cover"), row.expected.empty());
    for (size_t c = 0; c < row.expected.size(); ++c)
      EXPECT_EQ(mesh.maps[1].values[static_cast<size_t>(mesh.maps[1].corners[c])].x, row.expected[c]);
    EXPECT_EQ(mesh.maps[0].name, L"first");
    EXPECT_EQ(mesh.maps[0].channel, 1);
    EXPECT_EQ(mesh.maps.back().channel, static_cast<int>(mesh.maps.size()));
  }
}

TEST_F(ImportMeshes, NormalsAndMaterialIds) {
  mesh_->normals = {"", Mapping::ByPolygon, {{0, 0, 2}, {0, 3, 0}}, {}};
  mesh_->materials = {"", Mapping::ByPolygon, {1, -4}, {}};
  const Mesh& mesh = Imported();
  EXPECT_EQ(mesh.normals, (std::vector<Point3>{{0, 0, 1}, {0, 1, 0}}));
  EXPECT_EQ(mesh.normalCorners, (std::vector<int>{0, 0, 0, 0, 1, 1, 1, 1}));
  EXPECT_EQ(mesh.materials, (std::vector<uint16_t>{1, 0}));

  // One without a direction leaves them to be computed.
  ReplaceScene(std::make_unique<Scene>());
  mesh_->normals = {"", Mapping::AllSame, {{0, 0, 0}}, {}};
  EXPECT_TRUE(Imported().normals.empty());
  EXPECT_TRUE(IsLogged(L"have no direction")) << Log();
}

TEST_F(ImportMeshes, SmoothingFromEachSource) {
  using Groups = LayerElement<int>;
  using Normals = LayerElement<Vector3>;
  struct Row {
    const char* name;
    Groups smoothing;
    Normals normals;
    std::vector<uint32_t> expected;
  };
  const std::vector<int> byQuad{0, 0, 0, 0, 1, 1, 1, 1};
  const Row kRows[] = {
      {"groups", {"", Mapping::ByPolygon, {5, 2}, {}}, {}, {5, 2}},
      // The second edge of the first quad, from point 1 to point 4.
      {"soft edge", {"", Mapping::ByEdge, {1}, {}}, {}, {1, 1}},
      {"hard edge", {"", Mapping::ByEdge, {0}, {}}, {}, {0, 0}},
      {"normals that agree", {}, {"", Mapping::ByPolygonVertex, {{0, 0, 1}, {0, 0, 1}}, byQuad}, {1, 1}},
      {"normals that differ", {}, {"", Mapping::ByPolygonVertex, {{0, 0, 1}, {0, 1, 0}}, byQuad}, {0, 0}},
      {"normals of points", {}, {"", Mapping::ByControlPoint, std::vector<Vector3>(6, {0, 0, 1}), {}}, {1, 1}},
  };
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.name);
    ReplaceScene(std::make_unique<Scene>());
    FbxMesh* mesh = AddQuads(*scene_, node_);
    if (row.smoothing.mapping == Mapping::ByEdge) mesh->edges = {1};
    mesh->smoothing = row.smoothing;
    mesh->normals = row.normals;
    EXPECT_EQ(Imported().smoothing, row.expected);
  }
}

// A strip of quads, soft but at some edges: neighbours share a group exactly where their edge is soft.
TEST(SmoothingGroups, SaySameAsEdges) {
  Dice dice(5);
  for (int round = 0; round < 50; ++round) {
    Mesh strip;
    std::unordered_set<uint64_t> soft;
    const int count = 2 + dice.Of(30);
    for (int i = 0; i <= count; ++i) {
      strip.points.push_back({static_cast<float>(i), 0, 0});
      strip.points.push_back({static_cast<float>(i), 1, 0});
      if (dice.Of(3)) soft.insert(fbx_import::EdgeKey(2 * i, 2 * i + 1));
    }
    for (int i = 0; i < count; ++i) strip.AddPolygon(std::vector<int>{2 * i, 2 * i + 2, 2 * i + 3, 2 * i + 1});
    const std::vector<uint32_t> groups = fbx_import::GroupsOfEdges(strip, soft);
    for (int i = 0; i + 1 < count; ++i) {
      const bool smooth = (groups[static_cast<size_t>(i)] & groups[static_cast<size_t>(i) + 1]) != 0;
      EXPECT_EQ(smooth, soft.contains(fbx_import::EdgeKey(2 * i + 2, 2 * i + 3))) << i;
    }
  }
}

TEST_F(ImportMeshes, GeometricTransformIsTheObjectOffset) {
  node_->transform.translation = {5, 0, 0};
  node_->transform.geometricTranslation = {1, 2, 3};
  node_->transform.geometricRotation = {30, 40, 50};
  node_->transform.geometricScaling = {1, 2, 3};
  AddNode(*scene_, "child", node_);
  const Affine expected = GeometricMatrix(node_->transform) * Translation({5, 0, 0});
  Imported();
  const Affine actual = ToAffine(GetScene().Nodes()[0]->GetObjectTM(0));
  for (int i = 0; i < 4; ++i) EXPECT_LT(Length(actual.row[i] - expected.row[i]), 1e-5) << i;  // single precision
  EXPECT_EQ(GetScene().Nodes()[1]->GetNodeTM(0).GetTrans(), (Point3{5, 0, 0}));
}

TEST_F(ImportMeshes, ModifiersStandInOrder) {
  FbxSkin* skin = FbxSkin::Create(*scene_, "skin");
  skin->clusters = {{"", node_, {0}, {1}, {}, {}}, {"", AddBone(*scene_, "bone"), {1, 1, 2}, {0.2, 0.3, 3}, {}, {}}};
  mesh_->skins = {skin};
  FbxBlendShape* shape = FbxBlendShape::Create(*scene_, "");
  shape->channels = {FbxBlendShapeChannel::Create(*scene_, "c")};
  mesh_->blendShapes = {shape};
  mesh_->smoothness = 2;
  mesh_->renderLevels = 2;
  Imported();
  const std::vector<Modifier*> modifiers = GetScene().Nodes()[0]->Modifiers();
  // A mesh that followed its own node would depend on itself.
  EXPECT_TRUE(IsLogged(L"follows the mesh itself are left out: mesh/mesh")) << Log();
  ASSERT_EQ(modifiers.size(), 3u);
  EXPECT_EQ(dynamic_cast<SubdivisionModifier&>(*modifiers[0]).GetLevels(), 2);
  const auto& made = dynamic_cast<SkinModifier&>(*modifiers[1]);
  ASSERT_EQ(made.NumBones(), 1);
  EXPECT_EQ(made.GetBone(0)->GetName(), L"bone");
  // What clusters give a point is made 1; the weights of a point that comes twice add up.
  for (const int point : {1, 2}) {
    ASSERT_EQ(made.GetWeights().Of(point).size(), 1u);
    EXPECT_EQ(made.GetWeights().Of(point)[0], (SkinWeight{0, 1}));
  }
  EXPECT_TRUE(made.GetWeights().Of(0).empty());
  EXPECT_TRUE(dynamic_cast<MorpherModifier*>(modifiers[2]));
}

TEST_F(ImportMeshes, MeshesDoNotFollowEachOtherInCircles) {
  FbxNode* other = AddNode(*scene_, "other");
  FbxMesh* otherMesh = AddQuads(*scene_, other);
  const auto follow = [&](FbxMesh* mesh, FbxNode* bone) {
    mesh->skins = {FbxSkin::Create(*scene_, "")};
    mesh->skins[0]->clusters = {{"", bone, {0}, {1}, {}, {}}};
  };
  follow(mesh_, other);
  follow(otherMesh, node_);
  Imported();
  EXPECT_EQ(GetScene().Nodes()[0]->Modifiers().size(), 1u);
  EXPECT_TRUE(GetScene().Nodes()[1]->Modifiers().empty());
  EXPECT_TRUE(IsLogged(L"follows the mesh itself are left out: other/mesh")) << Log();
}

// In-between shapes keep their share of the way when the last does not stand at 100.
TEST_F(ImportMeshes, BlendShapesOnTheWay) {
  FbxBlendShape* shape = FbxBlendShape::Create(*scene_, "");
  FbxBlendShapeChannel* channel = FbxBlendShapeChannel::Create(*scene_, "smile");
  channel->fullWeights = {20, 80};
  channel->shapes = {{"a", {3, 1}, {{0, 0, 1}, {0, 0, 2}}, {}}, {"b", {1}, {{0, 0, 6}}, {}}};
  channel->deformPercent = 50;
  shape->channels = {channel};
  mesh_->blendShapes = {shape};
  Imported();
  INode* node = GetScene().Nodes()[0].Get();
  const auto& made = *static_cast<MorpherModifier*>(node->Modifiers()[0])->GetChannel(0);
  EXPECT_EQ(made.GetName(), L"smile");
  ASSERT_EQ(made.Targets().size(), 2u);
  EXPECT_EQ(made.Targets()[0], (MorphTarget{25, {1, 3}, {{0, 0, 2}, {0, 0, 1}}}));
  EXPECT_EQ(made.Targets()[1], (MorphTarget{100, {1}, {{0, 0, 6}}}));
  // 50 is half-way between 20 and 80.
  EXPECT_EQ(EvaluatedMesh(node, 0)->points[1], (Point3{1, 0, 4}));
  EXPECT_EQ(EvaluatedMesh(node, 0)->points[3], (Point3{0, 1, 0.5f}));
}

TEST_F(ImportMeshes, MaterialsAndPictures) {
  const std::filesystem::path folder = std::filesystem::path(testing::TempDir()) / "import_pictures";
  std::filesystem::create_directories(folder / "textures");
  std::ofstream(folder / "textures" / "skin.png") << "x";
  FbxSurfaceMaterial* one = FbxSurfaceMaterial::Create(*scene_, "one");
  one->diffuse = {1, 0.5, 2};
  one->diffuseFactor = 0.5;
  one->transparencyFactor = 0.25;
  one->emissive = {0, 1, 0};
  one->shininess = 48;
  FbxTexture* picture = FbxTexture::Create(*scene_, "picture");
  picture->fileName = "C:\\work\\skin.png";
  picture->relativeFileName = "textures\\skin.png";
  picture->uvSet = "second";
  FbxTexture* lost = FbxTexture::Create(*scene_, "lost");
  lost->fileName = "/nowhere/lost.png";
  one->textures = {{"DiffuseColor", picture}, {"NormalMap", lost}, {"ReflectionColor", picture}};
  mesh_->uvs = {{"first", Mapping::AllSame, {{0, 0}}, {}}, {"second", Mapping::AllSame, {{0, 0}}, {}}};
  node_->materials = {one, FbxSurfaceMaterial::Create(*scene_, "two")};
  FbxNode* other = AddNode(*scene_, "other");
  other->SetNodeAttribute(mesh_);
  other->materials = {one};
  ASSERT_TRUE(ImportFbxScene(*scene_, FromUtf8((folder / "test.fbx").string()), {}, report)) << Log();
  std::filesystem::remove_all(folder);

  auto* list = dynamic_cast<MultiMaterial*>(GetScene().Nodes()[0]->GetMtl());
  ASSERT_TRUE(list);
  ASSERT_EQ(list->NumSubMtls(), 2);
  EXPECT_EQ(list->GetSubMtl(1)->GetName(), L"two");
  EXPECT_EQ(GetScene().Nodes()[1]->GetMtl(), list->GetSubMtl(0));
  // One mesh in the file is one object on two nodes.
  EXPECT_EQ(GetScene().Nodes()[0]->GetBaseObject(), GetScene().Nodes()[1]->GetBaseObject());
  using P = PhysicalMaterial;
  const ParamBlock2& block = *list->GetSubMtl(0)->GetParamBlock();
  EXPECT_EQ(block.GetColour(P::kBaseColor), (Colour{0.5f, 0.25f, 1}));
  EXPECT_FLOAT_EQ(block.GetFloat(P::kRoughness), 0.2f);  // sqrt(2 / 50)
  EXPECT_EQ(block.GetFloat(P::kTransparency), 0.25f);
  EXPECT_EQ(block.GetFloat(P::kEmission), 1);
  EXPECT_EQ(block.GetColour(P::kEmitColor), (Colour{0, 1, 0}));
  const auto* map = dynamic_cast<BitmapMap*>(block.GetReferenceTarget(P::kBaseColorMap));
  ASSERT_TRUE(map);
  EXPECT_EQ(ToUtf8(map->GetParamBlock()->GetStr(BitmapMap::kFileName)), (folder / "textures" / "skin.png").string());
  EXPECT_EQ(map->GetParamBlock()->GetInt(BitmapMap::kMapChannel), 2);
  const auto* bump = dynamic_cast<BitmapMap*>(block.GetReferenceTarget(P::kBumpMap));
  ASSERT_TRUE(bump);
  EXPECT_EQ(bump->GetParamBlock()->GetStr(BitmapMap::kFileName), L"/nowhere/lost.png");
  EXPECT_TRUE(IsLogged(L"Pictures of textures were not found: /nowhere/lost.png")) << Log();
  EXPECT_TRUE(IsLogged(L"left out: ReflectionColor")) << Log();
}

}  // namespace
}  // namespace tavrilon::import_test
