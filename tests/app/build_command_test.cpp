// SPDX-License-Identifier: MIT
// tavrilon build from outside.
#include <QJsonArray>

#include "program_test.h"

namespace {

using BuildCommand = ProgramTest;

const Call kRefused[] = {
    {"build --type Bipde", 1, "\"Bipde\" is no type of rig; did you mean \"Biped\"?"},
    {"build --type xyzzyplugh", 1, "\"xyzzyplugh\" is no type of rig (--list-types"},
    {"build --set fingr=3", 1, "\"fingr\" is no parameter of a rig; did you mean \"fingers\"?"},
    {"build --set fingers=100", 1, "fingers: 100 is out of its range, 0 to 99"},
    {"build --set fingers=2.5", 1, "fingers: \"2.5\" is no whole number"},
    {"build --set fingers=5e30", 1, "fingers: 5e30 is out of its range"},
    {"build --set face=perhaps", 1, "face: \"perhaps\" is neither on nor off"},
    {"build --set color_1=1,2,3", 1, "color_1: \"1,2,3\" is no colour"},
    {"build --set helper_size=inf", 1, "helper_size: \"inf\" is no number"},
    {"build --set fingers", 2, "--set fingers: give NAME=VALUE"},
    {"build --point l_hnd_1=0,0,1", 1, "\"l_hnd_1\" is no point of this Biped; did you mean \"l_hand_1\"?"},
    {"build --point spine_bone_1=0,0,1", 1, "it stands between its neighbours"},
    {"build --point l_hand_1=0,1", 2, "give NAME=X,Y,Z"},
    {"build --point l_hand_1=0,nan,1", 2, "give NAME=X,Y,Z"},
    {"build --height tall", 2, "tall"},
    {"build --template nope.rig", 1, "\"nope.rig\": there is no such file"},
    {"build --template junk.rig", 1, "junk.rig: the file is cut short"},
    {"build -o /no/such/folder/rig.tvs", 1, "\"/no/such/folder/rig.tvs\": its folder does not exist"},
    {"build --save-template /no/such/folder/a.rig", 1, "\"/no/such/folder/a.rig\": its folder does not exist"},
    {"build --png /no/such/folder/a.png", 1, "/no/such/folder"},
};

TEST_F(BuildCommand, RefusesWithReason) {
  Write("junk.rig", "junk");
  for (const Call& call : kRefused) Expect(call);
}

TEST_F(BuildCommand, RefusedLeavesFilesUntouched) {
  Write("junk.rig", "junk");
  for (const char* file : {"a.tvs", "a.rig", "a.png"}) Write(file, "old");
  for (const char* mistake : {"--template junk.rig", "--set fingr=3", "--point nowhere=0,0,0", "--type Bipde"}) {
    SCOPED_TRACE(mistake);
    EXPECT_EQ(Run(std::string("build -o a.tvs --save-template a.rig --png a.png ") + mistake).exitCode, 1);
    for (const char* file : {"a.tvs", "a.rig", "a.png"}) EXPECT_EQ(Read(file), "old") << file;
  }
}

TEST_F(BuildCommand, WritesWhatItTells) {
  const QJsonObject json =
      RunForJson("build --name Ada --height 168 -o a.tvs --save-template a.rig --png a.png --check-rest-pose --json");
  EXPECT_EQ(json["type"].toString(), "Biped");
  EXPECT_EQ(json["name"].toString(), "Ada");
  EXPECT_EQ(json["height"].toDouble(), 168);
  EXPECT_TRUE(json["rest_pose"].toObject()["ok"].toBool());
  // A biped has more than fifty joints, whatever else its options add.
  for (const char* kind : {"controls", "bones"}) EXPECT_GT(json[kind].toInt(), 50) << kind;
  ASSERT_EQ(json["files"].toArray().size(), 3);
  for (const QJsonValue& file : json["files"].toArray()) EXPECT_GT(Read(file.toString().toStdString()).size(), 1000u);
  Write("height.cvs", "loadScene \"a.tvs\"\nformat \"%\" (fixed $Ada_head_end.pos.z 3)");
  EXPECT_EQ(Run("run height.cvs").printed, "168.000");
}

TEST_F(BuildCommand, TellsTheSameForPeople) {
  const Outcome outcome = Run("build --type Head --name Bo --check-rest-pose -o bo.tvs");
  EXPECT_EQ(outcome.exitCode, 0);
  for (const char* piece : {"Head \"Bo\", 100 units high: ", " controls, ", "rest pose: OK, ", "wrote bo.tvs\n"})
    EXPECT_NE(outcome.printed.find(piece), std::string::npos) << piece << " in " << outcome.printed;
}

// A point of the sixth finger is there once the count has made it, in whatever order the options come.
TEST_F(BuildCommand, CountsComeBeforePoints) {
  EXPECT_EQ(Run("build --point l_finger_6_1=0.5,0.1,0.8 --set fingers=6").exitCode, 0);
  EXPECT_EQ(Run("build --point l_finger_6_1=0.5,0.1,0.8").exitCode, 1);
}

TEST_F(BuildCommand, TemplateComesBackAsItWas) {
  ASSERT_EQ(
      Run("build --type Quadruped --name Rex --set tails=2 --point head=0,-0.5,0.9 --save-template a.rig").exitCode, 0);
  ASSERT_EQ(Run("build --template a.rig --save-template b.rig").exitCode, 0);
  EXPECT_EQ(Read("a.rig"), Read("b.rig"));
  Expect({"build --template a.rig --type Biped", 1, "a.rig: it is the template of a Quadruped, not of a Biped"});
  Expect({"build --template a.rig --type quadruped --set tails=1", 0, "\"Rex\""});
}

TEST_F(BuildCommand, TemplatePointsMoveControls) {
  ASSERT_EQ(Run("build --height 100 --point head=0,0.125,0.875 -o a.tvs").exitCode, 0);
  Write("head.cvs",
        "loadScene \"a.tvs\"\np = $Rig_head.pos\nformat \"% % %\" (fixed p.x 3) (fixed p.y 3) (fixed p.z 3)");
  EXPECT_EQ(Run("run head.cvs").printed, "0.000 12.500 87.500");
}

TEST_F(BuildCommand, CutTemplatesAreRefused) {
  ASSERT_EQ(Run("build --save-template whole.rig").exitCode, 0);
  const std::string whole = Read("whole.rig");
  for (size_t share = 1; share < 8; ++share) {
    Write("cut.rig", whole.substr(0, whole.size() * share / 8));
    Expect({"build --template cut.rig", 1, "cut.rig"});
  }
}

TEST_F(BuildCommand, Lists) {
  Expect({"build --list-types", 0, "Quadruped\n"});
  Expect({"build --list-params", 0, "fingers "});
  Expect({"build --list-points --set fingers=1", 0, "l_finger_1_end\n"});
  EXPECT_EQ(Run("build --list-points --set fingers=1").printed.find("l_finger_2_1"), std::string::npos);
}

}  // namespace
