// SPDX-License-Identifier: MIT
// Torso, pelvis and spine. The torso carries a row of FK controls; with IK, a hip and a chest control at the two ends
// of the spine and a tweak at each point between them hang on that row, and the spine's bones run on the curve through
// them. So bending the row bends the curve without stretching it, and moving the chest alone drags the middle along.
#include <algorithm>
#include <cmath>

#include "plugin/attributes/attrib_params.h"
#include "plugin/rig/detail/trunk.h"
#include "plugin/shapes/control_params.h"

namespace tavrilon::detail {

using namespace corvanta;
using namespace rig_param;

int Count(const Parts& parts, ID id) { return std::clamp(parts.rig.Block().GetInt(id), 0, 99); }

float TrunkSize(const Parts& parts) {
  const int last = Count(parts, kSpineControls) - 1;
  const float length = parts.Distance(parts.Point({L"pelvis"}), parts.Point({L"spine", kSideCenter, last}));
  const float size = length > 0 ? std::min(length, 0.32f * parts.height) : 0.2f * parts.height;
  return parts.rig.Type() == RigType::Insect ? 0.6f * size : size;  // its body is flat
}

namespace {

constexpr SpinnerRow kSpinners[] = {{L"Manual Stretch", curve_attrib::kManualStretch},
                                    {L"Auto Stretch", curve_attrib::kAutoStretch},
                                    {L"Squash", curve_attrib::kSquash},
                                    {L"Backwards", curve_attrib::kBackwards},
                                    {L"Slide Joints", curve_attrib::kSlideJoints}};

/// The spine while it is built.
struct Spine {
  explicit Spine(Parts& p)
      : parts(p),
        controls(Count(p, kSpineControls)),
        pelvis(p.Point({L"pelvis"})),
        size(TrunkSize(p)),
        curve(p.rig.Block().GetBool(kUseSpineBones)),
        ik(curve && p.rig.Block().GetBool(kIkSpine)) {
    for (int i = 0; i < controls; ++i) row.push_back(p.Point({L"spine", kSideCenter, i}));
    // A spine of one control has no span of its own: its curve begins at the pelvis.
    if (row.size() == 1) row.insert(row.begin(), pelvis);
  }
  Matrix3 TM(size_t i) const { return parts.frames.PointTM(row[i], parts.height); }
  size_t Last() const { return row.size() - 1; }
  INode* Chest() const { return parts.state.chest; }

