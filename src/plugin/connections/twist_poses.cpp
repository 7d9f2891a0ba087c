// SPDX-License-Identifier: MIT
#include "plugin/connections/twist_poses.h"

#include "host/core/hold.h"
#include "plugin/connections/monotone_cubic.h"
#include "plugin/frame/guard.h"
#include "plugin/frame/loop_validator.h"
#include "plugin/frame/rig_maths.h"

namespace tavrilon {

using namespace corvanta;
using namespace twist_poses;

namespace {

LoopValidator validator;
constexpr NodeReaderRows kShared{kNode, kReference, -1, kRest};
// Radians: poses nearer than this are one.
constexpr float kSameAngle = 1e-4f;

// The rows of both classes; they differ in the type of a pose's value.
template <ParamType kValueType>
const ParamBlockDesc2& PosesDesc() {
  // clang-format off
  static const ParamRow kRows[] = {
      {kNode,      L"node",      ParamType::Node,    kWeak,       {},   {},     L"Node",      0, &restHook, &validator},
      {kReference, L"reference", ParamType::Node,    kWeak,       {},   {},     L"Reference", 0, &restHook, &validator},
      {kComponent, L"component", ParamType::Int,     kNone,       0,    {0, 3}, L"Component"},
      {kRest,      L"rest",      ParamType::Matrix3, kNone,       {},   {},     L"Rest"},
      {kAngle,     L"angle",     ParamType::Angle,   kTab,        0.0f, {},     L"Angle"},
      {kValue,     L"value",     kValueType,         kTab,        {},   {},     L"Value"},
      {kWeight,    L"weight",    ParamType::Percent, kAnimatable, 1.0f, {},     L"Weight"},
  };
  // clang-format on
  static const ParamBlockDesc2 desc(0, L"params", kRows);
  return desc;
}

enum FunctionID { kAddPose = 0, kDeletePose = 1, kTakeRest = 2, kNumPoses = 3, kCurrentAngle = 4 };

template <TavrilonClass kRow>
const FPInterfaceDesc& PublishedDesc() {
  static const FPInterfaceDesc desc(
      InterfaceIdOf(kRow), L"twistPoses",
      {{kAddPose, L"AddPose", FPType::Index, {{L"angle", FPType::Angle}, {L"value", FPType::Any}}},
       {kDeletePose, L"DeletePose", FPType::Bool, {{L"pose", FPType::Index}}},
       {kTakeRest, L"TakeRest", FPType::Void}},
      {{kNumPoses, -1, L"numPoses", FPType::Int}, {kCurrentAngle, -1, L"currentAngle", FPType::Angle}});
  return desc;
}

}  // namespace

TwistPoses::TwistPoses(TavrilonClass row, const ParamBlockDesc2& desc, const FPInterfaceDesc& published, bool loading)
    : NodeReader(row, desc, published, kShared, loading) {}

// A list that a script has made longer than the other counts no further than that.
int TwistPoses::NumPoses() const { return block_ ? std::min(block_->Count(kAngle), block_->Count(kValue)) : 0; }

float TwistPoses::AngleAt(TimeValue t, Interval& valid) const {
  return HasNode() ? Driver(PlaceAt(t, valid), Rest(), static_cast<Component>(block_->GetInt(kComponent))) : 0;
}

int TwistPoses::AddPose(float angle, const FPValue& value) {
  if (!block_ || !std::isfinite(angle)) return -1;
  const bool isFloat = SuperClassID() == kFloatControlSuper;
  FPValue stored = value;
  if (!isFloat && value.As<Quat>()) {
    Point3 e;
    QuatToEuler(*value.As<Quat>(), e);
    stored = e;
  }
  const bool fits = isFloat ? value.As<float>() || value.As<int>() : stored.As<Point3>() != nullptr;
  if (!fits) return -1;
  const HoldScope hold(L"Add Pose");
  const int count = NumPoses();
  block_->SetCount(kAngle, count);
  block_->SetCount(kValue, count);
  int at = 0;
  while (at < count && block_->GetFloat(kAngle, 0, at) < angle - kSameAngle) ++at;
  if (at == count || block_->GetFloat(kAngle, 0, at) > angle + kSameAngle) {
    block_->Insert(kAngle, at, angle);
    block_->Insert(kValue, at, stored);
  }
  block_->SetFPValue(kAngle, 0, angle, at);
  block_->SetFPValue(kValue, 0, stored, at);
  return at;
}

bool TwistPoses::DeletePose(int i) {
  if (i < 0 || i >= NumPoses()) return false;
  const HoldScope hold(L"Delete Pose");
  return block_->Delete(kAngle, i) && block_->Delete(kValue, i);
}

template <class At>
float TwistPoses::CurveValue(float angle, At&& at) const {
  const auto place = [this](int i) { return block_->GetFloat(kAngle, 0, i); };
  const AroundPlace around = FindAround(NumPoses(), place, angle);
  if (around.inner[0] < 0) return at(around.inner[1]);
  if (around.inner[1] < 0) return at(around.inner[0]);
  const auto point = [&](int i) { return i < 0 ? CubicPoint{0, 0} : CubicPoint{place(i), at(i)}; };
  const CubicPoint before = point(around.outer[0]), after = point(around.outer[1]);
  return MonotoneCubic(around.outer[0] < 0 ? nullptr : &before, point(around.inner[0]), point(around.inner[1]),
                       around.outer[1] < 0 ? nullptr : &after, angle);
}

FPStatus TwistPoses::Invoke(int id, TimeValue t, FPValue& result, std::span<const FPValue> args) {
  Interval ignored = FOREVER;
  switch (id) {
    case kAddPose: {
      const int at = AddPose(FPArg(args, 0).ToFloat(), FPArg(args, 1));
      if (at < 0)
        result = WStr(L"AddPose: the value must be a number, of rotations Euler angles or a quaternion");
      else
        result = at;
      return at < 0 ? FPStatus::Failed : FPStatus::OK;
    }
    case kDeletePose:
      result = DeletePose(FPArg(args, 0).ToInt(-1));
      return FPStatus::OK;
    case kTakeRest:
      TakeRest(t);
      return FPStatus::OK;
    case kNumPoses:
      result = NumPoses();
      return FPStatus::OK;
    case kCurrentAngle:
      result = AngleAt(t, ignored);
      return FPStatus::OK;
    default:
      return FPStatus::NoSuchFunction;
  }
}

// TwistPosesFloat.

const ParamBlockDesc2& TwistPosesFloat::BlockDesc() { return PosesDesc<ParamType::Float>(); }
ReferenceTarget* CreateTwistPosesFloat(bool loading) { return new TwistPosesFloat(loading); }
TwistPosesFloat::TwistPosesFloat(bool loading)
    : TwistPoses(TavrilonClass::TwistPosesFloat, BlockDesc(), PublishedDesc<TavrilonClass::TwistPosesFloat>(),
                 loading) {}

float TwistPosesFloat::Shown(TimeValue t, Interval& valid) const {
  if (!IsDriven()) return 0;
  const float value = CurveValue(AngleAt(t, valid), [this](int i) { return block_->GetFloat(kValue, 0, i); });
  return value * Param(kWeight, t, valid);
}

void TwistPosesFloat::GetValue(TimeValue t, ValueRef value, Interval& valid, GetSetMethod method) {
  if (!block_) return;
  Guarded(evaluating_, last_, t, valid, [&] { return Shown(t, valid); });
  value.Float() = method == CTRL_RELATIVE ? value.Float() + last_ : last_;
}

// TwistPosesRotation.

const ParamBlockDesc2& TwistPosesRotation::BlockDesc() { return PosesDesc<ParamType::Point3>(); }
ReferenceTarget* CreateTwistPosesRotation(bool loading) { return new TwistPosesRotation(loading); }
TwistPosesRotation::TwistPosesRotation(bool loading)
    : TwistPoses(TavrilonClass::TwistPosesRotation, BlockDesc(), PublishedDesc<TavrilonClass::TwistPosesRotation>(),
                 loading) {}

Quat TwistPosesRotation::Shown(TimeValue t, Interval& valid) const {
  if (!IsDriven()) return {};
  const float angle = AngleAt(t, valid);
  Point3 e;
  for (int axis = 0; axis < 3; ++axis)
    e[axis] = CurveValue(angle, [this, axis](int i) { return block_->GetPoint3(kValue, 0, i)[axis]; });
  const Quat full = EulerToQuat(e);
  const float weight = Param(kWeight, t, valid);
  return weight == 1 ? full : SlerpClosest({}, full, weight);
}

void TwistPosesRotation::GetValue(TimeValue t, ValueRef value, Interval& valid, GetSetMethod method) {
  if (!block_) return;
  Guarded(evaluating_, last_, t, valid, [&] { return Shown(t, valid); });
  if (method != CTRL_RELATIVE)
    value.Quat() = last_;
  else
    value.Matrix3() = MakeMatrix(last_) * value.Matrix3();
}

}  // namespace tavrilon
