// SPDX-License-Identifier: MIT
// Neck and head, with fangs and ponytails.
#include <algorithm>

#include "plugin/attributes/attributes.h"
#include "plugin/connections/connect.h"
#include "plugin/constraints/rotation_space.h"
#include "plugin/rig/detail/trunk.h"
#include "plugin/rig/detail/wiring.h"

namespace tavrilon::detail {

using namespace corvanta;
using namespace rig_param;

namespace {

constexpr wchar_t kGroup[] = L"head_0";
constexpr SpinnerRow kHeadSpinners[] = {{L"Rotation Space", head_attrib::kRotationSpace}};

/// The neck's controls, and with a curve its bones up to the head.
struct Neck {
  std::vector<int> row;
  std::vector<INode*> controls;
  /// What the head hangs on.
  Anchor last;
};

/// A long neck has many rings close together: they get smaller, down to a third of a short neck's.
float NeckRing(const Parts& parts, float segment) {
  const float ring = 0.35f * TrunkSize(parts);
  return std::clamp(1.4f * segment, ring / 3, ring);
}

// The neck follows the top of the spine, not the shoulders: a shrug must not lift the head.
Neck MakeNeck(Parts& parts, Anchor parent, bool curve) {
  Neck neck;
  neck.last = parent;
  for (int i = 0; i < Count(parts, kNeckControls); ++i) {
    const PartName name{L"neck", kSideCenter, i};
    const int point = parts.Point(name);
    if (point < 0) break;
    const float segment = parts.SegmentLength(point);
    ControlSpec spec;
    spec.name = name;
    spec.tm = parts.TM(name);
    spec.parent = neck.last.control;
    spec.size = NeckRing(parts, segment);
    spec.shapeOffset = {0.5f * segment, 0, 0};
    spec.group = kGroup;
    if (!parts.state.torso && i == 0) spec.mirrorPosAxis = 0;  // a child of main
    if (curve)
      neck.last.control = parts.make.MakeControl(spec);
    else
      neck.last = parts.MakePart(spec, neck.last.bone, segment, NeckBoneWidth(parts));
    if (i == 0 && parts.state.spineTop) parts.make.BindParent(neck.last.control, parts.state.spineTop);
    parts.panel.BodyPicker(neck.last.control, PickerKind::Spine);
    parts.Leave(point, neck.last);
    neck.row.push_back(point);
    neck.controls.push_back(neck.last.control);
  }
  return neck;
}

INode* MakeHead(Parts& parts, const Neck& neck, float length) {
  ControlSpec spec;
  spec.name = {L"head"};
  spec.tm = parts.TM(spec.name);
  spec.parent = neck.last.control;
  spec.size = 0.9f * length;
  spec.shapeOffset = {0.5f * length, 0, 0};
  spec.group = kGroup;
  if (neck.last.control == parts.state.main) spec.mirrorPosAxis = 0;
  INode* head = parts.make.MakeControl(spec);
  parts.panel.BodyPicker(head, PickerKind::Head);
  parts.state.head = head;
  return head;
}

// At full weight the head keeps looking where it looked, however the neck bends; its place goes with the neck.
void FollowTorsoByWeight(Parts& parts, INode* head) {
  if (!head || !parts.state.torso) return;
  ParamBlock2* space = AddRotationSpace(head, parts.state.torso, 1);
  ParamBlock2* attrib = space ? AddAttrib(head, TavrilonClass::HeadAttrib) : nullptr;
  if (!attrib) return;
  ConnectFloat(*space, RotationSpace::kWeight, *attrib, head_attrib::kRotationSpace, {.twoWay = true});
  parts.panel.Group(L"Head", nullptr, head, attrib, kHeadSpinners);
}

/// The curve runs through the neck's controls to the head, whose tangent turns with it.
INode* MakeNeckBones(Parts& parts, Neck& neck, INode* head, int headPoint, INode* parentBone) {
  neck.row.push_back(headPoint);
  CurveRowSpec spec;
  spec.row = {L"neck"};
  const size_t last = neck.controls.size();
  for (INode* control : neck.controls) spec.points.push_back({control});
  spec.points.push_back(
      {head, curve_ik_chain::kBezier, MakeTangent(parts, {L"neck_tangent_end"}, neck.row, last, false, head), nullptr});
  spec.points.front().type = curve_ik_chain::kBezier;
  spec.points.front().outTangent =
      MakeTangent(parts, {L"neck_tangent_start"}, neck.row, 0, true, neck.controls.front());
  spec.bones = BonesAlong(parts, {L"neck_bone"}, neck.row);
  spec.parent = {parts.state.torso ? parts.state.torso : parts.state.main, parentBone};
  spec.boneWidth = NeckBoneWidth(parts);
  spec.subControls = parts.rig.Block().GetBool(kSubControls);
  spec.subSize = 0.8f * NeckRing(parts, 0);
  spec.group = kGroup;
  const CurveRow row = MakeCurveRow(parts, spec);
  AddCurveAttrib(neck.controls.front(), row);
  return row.bones.empty() ? parentBone : row.bones.back();
}

void MakeHeadEnd(Parts& parts, const Anchor& skull, float length) {
  const PartName end{L"head_end"};
  if (!parts.Has(end) || !skull.control) return;
  ControlSpec marker;
  marker.name = end;
  marker.tm = skull.control->GetNodeTM(0);
  marker.tm.SetTrans(parts.Place(parts.Point(end)));
  marker.parent = skull.control;
  marker.shape = ShapeType::Sphere;
  marker.size = 0.12f * length;
  marker.secondary = true;
  marker.group = kGroup;
  parts.Leave(parts.Point(end), parts.MakePart(marker, skull.bone, 0.2f * length));
}

/// Two controls and one: fangs and the corners of the mouth.
void MakeFangs(Parts& parts, const Anchor& head) {
  const struct {
    const wchar_t* word;
    int count;
  } kRows[] = {{L"fang", 2}, {L"mouth", 1}};
  for (const int side : {kSideRight, kSideLeft})
    for (const auto& row : kRows) {
      Anchor last = head;
      for (int i = 0; i < row.count; ++i) {
        const PartName name{row.word, side, i};
        if (!parts.Has(name)) continue;
        const float length = std::max(parts.SegmentLength(parts.Point(name)), 0.01f * parts.height);
        ControlSpec spec;
        spec.name = name;
        spec.tm = parts.TM(name);
        spec.parent = last.control;
        spec.secondary = true;
        spec.size = 1.2f * length;
        spec.group = kGroup;
        last = parts.MakePart(spec, last.bone, length, TailBoneWidth(length));
        parts.panel.BodyPicker(last.control, PickerKind::Pole);
        parts.Leave(parts.Point(name), last);
      }
    }
}

}  // namespace

void BuildHead(Parts& parts) {
  const int headPoint = parts.Point({L"head"});
  if (headPoint < 0) return;
  const ParamBlock2& block = parts.rig.Block();
  BuildState& state = parts.state;
  const int firstNeck = parts.Point({L"neck", kSideCenter, 0});
  const bool curve = firstNeck >= 0 && block.GetBool(kUseNeckBones);

  Anchor parent = parts.ParentOf(firstNeck >= 0 ? firstNeck : headPoint);
  parent.control = state.torso ? state.torso : state.main;
  Neck neck = MakeNeck(parts, parent, curve);
  const float length = parts.SegmentLength(headPoint);
  Anchor skull{MakeHead(parts, neck, length), neck.last.bone};
  if (neck.controls.empty() && state.spineTop) parts.make.BindParent(skull.control, state.spineTop);
  if (curve) skull.bone = MakeNeckBones(parts, neck, skull.control, headPoint, parent.bone);
  BoneSpec bone{{L"head"}, parts.TM({L"head"}), skull.bone, length};
  bone.width = std::min(0.35f * length, 0.045f * parts.height);
  bone.follows = skull.control;
  skull.bone = parts.make.MakeBone(bone);
  parts.Leave(headPoint, skull);
  FollowTorsoByWeight(parts, skull.control);

  MakeHeadEnd(parts, skull, length);
  if (block.GetBool(kFangs)) MakeFangs(parts, skull);
  BuildTailRows(parts, L"ponytail", Count(parts, kPonytails), Count(parts, kPonytailControls),
                block.GetBool(kUsePonytailBones));
}

}  // namespace tavrilon::detail
