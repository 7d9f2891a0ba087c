// SPDX-License-Identifier: MIT
// A float computed from up to three others: what a rig needs between a slider and a joint.
#pragma once

#include "plugin/connections/block_control.h"
#include "plugin/connections/connection_params.h"

namespace tavrilon {

/// Value = the operation of a, b and c, scaled, offset and perhaps clamped. Inputs are parameters: constants, keys or
/// connections. It takes no keys and no writes.
class FloatOperation final : public BlockControl {
 public:
  explicit FloatOperation(bool loading = false);
  static const corvanta::ParamBlockDesc2& BlockDesc();

  void GetValue(corvanta::TimeValue t, corvanta::ValueRef value, corvanta::Interval& valid,
                corvanta::GetSetMethod method) override;

 protected:
  corvanta::FPStatus Invoke(int id, corvanta::TimeValue t, corvanta::FPValue& result,
                            std::span<const corvanta::FPValue> args) override;
};

}  // namespace tavrilon
