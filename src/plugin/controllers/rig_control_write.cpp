// SPDX-License-Identifier: MIT
// Writes to a rig control: a packet becomes a change of the sub-controllers, or in figure mode of the offset.
#include "host/scene/core_interface.h"
#include "plugin/controllers/euler_write.h"
#include "plugin/controllers/mirror_pair.h"
#include "plugin/controllers/rig_control.h"

namespace tavrilon {

using namespace corvanta;

namespace {

Quat RotationOf(const Matrix3& m) { return QuatFromMatrix(Orthogonalize(m)); }

ScaleValue StretchOf(const AffineParts& parts) { return {parts.k * parts.f, parts.u}; }

void Write(Control* control, TimeValue t, ValueRef value, bool commit, GetSetMethod method) {
  if (control) control->SetValue(t, value, commit, method);
}

}  // namespace

/// One packet on its way into a control. `parent_` grows from the parent's matrix to the space that is written in.
class RigControlWrite {
 public:
  RigControlWrite(RigControl& control, TimeValue t, const SetXFormPacket& packet, bool commit)
      : c_(control), t_(t), packet_(packet), commit_(commit), parent_(packet.tmParent), axis_(packet.tmAxis) {}

  void Run() {
    switch (packet_.command) {
      case XFORM_SET:
        return c_.figureMode_ ? c_.SetOffset(axis_ * Inverse(parent_), true) : Set();
      case XFORM_MOVE:
        return Move();
      case XFORM_ROTATE:
        return Rotate();
      case XFORM_SCALE:
        return c_.figureMode_ ? ScaleOffset() : Scale();
    }
  }

 private:
  Matrix3 Local() const { return axis_ * Inverse(parent_); }
  void PassOffset(bool rotationToo) {
    if (!c_.independent_) {
      parent_ = c_.offset_.tm * parent_;
      return;
    }
    parent_.PreTranslate(c_.offset_.translation);
    if (rotationToo) PreMultiplyLinear(parent_, c_.offset_.rotation);
  }
  void Set();
  void Move();
  void Rotate();
  void Scale();
  void ScaleOffset();

  RigControl& c_;
  TimeValue t_;
  const SetXFormPacket& packet_;
  bool commit_;
  Matrix3 parent_, axis_;
};

void RigControlWrite::Set() {
  Point3 position;
  Quat rotation;
  ScaleValue scale;
  PassOffset(false);
  if (c_.independent_) {
    position = Local().GetTrans();
    parent_.PreTranslate(position);
    PreMultiplyLinear(parent_, c_.offset_.rotation);
    rotation = RotationOf(Local());
    PreMultiplyLinear(parent_, MakeMatrix(rotation));
    PreMultiplyLinear(parent_, c_.offset_.stretch);
    scale = StretchOf(decomp_affine(Local()));
  } else {
    const AffineParts parts = decomp_affine(Local());
    position = parts.t;
    rotation = parts.q;
    scale = StretchOf(parts);
  }
  if (c_.straight_) scale.q = {};
  Write(c_.position_, t_, position, commit_, CTRL_ABSOLUTE);
  Write(c_.rotation_, t_, rotation, commit_, CTRL_ABSOLUTE);
  Write(c_.scale_, t_, scale, commit_, CTRL_ABSOLUTE);
}

void RigControlWrite::Move() {
  if (!c_.figureMode_) PassOffset(false);
  Point3 p = packet_.p;
  FlipMove(p, MirrorAxesOf(&c_, t_).position);
  p = VectorTransform(Local(), p);
  if (!c_.figureMode_) return Write(c_.position_, t_, p, commit_, CTRL_RELATIVE);
  Matrix3 offset = c_.offset_.tm;
  offset.Translate(p);
  c_.SetOffset(offset, true);
}

void RigControlWrite::Rotate() {
  if (!c_.figureMode_) PassOffset(true);
  AngAxis turn = packet_.aa;
  FlipRotation(turn.axis, MirrorAxesOf(&c_, t_).rotation);
  parent_ = Orthogonalize(parent_);
  // A marked axis names a track instead of a direction: it goes through as it is.
  const bool named = GetCOREInterface()->GetRefCoordSys() == RefCoordSys::Gimbal && GimbalMarkedAxis(turn.axis) >= 0 &&
                     !c_.figureMode_;
  if (!named) turn.axis = VectorTransform(Local(), turn.axis);
  if (!c_.figureMode_) return Write(c_.rotation_, t_, turn, commit_, CTRL_RELATIVE);
  const Quat rotation = decomp_affine(c_.offset_.tm).q * QuatFromAngAxis(turn);
  c_.SetOffset(WithRotation(c_.offset_.tm, rotation), true);
}

void RigControlWrite::Scale() {
  if (!c_.scale_) return;
  PassOffset(true);
  Interval valid = FOREVER;
  if (c_.rotation_) c_.rotation_->GetValue(t_, parent_, valid, CTRL_RELATIVE);
  if (c_.independent_) PreMultiplyLinear(parent_, c_.offset_.stretch);
  ScaleValue scale{packet_.p, c_.straight_ ? Quat() : RotationOf(Local())};
  Write(c_.scale_, t_, scale, commit_, CTRL_RELATIVE);
}

// The place of the offset stays.
void RigControlWrite::ScaleOffset() {
  Matrix3 offset = c_.offset_.tm;
  const Point3 place = offset.GetTrans();
  if (c_.straight_) {
    const Point3 lengths = RowLengths(offset) * packet_.p;
    offset = Orthogonalize(offset);
    offset.PreScale(lengths);
  } else {
    const Matrix3 axis = Local().WithoutTrans();
    offset = offset.WithoutTrans() * Inverse(axis);
    offset.Scale(packet_.p);
    offset = offset * axis;
  }
  offset.SetTrans(place);
  c_.SetOffset(offset, true);
}

void RigControl::SetValue(TimeValue t, ValueRef value, bool commit, GetSetMethod) {
  if (locked_ || !block_) return;
  RigControlWrite(*this, t, value.Packet(), commit).Run();
}

// In figure mode the mirror control stays as it is: reparenting one hand must not move the other.
bool RigControl::ChangeParents(TimeValue t, const Matrix3&, const Matrix3& newParent, const Matrix3& tm) {
  if (figureMode_ && !locked_) {
    StoreOffset(tm * Inverse(newParent));
    return true;
  }
  SetXFormPacket packet = SetXFormPacket::Set(tm, newParent);
  SetValue(t, packet, true, CTRL_ABSOLUTE);
  return true;
}

}  // namespace tavrilon
