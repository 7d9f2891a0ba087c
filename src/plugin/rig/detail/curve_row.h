// SPDX-License-Identifier: MIT
// Rows of bones along a curve: spine, neck, tails, ponytails, extras and the twist bones of limbs. A helper holds the
// solver, its points are controls of the row, and each bone stands at a place of the curve.
#pragma once

#include "plugin/rig/detail/parts.h"
#include "plugin/solvers/chain_params.h"

namespace tavrilon::detail {

/// What stands at a point of the curve and how the curve runs through it. Tangents that are null follow the rule of
/// smooth points.
struct CurvePoint {
  INode* node = nullptr;
  int type = curve_ik_chain::kSmooth;
  INode* inTangent = nullptr;
  INode* outTangent = nullptr;
};

struct CurveBone {
  PartName name;
  /// Arc length from the curve's start over the whole length, at rest.
  float percent = 0;
  float length = 1;
};

struct CurveRowSpec {
  /// The row's own name: "spine" makes the helper "spine_curveikchain" and, with sub controls, "spine_joint_1" and
  /// "spine_sub_1".
  PartName row;
  std::vector<CurvePoint> points;
  std::vector<CurveBone> bones;
  /// The first bone hangs on the bone, helpers on the control. The curve lives in the space of the first joint's
  /// parent, so a rig that is scaled keeps its lengths.
  Anchor parent;
  float boneWidth = 0;
  /// A control for each bone, on top of the curve.
  bool subControls = false;
  float subSize = 1;
  WStr group;
};

struct CurveRow {
  /// Holds the solver; null when the row could not be made.
  INode* chain = nullptr;
  /// The solver's parameters.
  corvanta::ParamBlock2* block = nullptr;
  std::vector<INode*> bones;
};

/// Builds helper, solver, bones and sub controls. Call it when the points stand at rest. Empty without two points and
/// one bone.
CurveRow MakeCurveRow(Parts& parts, const CurveRowSpec& spec);

/// Puts a `CurveAttrib` on `node` that drives the row's stretch, squash and slide. Gives the attribute's block.
corvanta::ParamBlock2* AddCurveAttrib(INode* node, const CurveRow& row);

/// The bones of the template's points "<word>_1" on, along a row of points that a curve with the row's tangents runs
/// through.
std::vector<CurveBone> BonesAlong(const Parts& parts, const PartName& word, const std::vector<int>& row);

/// A helper for a tangent at point `i` of a row, child of `owner` and turned like it, where the row's rule puts the
/// control point after (`out`) or before the point.
INode* MakeTangent(Parts& parts, const PartName& name, const std::vector<int>& row, size_t i, bool out, INode* owner);

}  // namespace tavrilon::detail
