// SPDX-License-Identifier: MIT
// A skinned character with a blend shape, made by calls, through the host and out again: its points in the world on
// every frame against the closed form, and what lies over them.
#include <gtest/gtest.h>

#include "plugin/fbx_readers/assimp_scene.h"
#include "plugin/fbx_readers/character_scene.h"
#include "plugin/fbx_readers/host_trip.h"

namespace tavrilon::fbx {
namespace {

constexpr int kFirst = 10, kLast = kFirst + CharacterScene::kFrames;
// A tenth of a millimetre for a figure of two metres, in centimetres.
constexpr double kPlace = 0.01;

struct CharacterRow {
  const char* name;
  FbxAxisSystem axes;
  double centimetres;
  HostStage stage;
  bool hasGeometric;
};
const CharacterRow kRows[] = {
    {"as it is", FbxAxisSystem::YUp(), 1, {1, corvanta::UpAxis::Y}, false},
    {"geometric transform", FbxAxisSystem::YUp(), 1, {1, corvanta::UpAxis::Y}, true},
    {"Z up", FbxAxisSystem::ZUp(), 1, {}, true},
    {"Y up to Z up", FbxAxisSystem::YUp(), 1, {}, true},
    {"inches", FbxAxisSystem::YUp(), 2.54, {}, true},
    {"metres to metres", FbxAxisSystem::YUp(), 100, {100, corvanta::UpAxis::Z}, true},
    {"left-handed", {1, 1, 2, -1, 0, 1}, 1, {1, corvanta::UpAxis::Y}, true},
};

class CharacterTrip : public testing::TestWithParam<CharacterRow> {
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
    turn_ =
        row.axes.ConversionTo(row.stage.upAxis == corvanta::UpAxis::Y ? FbxAxisSystem::YUp() : FbxAxisSystem::ZUp());
    unit_ = row.centimetres / row.stage.centimetres;
    HostTrip trip(row.stage);
    ASSERT_TRUE(trip.Run(WrittenBytes(*made_.scene)));
    ASSERT_TRUE(file_.Read(trip.bytes)) << file_.error;
    ASSERT_EQ(file_.meshes.size(), 2u) << "one for each material";
    for (const AssimpMesh& part : file_.meshes) {
      corners_.push_back(CornersOf(part.material));
      ASSERT_EQ(part.points.size(), corners_.back().size()) << part.material;
    }
  }

  /// Corners of the polygons of one material, in their order.
  std::vector<size_t> CornersOf(const std::string& material) const {
    std::vector<size_t> corners;
    for (int p = 0; p < made_.mesh->NumPolygons(); ++p) {
      const int id = *made_.mesh->materials.At(static_cast<size_t>(p));
      if (made_.body->materials[static_cast<size_t>(id)]->GetName() != material) continue;
      for (int c = made_.mesh->polygonStarts[static_cast<size_t>(p)];
           c < made_.mesh->polygonStarts[static_cast<size_t>(p) + 1]; ++c)
        corners.push_back(static_cast<size_t>(c));
    }
    return corners;
  }
  size_t PointOf(size_t corner) const { return static_cast<size_t>(made_.mesh->polygonVertices[corner]); }

  /// Shape, geometric transform, skin; in the world of the file that came out.
  std::vector<Vector3> Deformed(SceneEvaluator& evaluator, FbxTime time) const {
    std::vector<Vector3> shaped = made_.mesh->controlPoints, points(shaped.size());
    const FbxShape& shape = made_.smile->shapes[0];
    const double share = evaluator.DeformPercent(made_.smile, time) / 100;
    for (size_t i = 0; i < shape.indices.size(); ++i) {
      Vector3& point = shaped[static_cast<size_t>(shape.indices[i])];
      point = point + shape.offsets[i] * share;
    }
    const Affine geometric = GeometricMatrix(made_.body->transform);
    for (const FbxCluster& cluster : made_.mesh->skins[0]->clusters) {
      const Affine skin = geometric * cluster.transform * evaluator.World(cluster.link, time) * turn_;
      for (size_t i = 0; i < cluster.indices.size(); ++i) {
        const auto point = static_cast<size_t>(cluster.indices[i]);
        points[point] = points[point] + shaped[point] * skin * (cluster.weights[i] * unit_);
      }
    }
    return points;
  }

  /// The same of a part of the file, by corner.
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
  Affine turn_;
  double unit_ = 1;
  std::vector<std::vector<size_t>> corners_;
};

TEST_P(CharacterTrip, PointsInTheWorldOnEveryFrame) {
  for (const AssimpMesh& part : file_.meshes) ASSERT_EQ(part.shapes.count("Smile"), 1u);
  SceneEvaluator evaluator(*made_.scene, made_.stack);
  double furthest = 0;
  for (int frame = kFirst; frame <= kLast; ++frame) {
    const std::vector<Vector3> wanted = Deformed(evaluator, CharacterScene::FrameTime(frame));
    for (size_t p = 0; p < file_.meshes.size(); ++p) {
      const std::vector<Vector3> found = DeformedPart(file_.meshes[p], (frame - kFirst) / CharacterScene::kRate);
      for (size_t c = 0; c < found.size(); ++c)
        furthest = std::max(furthest, Length(found[c] - wanted[PointOf(corners_[p][c])]));
    }
  }
  furthest *= GetParam().stage.centimetres;
  RecordProperty("furthest_cm", std::to_string(furthest));
  EXPECT_LT(furthest, kPlace);
}

TEST_P(CharacterTrip, WhatLiesOverThePoints) {
  for (size_t p = 0; p < file_.meshes.size(); ++p) {
    const AssimpMesh& part = file_.meshes[p];
    ASSERT_EQ(part.uvs.size(), made_.mesh->uvs.size());
    for (size_t c = 0; c < part.points.size(); ++c) {
      for (size_t set = 0; set < part.uvs.size(); ++set) {
        const Vector2& uv = made_.mesh->uvs[set].values[corners_[p][c]];
        EXPECT_NEAR(part.uvs[set][c].x, uv.x, 1e-4);
        EXPECT_NEAR(part.uvs[set][c].y, uv.y, 1e-4);
      }
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
        EXPECT_NEAR(found, wanted[PointOf(corners_[p][c])], 1e-4) << cluster.link->GetName();
      }
    }
  }
  ASSERT_EQ(file_.materials.size(), 2u);
  for (const AssimpMaterial& read : file_.materials) {
    const FbxSurfaceMaterial* wanted = made_.body->materials[read.name == "Cloth"];
    EXPECT_EQ(read.name, wanted->GetName());
    EXPECT_LT(Length(read.diffuse - wanted->diffuse), 1e-4) << read.name;
    EXPECT_EQ(read.diffuseTexture.empty(), wanted->textures.empty()) << read.name;
  }
}

INSTANTIATE_TEST_SUITE_P(Rows, CharacterTrip, testing::ValuesIn(kRows), [](const auto& info) {
  std::string name = info.param.name;
  std::replace_if(
      name.begin(), name.end(), [](char c) { return !std::isalnum(c); }, '_');
  return name;
});

}  // namespace
}  // namespace tavrilon::fbx
