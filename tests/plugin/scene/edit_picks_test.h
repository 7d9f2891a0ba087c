// SPDX-License-Identifier: MIT
// What edits choose from: nodes, controllers, blocks and controller slots of the scene on show.
#pragma once

#include "host/core/param_block.h"
#include "host/scene/scene.h"
#include "plugin/scene/scene_edits_test.h"

namespace tavrilon::scene_tests {

/// A place that takes a controller.
struct Slot {
  corvanta::Animatable* owner = nullptr;
  int sub = 0;
  corvanta::SClass_ID superClass = 0;
};

/// All that hangs below one node, in the order of its sub-animatables.
struct NodeParts {
  std::vector<corvanta::Control*> controls;
  std::vector<corvanta::ParamBlock2*> blocks;
  std::vector<Slot> slots;
};
NodeParts PartsOf(corvanta::INode* node);

/// Null in an empty scene.
corvanta::INode* PickNode(Dice& dice);
/// Up to `most` nodes, without doubles.
std::vector<corvanta::INode*> PickNodes(Dice& dice, int most);
std::string Tell(const corvanta::INode* node);
std::string Tell(corvanta::Animatable* thing);

corvanta::Point3 PickPoint(Dice& dice, float reach = 50);
corvanta::Quat PickTurn(Dice& dice);
/// Factors of 0.5 to 2, sometimes mirrored.
corvanta::Point3 PickStretch(Dice& dice);
corvanta::Matrix3 PickMatrix(Dice& dice);
/// 0 often, otherwise one of a few times that edits share.
corvanta::TimeValue PickTime(Dice& dice);
/// A new controller of the super class; null when there is none.
corvanta::Control* MakeController(Dice& dice, corvanta::SClass_ID superClass);

/// May the transform of `follower` (a node, or a part of a transform) follow `target` without going in circles?
bool MayFollowNode(const corvanta::ReferenceTarget* follower, corvanta::INode* target);

// The rows of the files.
extern const std::vector<EditRow> kNodeEdits, kTrackEdits, kParamEdits, kTemplateEdits, kBuiltRigEdits;

}  // namespace tavrilon::scene_tests
