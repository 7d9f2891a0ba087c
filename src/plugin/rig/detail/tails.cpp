// SPDX-License-Identifier: MIT
// Free rows of controls: tails, ponytails and the extras that a user adds.
#include "plugin/rig/detail/trunk.h"

namespace tavrilon::detail {

using namespace corvanta;
using namespace rig_param;

namespace {

/// Outlines and bones by the segment that they stand on.
constexpr float kRingOfSegment = 1.2f;

PartName PointOf(const TailSpec& spec, int i) {
  return spec.row >= 0 ? PartName{spec.word, spec.side, spec.row, i} : PartName{spec.word, spec.side, i};
}

/// The row's name as one word: "tail_1".
WStr RowWord(const TailSpec& spec) { return PointName(spec.word, kSideCenter, spec.row); }

/// The point after the last control; -1 without one.
int EndPoint(const Parts& parts, const TailSpec& spec, int controls) {
  const int next = parts.Point(PointOf(spec, controls));
  return next >= 0 ? next : parts.Point({RowWord(spec) + L"_end", spec.side});
}

struct Tail {
  std::vector<int> row;
  std::vector<INode*> controls;
  Anchor first;
};

Tail MakeControls(Parts& parts, const TailSpec& spec, Anchor parent) {
  Tail tail;
  for (int i = 0; i < spec.controls; ++i) {
    const PartName name = PointOf(spec, i);
    const int point = parts.Point(name);
    if (point < 0) break;
    const float segment = parts.SegmentLength(point);
    ControlSpec control;
    control.name = name;
    control.tm = parts.TM(name);
    control.parent = parent.control;
    control.size = kRingOfSegment * segment;
    control.shapeOffset = {segment * 0.5f, 0, 0};
    control.group = spec.group;
    if (parent.control == parts.state.main && spec.side == kSideCenter) control.mirrorPosAxis = 0;
    if (spec.curve)
      parent.control = parts.make.MakeControl(control);
    else
      parent = parts.MakePart(control, parent.bone, segment, TailBoneWidth(segment));
    parts.panel.BodyPicker(parent.control, PickerKind::Limb);
    parts.Leave(point, parent);
    if (tail.controls.empty()) tail.first = parent;
    tail.row.push_back(point);
    tail.controls.push_back(parent.control);
  }
  return tail;
}

void MakeBones(Parts& parts, const TailSpec& spec, Tail& tail, const Anchor& parent) {
  const int end = EndPoint(parts, spec, static_cast<int>(tail.controls.size()));
  if (end < 0) return;
  tail.row.push_back(end);
  const WStr word = RowWord(spec);
  const size_t last = tail.controls.size();
  Matrix3 tm = tail.controls.back()->GetNodeTM(0);
  tm.SetTrans(parts.Place(end));
  INode* tip = parts.make.MakeHelper({word + L"_end", spec.side}, tm, tail.controls.back(), 0.02f * parts.height);

  CurveRowSpec curve;
  curve.row = {word, spec.side};
  for (INode* control : tail.controls) curve.points.push_back({control});
  curve.points.push_back({tip});
  curve.points.front().type = curve.points.back().type = curve_ik_chain::kBezier;
  curve.points.front().outTangent =
      MakeTangent(parts, {word + L"_tangent_start", spec.side}, tail.row, 0, true, tail.controls.front());
  curve.points.back().inTangent = MakeTangent(parts, {word + L"_tangent_end", spec.side}, tail.row, last, false, tip);
  curve.bones = BonesAlong(parts, {word + L"_bone", spec.side}, tail.row);
  curve.parent = parent;
  const float segment = parts.SegmentLength(tail.row.front());
  curve.boneWidth = TailBoneWidth(segment);
  curve.subControls = parts.rig.Block().GetBool(kSubControls);
  curve.subSize = 0.7f * segment;
  curve.group = spec.group;
  const CurveRow row = MakeCurveRow(parts, curve);
  AddCurveAttrib(tail.controls.front(), row);
  if (row.bones.empty()) return;
  tail.first.bone = row.bones.front();
  // What hangs on the row hangs on the bone nearest below its point, the bones being spread evenly.
  for (size_t i = 0; i < last; ++i)
    parts.Leave(tail.row[i], {tail.controls[i], row.bones[i * row.bones.size() / last]});
}

}  // namespace

Anchor BuildTail(Parts& parts, const TailSpec& spec) {
  const int first = parts.Point(PointOf(spec, 0));
  if (first < 0) return {};
  const Anchor parent = parts.ParentOf(first);
  Tail tail = MakeControls(parts, spec, parent);
  if (spec.curve && !tail.controls.empty()) MakeBones(parts, spec, tail, parent);
  return tail.first;
}

void BuildTailRows(Parts& parts, const wchar_t* word, int rows, int controls, bool curve) {
  for (int i = 0; i < rows; ++i)
    BuildTail(parts, {word, kSideCenter, i, controls, curve, PartName{word, kSideCenter, i}.Base()});
}

void BuildTails(Parts& parts) {
  BuildTailRows(parts, L"tail", Count(parts, kTails), Count(parts, kTailControls),
                parts.rig.Block().GetBool(kUseTailBones));
}

void BuildExtraRow(Parts& parts, const RigExtra& extra, int side) {
  const int first = parts.Point({extra.name, side, 0});
  const Anchor made =
      BuildTail(parts, {extra.name, side, -1, extra.num_controls, extra.use_bones, PartName{extra.name, side}.Base()});
  if (made.control) parts.Wait(first, made);
}

}  // namespace tavrilon::detail
