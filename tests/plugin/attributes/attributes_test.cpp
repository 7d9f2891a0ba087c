// SPDX-License-Identifier: MIT
#include "plugin/attributes/attributes.h"

#include "host/core/hold.h"
#include "host/io/scene_file.h"
#include "host/scene/core_interface.h"
#include "host/scene/point_helper.h"
#include "host/script/execute.h"
#include "plugin/constraints/root_constraint.h"
#include "support/test_objects.h"

namespace tavrilon {
namespace {

using namespace corvanta;

const TavrilonClass kAttributes[] = {TavrilonClass::LimbAttrib, TavrilonClass::CurveAttrib, TavrilonClass::FootAttrib,
                                     TavrilonClass::HeadAttrib, TavrilonClass::RootAttrib,  TavrilonClass::LinkAttrib};

class AttributesTest : public testing_objects::SceneTest {
 protected:
  void SetUp() override {
    SceneTest::SetUp();
    RegisterTavrilonClasses();
    control = GetScene().CreateObjectNode(new PointHelper);
    control->SetName(L"control");
  }
  std::vector<uint8_t> Bytes() {
    std::vector<uint8_t> bytes;
    EXPECT_EQ(SaveSceneToBytes(GetScene(), &bytes), L"");
    return bytes;
  }
  /// What the script's last value prints as; its error when it fails.
  std::string Run(const wchar_t* text) {
    const ScriptOutcome outcome = RunScript(text, L"test");
    return ToUtf8(outcome.ok ? outcome.text : outcome.message);
  }
  INode* control = nullptr;
};

TEST_F(AttributesTest, EachIsAddedOnceAndUndone) {
  const auto before = Bytes();
  for (const TavrilonClass attrib : kAttributes) {
    SCOPED_TRACE(ToUtf8(DescOf(attrib).className));
    EXPECT_EQ(FindAttrib(control, attrib), nullptr);
    ParamBlock2* block = AddAttrib(control, attrib);
    ASSERT_NE(block, nullptr);
    EXPECT_EQ(FindAttrib(control, attrib), block);
    EXPECT_EQ(AddAttrib(control, attrib), block) << "there already";
    const auto after = Bytes();
    ASSERT_TRUE(theHold.Undo());
    EXPECT_EQ(FindAttrib(control, attrib), nullptr);
    EXPECT_TRUE(Bytes() == before);
    ASSERT_TRUE(theHold.Redo());
    EXPECT_TRUE(Bytes() == after);
    theHold.Undo();
  }
  EXPECT_EQ(AddAttrib(nullptr, TavrilonClass::LimbAttrib), nullptr);
  EXPECT_EQ(AddAttrib(control, TavrilonClass::RigControl), nullptr) << "no attribute";
  EXPECT_EQ(FindAttrib(nullptr, TavrilonClass::LimbAttrib), nullptr);
}

// Controls of a mirrored pair share their object; their settings are their own.
TEST_F(AttributesTest, RideOnTheNodeNotOnItsObject) {
  INode* mirror = GetScene().CreateObjectNode(control->GetObjectRef());
  AddAttrib(control, TavrilonClass::FootAttrib);
  EXPECT_EQ(FindAttrib(mirror, TavrilonClass::FootAttrib), nullptr);
}

TEST_F(AttributesTest, CloneAndSceneFileKeepThem) {
  for (const TavrilonClass attrib : kAttributes) AddAttrib(control, attrib);
  FindAttrib(control, TavrilonClass::LimbAttrib)->SetValue(limb_attrib::kChainNode, 0, control);
  AnimateOn();
  FindAttrib(control, TavrilonClass::FootAttrib)->SetValue(foot_attrib::kBanking, 800, 0.5f);
  AnimateOff();
  INode* clone = GetScene().CloneNodes({control})[0];
  for (const TavrilonClass attrib : kAttributes) {
    ASSERT_NE(FindAttrib(clone, attrib), nullptr);
    EXPECT_NE(FindAttrib(clone, attrib), FindAttrib(control, attrib));
  }
  EXPECT_EQ(FindAttrib(clone, TavrilonClass::LimbAttrib)->GetINode(limb_attrib::kChainNode), clone);
  EXPECT_EQ(FindAttrib(clone, TavrilonClass::LinkAttrib)->GetINode(link_attrib::kLinkNode), clone);
  FindAttrib(clone, TavrilonClass::FootAttrib)->SetValue(foot_attrib::kBanking, 800, 1.0f);
  EXPECT_EQ(FindAttrib(control, TavrilonClass::FootAttrib)->GetFloat(foot_attrib::kBanking, 800), 0.5f);
  const auto bytes = Bytes();
  ASSERT_EQ(LoadSceneFromBytes(bytes), L"");
  EXPECT_TRUE(Bytes() == bytes);
  INode* loaded = GetScene().GetINodeByName(L"control");
  ParamBlock2* foot = FindAttrib(loaded, TavrilonClass::FootAttrib);
  ASSERT_NE(foot, nullptr);
  EXPECT_EQ(foot->GetFloat(foot_attrib::kBanking, 800), 0.5f);
  EXPECT_EQ(FindAttrib(loaded, TavrilonClass::LimbAttrib)->GetINode(limb_attrib::kChainNode), loaded);
}

// --- scripts see what the windows show

struct ScriptCase {
  const char* name;
  TavrilonClass attrib;
  const wchar_t* script;
  const char* shown;
};
const ScriptCase kScriptCases[] = {
    {"a new limb is in full IK", TavrilonClass::LimbAttrib, L"$control.ikfk_blend", "100.0"},
    {"percent", TavrilonClass::LimbAttrib, L"$control.ikfk_blend = 50.0; $control.ikfk_blend", "50.0"},
    {"stretch does not begin stretched", TavrilonClass::LimbAttrib, L"$control.auto_stretch", "0.0"},
    {"the foot breaks at 45 degrees", TavrilonClass::FootAttrib, L"fixed $control.foot_break 3", "45.000"},
    {"degrees", TavrilonClass::FootAttrib, L"$control.foot_roll = 30; fixed $control.foot_roll 3", "30.000"},
    {"lengths", TavrilonClass::RootAttrib, L"$control.ground_offset = 2.5; $control.ground_offset", "2.5"},
    {"switches", TavrilonClass::RootAttrib, L"$control.use_ground = false; $control.use_ground", "false"},
    {"texts", TavrilonClass::LinkAttrib, L"$control.link2_name = \"Chest\"; $control.link2_name", "Chest"},
    {"nodes", TavrilonClass::LinkAttrib, L"$control.link1 = $control; $control.link1.name", "control"},
    {"the chain is the rig's to set", TavrilonClass::LimbAttrib, L"$control.ikfkchain_node = $control",
     "`ikfkchain_node` is read-only"},
};

TEST_F(AttributesTest, ScriptsReachTheParameters) {
  for (const ScriptCase& row : kScriptCases) {
    SCOPED_TRACE(row.name);
    AddAttrib(control, row.attrib);
    EXPECT_EQ(Run(row.script), row.shown);
  }
}

TEST_F(AttributesTest, KeysLieInTheAttribute) {
  ParamBlock2* limb = AddAttrib(control, TavrilonClass::LimbAttrib);
  Run(L"animate on ( at time 10 ( $control.ikfk_blend = 0 ) )");
  Control* track = limb->GetController(limb_attrib::kIkfkBlend);
  ASSERT_NE(track, nullptr);
  EXPECT_EQ(track->NumKeys(), 2) << "the old value at 0, the new one";
  EXPECT_EQ(limb->GetFloat(limb_attrib::kIkfkBlend, 0), 1);
  EXPECT_EQ(limb->GetFloat(limb_attrib::kIkfkBlend, 10 * GetCOREInterface()->GetTicksPerFrame()), 0);
  EXPECT_NE(Run(L"at time 5 $control.ikfk_blend"), "100.0");
}

// A control whose controller has a parameter of the same name: an animator means the attribute.
TEST_F(AttributesTest, TheAttributeGoesBeforeTheController) {
  auto* root = new RootConstraint;
  control->SetTMController(root);
  ParamBlock2* attrib = AddAttrib(control, TavrilonClass::RootAttrib);
  Run(L"$control.follow_turning = 25");
  EXPECT_EQ(attrib->GetFloat(root_attrib::kFollowTurning), 0.25f);
  EXPECT_EQ(root->GetParamBlock()->GetFloat(RootConstraint::kFollowTurning), 1);
  Run(L"$control.controller.follow_turning = 75");
  EXPECT_EQ(attrib->GetFloat(root_attrib::kFollowTurning), 0.25f);
  EXPECT_EQ(root->GetParamBlock()->GetFloat(RootConstraint::kFollowTurning), 0.75f);
}

TEST_F(AttributesTest, ScriptsAddThem) {
  EXPECT_EQ(Run(L"addAttribute $control (FootAttrib()); $control.toe_bend = 12; (attributesOf $control).count"), "1");
  ASSERT_NE(FindAttrib(control, TavrilonClass::FootAttrib), nullptr);
  EXPECT_NEAR(FindAttrib(control, TavrilonClass::FootAttrib)->GetFloat(foot_attrib::kToeBend), 12 * kPi / 180, 1e-6f);
}

}  // namespace
}  // namespace tavrilon
