// SPDX-License-Identifier: MIT
// Characters of other programs: their nodes, and their points under the skin, against sums in double precision.
#include "host/scene/mesh_object.h"
#include "host/scene/skin_modifier.h"
#include "import_scenes_test.h"
#include "plugin/fbx/importer/file_time.h"

namespace tavrilon::import_test {
namespace {

using namespace fbx;

const char* const kFiles[] = {"character_skinned.fbx", "mixamo_walk.fbx"};

std::string PathOf(const std::string& name) { return std::string(TAVRILON_SOURCE_DIR) + "/examples/" + name; }

class ImportFiles : public ImportTest {
 protected:
  /// The file's own scene beside the host's, in its own axes and unit.
  void Open(const std::string& name) {
    ReplaceScene(std::make_unique<Scene>());
    twin_ = ReadFbx(PathOf(name));
    ASSERT_TRUE(ImportFbx(FromUtf8(PathOf(name)), {}, report)) << Log();
    toHost_ = WorldChange(*twin_, FbxAxisSystem::ZUp(), 1);
    evaluator_ = std::make_unique<SceneEvaluator>(*twin_, twin_->CurrentStack());
    const Interval range = GetScene().time.range;
    for (TimeValue t = range.start; t <= range.end; t += 6000 / GetScene().time.frameRate) times_.push_back(t);
  }
  void TearDown() override {
    evaluator_.reset();
    ImportTest::TearDown();
  }

  Affine World(const FbxNode* node, TimeValue t) { return toHost_(evaluator_->World(node, fbx_import::FileTimeOf(t))); }
  static INode* Host(const FbxNode& node) { return GetScene().GetINodeByName(FromUtf8(node.GetName())); }

  template <class F>
  void ForEachSkin(F&& f) {
    for (const FbxNode* node : twin_->Nodes()) {
      const auto* mesh = dynamic_cast<const FbxMesh*>(node->GetNodeAttribute());
      if (mesh && !mesh->skins.empty()) f(*node, *mesh, *Host(*node));
    }
  }

  /// In the host's axes and unit.
  std::vector<Vector3> SkinnedPoints(const FbxNode& node, TimeValue t) {
    std::vector<Vector3> points = PointsInTheWorld(*evaluator_, node, fbx_import::FileTimeOf(t));
    for (Vector3& point : points) point = toHost_(point);
    return points;
  }

  std::unique_ptr<FbxScene> twin_;
  std::unique_ptr<SceneEvaluator> evaluator_;
  std::vector<TimeValue> times_;
  WorldChange toHost_;
};

double FarthestPoint(INode& node, TimeValue t, const std::vector<Vector3>& expected) {
  const MeshState* state = EvaluatedMesh(&node, t);
  if (!state || state->points.size() != expected.size()) return 1e30;
  const Affine tm = ToAffine(node.GetObjectTM(t));
  double farthest = 0;
  for (size_t i = 0; i < expected.size(); ++i) {
    const Point3& p = state->points[i];
    KeepWorst(farthest, Length(Vector3{p.x, p.y, p.z} * tm - expected[i]));
  }
  return farthest;
}

TEST_F(ImportFiles, EveryNodeOnEveryFrameAndItsPoints) {
  for (const char* file : kFiles) {
    SCOPED_TRACE(file);
    Open(file);
    Deviation worst;
    for (const TimeValue t : times_) {
      for (const FbxNode* node : twin_->Nodes()) {
        ASSERT_TRUE(Host(*node)) << node->GetName();
        worst.Add(ToAffine(Host(*node)->GetNodeTM(t)), World(node, t));
      }
    }
    ExpectClose(worst, {kFigureBounds.place, kFigureBounds.degrees, INFINITY});
    int skins = 0;
    ForEachSkin([&](const FbxNode& node, const FbxMesh&, INode& host) {
      ++skins;
      for (size_t i = 0; i < times_.size(); i += 1 + times_.size() / 5) {
        // What the bones may be off, and a skin's single precision.
        EXPECT_LT(FarthestPoint(host, times_[i], SkinnedPoints(node, times_[i])), 0.015) << node.GetName();
      }
    });
    EXPECT_GT(skins, 0);
  }
}

// With its bones where they were at bind a skin leaves the mesh as it is.
TEST_F(ImportFiles, BonesAtBindLeaveTheMeshAsItIs) {
  for (const char* file : kFiles) {
    SCOPED_TRACE(file);
    Open(file);
    ForEachSkin([&](const FbxNode& node, const FbxMesh& mesh, INode& host) {
      const auto* skin = dynamic_cast<const SkinModifier*>(host.Modifiers()[0]);
      ASSERT_TRUE(skin);
      for (int i = 0; i < skin->NumBones(); ++i) {
        // Transforms of their own, so that the order of bones does not matter.
        GetScene().GetRootNode()->AttachChild(skin->GetBone(i), false);
        skin->GetBone(i)->SetTMController(NewDefaultMatrix3Controller());
      }
      for (int i = 0; i < skin->NumBones(); ++i) skin->GetBone(i)->SetNodeTM(0, skin->GetBoneBindTM(i));
      const FbxCluster& first = mesh.skins[0]->clusters[0];
      const Affine bind = toHost_(GeometricMatrix(node.transform) * first.transform * first.transformLink);
      EXPECT_LT(Length(ToAffine(skin->GetMeshBindTM()).row[3] - bind.row[3]), 1e-4);  // single precision
      std::vector<Vector3> expected;
      for (const Vector3& point : ShapedPoints(*evaluator_, mesh, {}))
        expected.push_back((point * toHost_.unit) * ToAffine(skin->GetMeshBindTM()));
      EXPECT_LT(FarthestPoint(host, 0, expected), 1e-3) << node.GetName();  // single precision
    });
  }
}

TEST_F(ImportFiles, FewerKeysThanFrames) {
  Open("mixamo_walk.fbx");
  size_t keys = 0, tracks = 0;
  for (const Ref<INode>& node : GetScene().Nodes()) {
    Control* rotation = node->GetTMController()->GetRotationController();
    for (Control* track : {rotation->GetXController(), rotation->GetYController(), rotation->GetZController()}) {
      const auto n = static_cast<size_t>(track->NumKeys());
      keys += n;
      tracks += n > 0;
    }
  }
  EXPECT_GT(tracks, 20u);
  EXPECT_LT(keys, tracks * times_.size() / 2);
}

TEST_F(ImportFiles, FilesThatCannotBeReadSayWhy) {
  struct Row {
    std::wstring file;
    const wchar_t* error;
  };
  const Row kRows[] = {
      {L"", L"Invalid input filename."},
      {FromUtf8(PathOf("nowhere.fbx")), L"nowhere.fbx"},
      {FromUtf8(PathOf("../../README.md")), L"README.md"},
  };
  const std::vector<uint8_t> before = SavedBytes();
  for (const Row& row : kRows) {
    EXPECT_FALSE(ImportFbx(row.file, {}, report));
    EXPECT_NE(report.error.find(row.error), WStr::npos) << Log();
    EXPECT_TRUE(SavedBytes() == before);
  }
}

}  // namespace
}  // namespace tavrilon::import_test
