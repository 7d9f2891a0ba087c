// SPDX-License-Identifier: MIT
// A skinned character with a blend shape, made by calls, as a library reads it that is not ours: as the format library
// writes it, and through the host and out again. Bones and points in the world on every frame against the closed form,
// and what lies over them.
#include <gtest/gtest.h>

#include "plugin/fbx/closed_form_test.h"
#include "plugin/fbx_readers/assimp_scene.h"
#include "plugin/fbx_readers/character_scene.h"
#include "plugin/fbx_readers/host_trip.h"

namespace tavrilon::fbx {
namespace {

constexpr int kFirst = 10;
// The reader keeps numbers as floats: lengths of some 100 units agree to a few 1e-5, and products of five matrices to
// 1e-3 in all of these.
constexpr double kFloat = 1e-4;
constexpr double kChain = 1e-3;

struct CharacterRow {
  const char* name;
  FbxAxisSystem axes = FbxAxisSystem::YUp();
  double centimetres = 1;
  HostStage stage{1, corvanta::UpAxis::Y};
  bool hasGeometric = true, isThroughHost = true;
  int format = 0;
};
const CharacterRow kRows[] = {
    {"written as 7400", FbxAxisSystem::YUp(), 1, {1, corvanta::UpAxis::Y}, false, false, 0},
    {"written as 7500", FbxAxisSystem::YUp(), 1, {1, corvanta::UpAxis::Y}, false, false, 1},
    {"no geometric transform", FbxAxisSystem::YUp(), 1, {1, corvanta::UpAxis::Y}, false},
    {"geometric transform"},
    {"Z up", FbxAxisSystem::ZUp(), 1, {}},
    {"Y up to Z up", FbxAxisSystem::YUp(), 1, {}},
    {"inches", FbxAxisSystem::YUp(), 2.54, {}},
    {"metres to metres", FbxAxisSystem::YUp(), 100, {100, corvanta::UpAxis::Z}},
    {"left-handed", {1, 1, 2, -1, 0, 1}},
};

class Character : public testing::TestWithParam<CharacterRow> {
 protected:
  void SetUp() override {
    const CharacterRow& row = GetParam();
    if (row.hasGeometric) {
      made_.body->transform.geometricTranslation = {1, -2, 3};
      made_.body->transform.geometricRotation = {20, -30, 40};
      made_.body->transform.geometricScaling = {1.1, 0.9, 1.2};
    }
    FbxSystemUnit{row.centimetres, 1}.ConvertScene(*made_.scene);
    made_.scene->GetGlobalSettings().SetAxisSystem(row.axes);
    change_ = WorldChange(*made_.scene, AxesOf(row.stage), row.stage.centimetres);
    std::vector<uint8_t> bytes = WrittenBytes(*made_.scene, row.format);
    if (row.isThroughHost) {
      HostTrip trip(row.stage);
      ASSERT_TRUE(trip.Run(bytes));
      bytes = trip.bytes;
    }
    ASSERT_TRUE(file_.Read(bytes)) << file_.error;
    ASSERT_EQ(file_.meshes.size(), 2u) << "one for each material";
    for (const AssimpMesh& part : file_.meshes) {
      corners_.push_back(CornersOf(part.material));
      ASSERT_EQ(part.points.size(), corners_.back().size()) << part.material;
    }
  }

  /// Corners of the polygons of one material, in their order.
  std::vector<size_t> CornersOf(const std::string& material) const {
    std::vector<size_t> corners;
    for (size_t p = 0; p + 1 < made_.mesh->polygonStarts.size(); ++p) {
      if (made_.body->materials[static_cast<size_t>(*made_.mesh->materials.At(p))]->GetName() != material) continue;
      for (int c = made_.mesh->polygonStarts[p]; c < made_.mesh->polygonStarts[p + 1]; ++c)
        corners.push_back(static_cast<size_t>(c));
    }
    return corners;
  }
  size_t PointOf(size_t corner) const { return static_cast<size_t>(made_.mesh->polygonVertices[corner]); }

  /// Points of a part of the file by corner: shape, then skin.
  std::vector<Vector3> DeformedPart(const AssimpMesh& part, double seconds) const {
    std::vector<Vector3> shaped = part.points, points(shaped.size());
    const double share = file_.MorphWeight(0, seconds);
    for (size_t c = 0; c < shaped.size(); ++c) shaped[c] = shaped[c] + (part.shapes.at("Smile")[c] - shaped[c]) * share;
    for (const auto& [bone, weights] : part.weights) {
      const Affine skin = part.offsets.at(bone) * file_.World(file_.Find(bone), seconds);
      for (const auto& [corner, weight] : weights) {
        const auto c = static_cast<size_t>(corner);
        points[c] = points[c] + shaped[c] * skin * weight;
      }
    }
    return points;
  }

