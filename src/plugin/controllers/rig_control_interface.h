// SPDX-License-Identifier: MIT
// What a rig control shows to scripts and to the rest of the rig beside its parameters.
#pragma once

#include "host/core/published.h"
#include "plugin/frame/class_table.h"

namespace tavrilon {

/// Published under the script name "interface" with the class's own ID. All setters are undoable.
class IRigControl : public corvanta::FPInterface {
 public:
  enum Function : int {
    kGetOffsetPos = 0,
    kSetOffsetPos = 1,
    kGetOffsetRot = 2,
    kSetOffsetRot = 3,
    kGetOffsetScale = 4,
    kSetOffsetScale = 5,
    kGetOffsetTM = 6,
    kSetOffsetTM = 7,
    kGetFigureMode = 8,
    kSetFigureMode = 9,
    kResetFigure = 10,
  };
  static constexpr corvanta::Interface_ID kId{ClassIdOf(TavrilonClass::RigControl).a,
                                              ClassIdOf(TavrilonClass::RigControl).b};

  /// 0, 0, 0 without a block.
  virtual corvanta::Point3 GetOffsetPos() const = 0;
  virtual void SetOffsetPos(const corvanta::Point3& pos) = 0;
  /// A proper rotation also of a mirrored offset; identity when a row of the offset is zero.
  virtual corvanta::Quat GetOffsetRot() const = 0;
  virtual void SetOffsetRot(const corvanta::Quat& rot) = 0;
  /// Row lengths, the third negative for a mirrored offset.
  virtual corvanta::Point3 GetOffsetScale() const = 0;
  virtual void SetOffsetScale(const corvanta::Point3& scale) = 0;
  virtual corvanta::Matrix3 GetOffsetTM() const = 0;
  /// Writes the offset, and the mirrored change to the control on the other side, see `connect_mirror_offset`.
  virtual void SetOffsetTM(const corvanta::Matrix3& tm) = 0;
  virtual bool GetFigureMode() const = 0;
  /// Changes the mode of the whole rig. Animation is not touched.
  virtual void SetFigureMode(bool on) = 0;
  /// Makes the present pose the figure pose: the offset becomes the present local matrix and the sub-controllers go to
  /// rest at the current time. One step, "Reset Figure". Nothing while locked.
  virtual void ResetFigure() = 0;

  const corvanta::FPInterfaceDesc& GetDesc() const override;
  corvanta::FPStatus Invoke(int id, corvanta::TimeValue t, corvanta::FPValue& result,
                            std::span<const corvanta::FPValue> args) override;
};

}  // namespace tavrilon
