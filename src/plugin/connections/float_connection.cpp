// SPDX-License-Identifier: MIT
#include "plugin/connections/float_connection.h"

#include "host/anim/curve_control.h"
#include "plugin/frame/guard.h"

namespace tavrilon {

using namespace corvanta;
using namespace float_connection;

namespace {

// clang-format off
constexpr ParamRow kRows[] = {
    {kTrackSubAnim,  L"",                ParamType::Int,     kNone,       0,      {},          L"Track SubAnim"},
    {kTwoWay,        L"two_way",         ParamType::Bool,    kNone,       false,  {},          L"Two Way"},
    {kClamp,         L"clamp",           ParamType::Bool,    kNone,       false,  {},          L"Clamp"},
    {kTransform,     L"transform",       ParamType::Int,     kNone,       0,      {0, 4},      L"Transform"},
    {kOffset,        L"offset",          ParamType::Float,   kAnimatable, 0.0f,   {},          L"Offset"},
    {kWeight,        L"weight",          ParamType::Percent, kAnimatable, 1.0f,   {},          L"Weight"},
    {kInputMin,      L"input_min",       ParamType::Float,   kAnimatable, 0.0f,   {},          L"Input Min"},
    {kInputMax,      L"input_max",       ParamType::Float,   kAnimatable, 100.0f, {},          L"Input Max"},
    {kOutputMin,     L"output_min",      ParamType::Float,   kAnimatable, 0.0f,   {},          L"Output Min"},
    {kOutputMax,     L"output_max",      ParamType::Float,   kAnimatable, 100.0f, {},          L"Output Max"},
    {kCurveCtrl,     L"curve_ctrl",      ParamType::RefTarg, kNone,       {},     {},          L"Curve Ctrl"},
    {kUseTimeOffset, L"use_time_offset", ParamType::Bool,    kNone,       false,  {},          L"Use Time Offset"},
    {kTimeOffset,    L"time_offset",     ParamType::Float,   kAnimatable, 0.0f,   {},          L"Time Offset"},
    {kTrackOwner,    L"",                ParamType::RefTarg, kWeak,       {},     {},          L"Track Owner", -1},
    {float_connection::kConstant, L"",   ParamType::Float,   kNone,       0.0f,   {},          L"Constant", -1},
};
// clang-format on
constexpr ConnectionRows kShared{kUseTimeOffset, kTimeOffset, kTrackOwner, float_connection::kConstant};

// A curve without points leaves x, as no curve does.
CurveSample FirstCurve(const ReferenceTarget* target) {
  const CurveControl* control = AsCurveControl(target);
  const PointCurve* curve = control ? control->GetCurve(0) : nullptr;
  if (!curve || curve->points.empty()) return {};
  const auto at = [](const void* points, float x) { return ValueAt(*static_cast<const PointCurve*>(points), x); };
  return {at, curve, curve->FirstX(), curve->LastX()};
}

const FPInterfaceDesc& PublishedDesc() {
  static const FPInterfaceDesc desc = ConnectionInterface(TavrilonClass::FloatConnection);
  return desc;
}

}  // namespace

const ParamBlockDesc2& FloatConnection::BlockDesc() {
  static const ParamBlockDesc2 desc(0, L"params", kRows);
  return desc;
}

ReferenceTarget* CreateFloatConnection(bool loading) { return new FloatConnection(loading); }

FloatConnection::FloatConnection(bool loading)
    : ConnectionControl(TavrilonClass::FloatConnection, BlockDesc(), PublishedDesc(), kShared, loading) {}

float FloatConnection::Source(TimeValue t, Interval& valid) const {
  const Track track = GetTrack();
  if (!track.owner) return track.number == kConstantTrack ? block_->GetFloat(float_connection::kConstant) : 0;
  const TimeValue at = SourceTime(t, valid);
  if (at == t) return ReadFloat(track, t, valid);
  Interval there = FOREVER;
  const float x = ReadFloat(track, at, there);
  valid &= Earlier(there, at - t);
  return x;
}

// Only the parameters of the kind in use are read, so that the others do not narrow `valid`.
FloatTransform FloatConnection::Transform(TimeValue t, Interval& valid) const {
  FloatTransform f;
  f.kind = static_cast<float_connection::Transform>(block_->GetInt(kTransform));
  f.clamp = block_->GetBool(kClamp);
  if (f.kind == kOffsetWeight) {
    f.offset = Param(kOffset, t, valid);
    f.weight = Param(kWeight, t, valid);
  } else if (f.kind == kRange) {
    f.inputMin = Param(kInputMin, t, valid);
    f.inputMax = Param(kInputMax, t, valid);
    f.outputMin = Param(kOutputMin, t, valid);
    f.outputMax = Param(kOutputMax, t, valid);
  } else if (f.kind == kCurve) {
    f.curve = FirstCurve(block_->GetReferenceTarget(kCurveCtrl));
  }
  return f;
}

float FloatConnection::Shown(TimeValue t, Interval& valid) const {
  const float x = Source(t, valid);
  if (block_->GetInt(kTransform) == kDirect) return x;
  return Transformed(Transform(t, valid), x);
}

void FloatConnection::GetValue(TimeValue t, ValueRef value, Interval& valid, GetSetMethod method) {
  if (!block_) return;
  Guarded(evaluating_, last_, t, valid, [&] { return Shown(t, valid); });
  float& out = value.Float();
  out = method == CTRL_RELATIVE ? out + last_ : last_;
}

void FloatConnection::SetValue(TimeValue t, ValueRef value, bool commit, GetSetMethod method) {
  if (locked_ || writing_ || !IsTwoWay()) return;
  const ReentryGuard guard(writing_);
  Interval ignored = FOREVER;
  float y = value.Float(), x = 0;
  if (method == CTRL_RELATIVE) y += Shown(t, ignored);
  if (!InverseTransformed(Transform(t, ignored), y, x)) return;
  if (IsConstant()) {
    block_->SetValue(float_connection::kConstant, t, x);
    return;
  }
  if (const Track track = GetTrack(); track.owner) WriteFloat(track, SourceTime(t), x, commit);
}

}  // namespace tavrilon
