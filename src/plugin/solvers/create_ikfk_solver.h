// SPDX-License-Identifier: MIT
// A ready IK/FK chain for a hierarchy of joints: controls that the joints follow, the chain, a goal and a target.
#pragma once

#include "host/scene/node.h"

namespace tavrilon {

/// The node of the new chain, selected; null, and nothing is made, when `end` does not hang on `start`. The joints keep
/// their places. One step, "Create IKFK Solver". Undoable.
corvanta::INode* MakeIKFKSolver(corvanta::INode* start, corvanta::INode* end);

}  // namespace tavrilon