  Parts& parts;
  int controls;
  int pelvis;
  float size;
  bool curve, ik;
  /// Points of the curve.
  std::vector<int> row;
  Anchor torso, hips;
  /// By spine point; without a curve each has its bone.
  std::vector<Anchor> fk;
  INode* hip = nullptr;
  INode* chest = nullptr;
  std::vector<CurvePoint> points;
  std::vector<INode*> bones;
};

ControlSpec SpineControl(const Spine& spine, const PartName& name, const Matrix3& tm, INode* parent, ShapeType shape,
                         float size) {
  ControlSpec spec;
  spec.name = name;
  spec.tm = tm;
  spec.parent = parent;
  spec.shape = shape;
  spec.size = size * spine.size;
  spec.group = L"spine";
  return spec;
}

INode* MakePicked(Spine& spine, const ControlSpec& spec, PickerKind kind) {
  INode* control = spine.parts.make.MakeControl(spec);
  spine.parts.panel.BodyPicker(control, kind);
  return control;
}

void MakeTorso(Spine& spine) {
  Parts& parts = spine.parts;
  const Matrix3 tm = parts.TM({L"pelvis"});
  ControlSpec torso = SpineControl(spine, {L"torso"}, tm, parts.state.main, ShapeType::ArrowCross, 0.9f);
  torso.mirrorPosAxis = 0;  // a child of main: its parent frame is the world's
  spine.torso = {MakePicked(spine, torso, PickerKind::Torso), parts.state.root};
  if (spine.curve) {
    BoneSpec bone{torso.name, tm, parts.state.root, 0.12f * spine.size};
    bone.width = SpineBoneWidth(parts);
    bone.follows = spine.torso.control;
    spine.torso.bone = parts.make.MakeBone(bone);
  }
  parts.state.torso = parts.state.chest = spine.torso.control;
  parts.LeaveAs(L"torso", spine.torso);
}

// The pelvis hangs on the hip, or on the torso and not on the first FK control: the hips must not swing with the first
// bend.
void MakePelvis(Spine& spine) {
  Parts& parts = spine.parts;
  const Matrix3 tm = parts.TM({L"pelvis"});
  ControlSpec pelvis = SpineControl(spine, {L"pelvis"}, tm, spine.torso.control, ShapeType::Peanut, 0.75f);
  pelvis.shapeOffset = {-0.15f * spine.size, 0, 0};
  spine.hips.control = MakePicked(spine, pelvis, PickerKind::Pelvis);
  parts.make.BindParent(spine.hips.control, spine.hip ? spine.hip : spine.torso.control);
  BoneSpec bone{pelvis.name, tm, spine.torso.bone, 0.3f * spine.size};
  bone.width = SpineBoneWidth(parts);
  bone.follows = spine.hips.control;
  spine.hips.bone = parts.make.MakeBone(bone);
  parts.Leave(spine.pelvis, spine.hips);
}

void MakeFkRow(Spine& spine) {
  Parts& parts = spine.parts;
  Anchor last = spine.torso;
  for (int i = 0; i + 1 < spine.controls; ++i) {
    const PartName point{L"spine", kSideCenter, i};
    ControlSpec fk =
        SpineControl(spine, {L"fk_spine", kSideCenter, i}, parts.TM(point), last.control, ShapeType::Circle, 0.8f);
    const float segment = parts.SegmentLength(parts.Point(point));
    fk.shapeOffset = {0.5f * segment, 0, 0};  // clear of torso and pelvis
    if (spine.curve)
      last = {parts.make.MakeControl(fk), nullptr};
    else
      last = parts.MakePart(fk, last.bone, segment, SpineBoneWidth(parts));
    parts.panel.BodyPicker(last.control, PickerKind::Spine);
    spine.fk.push_back(last);
    parts.state.chest = last.control;
  }
}

/// Hip and chest are boards across the body, bent around it.
INode* MakeBoard(Spine& spine, const wchar_t* word, size_t i, INode* parent, float warp) {
  INode* board = MakePicked(spine, SpineControl(spine, {word}, spine.TM(i), parent, ShapeType::Rectangle, 0.9f),
                            PickerKind::Spine);
  if (!board) return nullptr;
  ParamBlock2& shape = *board->GetBaseObject()->GetParamBlock();
  shape.SetValue(kControlWarpAmount, 0, warp);
  shape.SetValue(kControlWarpAxis, 0, 1);
  return board;
}

/// Between two points a tweak follows the FK row, and the more the higher it stands, the chest.
CurvePoint MakeTweak(Spine& spine, size_t i) {
  Parts& parts = spine.parts;
  const int index = static_cast<int>(i);
  INode* fk = spine.fk[i].control;
  ControlSpec spec = SpineControl(spine, {L"spine", kSideCenter, index}, spine.TM(i), fk, ShapeType::Sphere, 0.12f);
  spec.secondary = true;
  INode* tweak = MakePicked(spine, spec, PickerKind::Spine);
  const float u = static_cast<float>(i) / static_cast<float>(spine.Last());
  const NodeFactory::ParentTarget targets[] = {{fk, 100 * (1 - u)}, {spine.chest, 100 * u}};
  parts.make.BindParents(tweak, targets);
  // For a tweak that is turned into a point with tangents of its own.
  return {tweak, curve_ik_chain::kSmooth,
          MakeTangent(parts, {L"spine_tangent_in", kSideCenter, index}, spine.row, i, false, tweak),
          MakeTangent(parts, {L"spine_tangent_out", kSideCenter, index}, spine.row, i, true, tweak)};
}

void MakeIk(Spine& spine) {
  Parts& parts = spine.parts;
  const size_t last = spine.Last();
  spine.hip = MakeBoard(spine, L"ik_hip", 0, spine.torso.control, 0.25f);
  spine.chest = MakeBoard(spine, L"ik_chest", last, spine.Chest(), -0.25f);
  spine.points.push_back(
      {spine.hip, curve_ik_chain::kBezier, nullptr, MakeTangent(parts, {L"ik_hip"}, spine.row, 0, true, spine.hip)});
  for (size_t i = 1; i < last; ++i) spine.points.push_back(MakeTweak(spine, i));
  spine.points.push_back({spine.chest, curve_ik_chain::kBezier,
                          MakeTangent(parts, {L"ik_chest"}, spine.row, last, false, spine.chest), nullptr});
}

/// Without IK the curve runs through the FK controls to a helper on the last one.
void MakeFkPoints(Spine& spine) {
  if (spine.fk.empty()) spine.points.push_back({spine.torso.control});
  for (const Anchor& fk : spine.fk) spine.points.push_back({fk.control});
  INode* end =
      spine.parts.make.MakeHelper({L"spine_end"}, spine.TM(spine.Last()), spine.Chest(), 0.02f * spine.parts.height);
  spine.points.push_back({end});
}

void MakeCurve(Spine& spine) {
  Parts& parts = spine.parts;
  CurveRowSpec spec;
  spec.row = {L"spine"};
  spec.points = spine.points;
  spec.bones = BonesAlong(parts, {L"spine_bone"}, spine.row);
  spec.parent = spine.torso;
  spec.boneWidth = SpineBoneWidth(parts);
  spec.subControls = parts.rig.Block().GetBool(kSubControls);
  spec.subSize = 0.5f * spine.size;
  spec.group = L"spine";
  const CurveRow row = MakeCurveRow(parts, spec);
  spine.bones = row.bones;
  if (ParamBlock2* attrib = AddCurveAttrib(spine.chest, row))
    parts.panel.Group(L"IK Spine", nullptr, spine.chest, attrib, kSpinners);
}

/// The bone that a part at spine point `i` hangs on: the nearest below, since bones are spread evenly over the row.
INode* BoneBelow(const Spine& spine, int i) {
  if (!spine.curve) return spine.fk[static_cast<size_t>(i)].bone;
  if (spine.bones.empty()) return spine.torso.bone;
  const float perSpan = static_cast<float>(spine.bones.size()) / static_cast<float>(spine.Last());
  const auto bone = static_cast<size_t>(static_cast<float>(i) * perSpan + 1e-3f);
  return spine.bones[std::min(bone, spine.bones.size() - 1)];
}

/// Arms hang on the shoulders, at the spine's last point.
void MakeShoulders(Spine& spine) {
  Parts& parts = spine.parts;
  const PartName top{L"spine", kSideCenter, spine.controls - 1};
  ControlSpec spec = SpineControl(spine, {L"shoulders"}, parts.TM(top), spine.chest ? spine.chest : spine.Chest(),
                                  ShapeType::ArrowDouble, 0.6f);
  spec.shapeAxis = 1;  // its arrows point to the sides
  INode* control = MakePicked(spine, spec, PickerKind::Spine);
  INode* bone = !spine.bones.empty() ? spine.bones.back() : spine.fk.empty() ? spine.torso.bone : spine.fk.back().bone;
  parts.Leave(parts.Point(top), {control, bone});
}

}  // namespace

void BuildSpine(Parts& parts) {
  Spine spine(parts);
  if (spine.pelvis < 0 || spine.controls < 1) return;
  MakeTorso(spine);
  MakeFkRow(spine);
  if (spine.ik)
    MakeIk(spine);
  else if (spine.curve)
    MakeFkPoints(spine);
  MakePelvis(spine);
  if (spine.curve) MakeCurve(spine);
  for (int i = 0; i + 1 < spine.controls; ++i)
    parts.Leave(parts.Point({L"spine", kSideCenter, i}),
                {spine.fk[static_cast<size_t>(i)].control, BoneBelow(spine, i)});
  MakeShoulders(spine);
  parts.state.spineTop = spine.chest ? spine.chest : spine.Chest();
}

// Limb rigs with a pelvis point and no spine: the point's own control.
void BuildPelvisPoint(Parts& parts) {
  const PartName name{L"pelvis"};
  if (!parts.Has(name)) return;
  ControlSpec pelvis;
  pelvis.name = name;
  pelvis.tm = parts.TM(name);
  pelvis.parent = parts.state.main;
  pelvis.shape = ShapeType::Peanut;
  pelvis.size = 0.25f * parts.height;
  pelvis.mirrorPosAxis = 0;
  pelvis.group = L"spine";
  const Anchor hips = parts.MakePart(pelvis, parts.state.root, 0.1f * parts.height, SpineBoneWidth(parts));
  parts.panel.BodyPicker(hips.control, PickerKind::Pelvis);
  parts.Leave(parts.Point(name), hips);
}

}  // namespace tavrilon::detail
