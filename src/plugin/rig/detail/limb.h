// SPDX-License-Identifier: MIT
// A limb while it is built, and the steps that build it. Every step leaves in `Limb` what the later ones need. Both
// sides of a pair go through the same steps, so that their controls come in the same order.
#pragma once

#include "plugin/rig/detail/limb_rows.h"

namespace tavrilon::detail {

struct Limb {
  Limb(Parts& parts, const LimbRow& row, int side, int pair);

  PartName Name(const WStr& word) const { return {word, side, pair}; }
  /// The limb's last word with "_heel", "_tip" and so on.
  PartName FootName(const wchar_t* suffix) const { return Name(WStr(row.Last().word) + suffix); }
  /// Twist bones and digits have two indices already: further pairs carry their number in the word.
  WStr WordOfPair(const WStr& word) const { return pair > 0 ? word + std::to_wstring(pair + 1) : word; }
  bool Option(rig_param::ID id) const { return parts.rig.Block().GetBool(id); }
  /// A count of the block, for an ID that counts something; 0 for kActive.
  int Count(rig_param::ID id) const;
  /// +1 on the right, -1 on the left: turns about the length or the height of the body change sign with the side.
  float Sigma() const { return side == kSideRight ? 1.0f : -1.0f; }
  bool IsWhole() const { return points.size() == row.joints.size(); }
  /// The limb is a lone foot with points to roll about.
  bool IsLoneFoot() const { return IsWhole() && row.foot && !row.HasSolver() && HasPivots(); }
  bool HasPivots() const;
  INode* First() const { return controls[static_cast<size_t>(row.firstJoint)]; }
  Point3 Place(size_t joint) const { return parts.Place(points[joint]); }
  /// First to last joint of the solver, along the bones.
  float Length() const;
  /// What outlines at the end are measured by: wrist to middle finger, or heel to tip.
  float EndLength() const;
  /// A control of this limb: its group is set, the rest is the caller's.
  ControlSpec Spec(const PartName& name, const Matrix3& tm, INode* parent) const;
  /// Right shapes are the left ones' reflections: only these settings are seen.
  bool OwnsShape() const;

  Parts& parts;
  const LimbRow& row;
  int side;
  int pair;
  WStr group;

  /// What the limb hangs on.
  Anchor hung;
  /// By joint of the row, up to the first without a point.
  std::vector<int> points;
  std::vector<INode*> controls;
  /// Roll anchor at the joint, null where the row names none.
  std::vector<INode*> anchors;
  /// The bone at the joint's control: of a row of twist bones the first.
  std::vector<INode*> bones;
  /// The bone that ends the limb: what digits hang on.
  INode* lastBone = nullptr;

  // The solver, null without one.
  INode* goal = nullptr;
  /// The control over a foot's pivots.
  INode* goalParent = nullptr;
  INode* pole = nullptr;
  INode* chain = nullptr;
  corvanta::ParamBlock2* attrib = nullptr;
  corvanta::ParamBlock2* footAttrib = nullptr;
  /// The pivot that the toes keep to.
  INode* toe = nullptr;

  /// Blocks of the curve chains of segments with twist bones.
  std::vector<corvanta::ParamBlock2*> twists;
  /// Blocks of the parent constraints of tangents at a joint inside the limb: the first target is the segment, the
  /// second the joint's anchor.
  std::vector<corvanta::ParamBlock2*> bendy;
};

/// A lone foot hangs on pivots of its own.
void BuildLoneFoot(Limb& limb);
/// FK controls along the points.
void BuildLimbControls(Limb& limb);
/// Roll anchors at the joints.
void BuildLimbAnchors(Limb& limb);
/// A bone for each control, or a row of twist bones on a curve chain.
void BuildLimbBones(Limb& limb);
/// Goal, foot pivots, pole and chain control, not connected yet.
void BuildLimbSolver(Limb& limb);
/// The pivots between the foot control `over` and the goal, wired to a `FootAttrib` on it. Gives the goal's node.
INode* BuildReverseFoot(Limb& limb, INode* over);
/// Fingers or toes on the last control.
void BuildDigits(Limb& limb);
void BuildCorrectives(Limb& limb);
/// The chain takes joints, goal and pole. From here on the limb is solved.
void ConnectLimbSolver(Limb& limb);
/// Squash and bend of the twist chains follow the limb's attribute.
void ConnectTwists(Limb& limb);
void RecordLimb(Limb& limb);

}  // namespace tavrilon::detail
