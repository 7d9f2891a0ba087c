// SPDX-License-Identifier: MIT
// The figure pose is the rest of a rig. Controllers that keep something of the rest take it anew when figure mode is
// left, or the rig would snap away from what the animator has just set.
#pragma once

#include "host/core/control.h"

namespace tavrilon {

/// Anything in the transform of a rig's node, at any depth, may answer the request with this.
class FigureRest {
 public:
  static constexpr uint32_t kRequest = 0x45596D01;
  virtual ~FigureRest() = default;
  /// The rest is the pose at `t`; figure mode is still on, so what is written to controls goes to their offsets.
  /// Undoable.
  virtual void RefitRest(corvanta::TimeValue t) = 0;
};

}  // namespace tavrilon
