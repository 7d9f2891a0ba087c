// SPDX-License-Identifier: MIT
// The ways from a controller, which knows nothing of its node, to its node and its rig, and back. None allocates.
#pragma once

#include "host/core/control.h"
#include "host/scene/node.h"

namespace tavrilon {

class AnimationManagerMod;
class RigControl;

/// The node whose transform controller `control` is or lies in, by way of its dependents; null if none.
corvanta::INode* FindOwnerNode(const corvanta::Control* control);

/// The `RigControl` at or below a transform controller: the first transform controller among the sub-animatables is
/// followed down. Null when there is none. Include plugin/controllers/rig_control.h to use it.
RigControl* FindRigControl(corvanta::Control* control);
/// The same from the node's transform controller; null for a null node.
RigControl* FindNodeRigControl(const corvanta::INode* node);

/// The node's `AnimationManagerMod`, the topmost; null when there is none or the node is null.
AnimationManagerMod* FindManagerMod(const corvanta::INode* node);

/// The node itself or the nearest ancestor whose manager has `root` on; without one, the child of the scene root on the
/// way up. Null for null and for the scene root.
corvanta::INode* FindRigRoot(corvanta::INode* node);

}  // namespace tavrilon