  CharacterScene made_;
  AssimpFile file_;
  WorldChange change_;
  std::vector<std::vector<size_t>> corners_;
};

TEST_P(Character, BonesAndPointsInTheWorldOnEveryFrame) {
  const CharacterRow& row = GetParam();
  ASSERT_EQ(file_.animations, std::vector<std::string>{row.isThroughHost ? "Animation" : "Walk"});
  for (const AssimpMesh& part : file_.meshes) ASSERT_EQ(part.shapes.count("Smile"), 1u);
  SceneEvaluator evaluator(*made_.scene, made_.stack);
  Deviation bones;
  double furthest = 0;
  for (int frame = 0; frame <= CharacterScene::kFrames; ++frame) {
    const FbxTime time = CharacterScene::FrameTime(kFirst + frame);
    const double seconds = frame / CharacterScene::kRate;
    for (const FbxNode* bone : made_.bones)
      bones.Add(file_.World(file_.Find(bone->GetName()), seconds), change_(evaluator.World(bone, time)));
    EXPECT_NEAR(file_.MorphWeight(0, seconds), evaluator.DeformPercent(made_.smile, time) / 100, kFloat) << frame;
    const std::vector<Vector3> points = PointsInTheWorld(evaluator, *made_.body, time);
    for (size_t p = 0; p < file_.meshes.size(); ++p) {
      const std::vector<Vector3> found = DeformedPart(file_.meshes[p], seconds);
      for (size_t c = 0; c < found.size(); ++c)
        KeepWorst(furthest, Length(found[c] - change_(points[PointOf(corners_[p][c])])));
    }
  }
  const double place = row.isThroughHost ? kFigureBounds.place : kChain;
  EXPECT_LT(furthest * row.stage.centimetres, place);
  bones.place *= row.stage.centimetres;
  ExpectClose(bones, {place, kFigureBounds.degrees, kFigureBounds.scale});
}

TEST_P(Character, HierarchyAndWhatLiesOverThePoints) {
  const bool isAsWritten = !GetParam().isThroughHost;
  SceneEvaluator rest(*made_.scene, nullptr);
  for (const FbxNode* node : made_.scene->Nodes()) {
    const int found = file_.Find(node->GetName());
    ASSERT_GE(found, 0) << node->GetName();
    const AssimpNode& read = file_.nodes[static_cast<size_t>(found)];
    const bool isTop = node->GetParent() == made_.scene->GetRootNode();
    EXPECT_EQ(read.parent, isTop ? 0 : file_.Find(node->GetParent()->GetName())) << node->GetName();
    const Affine wanted = LocalMatrix(node->transform);
    for (int i = 0; isAsWritten && i < 4; ++i) EXPECT_LT(Length(read.local.row[i] - wanted.row[i]), kFloat);
  }
  EXPECT_EQ(file_.nodes[static_cast<size_t>(file_.Find("Body"))].meshes.size(), 2u);
  for (size_t p = 0; p < file_.meshes.size(); ++p) {
    const AssimpMesh& part = file_.meshes[p];
    ASSERT_EQ(part.uvs.size(), made_.mesh->uvs.size());
    ASSERT_EQ(part.normals.size(), part.points.size());
    EXPECT_EQ(part.polygonSizes, std::vector<int>(part.points.size() / 4, 4));
    for (size_t c = 0; c < part.points.size(); ++c) {
      const size_t corner = corners_[p][c];
      for (size_t set = 0; set < part.uvs.size(); ++set) {
        const Vector2& uv = made_.mesh->uvs[set].values[corner];
        EXPECT_NEAR(part.uvs[set][c].x, uv.x, kFloat);
        EXPECT_NEAR(part.uvs[set][c].y, uv.y, kFloat);
      }
      if (!isAsWritten) continue;  // they stand on other axes, or with the geometric transform in them
      EXPECT_LT(Length(part.points[c] - made_.mesh->controlPoints[PointOf(corner)]), kFloat);
      EXPECT_LT(Length(part.normals[c] - made_.mesh->normals.values[corner]), kFloat);
    }
    for (const FbxCluster& cluster : made_.mesh->skins[0]->clusters) {
      std::map<size_t, double> wanted;
      for (size_t i = 0; i < cluster.indices.size(); ++i)
        wanted[static_cast<size_t>(cluster.indices[i])] = cluster.weights[i];
      const auto bone = part.weights.find(cluster.link->GetName());
      for (size_t c = 0; c < part.points.size(); ++c) {
        double found = 0;
        if (bone != part.weights.end() && bone->second.count(static_cast<int>(c)))
          found = bone->second.at(static_cast<int>(c));
        EXPECT_NEAR(found, wanted[PointOf(corners_[p][c])], kFloat) << cluster.link->GetName();
      }
    }
  }
  ASSERT_EQ(file_.materials.size(), 2u);
  for (const AssimpMaterial& read : file_.materials) {
    const FbxSurfaceMaterial* wanted = made_.body->materials[read.name == "Cloth"];
    EXPECT_EQ(read.name, wanted->GetName());
    EXPECT_LT(Length(read.diffuse - wanted->diffuse), kFloat) << read.name;
    const std::string picture = isAsWritten ? "textures/weave.png" : read.diffuseTexture;
    EXPECT_EQ(read.diffuseTexture, wanted->textures.empty() ? "" : picture) << read.name;
    EXPECT_EQ(read.diffuseTexture.empty(), wanted->textures.empty()) << read.name;
  }
}

INSTANTIATE_TEST_SUITE_P(Rows, Character, testing::ValuesIn(kRows), [](const auto& info) {
  std::string name = info.param.name;
  std::replace_if(
      name.begin(), name.end(), [](char c) { return !std::isalnum(c); }, '_');
  return name;
});

}  // namespace
}  // namespace tavrilon::fbx
