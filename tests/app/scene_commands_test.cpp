// SPDX-License-Identifier: MIT
// tavrilon info and shot on scenes, from outside.
#include <QImage>

#include "program_test.h"

namespace {

class SceneCommands : public ProgramTest {
 protected:
  void SetUp() override {
    ProgramTest::SetUp();
    ASSERT_EQ(Run("build --type Hands -o hands.tvs").exitCode, 0);
  }
  QImage Picture(const std::string& options) {
    const Outcome outcome = Run("shot hands.tvs -o picture.png " + options);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.printed;
    EXPECT_EQ(outcome.printed, "wrote picture.png\n");
    return QImage(QString::fromStdString(File("picture.png").string()));
  }
};

TEST_F(SceneCommands, InfoCounts) {
  Expect({"info hands.tvs", 0, "bone: "});
  const QJsonObject json = RunForJson("info hands.tvs --json");
  EXPECT_FALSE(json.isEmpty());
  Write("count.cvs", "loadScene \"hands.tvs\"\nformat \"%\" nodes.count");
  EXPECT_EQ(std::to_string(json["nodes"].toInt()), Run("run count.cvs").printed);
}

TEST_F(SceneCommands, PicturesHaveTheirSize) {
  const QImage picture = Picture("--size 320x200 --view front");
  EXPECT_EQ(picture.size(), QSize(320, 200));
}

// Each option changes what is seen; the same call gives the same pixels.
TEST_F(SceneCommands, PicturesDiffer) {
  const std::string same = "--size 200x200 ";
  const QImage whole = Picture(same);
  EXPECT_EQ(Picture(same + "--view persp"), whole);
  for (const char* option : {"--view front", "--view side", "--view top", "--show bones", "--show controls"})
    EXPECT_NE(Picture(same + option), whole) << option;
}

const Call kRefused[] = {
    {"info nope.tvs", 1, "\"nope.tvs\": there is no such file"},
    {"shot nope.tvs -o a.png", 1, "\"nope.tvs\": there is no such file"},
    {"info junk.tvs", 1, "\"junk.tvs\": it is not a scene file"},
    {"shot junk.tvs -o a.png", 1, "\"junk.tvs\": it is not a scene file"},
    {"shot . -o a.png", 1, "\".\""},
    {"shot hands.tvs -o /no/such/folder/a.png", 1, "/no/such/folder"},
    {"shot hands.tvs -o a.png --size 0x10", 2, "\"0x10\" is no size"},
    {"shot hands.tvs -o a.png --size 10x10x", 2, "is no size"},
    {"shot hands.tvs -o a.png --size 99999x2", 2, "is no size"},
    {"shot hands.tvs -o a.png --show contrls", 2, "did you mean \"controls\"?"},
    {"shot hands.tvs -o a.png --view sideways", 2, "sideways"},
    {"shot hands.tvs", 2, "--out"},
};

TEST_F(SceneCommands, RefuseWithReason) {
  Write("junk.tvs", "a text of some length that is no scene at all");
  for (const Call& call : kRefused) Expect(call);
  EXPECT_FALSE(std::filesystem::exists(File("a.png")));
}

TEST_F(SceneCommands, DamagedScenesLeavePicturesUntouched) {
  Write("picture.png", "old");
  std::string bytes = Read("hands.tvs");
  Write("cut.tvs", bytes.substr(0, bytes.size() / 2));
  bytes[bytes.size() / 2] = static_cast<char>(bytes[bytes.size() / 2] ^ 0x10);
  Write("flipped.tvs", bytes);
  for (const char* scene : {"cut.tvs", "flipped.tvs"}) {
    Expect({(std::string("shot ") + scene + " -o picture.png").c_str(), 1, scene});
    Expect({(std::string("info ") + scene).c_str(), 1, scene});
    EXPECT_EQ(Read("picture.png"), "old");
  }
}

}  // namespace
