// SPDX-License-Identifier: MIT
#include "host/scene/node.h"
#include "plugin/solvers/ikfk_link.h"

namespace tavrilon {

using namespace corvanta;

const FPInterfaceDesc& IIKFKLink::GetDesc() const {
  static const FPParamDesc keepTM{L"keepTM", FPType::Bool, FPValue(true)};
  static const FPInterfaceDesc desc(
      kId, L"interface",
      {{kGetNumTargets, L"GetNumTargets", FPType::Int},
       {kGetNode, L"GetNode", FPType::Node, {{L"nodeNumber", FPType::Index}}},
       {kGetFrameNo, L"GetFrameNo", FPType::Int, {{L"targetNumber", FPType::Index}}},
       {kSetFrameNo, L"SetFrameNo", FPType::Bool, {{L"targetNumber", FPType::Index}, {L"frameNo", FPType::Int}}},
       {kAddTarget, L"AddTarget", FPType::Bool, {{L"target", FPType::Node}, {L"frameNo", FPType::Int}, keepTM}},
       {kDeleteTarget, L"DeleteTarget", FPType::Bool, {{L"targetNumber", FPType::Index}, keepTM}},
       {kAddWorld, L"AddWorld", FPType::Int, {{L"frameNo", FPType::Int}, keepTM}}});
  return desc;
}

FPStatus IIKFKLink::Invoke(int id, TimeValue, FPValue& result, std::span<const FPValue> args) {
  const auto number = [&](size_t i) { return FPArg(args, i).ToInt(); };
  const auto flag = [&](size_t i) { return FPArg(args, i).ToBool(); };
  switch (id) {
    case kGetNumTargets:
      result = GetNumTargets();
      return FPStatus::OK;
    case kGetNode:
      result = TargetValue(GetNode(number(0)));
      return FPStatus::OK;
    case kGetFrameNo:
      result = GetFrameNo(number(0));
      return FPStatus::OK;
    case kSetFrameNo:
      result = SetFrameNo(number(0), number(1));
      return FPStatus::OK;
    case kAddTarget:
      result = AddTarget(FPArg(args, 0).ToNode(), number(1), flag(2));
      return FPStatus::OK;
    case kDeleteTarget:
      result = DeleteTarget(number(0), flag(1));
      return FPStatus::OK;
    case kAddWorld:
      result = AddWorld(number(0), flag(1));
      return FPStatus::OK;
    default:
      return FPStatus::NoSuchFunction;
  }
}

}  // namespace tavrilon
