// SPDX-License-Identifier: MIT
// tavrilon import, export and fbx from outside.
#include "program_test.h"

namespace {

class ExchangeCommands : public ProgramTest {
 protected:
  void SetUp() override {
    ProgramTest::SetUp();
    std::filesystem::copy_file(TAVRILON_SOURCE_DIR "/examples/character_skinned.fbx", File("character.fbx"));
    std::filesystem::copy_file(TAVRILON_SOURCE_DIR "/examples/mixamo_walk.fbx", File("walk.fbx"));
    Write("junk.fbx", "junk");
    Write("cut.fbx", Read("walk.fbx").substr(0, 100000));
  }
  void Make(const std::string& arguments) { ASSERT_EQ(Run(arguments).exitCode, 0) << arguments; }
};

const Call kRefused[] = {
    {"import nope.fbx -o a.tvs", 1, "nope.fbx"},
    {"import junk.fbx -o a.tvs", 1, "junk.fbx"},
    {"import cut.fbx -o a.tvs", 1, "cut.fbx: byte "},
    {"import walk.obj -o a.tvs", 1, "No importer for this file type is installed."},
    {"import walk.fbx", 2, "--out"},
    {"import walk.fbx -o a.tvs --stack Run", 1, "Run"},
    {"import walk.fbx -o a.tvs --no-mesh --no-animation", 1, "Enable skeletal mesh or animation import."},
    {"import walk.fbx -o a.tvs --into nope.tvs", 1, "nope.tvs"},
    {"import walk.fbx -o a.tvs --unit=-1", 2, "-1"},
    {"import walk.fbx -o /no/such/folder/a.tvs", 1, "/no/such/folder/a.tvs"},
    {"export nope.tvs -o a.fbx", 1, "nope.tvs"},
    {"export walk.tvs -o a.xyz", 2, "a name that ends in .fbx"},
    {"export walk.tvs -o /no/such/folder/a.fbx", 1, "/no/such/folder"},
    {"export walk.tvs -o a.fbx --select mixamorig:Hip", 1, "did you mean \"mixamorig:Hips\"?"},
    {"export walk.tvs -o a.fbx --frames 10", 2, "give FIRST:LAST"},
    {"export walk.tvs -o a.fbx --frames 10:5", 1, "Invalid animation frame range."},
    {"export walk.tvs -o a.fbx --subsamples 0", 2, "0"},
    {"export walk.tvs -o a.fbx --no-mesh --no-animation", 1, "Enable skeletal mesh or animation export."},
    {"export walk.tvs -o a.fbx --select Body", 1, "is missing from the exported hierarchy."},
    {"export walk.tvs -o a.fbx --up x", 2, "x"},
    {"fbx info junk.fbx", 1, "junk.fbx"},
    {"fbx tree nope.fbx", 1, "nope.fbx"},
    {"fbx look walk.fbx", 2, "look"},
};

TEST_F(ExchangeCommands, RefusedWithReasonAndNothingWritten) {
  Make("import walk.fbx -o walk.tvs");
  for (const char* file : {"a.tvs", "a.fbx"}) Write(file, "old");
  for (const Call& call : kRefused) {
    Expect(call);
    for (const char* file : {"a.tvs", "a.fbx"}) EXPECT_TRUE(Read(file) == "old") << call.arguments << " wrote " << file;
  }
}

TEST_F(ExchangeCommands, TellWhatFilesHold) {
  const Call calls[] = {
      {"fbx info character.fbx", 0, "up Y, front Z, unit 1 cm, 30 frames a second"},
      {"fbx info character.fbx", 0, "3 shapes, skin of 53 bones"},
      {"fbx info walk.fbx", 0, "stack \"mixamo.com\" (current): 0 to 2 seconds"},
      {"fbx tree walk.fbx --depth 2", 0, "  Model: "},
  };
  for (const Call& call : calls) Expect(call);
  EXPECT_LT(Run("fbx tree walk.fbx --depth 1").printed.size(), 500u);
}

TEST_F(ExchangeCommands, GoInAndOut) {
  Expect({"import walk.fbx -o walk.tvs", 0, "53 bones, 1 mesh; frames 0 to 60 at 30 a second"});
  Expect({"export walk.tvs -o all.fbx --select all", 0, "walk.tvs: 54 nodes"});
  Expect({"fbx info all.fbx", 0, "up Z"});
  Make("export walk.tvs -o up.fbx --up y --frames 10:20");
  Expect({"fbx info up.fbx", 0, "up Y"});
  Expect({"fbx info up.fbx", 0, "stack \"Animation\" (current): 0.3333 to 0.6667 seconds"});
  Make("export walk.tvs -o arm.fbx --select '*LeftArm' --select '*LeftForeArm' --no-mesh");
  Expect({"import arm.fbx -o arm.tvs", 0, "2 bones; "});
  Expect({"import walk.fbx -o walk2.tvs --into arm.tvs", 0, "53 bones"});
}

TEST_F(ExchangeCommands, OptionsLeavePartsOut) {
  Expect({"import character.fbx -o a.tvs --no-mesh", 0, "53 bones, 2 helpers;"});
  // 61 frames give as many keys to what moves, one to what stands still.
  Make("import walk.fbx -o walk.tvs");
  Make("export walk.tvs -o moving.fbx");
  Expect({"fbx tree moving.fbx", 0, "KeyTime: *61"});
  Make("import walk.fbx -o still.tvs --no-animation");
  Make("export still.tvs -o still.fbx");
  EXPECT_EQ(Run("fbx tree still.fbx").printed.find("KeyTime: *61"), std::string::npos);
  Make("export walk.tvs -o bones.fbx --no-animation --select 'mixamorig:*'");
  const std::string bones = Run("fbx info bones.fbx").printed;
  for (const char* part : {"  stack ", "  mesh", "skin of"}) EXPECT_EQ(bones.find(part), std::string::npos) << part;
  Make("import walk.fbx -o inches.tvs --unit 2.54");
  Make("export inches.tvs -o inches.fbx");
  Expect({"fbx info inches.fbx", 0, "unit 2.54 cm"});
}

// Equal scenes give equal files, whenever and by whichever process they are written.
TEST_F(ExchangeCommands, FilesAreTheSameEachTime) {
  Make("import character.fbx -o c.tvs");
  Make("export c.tvs -o one.fbx --select all");
  Make("export c.tvs -o two.fbx --select all");
  EXPECT_GT(Read("one.fbx").size(), 100000u);
  EXPECT_TRUE(Read("one.fbx") == Read("two.fbx"));
}

}  // namespace
