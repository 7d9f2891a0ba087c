// SPDX-License-Identifier: MIT
#include "host/core/control.h"

#include "host/core/class_desc.h"
#include "host/core/hold.h"
#include "host/core/notify.h"

namespace corvanta {

namespace {

bool animateOn = false;
int animateSuspended = 0;

Control* NewControl(SClass_ID superClass, Class_ID id) {
  ReferenceTarget* made = CreateInstance(superClass, id);
  return made ? made->AsControl() : nullptr;
}

}  // namespace

SetXFormPacket SetXFormPacket::Move(const Point3& p, const Matrix3& parent, const Matrix3& axis) {
  SetXFormPacket packet;
  packet.command = XFORM_MOVE;
  packet.tmParent = parent;
  packet.tmAxis = axis;
  packet.p = p;
  return packet;
}

SetXFormPacket SetXFormPacket::Rotate(const AngAxis& aa, bool localOrigin, const Matrix3& parent, const Matrix3& axis) {
  SetXFormPacket packet;
  packet.command = XFORM_ROTATE;
  packet.tmParent = parent;
  packet.tmAxis = axis;
  packet.aa = aa;
  packet.q = QuatFromAngAxis(aa);
  packet.localOrigin = localOrigin;
  return packet;
}

SetXFormPacket SetXFormPacket::Rotate(const Quat& q, bool localOrigin, const Matrix3& parent, const Matrix3& axis) {
  SetXFormPacket packet = Rotate(AngAxisFromQuat(q), localOrigin, parent, axis);
  packet.q = q;
  return packet;
}

SetXFormPacket SetXFormPacket::Scale(const Point3& s, bool localOrigin, const Matrix3& parent, const Matrix3& axis) {
  SetXFormPacket packet;
  packet.command = XFORM_SCALE;
  packet.tmParent = parent;
  packet.tmAxis = axis;
  packet.p = s;
  packet.localOrigin = localOrigin;
  return packet;
}

SetXFormPacket SetXFormPacket::Set(const Matrix3& wanted, const Matrix3& parent) {
  SetXFormPacket packet;
  packet.command = XFORM_SET;
  packet.tmParent = parent;
  packet.tmAxis = wanted;
  return packet;
}

/// Undo of a lock.
class LockRestore final : public RestoreObj {
 public:
  LockRestore(ILockedTrack* track, ReferenceTarget* owner) : owner_(owner), track_(track), kept_(track->locked_) {}
  void Restore(bool) override { std::swap(kept_, track_->locked_); }
  void Redo() override { std::swap(kept_, track_->locked_); }

 private:
  Ref<ReferenceTarget> owner_;
  ILockedTrack* track_;
  bool kept_;
};

void ILockedTrack::SetLocked(bool on) {
  if (locked_ == on) return;
  if (theHold.Holding()) theHold.Put(std::make_unique<LockRestore>(this, dynamic_cast<ReferenceTarget*>(this)));
  locked_ = on;
}

ILockedTrack* GetLockedTrack(Animatable* anim) {
  return anim ? static_cast<ILockedTrack*>(anim->GetInterface(I_LOCKED)) : nullptr;
}

bool Control::GetNextKeyTime(TimeValue t, bool forward, TimeValue& next) const {
  bool found = false;
  for (int i = 0; i < NumKeys(); ++i) {
    const TimeValue key = GetKeyTime(i);
    if (forward ? key <= t : key >= t) continue;
    if (!found || (forward ? key < next : key > next)) next = key;
    found = true;
  }
  return found;
}

Interval Control::GetKeyRange() const {
  const int n = NumKeys();
  return n > 0 ? Interval{GetKeyTime(0), GetKeyTime(n - 1)} : NEVER;
}

void AnimateOn() {
  animateOn = true;
  BroadcastNotification(NOTIFY_ANIMATE_MODE);
}
void AnimateOff() {
  animateOn = false;
  BroadcastNotification(NOTIFY_ANIMATE_MODE);
}
void SuspendAnimate() { ++animateSuspended; }
void ResumeAnimate() { animateSuspended = animateSuspended > 0 ? animateSuspended - 1 : 0; }
bool Animating() { return animateOn && animateSuspended == 0; }
AnimateScope::AnimateScope() : wasOn_(animateOn), wasSuspended_(animateSuspended) {
  animateOn = true;
  animateSuspended = 0;
}
AnimateScope::~AnimateScope() {
  animateOn = wasOn_;
  animateSuspended = wasSuspended_;
}

Control* NewDefaultFloatController() { return NewControl(kFloatControlSuper, {0x2007, 0}); }
Control* NewDefaultPoint3Controller() { return NewControl(kPoint3ControlSuper, {0x200A, 0}); }
Control* NewDefaultPositionController() { return NewControl(kPositionControlSuper, {0x2008, 0}); }
Control* NewDefaultRotationController() { return NewControl(kRotationControlSuper, {0x2012, 0}); }
Control* NewDefaultScaleController() { return NewControl(kScaleControlSuper, {0x2010, 0}); }
Control* NewDefaultMatrix3Controller() { return NewControl(kMatrixControlSuper, {kHostClassWord, 1}); }

bool AssignWithCopy(Animatable* owner, int subAnim, Control* control) {
  if (!owner || !control || !owner->CanAssignController(subAnim)) return false;
  auto* old = dynamic_cast<Control*>(owner->SubAnim(subAnim));
  if (old && old != control) control->Copy(old);
  return owner->AssignController(control, subAnim);
}

}  // namespace corvanta
