// SPDX-License-Identifier: MIT
// Whole scenes written and read back, and what a file says of them on the way.
#include <gtest/gtest.h>
#include <sys/resource.h>
#include <sys/stat.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <functional>
#include <limits>
#include <set>

#include "plugin/fbx_format/random_scene.h"
#include "plugin/fbx_format/sample_trees.h"
#include "plugin/fbx_format/scene_listing.h"
#include "plugin/fbx_format/scene_samples.h"

namespace tavrilon::fbx {
namespace {

constexpr unsigned kSeeds = 40;

/// The bytes of a file "test.fbx"; with an error, where one is asked for, else without.
Bytes Written(const FbxScene& scene, int format = 0, const FbxIOSettings& settings = {}, std::string* error = nullptr) {
  const std::unique_ptr<FbxManager> manager = FbxManager::Create();
  manager->GetIOSettings() = settings;
  const std::unique_ptr<FbxExporter> exporter = FbxExporter::Create(*manager, "test");
  EXPECT_TRUE(exporter->Initialize("test.fbx", format));
  Bytes bytes = exporter->Write(scene);
  if (error)
    *error = exporter->GetStatus().GetErrorString();
  else
    EXPECT_EQ(exporter->GetStatus().GetErrorString(), "");
  return bytes;
}

std::unique_ptr<FbxScene> ReadBack(Bytes bytes) {
  const std::unique_ptr<Imported> read = ReadBytes(std::move(bytes));
  EXPECT_EQ(read->Error(), "");
  EXPECT_EQ(read->Log().find("put under the root"), std::string::npos) << "every node is linked";
  return std::move(read->scene);
}

TEST(SceneWriter, ReadsBackEqualAndWritesEqualBytes) {
  for (unsigned seed = 0; seed < kSeeds; ++seed) {
    for (const int format : {0, 1}) {
      SCOPED_TRACE(testing::Message() << "seed " << seed << ", format " << format);
      const std::unique_ptr<FbxScene> scene = RandomScene::Make(seed);
      const Bytes bytes = Written(*scene, format);
      const std::unique_ptr<FbxScene> read = ReadBack(bytes);
      ASSERT_EQ(FirstDifference(*scene, *read), "");
      ASSERT_TRUE(bytes == Written(*RandomScene::Make(seed), format));
      ASSERT_TRUE(bytes == Written(*read, format));
    }
  }
}

// Axes can be converted without changing what the nodes hold; a file has the turn in its top nodes.
TEST(SceneWriter, ConvertedScenesStandAsTheyStood) {
  int written = 0;
  for (unsigned seed = 0; seed < kSeeds; ++seed) {
    SCOPED_TRACE(seed);
    const std::unique_ptr<FbxScene> scene = RandomScene::Make(seed);
    ASSERT_TRUE((seed % 2 ? FbxAxisSystem::ZUp() : FbxAxisSystem::YUp()).ConvertScene(*scene));
    if (Determinant(scene->topConversion) < 0) {
      std::string error;
      EXPECT_TRUE(Written(*scene, 0, {}, &error).empty());
      EXPECT_NE(error.find("mirrored"), std::string::npos);
      continue;
    }
    ++written;
    const std::unique_ptr<FbxScene> read = ReadBack(Written(*scene));
    SceneEvaluator before(*scene, scene->CurrentStack()), after(*read, read->CurrentStack());
    for (const double seconds : {-20.0, -1.0, 0.0, 0.7, 5.0, 30.0}) {
      for (size_t i = 0; i < scene->Nodes().size(); ++i) {
        const Affine wanted = before.World(scene->Nodes()[i], Seconds(seconds));
        const Affine found = after.World(read->Nodes()[i], Seconds(seconds));
        // Lengths multiply from node to node; the turn of the top costs a rounding of its size.
        double size = 1;
        for (const Vector3& row : wanted.row) size += Length(row);
        for (size_t row = 0; row < 4; ++row) {
          EXPECT_LT(Length(found.row[row] - wanted.row[row]), 1e-11 * size) << i << ' ' << row << ' ' << seconds;
        }
      }
    }
  }
  EXPECT_GT(written, 5);
}

/// The objects of a written file by number, and how many there are by kind, and by kind and type. Links lead to them.
struct FileObjects {
  FbxDocument document;
  std::set<int64_t> ids;
  std::map<std::string, int64_t> counts;
  explicit FileObjects(const FbxScene& scene, const FbxIOSettings& settings = {}) {
    EXPECT_TRUE(document.Parse(Written(scene, 0, settings), "test.fbx")) << document.GetStatus().GetErrorString();
    for (const RecordView object : document.Find("Objects").Children()) {
      EXPECT_TRUE(ids.insert(object.Int(0)).second) << object.Place();
      ++counts[std::string(object.Name())];
      ++counts[std::string(object.Name()) + "/" + std::string(object.Text(2))];
    }
    for (const RecordView link : document.Find("Connections").Children()) {
      EXPECT_TRUE(ids.count(link.Int(1))) << link.Place();
      EXPECT_TRUE(link.Int(2) == 0 || ids.count(link.Int(2))) << link.Place();
    }
  }
};

TEST(SceneWriter, CountsAndConnectionsHold) {
  for (unsigned seed = 0; seed < kSeeds; ++seed) {
    SCOPED_TRACE(seed);
    const FileObjects file(*RandomScene::Make(seed));
    int64_t total = 0;
    for (const RecordView type : file.document.Find("Definitions").Children()) {
      if (type.Name() != "ObjectType") continue;
      const std::string name(type.Text(0));
      total += type.Find("Count").Int(0);
      if (name == "GlobalSettings") continue;
      EXPECT_EQ(type.Find("Count").Int(0), file.counts.at(name)) << name;
    }
    EXPECT_EQ(file.document.Find("Definitions").Find("Count").Int(0), total);
    EXPECT_EQ(total, static_cast<int64_t>(file.ids.size()) + 1);  // and the settings
    // Other programs refuse files without these.
    EXPECT_EQ(ToBytes(file.document.Find("FileId").Text(0)), Bytes(kFileId.begin(), kFileId.end()));
    EXPECT_EQ(file.document.Find("CreationTime").Text(0), kCreationTime);
  }
}

TEST(SceneWriter, SwitchesLeaveTheirObjectsOut) {
  // Of all seeds.
  const auto count = [](const std::string& kind, const FbxIOSettings& settings) {
    int64_t sum = 0;
    for (unsigned seed = 0; seed < 10; ++seed) sum += FileObjects(*RandomScene::Make(seed), settings).counts[kind];
    return sum;
  };
  struct Row {
    const char *path, *kind;
  };
  const Row rows[] = {
      {"Export|AdvOptGrp|Fbx|Animation", "AnimationStack"},
      {"Export|AdvOptGrp|Fbx|Animation", "AnimationCurve"},
      {"Export|AdvOptGrp|Fbx|Material", "Material"},
      {"Export|AdvOptGrp|Fbx|Material", "Texture"},
      {"Export|AdvOptGrp|Fbx|Texture", "Texture"},
      {"Export|AdvOptGrp|Fbx|Texture", "Video/Clip"},
      {"Export|IncludeGrp|Animation|Deformation", "Deformer/Cluster"},
      {"Export|IncludeGrp|Animation|Deformation", "Deformer/BlendShape"},
      {"Export|IncludeGrp|Animation|Deformation|Skins", "Deformer/Skin"},
      {"Export|AdvOptGrp|Fbx|Shape", "Deformer/BlendShapeChannel"},
      {"Export|AdvOptGrp|Fbx|Shape", "Geometry/Shape"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message() << row.path << ": " << row.kind);
    FbxIOSettings settings;
    EXPECT_GT(count(row.kind, settings), 0);
    settings.SetBoolProp(row.path, false);
    EXPECT_EQ(count(row.kind, settings), 0);
  }
}

TEST(SceneWriter, RefusesWhatFilesCannotSay) {
  constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
  using Small = SmallScene;
  const auto other = FbxScene::Create("other");
  FbxSurfaceMaterial* red = FbxSurfaceMaterial::Create(*other, "Red");
  FbxNode* hips = FbxNode::Create(*other, "Hips");
  struct Row {
    const char* error;
    std::function<void(Small&)> fault;
  };
  const Row rows[] = {
      {"", [](Small&) {}},
      {"the name 'Bo' goes on behind a zero byte", [](Small& s) { s.node->SetName(std::string("Bo\0dy", 5)); }},
      {"node 'Body': its transform is not finite", [=](Small& s) { s.node->transform.rotation.y = kNaN; }},
      {"node 'Body': a link leads nowhere", [](Small& s) { s.node->materials.push_back(nullptr); }},
      {"node 'Body': 'Red' belongs to another scene", [=](Small& s) { s.node->materials.push_back(red); }},
      {"mesh 'Body': a point is not finite", [=](Small& s) { s.mesh->controlPoints[0].x = kNaN; }},
      {"mesh 'Body': the polygons do not take up all corners", [](Small& s) { s.mesh->polygonStarts.back() = 2; }},
      {"mesh 'Body': polygon 1 has no corners", [](Small& s) { s.mesh->polygonStarts.push_back(3); }},
      {"mesh 'Body': a polygon has a corner at a point that is not there",
       [](Small& s) { s.mesh->polygonVertices[1] = 3; }},
      {"mesh 'Body': an edge begins at a corner that is not there", [](Small& s) { s.mesh->edges = {3}; }},
      {"mesh 'Body': the normals have 2 values for 3 places", [](Small& s) { s.mesh->normals.values.pop_back(); }},
      {"mesh 'Body': the normals name a value that is not there",
       [](Small& s) {
         s.mesh->normals.indices = {0, 1, 3};
       }},
      {"skin 'Skin': cluster 'Bone': not every point has a weight",
       [](Small& s) { s.skin->clusters[0].weights.pop_back(); }},
      {"skin 'Skin': cluster 'Bone': mesh 'Body' has not so many points",
       [](Small& s) { s.skin->clusters[0].indices[1] = 3; }},
      {"skin 'Skin': cluster 'Bone': 'Hips' belongs to another scene",
       [=](Small& s) { s.skin->clusters[0].link = hips; }},
      {"channel 'Smile': not every shape has its full weight", [](Small& s) { s.channel->fullWeights.clear(); }},
      {"channel 'Smile': shape 'Smile': its lists are not of one length",
       [](Small& s) { s.channel->shapes[0].offsets.clear(); }},
      {"animation layer 'Base': curve of 'Hip': Lcl Translation: the times of its keys do not rise",
       [](Small& s) { s.curves->curves[0].times[1] = 0; }},
      {"animation layer 'Base': curve of 'Hip': Lcl Translation: a key is not finite",
       [=](Small& s) { s.curves->curves[0].values[1] = static_cast<float>(kNaN); }},
      {"animation layer 'Base': curve of 'Hip': Lcl Translation: its lists are not of one length",
       [](Small& s) { s.curves->curves[0].shapes.resize(3); }},
  };
  for (const Row& row : rows) {
    SmallScene small;
    row.fault(small);
    std::string error;
    EXPECT_EQ(Written(*small.scene, 0, {}, &error).empty(), *row.error != 0) << row.error;
    EXPECT_EQ(error, *row.error ? std::string("test.fbx: ") + row.error : "");
  }
}

/// A folder that goes away with the test.
struct Folder {
  std::filesystem::path path;
  Folder() {
    std::string name = (std::filesystem::temp_directory_path() / "fbx_XXXXXX").string();
    path = mkdtemp(name.data());
  }
  ~Folder() { std::filesystem::remove_all(path); }
  size_t NumFiles() const { return static_cast<size_t>(std::distance(std::filesystem::directory_iterator(path), {})); }
};

Bytes Content(const std::filesystem::path& path) {
  std::ifstream in(path, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

/// Exports to `path`; the error.
std::string Exported(const FbxScene& scene, const std::filesystem::path& path) {
  const std::unique_ptr<FbxManager> manager = FbxManager::Create();
  const std::unique_ptr<FbxExporter> exporter = FbxExporter::Create(*manager, "test");
  exporter->Initialize(path.string(), manager->GetIOPluginRegistry().GetNativeWriterFormat());
  const bool done = exporter->Export(scene);
  EXPECT_EQ(done, exporter->GetStatus().IsGood());
  return exporter->GetStatus().GetErrorString();
}

/// No file may grow beyond `bytes` while it lives, as on a full disk.
struct FileSizeLimit {
  rlimit before{};
  void (*handler)(int) = std::signal(SIGXFSZ, SIG_IGN);
  explicit FileSizeLimit(rlim_t bytes) {
    getrlimit(RLIMIT_FSIZE, &before);
    const rlimit limit{bytes, before.rlim_max};
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileSizeLimit() {
    setrlimit(RLIMIT_FSIZE, &before);
    std::signal(SIGXFSZ, handler);
  }
};

TEST(FbxExporter, WritesWholeFilesOrNone) {
  const Folder folder;
  const std::filesystem::path file = folder.path / "walk é.fbx";
  SmallScene small;
  EXPECT_EQ(Exported(*small.scene, file), "");
  const Bytes first = Written(*small.scene);
  EXPECT_TRUE(Content(file) == first);

  small.mesh->polygonVertices[0] = 7;
  EXPECT_NE(Exported(*small.scene, file).find("walk é.fbx: mesh 'Body': a polygon"), std::string::npos);
  EXPECT_TRUE(Content(file) == first) << "a refused scene leaves the old file";

  small.mesh->polygonVertices[0] = 0;
  small.node->SetName("Torso");
  {
    const FileSizeLimit limit(1000);
    EXPECT_EQ(Exported(*small.scene, file), file.string() + ": cannot be written: File too large");
  }
  EXPECT_TRUE(Content(file) == first) << "a full disk leaves the old file";
  EXPECT_EQ(folder.NumFiles(), 1u);

  chmod(file.c_str(), 0640);
  std::filesystem::create_symlink(file, folder.path / "link.fbx");
  EXPECT_EQ(Exported(*small.scene, folder.path / "link.fbx"), "");
  EXPECT_TRUE(Content(file) == Written(*small.scene)) << "a link is written through";
  EXPECT_TRUE(std::filesystem::is_symlink(folder.path / "link.fbx"));
  EXPECT_EQ(static_cast<unsigned>(std::filesystem::status(file).permissions()), 0640u);
  EXPECT_EQ(folder.NumFiles(), 2u) << "no temporary file stays";
}

TEST(FbxExporter, TellsWhyAFileCannotBeWritten) {
  const Folder folder;
  SmallScene small;
  EXPECT_EQ(Exported(*small.scene, ""), "A file to write has no name.");
  EXPECT_EQ(Exported(*small.scene, folder.path / "none" / "walk.fbx"),
            (folder.path / "none" / "walk.fbx").string() + ": cannot be written: No such file or directory");
  EXPECT_EQ(Exported(*small.scene, folder.path), folder.path.string() + ": cannot be written: it is not a plain file");
  EXPECT_EQ(folder.NumFiles(), 0u);
  const std::unique_ptr<FbxManager> manager = FbxManager::Create();
  const std::unique_ptr<FbxExporter> exporter = FbxExporter::Create(*manager, "test");
  EXPECT_FALSE(exporter->Initialize("walk.fbx", 2));
  EXPECT_EQ(exporter->GetStatus().GetErrorString(), "walk.fbx: there is no format 2 to write");
}

}  // namespace
}  // namespace tavrilon::fbx
