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

#include "plugin/fbx/format/sdk.h"
#include "plugin/fbx_format/random_scene.h"
#include "plugin/fbx_format/scene_listing.h"

namespace tavrilon::fbx {
namespace {

constexpr unsigned kSeeds = 40;

std::vector<uint8_t> Written(const FbxScene& scene, int format = 0, const FbxIOSettings& settings = {}) {
  const std::unique_ptr<FbxManager> manager = FbxManager::Create();
  manager->GetIOSettings() = settings;
  const std::unique_ptr<FbxExporter> exporter = FbxExporter::Create(*manager, "test");
  EXPECT_TRUE(exporter->Initialize("test.fbx", format));
  std::vector<uint8_t> bytes = exporter->Write(scene);
  EXPECT_EQ(exporter->GetStatus().GetErrorString(), "");
  return bytes;
}

std::unique_ptr<FbxScene> ReadBack(std::vector<uint8_t> bytes) {
  const std::unique_ptr<FbxManager> manager = FbxManager::Create();
  const std::unique_ptr<FbxImporter> importer = FbxImporter::Create(*manager, "test");
  std::unique_ptr<FbxScene> scene = FbxScene::Create("Random");
  EXPECT_TRUE(importer->Initialize(std::move(bytes), "test.fbx") && importer->Import(*scene))
      << importer->GetStatus().GetErrorString();
  return scene;
}

TEST(SceneWriter, ReadsBackEqual) {
  for (unsigned seed = 0; seed < kSeeds; ++seed) {
    for (const int format : {0, 1}) {
      SCOPED_TRACE(testing::Message() << "seed " << seed << ", format " << format);
      const std::unique_ptr<FbxScene> scene = RandomScene::Make(seed);
      const std::unique_ptr<FbxScene> read = ReadBack(Written(*scene, format));
      ASSERT_EQ(FirstDifference(*scene, *read), "");
    }
  }
}

TEST(SceneWriter, EqualScenesGiveEqualBytes) {
  for (unsigned seed = 0; seed < kSeeds; ++seed) {
    SCOPED_TRACE(seed);
    const std::vector<uint8_t> bytes = Written(*RandomScene::Make(seed));
    ASSERT_TRUE(bytes == Written(*RandomScene::Make(seed)));
    ASSERT_TRUE(bytes == Written(*ReadBack(bytes)));
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
      const std::unique_ptr<FbxManager> manager = FbxManager::Create();
      const std::unique_ptr<FbxExporter> exporter = FbxExporter::Create(*manager, "test");
      EXPECT_TRUE(exporter->Write(*scene).empty());
      EXPECT_NE(exporter->GetStatus().GetErrorString().find("mirrored"), std::string::npos);
      continue;
    }
    ++written;
    const std::unique_ptr<FbxScene> read = ReadBack(Written(*scene));
    SceneEvaluator before(*scene, scene->CurrentStack()), after(*read, read->CurrentStack());
    for (const double seconds : {-20.0, -1.0, 0.0, 0.7, 5.0, 30.0}) {
      const FbxTime time = FbxTime::FromSeconds(seconds);
      for (size_t i = 0; i < scene->Nodes().size(); ++i) {
        const Affine wanted = before.World(scene->Nodes()[i], time), found = after.World(read->Nodes()[i], time);
        for (size_t row = 0; row < 4; ++row) {
          // Lengths multiply from node to node; the turn of the top costs a rounding of its size.
          const double size =
              1 + Length(wanted.row[0]) + Length(wanted.row[1]) + Length(wanted.row[2]) + Length(wanted.row[3]);
          EXPECT_LT(Length(found.row[row] - wanted.row[row]), 1e-11 * size) << i << ' ' << row << ' ' << seconds;
        }
      }
    }
  }
  EXPECT_GT(written, 5);
}

/// The objects of a file by number, and how many of each kind there are.
struct FileObjects {
  std::set<int64_t> ids;
  std::map<std::string, int64_t> counts;
  explicit FileObjects(const FbxDocument& document) {
    for (const RecordView object : document.Find("Objects").Children()) {
      EXPECT_TRUE(ids.insert(object.Int(0)).second) << object.Place();
      ++counts[std::string(object.Name())];
    }
  }
};

TEST(SceneWriter, CountsAndConnectionsHold) {
  for (unsigned seed = 0; seed < kSeeds; ++seed) {
    SCOPED_TRACE(seed);
    FbxDocument document;
    ASSERT_TRUE(document.Parse(Written(*RandomScene::Make(seed)), "test.fbx")) << document.GetStatus().GetErrorString();
    const FileObjects objects(document);
    int64_t total = 0;
    for (const RecordView type : document.Find("Definitions").Children()) {
      if (type.Name() != "ObjectType") continue;
      const std::string name(type.Text(0));
      total += type.Find("Count").Int(0);
      if (name == "GlobalSettings") continue;
      EXPECT_EQ(type.Find("Count").Int(0), objects.counts.at(name)) << name;
    }
    EXPECT_EQ(document.Find("Definitions").Find("Count").Int(0), total);
    EXPECT_EQ(total, static_cast<int64_t>(objects.ids.size()) + 1);  // and the settings
    for (const RecordView link : document.Find("Connections").Children()) {
      EXPECT_TRUE(objects.ids.count(link.Int(1))) << link.Place();
      EXPECT_TRUE(link.Int(2) == 0 || objects.ids.count(link.Int(2))) << link.Place();
    }
  }
}

/// Objects of a record's name and type, of all seeds.
int CountOf(const std::string& record, const std::string& type, const FbxIOSettings& settings) {
  int count = 0;
  for (unsigned seed = 0; seed < 10; ++seed) {
    FbxDocument document;
    EXPECT_TRUE(document.Parse(Written(*RandomScene::Make(seed), 0, settings), "test.fbx"));
    const FileObjects objects(document);
    for (const RecordView object : document.Find("Objects").Children()) {
      count += object.Name() == record && object.Text(2) == type;
    }
    for (const RecordView link : document.Find("Connections").Children()) {
      EXPECT_TRUE(objects.ids.count(link.Int(1))) << link.Place();
    }
  }
  return count;
}

TEST(SceneWriter, SwitchesLeaveTheirObjectsOut) {
  struct Row {
    const char* path;
    const char* record;
    const char* type;
  };
  const Row rows[] = {
      {"Export|AdvOptGrp|Fbx|Animation", "AnimationStack", ""},
      {"Export|AdvOptGrp|Fbx|Animation", "AnimationCurve", ""},
      {"Export|AdvOptGrp|Fbx|Material", "Material", ""},
      {"Export|AdvOptGrp|Fbx|Material", "Texture", ""},
      {"Export|AdvOptGrp|Fbx|Texture", "Texture", ""},
      {"Export|AdvOptGrp|Fbx|Texture", "Video", "Clip"},
      {"Export|IncludeGrp|Animation|Deformation", "Deformer", "Cluster"},
      {"Export|IncludeGrp|Animation|Deformation", "Deformer", "BlendShape"},
      {"Export|IncludeGrp|Animation|Deformation|Skins", "Deformer", "Skin"},
      {"Export|AdvOptGrp|Fbx|Shape", "Deformer", "BlendShapeChannel"},
      {"Export|AdvOptGrp|Fbx|Shape", "Geometry", "Shape"},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(testing::Message() << row.path << ": " << row.record);
    FbxIOSettings settings;
    EXPECT_GT(CountOf(row.record, row.type, settings), 0);
    settings.SetBoolProp(row.path, false);
    EXPECT_EQ(CountOf(row.record, row.type, settings), 0);
  }
}

/// A triangle under a node, with a bone, a shape and a curve: the smallest scene that faults can be put into.
struct SmallScene {
  std::unique_ptr<FbxScene> scene = FbxScene::Create("small");
  std::unique_ptr<FbxScene> other = FbxScene::Create("other");
  FbxNode* node = FbxNode::Create(*scene, "Body");
  FbxMesh* mesh = FbxMesh::Create(*scene, "Body");
  FbxSkin* skin = FbxSkin::Create(*scene, "Skin");
  FbxBlendShape* blend = FbxBlendShape::Create(*scene, "Morph");
  FbxBlendShapeChannel* channel = FbxBlendShapeChannel::Create(*scene, "Smile");
  FbxAnimStack* stack = FbxAnimStack::Create(*scene, "Take");
  FbxAnimLayer* layer = FbxAnimLayer::Create(*scene, "Base");
  FbxAnimCurveNode* curves = FbxAnimCurveNode::Create(*scene, "T");

