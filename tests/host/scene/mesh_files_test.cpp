// SPDX-License-Identifier: MIT
// Meshes, modifiers and materials through files, undo and cloning.
#include <functional>
#include <random>

#include "host/io/detail/class_shape.h"
#include "host/io/scene_file.h"
#include "host/scene/mesh_samples_test.h"

namespace corvanta {
namespace {

using namespace mesh_samples;

class MeshFilesTest : public testing_objects::SceneTest {};

std::vector<uint8_t> Saved() {
  std::vector<uint8_t> bytes;
  EXPECT_EQ(SaveSceneToBytes(GetScene(), &bytes), L"");
  return bytes;
}

template <class T>
T* ModifierOf(INode* node) {
  for (Modifier* modifier : node->Modifiers())
    if (auto* found = dynamic_cast<T*>(modifier)) return found;
  return nullptr;
}

TEST_F(MeshFilesTest, FigureComesBackFromItsFile) {
  const Figure figure = MakeFigure();
  GetScene().units = {2.54, UpAxis::Y};
  Place(figure.bones[1], TransMatrix({0, 3, 0}));
  const Mesh mesh = static_cast<MeshObject*>(figure.node->GetBaseObject())->GetMesh();
  const SkinWeights weights = figure.skin->GetWeights();
  const std::vector<Point3> points = EvaluatedMesh(figure.node, 0)->points;
  const WStr name = figure.node->GetName();
  const std::vector<uint8_t> bytes = Saved();
  ASSERT_EQ(LoadSceneFromBytes(bytes), L"");
  EXPECT_EQ(Saved(), bytes);

  INode* node = GetScene().GetINodeByName(name);
  EXPECT_EQ(static_cast<MeshObject*>(node->GetBaseObject())->GetMesh(), mesh);
  EXPECT_EQ(EvaluatedMesh(node, 0)->points, points);
  auto* skin = ModifierOf<SkinModifier>(node);
  ASSERT_EQ(skin->NumBones(), 2);
  EXPECT_EQ(skin->GetBone(1)->GetName(), L"high");
  EXPECT_EQ(skin->GetWeights(), weights);
  auto* morpher = ModifierOf<MorpherModifier>(node);
  ASSERT_EQ(morpher->NumChannels(), 1);
  EXPECT_EQ(morpher->GetChannel(0)->GetName(), L"grow");
  EXPECT_EQ(morpher->GetChannel(0)->Targets().size(), 2u);
  EXPECT_EQ(node->GetMtl()->DisplayColour(0, 5), (Colour{1, 0, 0}));
  EXPECT_EQ(GetScene().units, (UnitConfig{2.54, UpAxis::Y}));
  ResetScene();
  EXPECT_EQ(GetScene().units, UnitConfig());
}

TEST_F(MeshFilesTest, EveryEditIsUndone) {
  const Figure f = MakeFigure();
  auto* object = static_cast<MeshObject*>(f.node->GetBaseObject());
  INode* third = BoneNode(L"third");
  const struct {
    const char* name;
    std::function<void()> edit;
  } rows[] = {
      {"mesh", [&] { object->SetMesh(Share(Cube(5))); }},
      {"add a bone",
       [&] {
         f.skin->AddBone(third, TransMatrix({1, 2, 3}));
       }},
      {"add a bone, then weigh",
       [&] {
         f.skin->AddBone(third, Matrix3());
         f.skin->SetWeights(Rigid({2, 2, 2, 2}));
       }},
      {"weights", [&] { f.skin->SetWeights(Rigid({1})); }},
      {"mesh bind",
       [&] {
         f.skin->SetMeshBindTM(TransMatrix({0, 0, 9}));
       }},
      {"delete a bone", [&] { GetScene().DeleteNode(f.bones[0]); }},
      {"add a channel", [&] { f.morpher->AddChannel(L"smile")->SetWeight(0, 20); }},
      {"targets", [&] { f.morpher->GetChannel(0)->SetTargets(Targets({})); }},
      {"weight of a channel", [&] { f.morpher->GetChannel(0)->SetWeight(0, 70); }},
      {"material", [&] { f.node->SetMtl(nullptr); }},
      {"name of a material", [&] { f.node->GetMtl()->SetName(L"new"); }},
      {"material added", [&] { static_cast<MultiMaterial*>(f.node->GetMtl())->AppendSubMtl(new PhysicalMaterial); }},
  };
  const std::vector<Point3> points = EvaluatedMesh(f.node, 0)->points;
  const std::vector<uint8_t> before = Saved();
  for (const auto& row : rows) {
    SCOPED_TRACE(row.name);
    theHold.Begin();
    row.edit();
    theHold.Accept(L"Edit");
    EvaluatedMesh(f.node, 0);
    const std::vector<uint8_t> after = Saved();
    EXPECT_NE(after, before);
    ASSERT_TRUE(theHold.Undo());
    EXPECT_EQ(Saved(), before);
    EXPECT_EQ(EvaluatedMesh(f.node, 0)->points, points);
    ASSERT_TRUE(theHold.Redo());
    EXPECT_EQ(Saved(), after);
    ASSERT_TRUE(theHold.Undo());
  }
}

TEST_F(MeshFilesTest, CloneFollowsTheClonedBones) {
  const Figure f = MakeFigure();
  // The mesh first: its skin must find the bones' clones all the same.
  const std::vector<INode*> clones = GetScene().CloneNodes({f.node, f.bones[0], f.bones[1]});
  auto* skin = ModifierOf<SkinModifier>(clones[0]);
  EXPECT_EQ(skin->GetBone(0), clones[1]);
  EXPECT_EQ(skin->GetBone(1), clones[2]);
  EXPECT_EQ(clones[0]->GetMtl(), f.node->GetMtl());
  const std::vector<Point3> rest = EvaluatedMesh(f.node, 0)->points;
  EXPECT_EQ(EvaluatedMesh(clones[0], 0)->points, rest);
  Place(clones[2], TransMatrix({7, 0, 1}));
  ModifierOf<MorpherModifier>(clones[0])->GetChannel(0)->SetWeight(0, 100);
  EXPECT_NE(EvaluatedMesh(clones[0], 0)->points, rest);
  EXPECT_EQ(EvaluatedMesh(f.node, 0)->points, rest);
}

// Behind the checksums: a changed file is refused with a text, or loads, evaluates and saves like any other.
TEST_F(MeshFilesTest, ChangedFilesAreRefusedOrSound) {
  MakeFigure();
  const std::vector<uint8_t> good = Saved();
  std::vector<uint8_t> bad = good;
  std::mt19937 rng(5);
  int taken = 0, refused = 0;
  for (size_t at = 0; at < good.size(); ++at) {
    bad[at] = static_cast<uint8_t>(rng() % 2 ? good[at] ^ (1 << rng() % 8) : rng());
    if (LoadSceneFromBytes(bad, false).empty()) {
      ++taken;
      for (const Ref<INode>& node : GetScene().Nodes()) {
        const MeshState* state = EvaluatedMesh(node.Get(), 0);
        ASSERT_TRUE(!state || state->points.size() == state->mesh->points.size()) << at;
      }
      std::vector<uint8_t> again;
      ASSERT_EQ(SaveSceneToBytes(GetScene(), &again), L"") << at;
    } else {
      ++refused;
    }
    bad[at] = good[at];
  }
  EXPECT_GT(taken, 100);
  EXPECT_GT(refused, 100);
}

TEST_F(MeshFilesTest, WrongStreamsTellWhatIsWrong) {
  const auto load = [](ReferenceTarget& target, const std::function<void(ISave&)>& write) {
    const Ref<ReferenceTarget> keep(&target);
    ISave save;
    write(save);
    ILoad stream(save.Bytes());
    target.Load(stream);
    return stream.ErrorText();
  };
  const auto chunk = [](ISave& save, uint16_t id, const std::function<void()>& body) {
    save.BeginChunk(id);
    body();
    save.EndChunk();
  };
  const auto ints = [](ISave& save, const std::vector<int>& values) {
    save.Write(static_cast<uint32_t>(values.size()));
    for (const int v : values) save.Write(v);
  };
  const auto mesh = [&](std::vector<int> starts, std::vector<int> corners) {
    return load(*new MeshObject,
                [&](ISave& save) { chunk(save, 2, [&] { ints(save, starts), ints(save, corners); }); });
  };
  EXPECT_NE(mesh({0, 3}, {0, 1, 2}).find("polygon 0 uses point 0 of 0"), std::string::npos);
  EXPECT_NE(mesh({0, 2}, {0, 1}).find("polygon 0 has 2 corners"), std::string::npos);
  EXPECT_NE(mesh({0, INT32_MAX, INT32_MIN}, {}).find("polygon 1 has"), std::string::npos);
  EXPECT_NE(mesh({}, {}).find("does not start"), std::string::npos);
  const std::string skin = load(*new SkinModifier(true), [&](ISave& save) {
    chunk(save, 2, [&] { ints(save, {0, 1}), save.Write(1), save.Write(3), save.Write(0.5f); });
  });
  EXPECT_NE(skin.find("point 0 follows bone 3 of 0"), std::string::npos) << skin;
  const std::string channel = load(*new MorphChannel(true), [&](ISave& save) {
    chunk(save, 1, [&] { save.Write(std::nanf("")), ints(save, {}), ints(save, {}); });
  });
  EXPECT_NE(channel.find("percentage"), std::string::npos) << channel;
}

TEST_F(MeshFilesTest, OnlyFittingObjectsAreTaken) {
  const Figure f = MakeFigure();
  auto mesh = std::make_shared<Mesh>(Cube(1));
  mesh->corners[0] = 8;
  EXPECT_FALSE(static_cast<MeshObject*>(f.node->GetBaseObject())->SetMesh(mesh));
  EXPECT_FALSE(f.skin->SetWeights(Rigid({2})));
  EXPECT_EQ(f.skin->AddBone(f.bones[0], Matrix3()), -1) << "twice";
  EXPECT_EQ(f.skin->AddBone(nullptr, Matrix3()), -1);
  EXPECT_EQ(f.skin->AddBone(f.node, Matrix3()), -1) << "the skin's own node";
  EXPECT_EQ(f.skin->NumBones(), 2);
  MorphChannel* channel = f.morpher->GetChannel(0);
  EXPECT_FALSE(channel->SetTargets(Targets({{50, {}, {}}}))) << "nothing at 100";
  EXPECT_FALSE(channel->SetTargets(Targets({{100, {}, {}}, {100, {}, {}}})));
  EXPECT_FALSE(channel->SetTargets(Targets({{100, {2, 1}, {{}, {}}}})));
  EXPECT_FALSE(channel->SetTargets(Targets({{100, {1}, {}}})));
  EXPECT_FALSE(f.skin->AcceptsReference(1, *f.node->GetBaseObject()).value());
  EXPECT_FALSE(f.morpher->AcceptsReference(0, *f.node).value());
  EXPECT_FALSE(MayBind(*f.node, 3, *f.skin));
  EXPECT_TRUE(MayBind(*f.node, 3, *f.node->GetMtl()));
}

}  // namespace
}  // namespace corvanta
