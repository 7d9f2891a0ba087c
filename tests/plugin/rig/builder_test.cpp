// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <set>

#include "host/core/class_desc.h"
#include "host/core/hold.h"
#include "host/scene/bone_object.h"
#include "host/scene/core_interface.h"
#include "plugin/controllers/rig_control.h"
#include "plugin/frame/animation_manager_mod.h"
#include "plugin/frame/class_table.h"
#include "plugin/frame/find.h"
#include "plugin/rig/rig_system.h"

namespace tavrilon {
namespace {

using namespace corvanta;

class BuilderTest : public ::testing::Test {
 protected:
  void SetUp() override {
    RegisterHostClasses();
    for (const ClassDesc& desc : kClassTable) ClassDirectory::Get().Register(&desc);
    ReplaceScene(std::make_unique<Scene>());
  }
  void TearDown() override { ReplaceScene(std::make_unique<Scene>()); }

  /// A rig without solvers, on a node of its own.
  RigSystem& MakeRig(RigType type) {
    auto* rig = new RigSystem;
    object = GetCOREInterface()->CreateObjectNode(rig);
    rig->SetType(static_cast<int>(type));
    using namespace rig_param;
    for (const ID id : {kIkfkSolvers, kIkSpine, kUseSpineBones, kReverseFoot, kUpperArmTwistBones, kForearmTwistBones,
                        kThighTwistBones, kCalfTwistBones, kCannonTwistBones, kFrontCannonTwistBones})
      rig->GetParamBlock()->SetValue(id, 0, 0);
    return *rig;
  }
  static INode* Node(const WStr& name) { return GetScene().GetINodeByName(name); }
  static std::vector<INode*> Controls() {
    std::vector<INode*> controls;
    for (const Ref<INode>& node : GetScene().Nodes())
      if (FindNodeRigControl(node.Get())) controls.push_back(node.Get());
    return controls;
  }
  INode* object = nullptr;
};

struct TypeCase {
  RigType type;
  int controls, bones;
};

// Every type builds, and what it makes rests at zero in its template's frames, mirrored left to right.
class BuilderTypes : public BuilderTest, public ::testing::WithParamInterface<RigType> {};

TEST_P(BuilderTypes, RestsAtZeroOnItsTemplate) {
  RigSystem& rig = MakeRig(GetParam());
  const float height = rig.Size();
  const PointFrames frames = rig.Frames();
  rig.CreateRig();
  ASSERT_EQ(rig.BuildError(), L"");
  ASSERT_FALSE(rig.IsActive());
  const std::vector<INode*> controls = Controls();
  ASSERT_FALSE(controls.empty());
  // Placing a control goes through a few products of matrices; places are of the order of the height.
  const float tolerance = 1e-5f * height;
  int onPoints = 0;
  for (INode* node : controls) {
    SCOPED_TRACE(ToUtf8(node->GetName()));
    RigControl& control = *FindNodeRigControl(node);
    EXPECT_FALSE(control.GetFigureMode());
    Interval valid = FOREVER;
    Point3 position;
    Quat rotation;
    ScaleValue scale;
    control.GetPositionController()->GetValue(0, position, valid, CTRL_ABSOLUTE);
    GetRealRotationController(&control)->GetValue(0, rotation, valid, CTRL_ABSOLUTE);
    control.GetScaleController()->GetValue(0, scale, valid, CTRL_ABSOLUTE);
    EXPECT_EQ(position, Point3());
    EXPECT_EQ(rotation, Quat());
    EXPECT_EQ(scale.s, (Point3{1, 1, 1}));
    EXPECT_GT(Determinant(node->GetNodeTM(0)), 0) << "a right control is reflected by its object offset only";

    const WStr tag = FindManagerMod(node)->GetParamBlock()->GetStr(AnimationManagerMod::kTags);
    EXPECT_EQ(node->GetName(), rig.RigName() + L"_" + tag);
    const int point = frames.Find(tag);
    if (point < 0) continue;
    ++onPoints;
    const Matrix3 wanted = frames.PointTM(point, height);
    for (int r = 0; r < 4; ++r)
      EXPECT_LT(Length(node->GetNodeTM(0).GetRow(r) - wanted.GetRow(r)), r == 3 ? tolerance : 1e-5f) << "row " << r;
  }
  const bool namesOnly = GetParam() == RigType::Ears || GetParam() == RigType::Face;
  EXPECT_EQ(onPoints > 0, !namesOnly);

  const Matrix3 s = ScaleMatrix({-1, 1, 1}), d = ScaleMatrix({1, 1, -1});
  for (INode* node : controls) {
    INode* mirror = FindManagerMod(node)->GetParamBlock()->GetINode(AnimationManagerMod::kMirrorNode);
    const WStr tag = FindManagerMod(node)->GetParamBlock()->GetStr(AnimationManagerMod::kTags);
    if (!mirror) {
      EXPECT_NE(tag.substr(0, 2), L"r_") << ToUtf8(tag);
      continue;
    }
    if (tag.substr(0, 2) != L"r_") continue;
    SCOPED_TRACE(ToUtf8(tag));
    EXPECT_EQ(mirror->GetName(), rig.RigName() + L"_l_" + tag.substr(2));
    EXPECT_EQ(mirror->GetBaseObject(), node->GetBaseObject()) << "a pair shares its shape";
    const Matrix3 wanted = d * mirror->GetNodeTM(0) * s;
    for (int r = 0; r < 3; ++r) EXPECT_LT(Length(node->GetNodeTM(0).GetRow(r) - wanted.GetRow(r)), 1e-5f) << r;
    const Point3 place = mirror->GetNodeTM(0).GetTrans();
    EXPECT_LT(Length(node->GetNodeTM(0).GetTrans() - Point3{-place.x, place.y, place.z}), tolerance);
  }
  for (const Ref<INode>& node : GetScene().Nodes()) {
    if (!dynamic_cast<BoneObject*>(node->GetBaseObject())) continue;
    EXPECT_EQ(node->GetLayer()->GetName(), L"Bones");
    EXPECT_LT(Length(node->GetNodeTM(0).GetTrans()), 3 * height);
  }
}

INSTANTIATE_TEST_SUITE_P(AllTypes, BuilderTypes,
                         ::testing::Values(RigType::Biped, RigType::Hands, RigType::Feet, RigType::Arms, RigType::Legs,
                                           RigType::Spine, RigType::Head, RigType::Tail, RigType::Ears,
                                           RigType::FrontLegs, RigType::BackLegs, RigType::Quadruped, RigType::Minotaur,
                                           RigType::Centaur, RigType::FrontPaws, RigType::BackPaws, RigType::InsectLeg,
                                           RigType::Insect, RigType::Face),
                         [](const auto& info) { return ToUtf8(kRigTypeNames[static_cast<int>(info.param)]); });

TEST_F(BuilderTest, BipedHasItsNamedParts) {
  RigSystem& rig = MakeRig(RigType::Biped);
  rig.CreateRig();
  // Parent of each control and of each bone, by name.
  const std::pair<const wchar_t*, const wchar_t*> kTree[] = {
      {L"Rig_torso", L"Rig_main"},
      {L"Rig_pelvis", L"Rig_torso"},
      {L"Rig_fk_spine_1", L"Rig_torso"},
      {L"Rig_fk_spine_2", L"Rig_fk_spine_1"},
      {L"Rig_shoulders", L"Rig_fk_spine_2"},
      {L"Rig_neck_1", L"Rig_torso"},
      {L"Rig_head", L"Rig_neck_1"},
      {L"Rig_r_clavicle_1", L"Rig_shoulders"},
      {L"Rig_r_upper_arm_1", L"Rig_r_clavicle_1"},
      {L"Rig_r_hand_1", L"Rig_r_forearm_1"},
      {L"Rig_l_finger_5_3", L"Rig_l_finger_5_2"},
      {L"Rig_l_thigh_1", L"Rig_pelvis"},
      {L"Rig_l_toe_1_1", L"Rig_l_foot_1"},
      {L"Rig_bone_pelvis", L"Rig_main"},
      {L"Rig_bone_fk_spine_2", L"Rig_bone_fk_spine_1"},
      {L"Rig_bone_r_clavicle_1", L"Rig_bone_fk_spine_2"},
      {L"Rig_bone_head", L"Rig_bone_neck_1"},
      {L"Rig_bone_l_calf_1", L"Rig_bone_l_thigh_1"},
      {L"Rig_bone_l_thigh_1", L"Rig_bone_pelvis"},
  };
  for (const auto& [child, parent] : kTree) {
    SCOPED_TRACE(ToUtf8(child));
    ASSERT_NE(Node(child), nullptr);
    ASSERT_NE(Node(child)->GetParentNode(), nullptr);
    EXPECT_EQ(Node(child)->GetParentNode()->GetName(), parent);
  }
  std::set<WStr> names;
  for (const Ref<INode>& node : GetScene().Nodes()) names.insert(node->GetName());
  EXPECT_EQ(names.size(), GetScene().Nodes().size()) << "no name twice";
  EXPECT_EQ(Node(L"Rig_r_hand_1")->GetWireColor(), 0xFF4000u);
  EXPECT_EQ(Node(L"Rig_r_finger_1_1")->GetWireColor(), 0xBF0000u);
  EXPECT_EQ(Node(L"Rig_r_hand_1")->GetObjOffsetScale().s, (Point3{1, 1, -1}));
  EXPECT_EQ(Node(L"Rig_l_hand_1")->GetObjOffsetScale().s, (Point3{1, 1, 1}));
}

TEST_F(BuilderTest, BonesFollowTheirControls) {
  MakeRig(RigType::Biped).CreateRig();
  INode* arm = Node(L"Rig_l_upper_arm_1");
  SetXFormPacket turn = SetXFormPacket::Rotate(AngAxis{{0, 1, 0}, 0.8f}, true, arm->GetParentTM(0), arm->GetNodeTM(0));
  arm->GetTMController()->SetValue(0, turn);
  for (const wchar_t* word : {L"upper_arm_1", L"forearm_1", L"hand_1", L"finger_2_3"}) {
    const Matrix3 control = Node(WStr(L"Rig_l_") + word)->GetNodeTM(0);
    EXPECT_EQ(Node(WStr(L"Rig_bone_l_") + word)->GetNodeTM(0), control) << ToUtf8(word);
  }
}

TEST_F(BuilderTest, TheRigGoesWhereItsObjectStands) {
  RigSystem& rig = MakeRig(RigType::Biped);
  const Matrix3 place = RotateZMatrix(0.7f) * TransMatrix({30, -20, 5});
  object->SetNodeTM(0, place);
  const Matrix3 rest = rig.Frames().PointTM(rig.FindPoint(L"hand", kSideLeft, 0), rig.Size());
  rig.CreateRig();
  const Matrix3 wanted = rest * place;
  for (int r = 0; r < 4; ++r)
    EXPECT_LT(Length(Node(L"Rig_l_hand_1")->GetNodeTM(0).GetRow(r) - wanted.GetRow(r)), 1e-3f);
  for (INode* node : Controls()) {
    Point3 p;
    Interval valid = FOREVER;
    FindNodeRigControl(node)->GetPositionController()->GetValue(0, p, valid, CTRL_ABSOLUTE);
    EXPECT_EQ(p, Point3());
  }
}

TEST_F(BuilderTest, CreateAndResetAreOneStepEach) {
  RigSystem& rig = MakeRig(RigType::Biped);
  theHold.Flush();
  rig.ResetRig();
  EXPECT_EQ(theHold.NumUndo(), 0) << "nothing to reset";
  rig.CreateRig();
  rig.CreateRig();
  EXPECT_EQ(theHold.NumUndo(), 1);
  const size_t built = GetScene().Nodes().size();
  EXPECT_GT(built, 100u);
  theHold.Undo();
  EXPECT_EQ(GetScene().Nodes().size(), 1u);
  EXPECT_TRUE(rig.IsActive());
  EXPECT_EQ(rig.GetParamBlock()->Count(rig_param::kNodes), 0);
  EXPECT_TRUE(GetScene().Layers().empty());
  theHold.Redo();
  EXPECT_EQ(GetScene().Nodes().size(), built);
  EXPECT_EQ(rig.OwnedNodes().size(), built - 1);
  rig.ResetRig();
  EXPECT_EQ(GetScene().Nodes().size(), 1u);
  EXPECT_TRUE(rig.IsActive());
  theHold.Undo();
  EXPECT_EQ(GetScene().Nodes().size(), built);
  EXPECT_NE(Node(L"Rig_l_hand_1")->GetParentNode(), GetScene().GetRootNode());
}

struct OptionCase {
  const char* name;
  rig_param::ID option;
  int value;
  std::vector<const wchar_t*> there, gone;
};

TEST_F(BuilderTest, OptionsChangeWhatTheySay) {
  using namespace rig_param;
  const OptionCase kOptions[] = {
      {"no fingers", kFingers, 0, {L"Rig_l_hand_1"}, {L"Rig_l_finger_1_1", L"Rig_bone_l_finger_1_1"}},
      {"metacarpals", kMetacarpals, 1, {L"Rig_l_metacarpal_2", L"Rig_bone_r_metacarpal_5"}, {}},
      {"end bones", kEndBones, 1, {L"Rig_bone_l_finger_3_end"}, {L"Rig_l_finger_3_end"}},
      {"two pairs of arms", kArmPairs, 2, {L"Rig_r_hand_2", L"Rig_r_finger2_1_1"}, {}},
      {"no head", kHeads, 0, {L"Rig_shoulders", L"Rig_l_clavicle_1"}, {L"Rig_head", L"Rig_neck_1"}},
      {"five spine controls", kSpineControls, 5, {L"Rig_fk_spine_4"}, {L"Rig_fk_spine_5"}},
      {"two tails", kTails, 2, {L"Rig_tail_2_3", L"Rig_bone_tail_1_1"}, {L"Rig_tail_3_1"}},
      {"ponytail", kPonytails, 1, {L"Rig_ponytail_1_3"}, {}},
      {"root bone", kRootBone, 1, {L"Rig_bone_root"}, {}},
      {"fangs", kFangs, 1, {L"Rig_r_fang_1", L"Rig_l_fang_2", L"Rig_l_mouth_1"}, {}},
      {"no legs", kLegPairs, 0, {L"Rig_pelvis"}, {L"Rig_l_thigh_1"}},
  };
  for (const OptionCase& option : kOptions) {
    SCOPED_TRACE(option.name);
    ReplaceScene(std::make_unique<Scene>());
    RigSystem& rig = MakeRig(RigType::Biped);
    rig.GetParamBlock()->SetValue(option.option, 0, option.value);
    rig.CreateRig();
    for (const wchar_t* name : option.there) EXPECT_NE(Node(name), nullptr) << ToUtf8(name);
    for (const wchar_t* name : option.gone) EXPECT_EQ(Node(name), nullptr) << ToUtf8(name);
  }
}

TEST_F(BuilderTest, RootBoneCarriesAllBones) {
  RigSystem& rig = MakeRig(RigType::Biped);
  rig.GetParamBlock()->SetValue(rig_param::kRootBone, 0, true);
  rig.CreateRig();
  for (const Ref<INode>& node : GetScene().Nodes()) {
    if (!dynamic_cast<BoneObject*>(node->GetBaseObject()) || node->GetName() == L"Rig_bone_root") continue;
    EXPECT_NE(dynamic_cast<BoneObject*>(node->GetParentNode()->GetBaseObject()), nullptr) << ToUtf8(node->GetName());
  }
}

TEST_F(BuilderTest, WhatIsLeftOutIsSaid) {
  RigSystem& bare = MakeRig(RigType::Biped);
  bare.CreateRig();
  EXPECT_EQ(bare.BuildNotes().size(), 1u) << "the panel only";
  auto* full = new RigSystem;
  GetCOREInterface()->CreateObjectNode(full);
  full->GetParamBlock()->SetValue(rig_param::kFace, 0, true);
  full->CreateRig();
  ASSERT_EQ(full->BuildNotes().size(), 2u);
  EXPECT_EQ(full->BuildNotes()[0].substr(0, 5), L"face:");
}

TEST_F(BuilderTest, ExtrasHangOnTheirPoints) {
  RigSystem& rig = MakeRig(RigType::Biped);
  ASSERT_TRUE(rig.AddExtra(L"wing", L"spine_2", kSideBoth, 3, 2, false));
  ASSERT_TRUE(rig.AddExtra(L"belt", L"pelvis", kSideCenter, 1, 2, false));
  rig.CreateRig();
  ASSERT_NE(Node(L"Rig_r_wing_3"), nullptr);
  EXPECT_EQ(Node(L"Rig_l_wing_1")->GetParentNode()->GetName(), L"Rig_fk_spine_2");
  EXPECT_EQ(Node(L"Rig_belt_1")->GetParentNode()->GetName(), L"Rig_pelvis");
}

// Acceptance numbers of a Biped of 100 units.
TEST_F(BuilderTest, BipedMeasures) {
  RigSystem& rig = MakeRig(RigType::Biped);
  rig.GetParamBlock()->SetValue(rig_param::kReverseFoot, 0, true);  // the pivots belong to the box
  rig.CreateRig();
  const auto distance = [&](const wchar_t* a, const wchar_t* b) {
    return Length(Node(a)->GetNodeTM(0).GetTrans() - Node(b)->GetNodeTM(0).GetTrans());
  };
  EXPECT_NEAR(Node(L"Rig_main")->GetBaseObject()->GetParamBlock()->GetFloat(3), 72.96f, 0.005f);  // two decimals given
  EXPECT_NEAR(distance(L"Rig_l_upper_arm_1", L"Rig_l_forearm_1"), 17.35f, 0.005f);
  EXPECT_NEAR(distance(L"Rig_l_forearm_1", L"Rig_l_hand_1"), 14.07f, 0.005f);
  EXPECT_NEAR(distance(L"Rig_l_thigh_1", L"Rig_l_calf_1"), 23.66f, 0.005f);
  EXPECT_NEAR(distance(L"Rig_l_calf_1", L"Rig_l_foot_1"), 24.06f, 0.005f);
}

TEST_F(BuilderTest, FigureModeMovesThePairAndKeepsRest) {
  MakeRig(RigType::Biped).CreateRig();
  INode* left = Node(L"Rig_l_forearm_1");
  INode* right = Node(L"Rig_r_forearm_1");
  FindNodeRigControl(left)->SetFigureMode(true);
  EXPECT_TRUE(FindNodeRigControl(right)->GetFigureMode()) << "the mode is the whole rig's";
  GetScene().SelectNode(left);
  Matrix3 moved = left->GetNodeTM(0);
  moved.Translate({0, 0, 4});
  left->SetNodeTM(0, moved);
  FindNodeRigControl(left)->SetFigureMode(false);
  const Point3 l = left->GetNodeTM(0).GetTrans(), r = right->GetNodeTM(0).GetTrans();
  EXPECT_LT(Length(r - Point3{-l.x, l.y, l.z}), 1e-3f);
}

}  // namespace
}  // namespace tavrilon
