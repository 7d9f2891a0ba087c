// SPDX-License-Identifier: MIT
#include "plugin/controllers/static_controls.h"

#include "host/scene/core_interface.h"

namespace tavrilon {

using namespace corvanta;

namespace {

// The absolute value of a replaced controller at the current time.
template <class Value>
Value ValueOf(Control* from, Value value = {}, GetSetMethod method = CTRL_ABSOLUTE) {
  Interval valid = FOREVER;
  from->GetValue(GetCOREInterface()->GetTime(), value, valid, method);
  return value;
}

}  // namespace

// StaticFloat.

void StaticFloat::GetValue(TimeValue, ValueRef value, Interval&, GetSetMethod method) {
  value.Float() = method == CTRL_ABSOLUTE ? value_ : value_ + value.Float();
}
void StaticFloat::SetValue(TimeValue, ValueRef value, bool, GetSetMethod method) {
  if (!locked_) Set(method == CTRL_ABSOLUTE ? value.Float() : value.Float() + value_);
}
void StaticFloat::Copy(Control* from) {
  if (!from) return;
  Set(ValueOf<float>(from));
  CopyLock(from);
}

// StaticPosition.

void StaticPosition::GetValue(TimeValue, ValueRef value, Interval&, GetSetMethod method) {
  if (method == CTRL_ABSOLUTE)
    value.Point3() = value_;
  else if (value.Is(ValueKind::Matrix3))
    value.Matrix3().PreTranslate(value_);
  else
    value.Point3() += value_;
}
void StaticPosition::SetValue(TimeValue, ValueRef value, bool, GetSetMethod method) {
  if (!locked_) Set(method == CTRL_ABSOLUTE ? value.Point3() : value.Point3() + value_);
}
void StaticPosition::Copy(Control* from) {
  if (!from) return;
  Set(ValueOf<Point3>(from));
  CopyLock(from);
}

// StaticRotation.

void StaticRotation::GetValue(TimeValue, ValueRef value, Interval&, GetSetMethod method) {
  if (method == CTRL_ABSOLUTE)
    value.Quat() = value_;
  else
    value.Matrix3() = MakeMatrix(value_) * value.Matrix3();
}
void StaticRotation::SetValue(TimeValue, ValueRef value, bool, GetSetMethod method) {
  if (!locked_) Set(method == CTRL_ABSOLUTE ? value.Quat() : value_ * QuatFromAngAxis(value.AngAxis()));
}
void StaticRotation::Copy(Control* from) {
  if (!from) return;
  Set(ValueOf<Quat>(from));
  CopyLock(from);
}

// StaticScale.

void StaticScale::GetValue(TimeValue, ValueRef value, Interval&, GetSetMethod method) {
  if (method == CTRL_ABSOLUTE)
    value.Scale() = value_;
  else
    ApplyScaling(value.Matrix3(), value_);
}
void StaticScale::SetValue(TimeValue, ValueRef value, bool, GetSetMethod method) {
  if (locked_) return;
  const ScaleValue& v = value.Scale();
  Set(method == CTRL_ABSOLUTE ? v : ScaleValue{v.s * value_.s, value_.q * v.q});
}
void StaticScale::Copy(Control* from) {
  if (!from) return;
  Set(ValueOf<ScaleValue>(from));
  CopyLock(from);
}

// StaticTransform.

Matrix3 ApplyPacket(const Matrix3& m, const SetXFormPacket& packet) {
  const Matrix3& parent = packet.tmParent;
  Matrix3 result = m;
  if (packet.command == XFORM_SET) return packet.tmAxis * Inverse(parent);
  if (packet.command == XFORM_MOVE) {
    result.Translate(VectorTransform(packet.tmAxis * Inverse(parent), packet.p));
    return result;
  }
  if (packet.command != XFORM_ROTATE && packet.command != XFORM_SCALE) return result;
  result = m * parent;
  Matrix3 axis = packet.tmAxis;
  if (packet.localOrigin) axis.SetTrans(result.GetTrans());
  const Matrix3 change = packet.command == XFORM_ROTATE ? MakeMatrix(packet.q) : ScaleMatrix(packet.p);
  return result * Inverse(axis) * change * axis * Inverse(parent);
}

void StaticTransform::GetValue(TimeValue, ValueRef value, Interval&, GetSetMethod method) {
  Matrix3& m = value.Matrix3();
  m = method == CTRL_ABSOLUTE ? value_ : value_ * m;
}
void StaticTransform::SetValue(TimeValue, ValueRef value, bool, GetSetMethod) {
  if (!locked_) Set(ApplyPacket(value_, value.Packet()));
}
// A matrix controller's value is told relative to the matrix that comes in.
void StaticTransform::Copy(Control* from) {
  if (!from) return;
  Set(ValueOf<Matrix3>(from, Matrix3(), CTRL_RELATIVE));
  CopyLock(from);
}
bool StaticTransform::ChangeParents(TimeValue, const Matrix3& oldParent, const Matrix3& newParent, const Matrix3&) {
  Set(value_ * oldParent * Inverse(newParent));
  return true;
}

ReferenceTarget* CreateStaticFloat(bool) { return new StaticFloat; }
ReferenceTarget* CreateStaticPosition(bool) { return new StaticPosition; }
ReferenceTarget* CreateStaticRotation(bool) { return new StaticRotation; }
ReferenceTarget* CreateStaticScale(bool) { return new StaticScale; }
ReferenceTarget* CreateStaticTransform(bool) { return new StaticTransform; }

}  // namespace tavrilon
