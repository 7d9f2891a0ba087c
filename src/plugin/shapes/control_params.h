// SPDX-License-Identifier: MIT
// The parameters of control objects: one table for `ControlShape`, and for `ControlHelper` without its last row.
#pragma once

#include "host/core/param_desc.h"

namespace tavrilon {

enum ControlParam : corvanta::ParamID {
  kControlType = 0,
  kControlGizmo = 1,
  kControlUniform = 2,
  kControlSize = 3,
  kControlLength = 4,
  kControlWidth = 5,
  kControlHeight = 6,
  kControlAxis = 7,
  kControlThickness = 8,
  kControlCorner = 9,
  kControlSteps = 10,
  kControlWarpAmount = 11,
  kControlWarpAxis = 12,
  kControlOffsetLine = 13,
  kControlFaceCamera = 14,
  kControlConstantScreenSize = 15,
  kControlDrawOnTop = 16,
  kSelectorActive = 17,
  kSelectorNode = 18,
  kSelectorIgnoreBackfacing = 19,
  kSelectorUseWireColor = 20,
  kSelectorColor = 21,
  kSelectorSelOpacity = 22,
  kSelectorUnselOpacity = 23,
  kSelectorPushValue = 24,
  /// Of the shape only.
  kControlScale = 25,
};

const corvanta::ParamBlockDesc2& ControlShapeBlock();
const corvanta::ParamBlockDesc2& ControlHelperBlock();

}  // namespace tavrilon
