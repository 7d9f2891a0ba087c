// SPDX-License-Identifier: MIT
// Scenes of what other programs put into files, made by calls, written, imported into the host, exported, and read by a
// reader that is not ours: in the host and in the file that comes out, node by node and frame by frame against the
// closed form of the scene that was made. (The files that go in cannot be compared by that reader: it takes no pivots,
// layers, tangents, units or axes.)
#include <gtest/gtest.h>

#include "plugin/fbx/import_scenes_test.h"
#include "plugin/fbx_readers/assimp_scene.h"
#include "plugin/fbx_readers/chain_scene.h"
#include "plugin/fbx_readers/host_trip.h"

namespace tavrilon::fbx {
namespace {

using import_test::AddBone;
using import_test::AddNode;
using import_test::FrameTime;
using import_test::NewScene;

/// Every node of the host's scene on every frame from 0 to `last`, in centimetres. The host stands Z up.
Deviation CompareHost(const FbxScene& made, const FbxAnimStack* stack, const HostStage& stage, int last) {
  const WorldChange change(made, FbxAxisSystem::ZUp(), stage.centimetres);
  SceneEvaluator evaluator(made, stack);
  Deviation worst;
  for (const FbxNode* node : made.Nodes()) {
    corvanta::INode* host = corvanta::GetScene().GetINodeByName(corvanta::FromUtf8(node->GetName()));
    EXPECT_NE(host, nullptr) << node->GetName();
    for (int frame = 0; host && frame <= last; ++frame)
      worst.Add(import_test::ToAffine(host->GetNodeTM(frame * 200)), change(evaluator.World(node, FrameTime(frame))));
  }
  worst.place *= stage.centimetres;
  return worst;
}

/// Name in the file that came out, by node; the node's own where there is none.
using Renamed = std::map<const FbxNode*, std::string>;

std::string NameOf(const FbxNode* node, const Renamed& renamed) {
  const auto found = renamed.find(node);
  return found == renamed.end() ? node->GetName() : found->second;
}

/// Every node of the file on every frame from 0 to `last`, in centimetres. A node that is lost fails the test.
Deviation CompareNodes(const FbxScene& made, const FbxAnimStack* stack, const AssimpFile& file, const HostStage& stage,
                       int last, const Renamed& renamed = {}) {
  const WorldChange change(made, AxesOf(stage), stage.centimetres);
  SceneEvaluator evaluator(made, stack);
  Deviation worst;
  for (const FbxNode* node : made.Nodes()) {
    const std::string name = NameOf(node, renamed);
    const int index = file.Find(name);
    EXPECT_GE(index, 0) << name << " is lost";
    if (index < 0) continue;
    const int parent = file.nodes[static_cast<size_t>(index)].parent;
    const bool isTop = node->GetParent() == made.GetRootNode();
    EXPECT_EQ(isTop ? parent : file.Find(NameOf(node->GetParent(), renamed)), isTop ? 0 : parent) << name;
    for (int frame = 0; frame <= last; ++frame)
      worst.Add(file.World(index, frame / 30.0), change(evaluator.World(node, FrameTime(frame))));
  }
  worst.place *= stage.centimetres;
  return worst;
}

class ChainTrip : public testing::TestWithParam<int> {};

TEST_P(ChainTrip, ChainsOfTwelveBonesOnEveryFrame) {
  unsigned seed = 1 + 100 * static_cast<unsigned>(GetParam());
  for (const ChainRow& row : ChainRows()) {
    SCOPED_TRACE(testing::Message() << row.name << (row.preAndPost ? ", pre- and post-rotation" : ""));
    const auto made = MakeChain(seed++, row);
    HostTrip trip(row.stage);
    if (!trip.Run(WrittenBytes(*made, GetParam()))) continue;
    EXPECT_EQ(trip.Log().find("hear"), std::string::npos) << trip.Log();
    ExpectClose(CompareHost(*made, made->Stacks()[0], row.stage, kChainLast));
    AssimpFile file;
    ASSERT_TRUE(file.Read(trip.bytes)) << file.error;
    ExpectClose(CompareNodes(*made, made->Stacks()[0], file, row.stage, kChainLast));
  }
}

INSTANTIATE_TEST_SUITE_P(Formats, ChainTrip, testing::Values(0, 1),
                         [](const auto& info) { return info.param == 0 ? "v7400" : "v7500"; });

const ChainRow& RowNamed(const std::vector<ChainRow>& rows, const std::string& name) {
  for (const ChainRow& row : rows)
    if (name == row.name) return row;
  ADD_FAILURE() << name;
  return rows[0];
}

TEST(FeatureTrip, TheStackThatIsAskedFor) {
  const std::vector<ChainRow> rows = ChainRows();
  const auto made = MakeChain(5, RowNamed(rows, "everything"), {"walk", "run", "jump"});
  made->currentStack = "jump";
  for (const auto& [wanted, index] : {std::pair("walk", 0), {"run", 1}, {"", 2}}) {
    SCOPED_TRACE(wanted);
    HostTrip trip;
    FbxImportOptions options;
    options.stack = corvanta::FromUtf8(wanted);
    if (!trip.Run(WrittenBytes(*made), options)) continue;
    AssimpFile file;
    ASSERT_TRUE(file.Read(trip.bytes)) << file.error;
    ExpectClose(CompareNodes(*made, made->Stacks()[static_cast<size_t>(index)], file, {}, kChainLast));
  }
}

TEST(FeatureTrip, NamesStayUnlessTheyComeTwice) {
  const auto made = NewScene();
  Renamed renamed;
  FbxNode* top = AddBone(*made, "rig:hips", nullptr, {1, 2, 3});
  FbxNode* bar = AddBone(*made, "rig:hips|left", top, {4, 0, 0});
  AddBone(*made, "Model::leg", bar, {5, 0, 0});
  AddBone(*made, "\xC3\xA4 b.c-d", bar, {6, 0, 0});
  AddBone(*made, "same", top, {7, 0, 0});
  FbxNode* second = AddBone(*made, "same", bar, {8, 0, 0});
  FbxNode* third = AddNode(*made, "same", second, {9, 0, 0});
  AddBone(*made, "same_1", third, {10, 0, 0});  // was there, and keeps its name
  HostTrip trip;
  ASSERT_TRUE(trip.Run(WrittenBytes(*made)));
  EXPECT_NE(trip.Log().find("'same' is exported as 'same_2'"), std::string::npos) << trip.Log();
  renamed[second] = "same_2";
  renamed[third] = "same_3";
  AssimpFile file;
  ASSERT_TRUE(file.Read(trip.bytes)) << file.error;
  EXPECT_EQ(file.nodes.size(), made->Nodes().size() + 1);
  ExpectClose(CompareNodes(*made, nullptr, file, {}, 0, renamed));
}

TEST(FeatureTrip, WithoutAnimationTheRestPoseStands) {
  const std::vector<ChainRow> rows = ChainRows();
  const auto made = MakeChain(1, RowNamed(rows, "everything"));
  HostTrip trip;
  const corvanta::Interval range = corvanta::GetScene().time.range;
  FbxImportOptions options;
  options.animation = false;
  ASSERT_TRUE(trip.Import(WrittenBytes(*made), options)) << trip.Log();
  // Single precision over twelve matrices.
  ExpectClose(CompareHost(*made, nullptr, {}, 0), {1e-3, kFigureBounds.degrees, kFigureBounds.scale});
  for (const auto& node : corvanta::GetScene().Nodes()) EXPECT_EQ(node->GetTMController()->NumKeys(), 0);
  EXPECT_EQ(corvanta::GetScene().time.range, range);
}

// What other ways to inherit make of a turned child below a scale that differs by axis cannot be had by any node: it is
// told, and what comes out is straight.
TEST(FeatureTrip, ShearOfInheritTypesIsToldAndStraightened) {
  for (const InheritType inherit : {InheritType::RrSs, InheritType::Rrs}) {
    const auto made = NewScene();
    FbxNode* parent = AddNode(*made, "parent");
    parent->transform.scaling = {1, 3, 1};
    FbxNode* child = AddNode(*made, "child", parent, {1, 2, 3});
    child->transform.rotation = {0, 0, 30};
    child->transform.inherit = inherit;
    HostTrip trip;
    ASSERT_TRUE(trip.Run(WrittenBytes(*made)));
    EXPECT_NE(trip.Log().find("Shear cannot be kept; axes are straightened: child"), std::string::npos) << trip.Log();
  }
}

}  // namespace
}  // namespace tavrilon::fbx
