// SPDX-License-Identifier: MIT
// Whole exports: a built rig in motion, the class, the script interface, and what an export leaves as it was.
#include <fstream>

#include "host/core/published.h"
#include "host/io/scene_file.h"
#include "host/io/temp_folder_test.h"
#include "host/maths/euler.h"
#include "plugin/controllers/rig_control.h"
#include "plugin/fbx/closed_form_test.h"
#include "plugin/fbx/export_scene_test.h"
#include "plugin/fbx/fbx_export_interface.h"
#include "plugin/fbx/fbx_export_settings.h"
#include "plugin/fbx/fbx_exporter.h"
#include "plugin/frame/find.h"
#include "plugin/frame/library.h"
#include "plugin/rig/rig_system.h"
#include "support/alloc_counter.h"

namespace tavrilon {
namespace {

using namespace fbx;

class ExportFile : public ExportTest {
 protected:
  ExportFile() { setenv("TAVRILON_CONFIG_DIR", folder.Path().c_str(), 1); }
  ~ExportFile() override { unsetenv("TAVRILON_CONFIG_DIR"); }

  /// Every control of a built biped turns and moves.
  static void BuildBiped() {
    auto* rig = new RigSystem;
    GetScene().CreateObjectNode(rig);
    rig->SetType(static_cast<int>(RigType::Biped));
    rig->CreateRig();
    ASSERT_EQ(rig->BuildError(), L"");
    AnimateOn();
    int i = 0;
    for (const Ref<INode>& node : GetScene().Nodes()) {
      RigControl* control = FindNodeRigControl(node.Get());
      if (!control) continue;
      ++i;
      for (TimeValue t = 0; t <= 4000; t += 800) {
        const float a = 0.1f * static_cast<float>((i + t / 800) % 7);
        Point3 p{a, -a, a};
        Quat q = EulerToQuat({a, 2 * a, -a});
        control->GetPositionController()->SetValue(t, p);
        GetRealRotationController(control)->SetValue(t, q);
      }
    }
    AnimateOff();
  }
  static std::vector<INode*> Bones() {
    std::vector<INode*> bones;
    for (INode* node : AllNodes())
      if (dynamic_cast<BoneObject*>(node->GetBaseObject())) bones.push_back(node);
    return bones;
  }
  static std::vector<uint8_t> Bytes(const WStr& file) {
    std::ifstream in(ToUtf8(file), std::ios::binary);
    return {std::istreambuf_iterator<char>(in), {}};
  }
  TempFolder folder;
};

// Samples go into memory that was taken before the first one.
TEST_F(ExportFile, MoreSamplesTakeNoMoreAllocations) {
  BuildBiped();
  const std::vector<INode*> bones = Bones();
  const auto allocations = [&](int frames) {
    GetScene().time.range = {0, frames * 200};
    const tests::AllocCounter counter;
    EXPECT_TRUE(Build(bones));
    return counter.Count();
  };
  allocations(5);  // what is made once
  EXPECT_EQ(allocations(100), allocations(50));
}

// What comes back from the file by the library's own reader stands where the host's nodes stand.
TEST_F(ExportFile, BipedInMotionComesBackFromItsFile) {
  BuildBiped();
  INode* mesh = mesh_samples::MeshNode(mesh_samples::FullCube(2));
  mesh->SetName(L"mesh");
  std::vector<INode*> nodes = Bones();
  ASSERT_GT(nodes.size(), 60u);
  nodes.push_back(mesh);
  GetScene().time.range = {0, 20 * 200};
  const WStr first = folder.File(L"first.fbx"), second = folder.File(L"second.fbx");
  for (const int subSamples : {1, 4}) {
    options.subSamples = subSamples;
    ASSERT_TRUE(ExportFbx(nodes, first, options, report)) << ToUtf8(report.error);
    std::reverse(nodes.begin(), nodes.end());
    ASSERT_TRUE(ExportFbx(nodes, second, options, report)) << ToUtf8(report.error);
    EXPECT_EQ(folder.CountEntries(), 2u);
    EXPECT_EQ(Bytes(first), Bytes(second)) << "the order of picking shows";

    const auto scene = ReadFbx(ToUtf8(first));
    EXPECT_EQ(scene->Nodes().size(), nodes.size());
    // Ten bones and more on one another, each off by up to 1e-4 degrees where thinned, at up to two metres' reach.
    ExpectSameWorlds(*scene, nodes, subSamples, 3e-5, 3e-3);
    // No size moves in this figure; what its matrices' rounding adds must not cost a key a sample.
    for (const FbxAnimCurveNode* node : scene->Stacks()[0]->layers[0]->curveNodes) {
      if (node->property != "Lcl Scaling") continue;
      for (const FbxAnimCurve& curve : node->curves)
        EXPECT_EQ(curve.values, std::vector<float>{1}) << node->target->GetName();
    }
  }
}

TEST_F(ExportFile, LeavesTheSceneAsItWas) {
  BuildBiped();
  const std::vector<INode*> bones = Bones();
  GetScene().SelectNodeTab({bones[3], bones[1]}, true);
  GetCOREInterface()->SetTime(300);
  const auto bytes = [] {
    std::vector<uint8_t> saved;
    EXPECT_EQ(SaveSceneToBytes(GetScene(), &saved), L"");
    return saved;
  };
  const std::vector<uint8_t> before = bytes();
  const int steps = theHold.NumUndo();
  const std::vector<INode*> selection = GetScene().Selection();
  ASSERT_TRUE(ExportFbx(bones, folder.File(L"a.fbx"), options, report)) << ToUtf8(report.error);
  EXPECT_EQ(theHold.NumUndo(), steps);
  EXPECT_EQ(GetScene().Selection(), selection);
  EXPECT_EQ(GetCOREInterface()->GetTime(), 300);
  EXPECT_TRUE(bytes() == before);
}

TEST_F(ExportFile, FailureLeavesTheOldFile) {
  const WStr file = folder.File(L"a.fbx");
  std::ofstream(ToUtf8(file)) << "old";
  Bone(L"sheared", nullptr, [](TimeValue) {
    Matrix3 m;
    m.row[1].x = 1;
    return m;
  });
  EXPECT_FALSE(ExportFbx(AllNodes(), file, options, report));
  EXPECT_EQ(Bytes(file), (std::vector<uint8_t>{'o', 'l', 'd'}));
  EXPECT_FALSE(ExportFbx(AllNodes(), folder.File(L"a.fbx/b.fbx"), options, report));

  ReplaceScene(std::make_unique<Scene>());
  Bone(L"sound");
  EXPECT_FALSE(ExportFbx(AllNodes(), folder.File(L"nowhere/b.fbx"), options, report));
  EXPECT_FALSE(report.error.empty());
  EXPECT_EQ(folder.CountEntries(), 1u);
}

TEST_F(ExportFile, TheClassTakesTheOptionsThatWereUsedLast) {
  const FbxExportOptions defaults = LoadFbxExportOptions();
  EXPECT_TRUE(defaults.skeletalMesh && defaults.animation);
  EXPECT_EQ(defaults.timeSegment, 0);
  EXPECT_EQ(defaults.subSamples, 1);
  ASSERT_TRUE(SaveFbxExportOptions({false, true, 1, -3, 7, 2}));
  const FbxExportOptions loaded = LoadFbxExportOptions();
  EXPECT_TRUE(!loaded.skeletalMesh && loaded.animation);
  EXPECT_EQ((std::vector<int>{loaded.timeSegment, loaded.startFrame, loaded.endFrame, loaded.subSamples}),
            (std::vector<int>{1, -3, 7, 2}));

  TavrilonFBXExporter exporter;
  const WStr file = folder.File(L"a.fbx");
  Bone(L"bone");
  GetScene().ClearNodeSelection();
  EXPECT_FALSE(exporter.DoExport(file, true, true, report));
  EXPECT_EQ(report.error, L"No nodes are selected for export.");
  EXPECT_FALSE(exporter.DoExport(file, true, false, report));
  EXPECT_EQ(report.error, L"Unsupported FBX export options.");
  GetScene().SelectNode(AllNodes()[0]);
  EXPECT_TRUE(exporter.DoExport(file, true, true, report)) << ToUtf8(report.error);
  EXPECT_FALSE(Bytes(file).empty());
  SaveFbxExportOptions({false, false, 0, 0, 0, 1});
  EXPECT_FALSE(exporter.DoExport(file, true, true, report));
  EXPECT_EQ(report.error, L"Enable skeletal mesh or animation export.");
}

TEST_F(ExportFile, ScriptsSetOptionsAndHearWhy) {
  static int module;
  AttachLibrary(&module);
  FPInterface* interface = FindCoreInterface(L"FBXExport");
  ASSERT_NE(interface, nullptr);
  const FPInterfaceDesc& desc = interface->GetDesc();
  const auto get = [&](const wchar_t* name) {
    FPValue value;
    EXPECT_EQ(interface->Invoke(desc.FindProperty(name)->getId, 0, value, {}), FPStatus::OK);
    return value;
  };
  const auto set = [&](const wchar_t* name, FPValue value) {
    FPValue ignored;
    EXPECT_EQ(interface->Invoke(desc.FindProperty(name)->setId, 0, ignored, {&value, 1}), FPStatus::OK);
  };
  struct Row {
    const wchar_t* name;
    int getId;
    int byDefault, other;
  };
  const Row kRows[] = {
      {L"ExportSkeletalMesh", 1, 1, 0}, {L"ExportAnimation", 3, 1, 0}, {L"TimeSegment", 5, 0, 1},
      {L"StartFrame", 7, 0, 5},         {L"EndFrame", 9, 100, 6},      {L"SubSamples", 11, 1, 3},
  };
  for (const Row& row : kRows) {
    SCOPED_TRACE(ToUtf8(row.name));
    EXPECT_EQ(desc.FindProperty(row.name)->getId, row.getId);
    EXPECT_EQ(desc.FindProperty(row.name)->setId, row.getId + 1);
    EXPECT_EQ(get(row.name).ToInt(), row.byDefault);
    set(row.name, row.other);
    EXPECT_EQ(get(row.name).ToInt(), row.other);
  }
  EXPECT_EQ(desc.FindProperty(L"Error")->setId, -1);
  EXPECT_EQ(desc.FindEnum(desc.FindProperty(L"TimeSegment")->enumId)->values.size(), 2u);

  INode* arm = Bone(L"arm");
  Bone(L"arm", arm);
  GetScene().SelectNodeTab(AllNodes(), true);
  const auto exportFile = [&](const WStr& file) {
    const FPValue name = file;
    FPValue done;
    EXPECT_EQ(interface->Invoke(desc.FindFunction(L"ExportFile")->id, 0, done, {&name, 1}), FPStatus::OK);
    return done.ToBool();
  };
  EXPECT_FALSE(exportFile(folder.File(L"a.fbx")));
  EXPECT_EQ(get(L"Error").ToWStr(), L"Enable skeletal mesh or animation export.");
  set(L"ExportAnimation", true);
  EXPECT_TRUE(exportFile(folder.File(L"a.fbx")));
  EXPECT_EQ(get(L"Error").ToWStr(), L"");
  ASSERT_NE(get(L"Log").As<FPValue::Tab>(), nullptr);
  EXPECT_EQ(get(L"Log").As<FPValue::Tab>()->size(), 1u);
  EXPECT_FALSE(Bytes(folder.File(L"a.fbx")).empty());
  static_cast<FbxExportInterface*>(interface)->Clear();
}

}  // namespace
}  // namespace tavrilon
