// SPDX-License-Identifier: MIT
// The pivots of a rolling foot. Numbers are those of a Biped of 100 units.
#include "plugin/rig/limb_rig_test.h"

namespace tavrilon {
namespace {

class ReverseFoot : public LimbRigTest {
 protected:
  /// A point of the ground at rest, as it is now when `carrier` carries it.
  struct Carried {
    const wchar_t* carrier;
    const wchar_t* point;
  };
  void SetUp() override {
    Build(RigType::Biped, {{rig_param::kReverseFoot, 1}});
    for (INode* node : AllNodes()) rest_[node->GetName()] = node->GetNodeTM(0);
  }
  Matrix3 Rest(const WStr& name) const { return rest_.at(L"Rig_" + name); }
  Point3 At(const Carried& c) const { return Rest(c.point).GetTrans() * Inverse(Rest(c.carrier)) * TM(c.carrier); }
  void Set(foot_attrib::Param id, float degrees) {
    for (const wchar_t* foot : {L"l_ik_foot_1", L"r_ik_foot_1"}) Foot(foot).SetValue(id, 0, degrees * kDegToRad);
  }
  std::map<WStr, Matrix3> rest_;
};

constexpr const wchar_t *kFoot = L"l_foot_1", *kGoal = L"helper_l_foot_goal_1", *kToes = L"l_toe_1_1";
constexpr const wchar_t *kHeel = L"helper_l_foot_heel_1", *kTip = L"helper_l_foot_tip_1";
constexpr const wchar_t *kInner = L"helper_l_foot_inner_1", *kOuter = L"helper_l_foot_outer_1";
constexpr const wchar_t* kBall = L"helper_l_foot_ball_1";

struct Motion {
  const char* name;
  foot_attrib::Param param;
  float degrees;
  /// Stays where it is, carried by what.
  const wchar_t* carrier;
  const wchar_t* fixed;
  /// Height of the heel as the foot carries it; below 0 where the motion moves the heel nowhere of interest.
  float heel;
};

TEST_F(ReverseFoot, ContactPointsStayOnTheGround) {
  using namespace foot_attrib;
  const Motion kMotions[] = {
      {"roll to the ball", kFootRoll, 30, kToes, kTip, 5.51f}, {"roll over the tip", kFootRoll, 70, kTip, kTip, 12.80f},
      {"roll over the heel", kFootRoll, -20, kGoal, kHeel, 0}, {"bank out", kBanking, 20, kGoal, kOuter, -1},
      {"bank in", kBanking, -20, kGoal, kInner, -1},           {"turn on the heel", kHeelPivot, 30, kGoal, kHeel, 0},
      {"turn on the ball", kBallPivot, 30, kGoal, kBall, 0},   {"turn on the tip", kToePivot, 30, kGoal, kTip, 0},
      {"lift the toes", kToeBend, 30, kGoal, kHeel, 0},
  };
  for (const Motion& m : kMotions) {
    SCOPED_TRACE(m.name);
    Set(m.param, m.degrees);
    // Two decimals are given for heights; what stands still does so within the rounding of some ten products.
    EXPECT_LT(Length(At({m.carrier, m.fixed}) - Rest(m.fixed).GetTrans()), 1e-3f);
    if (m.heel >= 0) {
      EXPECT_NEAR(At({kGoal, kHeel}).z, m.heel, 0.005f);
    }
    for (INode* node : AllNodes()) {
      if (node->GetName().find(L"_l_") == WStr::npos) continue;
      const Matrix3 wanted = Mirrored(node->GetNodeTM(0)), is = RightOf(node)->GetNodeTM(0);
      EXPECT_LT(Length(is.GetTrans() - wanted.GetTrans()), 1e-3f) << ToUtf8(node->GetName());
      EXPECT_LT(Turned(is, wanted), 1e-4f) << ToUtf8(node->GetName());
    }
    Set(m.param, 0);
  }
}

TEST_F(ReverseFoot, RollBringsTheHeelForward) {
  Set(foot_attrib::kFootRoll, 30);
  EXPECT_NEAR(At({kFoot, kHeel}).y, 4.34f, 0.005f);
}

TEST_F(ReverseFoot, DirectionsAreTheAnimators) {
  using namespace foot_attrib;
  Set(kHeelPivot, 30);
  EXPECT_GT(TM(kGoal).GetRow(0).x, Rest(kGoal).GetRow(0).x + 0.3f) << "toes outward: the left foot to the left";
  Set(kHeelPivot, 0);
  Set(kToeBend, 30);
  EXPECT_GT(TM(kToes).GetRow(0).z, Rest(kToes).GetRow(0).z + 0.4f) << "the toes point up";
  EXPECT_LT(Turned(TM(kFoot), Rest(kFoot)), 1e-4f) << "the foot stays";
  Set(kToeBend, 0);
  Set(kBanking, 20);
  EXPECT_GT(At({kGoal, kInner}).z, 1) << "on the outer edge the inner one is up";
}

// The break is where the ball hands over to the tip, whatever is typed.
TEST_F(ReverseFoot, BreakIsHeldWithinHalfATurn) {
  using namespace foot_attrib;
  Set(kFootBreak, 20);
  Set(kFootRoll, 50);
  EXPECT_NEAR(Turned(TM(kBall), TM(kTip)), 20 * kDegToRad, 1e-4f);
  EXPECT_NEAR(Turned(TM(kTip), TM(kOuter)), 30 * kDegToRad, 1e-4f);
  Set(kFootBreak, -30);
  EXPECT_NEAR(Turned(TM(kBall), TM(kTip)), 0, 1e-4f);
  EXPECT_NEAR(Turned(TM(kTip), TM(kOuter)), 50 * kDegToRad, 1e-4f);
  EXPECT_NEAR(Foot(L"l_ik_foot_1").GetFloat(kFootBreak), -30 * kDegToRad, 1e-6f) << "the animator's number stays";
}

TEST_F(ReverseFoot, ToesAreFlatInIkAndTheFootsInFk) {
  Set(foot_attrib::kFootRoll, 30);
  EXPECT_GT(Turned(TM(kFoot), Rest(kFoot)), 25 * kDegToRad);
  EXPECT_LT(Turned(TM(kToes), Rest(kToes)), 1e-4f);
  // In FK the toes turn with the foot.
  SetBlend(0);
  const Matrix3 local = Rest(kToes) * Inverse(Rest(kFoot));
  Turn(Node(kFoot), {{0, 0, 1}, 0.5f});
  EXPECT_LT(Turned(TM(kToes) * Inverse(TM(kFoot)), local), 1e-4f);
  EXPECT_LT(Length((TM(kToes) * Inverse(TM(kFoot))).GetTrans() - local.GetTrans()), 1e-3f);
}

// Without the chain there is no blend to follow: the toes belong to the foot, at once and after a reload.
TEST_F(ReverseFoot, ToesAreTheFootsWithoutAChain) {
  for (const bool recorded : {false, true}) {
    Set(foot_attrib::kFootRoll, 30);
    ASSERT_LT(Turned(TM(kToes), Rest(kToes)), 1e-4f);
    if (recorded) theHold.Begin();
    Tab<INode*> chain;
    chain.Append(Node(L"l_ikfk_leg_1"));
    GetScene().DeleteNodes(chain);
    if (recorded) theHold.Accept(L"Delete");
    const Matrix3 local = Rest(kToes) * Inverse(Rest(kFoot));
    EXPECT_LT(Turned(TM(kToes) * Inverse(TM(kFoot)), local), 1e-4f) << recorded;
    const Matrix3 toes = TM(kToes);
    std::vector<uint8_t> bytes;
    ASSERT_EQ(SaveSceneToBytes(GetScene(), &bytes), L"");
    ASSERT_EQ(LoadSceneFromBytes(bytes), L"");
    EXPECT_LT(Turned(TM(kToes), toes), 1e-4f) << recorded;
    ResetScene();
    SetUp();
  }
}

TEST_F(ReverseFoot, TheFootMovesWithItsControl) {
  Set(foot_attrib::kFootRoll, 30);
  const Matrix3 before = TM(kGoal);
  Move(Node(L"l_ik_foot_1"), {0, -3, 4});
  EXPECT_LT(Length(Place(kGoal) - before.GetTrans() - Point3{0, -3, 4}), 1e-3f);
  EXPECT_LT(Length(Place(kFoot) - Place(kGoal)), 1e-3f) << "the leg reaches";
}

// Hooves and paws roll by the same rule, whatever their words.
TEST_F(LimbRigTest, HoovesAndPawsRoll) {
  const struct {
    RigType type;
    const wchar_t *control, *goal, *heel;
  } kFeet[] = {{RigType::Quadruped, L"l_ik_hand_1", L"helper_l_hand_goal_1", L"helper_l_hand_heel_1"},
               {RigType::Quadruped, L"l_ik_foot_1", L"helper_l_foot_goal_1", L"helper_l_foot_heel_1"},
               {RigType::Centaur, L"l_ik_front_foot_1", L"helper_l_front_foot_goal_1", L"helper_l_front_foot_heel_1"},
               {RigType::FrontPaws, L"l_ik_front_foot_1", L"l_front_foot_1", L"helper_l_front_foot_heel_1"},
               {RigType::Feet, L"l_ik_foot_1", L"l_foot_1", L"helper_l_foot_heel_1"}};
  for (const auto& foot : kFeet) {
    SCOPED_TRACE(ToUtf8(foot.heel));
    ResetScene();
    Build(foot.type, {{rig_param::kReverseFoot, 1}});
    const Point3 heel = Place(foot.heel);
    const Matrix3 goal = TM(foot.goal);
    ASSERT_NEAR(heel.z, 0, 1e-3f);
    Foot(foot.control).SetValue(foot_attrib::kFootRoll, 0, 30 * kDegToRad);
    const Point3 lifted = heel * Inverse(goal) * TM(foot.goal);
    EXPECT_GT(lifted.z, 1);
    EXPECT_NEAR(Turned(TM(foot.goal), goal), 30 * kDegToRad, 1e-4f);
  }
}

}  // namespace
}  // namespace tavrilon
