// SPDX-License-Identifier: MIT
// The FK chain of a limb: controls along its points, roll anchors at its joints.
#include <algorithm>

#include "host/core/param_block.h"
#include "plugin/rig/detail/limb.h"
#include "plugin/rig/detail/wiring.h"
#include "plugin/shapes/control_params.h"

namespace tavrilon::detail {

using namespace corvanta;
using namespace rig_param;

Limb::Limb(Parts& parts, const LimbRow& row, int side, int pair)
    : parts(parts), row(row), side(side), pair(pair), group(PartName{row.group, side, pair}.Base()) {
  for (const JointRow& joint : row.joints) {
    const int point = parts.Point(Name(joint.word));
    if (point < 0) break;
    points.push_back(point);
  }
  hung = parts.ParentOf(points.empty() ? -1 : points.front());
}

bool Limb::HasPivots() const {
  return row.foot && Option(kReverseFoot) && parts.Has(FootName(L"_heel")) && parts.Has(FootName(L"_tip"));
}

int Limb::Count(ID id) const { return id == kActive ? 0 : std::clamp(parts.rig.Block().GetInt(id), 0, 99); }

float Limb::Length() const {
  float sum = 0;
  for (size_t i = static_cast<size_t>(row.firstJoint) + 1; i < points.size(); ++i)
    sum += parts.Distance(points[i - 1], points[i]);
  return sum;
}

float Limb::EndLength() const {
  const int end = points.back();
  const int heel = parts.Point(FootName(L"_heel")), tip = parts.Point(FootName(L"_tip"));
  if (heel >= 0 && tip >= 0) return parts.Distance(heel, tip);
  const int digits = Count(row.digits);
  const int middle = parts.Point({WordOfPair(row.digit), side, std::max(digits - 1, 0) / 2, 0});
  if (!row.foot && middle >= 0) return parts.Distance(end, middle);
  const int beyond = parts.Point(FootName(L"_end"));
  if (beyond >= 0) return parts.Distance(end, beyond);
  return points.size() > 1 ? 0.3f * parts.Distance(points[points.size() - 2], points.back()) : 0.1f * parts.height;
}

ControlSpec Limb::Spec(const PartName& name, const Matrix3& tm, INode* parent) const {
  ControlSpec spec;
  spec.name = name;
  spec.tm = tm;
  spec.parent = parent;
  spec.group = group;
  return spec;
}

bool Limb::OwnsShape() const { return side == kSideLeft || parts.rig.Block().GetInt(kSide) == kSideRight; }

namespace {

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

void SetOutline(const Limb& limb, const JointRow& joint, INode* control, float length) {
  if (!control || !limb.OwnsShape()) return;
  ParamBlock2& shape = *control->GetBaseObject()->GetParamBlock();
  if (joint.warp != 0) {
    shape.SetValue(kControlWarpAmount, 0, joint.warp);
    shape.SetValue(kControlWarpAxis, 0, 1);
  }
  if (limb.row.kind == LimbKind::Arm && &joint == limb.row.joints.data())
    shape.SetValue(kControlGizmo, 0, ClavicleGizmo(length));
}

/// What the outline of a joint is measured by.
float OutlineLength(const Limb& limb, size_t joint) {
  if (joint + 1 < limb.row.joints.size()) return limb.parts.SegmentLength(limb.points[joint]);
  return limb.EndLength();
}

}  // namespace

void BuildLimbControls(Limb& limb) {
  Parts& parts = limb.parts;
  INode* parent = limb.goal ? limb.goal : limb.hung.control;
  for (size_t i = 0; i < limb.points.size(); ++i) {
    const JointRow& joint = limb.row.joints[i];
    const PartName name = limb.Name(joint.word);
    const float length = parts.SegmentLength(limb.points[i]);
    ControlSpec spec = limb.Spec(name, parts.TM(name), parent);
    spec.shape = joint.shape;
    spec.size = joint.size * OutlineLength(limb, i);
    spec.shapeOffset = {length * (joint.shape == ShapeType::Circle ? 0.35f : 0), 0, 0};
    parent = parts.make.MakeControl(spec);
    SetOutline(limb, joint, parent, length);
    limb.controls.push_back(parent);
  }
}

// An anchor is the end of a segment's twist: at a joint inside the limb it turns half of the way with the joint, at the
// limb's end all of it. It is turned like the segment before it at rest, so that the roll between them runs from minus
// to plus half a turn. It hangs on the joint that it stands at, since a stretched limb takes its joints away from where
// they are at rest.
void BuildLimbAnchors(Limb& limb) {
  limb.anchors.assign(limb.controls.size(), nullptr);
  for (size_t i = 1; i < limb.controls.size(); ++i) {
    const JointRow& joint = limb.row.joints[i];
    if (!*joint.anchor || !limb.controls[i]) continue;
    const bool last = i + 1 == limb.row.joints.size();
    Matrix3 tm = limb.controls[last ? i - 1 : i]->GetNodeTM(0);
    tm.SetTrans(limb.Place(i));
    INode* anchor = limb.parts.make.MakeHelper(limb.Name(joint.anchor), tm, limb.controls[i], 0);
    if (anchor && !last) AddRotationSpace(anchor, limb.controls[i - 1], 0.5f);
    limb.anchors[i] = anchor;
  }
}

}  // namespace tavrilon::detail
