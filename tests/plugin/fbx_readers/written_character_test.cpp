// SPDX-License-Identifier: MIT
// What we write, as a library reads it that is not ours. It keeps numbers as floats, so lengths of some 100 units agree
// to a few 1e-5, and products of five matrices to 1e-3 in all of these.
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>

#include "plugin/fbx_readers/assimp_scene.h"
#include "plugin/fbx_readers/character_scene.h"

namespace tavrilon::fbx {
namespace {

constexpr double kFloat = 1e-4;
constexpr double kChain = 1e-3;

void ExpectNear(const Affine& found, const Affine& wanted, double tolerance) {
  for (size_t row = 0; row < 4; ++row) {
    for (size_t i = 0; i < 3; ++i) EXPECT_NEAR(found.row[row][i], wanted.row[row][i], tolerance) << row << ' ' << i;
  }
}

class WrittenCharacter : public testing::TestWithParam<int> {
 protected:
  void SetUp() override {
    ASSERT_TRUE(file.Read(made.Written(GetParam()))) << file.error;
    // Corners of the file's parts in the order of the mesh's polygons, part by part.
    for (size_t part = 0; part < file.meshes.size(); ++part) {
      const int material = file.meshes[part].material == "Cloth";
      for (int polygon = 0; polygon < made.mesh->NumPolygons(); ++polygon) {
        if (made.mesh->materials.values[static_cast<size_t>(polygon)] != material) continue;
        const auto first = static_cast<size_t>(made.mesh->polygonStarts[static_cast<size_t>(polygon)]);
        for (size_t corner = first; corner < first + 4; ++corner) corners[part].push_back(corner);
      }
    }
  }
  size_t PointOf(size_t corner) const { return static_cast<size_t>(made.mesh->polygonVertices[corner]); }

  CharacterScene made;
  AssimpFile file;
  std::map<size_t, std::vector<size_t>> corners;
};

TEST_P(WrittenCharacter, HierarchyAndRest) {
  SceneEvaluator rest(*made.scene, nullptr);
  for (const FbxNode* node : made.scene->Nodes()) {
    SCOPED_TRACE(node->GetName());
    const int found = file.Find(node->GetName());
    ASSERT_GE(found, 0);
    const int parent = file.nodes[static_cast<size_t>(found)].parent;
    if (node->GetParent() != made.scene->GetRootNode()) {
      EXPECT_EQ(file.nodes[static_cast<size_t>(parent)].name, node->GetParent()->GetName());
    } else {
      EXPECT_EQ(parent, 0);
    }
    ExpectNear(file.nodes[static_cast<size_t>(found)].local, LocalMatrix(node->transform), kFloat);
  }
}

TEST_P(WrittenCharacter, BonesMoveAsTheyShould) {
  ASSERT_EQ(file.animations, std::vector<std::string>{"Walk"});
  SceneEvaluator evaluator(*made.scene, made.stack);
  for (int frame = 0; frame <= CharacterScene::kFrames; ++frame) {
    SCOPED_TRACE(frame);
    for (const FbxNode* bone : made.bones) {
      SCOPED_TRACE(bone->GetName());
      ExpectNear(file.World(file.Find(bone->GetName()), frame / CharacterScene::kRate),
                 evaluator.World(bone, CharacterScene::FrameTime(10 + frame)), kChain);
    }
    EXPECT_NEAR(file.MorphWeight(0, frame / CharacterScene::kRate),
                evaluator.DeformPercent(made.smile, CharacterScene::FrameTime(10 + frame)) / 100, kFloat);
  }
}

TEST_P(WrittenCharacter, MeshWithItsLayers) {
  ASSERT_EQ(file.meshes.size(), 2u);
  EXPECT_EQ(file.nodes[static_cast<size_t>(file.Find("Body"))].meshes.size(), 2u);
  for (size_t part = 0; part < 2; ++part) {
    const AssimpMesh& read = file.meshes[part];
    ASSERT_EQ(read.points.size(), corners[part].size());
    ASSERT_EQ(read.normals.size(), corners[part].size());
    ASSERT_EQ(read.uvs.size(), 2u);
    for (const int size : read.polygonSizes) EXPECT_EQ(size, 4);
    for (size_t i = 0; i < read.points.size(); ++i) {
      const size_t corner = corners[part][i];
      EXPECT_LT(Length(read.points[i] - made.mesh->controlPoints[PointOf(corner)]), kFloat);
      EXPECT_LT(Length(read.normals[i] - made.mesh->normals.values[corner]), kFloat);
      for (size_t set = 0; set < 2; ++set) {
        EXPECT_NEAR(read.uvs[set][i].x, made.mesh->uvs[set].values[corner].x, kFloat);
        EXPECT_NEAR(read.uvs[set][i].y, made.mesh->uvs[set].values[corner].y, kFloat);
      }
    }
  }
}

TEST_P(WrittenCharacter, WeightsAndBinds) {
  for (size_t part = 0; part < file.meshes.size(); ++part) {
    const AssimpMesh& read = file.meshes[part];
    for (const FbxCluster& cluster : made.mesh->skins[0]->clusters) {
      SCOPED_TRACE(cluster.link->GetName());
      std::map<size_t, double> wanted;
      for (size_t i = 0; i < cluster.indices.size(); ++i) {
        wanted[static_cast<size_t>(cluster.indices[i])] = cluster.weights[i];
      }
      const auto weights = read.weights.find(cluster.link->GetName());
      for (size_t i = 0; i < corners[part].size(); ++i) {
        double found = 0;
        if (weights != read.weights.end()) {
          const auto weight = weights->second.find(static_cast<int>(i));
          if (weight != weights->second.end()) found = weight->second;
        }
        const auto want = wanted.find(PointOf(corners[part][i]));
        EXPECT_NEAR(found, want == wanted.end() ? 0 : want->second, kFloat);
      }
      const auto offset = read.offsets.find(cluster.link->GetName());
      if (offset != read.offsets.end()) ExpectNear(offset->second, cluster.transform, kChain);
    }
  }
}

TEST_P(WrittenCharacter, ShapesAndMaterials) {
  const FbxShape& shape = made.smile->shapes[0];
  for (size_t part = 0; part < file.meshes.size(); ++part) {
    ASSERT_EQ(file.meshes[part].shapes.count("Smile"), 1u);
    const std::vector<Vector3>& points = file.meshes[part].shapes.at("Smile");
    for (size_t i = 0; i < corners[part].size(); ++i) {
      const size_t point = PointOf(corners[part][i]);
      Vector3 wanted = made.mesh->controlPoints[point];
      for (size_t k = 0; k < shape.indices.size(); ++k) {
        if (static_cast<size_t>(shape.indices[k]) == point) wanted = wanted + shape.offsets[k];
      }
      EXPECT_LT(Length(points[i] - wanted), kFloat) << point;
    }
  }
  ASSERT_EQ(file.materials.size(), 2u);
  for (const AssimpMaterial& read : file.materials) {
    const FbxSurfaceMaterial* wanted = made.body->materials[read.name == "Cloth"];
    EXPECT_EQ(read.name, wanted->GetName());
    EXPECT_LT(Length(read.diffuse - wanted->diffuse), kFloat);
    EXPECT_EQ(read.diffuseTexture, wanted->textures.empty() ? "" : "textures/weave.png");
  }
}

INSTANTIATE_TEST_SUITE_P(Formats, WrittenCharacter, testing::Values(0, 1));

}  // namespace
}  // namespace tavrilon::fbx
