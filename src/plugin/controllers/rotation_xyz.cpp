// SPDX-License-Identifier: MIT
#include "plugin/controllers/rotation_xyz.h"

#include "host/core/state_restore.h"
#include "host/scene/core_interface.h"
#include "plugin/controllers/euler_write.h"
#include "plugin/controllers/rig_offset.h"

namespace tavrilon {

using namespace corvanta;

RotationXYZ::RotationXYZ(bool loading) {
  if (loading) return;
  for (int i = 0; i < 3; ++i) BindReference(i, NewDefaultFloatController());
}

void* RotationXYZ::GetInterface(uint32_t request) {
  if (request == I_EULERCTRL) return static_cast<IEulerControl*>(this);
  return CompositeControl::GetInterface(request);
}

// Evaluation.

Point3 RotationXYZ::GetTrackValues(TimeValue t) {
  Point3 values;
  Interval valid = FOREVER;
  for (int i = 0; i < 3; ++i)
    if (Control* track = tracks_[i]) track->GetValue(t, values[i], valid, CTRL_ABSOLUTE);
  return values;
}

// The matrix is made anew only when an angle has changed.
void RotationXYZ::KeepAngles(const Point3& angles, const Interval& valid) {
  valid_ = valid;
  if (angles == angles_ && order_ == cachedOrder_) return;
  angles_ = angles;
  cachedOrder_ = order_;
  turns_ = !(angles == Point3());
  tm_ = turns_ ? EulerToMatrix(angles, order_) : Matrix3();
}

void RotationXYZ::UpdateCache(TimeValue t) {
  if (valid_.Contains(t)) return;
  Point3 values;
  Interval valid = FOREVER;
  for (int i = 0; i < 3; ++i)
    if (Control* track = tracks_[i]) track->GetValue(t, values[i], valid, CTRL_ABSOLUTE);
  KeepAngles(TracksToAngles(values, order_), valid);
}

void RotationXYZ::GetValue(TimeValue t, ValueRef value, Interval& valid, GetSetMethod method) {
  if (!writing_) UpdateCache(t);
  valid &= valid_;
  if (method == CTRL_ABSOLUTE)
    value.Quat() = QuatFromMatrix(tm_);
  else if (turns_)
    PreMultiplyLinear(value.Matrix3(), tm_);
}

// Writing.

void RotationXYZ::SetValue(TimeValue t, ValueRef value, bool, GetSetMethod method) {
  if (locked_) return;
  UpdateCache(t);
  Point3 e = angles_;
  if (method == CTRL_RELATIVE) {
    TurnAngles(e, value.AngAxis(), order_, GetCOREInterface()->GetRefCoordSys() == RefCoordSys::Gimbal);
  } else {
    TimeValue lastKey;
    if (!RepeatsAxis(order_) && Animating() && GetNextKeyTime(t, false, lastKey))
      e = TracksToAngles(GetTrackValues(lastKey), order_);
    SetAngles(e, value.Quat(), order_);
  }
  WriteTracks(t, e);
}

// While the tracks are written one by one, whoever asks gets all three new angles, and hears of the change once.
void RotationXYZ::WriteTracks(TimeValue t, const Point3& angles) {
  KeepAngles(angles, Interval::Instant(t));
  Point3 values = AnglesToTracks(angles, order_);
  writing_ = true;
  for (int i = 0; i < 3; ++i)
    if (Control* track = tracks_[i]) track->SetValue(t, values[i], true, CTRL_ABSOLUTE);
  writing_ = false;
  valid_.SetEmpty();
  NotifyDependents();
}

void RotationXYZ::SetOrder(int order) {
  if (locked_ || order < 0 || order > 8 || order == order_) return;
  const HoldScope hold(L"Change Euler Order");
  RecordState(this, &RotationXYZ::order_);
  order_ = order;
  StateRestored();
}

void RotationXYZ::StateRestored() {
  valid_.SetEmpty();
  NotifyDependents();
}

namespace {

/// Animate on for its lifetime.
class AnimateForced {
 public:
  AnimateForced() : wasOn_(Animating()) {
    AnimateOn();
    for (; !Animating(); ++suspended_) ResumeAnimate();
  }
  ~AnimateForced() {
    for (int i = 0; i < suspended_; ++i) SuspendAnimate();
    if (!wasOn_) AnimateOff();
  }
  AnimateForced(const AnimateForced&) = delete;

