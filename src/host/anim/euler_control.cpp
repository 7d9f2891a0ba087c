// SPDX-License-Identifier: MIT
#include "host/anim/euler_control.h"

#include <cmath>

#include "host/core/state_restore.h"

namespace corvanta {
namespace {

// Turns larger than this could come out at another triple than a path of small ones.
constexpr float kLargestTurn = 2.3561945f;  // 135 degrees
// Cosines this near to 1 (under a degree) count as the ring itself.
constexpr float kOnRing = 1e-4f;

// Where the track of `axis` stands in the order.
int PositionOf(int order, int axis) { return order < kXYX ? kEulerPosition[order][axis] : axis; }

Matrix3 AxisMatrix(int axis, float angle) {
  return axis == 0 ? RotateXMatrix(angle) : axis == 1 ? RotateYMatrix(angle) : RotateZMatrix(angle);
}

}  // namespace

EulerControl::EulerControl(bool loading) {
  if (loading) return;
  for (int i = 0; i < 3; ++i) BindReference(i, NewDefaultFloatController());
}

void* EulerControl::GetInterface(uint32_t request) {
  if (request == I_EULERCTRL) return static_cast<IEulerControl*>(this);
  return CompositeControl::GetInterface(request);
}

WStr EulerControl::SubAnimName(int i) {
  static const wchar_t* const kNames[] = {L"X Rotation", L"Y Rotation", L"Z Rotation"};
  return i >= 0 && i < 3 ? kNames[i] : L"";
}

// --- evaluation

Point3 EulerControl::AnglesAt(TimeValue t, Interval& valid) const {
  Point3 e;
  for (int axis = 0; axis < 3; ++axis)
    if (tracks_[axis]) tracks_[axis]->GetValue(t, e[PositionOf(order_, axis)], valid, CTRL_ABSOLUTE);
  return e;
}

void EulerControl::GetValue(TimeValue t, ValueRef value, Interval& valid, GetSetMethod method) {
  if (!cachedValid_.Contains(t)) {
    Interval own = FOREVER;
    cached_ = EulerToMatrix(AnglesAt(t, own), order_);
    cachedValid_ = own;
  }
  valid &= cachedValid_;
  if (method == CTRL_ABSOLUTE)
    value.Quat() = QuatFromMatrix(cached_);
  else
    value.Matrix3() = cached_ * value.Matrix3();
}

// --- writing

// A ring is the axis of one track, turned by the tracks that are applied after it.
void EulerControl::Turn(Point3& e, const AngAxis& aa) const {
  const Point3 axis = Normalize(aa.axis);
  Matrix3 later;
  for (int position = 2; position >= 0; --position) {
    const int track = kEulerAxes[order_][position];
    const float d = Dot(later.GetRow(track), axis);
    if (1 - std::abs(d) < kOnRing) {
      e[position] -= d > 0 ? aa.angle : -aa.angle;
      return;
    }
    later = AxisMatrix(track, e[position]) * later;
  }
  const float turn = std::isfinite(aa.angle) ? aa.angle : 0;
  const int steps = static_cast<int>(std::min(std::ceil(std::abs(turn) / kLargestTurn), 1e4f));
  const Quat step = QuatFromAngAxis({axis, steps > 0 ? turn / static_cast<float>(steps) : 0});
  Quat q = EulerToQuat(e, order_);
  for (int i = 0; i < steps; ++i) {
    q = q * step;
    ContinuousQuatToEuler(q, e, order_);
  }
}

void EulerControl::SetValue(TimeValue t, ValueRef value, bool, GetSetMethod method) {
  if (locked_) return;
  Interval ignored = FOREVER;
  Point3 e = AnglesAt(t, ignored);
  if (method == CTRL_RELATIVE && value.Is(ValueKind::AngAxis)) {
    Turn(e, value.AngAxis());
  } else if (method == CTRL_RELATIVE) {
    ContinuousQuatToEuler(EulerToQuat(e, order_) * value.Quat(), e, order_);
  } else {
    TimeValue last;
    if (Animating() && GetNextKeyTime(t, false, last)) e = AnglesAt(last, ignored);
    ContinuousQuatToEuler(value.Quat(), e, order_);
  }
  Write(t, e);
}

// Dependents hear once, when all three tracks are written.
void EulerControl::Write(TimeValue t, const Point3& angles) {
  writing_ = true;
  for (int axis = 0; axis < 3; ++axis) {
    float angle = angles[PositionOf(order_, axis)];
    if (tracks_[axis]) tracks_[axis]->SetValue(t, angle, true, CTRL_ABSOLUTE);
  }
  writing_ = false;
  StateRestored();
}

void EulerControl::Copy(Control* from) {
  if (!from || from == this || from->SuperClassID() != kRotationControlSuper) return;
  const auto copyAt = [&](TimeValue t) {
    Quat q;
    Interval ignored = FOREVER;
    from->GetValue(t, q, ignored, CTRL_ABSOLUTE);
    SetValue(t, q, true, CTRL_ABSOLUTE);
  };
  SetLocked(false);
  const auto* euler = static_cast<IEulerControl*>(from->GetInterface(I_EULERCTRL));
  if (euler) SetOrder(euler->GetOrder());
  if (from->NumKeys() == 0) {
    copyAt(0);
  } else {
    const AnimateScope animate;
    for (int i = 0, n = from->NumKeys(); i < n; ++i) copyAt(from->GetKeyTime(i));
  }
  if (const ILockedTrack* lock = GetLockedTrack(from)) SetLocked(lock->GetLocked());
}

void EulerControl::SetOrder(int order) {
  if (locked_ || order < 0 || order > 8 || order == order_) return;
  RecordState(this, &EulerControl::order_);
  order_ = order;
  StateRestored();
}

void EulerControl::StateRestored() {
  cachedValid_.SetEmpty();
  NotifyDependents();
}

// --- references, cloning, chunks

void EulerControl::SetReference(int which, ReferenceTarget* target) {
  if (which < 0 || which > 2) return;
  tracks_[which] = target ? target->AsControl() : nullptr;
  cachedValid_.SetEmpty();
}

RefResult EulerControl::NotifyRefChanged(const Interval&, ReferenceTarget*, PartID&, RefMessage message, bool) {
  if (message != REFMSG_CHANGE) return REF_SUCCEED;
  cachedValid_.SetEmpty();
  return writing_ ? REF_STOP : REF_SUCCEED;
}

void EulerControl::CopyStateFrom(ReferenceTarget& source, RemapDir&) {
  const auto& from = static_cast<EulerControl&>(source);
  order_ = from.order_;
  locked_ = from.locked_;
}

IOResult EulerControl::Save(ISave& save) {
  save.BeginChunk(kOrderChunk);
  save.Write(int32_t{order_});
  save.EndChunk();
  return SaveLock(save);
}

IOResult EulerControl::Load(ILoad& load) {
  while (load.OpenChunk() == IOResult::OK) {
    int32_t number = 0;
    if (load.CurChunkID() == kOrderChunk) {
      load.Read(number);
      if (number < 0 || number > 8) return load.Fail("an Euler order is not 0 to 8");
      order_ = number;
    } else if (load.CurChunkID() == kLockChunk) {
      load.Read(number);
      locked_ = number != 0;
    }
    load.CloseChunk();
  }
  return load.Status();
}

}  // namespace corvanta
