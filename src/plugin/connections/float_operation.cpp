// SPDX-License-Identifier: MIT
#include "plugin/connections/float_operation.h"

#include "plugin/connections/connect_input.h"
#include "plugin/connections/operations.h"

namespace tavrilon {

using namespace corvanta;
using namespace float_operation;

namespace {

// clang-format off
constexpr ParamRow kRows[] = {
    {kOperation,   L"operation",    ParamType::Int,   kNone,       0,     {0, kOperationCount - 1}, L"Operation"},
    {kA,           L"a",            ParamType::Float, kAnimatable, 0.0f,  {},                       L"A"},
    {kB,           L"b",            ParamType::Float, kAnimatable, 0.0f,  {},                       L"B"},
    {kC,           L"c",            ParamType::Float, kAnimatable, 0.0f,  {},                       L"C"},
    {kLo,          L"lo",           ParamType::Float, kAnimatable, 0.0f,  {},                       L"Low"},
    {kHi,          L"hi",           ParamType::Float, kAnimatable, 1.0f,  {},                       L"High"},
    {kScale,       L"scale",        ParamType::Float, kAnimatable, 1.0f,  {},                       L"Scale"},
    {kOffset,      L"offset",       ParamType::Float, kAnimatable, 0.0f,  {},                       L"Offset"},
    {kClampOutput, L"clamp_output", ParamType::Bool,  kNone,       false, {},                       L"Clamp Output"},
    {kOutMin,      L"out_min",      ParamType::Float, kAnimatable, 0.0f,  {},                       L"Output Min"},
    {kOutMax,      L"out_max",      ParamType::Float, kAnimatable, 1.0f,  {},                       L"Output Max"},
};
// clang-format on

enum FunctionID { kConnectTo = 0, kGetOperationName = 1, kSetOperationName = 2 };

const FPInterfaceDesc& PublishedDesc() {
  static const FPInterfaceDesc desc(InterfaceIdOf(TavrilonClass::FloatOperation), L"floatOperation",
                                    {ConnectToFunction(kConnectTo)},
                                    {{kGetOperationName, kSetOperationName, L"operationName", FPType::String}});
  return desc;
}

}  // namespace

const ParamBlockDesc2& FloatOperation::BlockDesc() {
  static const ParamBlockDesc2 desc(0, L"params", kRows);
  return desc;
}

ReferenceTarget* CreateFloatOperation(bool loading) { return new FloatOperation(loading); }

FloatOperation::FloatOperation(bool loading)
    : BlockControl(TavrilonClass::FloatOperation, BlockDesc(), PublishedDesc(), loading) {}

void FloatOperation::GetValue(TimeValue t, ValueRef value, Interval& valid, GetSetMethod method) {
  if (!block_) return;
  const Operation& operation = OperationAt(block_->GetInt(kOperation));
  const auto input = [&](int flag, ParamID id) { return operation.inputs & flag ? Param(id, t, valid) : 0; };
  OperationIn in;
  in.a = input(kReadsA, kA);
  in.b = input(kReadsB, kB);
  in.c = input(kReadsC, kC);
  in.lo = input(kReadsLo, kLo);
  in.hi = input(kReadsHi, kHi);
  OperationOutput out{Param(kScale, t, valid), Param(kOffset, t, valid), block_->GetBool(kClampOutput)};
  if (out.clamp) {
    out.outMin = Param(kOutMin, t, valid);
    out.outMax = Param(kOutMax, t, valid);
  }
  const float result = Shaped(out, operation.apply(in));
  value.Float() = method == CTRL_RELATIVE ? value.Float() + result : result;
}

FPStatus FloatOperation::Invoke(int id, TimeValue t, FPValue& result, std::span<const FPValue> args) {
  switch (id) {
    case kConnectTo:
      return ConnectInput(*block_, args, result);
    case kGetOperationName:
      result = WStr(OperationAt(block_->GetInt(kOperation)).name);
      return FPStatus::OK;
    case kSetOperationName: {
      const WStr name = FPArg(args, 0).ToWStr();
      const int number = FindOperation(name.c_str());
      if (number < 0)
        result = L"there is no operation \"" + name + L"\"";
      else
        block_->SetValue(kOperation, t, number);
      return number < 0 ? FPStatus::Failed : FPStatus::OK;
    }
    default:
      return FPStatus::NoSuchFunction;
  }
}

}  // namespace tavrilon
