// SPDX-License-Identifier: MIT
#include "plugin/connections/vector_connection.h"

#include "host/maths/euler.h"
#include "plugin/connections/connection_params.h"
#include "plugin/frame/guard.h"

namespace tavrilon {

using namespace corvanta;
using namespace vector_connection;

namespace {

// clang-format off
constexpr ParamRow kRows[] = {
    {kTrackSubAnim,  L"",                ParamType::Int,     kNone,       0,     {}, L"Track SubAnim"},
    {kTwoWay,        L"two_way",         ParamType::Bool,    kNone,       false, {}, L"Two Way"},
    {kUseWeight,     L"use_weight",      ParamType::Bool,    kNone,       false, {}, L"Use Weight"},
    {kWeightX,       L"weight_x",        ParamType::Percent, kAnimatable, 1.0f,  {}, L"Weight X"},
    {kWeightY,       L"weight_y",        ParamType::Percent, kAnimatable, 1.0f,  {}, L"Weight Y"},
    {kWeightZ,       L"weight_z",        ParamType::Percent, kAnimatable, 1.0f,  {}, L"Weight Z"},
    {kUseTimeOffset, L"use_time_offset", ParamType::Bool,    kNone,       false, {}, L"Use Time Offset"},
    {kTimeOffset,    L"time_offset",     ParamType::Float,   kAnimatable, 0.0f,  {}, L"Time Offset"},
    {kTrackOwner,    L"",                ParamType::RefTarg, kWeak,       {},    {}, L"Track Owner", -1},
    {vector_connection::kConstant, L"",  ParamType::Point3,  kNone,       {},    {}, L"Constant", -1},
};
// clang-format on
constexpr ConnectionRows kShared{kUseTimeOffset, kTimeOffset, kTrackOwner, vector_connection::kConstant};

template <TavrilonClass kRow>
const FPInterfaceDesc& PublishedDesc() {
  static const FPInterfaceDesc desc = ConnectionInterface(kRow);
  return desc;
}

// A value as the three numbers of a Point3 parameter, and what it is without a target.
Point3 FromPoint(const Point3& p, const Point3*) { return p; }
Quat FromPoint(const Point3& p, const Quat*) { return EulerToQuat(p); }
ScaleValue FromPoint(const Point3& p, const ScaleValue*) { return {p, {}}; }
Point3 ToPoint(const Point3& p, const Point3&) { return p; }
Point3 ToPoint(const Quat& q, const Point3& near) {
  Point3 e = near;
  ContinuousQuatToEuler(q, e);
  return e;
}
Point3 ToPoint(const ScaleValue& s, const Point3&) { return s.s; }

// The angles of an Euler controller that turns in the order XYZ go beyond a half turn, those of a quaternion do not.
bool ReadTracks(Control& control, TimeValue t, Interval& valid, Point3& angles) {
  auto* euler = static_cast<IEulerControl*>(control.GetInterface(I_EULERCTRL));
  if (!euler || euler->GetOrder() != kXYZ) return false;
  for (int i = 0; i < 3; ++i) {
    angles[i] = 0;
    if (Control* axis = euler->GetAxisController(i)) axis->GetValue(t, angles[i], valid, CTRL_ABSOLUTE);
  }
  return true;
}

}  // namespace

const ParamBlockDesc2& VectorConnection::BlockDesc() {
  static const ParamBlockDesc2 desc(0, L"params", kRows);
  return desc;
}

VectorConnection::VectorConnection(TavrilonClass row, const FPInterfaceDesc& published, bool loading)
    : ConnectionControl(row, BlockDesc(), published, kShared, loading) {}

Point3 VectorConnection::Weights(TimeValue t, Interval& valid) const {
  if (!block_->GetBool(kUseWeight)) return {1, 1, 1};
  return {Param(kWeightX, t, valid), Param(kWeightY, t, valid), Param(kWeightZ, t, valid)};
}

template <class Value>
Value VectorConnection::Source(TimeValue t, Interval& valid) const {
  const auto* kind = static_cast<const Value*>(nullptr);
  const Track track = GetTrack();
  if (!track.owner) {
    if (track.number != kConstantTrack) return {};
    return FromPoint(block_->GetPoint3(vector_connection::kConstant), kind);
  }
  const TimeValue at = SourceTime(t, valid);
  Interval there = FOREVER;
  Value value;
  if (const ParamRow* row = RowOf(track))
    value = row->type == ParamType::Point3 ? FromPoint(track.Block().GetPoint3(row->id, at, there, track.Tab()), kind)
                                           : Value();
  else if (Control* control = ControllerOf(track); control && control->SuperClassID() == SuperClassID())
    control->GetValue(at, value, there, CTRL_ABSOLUTE);
  valid &= Earlier(there, at - t);
  return value;
}

template <class Value>
void VectorConnection::WriteSource(TimeValue t, Value value, bool commit) {
  const TimeValue at = SourceTime(t);
  if (IsConstant()) {
    block_->SetValue(vector_connection::kConstant, t, ToPoint(value, block_->GetPoint3(vector_connection::kConstant)));
    return;
  }
  const Track track = GetTrack();
  if (RowOf(track))
    track.Block().SetValue(track.Param(), at, ToPoint(value, track.Block().GetPoint3(track.Param(), at, track.Tab())),
                           track.Tab());
  else if (Control* control = ControllerOf(track); control && control->SuperClassID() == SuperClassID())
    control->SetValue(at, value, commit, CTRL_ABSOLUTE);
}

// PositionConnection.

ReferenceTarget* CreatePositionConnection(bool loading) { return new PositionConnection(loading); }
PositionConnection::PositionConnection(bool loading)
    : VectorConnection(TavrilonClass::PositionConnection, PublishedDesc<TavrilonClass::PositionConnection>(), loading) {
}

Point3 PositionConnection::Shown(TimeValue t, Interval& valid) const {
  return Weighted(Source<Point3>(t, valid), Weights(t, valid));
}

void PositionConnection::GetValue(TimeValue t, ValueRef value, Interval& valid, GetSetMethod method) {
  if (!block_) return;
  Guarded(evaluating_, last_, t, valid, [&] { return Shown(t, valid); });
  if (method != CTRL_RELATIVE)
    value.Point3() = last_;
  else if (value.Is(ValueKind::Matrix3))
    value.Matrix3().PreTranslate(last_);
  else
    value.Point3() += last_;
}

void PositionConnection::SetValue(TimeValue t, ValueRef value, bool commit, GetSetMethod method) {
  if (locked_ || writing_ || !IsTwoWay()) return;
  const ReentryGuard guard(writing_);
  Interval ignored = FOREVER;
  const Point3 wanted = method == CTRL_RELATIVE ? Shown(t, ignored) + value.Point3() : value.Point3();
  WriteSource(t, Unweighted(wanted, Weights(t, ignored), Source<Point3>(t, ignored)), commit);
}

// RotationConnection.

ReferenceTarget* CreateRotationConnection(bool loading) { return new RotationConnection(loading); }
RotationConnection::RotationConnection(bool loading)
    : VectorConnection(TavrilonClass::RotationConnection, PublishedDesc<TavrilonClass::RotationConnection>(), loading) {
}

Point3 RotationConnection::Angles(TimeValue t, Interval& valid) const {
  const Track track = GetTrack();
  Point3 angles;
  if (const ParamRow* row = RowOf(track); row && row->type == ParamType::Point3) {
    const TimeValue at = SourceTime(t, valid);
    Interval there = FOREVER;
    angles = track.Block().GetPoint3(row->id, at, there, track.Tab());
    valid &= Earlier(there, at - t);
    return angles;
  }
  if (Control* control = ControllerOf(track); control && control->SuperClassID() == kRotationControlSuper) {
    const TimeValue at = SourceTime(t, valid);
    Interval there = FOREVER;
    const bool byTracks = ReadTracks(*control, at, there, angles);
    valid &= Earlier(there, at - t);
    if (byTracks) return angles;
  }
  QuatToEuler(Source<Quat>(t, valid), angles);
  return angles;
}

Quat RotationConnection::Shown(TimeValue t, Interval& valid) const {
  if (!block_->GetBool(kUseWeight)) return Source<Quat>(t, valid);
  return EulerToQuat(Weighted(Angles(t, valid), Weights(t, valid)));
}

void RotationConnection::GetValue(TimeValue t, ValueRef value, Interval& valid, GetSetMethod method) {
  if (!block_) return;
  Guarded(evaluating_, last_, t, valid, [&] { return Shown(t, valid); });
  if (method != CTRL_RELATIVE)
    value.Quat() = last_;
  else
    value.Matrix3() = MakeMatrix(last_) * value.Matrix3();
}

void RotationConnection::SetValue(TimeValue t, ValueRef value, bool commit, GetSetMethod method) {
  if (locked_ || writing_ || !IsTwoWay()) return;
  const ReentryGuard guard(writing_);
  Interval ignored = FOREVER;
  const Quat wanted = method == CTRL_RELATIVE ? Shown(t, ignored) * QuatFromAngAxis(value.AngAxis()) : value.Quat();
  if (!block_->GetBool(kUseWeight)) return WriteSource(t, wanted, commit);
  const Point3 present = Angles(t, ignored), weights = Weights(t, ignored);
  Point3 angles = Weighted(present, weights);
  ContinuousQuatToEuler(wanted, angles);
  WriteSource(t, EulerToQuat(Unweighted(angles, weights, present)), commit);
}

// ScaleConnection.

ReferenceTarget* CreateScaleConnection(bool loading) { return new ScaleConnection(loading); }
ScaleConnection::ScaleConnection(bool loading)
    : VectorConnection(TavrilonClass::ScaleConnection, PublishedDesc<TavrilonClass::ScaleConnection>(), loading) {}

ScaleValue ScaleConnection::Shown(TimeValue t, Interval& valid) const {
  ScaleValue value = Source<ScaleValue>(t, valid);
  // Weights of 1 would cost the last bit.
  if (block_->GetBool(kUseWeight)) value.s = Weighted(value.s, Weights(t, valid), 1);
  return value;
}

void ScaleConnection::GetValue(TimeValue t, ValueRef value, Interval& valid, GetSetMethod method) {
  if (!block_) return;
  Guarded(evaluating_, last_, t, valid, [&] { return Shown(t, valid); });
  if (method != CTRL_RELATIVE)
    value.Scale() = last_;
  else
    ApplyScaling(value.Matrix3(), last_);
}

void ScaleConnection::SetValue(TimeValue t, ValueRef value, bool commit, GetSetMethod method) {
  if (locked_ || writing_ || !IsTwoWay()) return;
  const ReentryGuard guard(writing_);
  Interval ignored = FOREVER;
  ScaleValue wanted = value.Scale();
  if (method == CTRL_RELATIVE) {
    const ScaleValue shown = Shown(t, ignored);
    wanted = {wanted.s * shown.s, shown.q * wanted.q};
  }
  wanted.s = Unweighted(wanted.s, Weights(t, ignored), Source<ScaleValue>(t, ignored).s, 1);
  WriteSource(t, wanted, commit);
}

}  // namespace tavrilon