  SmallScene() {
    node->SetNodeAttribute(mesh);
    mesh->controlPoints = {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}};
    mesh->polygonVertices = {0, 1, 2};
    mesh->polygonStarts = {0, 3};
    mesh->normals = {"", Mapping::ByPolygonVertex, {{0, 0, 1}, {0, 0, 1}, {0, 0, 1}}, {}};
    skin->clusters.push_back({"Bone", node, {0, 1}, {1, 0.5}, {}, {}});
    mesh->skins.push_back(skin);
    channel->shapes.push_back({"Smile", {2}, {{0, 0, 1}}, {}});
    channel->fullWeights = {100};
    blend->channels.push_back(channel);
    mesh->blendShapes.push_back(blend);
    stack->layers.push_back(layer);
    layer->curveNodes.push_back(curves);
    curves->target = node;
    curves->property = "Lcl Translation";
    curves->curves[0] = {{0, 100}, {1, 2}, {KeyShape()}};
  }
};

TEST(SceneWriter, RefusesWhatFilesCannotSay) {
  constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
  struct Row {
    const char* error;
    std::function<void(SmallScene&)> fault;
  };
  const Row rows[] = {
      {"", [](SmallScene&) {}},
      {"the name 'Bo' goes on behind a zero byte", [](SmallScene& s) { s.node->SetName(std::string("Bo\0dy", 5)); }},
      {"node 'Body': its transform is not finite", [=](SmallScene& s) { s.node->transform.rotation.y = kNaN; }},
      {"node 'Body': a link leads nowhere", [](SmallScene& s) { s.node->materials.push_back(nullptr); }},
      {"node 'Body': 'Red' belongs to another scene",
       [](SmallScene& s) { s.node->materials.push_back(FbxSurfaceMaterial::Create(*s.other, "Red")); }},
      {"mesh 'Body': a point is not finite", [=](SmallScene& s) { s.mesh->controlPoints[0].x = kNaN; }},
      {"mesh 'Body': the polygons do not take up all corners",
       [](SmallScene& s) {
         s.mesh->polygonStarts = {0, 2};
       }},
      {"mesh 'Body': polygon 1 has no corners",
       [](SmallScene& s) {
         s.mesh->polygonStarts = {0, 3, 3};
       }},
      {"mesh 'Body': a polygon has a corner at a point that is not there",
       [](SmallScene& s) { s.mesh->polygonVertices[1] = 3; }},
      {"mesh 'Body': an edge begins at a corner that is not there", [](SmallScene& s) { s.mesh->edges = {3}; }},
      {"mesh 'Body': the normals have 2 values for 3 places", [](SmallScene& s) { s.mesh->normals.values.pop_back(); }},
      {"mesh 'Body': the normals name a value that is not there",
       [](SmallScene& s) {
         s.mesh->normals.indices = {0, 1, 3};
       }},
      {"skin 'Skin': cluster 'Bone': not every point has a weight",
       [](SmallScene& s) { s.skin->clusters[0].weights.pop_back(); }},
      {"skin 'Skin': cluster 'Bone': mesh 'Body' has not so many points",
       [](SmallScene& s) { s.skin->clusters[0].indices[1] = 3; }},
      {"skin 'Skin': cluster 'Bone': 'Hips' belongs to another scene",
       [](SmallScene& s) { s.skin->clusters[0].link = FbxNode::Create(*s.other, "Hips"); }},
      {"channel 'Smile': not every shape has its full weight", [](SmallScene& s) { s.channel->fullWeights.clear(); }},
      {"channel 'Smile': shape 'Smile': its lists are not of one length",
       [](SmallScene& s) { s.channel->shapes[0].offsets.clear(); }},
      {"animation layer 'Base': curve of 'Body': Lcl Translation: the times of its keys do not rise",
       [](SmallScene& s) { s.curves->curves[0].times[1] = 0; }},
      {"animation layer 'Base': curve of 'Body': Lcl Translation: a key is not finite",
       [=](SmallScene& s) { s.curves->curves[0].values[1] = static_cast<float>(kNaN); }},
      {"animation layer 'Base': curve of 'Body': Lcl Translation: its lists are not of one length",
       [](SmallScene& s) { s.curves->curves[0].shapes.resize(3); }},
  };
  const std::unique_ptr<FbxManager> manager = FbxManager::Create();
  for (const Row& row : rows) {
    SmallScene small;
    row.fault(small);
    const std::unique_ptr<FbxExporter> exporter = FbxExporter::Create(*manager, "test");
    exporter->Initialize("walk.fbx", 0);
    const bool written = !exporter->Write(*small.scene).empty();
    EXPECT_EQ(exporter->GetStatus().GetErrorString(), *row.error ? std::string("walk.fbx: ") + row.error : "");
    EXPECT_EQ(written, *row.error == 0) << row.error;
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

std::vector<uint8_t> Content(const std::filesystem::path& path) {
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

TEST(FbxExporter, WritesWholeFilesOrNone) {
  const Folder folder;
  const std::filesystem::path file = folder.path / "walk é.fbx";
  SmallScene small;
  EXPECT_EQ(Exported(*small.scene, file), "");
  const std::vector<uint8_t> first = Written(*small.scene);
  EXPECT_TRUE(Content(file) == first);

  small.mesh->polygonVertices[0] = 7;
  EXPECT_NE(Exported(*small.scene, file).find("walk é.fbx: mesh 'Body': a polygon"), std::string::npos);
  EXPECT_TRUE(Content(file) == first) << "a refused scene leaves the old file";

  small.mesh->polygonVertices[0] = 0;
  small.node->SetName("Torso");
  chmod(file.c_str(), 0640);
  std::filesystem::create_symlink(file, folder.path / "link.fbx");
  EXPECT_EQ(Exported(*small.scene, folder.path / "link.fbx"), "");
  EXPECT_TRUE(Content(file) == Written(*small.scene)) << "a link is written through";
  EXPECT_TRUE(std::filesystem::is_symlink(folder.path / "link.fbx"));
  EXPECT_EQ(static_cast<unsigned>(std::filesystem::status(file).permissions()), 0640u);
  EXPECT_EQ(folder.NumFiles(), 2u) << "no temporary file stays";
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

TEST(FbxExporter, AFullDiskLeavesTheOldFile) {
  const Folder folder;
  const std::filesystem::path file = folder.path / "walk.fbx";
  SmallScene small;
  ASSERT_EQ(Exported(*small.scene, file), "");
  const std::vector<uint8_t> before = Content(file);
  small.node->SetName("Torso");
  {
    const FileSizeLimit limit(1000);
    EXPECT_EQ(Exported(*small.scene, file), file.string() + ": cannot be written: File too large");
  }
  EXPECT_TRUE(Content(file) == before);
  EXPECT_EQ(folder.NumFiles(), 1u) << "no temporary file stays";
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
