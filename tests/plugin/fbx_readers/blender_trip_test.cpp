// SPDX-License-Identifier: MIT
// Files that went through the host, and the files that they were, compared by what Blender takes them for
// (tests/tools/compare_fbx). Skipped where there is no Blender.
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>

#include "plugin/fbx_readers/chain_scene.h"
#include "plugin/fbx_readers/host_trip.h"

namespace tavrilon::fbx {
namespace {

void Save(const std::string& path, const std::vector<uint8_t>& bytes) {
  std::ofstream(path, std::ios::binary)
      .write(reinterpret_cast<const char*>(bytes.data()), static_cast<std::streamsize>(bytes.size()));
}

/// What compare_fbx prints of a file and of what came out of the host, standing as it stood; empty when they are alike.
std::string Differences(const std::vector<uint8_t>& file, const char* frames, const char* bounds) {
  HostTrip trip({1, corvanta::UpAxis::Y});
  if (!trip.Run(file)) return "no file came out";
  std::string folder = (std::filesystem::temp_directory_path() / "fbx_XXXXXX").string();
  if (!mkdtemp(folder.data())) return "no folder";
  Save(folder + "/a.fbx", file);
  Save(folder + "/b.fbx", trip.bytes);
  const std::string command = std::string(bounds) + " " TAVRILON_SOURCE_DIR "/tests/tools/compare_fbx " + folder +
                              "/a.fbx " + folder + "/b.fbx " + frames + " >" + folder + "/text 2>&1";
  const int code = std::system(command.c_str());
  std::ifstream in(folder + "/text");
  const std::string text{std::istreambuf_iterator<char>(in), {}};
  std::filesystem::remove_all(folder);
  return code == 0 ? "" : text;
}

class BlenderTrip : public testing::Test {
 protected:
  void SetUp() override {
    if (std::system("command -v blender >/dev/null") != 0) GTEST_SKIP() << "no blender here";
  }
};

TEST_F(BlenderTrip, Walk) {
  EXPECT_EQ(Differences(FileBytes(TAVRILON_SOURCE_DIR "/examples/mixamo_walk.fbx"), "0 8", ""), "");
}

TEST_F(BlenderTrip, CharacterWithShapes) {
  EXPECT_EQ(Differences(FileBytes(TAVRILON_SOURCE_DIR "/examples/character_skinned.fbx"), "0 0", ""), "");
}

// One order of rotation, which Blender reads rightly, and pre-rotation only.
TEST_F(BlenderTrip, ChainOfTwelveBones) {
  ChainRow row{"baked"};
  row.keys = Keys::EveryFrame;
  row.axes = FbxAxisSystem::YUp();
  EXPECT_EQ(Differences(WrittenBytes(*MakeChain(3, row)), "0 60", ""), "");
}

}  // namespace
}  // namespace tavrilon::fbx
