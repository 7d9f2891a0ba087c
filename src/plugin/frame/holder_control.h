// SPDX-License-Identifier: MIT
// The scene's one holder of panels and of pose kits: float controllers under the track-view root, so that they are
// stored with the scene. Their value is 0 and takes no writes.
#pragma once

#include "host/core/control.h"
#include "plugin/frame/class_table.h"

namespace tavrilon {

class HolderControl : public corvanta::Control {
 public:
  explicit HolderControl(TavrilonClass row) : row_(row) {}
  corvanta::SClass_ID SuperClassID() const override { return DescOf(row_).superClass; }
  corvanta::Class_ID ClassID() const override { return DescOf(row_).classId; }
  corvanta::WStr GetClassName() const override { return DescOf(row_).className; }

  void GetValue(corvanta::TimeValue t, corvanta::ValueRef value, corvanta::Interval& valid,
                corvanta::GetSetMethod method) override {
    if (method == corvanta::CTRL_ABSOLUTE) value.Float() = 0;
  }
  void SetValue(corvanta::TimeValue t, corvanta::ValueRef value, bool commit, corvanta::GetSetMethod method) override {}
  bool IsReplaceable() const override { return false; }

 private:
  TavrilonClass row_;
};

/// The scene's holder of UI panels, made on first demand. Null when the scene has no track-view root.
corvanta::ReferenceTarget* GetUIPanelHolder();
/// The scene's holder of pose kits, likewise.
corvanta::ReferenceTarget* GetPoseKitHolder();

}  // namespace tavrilon
