// SPDX-License-Identifier: MIT
// What the gimbal gizmo works on instead of a rig control's rotation controller: a list of the rotation in front of it
// and an Euler controller on the same tracks, so that the gizmo's rings lie as the tracks turn. One for the process.
#pragma once

#include "host/core/control.h"

namespace tavrilon {

/// Turns the proxy switch off for its lifetime, nesting and exceptions included: for code that needs the real
/// controller.
class GimbalProxyOff {
 public:
  GimbalProxyOff();
  ~GimbalProxyOff();
  GimbalProxyOff(const GimbalProxyOff&) = delete;

 private:
  bool was_;
};

/// Is the switch on and the program in gimbal coordinates?
bool WantsGimbalProxy();

/// The proxy, showing `parentRotation` and the Euler rotation that is found by going down from `real`: through list
/// controllers to their active entry, the entries below it added to the parent rotation. Null when none is found.
/// Valid until the next call.
corvanta::Control* ShowGimbalProxy(const corvanta::Matrix3& parentRotation, corvanta::Control* real,
                                   corvanta::TimeValue t);

}  // namespace tavrilon
