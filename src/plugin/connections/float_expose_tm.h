// SPDX-License-Identifier: MIT
// A number read off the place of a node: what a corrective, a twist chain or a gauge needs to know of a joint.
#pragma once

#include "plugin/connections/exposed.h"
#include "plugin/connections/node_reader.h"

namespace tavrilon {

/// Value = scale * component + offset; the offset alone without a node. It takes no keys and no writes. Re-entered it
/// gives its last value.
class FloatExposeTM final : public NodeReader {
 public:
  explicit FloatExposeTM(bool loading = false);
  static const corvanta::ParamBlockDesc2& BlockDesc();

  void GetValue(corvanta::TimeValue t, corvanta::ValueRef value, corvanta::Interval& valid,
                corvanta::GetSetMethod method) override;

 protected:
  corvanta::FPStatus Invoke(int id, corvanta::TimeValue t, corvanta::FPValue& result,
                            std::span<const corvanta::FPValue> args) override;

 private:
  float Shown(corvanta::TimeValue t, corvanta::Interval& valid) const;
  float last_ = 0;
};

}  // namespace tavrilon
