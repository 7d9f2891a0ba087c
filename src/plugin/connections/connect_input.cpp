// SPDX-License-Identifier: MIT
#include "plugin/connections/connect_input.h"

#include "host/core/hold.h"
#include "plugin/connections/float_connection.h"

namespace tavrilon {

using namespace corvanta;

FPFunctionDesc ConnectToFunction(int id) {
  return {id,
          L"ConnectTo",
          FPType::Control,
          {{L"input", FPType::String}, {L"target", FPType::Any}, {L"owner", FPType::RefTarg, TargetValue(nullptr)}}};
}

FPStatus ConnectInput(ParamBlock2& block, std::span<const FPValue> args, FPValue& result) {
  const WStr name = FPArg(args, 0).ToWStr();
  const ParamRow* row = block.GetDesc().FindByName(name);
  if (!row || !row->Is(kAnimatable) || row->Is(kTab) || !IsFloatType(row->type)) {
    result = L"ConnectTo: there is no input \"" + name + L"\"";
    return FPStatus::Failed;
  }
  const Ref<FloatConnection> connection(new FloatConnection);
  if (const WStr refusal = connection->SetScriptTarget(FPArg(args, 1), FPArg(args, 2).ToTarget()); !refusal.empty()) {
    result = refusal;
    return FPStatus::Failed;
  }
  const HoldScope hold;
  block.SetController(row->id, connection.Get());
  result = TargetValue(connection.Get());
  return FPStatus::OK;
}

}  // namespace tavrilon
