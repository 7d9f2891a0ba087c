// SPDX-License-Identifier: MIT
// A left and a right control selected together move symmetrically in local coordinates: the right one flips.
#pragma once

#include "host/core/control.h"

namespace tavrilon {

/// Which components a packet for a control must flip: -1 for none.
struct MirrorAxes {
  int position = -1;
  int rotation = -1;
};

/// The axes for a move or a rotation sent to `control` at `t`. None unless all hold: mirroring is on (MirrorPairOff),
/// the coordinate system is local, the control's node and its mirror node are selected, and its tags begin with "r_".
MirrorAxes MirrorAxesOf(const corvanta::Control* control, corvanta::TimeValue t);

/// False within a MirrorPairOff.
bool MirrorPairsOn();

/// Negates the component `axis` of a move.
void FlipMove(corvanta::Point3& p, int axis);
/// Negates the components of a rotation axis other than `axis`.
void FlipRotation(corvanta::Point3& rotationAxis, int axis);

}  // namespace tavrilon
