// SPDX-License-Identifier: MIT
// The bones of a limb. A segment without twist bones has one that follows its control. With them it is a curve chain
// from the control to the roll anchor at the next joint: the bones share the roll between the two, and with bendy
// controls the curve may leave the straight line.
#include "host/core/hold.h"
#include "host/core/param_block.h"
#include "plugin/attributes/attrib_params.h"
#include "plugin/connections/connect.h"
#include "plugin/constraints/target_constraint.h"
#include "plugin/rig/detail/curve_row.h"
#include "plugin/rig/detail/limb.h"
#include "plugin/rig/detail/wiring.h"
#include "plugin/solvers/chain_params.h"

namespace tavrilon::detail {

using namespace corvanta;

namespace {

/// Width of a twist bone in lengths of its whole segment.
constexpr float kTwistBoneWidth = 0.08f;

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

// At a joint inside the limb a bendy tangent leaves its segment for the joint's anchor: the curves on both sides then
// run through the joint with one tangent.
void MakeBendy(Limb& limb, INode* tangent, INode* segment, INode* anchor) {
  const NodeFactory::ParentTarget targets[] = {{segment, 100}, {anchor, 0}};
  if (ParamBlock2* block = limb.parts.make.BindParents(tangent, targets)) limb.bendy.push_back(block);
}

/// `anchor` is that of the joint at this end; null at an end of the limb.
INode* BuildTangent(Limb& limb, const Segment& segment, const wchar_t* suffix, float at, INode* anchor) {
  INode* control = limb.controls[segment.joint];
  const PartName name = limb.Name(segment.word + suffix);
  Matrix3 tm = control->GetNodeTM(0);
  tm.SetTrans(segment.At(at));
  if (!limb.Option(rig_param::kBendyControls)) return limb.parts.make.MakeHelper(name, tm, control, 0);
  ControlSpec spec = limb.Spec(name, tm, control);
  spec.shape = ShapeType::SphereIcosa;
  spec.size = 0.12f * limb.Length();
  spec.secondary = true;
  INode* tangent = limb.parts.make.MakeControl(spec);
  if (tangent && anchor) MakeBendy(limb, tangent, control, anchor);
  return tangent;
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

// Bones stand at the start of their shares, so the first takes nothing of the roll and the last not all of it.
std::vector<CurveBone> TwistBones(const Limb& limb, const Segment& segment) {
  std::vector<CurveBone> bones;
  const float step = 1.0f / static_cast<float>(segment.count);
  for (int i = 0; i < segment.count; ++i) {
    const PartName name{limb.WordOfPair(segment.word), limb.side, i};
    bones.push_back({name, step * static_cast<float>(i), segment.Length() * step});
  }
  return bones;
}

std::vector<INode*> BuildTwist(Limb& limb, const Segment& segment) {
  INode* control = limb.controls[segment.joint];
  INode* anchor = limb.anchors[segment.joint + 1];
  const bool first = segment.joint == static_cast<size_t>(limb.row.firstJoint);
  const bool last = segment.joint + 2 == limb.row.joints.size();
  INode* out = BuildTangent(limb, segment, L"_tangent_start", 1.0f / 3, first ? nullptr : limb.anchors[segment.joint]);
  INode* in = BuildTangent(limb, segment, L"_tangent_end", 2.0f / 3, last ? nullptr : anchor);
  CurveRowSpec spec;
  spec.row = limb.Name(segment.word);
  // A straight segment costs no curve, and stays straight however it is stretched.
  const int type = limb.Option(rig_param::kBendyControls) ? curve_ik_chain::kBezier : curve_ik_chain::kCorner;
  spec.points = {{control, type, nullptr, out}, {anchor, type, in, nullptr}};
  spec.bones = TwistBones(limb, segment);
  spec.parent = {limb.parts.state.main, limb.lastBone};
  // Measured by the segment: many short bones would look like a thread.
  spec.boneWidth = kTwistBoneWidth * segment.Length();
  const CurveRow row = MakeCurveRow(limb.parts, spec);
  if (row.bones.empty()) return {};
  using namespace curve_ik_chain;
  const HoldResume recorded;
  // A bone alone has no next one to look at.
  if (row.bones.size() == 1) row.block->SetValue(kFollowType, 0, static_cast<int>(kFollowTangent));
  row.block->SetValue(kChainLength, 0, segment.Length());
  INode* hung = segment.joint > 0 ? limb.controls[segment.joint - 1] : limb.hung.control;
  if (first && hung) row.block->SetController(kPointsTwist, NewRootUnroll(control, hung), 0);
  limb.twists.push_back(row.block);
  limb.lastBone = row.bones.back();
  return row.bones;
}

/// The bones of one joint's segment; gives the first of them.
INode* BuildSegment(Limb& limb, size_t joint) {
  const JointRow& row = limb.row.joints[joint];
  const bool inner = joint + 1 < limb.points.size();
  const int count = inner && *row.twist ? limb.Count(row.twistBones) : 0;
  if (count > 0) {
    const Segment segment{joint, count, limb.Place(joint), limb.Place(joint + 1), row.twist};
    const std::vector<INode*> bones = BuildTwist(limb, segment);
    return bones.empty() ? nullptr : bones.front();
  }
  const float own = limb.parts.SegmentLength(limb.points[joint]);
  // A joint at the very end has no segment: its bone is a short one.
  const float length = own > 0 ? own : 0.3f * limb.EndLength();
  INode* control = limb.controls[joint];
  BoneSpec bone{limb.Name(row.word), control->GetNodeTM(0), limb.lastBone, length};
  bone.follows = control;
  return limb.lastBone = limb.parts.make.MakeBone(bone);
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
    ConnectFloat(*block, kWeight, *limb.attrib, limb_attrib::kBendy, segment, 0);
    ConnectFloat(*block, kWeight, *limb.attrib, limb_attrib::kBendy, anchor, 1);
  }
}

}  // namespace tavrilon::detail
