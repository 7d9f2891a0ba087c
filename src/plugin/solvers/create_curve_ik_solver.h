// SPDX-License-Identifier: MIT
// Builds a curve chain over an existing row of joints: control points, tangent nodes, joints, helper.
#pragma once

#include "host/scene/node.h"
#include "plugin/solvers/chain_params.h"

namespace tavrilon {

struct CurveIKSolverOptions {
  /// Control points along the joints, at least two.
  int points = 3;
  int type = curve_ik_chain::kSmooth;
  /// New bones at even distances instead of the joints themselves; 0 keeps the joints.
  int bones = 0;
  /// A control a bone, which the bone is bound to.
  bool bonesControls = false;
  /// Tangent nodes that show as controls; without, they are plain point helpers.
  bool tangentControls = false;
};

/// The joints from `start` to `end`, its descendant; empty when `end` does not hang on `start`.
std::vector<corvanta::INode*> JointRow(corvanta::INode* start, corvanta::INode* end);

/// Builds the chain and gives its helper node. Null, and nothing is built, when `end` is no descendant of `start`, the
/// joints have no length, or an option is out of its range. One undo step, "Create Curve IK Solver".
corvanta::INode* CreateCurveIKSolver(corvanta::INode* start, corvanta::INode* end, const CurveIKSolverOptions& options);

}  // namespace tavrilon
