// SPDX-License-Identifier: MIT
// Controllers that builders put on nodes. All of it happens at time 0 with the rig at rest.
#pragma once

#include "plugin/frame/class_table.h"
#include "plugin/rig/detail/node_factory.h"

namespace tavrilon::detail {

/// A new controller of that class, null when it cannot be made.
corvanta::Control* NewControl(TavrilonClass row);
/// The parameter block at reference 0; null without one.
corvanta::ParamBlock2* BlockOf(const corvanta::ReferenceTarget* object);

/// Undoable, also while the build is not recorded piece by piece.
void AssignTransform(INode* node, corvanta::Control* control);
/// The node gets a `RigControl` in figure mode that holds its place, with the Euler order given.
corvanta::Control* AssignRigControl(INode* node, int rotationOrder);
/// The node's orientation follows `target` by `weight`, and it stays as it is now. Gives the block of the
/// `RotationSpace`, null when there is none.
corvanta::ParamBlock2* AddRotationSpace(INode* node, INode* target, float weight);
/// One track of the node's rotation, axis 0 to 2; or of its position.
bool SetRotationTrack(INode* node, int axis, corvanta::Control* track);
bool SetPositionTrack(INode* node, int axis, corvanta::Control* track);

}  // namespace tavrilon::detail
