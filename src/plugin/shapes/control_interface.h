// SPDX-License-Identifier: MIT
// What control objects publish to scripts, as one table for both classes.
#pragma once

#include "host/core/published.h"

namespace tavrilon {

inline constexpr corvanta::Interface_ID kIControlShape{0x45596D57, 0xED40C435};
inline constexpr corvanta::Interface_ID kIControlHelper{0x45596D57, 0x1E847B30};

/// Function numbers: the getter, and the setter one above it.
enum ControlProperty {
  kGetType = 0,
  kGetGizmoPos = 2,
  kGetGizmoRot = 4,
  kGetGizmoScale = 6,
  kGetGizmoTM = 8,
  kGetFaceSel = 10
};

const corvanta::FPInterfaceDesc& ControlShapeInterface();
const corvanta::FPInterfaceDesc& ControlHelperInterface();

}  // namespace tavrilon
