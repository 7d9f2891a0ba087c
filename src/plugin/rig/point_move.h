// SPDX-License-Identifier: MIT
// Moving selected points of a template.
#pragma once

#include "host/maths/matrix3.h"
#include "plugin/rig/rig_point.h"

namespace tavrilon {

struct PointMove {
  /// Acts on places times `size`: world units in the space of the rig object.
  corvanta::Matrix3 transform;
  /// World units of one template unit; 0 drops the move.
  float size = 0;
  bool affectChildren = true;
  bool affectMirror = true;
  /// Mirrored points keep their offset from their own parent; else they are mirrored about the plane x = 0.
  bool mirrorRelativeToParent = true;
};

/// Moves the selected points, their descendants when asked, and the mirror points of all that moved. When both members
/// of a pair would move, the right one leads and the left one is mirrored from it. True when a position changed; a
/// move that would give numbers that are not finite changes nothing.
bool MovePoints(RigPoints& points, const PointMove& move);

}  // namespace tavrilon
