// SPDX-License-Identifier: MIT
// Limbs with their solvers: what stands where at rest, that IK and FK agree, and what each option adds.
#include <set>

#include "plugin/rig/limb_rig_test.h"
#include "plugin/shapes/control_params.h"
#include "plugin/solvers/chain_params.h"
#include "plugin/solvers/ikfk_control.h"
#include "support/alloc_counter.h"

namespace tavrilon {
namespace {

// Matrices go through some ten float products with places of up to 150 units.
constexpr float kPlace = 1e-4f, kTurn = 1e-5f;

/// Options under which the rest pose must hold.
struct OptionSet {
  const char* name;
  Options options;
};
const std::vector<OptionSet>& OptionSets() {
  using namespace rig_param;
  static const std::vector<OptionSet> sets = {
      {"defaults", {}},
      {"everything",
       {{kReverseFoot, 1},
        {kBendyControls, 1},
        {kCorrectiveBones, 1},
        {kEndBones, 1},
        {kMetacarpals, 1},
        {kMetatarsals, 1},
        {kRootBone, 1},
        {kSubControls, 1}}},
      {"reverse foot", {{kReverseFoot, 1}}},
      {"two pairs", {{kArmPairs, 2}, {kLegPairs, 2}, {kReverseFoot, 1}}},
  };
  return sets;
}

class LimbTypes : public LimbRigTest, public testing::WithParamInterface<RigType> {};

TEST_P(LimbTypes, RestIsTheSameInEveryBlend) {
  for (const OptionSet& set : OptionSets()) {
    SCOPED_TRACE(set.name);
    ResetScene();
    const int guards = GuardCount() + INode::ReentryCount();
    const RigSystem& rig = Build(GetParam(), set.options);
    const PointFrames frames = rig.Frames();
    const std::vector<INode*> nodes = AllNodes();
    SetBlend(0);
    const std::vector<Matrix3> rest = Matrices(nodes);
    for (const float blend : {0.5f, 1.0f}) {
      SetBlend(blend);
      const std::vector<Matrix3> now = Matrices(nodes);
      for (size_t i = 0; i < nodes.size(); ++i) {
        SCOPED_TRACE(ToUtf8(nodes[i]->GetName()));
        EXPECT_LT(Length(now[i].GetTrans() - rest[i].GetTrans()), kPlace) << blend;
        EXPECT_LT(Turned(now[i], rest[i]), kTurn) << blend;
      }
    }
    for (INode* node : nodes) {
      RigControl* control = FindNodeRigControl(node);
      if (!control) continue;
      SCOPED_TRACE(ToUtf8(node->GetName()));
      EXPECT_FALSE(control->GetFigureMode());
      Interval valid = FOREVER;
      Point3 position;
      Quat rotation;
      ScaleValue scale;
      control->GetPositionController()->GetValue(0, position, valid, CTRL_ABSOLUTE);
      GetRealRotationController(control)->GetValue(0, rotation, valid, CTRL_ABSOLUTE);
      control->GetScaleController()->GetValue(0, scale, valid, CTRL_ABSOLUTE);
      AnimationManagerMod* manager = FindManagerMod(node);
      // Helpers are driven: what drives them gives 0 but for rounding.
      EXPECT_LT(Length(position), manager ? 1e-30f : 1e-4f);
      EXPECT_EQ(rotation, Quat());
      EXPECT_EQ(scale.s, (Point3{1, 1, 1}));
      const int point = manager ? frames.Find(manager->GetParamBlock()->GetStr(AnimationManagerMod::kTags)) : -1;
      if (point < 0) continue;
      const Matrix3 wanted = frames.PointTM(point, rig.Size());
      EXPECT_LT(Length(node->GetNodeTM(0).GetTrans() - wanted.GetTrans()), 1e-3f);
      EXPECT_LT(Turned(node->GetNodeTM(0), wanted), kTurn);
    }
    EXPECT_EQ(GuardCount() + INode::ReentryCount(), guards);
  }
}

TEST_P(LimbTypes, RightMirrorsLeft) {
  for (const OptionSet& set : OptionSets()) {
    SCOPED_TRACE(set.name);
    ResetScene();
    Build(GetParam(), set.options);
    int pairs = 0;
    for (INode* node : AllNodes()) {
      const bool left = node->GetName().find(L"_l_") != WStr::npos;
      if (!left) continue;
      SCOPED_TRACE(ToUtf8(node->GetName()));
      INode* right = RightOf(node);
      ASSERT_NE(right, nullptr);
      const Matrix3 wanted = Mirrored(node->GetNodeTM(0));
      EXPECT_LT(Length(right->GetNodeTM(0).GetTrans() - wanted.GetTrans()), kPlace);
      EXPECT_LT(Turned(right->GetNodeTM(0), wanted), 3 * kTurn);  // both sides' rounding, and that of the mirror
      ++pairs;
      AnimationManagerMod* manager = FindManagerMod(node);
      if (!manager) continue;
      EXPECT_EQ(manager->GetParamBlock()->GetINode(AnimationManagerMod::kMirrorNode), right);
      EXPECT_EQ(right->GetBaseObject(), node->GetBaseObject());
    }
    EXPECT_GT(pairs, 10);
  }
}

// Goals and poles moved alike on both sides give mirrored limbs, in reach and out of it.
TEST_P(LimbTypes, MirroredGoalsGiveMirroredBones) {
  Build(GetParam(), {{rig_param::kReverseFoot, 1}, {rig_param::kBendyControls, 1}});
  std::mt19937 rng(11);
  std::uniform_real_distribution<float> unit(-1, 1);
  const std::vector<INode*> nodes = AllNodes();
  for (int round = 0; round < 5; ++round) {
    for (INode* node : nodes) {
      const IKFKControl* ik = FindIKFKControl(node);
      if (!ik || node->GetName().find(L"_l_") == WStr::npos) continue;
      INode* right = RightOf(node);
      const Point3 step = Point3{unit(rng), unit(rng), unit(rng)} * (ik->Type() == ikfk_control::kJoint ? 0.0f : 8.0f);
      Move(node, step);
      Move(right, {-step.x, step.y, step.z});
      const Point3 axis = {unit(rng), unit(rng), unit(rng)};
      const float angle = 0.3f * unit(rng);
      Turn(node, {axis, angle});
      // A turn mirrored at local Z: the axis' X and Y change sign.
      Turn(right, {{-axis.x, -axis.y, axis.z}, angle});
    }
    for (INode* node : nodes) {
      if (node->GetName().find(L"_l_") == WStr::npos) continue;
      SCOPED_TRACE(ToUtf8(node->GetName()));
      const Matrix3 wanted = Mirrored(node->GetNodeTM(0)), is = RightOf(node)->GetNodeTM(0);
      // The search over many bones stops within 1e-5 of its goal and magnifies rounding by its nearly straight pose.
      ASSERT_LT(Length(is.GetTrans() - wanted.GetTrans()), 0.02f);
      ASSERT_LT(Turned(is, wanted), 2e-3f);
    }
  }
}

TEST_P(LimbTypes, FkAndIkKeepThePose) {
  Build(GetParam(), {{rig_param::kReverseFoot, 1}});
  std::mt19937 rng(6);
  std::uniform_real_distribution<float> unit(-1, 1);
  for (INode* chainNode : ChainNodes()) {
    SCOPED_TRACE(ToUtf8(chainNode->GetName()));
    IKFKChain& chain = *FindIKFKChain(chainNode);
    const std::vector<INode*> joints = [&] {
      std::vector<INode*> nodes;
      for (int i = 0; i < chain.NumJoints(); ++i)
        nodes.push_back(chain.GetParamBlock()->GetINode(ikfk_chain::kJoints, 0, i));
      return nodes;
    }();
    ASSERT_GE(joints.size(), 3u);
    ParamBlock2& limb = *FindAttrib(chainNode, TavrilonClass::LimbAttrib);
    EXPECT_FLOAT_EQ(limb.GetFloat(limb_attrib::kIkfkBlend), 1) << "a new limb is in IK";
    ParamBlock2& block = *chain.GetParamBlock();
    INode* goal = block.GetINode(ikfk_chain::kGoalParent);
    if (!goal) goal = block.GetINode(ikfk_chain::kGoal);
    // Towards the root: within reach, bent.
    const Point3 root = joints.front()->GetNodeTM(0).GetTrans();
    Move(goal, (root - goal->GetNodeTM(0).GetTrans()) * 0.2f + Point3{unit(rng), unit(rng), unit(rng)} * 2);
    const std::vector<Matrix3> posed = Matrices(joints);
    const auto same = [&](const char* after) {
      const std::vector<Matrix3> now = Matrices(joints);
      for (size_t i = 0; i < joints.size(); ++i) {
        EXPECT_LT(Length(now[i].GetTrans() - posed[i].GetTrans()), 5e-3f) << after << " joint " << i;
        EXPECT_LT(Turned(now[i], posed[i]), 1e-3f) << after << " joint " << i;
      }
    };
    chain.FK();
    EXPECT_EQ(limb.GetFloat(limb_attrib::kIkfkBlend), 0) << "the attribute is what animates";
    same("FK");
    Move(goal, {3, -4, 5});
    same("goal moved in FK");
    chain.IK();
    EXPECT_EQ(limb.GetFloat(limb_attrib::kIkfkBlend), 1);
    same("IK");
  }
}

INSTANTIATE_TEST_SUITE_P(AllTypes, LimbTypes, testing::ValuesIn(kLimbTypes), TypeName);

// --- numbers of a Biped of 100 units

TEST_F(LimbRigTest, BipedMeasures) {
  Build(RigType::Biped, {{rig_param::kReverseFoot, 1}});
  const auto bend = [&](const wchar_t* a, const wchar_t* b, const wchar_t* c) {
    const Point3 u = Normalize(Place(b) - Place(a)), v = Normalize(Place(c) - Place(b));
    return std::atan2(Length(Cross(u, v)), Dot(u, v)) * kRadToDeg;
  };
  // Two decimals are given.
  EXPECT_NEAR(bend(L"l_upper_arm_1", L"l_forearm_1", L"l_hand_1"), 7.98f, 0.005f);
  EXPECT_NEAR(bend(L"l_thigh_1", L"l_calf_1", L"l_foot_1"), 7.37f, 0.005f);
  const float arm = 17.35f + 14.07f, leg = 23.66f + 24.06f;
  const Point3 elbow = Place(L"l_forearm_1"), knee = Place(L"l_calf_1");
  const Point3 armPole = Place(L"l_ik_elbow_1") - elbow, legPole = Place(L"l_ik_knee_1") - knee;
  EXPECT_NEAR(Length(armPole), arm / 2, 0.02f);
  EXPECT_NEAR(Length(legPole), leg / 2, 0.02f);
  EXPECT_GT(armPole.y, 0.98f * arm / 2) << "behind the elbow";
  EXPECT_LT(legPole.y, -0.98f * leg / 2) << "before the knee";
  EXPECT_LT(Turned(TM(L"l_ik_elbow_1"), TM(L"l_forearm_1")), kTurn);
  EXPECT_LT(Turned(TM(L"l_ik_hand_1"), TM(L"l_hand_1")), kTurn);
}

TEST_F(LimbRigTest, BipedTree) {
  Build(RigType::Biped, {{rig_param::kReverseFoot, 1}});
  const std::pair<const wchar_t*, const wchar_t*> kTree[] = {
      {L"l_ik_hand_1", L"main"},
      {L"l_ik_elbow_1", L"main"},
      {L"l_ikfk_arm_1", L"main"},
      {L"helper_l_elbow_rot_1", L"l_forearm_1"},
      {L"helper_l_hand_rot_1", L"l_hand_1"},
      {L"bone_l_upper_arm_twist_1", L"bone_l_clavicle_1"},
      {L"bone_l_upper_arm_twist_3", L"bone_l_upper_arm_twist_2"},
      {L"bone_l_forearm_twist_1", L"bone_l_upper_arm_twist_3"},
      {L"bone_l_hand_1", L"bone_l_forearm_twist_3"},
      {L"bone_l_finger_1_1", L"bone_l_hand_1"},
      {L"l_ik_foot_1", L"main"},
      {L"helper_l_foot_heel_1", L"l_ik_foot_1"},
      {L"helper_l_foot_outer_1", L"helper_l_foot_heel_1"},
      {L"helper_l_foot_inner_1", L"helper_l_foot_outer_1"},
      {L"helper_l_foot_tip_1", L"helper_l_foot_inner_1"},
      {L"helper_l_foot_ball_1", L"helper_l_foot_tip_1"},
      {L"helper_l_foot_toe_1", L"helper_l_foot_tip_1"},
      {L"helper_l_foot_goal_1", L"helper_l_foot_ball_1"},
      {L"helper_l_foot_toe_base_1", L"l_foot_1"},
      {L"l_toe_1_1", L"helper_l_foot_toe_base_1"},
      {L"bone_l_toe_1_1", L"bone_l_foot_1"},
      {L"helper_l_knee_rot_1", L"l_calf_1"},
      {L"helper_l_foot_rot_1", L"l_foot_1"},
      {L"bone_l_foot_1", L"bone_l_calf_twist_3"},
  };
  for (const auto& [child, parent] : kTree) {
    SCOPED_TRACE(ToUtf8(child));
    ASSERT_NE(Node(child), nullptr);
    EXPECT_EQ(Node(child)->GetParentNode(), Node(parent));
  }
  // The goal is the innermost pivot, its parent control the foot that is animated.
  const ParamBlock2& chain = *FindIKFKChain(Node(L"l_ikfk_leg_1"))->GetParamBlock();
  EXPECT_EQ(chain.GetINode(ikfk_chain::kGoal), Node(L"helper_l_foot_goal_1"));
  EXPECT_EQ(chain.GetINode(ikfk_chain::kGoalParent), Node(L"l_ik_foot_1"));
  EXPECT_EQ(chain.GetINode(ikfk_chain::kTarget), Node(L"l_ik_knee_1"));
  EXPECT_EQ(chain.GetINode(ikfk_chain::kRotationSpaceNode), Node(L"torso"));
  EXPECT_EQ(Node(L"l_ikfk_leg_1")->Children().size(), 0u);
  std::set<WStr> names;
  for (INode* node : AllNodes()) names.insert(node->GetName());
  EXPECT_EQ(names.size(), AllNodes().size()) << "no name twice";
  // The spaces of a goal, and what they are called.
  const ParamBlock2& links = *FindAttrib(Node(L"l_ik_hand_1"), TavrilonClass::LinkAttrib);
  EXPECT_EQ(links.GetINode(link_attrib::kLink1), Node(L"main"));
  EXPECT_EQ(links.GetINode(link_attrib::kLink4), Node(L"head"));
  EXPECT_EQ(links.GetStr(link_attrib::kLink4Name), L"Head");
  EXPECT_EQ(FindAttrib(Node(L"l_ik_knee_1"), TavrilonClass::LinkAttrib)->GetINode(link_attrib::kLink4),
            Node(L"l_ik_foot_1"));
}

// --- options

struct LimbOption {
  const char* name;
  RigType type;
  Options options;
  std::vector<const wchar_t*> there, gone;
};

TEST_F(LimbRigTest, OptionsChangeWhatTheySay) {
  using namespace rig_param;
  const LimbOption kOptions[] = {
      {"pure FK",
       RigType::Biped,
       {{kIkfkSolvers, 0}, {kReverseFoot, 1}},
       {L"l_hand_1", L"bone_l_forearm_twist_3", L"l_toe_1_1"},
       {L"l_ik_hand_1", L"l_ik_elbow_1", L"l_ikfk_arm_1", L"l_ik_foot_1", L"helper_l_foot_heel_1",
        L"helper_l_foot_toe_base_1"}},
      {"no reverse foot",
       RigType::Biped,
       {{kReverseFoot, 0}},
       {L"l_ik_foot_1", L"l_ikfk_leg_1"},
       {L"helper_l_foot_heel_1", L"helper_l_foot_goal_1", L"helper_l_foot_toe_base_1"}},
      {"twist of the forearm only",
       RigType::Biped,
       {{kUpperArmTwistBones, 0}, {kForearmTwistBones, 3}},
       {L"bone_l_upper_arm_1", L"bone_l_forearm_twist_3", L"helper_l_forearm_twist_curveikchain_1"},
       {L"bone_l_upper_arm_twist_1", L"helper_l_upper_arm_twist_curveikchain_1", L"bone_l_forearm_1"}},
      {"one twist bone", RigType::Biped, {{kCalfTwistBones, 1}}, {L"bone_l_calf_twist_1"}, {L"bone_l_calf_twist_2"}},
      {"plain tangents",
       RigType::Biped,
       {{kBendyControls, 0}},
       {L"helper_l_thigh_twist_tangent_end_1"},
       {L"l_thigh_twist_tangent_end_1"}},
      {"bendy controls",
       RigType::Biped,
       {{kBendyControls, 1}},
       {L"l_thigh_twist_tangent_end_1", L"r_forearm_twist_tangent_start_1"},
       {L"helper_l_thigh_twist_tangent_end_1"}},
      {"corrective bones",
       RigType::Biped,
       {{kCorrectiveBones, 1}},
       {L"helper_l_shoulder_1", L"bone_l_elbow_1", L"bone_r_gluteus_1", L"helper_r_knee_1"},
       {}},
      {"no corrective bones", RigType::Biped, {{kCorrectiveBones, 0}}, {}, {L"bone_l_elbow_1", L"helper_r_knee_1"}},
      {"hocks", RigType::Minotaur, {{kCorrectiveBones, 1}}, {L"bone_l_hock_1", L"helper_l_hock_rot_1"}, {}},
      {"no fingers", RigType::Biped, {{kFingers, 0}}, {L"l_hand_1", L"l_ik_hand_1"}, {L"l_finger_1_1"}},
      {"end bones", RigType::Biped, {{kEndBones, 1}}, {L"bone_l_finger_1_end"}, {L"l_finger_1_end"}},
      {"metatarsals",
       RigType::Biped,
       {{kMetatarsals, 1}, {kReverseFoot, 1}},
       {L"l_metatarsal_1", L"bone_l_metatarsal_1", L"helper_l_toe_base_1"},
       {L"helper_l_foot_toe_base_1"}},
      {"cannon twist", RigType::BackLegs, {{kCannonTwistBones, 2}}, {L"bone_l_cannon_twist_2"}, {L"bone_l_cannon_1"}},
      {"front cannon",
       RigType::Centaur,
       {{kFrontCannonTwistBones, 2}},
       {L"bone_l_front_cannon_twist_2", L"bone_l_front_thigh_1", L"l_ik_front_foot_1", L"l_ikfk_front_leg_1"},
       {L"bone_l_front_cannon_1"}},
      {"quadruped foreleg",
       RigType::Quadruped,
       {{kReverseFoot, 1}},
       {L"l_ik_hand_1", L"helper_l_hand_heel_1", L"helper_l_hand_goal_1", L"helper_l_hand_toe_base_1", L"l_ik_foot_1"},
       {}},
      {"lone foot rolls",
       RigType::Feet,
       {{kReverseFoot, 1}},
       {L"l_ik_foot_1", L"helper_l_foot_goal_1", L"helper_l_foot_toe_base_1"},
       {L"l_ikfk_leg_1"}},
      {"lone foot", RigType::Feet, {{kReverseFoot, 0}}, {L"l_foot_1"}, {L"l_ik_foot_1"}},
      {"insect leg", RigType::InsectLeg, {}, {L"l_ikfk_leg_1", L"l_ik_knee_1"}, {L"helper_l_foot_heel_1"}},
      {"second pair of arms",
       RigType::Biped,
       {{kArmPairs, 2}},
       {L"l_ik_hand_2", L"l_ikfk_arm_2", L"bone_l_forearm_twist2_1", L"l_finger2_1_1"},
       {}},
  };
  for (const LimbOption& option : kOptions) {
    SCOPED_TRACE(option.name);
    ResetScene();
    Build(option.type, option.options);
    for (const wchar_t* name : option.there) EXPECT_NE(Node(name), nullptr) << ToUtf8(name);
    for (const wchar_t* name : option.gone) EXPECT_EQ(Node(name), nullptr) << ToUtf8(name);
  }
}

TEST_F(LimbRigTest, OneSideAlone) {
  for (const int side : {kSideRight, kSideLeft}) {
    ResetScene();
    Build(RigType::Arms, {{rig_param::kSide, side}});
    EXPECT_EQ(Node(L"r_ikfk_arm_1") != nullptr, side == kSideRight);
    EXPECT_EQ(Node(L"l_ikfk_arm_1") != nullptr, side == kSideLeft);
    INode* arm = Node(side == kSideRight ? L"r_upper_arm_1" : L"l_upper_arm_1");
    EXPECT_FLOAT_EQ(arm->GetBaseObject()->GetParamBlock()->GetFloat(kControlWarpAmount), 0.2f);
  }
}

// --- behaviour

TEST_F(LimbRigTest, RotationSpace) {
  for (const float weight : {0.0f, 1.0f}) {
    ResetScene();
    Build(RigType::Biped);
    SetBlend(0);
    const Matrix3 rest = TM(L"l_upper_arm_1");
    Limb(L"l_ikfk_arm_1").SetValue(limb_attrib::kRotationSpace, 0, weight);
    EXPECT_LT(Turned(TM(L"l_upper_arm_1"), rest), kTurn);
    const Matrix3 clavicle = TM(L"l_clavicle_1");
    Turn(Node(L"l_clavicle_1"), {{0, 0, 1}, 30 * kDegToRad});
    EXPECT_NEAR(Turned(TM(L"l_clavicle_1"), clavicle), 30 * kDegToRad, 1e-4f);
    EXPECT_NEAR(Turned(TM(L"l_upper_arm_1"), rest), weight > 0 ? 0 : 30 * kDegToRad, 1e-4f) << weight;
    EXPECT_GT(Length(Place(L"l_upper_arm_1") - rest.GetTrans()), 1) << "its place follows the clavicle";
  }
}

TEST_F(LimbRigTest, GoalPullsTheBones) {
  Build(RigType::Biped);
  const Point3 to = Place(L"l_hand_1") + Point3{-6, -8, 4};
  Move(Node(L"l_ik_hand_1"), {-6, -8, 4});
  EXPECT_LT(Length(Place(L"l_hand_1") - to), kPlace * 10);
  EXPECT_LT(Length(Place(L"bone_l_hand_1") - to), kPlace * 10);
  EXPECT_LT(Length(Place(L"bone_l_forearm_twist_1") - Place(L"l_forearm_1")), kPlace * 10);
  // Out of reach the arm is straight.
  Move(Node(L"l_ik_hand_1"), {60, 0, 0});
  EXPECT_NEAR(Length(Place(L"l_hand_1") - Place(L"l_upper_arm_1")), 17.35f + 14.07f, 0.02f);
}

TEST_F(LimbRigTest, BlendKeysPlayBack) {
  Build(RigType::Biped);
  Turn(Node(L"l_upper_arm_1"), {{0, 1, 0}, 0.6f});
  SetBlend(0);
  const Point3 fk = Place(L"bone_l_hand_1");
  SetBlend(1);
  const Point3 ik = Place(L"bone_l_hand_1");
  ASSERT_GT(Length(fk - ik), 5);
  AnimateOn();
  Limb(L"l_ikfk_arm_1").SetValue(limb_attrib::kIkfkBlend, 0, 1.0f);
  Limb(L"l_ikfk_arm_1").SetValue(limb_attrib::kIkfkBlend, 4800, 0.0f);
  AnimateOff();
  EXPECT_LT(Length(Place(L"bone_l_hand_1", 0) - ik), kPlace);
  EXPECT_LT(Length(Place(L"bone_l_hand_1", 4800) - fk), kPlace * 10);
  EXPECT_GT(Length(Place(L"bone_l_hand_1", 2400) - fk), 1);
  EXPECT_GT(Length(Place(L"bone_l_hand_1", 2400) - ik), 1);
}

// A limb without a bend at rest bends to its pole all the same.
TEST_F(LimbRigTest, StraightLimbsBendToTheirPole) {
  auto* rig = new RigSystem;
  object = GetCOREInterface()->CreateObjectNode(rig);
  const auto place = [&](const wchar_t* word) { return rig->Places().At(rig->FindPoint(word, kSideLeft, 0)); };
  const Point3 shoulder = place(L"upper_arm"), straight = shoulder + (place(L"hand") - shoulder) * 0.55f;
  // A point's own position is told from its parent's place.
  rig->SetPointPos(L"forearm",
                   rig->Points()[static_cast<size_t>(rig->FindPoint(L"forearm", kSideLeft, 0))].position + straight -
                       place(L"forearm"),
                   kSideLeft, 0);
  const Point3 wrist = place(L"hand");
  rig->SetPointPos(L"hand",
                   rig->Points()[static_cast<size_t>(rig->FindPoint(L"hand", kSideLeft, 0))].position + shoulder +
                       (straight - shoulder) * 1.8f - wrist,
                   kSideLeft, 0);
  rig->CreateRig();
  const Point3 a = Place(L"l_upper_arm_1"), b = Place(L"l_forearm_1"), c = Place(L"l_hand_1");
  ASSERT_LT(Length(Cross(Normalize(b - a), Normalize(c - b))), 1e-3f);
  Move(Node(L"l_ik_hand_1"), (a - c) * 0.3f);
  EXPECT_GT(Place(L"l_forearm_1").y, b.y + 5) << "back, where the pole is";
  // Without the pole the preferred bend decides, to the same side.
  FindIKFKChain(Node(L"l_ikfk_arm_1"))->GetParamBlock()->SetValue(ikfk_chain::kUseTarget, 0, false);
  EXPECT_GT(Place(L"l_forearm_1").y, b.y + 5);
}

// Joints that are moved in figure mode become the rest that IK shows, and nothing snaps when the mode is left.
TEST_F(LimbRigTest, FigureModeIsTheNewRest) {
  Build(RigType::Biped, {{rig_param::kReverseFoot, 1}, {rig_param::kCorrectiveBones, 1}});
  RigControl& main = *FindNodeRigControl(Node(L"main"));
  main.SetFigureMode(true);
  // One side only: the pair is not connected here.
  for (const wchar_t* name : {L"l_forearm_1", L"l_calf_1"})
    FindNodeRigControl(Node(name))->GetParamBlock()->SetValue(RigControl::kConnectMirrorOffset, 0, false);
  Turn(Node(L"l_forearm_1"), {{0, 0.6f, 0.8f}, 0.7f});
  Move(Node(L"l_calf_1"), {2, -4, 3});
  const std::vector<INode*> nodes = AllNodes();
  const std::vector<Matrix3> figure = Matrices(nodes);
  main.SetFigureMode(false);
  for (const float blend : {1.0f, 0.0f}) {
    SetBlend(blend);
    for (size_t i = 0; i < nodes.size(); ++i) {
      // Goals, poles, and the foot that hangs on its goal go where the new rest wants them.
      const IKFKControl* ik = FindIKFKControl(nodes[i]);
      const WStr name = nodes[i]->GetName();
      if ((ik && ik->Type() != ikfk_control::kJoint) || name.find(L"helper_l_foot") != WStr::npos) continue;
      EXPECT_LT(Length(nodes[i]->GetNodeTM(0).GetTrans() - figure[i].GetTrans()), 2e-3f)
          << ToUtf8(name) << " " << blend;
    }
  }
  // Twist bones at rest have no roll against their control.
  EXPECT_LT(Turned(TM(L"bone_l_forearm_twist_1"), TM(L"l_forearm_1")), 1e-3f);
  theHold.Undo();
}

TEST_F(LimbRigTest, EvaluationAllocatesNothing) {
  Build(RigType::Biped,
        {{rig_param::kReverseFoot, 1}, {rig_param::kBendyControls, 1}, {rig_param::kCorrectiveBones, 1}});
  AnimateOn();
  Move(Node(L"l_ik_hand_1"), {-5, -5, 5});
  Foot(L"l_ik_foot_1").SetValue(foot_attrib::kFootRoll, 4800, 0.8f);
  AnimateOff();
  const std::vector<INode*> nodes = AllNodes();
  for (INode* node : nodes) node->GetNodeTM(0), node->GetNodeTM(160);
  tests::AllocCounter counter;
  for (const TimeValue t : {320, 1600, 4800})
    for (INode* node : nodes) node->GetNodeTM(t);
  EXPECT_EQ(counter.Count(), 0u);
}

// --- undo, files, clones, deletion

TEST_F(LimbRigTest, UndoAndRedoOfTheBuild) {
  RigSystem& rig = Build(RigType::Biped, {{rig_param::kReverseFoot, 1}, {rig_param::kBendyControls, 1}});
  const std::vector<INode*> nodes = AllNodes();
  const std::vector<Matrix3> rest = Matrices(nodes);
  theHold.Undo();
  EXPECT_EQ(GetScene().Nodes().size(), 1u);
  EXPECT_TRUE(rig.IsActive());
  theHold.Redo();
  ASSERT_EQ(AllNodes().size(), nodes.size());
  for (size_t i = 0; i < nodes.size(); ++i) {
    SCOPED_TRACE(ToUtf8(nodes[i]->GetName()));
    EXPECT_LT(Length(nodes[i]->GetNodeTM(0).GetTrans() - rest[i].GetTrans()), kPlace);
  }
  // The limbs work as before.
  const Point3 to = Place(L"l_hand_1") + Point3{-6, -8, 4};
  Move(Node(L"l_ik_hand_1"), {-6, -8, 4});
  EXPECT_LT(Length(Place(L"bone_l_hand_1") - to), kPlace * 10);
  Foot(L"l_ik_foot_1").SetValue(foot_attrib::kFootRoll, 0, 0.5f);
  EXPECT_GT(Length(Place(L"bone_l_foot_1") - rest[0].GetTrans()), 1);
}

TEST_P(LimbTypes, ComesBackFromAFile) {
  Build(GetParam(), OptionSets()[1].options);
  for (INode* node : AllNodes())
    if (const IKFKControl* ik = FindIKFKControl(node))
      if (ik->Type() != ikfk_control::kJoint) Move(node, {1, -2, 1.5f});
  std::map<WStr, Matrix3> before;
  for (INode* node : AllNodes()) before[node->GetName()] = node->GetNodeTM(0);
  std::vector<uint8_t> bytes, again;
  ASSERT_EQ(SaveSceneToBytes(GetScene(), &bytes), L"");
  ResetScene();
  ASSERT_EQ(LoadSceneFromBytes(bytes), L"");
  ASSERT_EQ(AllNodes().size(), before.size());
  for (INode* node : AllNodes()) {
    SCOPED_TRACE(ToUtf8(node->GetName()));
    EXPECT_LT(Length(node->GetNodeTM(0).GetTrans() - before[node->GetName()].GetTrans()), kPlace);
  }
  ASSERT_EQ(SaveSceneToBytes(GetScene(), &again), L"");
  EXPECT_EQ(bytes, again);
}

TEST_F(LimbRigTest, AnyNodeMayGo) {
  Build(RigType::Biped, OptionSets()[1].options);
  const std::vector<INode*> nodes = AllNodes();
  const std::vector<Matrix3> rest = Matrices(nodes);
  for (INode* node : nodes) {
    SCOPED_TRACE(ToUtf8(node->GetName()));
    theHold.Begin();
    Tab<INode*> one;
    one.Append(node);
    GetScene().DeleteNodes(one);
    theHold.Accept(L"Delete");
    for (INode* left : AllNodes()) {
      const Matrix3& tm = left->GetNodeTM(0);
      for (int r = 0; r < 4; ++r) ASSERT_TRUE(std::isfinite(Length(tm.GetRow(r)))) << ToUtf8(left->GetName());
    }
    theHold.Undo();
    ASSERT_EQ(AllNodes().size(), nodes.size());
    for (size_t i = 0; i < nodes.size(); ++i)
      ASSERT_LT(Length(nodes[i]->GetNodeTM(0).GetTrans() - rest[i].GetTrans()), kPlace) << ToUtf8(nodes[i]->GetName());
  }
}

}  // namespace
}  // namespace tavrilon
