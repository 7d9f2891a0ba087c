// SPDX-License-Identifier: MIT
#include "host/io/scene_info.h"

#include <gtest/gtest.h>

#include <QJsonDocument>
#include <QJsonObject>

#include "host/io/scene_file.h"
#include "support/scene_samples.h"

namespace corvanta {
namespace {

using namespace scene_samples;

class SceneInfoTest : public ::testing::Test {
 protected:
  void SetUp() override {
    RegisterSampleClasses();
    ResetScene();
  }
  void TearDown() override { ResetScene(); }
};

TEST_F(SceneInfoTest, CountsWhatIsThere) {
  FillSampleScene(GetScene());
  const SceneInfo info = CollectSceneInfo(GetScene());
  EXPECT_EQ(info.nodes, 3);
  EXPECT_EQ(info.nodesByKind, (std::map<std::string, int>{{"bone", 1}, {"helper", 2}}));
  EXPECT_EQ(info.depth, 2);
  EXPECT_EQ(info.hidden, 1);
  EXPECT_EQ(info.frozen, 1);
  EXPECT_EQ(info.selected, 2);
  EXPECT_EQ(info.nodesByLayer, (std::map<WStr, int>{{L"body", 0}, {L"legs", 1}}));
  EXPECT_EQ(info.nodesOnNoLayer, 2);
  EXPECT_EQ(info.classes.at(L"Sample"), 3) << "two on nodes, one of them twice, and one as an item";
  EXPECT_EQ(info.classes.at(L"SampleTransform"), 2);
  EXPECT_TRUE(info.unknownClasses.empty());
  EXPECT_EQ(info.animatedTracks, 1);
  EXPECT_EQ(info.keys, 2);
  EXPECT_EQ(info.keyRange, (Interval{0, 200}));
}

TEST_F(SceneInfoTest, TextAndJsonTellTheSame) {
  FillSampleScene(GetScene());
  const SceneInfo info = CollectSceneInfo(GetScene());
  const std::string text = SceneInfoText(info);
  EXPECT_NE(text.find("Nodes: 3 (depth 2, 1 hidden, 1 frozen, 2 selected)\n"), std::string::npos) << text;
  EXPECT_NE(text.find("  legs: 1\n"), std::string::npos) << text;
  EXPECT_NE(text.find("Time: frame 2 of -1 to 48 at 24 frames a second\n"), std::string::npos) << text;
  const QJsonObject json = QJsonDocument::fromJson(QByteArray::fromStdString(SceneInfoJson(info))).object();
  EXPECT_EQ(json["nodes"].toInt(), 3);
  EXPECT_EQ(json["nodesByLayer"].toObject()["legs"].toInt(), 1);
  EXPECT_EQ(json["lastFrame"].toDouble(), 48);
  EXPECT_EQ(json["keys"].toInt(), 2);
}

TEST_F(SceneInfoTest, AnEmptySceneHasNothing) {
  const SceneInfo info = CollectSceneInfo(GetScene());
  EXPECT_EQ(info.nodes, 0);
  EXPECT_TRUE(info.classes.empty());
  EXPECT_NE(SceneInfoText(info).find("Keys: 0 on 0 tracks\n"), std::string::npos);
}

}  // namespace
}  // namespace corvanta
