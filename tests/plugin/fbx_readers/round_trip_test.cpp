// SPDX-License-Identifier: MIT
// Files into the scene and out again, compared by a reader that is not ours: the file that came in against the file
// that went out.
#include <gtest/gtest.h>

#include <filesystem>

#include "plugin/fbx/closed_form_test.h"
#include "plugin/fbx_readers/assimp_scene.h"
#include "plugin/fbx_readers/host_trip.h"

namespace tavrilon::fbx {
namespace {

struct RoundTrip {
  const char* file;
  double seconds;  // how long the motion is looked at
  size_t numBones;
};
// The box is an ASCII file.
const RoundTrip kFiles[] = {{"examples/character_skinned.fbx", 0, 53},
                            {"examples/mixamo_walk.fbx", 1.0, 53},
                            {"tests/data/fbx/ascii_box.fbx", 0.334, 3}};

std::string ParentName(const AssimpFile& file, int node) {
  const int parent = file.nodes[static_cast<size_t>(node)].parent;
  return parent <= 0 ? "" : file.nodes[static_cast<size_t>(parent)].name;
}

// In and out again, standing as the file stood.
class ReadersRoundTrip : public testing::TestWithParam<RoundTrip> {
 protected:
  void SetUp() override {
    fileBefore_ = FileBytes(std::string(TAVRILON_SOURCE_DIR "/") + GetParam().file);
    HostTrip trip({1, corvanta::UpAxis::Y});
    ASSERT_TRUE(trip.Run(fileBefore_));
    fileAfter_ = trip.bytes;
    ASSERT_TRUE(before_.Read(fileBefore_)) << before_.error;
    ASSERT_TRUE(after_.Read(fileAfter_)) << after_.error;
  }
  std::vector<uint8_t> fileBefore_, fileAfter_;
  AssimpFile before_, after_;
};

TEST_P(ReadersRoundTrip, KeepsTheHierarchyOnEveryFrame) {
  EXPECT_EQ(before_.nodes.size(), after_.nodes.size());
  for (size_t i = 1; i < before_.nodes.size(); ++i) {
    const std::string& name = before_.nodes[i].name;
    SCOPED_TRACE(name);
    const int other = after_.Find(name);
    ASSERT_GE(other, 0) << "is lost";
    EXPECT_EQ(ParentName(before_, static_cast<int>(i)), ParentName(after_, other));
    // The points of a mesh carry what stood between them and their node, and are compared by themselves.
    if (!before_.nodes[i].meshes.empty()) continue;
    Deviation worst;
    for (double seconds = 0; seconds <= GetParam().seconds; seconds += 1.0 / 30)
      worst.Add(after_.World(other, seconds), before_.World(static_cast<int>(i), seconds));
    ExpectClose(worst);
  }
}

TEST_P(ReadersRoundTrip, KeepsMeshes) {
  ASSERT_EQ(before_.meshes.size(), after_.meshes.size());
  ASSERT_GT(before_.meshes.size(), 0u);
  for (size_t i = 0; i < before_.meshes.size(); ++i) {
    const AssimpMesh &a = before_.meshes[i], &b = after_.meshes[i];
    EXPECT_EQ(a.material, b.material);
    EXPECT_EQ(a.polygonSizes, b.polygonSizes);
    ASSERT_EQ(a.points.size(), b.points.size());
    ASSERT_EQ(a.uvs.size(), b.uvs.size());
    for (size_t set = 0; set < a.uvs.size(); ++set) {
      for (size_t corner = 0; corner < a.uvs[set].size(); ++corner) {
        // Floats below 2.
        ASSERT_NEAR(a.uvs[set][corner].x, b.uvs[set][corner].x, 1e-6);
        ASSERT_NEAR(a.uvs[set][corner].y, b.uvs[set][corner].y, 1e-6);
      }
    }
    ASSERT_EQ(a.shapes.size(), b.shapes.size());
    for (const auto& [name, points] : a.shapes) {
      ASSERT_TRUE(b.shapes.count(name)) << name;
      // Offsets below a millionth of a unit are left out, and both are floats of some 100 units.
      for (size_t c = 0; c < points.size(); ++c)
        ASSERT_LT(Length((points[c] - a.points[c]) - (b.shapes.at(name)[c] - b.points[c])), 1e-4) << name;
    }
  }
}

// Weights, and where points stand at bind: by the skin's matrices, in the world of the bones.
TEST_P(ReadersRoundTrip, KeepsSkins) {
  for (size_t i = 0; i < before_.meshes.size(); ++i) {
    const AssimpMesh &a = before_.meshes[i], &b = after_.meshes[i];
    for (const auto& [bone, weights] : a.weights) {
      ASSERT_TRUE(b.weights.count(bone) || weights.empty()) << bone;
      for (const auto& [corner, weight] : weights) {
        const auto& others = b.weights.at(bone);
        const auto found = others.find(corner);
        ASSERT_NEAR(weight, found == others.end() ? 0 : found->second, 1e-4) << bone << " at corner " << corner;
      }
      ASSERT_TRUE(b.offsets.count(bone)) << bone;
      for (size_t c = 0; c < a.points.size(); c += 97)
        ASSERT_LT(Length(a.points[c] * a.offsets.at(bone) - b.points[c] * b.offsets.at(bone)), kFigureBounds.place);
    }
  }
}

// Nodes of meshes may stand elsewhere as long as their points do not.
TEST_P(ReadersRoundTrip, KeepsPointsInTheWorld) {
  for (size_t n = 1; n < before_.nodes.size(); ++n) {
    const AssimpNode& a = before_.nodes[n];
    const int other = after_.Find(a.name);
    ASSERT_GE(other, 0) << a.name;
    const AssimpNode& b = after_.nodes[static_cast<size_t>(other)];
    ASSERT_EQ(a.meshes.size(), b.meshes.size()) << a.name;
    const Affine worldA = before_.World(static_cast<int>(n), 0), worldB = after_.World(other, 0);
    for (size_t part = 0; part < a.meshes.size(); ++part) {
      const std::vector<Vector3>& pointsA = before_.meshes[static_cast<size_t>(a.meshes[part])].points;
      const std::vector<Vector3>& pointsB = after_.meshes[static_cast<size_t>(b.meshes[part])].points;
      ASSERT_EQ(pointsA.size(), pointsB.size());
      for (size_t c = 0; c < pointsA.size(); ++c)
        ASSERT_LT(Length(pointsA[c] * worldA - pointsB[c] * worldB), kFigureBounds.place) << a.name << " corner " << c;
    }
  }
}

std::map<std::string, Affine> BindsOf(const std::vector<uint8_t>& bytes) {
  std::map<std::string, Affine> binds;
  const auto scene = ReadFbx(bytes, std::string("binds.fbx"));
  for (const FbxNode* node : scene->Nodes()) {
    const auto* mesh = dynamic_cast<const FbxMesh*>(node->GetNodeAttribute());
    if (!mesh) continue;
    for (const FbxSkin* skin : mesh->skins)
      for (const FbxCluster& cluster : skin->clusters) binds[cluster.link->GetName()] = cluster.transformLink;
  }
  return binds;
}

// Bones stand at bind where the file said: readers take it for the rest pose.
TEST_P(ReadersRoundTrip, KeepsBindsInTheWorld) {
  const std::map<std::string, Affine> before = BindsOf(fileBefore_), after = BindsOf(fileAfter_);
  EXPECT_EQ(before.size(), GetParam().numBones);
  Deviation worst;
  for (const auto& [bone, bind] : before) {
    ASSERT_TRUE(after.count(bone)) << bone;
    worst.Add(after.at(bone), bind);
  }
  ExpectClose(worst);
}

INSTANTIATE_TEST_SUITE_P(Files, ReadersRoundTrip, testing::ValuesIn(kFiles),
                         [](const auto& info) { return std::filesystem::path(info.param.file).stem().string(); });

}  // namespace
}  // namespace tavrilon::fbx
