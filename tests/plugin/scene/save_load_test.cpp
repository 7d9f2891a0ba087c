// SPDX-License-Identifier: MIT
// Saving and loading is the identity: for scenes of random edits, and for every class that can be created.
#include <cstdlib>
#include <cstring>

#include "host/core/class_desc.h"
#include "host/core/cust_attrib.h"
#include "host/core/hold.h"
#include "plugin/scene/edit_picks_test.h"
#include "plugin/scene/scene_story_test.h"
#include "plugin/scene/scene_test.h"
#include "plugin/scene/scene_text_test.h"

namespace tavrilon::scene_tests {
namespace {

using namespace corvanta;

/// Edits, each followed by an evaluation, so that whatever keeps a value is caught when it is not told of a change.
std::string Perform(Dice& dice, int edits, const std::vector<EditRow>& table) {
  const std::vector<int> lots = Lots(table);
  std::string log;
  for (int i = 0; i < edits; ++i) {
    const EditRow& row = table[static_cast<size_t>(dice.Pick(lots))];
    Dice own(dice.Next());
    log += row.run(own) + "\n";
    SceneMatrices();
  }
  return log;
}

/// Saves and loads: the second save gives the same bytes, and every node stands where it stood.
void ExpectSameAfterLoad() {
  const Bytes before = SceneBytes();
  const std::vector<Matrix3> matrices = SceneMatrices();
  ASSERT_EQ(LoadSceneFromBytes(before), L"");
  const std::vector<Matrix3> loaded = SceneMatrices();
  ASSERT_EQ(matrices.size(), loaded.size());
  for (size_t i = 0; i < matrices.size(); ++i) {
    const Ref<INode>& node = GetScene().Nodes()[i % GetScene().Nodes().size()];
    ASSERT_EQ(std::memcmp(&matrices[i], &loaded[i], sizeof(Matrix3)), 0)
        << Tell(node.Get()) << ", controller " << Tell(node->GetTMController()) << ", matrix " << i;
  }
  if (SceneBytes() != before) FAIL() << FirstDifference(before);
}

class SaveLoad : public SceneTest, public testing::WithParamInterface<uint64_t> {
 protected:
  static uint64_t Seed() {
    const char* wanted = std::getenv("TAVRILON_STORY_SEED");
    return wanted ? std::strtoull(wanted, nullptr, 10) : GetParam();
  }
};

// Nothing is recorded here: the same edits run on the way without undo. Each stretch goes on in the loaded scene.
void ExpectSameAllAlong(uint64_t seed, int edits, const std::vector<EditRow>& table) {
  Dice dice(seed);
  for (constexpr int kStretch = 12; edits > 0; edits -= kStretch) {
    SCOPED_TRACE(Perform(dice, kStretch, table));
    ExpectSameAfterLoad();
    if (testing::Test::HasFailure()) return;
  }
}

TEST_P(SaveLoad, KeepsScenesOfRandomEdits) { ExpectSameAllAlong(Seed(), StoryLength(600), SceneEdits()); }
TEST_P(SaveLoad, KeepsScenesWithRigs) { ExpectSameAllAlong(Seed(), StoryLength(120), RigEdits()); }

INSTANTIATE_TEST_SUITE_P(Seeds, SaveLoad, testing::Values(1, 2, 3, 4));

/// Where objects of a super class stand in a scene. False for those that are made by the scene itself.
bool PutIntoScene(ReferenceTarget* made, INode* node) {
  if (auto* object = dynamic_cast<Object*>(made)) {
    if (dynamic_cast<DerivedObject*>(made)) return false;
    node->SetObjectRef(object);
  } else if (auto* modifier = dynamic_cast<Modifier*>(made)) {
    node->AddModifier(modifier);
  } else if (auto* attrib = dynamic_cast<CustAttrib*>(made)) {
    node->MakeCustAttribContainer()->AppendCustAttrib(attrib);
  } else if (Control* control = made->AsControl()) {
    const SClass_ID kind = made->SuperClassID();
    if (kind == kMatrixControlSuper) return node->SetTMController(control);
    if (kind == kFloatControlSuper) return node->SetVisController(control);
    for (int part = 0; part < 3; ++part)
      if (node->GetTMController()->SubAnim(part)->SuperClassID() == kind)
        return node->GetTMController()->AssignController(control, part);
    GetScene().GetTrackViewRootNode()->AddItem(control, L"item", {1, 2});
  } else {
    return false;
  }
  return true;
}

class EveryClass : public SceneTest {};

TEST_F(EveryClass, IsMadeClonedSavedLoadedAndDeleted) {
  int walked = 0;
  for (const ClassDesc* desc : ClassDirectory::Get().All()) {
    // What its creator does not keep by itself is no class for files.
    if (!desc->create || !desc->isPublic) continue;
    SCOPED_TRACE(ToUtf8(desc->className));
    ResetScene();
    for (int i = 0; i < 3; ++i) GetScene().CreateObjectNode(nullptr);
    INode* node = GetScene().Nodes()[0].Get();
    const Ref<ReferenceTarget> made(desc->Create());
    ASSERT_TRUE(made);
    if (!PutIntoScene(made.Get(), node)) continue;
    ++walked;
    Dice dice(static_cast<uint64_t>(walked));
    for (int i = 0; i < 60; ++i)
      for (const EditRow& row : {dice.Pick(kTrackEdits), dice.Pick(kParamEdits)}) row.run(dice);
    GetScene().CloneNodes({node, GetScene().Nodes()[1].Get()});
    ExpectSameAfterLoad();
    if (HasFatalFailure()) return;
    theHold.Begin();
    while (!GetScene().Nodes().empty()) GetScene().DeleteNode(GetScene().Nodes().back().Get());
    theHold.Accept(L"Delete");
    EXPECT_TRUE(theHold.Undo());
    ExpectSameAfterLoad();
  }
  EXPECT_GT(walked, 30);
}

}  // namespace
}  // namespace tavrilon::scene_tests
