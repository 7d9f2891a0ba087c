// SPDX-License-Identifier: MIT
#pragma once

#include "host/scene/spline.h"
#include "plugin/frame/class_table.h"
#include "plugin/shapes/control_object.h"

namespace tavrilon {

/// What an animator grabs: a spline shape with an outline from the library.
class ControlShape final : public ControlObject<corvanta::SimpleSpline> {
 public:
  explicit ControlShape(bool loading = false);

  static constexpr corvanta::Class_ID kClassId = ClassIdOf(TavrilonClass::ControlShape);
  corvanta::Class_ID ClassID() const override { return kClassId; }
  corvanta::WStr GetClassName() const override { return DescOf(TavrilonClass::ControlShape).className; }

  /// The outline as knots, for whoever takes it for a spline.
  const std::vector<corvanta::Spline3D>& GetSplines(corvanta::TimeValue t) override;

 private:
  std::vector<corvanta::Spline3D> splines_;
};

}  // namespace tavrilon
