// SPDX-License-Identifier: MIT
// Template files as a rig reads and writes them.
#include "../../host/io/temp_folder_test.h"
#include "host/io/atomic_file.h"
#include "host/io/file_dialog.h"
#include "plugin/rig/rig_file.h"
#include "rig_system_test.h"

namespace tavrilon {
namespace {

using namespace rig_param;

class RigTemplateFile : public RigSystemTest {
 protected:
  RigTemplateFile() { setenv("TAVRILON_CONFIG_DIR", (folder.Path() / "config").c_str(), 1); }
  ~RigTemplateFile() override { unsetenv("TAVRILON_CONFIG_DIR"); }
  RigSystem* AddRig() {
    auto* other = new RigSystem;
    GetScene().CreateObjectNode(other);
    return other;
  }
  TempFolder folder;
  const WStr path = folder.File(L"häger.rig");
};

TEST_F(RigTemplateFile, SavedAndLoadedIsTheSameTemplate) {
  rig->SetType(static_cast<int>(RigType::Centaur));
  Set(kSpineControls, 5);
  Set(kUseTailBones, 1);
  block().SetValue(kRigName, 0, L"Nessos");
  block().SetValue(kHelperSize, 0, 231.5f);
  block().SetValue(kColor3, 0, Colour{.5f, .25f, 1});
  rig->SetPointPos(L"r_upper_arm_1", {-.2f, -.1f, .9f});
  rig->AddExtra(L"cape", L"spine_5", kSideCenter, 4, 7, true);
  rig->SetPointPos(L"cape_2", {0, .5f, .6f});
  ASSERT_TRUE(rig->Save(path));
  RigSystem* other = AddRig();
  const RigLoadReport report = other->LoadTemplate(path);
  EXPECT_EQ(report.error, L"");
  EXPECT_EQ(report.skipped, 0);
  for (const RigParamRow& row : kRigParamRows) {
    const ParamID id = static_cast<ParamID>(row.id);
    SCOPED_TRACE(ToUtf8(row.label));
    if (row.kind == RigParamKind::Colour) {
      EXPECT_EQ(other->Block().GetColour(id), rig->Block().GetColour(id));
    } else if (row.kind == RigParamKind::Text) {
      EXPECT_EQ(other->Block().GetStr(id), rig->Block().GetStr(id));
    } else if (row.kind != RigParamKind::NodeTab) {
      EXPECT_EQ(other->Block().GetFloat(id), rig->Block().GetFloat(id));
      EXPECT_EQ(other->Block().GetInt(id), rig->Block().GetInt(id));
    }
  }
  EXPECT_EQ(other->Extras(), (std::vector<RigExtra>{{L"cape", L"spine_5", kSideCenter, 4, 2, false}}));
  // The bones of the extra are the only points that a file does not bring back.
  for (const WStr& name : report.unknownPoints) EXPECT_EQ(name.substr(0, 9), L"cape_bone");
  for (const RigPoint& point : rig->Points()) {
    if (point.name.substr(0, 9) == L"cape_bone") continue;
    const int i = other->FindPoint(point.name);
    ASSERT_GE(i, 0) << ToUtf8(point.name);
    if (!point.IsInBetween()) {
      EXPECT_EQ(other->Points()[static_cast<size_t>(i)].position, point.position);
    }
  }
}

TEST_F(RigTemplateFile, LoadsIntoAnotherTypeAndUndoesInOneStep) {
  rig->SetType(static_cast<int>(RigType::Quadruped));
  ASSERT_TRUE(rig->Save(path));
  rig->SetType(static_cast<int>(RigType::Insect));
  rig->AddExtra(L"stinger", L"pelvis", kSideCenter, 1, 2, false);
  theHold.Flush();
  const std::vector<uint8_t> before = SceneBytes();
  EXPECT_TRUE(rig->Load(path));
  EXPECT_EQ(rig->Type(), RigType::Quadruped);
  EXPECT_TRUE(Has(L"l_cannon_1") && !Has(L"l_coxa_1"));
  EXPECT_EQ(rig->GetNumExtras(), 0);
  EXPECT_EQ(theHold.UndoName(), L"Load Rig Template");
  const std::vector<uint8_t> after = SceneBytes();
  ASSERT_TRUE(theHold.Undo());
  EXPECT_EQ(SceneBytes(), before);
  ASSERT_TRUE(theHold.Redo());
  EXPECT_EQ(SceneBytes(), after);
}

TEST_F(RigTemplateFile, PointsThatTheTemplateLacksAreListed) {
  RigFile file;
  file.points = {{L"head", {0, .1f, .95f}}, {L"third_eye", {1, 2, 3}}};
  file.params = {{kSpineControls, 6, 500, 0, {}, L""},  // beyond its range
                 {kHelperType, 2, 77, 0, {}, L""},      // no such type
                 {kFingers, 1, 0, 0, {}, L"many"},      // a text for a number
                 {kActive, 4, 0, 0, {}, L""},
                 {999, 6, 1, 0, {}, L""}};  // not for files; unknown
  ASSERT_EQ(WriteFileAtomically(path, WriteRigFile(file)), L"");
  const RigLoadReport report = rig->LoadTemplate(path);
  EXPECT_EQ(report.error, L"");
  EXPECT_EQ(report.unknownPoints, std::vector<WStr>{L"third_eye"});
  EXPECT_EQ(report.skipped, 4);
  EXPECT_EQ(rig->GetPointPos(L"head"), (Point3{0, .1f, .95f}));
  EXPECT_EQ(block().GetInt(kSpineControls), 99);
  EXPECT_EQ(rig->Type(), RigType::Biped);
  EXPECT_TRUE(rig->IsActive());
}

TEST_F(RigTemplateFile, UnreadableFilesChangeNothing) {
  const std::vector<uint8_t> before = SceneBytes();
  EXPECT_FALSE(rig->Load(folder.File(L"missing.rig")));
  EXPECT_NE(rig->LastLoad().error.find(L"missing.rig"), WStr::npos);
  ASSERT_EQ(WriteFileAtomically(path, std::vector<uint8_t>(100, 7)), L"");
  EXPECT_FALSE(rig->Load(path));
  EXPECT_NE(rig->LastLoad().error.find(path), WStr::npos) << ToUtf8(rig->LastLoad().error);
  EXPECT_EQ(SceneBytes(), before);
  EXPECT_FALSE(theHold.Undo()) << "no undo step either";
  EXPECT_FALSE(rig->Save(folder.File(L"no/such/folder.rig")));
}

TEST_F(RigTemplateFile, DialogsAskAndRememberTheFolder) {
  QueueFileDialogAnswer(folder.File(L"named"));
  EXPECT_TRUE(rig->SaveDlg());
  EXPECT_EQ(FileDialogFolder(L"RigSystemHistory"), FromUtf8(folder.Path().string()));
  rig->SetPointPos(L"head", {0, .3f, .9f});
  QueueFileDialogAnswer(folder.File(L"named.rig"));
  EXPECT_TRUE(rig->LoadDlg());
  EXPECT_NE(rig->GetPointPos(L"head"), (Point3{0, .3f, .9f}));
  EXPECT_FALSE(rig->LoadDlg()) << "no window and no answer: cancelled";
  EXPECT_FALSE(rig->SaveDlg());
}

}  // namespace
}  // namespace tavrilon
