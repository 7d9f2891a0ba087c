// SPDX-License-Identifier: MIT
// Limbs of every kind, from one table: a chain of controls along the limb's points, each with its bone, and the digits
// at its end. Twist bones, poles, goals and solvers join this chain; they replace nothing in it.
#include <algorithm>
#include <span>

#include "host/core/param_block.h"
#include "plugin/rig/detail/parts.h"
#include "plugin/shapes/control_params.h"

namespace tavrilon::detail {

using namespace corvanta;
using namespace rig_param;

namespace {

/// A joint of a limb and how its control looks.
struct Joint {
  const wchar_t* word;
  ShapeType shape = ShapeType::Circle;
  /// In lengths of the segment.
  float size = 0.5f;
  /// Bends the outline of the left control, whose object the right one shares.
  float warp = 0;
};

struct LimbRow {
  LimbKind kind;
  /// Word of the limb in group texts.
  const wchar_t* group;
  std::span<const Joint> joints;
  /// Counts the pairs; a limb without one has a single pair.
  ID pairs;
  const wchar_t* digit;
  ID digits, digitBones;
  /// Bone between the limb's end and the digit.
  const wchar_t* digitRoot;
  ID digitRoots;
};

constexpr auto kCircle = ShapeType::Circle;
constexpr Joint kArm[] = {{L"clavicle", kCircle, 0.8f},
                          {L"upper_arm", kCircle, 0.55f, 0.2f},
                          {L"forearm", kCircle, 0.45f, -0.2f},
                          {L"hand", kCircle, 1.1f}};
constexpr Joint kLeg[] = {{L"thigh", kCircle, 0.55f}, {L"calf", kCircle, 0.45f}, {L"foot", kCircle, 0.55f}};
constexpr Joint kBackLeg[] = {
    {L"thigh", kCircle, 0.55f}, {L"calf", kCircle, 0.45f}, {L"cannon", kCircle, 0.45f}, {L"foot", kCircle, 0.9f}};
constexpr Joint kFrontLeg[] = {{L"leg_clavicle", kCircle, 0.6f},
                               {L"front_thigh", kCircle, 0.55f},
                               {L"front_calf", kCircle, 0.45f},
                               {L"front_cannon", kCircle, 0.45f},
                               {L"front_foot", kCircle, 0.9f}};
constexpr Joint kForeleg[] = {{L"clavicle", kCircle, 0.6f},
                              {L"upper_arm", kCircle, 0.55f},
                              {L"forearm", kCircle, 0.45f},
                              {L"front_cannon", kCircle, 0.45f},
                              {L"hand", kCircle, 0.9f}};
constexpr Joint kInsectLeg[] = {{L"coxa", kCircle, 0.8f},   {L"femur", kCircle, 0.4f},
                                {L"tibia", kCircle, 0.35f}, {L"metatarsus", kCircle, 0.3f},
                                {L"tarsus", kCircle, 0.4f}, {L"leg_tip", ShapeType::Sphere, 0.4f}};
constexpr Joint kHand[] = {{L"hand", kCircle, 1.1f}};
constexpr Joint kFoot[] = {{L"foot", kCircle, 0.55f}};
constexpr Joint kFrontPaw[] = {{L"front_foot", kCircle, 0.9f}};

const LimbRow kLimbs[] = {
    // kind, group, joints, pairs, digit, counts, root of the digit
    {LimbKind::Arm, L"arm", kArm, kArmPairs, L"finger", kFingers, kFingerBones, L"metacarpal", kMetacarpals},
    {LimbKind::Leg, L"leg", kLeg, kLegPairs, L"toe", kToes, kToeBones, L"metatarsal", kMetatarsals},
    {LimbKind::BackLeg, L"back_leg", kBackLeg, kLegPairs, L"toe", kToes, kToeBones, L"metatarsal", kMetatarsals},
    {LimbKind::FrontLeg, L"front_leg", kFrontLeg, kArmPairs, L"front_toe", kToes, kToeBones, nullptr, kMetatarsals},
    {LimbKind::Foreleg, L"front_leg", kForeleg, kArmPairs, L"finger", kFingers, kFingerBones, nullptr, kMetacarpals},
    {LimbKind::InsectLeg, L"insect_leg", kInsectLeg, kLegPairs, nullptr, kToes, kToeBones, nullptr, kMetatarsals},
    {LimbKind::Hand, L"arm", kHand, kActive, L"finger", kFingers, kFingerBones, L"metacarpal", kMetacarpals},
    {LimbKind::Foot, L"leg", kFoot, kActive, L"toe", kToes, kToeBones, L"metatarsal", kMetatarsals},
    {LimbKind::FrontPaw, L"front_leg", kFrontPaw, kActive, L"finger", kFingers, kFingerBones, nullptr, kMetacarpals},
    {LimbKind::BackPaw, L"back_leg", kFoot, kActive, L"toe", kToes, kToeBones, nullptr, kMetatarsals},
};

const LimbRow& RowOf(LimbKind kind) {
  return *std::find_if(std::begin(kLimbs), std::end(kLimbs), [kind](const LimbRow& r) { return r.kind == kind; });
}

/// Digits of the second and further pairs carry the pair's number in their word, since a name has two indices only.
WStr WordOfPair(const wchar_t* word, int pair) { return pair > 0 ? word + std::to_wstring(pair + 1) : WStr(word); }

/// The clavicle's ring is tilted, so that it can be seen past the shoulder.
Matrix3 ClavicleGizmo(float length) {
  constexpr float kHalf = 0.70710677f;
  Matrix3 gizmo;
  gizmo.SetRow(0, {-kHalf, 0, -kHalf});
  gizmo.SetRow(1, {0, 1, 0});
  gizmo.SetRow(2, {kHalf, 0, -kHalf});
  gizmo.SetTrans({length * 0.5f, 0, 0});
  return gizmo;
}

void BuildDigit(Parts& parts, const LimbRow& limb, int side, int pair, int digit, Anchor parent, const WStr& group) {
  if (limb.digitRoot && parts.rig.Block().GetBool(limb.digitRoots)) {
    const PartName root{WordOfPair(limb.digitRoot, pair), side, digit};
    if (parts.Has(root)) {
      const float length = parts.SegmentLength(parts.Point(root));
      ControlSpec spec;
      spec.name = root;
      spec.tm = parts.TM(root);
      spec.parent = parent.control;
      spec.size = 0.4f * length;
      spec.shapeOffset = {length * 0.5f, 0, 0};
      spec.secondary = true;
      spec.group = group;
      parent = parts.MakePart(spec, parent.bone, length);
      parts.Leave(parts.Point(root), parent);
    }
  }
  RowSpec row;
  row.word = WordOfPair(limb.digit, pair);
  row.side = side;
  row.row = digit;
  row.count = std::clamp(parts.rig.Block().GetInt(limb.digitBones), 1, 99);
  row.sizeOfSegment = 0.9f;
  row.secondary = true;
  row.group = group;
  const Anchor tip = parts.MakeRow(row, parent);
  if (parts.rig.Block().GetBool(kEndBones))
    parts.MakeEndBone({PartName{row.word, kSideCenter, digit}.Base() + L"_end", side}, tip.bone);
}

void BuildLimb(Parts& parts, const LimbRow& limb, int side, int pair) {
  const int first = parts.Point({limb.joints[0].word, side, pair});
  if (first < 0) return;
  const WStr group = PartName{limb.group, side, pair}.Base();
  Anchor last = parts.ParentOf(first);
  const bool ownSide = side == kSideLeft || parts.rig.Block().GetInt(kSide) == kSideRight;
  for (const Joint& joint : limb.joints) {
    const PartName name{joint.word, side, pair};
    const int point = parts.Point(name);
    if (point < 0) return;
    const float length = parts.SegmentLength(point);
    ControlSpec spec;
    spec.name = name;
    spec.tm = parts.TM(name);
    spec.parent = last.control;
    spec.shape = joint.shape;
    // A joint at the very end has no segment: it takes its size from the one before.
    const float before = parts.Distance(point, parts.rig.Points()[static_cast<size_t>(point)].parent);
    spec.size = joint.size * (length > 0 ? length : before);
    spec.shapeOffset = {length * (joint.shape == kCircle ? 0.35f : 0), 0, 0};
    spec.group = group;
    const Anchor made = parts.MakePart(spec, last.bone, length > 0 ? length : before * 0.3f);
    if (made.control && ownSide) {
      ParamBlock2& shape = *made.control->GetBaseObject()->GetParamBlock();
      if (joint.warp != 0) {
        shape.SetValue(kControlWarpAmount, 0, joint.warp);
        shape.SetValue(kControlWarpAxis, 0, 1);
      }
      if (WStr(joint.word) == L"clavicle" && limb.kind == LimbKind::Arm)
        shape.SetValue(kControlGizmo, 0, ClavicleGizmo(length));
    }
    if (point == first) parts.Wait(point, made);
    parts.Leave(point, made);
    last = made;
  }
  if (!limb.digit) return;
  const int digits = std::clamp(parts.rig.Block().GetInt(limb.digits), 0, 99);
  for (int i = 0; i < digits; ++i) BuildDigit(parts, limb, side, pair, i, last, group);
}

}  // namespace

void BuildLimbs(Parts& parts, LimbKind kind, int sides) {
  const LimbRow& limb = RowOf(kind);
  const int pairs = limb.pairs == kActive ? 1 : std::clamp(parts.rig.Block().GetInt(limb.pairs), 0, 99);
  for (int pair = 0; pair < pairs; ++pair)
    for (const int side : {kSideRight, kSideLeft})
      if (sides == kSideBoth || sides == side) BuildLimb(parts, limb, side, pair);
}

}  // namespace tavrilon::detail
