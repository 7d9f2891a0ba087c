// SPDX-License-Identifier: MIT
#include "plugin/rig/detail/limb_rows.h"

#include <algorithm>

namespace tavrilon::detail {

using namespace rig_param;

namespace {

// clang-format off
// word, size, warp, twist bones, their count, anchor, corrective, its side, shape
constexpr JointRow kArm[] = {
    {L"clavicle", 0.8f},
    {L"upper_arm", 0.55f, 0.2f, L"upper_arm_twist", kUpperArmTwistBones, L"", L"shoulder"},
    {L"forearm", 0.45f, -0.2f, L"forearm_twist", kForearmTwistBones, L"elbow_rot", L"elbow"},
    {L"hand", 1.1f, 0, L"", kActive, L"hand_rot"},
};
constexpr JointRow kLeg[] = {
    {L"thigh", 0.55f, 0, L"thigh_twist", kThighTwistBones, L"", L"gluteus"},
    {L"calf", 0.45f, 0, L"calf_twist", kCalfTwistBones, L"knee_rot", L"knee"},
    {L"foot", 0.55f, 0, L"", kActive, L"foot_rot"},
};
constexpr JointRow kBackLeg[] = {
    {L"thigh", 0.55f, 0, L"thigh_twist", kThighTwistBones, L"", L"gluteus"},
    {L"calf", 0.45f, 0, L"calf_twist", kCalfTwistBones, L"knee_rot", L"knee"},
    {L"cannon", 0.45f, 0, L"cannon_twist", kCannonTwistBones, L"hock_rot", L"hock", -1},
    {L"foot", 0.9f, 0, L"", kActive, L"foot_rot"},
};
constexpr JointRow kFrontLeg[] = {
    {L"leg_clavicle", 0.6f},
    {L"front_thigh", 0.55f, 0, L"", kActive, L"", L"front_gluteus"},
    {L"front_calf", 0.45f, 0, L"", kActive, L"front_knee_rot", L"front_knee"},
    {L"front_cannon", 0.45f, 0, L"front_cannon_twist", kFrontCannonTwistBones, L"front_hock_rot", L"front_hock", -1},
    {L"front_foot", 0.9f, 0, L"", kActive, L"front_foot_rot"},
};
constexpr JointRow kForeleg[] = {
    {L"clavicle", 0.6f},
    {L"upper_arm", 0.55f, 0, L"upper_arm_twist", kUpperArmTwistBones, L"", L"shoulder"},
    {L"forearm", 0.45f, 0, L"forearm_twist", kForearmTwistBones, L"elbow_rot", L"elbow"},
    {L"front_cannon", 0.45f, 0, L"front_cannon_twist", kFrontCannonTwistBones, L"front_hock_rot", L"front_hock", -1},
    {L"hand", 0.9f, 0, L"", kActive, L"hand_rot"},
};
constexpr JointRow kInsectLeg[] = {
    {L"coxa", 0.8f}, {L"femur", 0.4f}, {L"tibia", 0.35f}, {L"metatarsus", 0.3f}, {L"tarsus", 0.4f},
    {L"leg_tip", 0.4f, 0, L"", kActive, L"", L"", 1, ShapeType::Sphere},
};
constexpr JointRow kHand[] = {{L"hand", 1.1f}};
constexpr JointRow kFoot[] = {{L"foot", 0.55f}};
constexpr JointRow kFrontPaw[] = {{L"front_foot", 0.9f}};

constexpr auto kChest = SpaceAnchor::Chest;
constexpr auto kTorso = SpaceAnchor::Torso;

const LimbRow kLimbs[] = {
    // kind, group, title, joints, first of the solver, solver words, space, foot, pairs, digit, counts, its root
    {LimbKind::Arm, L"arm", L"", L"Arm", kArm, 1, L"ik_hand", L"ik_elbow", L"ikfk_arm", kChest, false, kArmPairs,
     L"finger", kFingers, kFingerBones, L"metacarpal", kMetacarpals},
    {LimbKind::Leg, L"leg", L"", L"Leg", kLeg, 0, L"ik_foot", L"ik_knee", L"ikfk_leg", kTorso, true, kLegPairs,
     L"toe", kToes, kToeBones, L"metatarsal", kMetatarsals},
    {LimbKind::BackLeg, L"back_leg", L"Back ", L"Leg", kBackLeg, 0, L"ik_foot", L"ik_knee", L"ikfk_leg", kTorso, true,
     kLegPairs, L"toe", kToes, kToeBones, L"metatarsal", kMetatarsals},
    {LimbKind::FrontLeg, L"front_leg", L"Front ", L"Leg", kFrontLeg, 1, L"ik_front_foot", L"ik_front_knee",
     L"ikfk_front_leg", kTorso, true, kArmPairs, L"front_toe", kToes, kToeBones, L"", kMetatarsals},
    {LimbKind::Foreleg, L"front_leg", L"Front ", L"Leg", kForeleg, 1, L"ik_hand", L"ik_elbow", L"ikfk_arm", kChest,
     true, kArmPairs, L"finger", kFingers, kFingerBones, L"", kMetacarpals},
    {LimbKind::InsectLeg, L"insect_leg", L"", L"Leg", kInsectLeg, 1, L"ik_foot", L"ik_knee", L"ikfk_leg", kTorso,
     false, kLegPairs, L"", kToes, kToeBones, L"", kMetatarsals},
    {LimbKind::Hand, L"arm", L"", L"Hand", kHand, 0, L"", L"", L"", kChest, false, kActive,
     L"finger", kFingers, kFingerBones, L"metacarpal", kMetacarpals},
    {LimbKind::Foot, L"leg", L"", L"Foot", kFoot, 0, L"ik_foot", L"", L"", kTorso, true, kActive,
     L"toe", kToes, kToeBones, L"metatarsal", kMetatarsals},
    {LimbKind::FrontPaw, L"front_leg", L"Front ", L"Paw", kFrontPaw, 0, L"ik_front_foot", L"", L"", kTorso, true,
     kActive, L"finger", kFingers, kFingerBones, L"", kMetacarpals},
    {LimbKind::BackPaw, L"back_leg", L"Back ", L"Paw", kFoot, 0, L"ik_foot", L"", L"", kTorso, true, kActive,
     L"toe", kToes, kToeBones, L"", kMetatarsals},
};
// clang-format on

}  // namespace

const LimbRow& RowOf(LimbKind kind) {
  return *std::find_if(std::begin(kLimbs), std::end(kLimbs), [kind](const LimbRow& r) { return r.kind == kind; });
}

}  // namespace tavrilon::detail
