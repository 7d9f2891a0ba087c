// SPDX-License-Identifier: MIT
// The parameters of a curve chain, and what follows from a change of its joints.
#include "plugin/frame/loop_validator.h"
#include "plugin/solvers/curve_ik_chain.h"

namespace tavrilon {

using namespace corvanta;
using namespace curve_ik_chain;

/// For the row of joints: whoever changes it, by script, builder, undo or in a panel.
class CurveIKChainAccessor final : public PBAccessor {
 public:
  void Set(ParamBlock2&, ReferenceTarget* owner, ParamID, int, TimeValue) override {
    if (owner) static_cast<CurveIKChain*>(owner)->JointsChanged();
  }
  void TabChanged(TabChange, ParamBlock2&, ReferenceTarget* owner, ParamID, int, int) override {
    if (owner) static_cast<CurveIKChain*>(owner)->JointsChanged();
  }
};

namespace {

/// A joint must not carry what the curve is read from, nor be the helper of the chain.
class JointValidator final : public PBValidator {
 public:
  bool Validate(ReferenceTarget* owner, ParamID, ReferenceTarget* candidate) override {
    INode* joint = candidate ? candidate->AsNode() : nullptr;
    auto* chain = static_cast<CurveIKChain*>(owner);
    if (!joint || !chain || joint->GetTMController() == chain) return false;
    ParamBlock2& block = *chain->GetParamBlock();
    for (const ParamID id : {ParamID{kPoints}, ParamID{kInTangents}, ParamID{kOutTangents}, ParamID{kParentSpaceNode}})
      for (int i = 0; i < block.Count(id); ++i)
        if (TransformDependsOn(block.GetINode(id, 0, i), joint)) return false;
    return true;
  }
};

// Rollups.
constexpr int kParameters = 0, kPointList = 1, kWave = 2, kOptions = 3, kDisplay = 4;
constexpr float kMost = 1e6f;
constexpr ParamRange kAny{-kMost, kMost};

LoopValidator loopValidator;
JointValidator jointValidator;
CurveIKChainAccessor accessor;

// clang-format off
const ParamRow kRows[] = {
  // id                   script name                type                flags                default     range        label                   rollup
  {kJoints,               L"joints",                 ParamType::Node,    kWeak | kTab,        {},         {},          L"Joints",              kOptions,    &accessor, &jointValidator},
  {kPoints,               L"points",                 ParamType::Node,    kWeak | kTab,        {},         {},          L"Points",              kPointList,  nullptr, &loopValidator},
  {kPointsTypes,          L"points_types",           ParamType::Int,     kTab,                kSmooth,    {0, 3},      L"Point Types",         kPointList},
  {kInTangents,           L"in_tangents",            ParamType::Node,    kWeak | kTab,        {},         {},          L"In Tangents",         kPointList,  nullptr, &loopValidator},
  {kOutTangents,          L"out_tangents",           ParamType::Node,    kWeak | kTab,        {},         {},          L"Out Tangents",        kPointList,  nullptr, &loopValidator},
  {kInnerInTangents,      L"inner_in_tangents",      ParamType::Point3,  kTab,                {},         {},          L"Inner In Tangents",   kPointList},
  {kInnerOutTangents,     L"inner_out_tangents",     ParamType::Point3,  kTab,                {},         {},          L"Inner Out Tangents",  kPointList},
  {kUseTangentNodes,      L"use_tangent_nodes",      ParamType::Bool,    kTab,                true,       {},          L"Use Tangent Nodes",   kPointList},
  {kPercent,              L"percent",                ParamType::Percent, kAnimatable,         0.0f,       kAny,        L"Percent:",            kParameters},
  {kRotation,             L"rotation",               ParamType::Angle,   kAnimatable,         0.0f,       kAny,        L"Rotation:",           kParameters},
  {kTwist,                L"twist",                  ParamType::Angle,   kAnimatable,         0.0f,       kAny,        L"Twist:",              kParameters},
  {kPointsTwist,          L"points_twist",           ParamType::Angle,   kAnimatable | kTab,  0.0f,       kAny,        L"Points Twist",        kPointList},
  {kManualStretch,        L"manual_stretch",         ParamType::Percent, kAnimatable,         1.0f,       kAny,        L"Manual Stretch:",     kParameters},
  {kAutoStretch,          L"auto_stretch",           ParamType::Percent, kAnimatable,         1.0f,       {0, 100},    L"Auto Stretch:",       kParameters},
  {kSquash,               L"squash",                 ParamType::Percent, kAnimatable,         0.0f,       kAny,        L"Squash:",             kParameters},
  {kBackwards,            L"backwards",              ParamType::Percent, kAnimatable,         0.0f,       {0, 100},    L"Backwards:",          kParameters},
  {kSlideJoints,          L"slide_joints",           ParamType::Percent, kAnimatable,         1.0f,       {0, 100},    L"Slide Joints:",       kParameters},
  {kUseWave,              L"use_wave",               ParamType::Bool,    kNone,               false,      {},          L"Use Wave",            kWave},
  {kWaveAmplitude,        L"wave_amplitude",         ParamType::World,   kAnimatable,         0.0f,       kAny,        L"Amplitude:",          kWave},
  {kPointsWaveAmplitude,  L"points_wave_amplitude",  ParamType::Percent, kAnimatable | kTab,  1.0f,       kAny,        L"Points Amplitude",    kPointList},
  {kWaveLength,           L"wave_length",            ParamType::World,   kAnimatable,         100.0f,     kAny,        L"Wave Length:",        kWave},
  {kWaveOrientation,      L"wave_orientation",       ParamType::Angle,   kAnimatable,         0.0f,       kAny,        L"Orientation:",        kWave},
  {kWavePhase,            L"wave_phase",             ParamType::Float,   kAnimatable,         0.0f,       kAny,        L"Phase:",              kWave},
  {kSteps,                L"steps",                  ParamType::Int,     kNone,               16,         {1, 99999},  L"Steps:",              kOptions},
  {kChainLength,          L"chain_length",           ParamType::World,   kAnimatable,         0.0f,       {0, kMost},  L"Chain Length:",       kOptions},
  {kUsePointsRotation,    L"use_points_rotation",    ParamType::Bool,    kNone,               true,       {},          L"Use Points Rotation", kOptions},
  {kUsePointsScale,       L"use_points_scale",       ParamType::Bool,    kNone,               true,       {},          L"Use Points Scale",    kOptions},
  {kAdditiveTwist,        L"additive_twist",         ParamType::Bool,    kNone,               false,      {},          L"Additive Twist",      kOptions},
  {kClosedLoop,           L"closed_loop",            ParamType::Bool,    kNone,               false,      {},          L"Closed Loop",         kOptions},
  {kFollowType,           L"follow_type",            ParamType::Int,     kNone,               kFollowChild, {0, 2},    L"Follow Type:",        kOptions},
  {kAimAxis,              L"aim_axis",               ParamType::Int,     kNone,               0,          {0, 2},      L"Aim Axis:",           kOptions},
  {kAimAxisFlip,          L"aim_axis_flip",          ParamType::Bool,    kNone,               false,      {},          L"Flip",                kOptions},
  {kAlignAxis,            L"align_axis",             ParamType::Int,     kNone,               0,          {0, 2},      L"Align Axis:",         kOptions},
  {kAlignAxisFlip,        L"align_axis_flip",        ParamType::Bool,    kNone,               false,      {},          L"Flip",                kOptions},
  {kParentSpace,          L"parent_space",           ParamType::Int,     kNone,               kChainParentSpace, {0, 2}, L"Parent Space:",     kOptions},
  {kParentSpaceNode,      L"parent_space_node",      ParamType::Node,    kWeak,               {},         {},          L"Parent Space Node",   kOptions,    nullptr, &loopValidator},
  {kDisplayCurve,         L"display_curve",          ParamType::Int,     kNone,               1,          {0, 2},      L"Curve Line:",         kDisplay},
  {kDisplayTangents,      L"display_tangents",       ParamType::Int,     kNone,               2,          {0, 2},      L"Tangent Lines:",      kDisplay},
};
// clang-format on

}  // namespace

const ParamBlockDesc2& CurveIKChain::BlockDesc() {
  static const ParamBlockDesc2 desc(0, L"params", kRows);
  return desc;
}

}  // namespace tavrilon
