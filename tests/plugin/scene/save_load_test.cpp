// SPDX-License-Identifier: MIT
// Saving and loading is the identity: for scenes of random edits, and for every class that can be created.
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

void Perform(uint64_t seed, int edits, const std::vector<EditRow>& table) {
  Dice dice(seed);
  for (int i = 0; i < edits; ++i) {
    const EditRow& row = table[static_cast<size_t>(dice.Int(static_cast<int>(table.size())))];
    SCOPED_TRACE(row.name);
    Dice own(dice.Next());
    row.run(own);
  }
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
        << Tell(node.Get()) << ", controller " << Tell(node->GetTMController());
  }
  if (SceneBytes() != before) FAIL() << FirstDifference(before);
}

class SaveLoad : public SceneTest, public testing::WithParamInterface<uint64_t> {};

// Nothing is recorded here: the same edits run on the way without undo.
TEST_P(SaveLoad, KeepsScenesOfRandomEdits) {
  Perform(GetParam(), StoryLength(600), SceneEdits());
  ExpectSameAfterLoad();
}

TEST_P(SaveLoad, KeepsScenesWithRigs) {
  Perform(GetParam(), StoryLength(200), RigEdits());
  ExpectSameAfterLoad();
}

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
