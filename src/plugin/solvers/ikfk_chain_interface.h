// SPDX-License-Identifier: MIT
// What an IK/FK chain shows to scripts beside its parameters: switching between IK and FK, and matching one to the
// other. Each call is one undo step, "IKFK Change".
#pragma once

#include "host/core/published.h"
#include "plugin/frame/class_table.h"

namespace tavrilon {

/// Published under the script name "interface" with the class's own ID. All work at the current time.
class IIKFKChain : public corvanta::FPInterface {
 public:
  enum Function : int {
    kFK = 0,
    kIK = 1,
    kMatchFK = 2,
    kMatchIK = 3,
    kMatchManualStretch = 4,
    kMatchPreferredRotations = 5,
  };
  static constexpr corvanta::Interface_ID kId{ClassIdOf(TavrilonClass::IKFKChain).a,
                                              ClassIdOf(TavrilonClass::IKFKChain).b};

  /// The joints' FK takes on the pose that is seen, and the blend goes to 0. Undoable.
  virtual void FK() = 0;
  /// Goal, or goal parent, and target or swivel take on the pose that is seen, and the blend goes to 1. Undoable.
  virtual void IK() = 0;
  /// The joints' FK takes on the pose that is seen or, with `toIK`, that of full IK. Undoable.
  virtual void MatchFK(bool toIK) = 0;
  /// Goal and target or swivel take on the pose that is seen or, with `toFK`, that of FK. Undoable.
  virtual void MatchIK(bool toFK) = 0;
  /// What automatic stretch does now goes into the manual stretch; the automatic one stays as it is. Undoable.
  virtual void MatchManualStretch() = 0;
  /// The pose that is seen becomes the preferred one. Undoable.
  virtual void MatchPreferredRotations() = 0;

  const corvanta::FPInterfaceDesc& GetDesc() const override;
  corvanta::FPStatus Invoke(int id, corvanta::TimeValue t, corvanta::FPValue& result,
                            std::span<const corvanta::FPValue> args) override;
};

}  // namespace tavrilon
