// SPDX-License-Identifier: MIT
#pragma once

#include "plugin/frame/class_table.h"
#include "plugin/shapes/control_object.h"

namespace tavrilon {

/// A helper with the outlines and parameters of `ControlShape`, but for `scale`. It is drawn and never a spline.
class ControlHelper final : public ControlObject<corvanta::HelperObject> {
 public:
  explicit ControlHelper(bool loading = false);

  static constexpr corvanta::Class_ID kClassId = ClassIdOf(TavrilonClass::ControlHelper);
  corvanta::Class_ID ClassID() const override { return kClassId; }
  corvanta::WStr GetClassName() const override { return DescOf(TavrilonClass::ControlHelper).className; }
};

}  // namespace tavrilon
