// SPDX-License-Identifier: MIT
#include "host/anim/position_xyz_control.h"

namespace corvanta {

PositionXyzControl::PositionXyzControl(bool loading) {
  if (loading) return;
  for (int i = 0; i < 3; ++i) BindReference(i, NewDefaultFloatController());
}

WStr PositionXyzControl::SubAnimName(int i) {
  static const wchar_t* const kNames[] = {L"X Position", L"Y Position", L"Z Position"};
  return i >= 0 && i < 3 ? kNames[i] : L"";
}

Point3 PositionXyzControl::At(TimeValue t, Interval& valid) const {
  Point3 p;
  for (int axis = 0; axis < 3; ++axis)
    if (tracks_[axis]) tracks_[axis]->GetValue(t, p[axis], valid, CTRL_ABSOLUTE);
  return p;
}

void PositionXyzControl::GetValue(TimeValue t, ValueRef value, Interval& valid, GetSetMethod method) {
  const Point3 p = At(t, valid);
  if (method == CTRL_ABSOLUTE)
    value.Point3() = p;
  else if (value.Is(ValueKind::Matrix3))
    value.Matrix3().PreTranslate(p);
  else
    value.Point3() += p;
}

void PositionXyzControl::SetValue(TimeValue t, ValueRef value, bool, GetSetMethod method) {
  if (locked_) return;
  Interval ignored = FOREVER;
  Write(t, method == CTRL_ABSOLUTE ? value.Point3() : At(t, ignored) + value.Point3());
}

// Dependents hear once, when all three tracks are written.
void PositionXyzControl::Write(TimeValue t, const Point3& position) {
  writing_ = true;
  for (int axis = 0; axis < 3; ++axis) {
    float place = position[axis];
    if (tracks_[axis]) tracks_[axis]->SetValue(t, place, true, CTRL_ABSOLUTE);
  }
  writing_ = false;
  NotifyDependents();
}

void PositionXyzControl::Copy(Control* from) {
  if (!from || from == this || from->SuperClassID() != kPositionControlSuper) return;
  const auto copyAt = [&](TimeValue t) {
    Point3 p;
    Interval ignored = FOREVER;
    from->GetValue(t, p, ignored, CTRL_ABSOLUTE);
    Write(t, p);
  };
  SetLocked(false);
  if (from->NumKeys() == 0) {
    copyAt(0);
  } else {
    const AnimateScope animate;
    for (int i = 0, n = from->NumKeys(); i < n; ++i) copyAt(from->GetKeyTime(i));
  }
  if (const ILockedTrack* lock = GetLockedTrack(from)) SetLocked(lock->GetLocked());
}

void PositionXyzControl::SetReference(int which, ReferenceTarget* target) {
  if (which >= 0 && which < 3) tracks_[which] = target ? target->AsControl() : nullptr;
}

RefResult PositionXyzControl::NotifyRefChanged(const Interval&, ReferenceTarget*, PartID&, RefMessage message, bool) {
  return message == REFMSG_CHANGE && writing_ ? REF_STOP : REF_SUCCEED;
}

void PositionXyzControl::CopyStateFrom(ReferenceTarget& source, RemapDir&) {
  locked_ = static_cast<PositionXyzControl&>(source).locked_;
}

IOResult PositionXyzControl::Load(ILoad& load) {
  while (load.OpenChunk() == IOResult::OK) {
    int32_t on = 0;
    if (load.CurChunkID() == kLockChunk) load.Read(on), locked_ = on != 0;
    load.CloseChunk();
  }
  return load.Status();
}

}  // namespace corvanta
