// SPDX-License-Identifier: MIT
// Twist bones, bendy limbs and correctives of a built Biped.
#include "plugin/rig/limb_rig_test.h"

namespace tavrilon {
namespace {

class TwistRig : public LimbRigTest {
 protected:
  void Make(const Options& options = {}) {
    Build(RigType::Biped, options);
    SetBlend(0);
    for (INode* node : AllNodes()) rest_[node->GetName()] = node->GetNodeTM(0);
  }
  /// Degrees by which a node has rolled about its own X, seen from `frame`, since the rest.
  float Roll(const WStr& node, const WStr& frame) const {
    const Matrix3 rest = rest_.at(L"Rig_" + node) * Inverse(rest_.at(L"Rig_" + frame));
    const Matrix3 turn = TM(node) * Inverse(TM(frame)) * Inverse(rest);
    const Quat q = QuatFromMatrix(Orthogonalize(turn));
    return std::remainder(2 * std::atan2(-q.x, q.w), kTwoPi) * kRadToDeg;
  }
  /// A turn of `node` in the axes of another.
  static void TurnIn(const WStr& node, const WStr& axes, const AngAxis& aa) {
    INode* turned = Node(node);
    SetXFormPacket packet = SetXFormPacket::Rotate(aa, true, turned->GetParentTM(0), TM(axes));
    turned->GetTMController()->SetValue(0, packet, true, CTRL_RELATIVE);
  }
  std::map<WStr, Matrix3> rest_;
};

// A turn about +X by an AngAxis is a negative one on row vectors.
constexpr AngAxis kRoll60{{-1, 0, 0}, 60 * kDegToRad};

struct TwistCase {
  const char* name;
  const wchar_t *turned, *axes;
  AngAxis turn;
  /// The bones' word, seen from which control, and their rolls.
  const wchar_t *bones, *frame;
  float rolls[3];
};

TEST_F(TwistRig, BonesShareTheRoll) {
  const TwistCase kCases[] = {
      {"hand", L"l_hand_1", L"l_forearm_1", kRoll60, L"l_forearm_twist_", L"l_forearm_1", {0, 20, 40}},
      {"right hand", L"r_hand_1", L"r_forearm_1", kRoll60, L"r_forearm_twist_", L"r_forearm_1", {0, 20, 40}},
      {"wrist bent", L"l_hand_1", L"l_forearm_1", {{0, 0, 1}, 1}, L"l_forearm_twist_", L"l_forearm_1", {0, 0, 0}},
      {"wrist aside", L"l_hand_1", L"l_forearm_1", {{0, 1, 0}, 0.7f}, L"l_forearm_twist_", L"l_forearm_1", {0, 0, 0}},
      {"shoulder", L"l_upper_arm_1", L"l_upper_arm_1", kRoll60, L"l_upper_arm_twist_", L"l_clavicle_1", {0, 20, 40}},
      {"foot", L"l_foot_1", L"l_calf_1", kRoll60, L"l_calf_twist_", L"l_calf_1", {0, 20, 40}},
      {"hip", L"l_thigh_1", L"l_thigh_1", kRoll60, L"l_thigh_twist_", L"pelvis", {0, 20, 40}},
  };
  for (const TwistCase& c : kCases) {
    SCOPED_TRACE(c.name);
    ResetScene();
    Make();
    TurnIn(c.turned, c.axes, c.turn);
    for (int i = 0; i < 3; ++i)
      // Slerps of a roll with a small bend in it are not shares of the roll alone: under half a degree here.
      EXPECT_NEAR(Roll(L"bone_" + WStr(c.bones) + std::to_wstring(i + 1), c.frame), c.rolls[i], 0.5f) << i;
  }
}

TEST_F(TwistRig, BonesLieAlongTheirSegment) {
  Make({{rig_param::kForearmTwistBones, 5}, {rig_param::kUpperArmTwistBones, 1}});
  SetBlend(1);
  Move(Node(L"l_ik_hand_1"), {-8, -8, 6});
  const Point3 elbow = Place(L"l_forearm_1"), wrist = Place(L"l_hand_1");
  for (int i = 0; i < 5; ++i) {
    const WStr bone = L"bone_l_forearm_twist_" + std::to_wstring(i + 1);
    EXPECT_LT(Length(Place(bone) - (elbow + (wrist - elbow) * (0.2f * static_cast<float>(i)))), 2e-3f) << i;
    EXPECT_LT(Length(TM(bone).GetRow(0) - Normalize(wrist - elbow)), 1e-3f) << i;
  }
  EXPECT_LT(Length(TM(L"bone_l_upper_arm_twist_1").GetRow(0) - Normalize(elbow - Place(L"l_upper_arm_1"))), 1e-3f);
}

TEST_F(TwistRig, SquashThinsAStretchedLimb) {
  Make();
  SetBlend(1);
  ParamBlock2& limb = Limb(L"l_ikfk_arm_1");
  limb.SetValue(limb_attrib::kAutoStretch, 0, 1.0f);
  Move(Node(L"l_ik_hand_1"), {30, 0, 0});
  // The bones go along with the stretch.
  const Point3 elbow = Place(L"l_forearm_1"), wrist = Place(L"l_hand_1");
  EXPECT_GT(Length(wrist - elbow), 20);
  EXPECT_LT(Length(Place(L"bone_l_forearm_twist_3") - (elbow + (wrist - elbow) * (2.0f / 3))), 5e-3f);
  EXPECT_NEAR(Length(TM(L"bone_l_forearm_twist_2").GetRow(1)), 1, 1e-4f);
  limb.SetValue(limb_attrib::kSquash, 0, 1.0f);
  EXPECT_LT(Length(TM(L"bone_l_forearm_twist_2").GetRow(1)), 0.7f);
  EXPECT_LT(Length(Place(L"bone_l_hand_1") - Place(L"l_ik_hand_1")), 1e-2f);
}

// At a bent elbow: a kink at 0, on a curve through the elbow at 1.
TEST_F(TwistRig, BendyLeavesTheStraightLine) {
  Make({{rig_param::kBendyControls, 1}, {rig_param::kUpperArmTwistBones, 8}, {rig_param::kForearmTwistBones, 8}});
  TurnIn(L"l_forearm_1", L"l_forearm_1", {{0, 0, 1}, 80 * kDegToRad});
  const auto kink = [&] {
    const Point3 elbow = Place(L"bone_l_forearm_twist_1");
    const Point3 before = Normalize(elbow - Place(L"bone_l_upper_arm_twist_8"));
    const Point3 after = Normalize(Place(L"bone_l_forearm_twist_2") - elbow);
    return std::acos(std::clamp(Dot(before, after), -1.0f, 1.0f)) * kRadToDeg;
  };
  const Point3 elbow = Place(L"bone_l_forearm_twist_1"), middle = Place(L"bone_l_forearm_twist_4");
  EXPECT_NEAR(kink(), 87.98f, 0.1f) << "the bend of the rest and the turn";
  Limb(L"l_ikfk_arm_1").SetValue(limb_attrib::kBendy, 0, 0.5f);
  const float half = kink();
  EXPECT_LT(half, 75);
  Limb(L"l_ikfk_arm_1").SetValue(limb_attrib::kBendy, 0, 1.0f);
  EXPECT_LT(kink(), 0.6f * half) << "chords of an eighth on both sides of one tangent";
  EXPECT_LT(Length(Place(L"bone_l_forearm_twist_1") - elbow), 1e-3f) << "the curve runs through the elbow";
  EXPECT_GT(Length(Place(L"bone_l_forearm_twist_4") - middle), 0.5f);
  EXPECT_TRUE(Limb(L"l_ikfk_arm_1").GetBool(limb_attrib::kBendyActive));
  // A tangent can be moved by hand, too.
  const Point3 upper = Place(L"bone_l_upper_arm_twist_4");
  Move(Node(L"l_upper_arm_twist_tangent_start_1"), {0, 0, 5});
  EXPECT_GT(Place(L"bone_l_upper_arm_twist_4").z, upper.z + 1);
  EXPECT_LT(Length(Place(L"bone_l_forearm_twist_1") - elbow), 1e-3f);
}

TEST_F(TwistRig, CorrectivesKeepTheVolume) {
  Make({{rig_param::kCorrectiveBones, 1}});
  const float upper = Length(Place(L"l_forearm_1") - Place(L"l_upper_arm_1"));
  const auto out = [&] { return Length(Place(L"bone_l_elbow_1") - Place(L"l_forearm_1")) / upper; };
  EXPECT_NEAR(out(), 0, 1e-4f);
  TurnIn(L"l_forearm_1", L"l_forearm_1", {{0, 0, 1}, 90 * kDegToRad});
  EXPECT_NEAR(out(), 0.06f, 1e-3f);
  EXPECT_NEAR(Turned(TM(L"bone_l_elbow_1"), rest_.at(L"Rig_bone_l_elbow_1")), 45 * kDegToRad, 1e-2f) << "half the bend";
  TurnIn(L"l_forearm_1", L"l_forearm_1", {{0, 0, 1}, 50 * kDegToRad});
  EXPECT_NEAR(out(), 0.12f, 1e-3f);
}

}  // namespace
}  // namespace tavrilon
