// SPDX-License-Identifier: MIT
// Hierarchy, transforms and settings of an exported scene.
#include <random>

#include "plugin/fbx/export_scene_test.h"
#include "plugin/fbx/exporter/checks.h"

namespace tavrilon {
namespace {

using namespace fbx;
using fbx_export::CheckExport;
using fbx_export::ExportSurroundings;
using fbx_export::SampleTimes;

struct CheckRow {
  const char* name;
  std::function<void(ExportSurroundings&, FbxExportOptions&)> spoil;
  const wchar_t* error;
};
// In the order of the checks, so that each row also spoils nothing that an earlier one would catch.
const CheckRow kChecks[] = {
    {"all well", [](auto&, auto&) {}, L""},
    {"nothing selected", [](auto& a, auto&) { a.numNodes = 0; }, L"No nodes are selected for export."},
    {"no name", [](auto& a, auto&) { a.file = L" "; }, L"Invalid output filename."},
    {"a folder", [](auto& a, auto&) { a.file = L"/tmp"; }, L"Invalid output filename."},
    {"a folder to be", [](auto& a, auto&) { a.file = L"walk/"; }, L"Invalid output filename."},
    {"no rate", [](auto& a, auto&) { a.frameRate = 0; }, L"Invalid frame rate."},
    {"nothing to do", [](auto&, auto& o) { o.skeletalMesh = o.animation = false; },
     L"Enable skeletal mesh or animation export."},
    {"unknown segment", [](auto&, auto& o) { o.timeSegment = 2; }, L"Time Segment must be Active or Range."},
    {"empty active range", [](auto& a, auto&) { a.activeRange = Interval(10, 9); }, L"Invalid animation frame range."},
    {"range upside down", [](auto&, auto& o) { o.timeSegment = 1, o.startFrame = 5, o.endFrame = 4; },
     L"Invalid animation frame range."},
    {"beyond time", [](auto&, auto& o) { o.timeSegment = 1, o.endFrame = 2000000000; },
     L"Invalid animation frame range."},
    {"still pose with an empty range", [](auto& a, auto& o) { o.animation = false, a.activeRange = Interval(10, 9); },
     L""},
    {"no samples", [](auto&, auto& o) { o.subSamples = 0; },
     L"Sub Samples must be between 1 and the available ticks per frame, up to 100."},
    {"too many", [](auto&, auto& o) { o.subSamples = 101; },
     L"Sub Samples must be between 1 and the available ticks per frame, up to 100."},
    {"more than ticks", [](auto& a, auto& o) { a.ticksPerFrame = 8, o.subSamples = 9; },
     L"Sub Samples must be between 1 and the available ticks per frame, up to 100."},
    {"more than fits", [](auto& a, auto& o) { a.numNodes = 1000, o.timeSegment = 1, o.endFrame = 1000000; },
     L"Invalid export time range."},
};
TEST(ExportChecks, EachHasItsMessageAndTheFirstWins) {
  for (const CheckRow& row : kChecks) {
    SCOPED_TRACE(row.name);
    ExportSurroundings around{3, L"walk.fbx", 30, 200, {0, 2000}, 77};
    FbxExportOptions options;
    row.spoil(around, options);
    SampleTimes times;
    EXPECT_EQ(ToUtf8(CheckExport(around, options, times)), ToUtf8(row.error));
  }
  SampleTimes times;
  EXPECT_EQ(CheckExport({0, L"", 0, 0, {1, 0}, 0}, {false, false, 9, 0, 0, 0}, times), kChecks[1].error);
}

TEST(ExportChecks, TimesOfTheSegments) {
  struct Row {
    const char* name;
    FbxExportOptions options;
    TimeValue start;
    int count;
  };
  const Row kRows[] = {
      {"active", {true, true, 0, 7, 9, 1}, -200, 12},
      {"range", {true, true, 1, 7, 9, 4}, 1400, 9},
      {"one frame", {true, true, 1, 7, 7, 4}, 1400, 1},
      {"still", {true, false, 1, 7, 9, 4}, 77, 1},
  };
  for (const Row& row : kRows) {
    SCOPED_TRACE(row.name);
    SampleTimes times;
    EXPECT_EQ(CheckExport({3, L"a.fbx", 30, 200, {-200, 2000}, 77}, row.options, times), L"");
    EXPECT_EQ(times.start, row.start);
    EXPECT_EQ(times.count, row.count);
  }
}

class ExportNodes : public ExportTest {};

TEST_F(ExportNodes, HangUnderTheNearestExportedAncestor) {
  INode* root = Helper(L"root");
  INode* left = Helper(L"left out", root);
  INode* hip = Bone(L"hip", left);
  INode* foot = Bone(L"foot", Helper(L"also left out", hip));
  INode* stray = Helper(L"stray", Helper(L"not there"));
  INode* gone = Helper(L"gone");
  GetScene().DeleteNode(gone);
  // However they were picked.
  for (const std::vector<INode*>& picked :
       {std::vector<INode*>{root, hip, foot, stray}, {foot, nullptr, stray, hip, gone, root, foot}}) {
    const auto scene = Build(picked);
    ASSERT_TRUE(scene) << ToUtf8(report.error);
    ASSERT_EQ(scene->Nodes().size(), 4u);
    EXPECT_EQ(FindOut(*scene, "root")->GetParent(), scene->GetRootNode());
    EXPECT_EQ(FindOut(*scene, "stray")->GetParent(), scene->GetRootNode());
    EXPECT_EQ(FindOut(*scene, "hip")->GetParent()->GetName(), "root");
    EXPECT_EQ(FindOut(*scene, "foot")->GetParent()->GetName(), "hip");
    EXPECT_EQ(scene->Nodes().front()->GetName(), "root");
  }
  EXPECT_FALSE(Build({gone, nullptr, GetScene().GetRootNode()}));
  EXPECT_EQ(report.error, L"No nodes are selected for export.");
}

TEST_F(ExportNodes, CarryKindColourVisibilityAndUserProperties) {
  INode* bone = Bone(L"bone");
  INode* helper = Helper(L"helper");
  INode* boned = Helper(L"helper as bone");
  boned->SetBoneOnOff(true);
  INode* mesh = mesh_samples::MeshNode(mesh_samples::Cube(1));
  mesh->SetName(L"mesh");
  INode* empty = mesh_samples::MeshNode({});
  empty->SetName(L"empty");
  bone->SetWireColor(0xFF8000);
  helper->Hide(true);
  helper->SetUserPropString(L"tag", L"gr\x00FCn");
  const auto scene = BuildAll();
  struct Row {
    const char* name;
    AttributeKind kind;
  };
  for (const Row& row : {Row{"bone", AttributeKind::Skeleton}, Row{"helper", AttributeKind::Null},
                         Row{"helper as bone", AttributeKind::Skeleton}, Row{"mesh", AttributeKind::Mesh},
                         Row{"empty", AttributeKind::Null}})
    EXPECT_EQ(FindOut(*scene, row.name)->GetNodeAttribute()->Kind(), row.kind) << row.name;
  EXPECT_TRUE(HasLogged(L"'empty'"));
  const auto* limb = static_cast<FbxSkeleton*>(FindOut(*scene, "bone")->GetNodeAttribute());
  EXPECT_EQ(limb->type, SkeletonType::LimbNode) << "also at the top of a chain: readers know no other";
  EXPECT_LT(Length(*limb->colour - Vector3{1, 128.0 / 255, 0}), 1e-6);
  EXPECT_TRUE(FindOut(*scene, "bone")->visible);
  EXPECT_FALSE(FindOut(*scene, "helper")->visible);
  EXPECT_EQ(FindOut(*scene, "helper")->userProperties.at("tag"), "gr\xC3\xBCn");

  options.skeletalMesh = false;
  EXPECT_EQ(FindOut(*BuildAll(), "mesh")->GetNodeAttribute()->Kind(), AttributeKind::Null);
}

Matrix3 Sheared() {
  Matrix3 m;
  m.row[1] = {0.5f, 1, 0};
  return m;
}
Matrix3 Broken() {
  Matrix3 m;
  m.row[3].y = std::numeric_limits<float>::quiet_NaN();
  return m;
}

/// As it says at one time, and at rest at all others.
TimedMatrix::Function At(TimeValue when, const Matrix3& m) {
  return [=](TimeValue t) { return t == when ? m : Matrix3(); };
}
TimedMatrix::Function Always(const Matrix3& m) {
  return [=](TimeValue) { return m; };
}

struct RefusalRow {
  const char* name;
  TimedMatrix::Function parent, child;
  const wchar_t* error;
};
const RefusalRow kRefusals[] = {
    {"sheared", Always({}), At(400, Sheared()),
     L"Node 'child' has local shear that cannot be represented by a single FBX TRS node."},
    {"scale over a turn", Always(ScaleMatrix({1, 3, 1})), Always(RotateZMatrix(0.5f) * ScaleMatrix({1, 3, 1})),
     L"Node 'child' has local shear that cannot be represented by a single FBX TRS node."},
    {"not finite", Always({}), At(600, Broken()), L"Node 'child': The evaluated transform contains non-finite values."},
    {"flat parent", At(200, ScaleMatrix({1, 1, 0})), Always({}),
     L"Node 'child': The exported parent has zero scale; its local position cannot be recovered."},
    {"far away", Always({}), Always(TransMatrix({4e15f, 0, 0})),
     L"Node 'child': The converted position, rotation or scale exceeds the supported numeric range."},
};
TEST_F(ExportNodes, RefusesTransformsThatAFileCannotSay) {
  for (const RefusalRow& row : kRefusals) {
    SCOPED_TRACE(row.name);
    ReplaceScene(std::make_unique<Scene>());
    INode* parent = Helper(L"parent", nullptr, row.parent);
    Helper(L"child", parent, row.child);
    EXPECT_FALSE(Build(AllNodes()));
    EXPECT_EQ(ToUtf8(report.error), ToUtf8(row.error));
    EXPECT_TRUE(HasLogged(L"frame")) << "when it happens";
  }
}

TEST_F(ExportNodes, FlatNodesWithoutChildrenAreFine) {
  Helper(L"popping up", nullptr, [](TimeValue t) { return ScaleMatrix(Point3{1, 1, 1} * (t / 800.0f)); });
  const auto scene = BuildAll();
  ExpectSameWorlds(*scene, AllNodes(), 1, 1e-6, 1e-6);
}

// Chains that turn, wander, stretch and are mirrored.
TEST_F(ExportNodes, StandWhereTheyStandInTheHost) {
  std::mt19937 rng(5);
  std::uniform_real_distribution<float> angle(-3, 3), place(-50, 50);
  for (const UpAxis up : {UpAxis::Z, UpAxis::Y})
    for (const int subSamples : {1, 3}) {
      ReplaceScene(std::make_unique<Scene>());
      GetScene().time.range = {-200, 5 * 200};
      GetScene().units = {2.54, up};
      INode* parent = nullptr;
      for (int i = 0; i < 8; ++i) {
        const Point3 from{angle(rng), angle(rng), angle(rng)}, speed{angle(rng), angle(rng), angle(rng)};
        const Point3 at{place(rng), place(rng), place(rng)};
        const float size = i % 3 == 1 ? 0.5f : 1;
        const float mirror = i == 4 ? -1.0f : 1.0f;
        parent = Bone(Format(L"bone%d", i), i == 5 ? nullptr : parent, [=](TimeValue t) {
          const float s = static_cast<float>(t) / 1000;
          return ScaleMatrix(Point3{size, size, size * mirror} * (1 + 0.1f * s)) * RotateXMatrix(from.x + s * speed.x) *
                 RotateYMatrix(from.y + s * speed.y) * RotateZMatrix(from.z + s * speed.z) *
                 TransMatrix(at + speed * s);
        });
      }
      options.subSamples = subSamples;
      const auto scene = BuildAll();
      ASSERT_TRUE(scene);
      EXPECT_EQ(scene->GetGlobalSettings().GetSystemUnit(), (FbxSystemUnit{2.54, 1}));
      const bool isY = up == UpAxis::Y;
      EXPECT_EQ(scene->GetGlobalSettings().GetAxisSystem(), isY ? FbxAxisSystem::YUp() : FbxAxisSystem::ZUp());
      // Turning the file's scene back must give the host's places; Z up is (x, z, -y) in Y up.
      if (isY) {
        FbxNode* out = FindOut(*scene, "bone0");
        const Vector3 in = fbx_export::ToVector(GetScene().GetINodeByName(L"bone0")->GetNodeTM(-200).GetTrans());
        EXPECT_LT(Length(out->transform.translation - Vector3{in.x, in.z, -in.y}), 1e-4);
        ASSERT_TRUE(FbxAxisSystem::ZUp().ConvertScene(*scene));
      }
      // Keys are floats: a hundred units of reach by 1e-7 a level; mirrored parents put two roundings on one another.
      ExpectSameWorlds(*scene, AllNodes(), subSamples, 2e-5, 2e-3);
    }
}

// What the readers need of curves, in a scene where some axes move.
TEST_F(ExportNodes, CurvesAreAsReadersNeedThem) {
  INode* spin = Bone(L"spin", nullptr, [](TimeValue t) {
    return RotateZMatrix(static_cast<float>(t) / 100) * TransMatrix({1, static_cast<float>(t), 2});
  });
  Bone(L"still", spin, [](TimeValue) { return TransMatrix({3, 0, 0}); });
  GetScene().time.range = {-400, 6000};
  const auto scene = BuildAll();
  ASSERT_EQ(scene->Stacks().size(), 1u);
  const FbxAnimStack& stack = *scene->Stacks()[0];
  EXPECT_EQ(stack.GetName(), "Animation");
  ASSERT_EQ(stack.layers.size(), 1u);
  EXPECT_EQ(stack.layers[0]->GetName(), "Base Layer");
  FbxTime first, last;
  stack.GetKeySpan(first, last);
  EXPECT_EQ(first, fbx_export::ToFileTime(-400));
  EXPECT_EQ(last, fbx_export::ToFileTime(6000));
  EXPECT_EQ(stack.localStart, first);
  EXPECT_EQ(stack.localStop, last);

  ASSERT_EQ(stack.layers[0]->curveNodes.size(), 6u);
  size_t keys = 0;
  for (const FbxAnimCurveNode* curves : stack.layers[0]->curveNodes) {
    SCOPED_TRACE(curves->target->GetName() + " " + curves->GetName());
    EXPECT_EQ(curves->property, curves->GetName() == "T"   ? "Lcl Translation"
                                : curves->GetName() == "R" ? "Lcl Rotation"
                                                           : "Lcl Scaling");
    for (const FbxAnimCurve& curve : curves->curves) {
      ASSERT_TRUE(curve.times.size() == 1 || curve.times.size() == 33u);
      keys += curve.times.size();
      EXPECT_EQ(curve.times.size(), curve.values.size());
      EXPECT_EQ(curve.times.front(), first.ticks);
      for (size_t i = 1; i < curve.values.size() && curves->GetName() == "R"; ++i)
        EXPECT_LT(std::abs(curve.values[i] - curve.values[i - 1]), 180);
    }
  }
  // Two channels move: the place along Y and the turn about Z.
  EXPECT_EQ(keys, 2 * 33u + 16u);
}

TEST_F(ExportNodes, WithoutAnimationThePresentPoseStands) {
  Bone(L"mover", nullptr, [](TimeValue t) { return TransMatrix({static_cast<float>(t), 0, 0}); });
  options.animation = false;
  GetScene().time.time = 350;
  const auto scene = BuildAll();
  EXPECT_TRUE(scene->Stacks().empty());
  EXPECT_EQ(FindOut(*scene, "mover")->transform.translation, (Vector3{350, 0, 0}));
}

// A still animation keeps its length, and the rate of the scene.
TEST_F(ExportNodes, TimeModesAndSpan) {
  Bone(L"still");
  FbxTime first, last;
  BuildAll()->Stacks().at(0)->GetKeySpan(first, last);
  EXPECT_EQ(first, fbx_export::ToFileTime(0));
  EXPECT_EQ(last, fbx_export::ToFileTime(800));
  for (const auto& [rate, mode] : {std::pair(25, TimeMode::Pal), {30, TimeMode::Frames30}, {120, TimeMode::Custom}}) {
    GetScene().time.frameRate = rate;
    const auto scene = BuildAll();
    ASSERT_TRUE(scene);
    EXPECT_EQ(scene->GetGlobalSettings().GetTimeMode(), mode) << rate;
    EXPECT_EQ(scene->GetGlobalSettings().GetFrameRate(), rate);
  }
}

// Progress can stop the work.
TEST_F(ExportNodes, CanBeStopped) {
  Bone(L"bone");
  SetProgressHook([](const WStr&, double) { return false; });
  EXPECT_FALSE(Build(AllNodes()));
  SetProgressHook({});
  EXPECT_EQ(report.error, L"The FBX export was stopped.");
}

}  // namespace
}  // namespace tavrilon
