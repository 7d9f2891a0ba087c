// SPDX-License-Identifier: MIT
// The spine: bones on a curve between FK and IK controls.
#include <cmath>

#include "built_rig_test.h"
#include "plugin/attributes/attributes.h"
#include "support/alloc_counter.h"

namespace tavrilon {
namespace {

using namespace rig_param;

/// Everything that a curve can carry is on.
void AllCurves(RigSystem& rig, bool subControls) {
  for (const ID id : {kUseSpineBones, kUseNeckBones, kUseTailBones, kUsePonytailBones})
    rig.GetParamBlock()->SetValue(static_cast<ParamID>(id), 0, 1);
  rig.GetParamBlock()->SetValue(kSubControls, 0, subControls);
  rig.GetParamBlock()->SetValue(kPonytails, 0, 2);
  rig.GetParamBlock()->SetValue(kTails, 0, 2);
}

struct CurveCase {
  RigType type;
  int spineControls, spineBones;
  bool ik, subControls;
};

class CurveBones : public BuiltRigTest, public testing::WithParamInterface<CurveCase> {};

// Every bone of a curve stands on its point of the template and looks at the next one, and no control has moved.
TEST_P(CurveBones, RestOnTheTemplate) {
  const CurveCase& c = GetParam();
  Set(kSpineControls, c.spineControls);
  Set(kSpineBones, c.spineBones);
  Set(kIkSpine, c.ik);
  Set(kNeckControls, 3);
  Set(kNeckBones, 4);
  rig->SetType(static_cast<int>(c.type));  // discards the points, which would keep their places by name
  AllCurves(*rig, c.subControls);
  const RigPoints points = rig->Points();
  std::vector<Point3> wanted;
  for (size_t i = 0; i < points.size(); ++i) wanted.push_back(rig->Places()[static_cast<int>(i)] * rig->Size());
  const int reentries = INode::ReentryCount();
  rig->CreateRig();
  ASSERT_EQ(rig->BuildError(), L"");
  EXPECT_EQ(ToUtf8(NotAtZero()), "");
  int found = 0;
  for (size_t i = 0; i < points.size(); ++i) {
    if (!points[i].IsInBetween()) continue;
    SCOPED_TRACE(ToUtf8(points[i].name));
    INode* bone = Bone(points[i].name);
    ASSERT_NE(bone, nullptr);
    ++found;
    // The curve is sampled; a ten-thousandth of the figure is what the samples miss at most.
    EXPECT_LT(Length(bone->GetNodeTM(0).GetTrans() - wanted[i]), 1e-4f * rig->Size());
    EXPECT_GT(Determinant(bone->GetNodeTM(0)), 0.99f);
    const bool chained =
        i + 1 < points.size() && points[i + 1].IsInBetween() && Bone(points[i + 1].name)->GetParentNode() == bone;
    if (!chained) continue;
    const Point3 along = Normalize(wanted[i + 1] - wanted[i]);
    // Places are off by up to a hundredth of a unit, bones are some units long.
    EXPECT_GT(Dot(along, bone->GetNodeTM(0).GetRow(0)), 0.9999f);
  }
  EXPECT_GE(found, c.spineBones);
  EXPECT_EQ(INode::ReentryCount(), reentries) << "no node asks for itself";
}

INSTANTIATE_TEST_SUITE_P(
    Figures, CurveBones,
    testing::Values(CurveCase{RigType::Biped, 3, 6, true, false}, CurveCase{RigType::Biped, 3, 6, true, true},
                    CurveCase{RigType::Biped, 3, 6, false, false}, CurveCase{RigType::Biped, 1, 3, true, false},
                    CurveCase{RigType::Biped, 1, 3, false, false}, CurveCase{RigType::Biped, 2, 1, true, false},
                    CurveCase{RigType::Biped, 7, 20, true, false}, CurveCase{RigType::Quadruped, 4, 6, true, false},
                    CurveCase{RigType::Minotaur, 3, 6, true, true}, CurveCase{RigType::Centaur, 5, 9, true, false},
                    CurveCase{RigType::Insect, 3, 6, true, false}, CurveCase{RigType::Spine, 3, 6, true, false}),
    [](const auto& info) {
      const CurveCase& c = info.param;
      return ToUtf8(kRigTypeNames[static_cast<int>(c.type)]) + std::to_string(c.spineControls) + (c.ik ? "Ik" : "Fk") +
             (c.subControls ? "Sub" : "");
    });

TEST_F(BuiltRigTest, SpineTree) {
  Build(RigType::Biped, {{kRootBone, 1}});
  const std::pair<const wchar_t*, const wchar_t*> kTree[] = {
      {L"torso", L"Rig_main"},
      {L"fk_spine_1", L"Rig_torso"},
      {L"fk_spine_2", L"Rig_fk_spine_1"},
      {L"ik_hip", L"Rig_torso"},
      {L"ik_chest", L"Rig_fk_spine_2"},
      {L"spine_2", L"Rig_fk_spine_2"},
      {L"shoulders", L"Rig_ik_chest"},
      {L"pelvis", L"Rig_torso"},
      {L"helper_ik_hip", L"Rig_ik_hip"},
      {L"helper_ik_chest", L"Rig_ik_chest"},
      {L"helper_spine_tangent_in_2", L"Rig_spine_2"},
      {L"helper_spine_curveikchain", L"Rig_torso"},
      {L"bone_torso", L"Rig_bone_root"},
      {L"bone_pelvis", L"Rig_bone_torso"},
      {L"bone_spine_bone_1", L"Rig_bone_torso"},
      {L"bone_spine_bone_6", L"Rig_bone_spine_bone_5"},
      {L"bone_neck_1", L"Rig_bone_spine_bone_6"},
      {L"bone_r_clavicle_1", L"Rig_bone_spine_bone_6"},
      {L"bone_l_thigh_twist_1", L"Rig_bone_pelvis"},
      {L"r_clavicle_1", L"Rig_shoulders"},
  };
  for (const auto& [child, parent] : kTree) EXPECT_EQ(ParentName(child), parent) << ToUtf8(child);
}

struct SpineOption {
  const char* name;
  rig_param::ID option;
  int value;
  std::vector<const wchar_t*> there, gone;
};

TEST_F(BuiltRigTest, SpineOptions) {
  const SpineOption kOptions[] = {
      {"fk spine",
       kIkSpine,
       0,
       {L"fk_spine_2", L"bone_spine_bone_6", L"helper_spine_end"},
       {L"ik_chest", L"ik_hip", L"spine_2", L"helper_ik_hip"}},
      {"a bone for each control",
       kUseSpineBones,
       0,
       {L"bone_fk_spine_1", L"bone_fk_spine_2", L"bone_pelvis"},
       {L"bone_spine_bone_1", L"bone_torso", L"ik_chest", L"helper_spine_curveikchain", L"helper_spine_end"}},
      {"sub controls", kSubControls, 1, {L"spine_sub_6", L"helper_spine_joint_1", L"bone_spine_bone_6"}, {}},
      {"nine bones", kSpineBones, 9, {L"bone_spine_bone_9"}, {L"bone_spine_bone_10"}},
      {"one control", kSpineControls, 1, {L"ik_chest", L"bone_spine_bone_6"}, {L"fk_spine_1", L"spine_1"}},
      {"five controls", kSpineControls, 5, {L"fk_spine_4", L"spine_4"}, {L"fk_spine_5", L"spine_5"}},
  };
  for (const SpineOption& option : kOptions) {
    SCOPED_TRACE(option.name);
    rig->SetType(static_cast<int>(RigType::Biped));
    HoldScope hold;
    const int before = rig->Block().GetInt(option.option);
    Set(option.option, option.value);
    rig->CreateRig();
    for (const wchar_t* name : option.there) EXPECT_NE(Node(name), nullptr) << ToUtf8(name);
    for (const wchar_t* name : option.gone) EXPECT_EQ(Node(name), nullptr) << ToUtf8(name);
    rig->ResetRig();
    Set(option.option, before);
  }
}

/// Length of the spine along its bones and on to the chest.
float SpineLength(const std::vector<INode*>& bones, const Point3& chest) {
  float length = 0;
  for (size_t i = 0; i < bones.size(); ++i)
    length += Length((i + 1 < bones.size() ? bones[i + 1]->GetNodeTM(0).GetTrans() : chest) -
                     bones[i]->GetNodeTM(0).GetTrans());
  return length;
}

TEST_F(BuiltRigTest, BendingTheFkRowKeepsTheSpinesLength) {
  Build(RigType::Biped);
  const std::vector<INode*> bones = Bones(L"spine_bone");
  ASSERT_EQ(bones.size(), 6u);
  EXPECT_NEAR(SpineLength(bones, Place(L"ik_chest")), 26.23f, 0.02f);
  Turn(L"fk_spine_1", {1, 0, 0}, 17);
  Turn(L"fk_spine_2", {1, 0, 0}, 17);
  EXPECT_NEAR(SpineLength(bones, Place(L"ik_chest")), 26.44f, 0.1f);
  // Bent evenly: no bone turns back, and none takes more than its share and a half.
  for (size_t i = 0; i + 2 < bones.size(); ++i) {
    const float cosine = Dot(bones[i]->GetNodeTM(0).GetRow(0), bones[i + 1]->GetNodeTM(0).GetRow(0));
    EXPECT_GT(cosine, std::cos(34.0f / 4 * 1.5f * kDegToRad)) << i;
  }
}

TEST_F(BuiltRigTest, MovingTheChestDragsTheMiddle) {
  Build(RigType::Biped);
  const std::vector<INode*> bones = Bones(L"spine_bone");
  std::vector<Point3> rest;
  for (INode* bone : bones) rest.push_back(bone->GetNodeTM(0).GetTrans());
  const Point3 tweak = Place(L"spine_2"), pelvis = Place(L"pelvis"), arm = Place(L"l_clavicle_1"),
               head = Place(L"head");
  Move(L"ik_chest", {6, 0, 0});
  EXPECT_NEAR(Place(L"spine_2").x - tweak.x, 3, 1e-3f) << "half-way up, half the way";
  EXPECT_LT(Length(Place(L"pelvis") - pelvis), 1e-3f);
  EXPECT_NEAR(Place(L"l_clavicle_1").x - arm.x, 6, 1e-3f);
  EXPECT_NEAR(Place(L"head").x - head.x, 6, 1e-3f);
  float last = -1e-3f;
  for (size_t i = 0; i < bones.size(); ++i) {
    const float shift = bones[i]->GetNodeTM(0).GetTrans().x - rest[i].x;
    EXPECT_GE(shift, last) << i;
    EXPECT_LT(shift, 6);
    last = shift;
  }
  EXPECT_GT(last, 3) << "above the middle";
}

TEST_F(BuiltRigTest, HipsSwingAlone) {
  Build(RigType::Biped);
  const Point3 chest = Place(L"ik_chest"), thigh = Place(L"l_thigh_1");
  Move(L"ik_hip", {0, 4, 0});
  EXPECT_LT(Length(Place(L"ik_chest") - chest), 1e-3f);
  EXPECT_LT(Length(Place(L"l_thigh_1") - thigh - Point3{0, 4, 0}), 1e-3f);
  EXPECT_LT(Length(Bone(L"pelvis")->GetNodeTM(0).GetTrans() - Place(L"pelvis")), 1e-3f);
}

// The attribute on the chest drives the solver: without auto stretch the bones keep their length.
TEST_F(BuiltRigTest, StretchAttributeDrivesTheCurve) {
  Build(RigType::Biped);
  ParamBlock2* attrib = FindAttrib(Node(L"ik_chest"), TavrilonClass::CurveAttrib);
  ASSERT_NE(attrib, nullptr);
  const std::vector<INode*> bones = Bones(L"spine_bone");
  const auto span = [&] { return Length(bones[5]->GetNodeTM(0).GetTrans() - bones[4]->GetNodeTM(0).GetTrans()); };
  const float rest = span();
  attrib->SetValue(curve_attrib::kAutoStretch, 0, 0.0f);
  EXPECT_NEAR(span(), rest, 1e-3f) << "nothing jumps";
  Move(L"ik_chest", {0, 0, 8});
  // The curve is arced a little less than before, which the straight distance of two bones shows.
  EXPECT_NEAR(span(), rest, 0.05f * rest);
  attrib->SetValue(curve_attrib::kAutoStretch, 0, 1.0f);
  EXPECT_GT(span(), 1.2f * rest);
}

TEST_F(BuiltRigTest, SubControlsMoveOneBone) {
  Build(RigType::Biped, {{kSubControls, 1}});
  const Point3 before = Bone(L"spine_bone_3")->GetNodeTM(0).GetTrans();
  const Matrix3 next = Bone(L"spine_bone_4")->GetNodeTM(0);
  Move(L"spine_sub_3", {0, -3, 0});
  EXPECT_LT(Length(Bone(L"spine_bone_3")->GetNodeTM(0).GetTrans() - before - Point3{0, -3, 0}), 1e-3f);
  EXPECT_EQ(Bone(L"spine_bone_4")->GetNodeTM(0), next);
  Turn(L"fk_spine_1", {1, 0, 0}, 30);
  EXPECT_GT(Length(Place(L"spine_sub_6") - next.GetTrans()), 1);
}

// A figure at twice the height is the same figure, twice as large; so is one whose main control is scaled.
TEST_F(BuiltRigTest, TheCurveScalesWithTheRig) {
  Build(RigType::Biped);
  FindAttrib(Node(L"ik_chest"), TavrilonClass::CurveAttrib)->SetValue(curve_attrib::kAutoStretch, 0, 0.0f);
  std::vector<Point3> rest;
  for (INode* bone : Bones(L"spine_bone")) rest.push_back(bone->GetNodeTM(0).GetTrans());
  INode* main = Node(L"main");
  main->SetNodeTM(0, ScaleMatrix({2, 2, 2}));
  size_t i = 0;
  for (INode* bone : Bones(L"spine_bone")) {
    EXPECT_LT(Length(bone->GetNodeTM(0).GetTrans() - rest[i] * 2), 0.01f) << i;
    EXPECT_NEAR(Length(bone->GetNodeTM(0).GetRow(1)), 2, 1e-3f);
    ++i;
  }
}

// A build is one step; what comes back by redo, from a file or as a copy stands and bends as the original does.
TEST_F(BuiltRigTest, TheSpineSurvivesUndoFilesAndClones) {
  theHold.Flush();
  Build(RigType::Biped, {{kRootBone, 1}, {kUseNeckBones, 1}});
  const size_t nodes = GetScene().Nodes().size();
  const Matrix3 rest = TM(L"bone_spine_bone_5");
  const auto bent = [&] {
    Turn(L"fk_spine_2", {1, 0, 0}, 20);
    const Matrix3 tm = TM(L"bone_spine_bone_5");
    Turn(L"fk_spine_2", {1, 0, 0}, -20);
    return tm;
  };
  const Matrix3 pose = bent();
  while (theHold.NumUndo() > 0) theHold.Undo();
  while (theHold.NumRedo() > 0) theHold.Redo();
  ASSERT_EQ(GetScene().Nodes().size(), nodes);
  // Turning there and back leaves a rounding.
  EXPECT_LT(Length(TM(L"bone_spine_bone_5").GetTrans() - rest.GetTrans()), 1e-3f);
  EXPECT_LT(Length(bent().GetTrans() - pose.GetTrans()), 1e-3f);

  const std::vector<uint8_t> bytes = SceneBytes();
  ASSERT_EQ(LoadSceneFromBytes(bytes), L"");
  rig = FirstRig();
  ASSERT_EQ(GetScene().Nodes().size(), nodes);
  EXPECT_LT(Length(bent().GetTrans() - pose.GetTrans()), 1e-3f);
}

TEST_F(BuiltRigTest, EvaluationAllocatesNothing) {
  rig->SetType(static_cast<int>(RigType::Biped));
  AllCurves(*rig, true);
  Set(kRootBone, 1);
  rig->CreateRig();
  INode* torso = Node(L"torso");
  const auto evaluate = [&] {
    torso->InvalidateTM();
    for (const Ref<INode>& n : GetScene().Nodes()) n->GetNodeTM(0);
  };
  evaluate();
  const tests::AllocCounter counter;
  evaluate();
  EXPECT_EQ(counter.Count(), 0u);
}

}  // namespace
}  // namespace tavrilon
