// SPDX-License-Identifier: MIT
// A float that swings by itself: breathing, tails, flicker.
#pragma once

#include "plugin/connections/block_control.h"
#include "plugin/connections/waves.h"

namespace tavrilon {

/// Value = offset + weight * amplitude * wave(t / period + phase), the period in frames, the phase in periods. It takes
/// no keys and no writes.
class FloatWave final : public BlockControl {
 public:
  explicit FloatWave(bool loading = false);
  static const corvanta::ParamBlockDesc2& BlockDesc();

  void GetValue(corvanta::TimeValue t, corvanta::ValueRef value, corvanta::Interval& valid,
                corvanta::GetSetMethod method) override;
  bool IsAnimated() override { return true; }

 protected:
  corvanta::FPStatus Invoke(int id, corvanta::TimeValue t, corvanta::FPValue& result,
                            std::span<const corvanta::FPValue> args) override;
};

}  // namespace tavrilon
