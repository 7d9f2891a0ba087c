// SPDX-License-Identifier: MIT
#include "plugin/solvers/ikfk_chain_interface.h"

namespace tavrilon {

using namespace corvanta;

const FPInterfaceDesc& IIKFKChain::GetDesc() const {
  static const FPInterfaceDesc desc(kId, L"interface",
                                    {{kFK, L"FK", FPType::Void},
                                     {kIK, L"IK", FPType::Void},
                                     {kMatchFK, L"MatchFK", FPType::Void, {{L"toIK", FPType::Bool, FPValue(false)}}},
                                     {kMatchIK, L"MatchIK", FPType::Void, {{L"toFK", FPType::Bool, FPValue(false)}}},
                                     {kMatchManualStretch, L"MatchManualStretch", FPType::Void},
                                     {kMatchPreferredRotations, L"MatchPreferredRotations", FPType::Void}});
  return desc;
}

FPStatus IIKFKChain::Invoke(int id, TimeValue, FPValue&, std::span<const FPValue> args) {
  switch (id) {
    case kFK:
      FK();
      return FPStatus::OK;
    case kIK:
      IK();
      return FPStatus::OK;
    case kMatchFK:
      MatchFK(FPArg(args, 0).ToBool());
      return FPStatus::OK;
    case kMatchIK:
      MatchIK(FPArg(args, 0).ToBool());
      return FPStatus::OK;
    case kMatchManualStretch:
      MatchManualStretch();
      return FPStatus::OK;
    case kMatchPreferredRotations:
      MatchPreferredRotations();
      return FPStatus::OK;
    default:
      return FPStatus::NoSuchFunction;
  }
}

}  // namespace tavrilon