 private:
  bool wasOn_;
  int suspended_ = 0;
};

}  // namespace

void RotationXYZ::Copy(Control* from) {
  if (!from || IsOfClass(from, TavrilonClass::RotationXYZ)) return;
  const auto copyAt = [&](TimeValue t) {
    Quat q;
    Interval valid = FOREVER;
    from->GetValue(t, q, valid, CTRL_ABSOLUTE);
    SetValue(t, q, true, CTRL_ABSOLUTE);
  };
  SetLocked(false);
  if (from->NumKeys() == 0) {
    copyAt(0);
  } else {
    const AnimateForced animate;
    for (int i = 0; i < from->NumKeys(); ++i) copyAt(from->GetKeyTime(i));
  }
  if (const ILockedTrack* lock = GetLockedTrack(from)) SetLocked(lock->GetLocked());
}

// References.

void RotationXYZ::SetReference(int which, ReferenceTarget* target) {
  if (which < 0 || which > 2) return;
  tracks_[which] = target ? target->AsControl() : nullptr;
  valid_.SetEmpty();
}

WStr RotationXYZ::SubAnimName(int i) {
  static const wchar_t* const kNames[] = {L"X Rotation", L"Y Rotation", L"Z Rotation"};
  return i >= 0 && i < 3 ? kNames[i] : L"";
}

RefResult RotationXYZ::NotifyRefChanged(const Interval&, ReferenceTarget*, PartID&, RefMessage message, bool) {
  if (message != REFMSG_CHANGE) return REF_SUCCEED;
  if (writing_) return REF_STOP;  // told once, when all three are written
  valid_.SetEmpty();
  return REF_SUCCEED;
}

void RotationXYZ::CopyStateFrom(ReferenceTarget& source, RemapDir&) {
  auto& from = static_cast<RotationXYZ&>(source);
  order_ = from.order_;
  locked_ = from.locked_;
  joints_ = from.joints_;
  legacyOrder_ = from.legacyOrder_;
  valid_.SetEmpty();
}

// Chunks.

namespace {

enum : uint16_t { kJointChunk = 4098, kOrderChunk = 4099, kLockChunk = 9525, kJointFlags = 144, kJointAxis = 145 };

// An order of 1 to 5 as it stands comes from scenes that meant something else by it, hence the hundred.
int32_t StoredOrder(int order) { return order == 0 ? 0 : order + 100; }

void SaveJoints(ISave& save, const JointParams& joints) {
  save.BeginChunk(kJointChunk);
  save.BeginChunk(kJointFlags);
  for (const int32_t flag : joints.flags) save.Write(flag);
  save.EndChunk();
  for (uint16_t i = 0; i < 3; ++i) {
    save.BeginChunk(static_cast<uint16_t>(kJointAxis + i));
    save.Write(joints.axis[i]);
    save.EndChunk();
  }
  save.EndChunk();
}

JointParams LoadJoints(ILoad& load) {
  JointParams joints;
  while (load.OpenChunk() == IOResult::OK) {
    const int axis = load.CurChunkID() - kJointAxis;
    if (load.CurChunkID() == kJointFlags) load.Read(joints.flags, sizeof joints.flags);
    if (axis >= 0 && axis < 3) load.Read(joints.axis[axis]);
    load.CloseChunk();
  }
  return joints;
}

}  // namespace

IOResult RotationXYZ::Save(ISave& save) {
  if (joints_) SaveJoints(save, *joints_);
  save.BeginChunk(kOrderChunk);
  save.Write(StoredOrder(order_));
  save.EndChunk();
  save.BeginChunk(kLockChunk);
  save.Write(int32_t{locked_});
  save.EndChunk();
  return save.Status();
}

IOResult RotationXYZ::Load(ILoad& load) {
  while (load.OpenChunk() == IOResult::OK) {
    int32_t number = 0;
    switch (load.CurChunkID()) {
      case kJointChunk:
        joints_ = LoadJoints(load);
        break;
      case kOrderChunk:
        load.Read(number);
        legacyOrder_ = number >= 1 && number <= 5;
        if (number >= 100) number %= 100;
        if (number < 0 || number > 8) return load.Fail("an Euler order is neither 0 to 8 nor 101 to 108");
        order_ = number;
        break;
      case kLockChunk:
        load.Read(number);
        locked_ = number != 0;
        break;
      default:
        break;
    }
    load.CloseChunk();
  }
  return load.Status();
}

ReferenceTarget* CreateRotationXYZ(bool loading) { return new RotationXYZ(loading); }

}  // namespace tavrilon
