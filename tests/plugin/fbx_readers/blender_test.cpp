// SPDX-License-Identifier: MIT
// What we write, and what went through the host, as Blender's importer takes it (tests/tools/blender_check tells how).
// Skipped where there is no Blender.
#include <gtest/gtest.h>

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <cstdlib>
#include <fstream>

#include "host/io/temp_folder_test.h"
#include "plugin/fbx/closed_form_test.h"
#include "plugin/fbx_readers/character_scene.h"
#include "plugin/fbx_readers/host_trip.h"

namespace tavrilon::fbx {
namespace {

struct BlenderRow {
  bool isThroughHost;
  const char* uvSets[2];
  /// Bounds of places, of axes, of texture coordinates and weights.
  double length, axis, layer;
};
const BlenderRow kRows[] = {
    // Blender keeps matrices and poses as floats: a bone some 200 units out, behind five of them, is right to a
    // thousandth; axes of a bone whose length is written with its scale by the same count. Layers are floats below 10.
    {false, {"map1", "light"}, 2e-3, 2e-4, 1e-6},
    // A tenth of a millimetre for a figure of two metres, in centimetres; a hundredth of a degree.
    {true, {"UVChannel_1", "UVChannel_2"}, 0.01, 2e-4, 1e-4},
};

Affine ToAffine(const QJsonValue& value) {
  const QJsonArray numbers = value.toArray();
  Affine m;
  for (int row = 0; row < 4; ++row) {
    for (int i = 0; i < 3; ++i) m.row[row][static_cast<size_t>(i)] = numbers[row * 4 + i].toDouble();
  }
  return m;
}
Vector3 ToVector(const QJsonValue& value) {
  const QJsonArray v = value.toArray();
  return {v[0].toDouble(), v[1].toDouble(), v[2].toDouble()};
}

/// Imports a character in Blender, frames 10 to 34 as it has them.
QJsonObject Imported(const std::vector<uint8_t>& bytes) {
  const corvanta::TempFolder folder;
  const std::string file = folder.Path() / "character.fbx", result = folder.Path() / "blender.json";
  std::ofstream(file, std::ios::binary)
      .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
  const std::string command = TAVRILON_SOURCE_DIR "/tests/tools/blender_check " + file + " 10 34 >" + result;
  EXPECT_EQ(std::system(command.c_str()), 0);
  const std::vector<uint8_t> text = FileBytes(result);
  return QJsonDocument::fromJson(QByteArray::fromStdString({text.begin(), text.end()})).object();
}

class BlenderImport : public testing::TestWithParam<BlenderRow> {};

TEST_P(BlenderImport, TakesTheCharacterAsItIs) {
  if (std::system("command -v blender >/dev/null") != 0) GTEST_SKIP() << "no blender here";
  const BlenderRow& row = GetParam();
  const CharacterScene made;
  std::vector<uint8_t> bytes = WrittenBytes(*made.scene);
  HostTrip trip({1, corvanta::UpAxis::Y});
  if (row.isThroughHost) {
    ASSERT_TRUE(trip.Run(bytes));
    bytes = trip.bytes;
  }
  const QJsonObject read = Imported(bytes);
  ASSERT_FALSE(read.isEmpty());
  EXPECT_EQ(read["frames_a_second"].toDouble(), CharacterScene::kRate);

  const QJsonObject nodes = read["nodes"].toObject();
  for (const FbxNode* bone : made.bones) {
    const QJsonObject node = nodes[QString::fromStdString(bone->GetName())].toObject();
    EXPECT_EQ(node["kind"].toString(), "BONE") << bone->GetName();
    const bool isTop = bone->GetParent() == made.scene->GetRootNode();
    EXPECT_EQ(node["parent"].toString().toStdString(), isTop ? "Armature" : bone->GetParent()->GetName());
  }

  const QJsonObject mesh = read["meshes"].toObject()["Body"].toObject();
  EXPECT_EQ(static_cast<size_t>(mesh["points"].toArray().size()), made.mesh->controlPoints.size());
  EXPECT_EQ(mesh["polygons"].toArray().size(), made.mesh->NumPolygons());
  EXPECT_EQ(mesh["materials"].toArray(), QJsonArray({"Skin", "Cloth"}));
  EXPECT_EQ(mesh["shapes"].toArray(), QJsonArray({"Smile"}));
  for (size_t set = 0; set < 2; ++set) {
    const LayerElement<Vector2>& uv = made.mesh->uvs[set];
    const QJsonArray corners = mesh["uvs"].toObject()[row.uvSets[set]].toArray();
    ASSERT_EQ(static_cast<size_t>(corners.size()), uv.values.size()) << uv.name;
    for (int i = 0; i < corners.size(); ++i) {
      EXPECT_NEAR(corners[i].toArray()[0].toDouble(), uv.values[static_cast<size_t>(i)].x, row.layer);
      EXPECT_NEAR(corners[i].toArray()[1].toDouble(), uv.values[static_cast<size_t>(i)].y, row.layer);
    }
  }
  for (const FbxCluster& cluster : made.mesh->skins[0]->clusters) {
    const QJsonObject weights = mesh["weights"].toObject()[QString::fromStdString(cluster.name)].toObject();
    ASSERT_EQ(static_cast<size_t>(weights.size()), cluster.indices.size()) << cluster.name;
    for (size_t i = 0; i < cluster.indices.size(); ++i) {
      EXPECT_NEAR(weights[QString::number(cluster.indices[i])].toDouble(), cluster.weights[i], row.layer);
    }
  }

  SceneEvaluator evaluator(*made.scene, made.stack);
  const QJsonArray frames = read["frames"].toArray();
  ASSERT_EQ(frames.size(), CharacterScene::kFrames + 1);
  for (const QJsonValue& value : frames) {
    const QJsonObject frame = value.toObject();
    SCOPED_TRACE(frame["frame"].toInt());
    const FbxTime time = CharacterScene::FrameTime(frame["frame"].toInt());
    for (const FbxNode* bone : made.bones) {
      const Affine found = ToAffine(frame["world"].toObject()[QString::fromStdString(bone->GetName())]);
      const Affine wanted = evaluator.World(bone, time);
      for (size_t i = 0; i < 3; ++i) EXPECT_LT(Length(found.row[i] - wanted.row[i]), row.axis) << bone->GetName();
      EXPECT_LT(Length(found.row[3] - wanted.row[3]), row.length) << bone->GetName();
    }
    const std::vector<Vector3> points = PointsInTheWorld(evaluator, *made.body, time);
    const QJsonArray deformed = frame["deformed"].toObject()["Body"].toArray();
    for (size_t i = 0; i < points.size(); ++i) {
      EXPECT_LT(Length(ToVector(deformed[static_cast<int>(i)]) - points[i]), row.length) << i;
    }
  }
}

INSTANTIATE_TEST_SUITE_P(Rows, BlenderImport, testing::ValuesIn(kRows),
                         [](const auto& info) { return info.param.isThroughHost ? "ThroughTheHost" : "AsWritten"; });

}  // namespace
}  // namespace tavrilon::fbx
