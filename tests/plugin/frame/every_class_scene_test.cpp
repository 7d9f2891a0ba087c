// SPDX-License-Identifier: MIT
// Each class of the plug-in that can be made, new and by itself, through a scene file.
#include <gtest/gtest.h>

#include "host/core/cust_attrib.h"
#include "host/io/scene_file.h"
#include "host/scene/scene.h"
#include "plugin/frame/class_table.h"

namespace tavrilon {
namespace {

using namespace corvanta;

/// Puts an object where scenes have objects of its kind.
void Place(ReferenceTarget* object) {
  INode* node = GetScene().CreateObjectNode(nullptr);
  if (auto* carried = dynamic_cast<Object*>(object))
    node->SetObjectRef(carried);
  else if (auto* modifier = dynamic_cast<Modifier*>(object))
    node->AddModifier(modifier);
  else if (auto* attrib = dynamic_cast<CustAttrib*>(object))
    node->MakeCustAttribContainer()->AppendCustAttrib(attrib);
  else if (object->SuperClassID() == kMatrixControlSuper)
    node->SetTMController(object->AsControl());
  else
    GetScene().GetTrackViewRootNode()->AddItem(object, L"item", {});
}

TEST(EveryClassScene, ComesBackAsItWas) {
  RegisterHostClasses();
  RegisterTavrilonClasses();
  int count = 0;
  for (int i = 0; const ClassDesc* desc = LibraryClassDesc(i); ++i) {
    SCOPED_TRACE(ToUtf8(desc->internalName));
    ASSERT_TRUE(ResetScene());
    ReferenceTarget* object = desc->Create();
    if (!object) continue;
    ++count;
    Place(object);
    std::vector<uint8_t> first, second;
    EXPECT_EQ(SaveSceneToBytes(GetScene(), &first), L"");
    EXPECT_EQ(LoadSceneFromBytes(first), L"");
    EXPECT_EQ(SaveSceneToBytes(GetScene(), &second), L"");
    EXPECT_TRUE(first == second);
  }
  EXPECT_GE(count, 10);
  ResetScene();
}

}  // namespace
}  // namespace tavrilon
