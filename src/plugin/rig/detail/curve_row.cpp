// SPDX-License-Identifier: MIT
#include "plugin/rig/detail/curve_row.h"

#include "host/core/hold.h"
#include "plugin/attributes/attributes.h"
#include "plugin/connections/connect.h"
#include "plugin/rig/detail/wiring.h"
#include "plugin/solvers/curve_ik_chain.h"
#include "plugin/solvers/curve_ik_control.h"

namespace tavrilon::detail {

using namespace corvanta;

namespace {

PartName Suffixed(const PartName& row, const wchar_t* suffix) { return {row.word + suffix, row.side, row.index}; }

/// "spine_joint_1", "tail_2_joint_1", "r_upper_arm_twist_joint_1_2".
PartName Numbered(const PartName& row, const wchar_t* suffix, size_t i) {
  PartName name = Suffixed(row, suffix);
  (name.index < 0 ? name.index : name.subIndex) = static_cast<int>(i);
  return name;
}

CurveIKChain* AddChain(Parts& parts, const CurveRowSpec& spec, CurveRow& row) {
  row.chain = parts.make.MakeHelper(Suffixed(spec.row, L"_curveikchain"), spec.points.front().node->GetNodeTM(0),
                                    spec.parent.control, 0.02f * parts.height);
  if (!row.chain) return nullptr;
  auto* chain = new CurveIKChain;
  AssignTransform(row.chain, chain);
  row.block = chain->GetParamBlock();
  return chain;
}

/// The bones, or with sub controls a helper for each. They stand on the curve once the chain has them.
std::vector<INode*> MakeJoints(Parts& parts, const CurveRowSpec& spec, CurveRow& row) {
  std::vector<INode*> joints;
  INode* last = spec.parent.bone;
  const Matrix3 start = spec.points.front().node->GetNodeTM(0);
  for (size_t i = 0; i < spec.bones.size(); ++i) {
    if (spec.subControls) {
      const PartName name = Numbered(spec.row, L"_joint", i);
      joints.push_back(parts.make.MakeHelper(name, start, spec.parent.control, 0.01f * parts.height));
      continue;
    }
    BoneSpec bone{spec.bones[i].name, start, last, spec.bones[i].length};
    bone.width = spec.boneWidth;
    last = parts.make.MakeBone(bone);
    joints.push_back(last);
    row.bones.push_back(last);
  }
  return joints;
}

void MakeSubControls(Parts& parts, const CurveRowSpec& spec, const std::vector<INode*>& joints, CurveRow& row) {
  INode* last = spec.parent.bone;
  for (size_t i = 0; i < joints.size(); ++i) {
    ControlSpec control;
    control.name = Numbered(spec.row, L"_sub", i);
    control.tm = joints[i]->GetNodeTM(0);
    control.parent = joints[i];
    control.size = spec.subSize;
    control.secondary = true;
    control.shapeOffset = {0.5f * spec.bones[i].length, 0, 0};
    control.group = spec.group;
    BoneSpec bone{spec.bones[i].name, control.tm, last, spec.bones[i].length};
    bone.width = spec.boneWidth;
    bone.follows = parts.make.MakeControl(control);
    last = parts.make.MakeBone(bone);
    row.bones.push_back(last);
  }
}

}  // namespace

CurveRow MakeCurveRow(Parts& parts, const CurveRowSpec& spec) {
  CurveRow row;
  if (spec.points.size() < 2 || spec.bones.empty()) return row;
  CurveIKChain* chain = AddChain(parts, spec, row);
  if (!chain) return row;
  for (const CurvePoint& point : spec.points)
    chain->AddPoint(point.node, {.type = point.type, .inTangent = point.inTangent, .outTangent = point.outTangent});
  const std::vector<INode*> joints = MakeJoints(parts, spec, row);
  {
    const HoldResume recorded;  // the chain puts its controller on each joint
    for (INode* joint : joints) row.block->Append(curve_ik_chain::kJoints, joint);
  }
  for (size_t i = 0; i < joints.size(); ++i)
    if (CurveIKControl* control = CurveIKControl::Of(joints[i]))
      control->GetParamBlock()->SetValue(curve_ik_control::kPercent, 0, spec.bones[i].percent);
  chain->ResetLength();
  if (spec.subControls) MakeSubControls(parts, spec, joints, row);
  return row;
}

ParamBlock2* AddCurveAttrib(INode* node, const CurveRow& row) {
  if (!node || !row.block) return nullptr;
  ParamBlock2* attrib = AddAttrib(node, TavrilonClass::CurveAttrib);
  if (!attrib) return nullptr;
  const struct {
    ParamID chain, attrib;
  } kWires[] = {{curve_ik_chain::kManualStretch, curve_attrib::kManualStretch},
                {curve_ik_chain::kAutoStretch, curve_attrib::kAutoStretch},
                {curve_ik_chain::kSquash, curve_attrib::kSquash},
                {curve_ik_chain::kBackwards, curve_attrib::kBackwards},
                {curve_ik_chain::kSlideJoints, curve_attrib::kSlideJoints}};
  for (const auto& wire : kWires) ConnectFloat(*row.block, wire.chain, *attrib, wire.attrib, {.twoWay = true});
  return attrib;
}

std::vector<CurveBone> BonesAlong(const Parts& parts, const PartName& word, const std::vector<int>& row) {
  std::vector<CurveBone> bones;
  std::vector<int> points;
  for (PartName name = word; row.size() > 1;) {
    name.index = static_cast<int>(points.size());
    const int point = parts.Point(name);
    if (point < 0) break;
    points.push_back(point);
    bones.push_back({name});
  }
  const std::vector<float> percents = BonePercents(parts.rig.Points(), parts.rig.Places(), row, points);
  for (size_t i = 0; i < points.size(); ++i) {
    bones[i].percent = percents[i];
    bones[i].length = parts.Distance(points[i], i + 1 < points.size() ? points[i + 1] : row.back());
  }
  return bones;
}

INode* MakeTangent(Parts& parts, const PartName& name, const std::vector<int>& row, size_t i, bool out, INode* owner) {
  const size_t start = out ? i : i - 1;
  if (!owner || start + 1 >= row.size()) return nullptr;
  const BezierSpan span = SpanFrom(parts.rig.Points(), parts.rig.Places(), row[start]);
  Matrix3 tm = owner->GetNodeTM(0);
  tm.SetTrans((out ? span.b : span.c) * parts.height);
  return parts.make.MakeHelper(name, tm, owner, 0.01f * parts.height);
}

}  // namespace tavrilon::detail
