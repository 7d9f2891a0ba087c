// SPDX-License-Identifier: MIT
// Lets a control keep its orientation in the space of another node, as far as a weight says, while its place follows
// the parent. The control's own animation lies in the wrapped controller and goes on top.
#pragma once

#include "plugin/constraints/wrapping_control.h"
#include "plugin/frame/figure_rest.h"

namespace tavrilon {

class RotationSpace final : public WrappingControl, public FigureRest {
 public:
  enum Param : corvanta::ParamID { kTarget = 0, kWeight = 1, kKeepInitialOffset = 2, kInitialOffset = 3 };
  explicit RotationSpace(bool loading = false) : WrappingControl(TavrilonClass::RotationSpace, BlockDesc(), loading) {}
  static const corvanta::ParamBlockDesc2& BlockDesc();

  void GetValue(corvanta::TimeValue t, corvanta::ValueRef value, corvanta::Interval& valid,
                corvanta::GetSetMethod method) override;
  void SetValue(corvanta::TimeValue t, corvanta::ValueRef value, bool commit, corvanta::GetSetMethod method) override;
  bool ChangeParents(corvanta::TimeValue t, const corvanta::Matrix3& oldParent, const corvanta::Matrix3& newParent,
                     const corvanta::Matrix3& tm) override;
  /// Stores the offset of the parent's orientation from the target's: the control's own rotation stays out of it, since
  /// it goes on top.
  void CaptureRest() override;
  /// The same, where an offset is kept.
  void RefitRest(corvanta::TimeValue t) override;
  using WrappingControl::GetInterface;
  void* GetInterface(uint32_t request) override {
    return request == FigureRest::kRequest ? static_cast<FigureRest*>(this) : WrappingControl::GetInterface(request);
  }
  /// The target's orientation with `offset` before it; switches `keep_initial_offset` on. Undoable.
  void SetOffset(const corvanta::Matrix3& offset);
  corvanta::Matrix3 GetOffset() const { return block_ ? block_->GetMatrix3(kInitialOffset) : corvanta::Matrix3(); }

 private:
  struct Space {
    corvanta::Matrix3 tm;
    float weight = 0;
  };
  Space SpaceAt(corvanta::TimeValue t, corvanta::Interval& valid) const;
  corvanta::Point3 PivotShift(corvanta::TimeValue t, const corvanta::SetXFormPacket& packet) const;
  void TurnOrScale(corvanta::TimeValue t, corvanta::SetXFormPacket& packet, bool commit);
};

}  // namespace tavrilon
