// SPDX-License-Identifier: MIT
#include "plugin/solvers/curve_ik_interface.h"

namespace tavrilon {

using namespace corvanta;
using namespace curve_ik_chain;

namespace {

enum : int { kPointTypes = 0 };

FPInterfaceDesc MakeDesc() {
  using F = ICurveIKChain;
  const FPParamDesc index{L"index", FPType::Index}, point{L"point", FPType::Node}, in{L"in_tangent", FPType::Node},
      out{L"out_tangent", FPType::Node};
  const auto get = [&](int id, const wchar_t* name, FPType type, int enumId = -1) {
    return FPFunctionDesc{id, name, type, {index}, enumId};
  };
  const auto set = [&](int id, const wchar_t* name, const FPParamDesc& value) {
    return FPFunctionDesc{id, name, FPType::Bool, {index, value}};
  };
  return {F::kId,
          L"interface",
          {
              {F::kNumPoints, L"NumPoints", FPType::Int},
              {F::kAddPoint,
               L"AddPoint",
               FPType::Bool,
               {point,
                {L"type", FPType::Enum, FPValue(static_cast<int>(kSmooth)), kPointTypes},
                {L"in_tangent", FPType::Node, TargetValue(nullptr)},
                {L"out_tangent", FPType::Node, TargetValue(nullptr)},
                {L"twist", FPType::Angle, FPValue(0.0f)},
                {L"amplitude", FPType::Percent, FPValue(1.0f)},
                {L"use_tangent_nodes", FPType::Bool, FPValue(true)}}},
              {F::kRemovePoint, L"RemovePoint", FPType::Bool, {index}},
              set(F::kSetPoint, L"SetPoint", point),
              get(F::kGetPoint, L"GetPoint", FPType::Node),
              set(F::kSetPointType, L"SetPointType", {L"type", FPType::Enum, std::nullopt, kPointTypes}),
              get(F::kGetPointType, L"GetPointType", FPType::Enum, kPointTypes),
              set(F::kSetInTangent, L"SetInTangent", in),
              get(F::kGetInTangent, L"GetInTangent", FPType::Node),
              set(F::kSetOutTangent, L"SetOutTangent", out),
              get(F::kGetOutTangent, L"GetOutTangent", FPType::Node),
              set(F::kSetTwist, L"SetTwist", {L"twist", FPType::Angle}),
              get(F::kGetTwist, L"GetTwist", FPType::Angle),
              set(F::kSetAmplitude, L"SetAmplitude", {L"amplitude", FPType::Percent}),
              get(F::kGetAmplitude, L"GetAmplitude", FPType::Percent),
              {F::kResetLength, L"ResetLength", FPType::Void},
              {F::kResetTangents, L"ResetTangents", FPType::Void},
              set(F::kSetUseTangentNodes, L"SetUseTangentNodes", {L"use_tangent_nodes", FPType::Bool}),
              get(F::kGetUseTangentNodes, L"GetUseTangentNodes", FPType::Bool),
          },
          {},
          {{kPointTypes,
            {{L"BezierCorner", kBezierCorner}, {L"Bezier", kBezier}, {L"Corner", kCorner}, {L"Smooth", kSmooth}}}}};
}

bool AddPointFrom(ICurveIKChain& chain, std::span<const FPValue> args) {
  CurvePointOptions options;
  options.type = FPArg(args, 1).ToInt(kSmooth);
  options.inTangent = FPArg(args, 2).ToNode();
  options.outTangent = FPArg(args, 3).ToNode();
  options.twist = FPArg(args, 4).ToFloat();
  options.amplitude = FPArg(args, 5).ToFloat(1);
  options.useTangentNodes = FPArg(args, 6).ToBool(true);
  return chain.AddPoint(FPArg(args, 0).ToNode(), options);
}

}  // namespace

const FPInterfaceDesc& ICurveIKChain::GetDesc() const {
  static const FPInterfaceDesc desc = MakeDesc();
  return desc;
}

FPStatus ICurveIKChain::Invoke(int id, TimeValue t, FPValue& result, std::span<const FPValue> args) {
  const auto index = [&] { return FPArg(args, 0).ToInt(-1); };
  const auto value = [&]() -> const FPValue& { return FPArg(args, 1); };
  result = {};
  switch (id) {
    case kNumPoints:
      result = NumPoints();
      break;
    case kAddPoint:
      result = AddPointFrom(*this, args);
      break;
    case kRemovePoint:
      result = RemovePoint(index());
      break;
    case kSetPoint:
      result = SetPoint(index(), value().ToNode());
      break;
    case kGetPoint:
      result = TargetValue(GetPoint(index()));
      break;
    case kSetPointType:
      result = SetPointType(index(), value().ToInt(-1));
      break;
    case kGetPointType:
      result = GetPointType(index());
      break;
    case kSetInTangent:
      result = SetInTangent(index(), value().ToNode());
      break;
    case kGetInTangent:
      result = TargetValue(GetInTangent(index()));
      break;
    case kSetOutTangent:
      result = SetOutTangent(index(), value().ToNode());
      break;
    case kGetOutTangent:
      result = TargetValue(GetOutTangent(index()));
      break;
    case kSetTwist:
      result = SetTwist(index(), value().ToFloat(), t);
      break;
    case kGetTwist:
      result = GetTwist(index(), t);
      break;
    case kSetAmplitude:
      result = SetAmplitude(index(), value().ToFloat(), t);
      break;
    case kGetAmplitude:
      result = GetAmplitude(index(), t);
      break;
    case kResetLength:
      ResetLength();
      break;
    case kResetTangents:
      ResetTangents();
      break;
    case kSetUseTangentNodes:
      result = SetUseTangentNodes(index(), value().ToBool());
      break;
    case kGetUseTangentNodes:
      result = GetUseTangentNodes(index());
      break;
    default:
      return FPStatus::NoSuchFunction;
  }
  return FPStatus::OK;
}

}  // namespace tavrilon
