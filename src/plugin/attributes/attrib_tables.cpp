// SPDX-License-Identifier: MIT
// The tables of all attributes. Nodes in them are watched: an attribute rides on a node, and a node that it referred to
// would depend on itself.
#include "plugin/attributes/attributes.h"

namespace tavrilon {

using namespace corvanta;

namespace {

constexpr int kNotShown = -1;
// Stretch and squash have no end that anybody would meet.
constexpr float kFar = 1000000;

// clang-format off
const ParamRow kLimbRows[] = {
    {limb_attrib::kChainNode, L"ikfkchain_node", ParamType::Node, kWeak | kReadOnly, {}, {}, L"Target Node", kNotShown},
    {limb_attrib::kIkfkBlend, L"ikfk_blend", ParamType::Percent, kAnimatable, 1.0f, {0, 100}, L"IKFK Blend:"},
    {limb_attrib::kManualStretch, L"manual_stretch", ParamType::Percent, kAnimatable, 1.0f, {0, kFar}, L"Manual Stretch:"},
    {limb_attrib::kAutoStretch, L"auto_stretch", ParamType::Percent, kAnimatable, 0.0f, {0, 100}, L"Auto Stretch:"},
    {limb_attrib::kRotationSpace, L"rotation_space", ParamType::Percent, kAnimatable, 1.0f, {0, 100}, L"Rotation Space:"},
    {limb_attrib::kFlexionBias, L"flexion_bias", ParamType::Angle, kAnimatable, 0.0f, {}, L"Flexion Bias:"},
    {limb_attrib::kSquash, L"squash", ParamType::Percent, kAnimatable, 0.0f, {0, kFar}, L"Squash:"},
    {limb_attrib::kSquashActive, L"squash_active", ParamType::Bool, kNone, true, {}, L"", kNotShown},
    {limb_attrib::kBendy, L"bendy", ParamType::Percent, kAnimatable, 0.0f, {0, 100}, L"Bendy:"},
    {limb_attrib::kBendyActive, L"bendy_active", ParamType::Bool, kNone, true, {}, L"", kNotShown},
    {limb_attrib::kSoftness, L"softness", ParamType::Percent, kAnimatable, 0.0f, {0, 100}, L"Soft IK:"},
    {limb_attrib::kIkfkBlendDefault, L"ikfk_blend_default", ParamType::Percent, kNone, 1.0f, {0, 100}, L"", kNotShown},
};

const ParamRow kCurveRows[] = {
    {curve_attrib::kManualStretch, L"manual_stretch", ParamType::Percent, kAnimatable, 1.0f, {0, kFar}, L"Manual Stretch:"},
    {curve_attrib::kAutoStretch, L"auto_stretch", ParamType::Percent, kAnimatable, 1.0f, {0, 100}, L"Auto Stretch:"},
    {curve_attrib::kSquash, L"squash", ParamType::Percent, kAnimatable, 0.0f, {0, kFar}, L"Squash:"},
    {curve_attrib::kBackwards, L"backwards", ParamType::Percent, kAnimatable, 0.0f, {0, 100}, L"Backwards:"},
    {curve_attrib::kSlideJoints, L"slide_joints", ParamType::Percent, kAnimatable, 1.0f, {0, 100}, L"Slide Joints:"},
};

const ParamRow kFootRows[] = {
    {foot_attrib::kFootRoll, L"foot_roll", ParamType::Angle, kAnimatable, 0.0f, {-180, 180}, L"Foot Roll:"},
    {foot_attrib::kFootBreak, L"foot_break", ParamType::Angle, kAnimatable, kPi / 4, {-180, 180}, L"Foot Break:"},
    {foot_attrib::kBanking, L"banking", ParamType::Angle, kAnimatable, 0.0f, {-180, 180}, L"Banking:"},
    {foot_attrib::kHeelPivot, L"heel_pivot", ParamType::Angle, kAnimatable, 0.0f, {-180, 180}, L"Heel Pivot:"},
    {foot_attrib::kBallPivot, L"ball_pivot", ParamType::Angle, kAnimatable, 0.0f, {-180, 180}, L"Ball Pivot:"},
    {foot_attrib::kToePivot, L"toe_pivot", ParamType::Angle, kAnimatable, 0.0f, {-180, 180}, L"Toe Pivot:"},
    {foot_attrib::kToeBend, L"toe_bend", ParamType::Angle, kAnimatable, 0.0f, {-180, 180}, L"Toe Bend:"},
};

const ParamRow kHeadRows[] = {
    {head_attrib::kRotationSpace, L"rotation_space", ParamType::Percent, kAnimatable, 1.0f, {0, 100}, L"Rotation Space:"},
};

const ParamRow kRootRows[] = {
    {root_attrib::kFollowHorizontal, L"follow_horizontal", ParamType::Percent, kAnimatable, 1.0f, {0, 100}, L"Follow Horizontal:"},
    {root_attrib::kFollowVertical, L"follow_vertical", ParamType::Percent, kAnimatable, 1.0f, {0, 100}, L"Follow Vertical:"},
    {root_attrib::kFollowTurning, L"follow_turning", ParamType::Percent, kAnimatable, 1.0f, {0, 100}, L"Follow Turning:"},
    {root_attrib::kVerticalOffset, L"vertical_offset", ParamType::World, kAnimatable, 0.0f, {}, L"Vertical Offset:"},
    {root_attrib::kGroundOffset, L"ground_offset", ParamType::World, kAnimatable, 0.0f, {}, L"Ground Offset:"},
    {root_attrib::kUseGround, L"use_ground", ParamType::Bool, kAnimatable, true, {}, L"Use Ground"},
};

const ParamRow kLinkRows[] = {
    {link_attrib::kLinkNode, L"link_node", ParamType::Node, kWeak, {}, {}, L"Control", kNotShown},
    {link_attrib::kLink1, L"link1", ParamType::Node, kWeak, {}, {}, L"Link 1"},
    {link_attrib::kLink2, L"link2", ParamType::Node, kWeak, {}, {}, L"Link 2"},
    {link_attrib::kLink3, L"link3", ParamType::Node, kWeak, {}, {}, L"Link 3"},
    {link_attrib::kLink4, L"link4", ParamType::Node, kWeak, {}, {}, L"Link 4"},
    {link_attrib::kLink1Name, L"link1_name", ParamType::String, kNone, L"", {}, L"", kNotShown},
    {link_attrib::kLink2Name, L"link2_name", ParamType::String, kNone, L"", {}, L"", kNotShown},
    {link_attrib::kLink3Name, L"link3_name", ParamType::String, kNone, L"", {}, L"", kNotShown},
    {link_attrib::kLink4Name, L"link4_name", ParamType::String, kNone, L"", {}, L"", kNotShown},
};
// clang-format on

struct AttribTable {
  TavrilonClass row;
  ParamBlockDesc2 desc;
};

}  // namespace

const ParamBlockDesc2* AttribBlockDesc(TavrilonClass attrib) {
  static const AttribTable kTables[] = {
      {TavrilonClass::LimbAttrib, {0, L"Parameters", kLimbRows}},
      {TavrilonClass::CurveAttrib, {0, L"Parameters", kCurveRows}},
      {TavrilonClass::FootAttrib, {0, L"Parameters", kFootRows}},
      {TavrilonClass::HeadAttrib, {0, L"Parameters", kHeadRows}},
      {TavrilonClass::RootAttrib, {0, L"Parameters", kRootRows}},
      {TavrilonClass::LinkAttrib, {0, L"Parameters", kLinkRows}},
  };
  for (const AttribTable& table : kTables)
    if (table.row == attrib) return &table.desc;
  return nullptr;
}

}  // namespace tavrilon
