// SPDX-License-Identifier: MIT
#include "plugin/shapes/control_core.h"

#include "plugin/shapes/control_interface.h"
#include "plugin/shapes/control_params.h"
#include "plugin/shapes/gizmo.h"
#include "plugin/shapes/shape_type.h"

namespace tavrilon {

using namespace corvanta;

float ControlCore::ScaleAt(TimeValue t, Interval& valid) const {
  return block->IDtoIndex(kControlScale) < 0 ? 1 : block->GetFloat(kControlScale, t, valid);
}

OutlineInput ControlCore::ReadInput(TimeValue t, Interval& valid) const {
  OutlineInput in;
  in.type = block->GetInt(kControlType);
  in.uniform = Flag(kControlUniform);
  in.size = block->GetFloat(kControlSize, t, valid);
  in.length = block->GetFloat(kControlLength, t, valid);
  in.width = block->GetFloat(kControlWidth, t, valid);
  in.height = block->GetFloat(kControlHeight, t, valid);
  in.axis = block->GetInt(kControlAxis);
  in.thickness = block->GetFloat(kControlThickness, t, valid);
  in.corner = block->GetFloat(kControlCorner, t, valid);
  in.warpAmount = block->GetFloat(kControlWarpAmount, t, valid);
  in.warpAxis = block->GetInt(kControlWarpAxis);
  in.gizmo = block->GetMatrix3(kControlGizmo);
  in.scale = ScaleAt(t, valid);
  return in;
}

const ControlCore::Cache& ControlCore::Refresh(TimeValue t) {
  if (cache_.valid.Contains(t)) return cache_;
  Interval valid = FOREVER;
  cache_.outline.clear();
  if (block) BuildOutline(ReadInput(t, valid), cache_.outline);
  const int steps = block ? block->GetInt(kControlSteps) : 0;
  cache_.polylines.resize(cache_.outline.size());
  cache_.box = Box3();
  for (size_t i = 0; i < cache_.outline.size(); ++i) {
    std::vector<Point3>& line = cache_.polylines[i];
    line.clear();
    Interpolate(cache_.outline[i], steps, line);
    for (const Point3& p : line) cache_.box += p;
  }
  cache_.valid = valid;
  return cache_;
}

const Matrix3& ControlCore::GetGizmo() const {
  static const Matrix3 identity;
  return block ? block->GetMatrix3(kControlGizmo) : identity;
}

void ControlCore::SetGizmo(const Matrix3& gizmo) {
  if (block) block->SetValue(kControlGizmo, 0, gizmo);
}

Matrix3 ControlCore::DrawnGizmo(TimeValue t) const {
  if (!block) return {};
  Interval ignored = FOREVER;
  const float scale = ScaleAt(t, ignored);
  return GetGizmo() * ScaleMatrix({scale, scale, scale});
}

void ControlCore::DragGizmo(TimeValue t, const Matrix3& objectTM, const Matrix3& worldChange) {
  if (!block || owner_.SubObjLevel() != kGizmoLevel) return;
  Interval ignored = FOREVER;
  const float scale = ScaleAt(t, ignored);
  HoldScope hold(L"Gizmo Change");
  SetGizmo(TransformGizmo(GetGizmo(), ScaleMatrix({scale, scale, scale}) * objectTM, worldChange));
}

FPValue ControlCore::GetProperty(int getter) const {
  switch (getter) {
    case kGetType:
      return block->GetInt(kControlType);
    case kGetGizmoPos:
      return PartsOfGizmo(GetGizmo()).pos;
    case kGetGizmoRot:
      return PartsOfGizmo(GetGizmo()).rot;
    case kGetGizmoScale:
      return PartsOfGizmo(GetGizmo()).scale;
    case kGetGizmoTM:
      return GetGizmo();
    case kGetFaceSel:
      return faceSel_;
  }
  return {};
}

bool ControlCore::SetProperty(int getter, TimeValue t, const FPValue& value) {
  switch (getter) {
    case kGetType: {
      const int type = value.ToInt(-1);
      return type >= 0 && type < kShapeTypeCount && block->SetValue(kControlType, t, type);
    }
    case kGetGizmoPos:
      return value.As<Point3>() && (SetGizmo(WithGizmoPos(GetGizmo(), value.ToPoint3())), true);
    case kGetGizmoRot:
      return value.As<Quat>() && (SetGizmo(WithGizmoRot(GetGizmo(), *value.As<Quat>())), true);
    case kGetGizmoScale:
      return value.As<Point3>() && (SetGizmo(WithGizmoScale(GetGizmo(), value.ToPoint3())), true);
    case kGetGizmoTM:
      return value.As<Matrix3>() && (SetGizmo(*value.As<Matrix3>()), true);
    case kGetFaceSel:
      return value.As<BitArray>() && (SetFaceSel(*value.As<BitArray>()), true);
  }
  return false;
}

FPStatus ControlCore::Invoke(int id, TimeValue t, FPValue& result, std::span<const FPValue> args) {
  if (id < kGetType || id > kGetFaceSel + 1) return FPStatus::NoSuchFunction;
  if (!block) return FPStatus::Failed;
  if (id % 2 == 1) return SetProperty(id - 1, t, FPArg(args, 0)) ? FPStatus::OK : FPStatus::Failed;
  result = GetProperty(id);
  return FPStatus::OK;
}

}  // namespace tavrilon
