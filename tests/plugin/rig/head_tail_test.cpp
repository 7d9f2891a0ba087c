// SPDX-License-Identifier: MIT
// Neck, head, root bone, tails, ponytails and extras.
#include "built_rig_test.h"
#include "plugin/attributes/attributes.h"

namespace tavrilon {
namespace {

using namespace rig_param;

float Angle(const Matrix3& a, const Matrix3& b) {
  const float trace = Dot(a.GetRow(0), b.GetRow(0)) + Dot(a.GetRow(1), b.GetRow(1)) + Dot(a.GetRow(2), b.GetRow(2));
  return std::acos(std::clamp((trace - 1) / 2, -1.0f, 1.0f)) / kDegToRad;
}

TEST_F(BuiltRigTest, TheHeadKeepsItsDirectionByWeight) {
  Build(RigType::Biped);
  const Matrix3 rest = TM(L"head");
  ParamBlock2* attrib = FindAttrib(Node(L"head"), TavrilonClass::HeadAttrib);
  ASSERT_NE(attrib, nullptr);
  // acos of a value near one is good to a few hundredths of a degree.
  constexpr float kDegrees = 0.1f;
  Turn(L"fk_spine_1", {1, 0, 0}, 40);
  EXPECT_LT(Angle(TM(L"head"), rest), kDegrees) << "full weight: it looks where it looked";
  EXPECT_GT(Length(Place(L"head") - rest.GetTrans()), 5) << "and goes with the spine";
  attrib->SetValue(head_attrib::kRotationSpace, 0, 0.5f);
  EXPECT_NEAR(Angle(TM(L"head"), rest), 20, kDegrees);
  attrib->SetValue(head_attrib::kRotationSpace, 0, 0.0f);
  EXPECT_NEAR(Angle(TM(L"head"), rest), 40, kDegrees);
  attrib->SetValue(head_attrib::kRotationSpace, 0, 1.0f);
  Turn(L"torso", {0, 0, 1}, 30);
  EXPECT_NEAR(Angle(TM(L"head"), rest), 30, kDegrees) << "the space is the torso's";
  Turn(L"head", {0, 0, 1}, 25);
  EXPECT_NEAR(Angle(TM(L"head"), rest), 55, kDegrees) << "its own turn goes on top";
}

TEST_F(BuiltRigTest, AShrugLiftsNoHead) {
  Build(RigType::Biped);
  const Matrix3 head = TM(L"head"), clavicle = TM(L"r_clavicle_1");
  Move(L"shoulders", {0, 0, 3});
  EXPECT_EQ(TM(L"head"), head);
  EXPECT_NEAR(TM(L"r_clavicle_1").GetTrans().z, clavicle.GetTrans().z + 3, 1e-3f);
}

TEST_F(BuiltRigTest, ALongNeckBendsOnACurve) {
  Build(RigType::Quadruped, {{kNeckControls, 4}, {kNeckBones, 8}, {kUseNeckBones, 1}});
  EXPECT_EQ(ParentName(L"bone_head"), L"Rig_bone_neck_bone_8");
  const std::vector<INode*> bones = Bones(L"neck_bone");
  ASSERT_EQ(bones.size(), 8u);
  std::vector<Point3> rest;
  for (INode* bone : bones) rest.push_back(bone->GetNodeTM(0).GetTrans());
  Turn(L"neck_3", {0, 0, 1}, 30);
  float last = -0.05f;  // the curve swings a little to the other side before the bend
  for (size_t i = 0; i < bones.size(); ++i) {
    const float moved = Length(bones[i]->GetNodeTM(0).GetTrans() - rest[i]);
    if (i > 4) {
      EXPECT_GT(moved, last) << i;
    }
    last = moved;
  }
  EXPECT_LT(Length(Bone(L"head")->GetNodeTM(0).GetTrans() - Place(L"head")), 1e-3f);
}

TEST_F(BuiltRigTest, TheRootBoneFollowsTheTorsoOverTheGround) {
  Build(RigType::Biped, {{kRootBone, 1}});
  INode* root = Bone(L"root");
  const Point3 rest = root->GetNodeTM(0).GetTrans();
  EXPECT_LT(Length(rest), 1e-3f) << "below the pelvis, on the ground";
  EXPECT_NEAR(root->GetBaseObject()->GetParamBlock()->GetFloat(BoneObject::kLength), 55, 0.01f);
  Move(L"torso", {12, -30, -6});
  EXPECT_LT(Length(root->GetNodeTM(0).GetTrans() - Point3{12, -30, 0}), 1e-3f) << "crouching is not below the ground";
  Move(L"torso", {0, 0, 16});
  EXPECT_LT(Length(root->GetNodeTM(0).GetTrans() - Point3{12, -30, 10}), 1e-3f) << "a jump is followed";
  Turn(L"torso", {0, 0, 1}, 50);
  EXPECT_NEAR(Angle(root->GetNodeTM(0), Matrix3()), 50, 0.1f);
  ParamBlock2* attrib = FindAttrib(Node(L"main"), TavrilonClass::RootAttrib);
  ASSERT_NE(attrib, nullptr);
  attrib->SetValue(root_attrib::kFollowHorizontal, 0, 0.0f);
  attrib->SetValue(root_attrib::kFollowVertical, 0, 0.0f);
  attrib->SetValue(root_attrib::kFollowTurning, 0, 0.0f);
  EXPECT_LT(Length(root->GetNodeTM(0).GetTrans()), 1e-3f);
  EXPECT_LT(Angle(root->GetNodeTM(0), Matrix3()), 0.1f);
  EXPECT_GT(Length(Bone(L"spine_bone_1")->GetNodeTM(0).GetTrans()), 20) << "the bones stay with their controls";
}

struct RowCase {
  const char* name;
  ID rows, use;
  WStr word;
  const wchar_t* parent;
};

TEST_F(BuiltRigTest, RowsBendAlongTheirControls) {
  const RowCase kRows[] = {{"tail", kTails, kUseTailBones, L"tail", L"Rig_pelvis"},
                           {"ponytail", kPonytails, kUsePonytailBones, L"ponytail", L"Rig_head"}};
  for (const RowCase& row : kRows) {
    SCOPED_TRACE(row.name);
    Build(RigType::Biped, {{row.rows, 2}, {row.use, 1}});
    EXPECT_EQ(ParentName(row.word + L"_2_1"), row.parent);
    EXPECT_EQ(ParentName(row.word + L"_2_3"), L"Rig_" + row.word + L"_2_2");
    EXPECT_NE(FindAttrib(Node(row.word + L"_1_1"), TavrilonClass::CurveAttrib), nullptr);
    const std::vector<INode*> bones = Bones(row.word + L"_1_bone"), other = Bones(row.word + L"_2_bone");
    ASSERT_EQ(bones.size(), 6u);
    ASSERT_EQ(other.size(), 6u);
    std::vector<Matrix3> rest, otherRest;
    for (INode* bone : bones) rest.push_back(bone->GetNodeTM(0));
    for (INode* bone : other) otherRest.push_back(bone->GetNodeTM(0));
    Turn(row.word + L"_1_3", {1, 0, 0}, 40);
    EXPECT_EQ(bones[0]->GetNodeTM(0).GetTrans(), rest[0].GetTrans());
    EXPECT_LT(Angle(bones[0]->GetNodeTM(0), rest[0]), 5);
    EXPECT_GT(Angle(bones[5]->GetNodeTM(0), rest[5]), 15);
    for (size_t i = 0; i < other.size(); ++i) EXPECT_EQ(other[i]->GetNodeTM(0), otherRest[i]);
    rig->ResetRig();
    Set(row.use, 0);
    rig->CreateRig();
    EXPECT_EQ(Bone(row.word + L"_1_bone_1"), nullptr);
    EXPECT_NE(Bone(row.word + L"_1_3"), nullptr);
    EXPECT_EQ(Node(L"helper_" + row.word + L"_1_curveikchain"), nullptr);
    rig->ResetRig();
    Set(row.rows, 0);
  }
}

TEST_F(BuiltRigTest, ExtrasOfBothSidesMirror) {
  ASSERT_TRUE(rig->AddExtra(L"wing", L"spine_3", kSideBoth, 3, 5, true));
  Build(RigType::Biped);
  EXPECT_EQ(ParentName(L"r_wing_1"), L"Rig_shoulders");
  EXPECT_EQ(ParentName(L"bone_r_wing_bone_1"), L"Rig_bone_spine_bone_6");
  Turn(L"r_wing_2", {0, 1, 0}, 30);
  Turn(L"l_wing_2", {0, 1, 0}, -30);
  for (int i = 1; i <= 5; ++i) {
    const WStr number = L"_wing_bone_" + std::to_wstring(i);
    const Point3 r = TM(L"bone_r" + number).GetTrans(), l = TM(L"bone_l" + number).GetTrans();
    EXPECT_LT(Length(r - Point3{-l.x, l.y, l.z}), 1e-3f) << i;
  }
}

TEST_F(BuiltRigTest, AHeadAndATailStandAlone) {
  Build(RigType::Head, {{kUseNeckBones, 1}});
  EXPECT_EQ(ParentName(L"neck_1"), L"Rig_main");
  EXPECT_EQ(ParentName(L"bone_neck_bone_1"), L"Rig_main");
  EXPECT_EQ(ToUtf8(NotAtZero()), "");
  rig->ResetRig();
  Build(RigType::Tail, {{kUseTailBones, 1}});
  EXPECT_EQ(ParentName(L"tail_1_1"), L"Rig_main");
  EXPECT_EQ(ParentName(L"bone_tail_1_bone_1"), L"Rig_main");
}

}  // namespace
}  // namespace tavrilon
