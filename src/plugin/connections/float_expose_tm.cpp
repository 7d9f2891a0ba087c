// SPDX-License-Identifier: MIT
#include "plugin/connections/float_expose_tm.h"

#include "plugin/connections/connect_input.h"
#include "plugin/frame/guard.h"
#include "plugin/frame/loop_validator.h"

namespace tavrilon {

using namespace corvanta;
using namespace float_expose_tm;

namespace {

LoopValidator validator;
constexpr int kLast = kExposedCount - 1;

// clang-format off
const ParamRow kRows[] = {
    {kNode,       L"node",        ParamType::Node,    kWeak,       {},    {},         L"Node",      0, &restHook, &validator},
    {kReference,  L"reference",   ParamType::Node,    kWeak,       {},    {},         L"Reference", 0, &restHook, &validator},
    {kWorld,      L"world",       ParamType::Bool,    kNone,       false, {},         L"World",     0, &restHook},
    {kComponent,  L"component",   ParamType::Int,     kNone,       0,     {0, kLast}, L"Component"},
    {kOrder,      L"order",       ParamType::Int,     kNone,       0,     {0, 5},     L"Euler Order"},
    {kRest,       L"rest",        ParamType::Matrix3, kNone,       {},    {},         L"Rest"},
    {kScale,      L"scale",       ParamType::Float,   kAnimatable, 1.0f,  {},         L"Scale"},
    {kOffset,     L"offset",      ParamType::Float,   kAnimatable, 0.0f,  {},         L"Offset"},
    {kTimeOffset, L"time_offset", ParamType::Float,   kAnimatable, 0.0f,  {},         L"Time Offset (Seconds)"},
};
// clang-format on
constexpr NodeReaderRows kShared{kNode, kReference, kWorld, kRest};

enum FunctionID { kConnectTo = 0, kTakeRest = 1 };

const FPInterfaceDesc& PublishedDesc() {
  static const FPInterfaceDesc desc(InterfaceIdOf(TavrilonClass::FloatExposeTM), L"floatExpose",
                                    {ConnectToFunction(kConnectTo), {kTakeRest, L"TakeRest", FPType::Void}});
  return desc;
}

}  // namespace

const ParamBlockDesc2& FloatExposeTM::BlockDesc() {
  static const ParamBlockDesc2 desc(0, L"params", kRows);
  return desc;
}

ReferenceTarget* CreateFloatExposeTM(bool loading) { return new FloatExposeTM(loading); }

FloatExposeTM::FloatExposeTM(bool loading)
    : NodeReader(TavrilonClass::FloatExposeTM, BlockDesc(), PublishedDesc(), kShared, loading) {}

float FloatExposeTM::Shown(TimeValue t, Interval& valid) const {
  const float offset = Param(kOffset, t, valid);
  if (!HasNode()) return offset;
  const TimeValue at = Later(t, Param(kTimeOffset, t, valid));
  Interval there = FOREVER;
  const Matrix3 place = PlaceAt(at, there);
  valid &= Earlier(there, at - t);
  const auto component = static_cast<Component>(block_->GetInt(kComponent));
  return Exposed(place, Rest(), component, block_->GetInt(kOrder)) * Param(kScale, t, valid) + offset;
}

void FloatExposeTM::GetValue(TimeValue t, ValueRef value, Interval& valid, GetSetMethod method) {
  if (!block_) return;
  Guarded(evaluating_, last_, t, valid, [&] { return Shown(t, valid); });
  value.Float() = method == CTRL_RELATIVE ? value.Float() + last_ : last_;
}

FPStatus FloatExposeTM::Invoke(int id, TimeValue t, FPValue& result, std::span<const FPValue> args) {
  if (id == kConnectTo) return ConnectInput(*block_, args, result);
  if (id != kTakeRest) return FPStatus::NoSuchFunction;
  TakeRest(t);
  return FPStatus::OK;
}

}  // namespace tavrilon
