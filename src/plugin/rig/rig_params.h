// SPDX-License-Identifier: MIT
// The parameters of a rig, one row each, in the order that scripts and files go through them. Defaults, ranges and
// labels are read from here by the parameter block, the rollups and the template; nothing is declared a second time.
#pragma once

#include <cstdint>

namespace tavrilon {

/// Stable numbers of the parameters: they stand in files, and name the components of a template.
namespace rig_param {
enum ID : uint16_t {
  kNodes = 0,
  kActive = 1,
  kRigName = 2,
  kHelperType = 3,
  kHelperSize = 4,
  kDrawOnTop = 5,
  kSide = 6,
  kAffectChildren = 7,
  kAffectMirror = 8,
  kMirrorRelativeToParent = 9,
  kColor1 = 10,
  kColor2 = 11,
  kColor3 = 12,
  kColor4 = 13,
  kColor5 = 14,
  kColor6 = 15,
  kIkfkSolvers = 16,
  kSubControls = 19,
  kBendyControls = 20,
  kRootBone = 21,
  kCorrectiveBones = 22,
  kEndBones = 23,
  kFingers = 31,
  kFingerBones = 32,
  kMetacarpals = 33,
  kToes = 34,
  kToeBones = 35,
  kMetatarsals = 36,
  kReverseFoot = 37,
  kUpperArmTwistBones = 38,
  kForearmTwistBones = 39,
  kFrontCannonTwistBones = 40,
  kThighTwistBones = 41,
  kCalfTwistBones = 42,
  kCannonTwistBones = 43,
  kSpineControls = 44,
  kSpineBones = 46,
  kIkSpine = 47,
  kNeckControls = 48,
  kNeckBones = 49,
  kFace = 50,
  kMorpherBased = 51,
  kEyelidsControls = 52,
  kEyelidsBones = 53,
  kEyebrowsControls = 54,
  kEyebrowsBones = 55,
  kCheekboneControls = 56,
  kCheekboneBones = 57,
  kNoseControls = 58,
  kNoseBones = 59,
  kLipsControls = 60,
  kLipsBones = 61,
  kNasolabialControls = 62,
  kNasolabialBones = 63,
  kChinControls = 64,
  kChinBones = 65,
  kTongueControls = 66,
  kTongueBones = 67,
  kTailControls = 68,
  kTailBones = 69,
  kFangs = 72,
  kHeads = 74,
  kPonytails = 75,
  kTails = 76,
  kArmPairs = 77,
  kLegPairs = 78,
  kPonytailControls = 79,
  kPonytailBones = 80,
  kSelectedComponent = 81,
  kUseSpineBones = 82,
  kUseNeckBones = 83,
  kUseTailBones = 84,
  kUsePonytailBones = 85,
  kUseEyelidBones = 86,
  kUseEyebrowBones = 87,
  kUseCheekboneBones = 88,
  kUseNoseBones = 89,
  kUseLipsBones = 90,
  kUseNasolabialBones = 91,
  kUseChinBones = 92,
  kUseTongueBones = 93,
  kCount = 94,
};
}  // namespace rig_param

enum class RigParamKind { NodeTab, Bool, Int, Index, World, Colour, Text };

struct RigParamRow {
  rig_param::ID id;
  /// Empty for a parameter that scripts don't see.
  const wchar_t* name;
  RigParamKind kind;
  /// The first number of every kind but a colour; texts start as `kDefaultRigName`.
  struct {
    float r = 0, g = 0, b = 0;
  } initial;
  struct {
    float min = 0, max = 0;
  } range;
  const wchar_t* label;
};

inline constexpr const wchar_t* kDefaultRigName = L"Rig";

// clang-format off
inline constexpr RigParamRow kRigParamRows[] = {
    // id, script name, kind, default, range, label
    {rig_param::kNodes,                  L"",                          RigParamKind::NodeTab, {},            {},         L""},
    {rig_param::kActive,                 L"",                          RigParamKind::Bool,    {1},           {},         L"Active"},
    {rig_param::kRigName,                L"rig_name",                  RigParamKind::Text,    {},            {},         L"Rig Name"},
    {rig_param::kHelperType,             L"",                          RigParamKind::Index,   {0},           {},         L"Helper Type"},
    {rig_param::kHelperSize,             L"helper_size",               RigParamKind::World,   {100},         {0, 1e30f}, L"Size"},
    {rig_param::kDrawOnTop,              L"draw_on_top",               RigParamKind::Bool,    {1},           {},         L"Draw On Top"},
    {rig_param::kSide,                   L"side",                      RigParamKind::Int,     {2},           {0, 2},     L"Side"},
    {rig_param::kAffectChildren,         L"affect_children",           RigParamKind::Bool,    {1},           {},         L"Affect Children"},
    {rig_param::kAffectMirror,           L"affect_mirror",             RigParamKind::Bool,    {1},           {},         L"Affect Mirror"},
    {rig_param::kMirrorRelativeToParent, L"mirror_relative_to_parent", RigParamKind::Bool,    {1},           {},         L"Mirror Relative to Parent"},
    {rig_param::kIkfkSolvers,            L"ikfk_solvers",              RigParamKind::Bool,    {1},           {},         L"IKFK Solvers"},
    {rig_param::kSubControls,            L"sub_controls",              RigParamKind::Bool,    {0},           {},         L"Sub Controls"},
    {rig_param::kBendyControls,          L"bendy_controls",            RigParamKind::Bool,    {0},           {},         L"Bendy Controls"},
    {rig_param::kRootBone,               L"root_bone",                 RigParamKind::Bool,    {0},           {},         L"Root Bone"},
    {rig_param::kCorrectiveBones,        L"corrective_bones",          RigParamKind::Bool,    {0},           {},         L"Corrective Bones"},
    {rig_param::kEndBones,               L"end_bones",                 RigParamKind::Bool,    {0},           {},         L"Bend Bones"},
    {rig_param::kColor1,                 L"color_1",                   RigParamKind::Colour,  {0.75f, 0, 0}, {},         L"Color 1"},
    {rig_param::kColor2,                 L"color_2",                   RigParamKind::Colour,  {1, 0.25f, 0}, {},         L"Color 2"},
    {rig_param::kColor3,                 L"color_3",                   RigParamKind::Colour,  {0.25f, 1, 0}, {},         L"Color 3"},
    {rig_param::kColor4,                 L"color_4",                   RigParamKind::Colour,  {1, 1, 0},     {},         L"Color 4"},
    {rig_param::kColor5,                 L"color_5",                   RigParamKind::Colour,  {0, 0, 0.75f}, {},         L"Color 5"},
    {rig_param::kColor6,                 L"color_6",                   RigParamKind::Colour,  {0, 0.25f, 1}, {},         L"Color 6"},
    {rig_param::kHeads,                  L"heads",                     RigParamKind::Int,     {1},           {0, 1},     L"Heads"},
    {rig_param::kNeckControls,           L"neck_controls",             RigParamKind::Int,     {1},           {1, 99},    L"Neck Controls"},
    {rig_param::kNeckBones,              L"neck_bones",                RigParamKind::Int,     {1},           {1, 99},    L"Neck Bones"},
    {rig_param::kUseNeckBones,           L"use_neck_bones",            RigParamKind::Bool,    {0},           {},         L"Use Neck Bones"},
    {rig_param::kPonytails,              L"ponytails",                 RigParamKind::Int,     {0},           {0, 99},    L"Ponytails"},
    {rig_param::kPonytailControls,       L"ponytail_controls",         RigParamKind::Int,     {3},           {1, 99},    L"Ponytail Controls"},
    {rig_param::kPonytailBones,          L"ponytail_bones",            RigParamKind::Int,     {6},           {1, 99},    L"Ponytail Bones"},
    {rig_param::kUsePonytailBones,       L"use_ponytail_bones",        RigParamKind::Bool,    {0},           {},         L"Use Ponytail Bones"},
    {rig_param::kFangs,                  L"fangs",                     RigParamKind::Bool,    {1},           {},         L"fANGS"},
    {rig_param::kSpineControls,          L"spine_controls",            RigParamKind::Int,     {3},           {1, 99},    L"Spine Controls"},
    {rig_param::kSpineBones,             L"spine_bones",               RigParamKind::Int,     {6},           {1, 99},    L"Spine Bones"},
    {rig_param::kUseSpineBones,          L"use_spine_bones",           RigParamKind::Bool,    {1},           {},         L"Use Spine Bones"},
    {rig_param::kIkSpine,                L"ik_spine",                  RigParamKind::Bool,    {1},           {},         L"IK Spine"},
    {rig_param::kTails,                  L"tails",                     RigParamKind::Int,     {0},           {0, 99},    L"Tails"},
    {rig_param::kTailControls,           L"tail_controls",             RigParamKind::Int,     {3},           {1, 99},    L"Tail Controls"},
    {rig_param::kTailBones,              L"tail_bones",                RigParamKind::Int,     {6},           {1, 99},    L"Tail Bones"},
    {rig_param::kUseTailBones,           L"use_tail_bones",            RigParamKind::Bool,    {0},           {},         L"Use Tail Bones"},
    {rig_param::kArmPairs,               L"arm_pairs",                 RigParamKind::Int,     {1},           {0, 99},    L"Arm Pairs"},
    {rig_param::kFingers,                L"fingers",                   RigParamKind::Int,     {5},           {0, 99},    L"Hand Fingers"},
    {rig_param::kFingerBones,            L"finger_bones",              RigParamKind::Int,     {3},           {1, 99},    L"Hand Finger Bones"},
    {rig_param::kMetacarpals,            L"metacarpals",               RigParamKind::Bool,    {0},           {},         L"Metacarpals"},
    {rig_param::kLegPairs,               L"leg_pairs",                 RigParamKind::Int,     {1},           {0, 99},    L"Leg Pairs"},
    {rig_param::kToes,                   L"toes",                      RigParamKind::Int,     {1},           {0, 99},    L"Toes"},
    {rig_param::kToeBones,               L"toe_bones",                 RigParamKind::Int,     {1},           {1, 99},    L"Toe Bones"},
    {rig_param::kMetatarsals,            L"metatarsals",               RigParamKind::Bool,    {0},           {},         L"Metatarsals"},
    {rig_param::kReverseFoot,            L"reverse_foot",              RigParamKind::Bool,    {1},           {},         L"Reverse Foot"},
    {rig_param::kUpperArmTwistBones,     L"upper_arm_twist_bones",     RigParamKind::Int,     {3},           {0, 99},    L"Upper Arm TwistBones"},
    {rig_param::kForearmTwistBones,      L"forearm_twist_bones",       RigParamKind::Int,     {3},           {0, 99},    L"Fore Arm TwistBones"},
    {rig_param::kFrontCannonTwistBones,  L"front_cannon_twist_bones",  RigParamKind::Int,     {3},           {0, 99},    L"Front Cannon"},
    {rig_param::kThighTwistBones,        L"thigh_twist_bones",         RigParamKind::Int,     {3},           {0, 99},    L"Thigh Twistbones"},
    {rig_param::kCalfTwistBones,         L"calf_twist_bones",          RigParamKind::Int,     {3},           {0, 99},    L"Calf Twistbones"},
    {rig_param::kCannonTwistBones,       L"cannon_twist_bones",        RigParamKind::Int,     {3},           {0, 99},    L"Cannon"},
    {rig_param::kFace,                   L"face",                      RigParamKind::Bool,    {0},           {},         L"Face"},
    {rig_param::kMorpherBased,           L"morpher_based",             RigParamKind::Bool,    {0},           {},         L"Morpher"},
    {rig_param::kEyelidsControls,        L"eyelids_controls",          RigParamKind::Int,     {1},           {1, 99},    L"Eyelid Controls"},
    {rig_param::kEyelidsBones,           L"eyelids_bones",             RigParamKind::Int,     {3},           {1, 99},    L"Eyelid Bones"},
    {rig_param::kUseEyelidBones,         L"use_eyelid_bones",          RigParamKind::Bool,    {0},           {},         L"Use Eyelid Bones"},
    {rig_param::kEyebrowsControls,       L"eyebrows_controls",         RigParamKind::Int,     {3},           {1, 99},    L"Eyebrow Controls"},
    {rig_param::kEyebrowsBones,          L"eyebrows_bones",            RigParamKind::Int,     {7},           {1, 99},    L"Eyebrow Bones"},
    {rig_param::kUseEyebrowBones,        L"use_eyebrow_bones",         RigParamKind::Bool,    {0},           {},         L"Use Eyebrow Bones"},
    {rig_param::kCheekboneControls,      L"cheekbone_controls",        RigParamKind::Int,     {3},           {1, 99},    L"Cheekbone Controls"},
    {rig_param::kCheekboneBones,         L"cheekbone_bones",           RigParamKind::Int,     {7},           {1, 99},    L"Cheekbone Bones"},
    {rig_param::kUseCheekboneBones,      L"use_cheekbone_bones",       RigParamKind::Bool,    {0},           {},         L"Use Cheekbone Bones"},
    {rig_param::kNoseControls,           L"nose_controls",             RigParamKind::Int,     {1},           {1, 99},    L"Nose Controls"},
    {rig_param::kNoseBones,              L"nose_bones",                RigParamKind::Int,     {2},           {1, 99},    L"Nose Bones"},
    {rig_param::kUseNoseBones,           L"use_nose_bones",            RigParamKind::Bool,    {0},           {},         L"Use Nose Bones"},
    {rig_param::kLipsControls,           L"lips_controls",             RigParamKind::Int,     {1},           {1, 99},    L"Lip Controls"},
    {rig_param::kLipsBones,              L"lips_bones",                RigParamKind::Int,     {3},           {1, 99},    L"Lip Bones"},
    {rig_param::kUseLipsBones,           L"use_lips_bones",            RigParamKind::Bool,    {0},           {},         L"Use Lip Bones"},
    {rig_param::kNasolabialControls,     L"nasolabial_controls",       RigParamKind::Int,     {1},           {1, 99},    L"Nasolabial Controls"},
    {rig_param::kNasolabialBones,        L"nasolabial_bones",          RigParamKind::Int,     {3},           {1, 99},    L"Nasolabial Bones"},
    {rig_param::kUseNasolabialBones,     L"use_nasolabial_bones",      RigParamKind::Bool,    {1},           {},         L"Use Nasolabial Bones"},
    {rig_param::kChinControls,           L"chin_controls",             RigParamKind::Int,     {1},           {1, 99},    L"Chin Controls"},
    {rig_param::kChinBones,              L"chin_bones",                RigParamKind::Int,     {3},           {1, 99},    L"Chin Bones"},
    {rig_param::kUseChinBones,           L"use_chin_bones",            RigParamKind::Bool,    {0},           {},         L"Use Chin Bones"},
    {rig_param::kTongueControls,         L"tongue_controls",           RigParamKind::Int,     {2},           {1, 99},    L"Tongue Controls"},
    {rig_param::kTongueBones,            L"tongue_bones",              RigParamKind::Int,     {4},           {1, 99},    L"Tongue Bones"},
    {rig_param::kUseTongueBones,         L"use_tongue_bones",          RigParamKind::Bool,    {0},           {},         L"Use Tongue Bones"},
    {rig_param::kSelectedComponent,      L"selected_component",        RigParamKind::Index,   {0},           {},         L"Selected Component"},
};
// clang-format on
inline constexpr int kRigParamCount = static_cast<int>(sizeof(kRigParamRows) / sizeof(kRigParamRows[0]));
static_assert(kRigParamCount == 81);

}  // namespace tavrilon
