// SPDX-License-Identifier: MIT
// The bones of a limb. A segment without twist bones has one that follows its control. With them it is a curve chain
// from the control to the roll anchor at the next joint: the bones share the roll between the two, and with bendy
// controls the curve may leave the straight line.
#include "host/core/hold.h"
#include "host/core/param_block.h"
#include "plugin/attributes/attrib_params.h"
#include "plugin/connections/connect.h"
#include "plugin/rig/detail/limb.h"
#include "plugin/rig/detail/wiring.h"
#include "plugin/solvers/chain_params.h"

namespace tavrilon::detail {

using namespace corvanta;

namespace {

/// A segment of the limb while its twist bones are built.
struct Segment {
  size_t joint;
  int count;
  Point3 start, end;
  /// What the bones are called.
  WStr word;

  Point3 At(float f) const { return start + (end - start) * f; }
  float Length() const { return corvanta::Length(end - start); }
};

Matrix3 Placed(const Matrix3& frame, const Point3& place) {
  Matrix3 tm = frame;
  tm.SetTrans(place);
  return tm;
}

std::vector<INode*> BuildTwistBones(Limb& limb, const Segment& segment) {
  std::vector<INode*> bones;
  const Matrix3 frame = limb.controls[segment.joint]->GetNodeTM(0);
  const float step = 1.0f / static_cast<float>(segment.count);
  for (int i = 0; i < segment.count; ++i) {
    BoneSpec spec;
    spec.name = {limb.WordOfPair(segment.word), limb.side, i};
    spec.tm = Placed(frame, segment.At(step * static_cast<float>(i)));
    spec.parent = limb.lastBone;
    spec.length = segment.Length() * step;
    INode* bone = limb.parts.make.MakeBone(spec);
    if (!bone) break;
    bones.push_back(limb.lastBone = bone);
  }
  return bones;
}

// At a joint inside the limb a bendy tangent leaves its segment for the joint's anchor: the curves on both sides then
// run through the joint with one tangent.
void MakeBendy(Limb& limb, INode* tangent, INode* segment, INode* anchor) {
  const BindTarget targets[] = {{segment, 100}, {anchor, 0}};
  if (ParamBlock2* block = limb.parts.make.BindParent(tangent, targets)) limb.bendy.push_back(block);
}

/// `anchor` is that of the joint at this end; null at an end of the limb.
INode* BuildTangent(Limb& limb, const Segment& segment, const wchar_t* suffix, float at, INode* anchor) {
  INode* control = limb.controls[segment.joint];
  const PartName name = limb.Name(segment.word + suffix);
  const Matrix3 tm = Placed(control->GetNodeTM(0), segment.At(at));
  if (!limb.Option(rig_param::kBendyControls)) return limb.parts.make.MakeHelper(name, tm, control, 0);
  ControlSpec spec = limb.Spec(name, tm, control);
  spec.shape = ShapeType::SphereIcosa;
  spec.size = 0.12f * limb.Length();
  spec.secondary = true;
  INode* tangent = limb.parts.make.MakeControl(spec);
  if (tangent && anchor) MakeBendy(limb, tangent, control, anchor);
  return tangent;
}

void AddPoint(ParamBlock2& chain, INode* point, INode* in, INode* out) {
  using namespace curve_ik_chain;
  const auto append = [&](ParamID id, INode* node) { chain.Append(id, static_cast<ReferenceTarget*>(node)); };
  append(kPoints, point);
  chain.Append(kPointsTypes, static_cast<int>(kBezier));
  append(kInTangents, in);
  append(kOutTangents, out);
  chain.Append(kInnerInTangents, Point3());
  chain.Append(kInnerOutTangents, Point3());
  chain.Append(kPointsTwist, 0.0f);
  chain.Append(kPointsWaveAmplitude, 1.0f);
  chain.Append(kUseTangentNodes, true);
}

/// The roll of the limb's first segment against what it hangs on, taken off the root end of its bones.
Control* NewRootUnroll(INode* segment, INode* hung) {
  Control* roll = NewControl(TavrilonClass::FloatExposeTM);
  ParamBlock2* block = BlockOf(roll);
  if (!block) return nullptr;
  using namespace float_expose_tm;
  block->SetValue(kComponent, 0, static_cast<int>(float_expose_tm::Component::TwistX));
  block->SetValue(kReference, 0, static_cast<ReferenceTarget*>(hung));
  block->SetValue(kNode, 0, static_cast<ReferenceTarget*>(segment));
  block->SetValue(kScale, 0, -1.0f);
  return roll;
}

void SetJoints(ParamBlock2& chain, const std::vector<INode*>& bones) {
  using namespace curve_ik_chain;
  for (INode* bone : bones) chain.Append(kJoints, static_cast<ReferenceTarget*>(bone));
  for (size_t i = 0; i < bones.size(); ++i) {
    ParamBlock2* joint = BlockOf(bones[i]->GetTMController());
    if (!joint) continue;
    const float percent = static_cast<float>(i) / static_cast<float>(bones.size());
    joint->SetValue(curve_ik_control::kPercent, 0, percent);
    joint->SetValue(curve_ik_control::kSquash, 0, 1.0f);
  }
}

void BuildTwistChain(Limb& limb, const Segment& segment, const std::vector<INode*>& bones) {
  INode* control = limb.controls[segment.joint];
  INode* anchor = limb.anchors[segment.joint + 1];
  const bool first = segment.joint == static_cast<size_t>(limb.row.firstJoint);
  const bool last = segment.joint + 2 == limb.row.joints.size();
  INode* out = BuildTangent(limb, segment, L"_tangent_start", 1.0f / 3, first ? nullptr : limb.anchors[segment.joint]);
  INode* in = BuildTangent(limb, segment, L"_tangent_end", 2.0f / 3, last ? nullptr : anchor);
  INode* node = limb.parts.make.MakeHelper(limb.Name(segment.word + L"_curveikchain"), control->GetNodeTM(0),
                                           limb.parts.state.main, 0);
  Control* solver = NewControl(TavrilonClass::CurveIKChain);
  ParamBlock2* chain = BlockOf(solver);
  if (!node || !anchor || !chain) return;
  const HoldResume recorded;
  node->SetTMController(solver);
  using namespace curve_ik_chain;
  AddPoint(*chain, control, nullptr, out);
  AddPoint(*chain, anchor, in, nullptr);
  if (first && limb.hung.control) {
    INode* hung = segment.joint > 0 ? limb.controls[segment.joint - 1] : limb.hung.control;
    chain->SetController(kPointsTwist, NewRootUnroll(control, hung), 0);
  }
  chain->SetValue(kFollowType, 0, static_cast<int>(bones.size() > 1 ? kFollowChild : kFollowTangent));
  chain->SetValue(kUsePointsRotation, 0, true);
  chain->SetValue(kAutoStretch, 0, 1.0f);
  chain->SetValue(kParentSpace, 0, static_cast<int>(kChainParentSpace));
  SetJoints(*chain, bones);
  chain->SetValue(kChainLength, 0, segment.Length());
  limb.twists.push_back(chain);
}

/// The bones of one joint's segment; gives the first of them.
INode* BuildSegment(Limb& limb, size_t joint) {
  const JointRow& row = limb.row.joints[joint];
  const bool inner = joint + 1 < limb.points.size();
  const int count = inner && *row.twist ? limb.Count(row.twistBones) : 0;
  if (count > 0) {
    const Segment segment{joint, count, limb.Place(joint), limb.Place(joint + 1), row.twist};
    const std::vector<INode*> bones = BuildTwistBones(limb, segment);
    if (bones.empty()) return nullptr;
    BuildTwistChain(limb, segment, bones);
    return bones.front();
  }
  const float own = limb.parts.SegmentLength(limb.points[joint]);
  // A joint at the very end has no segment: its bone is a stub.
  const float length = own > 0 ? own : 0.3f * limb.EndLength();
  INode* control = limb.controls[joint];
  return limb.lastBone = limb.parts.make.MakeBone(
             {limb.Name(row.word), control->GetNodeTM(0), limb.lastBone, length, true, false, control});
}

}  // namespace

void BuildLimbBones(Limb& limb) {
  limb.lastBone = limb.hung.bone;
  for (size_t i = 0; i < limb.controls.size(); ++i) limb.bones.push_back(BuildSegment(limb, i));
}

void ConnectTwists(Limb& limb) {
  if (!limb.attrib) return;
  for (ParamBlock2* chain : limb.twists)
    ConnectFloat(*chain, curve_ik_chain::kSquash, *limb.attrib, limb_attrib::kSquash);
  // Weight of the segment 100 - 100 bendy, of the anchor 100 bendy.
  ConnectionSpec segment, anchor;
  segment.transform = anchor.transform = float_connection::kOffsetWeight;
  segment.offset = 100;
  segment.weight = -100;
  anchor.weight = 100;
  for (ParamBlock2* block : limb.bendy) {
    ConnectFloat(*block, 0, *limb.attrib, limb_attrib::kBendy, segment, 0);
    ConnectFloat(*block, 0, *limb.attrib, limb_attrib::kBendy, anchor, 1);
  }
}

}  // namespace tavrilon::detail
