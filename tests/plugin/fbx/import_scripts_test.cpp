// SPDX-License-Identifier: MIT
// The import as scripts reach it.
#include "host/script/execute.h"
#include "import_scenes_test.h"
#include "plugin/fbx/fbx_import_interface.h"
#include "plugin/frame/library.h"

namespace tavrilon::import_test {
namespace {

class ImportScripts : public ImportTest {
 protected:
  void SetUp() override {
    ImportTest::SetUp();
    AttachLibrary(nullptr);
    SetScriptListener([this](std::wstring_view text) { output_ += text; });
  }
  void TearDown() override {
    SetScriptListener(nullptr);
    for (const wchar_t* name : {L"Skin", L"ScaleConversion", L"ScaleFactor"}) SetFBXImporterParam(name, L"");
    Run(L"FBXImport.ImportSkeletalMesh = true\nFBXImport.ImportAnimation = true\nFBXImport.Stack = \"\"");
    ImportTest::TearDown();
  }
  /// What it printed, or its error.
  std::string Run(const WStr& text) {
    output_.clear();
    WStr script = text;
    const WStr folder = FromUtf8(TAVRILON_SOURCE_DIR "/examples/");
    for (size_t at; (at = script.find(L"DATA/")) != WStr::npos;) script.replace(at, 5, folder);
    const ScriptOutcome outcome = RunScript(script, L"test");
    return ToUtf8(outcome.ok ? output_ : outcome.report);
  }
  WStr output_;
};

TEST_F(ImportScripts, TheInterfaceAnswersPlainly) {
  EXPECT_EQ(Run(L"print FBXImport.ImportSkeletalMesh FBXImport.ImportAnimation FBXImport.Stack"), "true true \n");
  EXPECT_EQ(Run(L"print (FBXImport.ImportFile \"DATA/mixamo_walk.fbx\") FBXImport.Error"), "true \n");
  EXPECT_NE(GetScene().GetINodeByName(L"mixamorig:Hips"), nullptr);
  EXPECT_EQ(Run(L"FBXImport.ImportSkeletalMesh = false\nFBXImport.ImportAnimation = false\n"
                L"print (FBXImport.ImportFile \"DATA/mixamo_walk.fbx\") FBXImport.Error"),
            "false Enable skeletal mesh or animation import.\n");
  EXPECT_EQ(Run(L"FBXImport.ImportAnimation = true\nFBXImport.Stack = \"swim\"\n"
                L"print (FBXImport.ImportFile \"DATA/mixamo_walk.fbx\") FBXImport.Log"),
            "false #()\n");
}

TEST_F(ImportScripts, ImportFileFindsTheClassAndTells) {
  EXPECT_EQ(Run(L"print (importFile \"DATA/mixamo_walk.fbx\" #noPrompt)").substr(0, 4), "true");
  const size_t nodes = GetScene().Nodes().size();
  EXPECT_GT(nodes, 50u);
  struct Row {
    const wchar_t* script;
    const char* part;
  };
  const Row kRows[] = {
      {L"importFile \"DATA/nowhere.fbx\" #noPrompt", "nowhere.fbx"},
      {L"importFile \"a.bvh\" #noPrompt",
       "importFile: No importer for this file type is installed. There is one for: .fbx"},
      {L"importFile \"fbx\"", "No importer for this file type is installed."},
      {L"exportFile \"a.bvh\" #noPrompt selectedOnly:true", "No exporter for this file type is installed."},
      {L"exportFile \"a.fbx\" selectedOnly:1", "true or false for selectedOnly:"},
      {L"importFile \"a.fbx\" #quick", "#noPrompt"},
      {L"importFile \"a.fbx\" selectedOnly:true", "selectedonly"},
  };
  for (const Row& row : kRows) EXPECT_NE(Run(row.script).find(row.part), std::string::npos) << Run(row.script);
  EXPECT_EQ(GetScene().Nodes().size(), nodes);
  SetProgressHook([](const WStr&, double) { return false; });
  EXPECT_EQ(Run(L"print (importFile \"DATA/mixamo_walk.fbx\")"), "false\n");
  SetProgressHook({});
}

TEST_F(ImportScripts, StoredSettingsCount) {
  Run(L"importFile \"DATA/mixamo_walk.fbx\"");
  const float height = GetScene().GetINodeByName(L"mixamorig:Hips")->GetNodeTM(0).GetTrans().z;
  EXPECT_GT(height, 50);
  for (const auto& [factor, expected] : {std::pair(L"2.0", height * 2), std::pair(L"0.5", height / 2)}) {
    ReplaceScene(std::make_unique<Scene>());
    Run(L"FBXImporterSetParam \"Skin\" false\nFBXImporterSetParam \"ScaleFactor\" " + WStr(factor) +
        L"\nimportFile \"DATA/mixamo_walk.fbx\"");
    // What keys may be off, and single precision.
    EXPECT_NEAR(GetScene().GetINodeByName(L"mixamorig:Hips")->GetNodeTM(0).GetTrans().z, expected, 1e-3);
    for (const Ref<INode>& node : GetScene().Nodes()) EXPECT_TRUE(node->Modifiers().empty());
  }
}

}  // namespace
}  // namespace tavrilon::import_test
