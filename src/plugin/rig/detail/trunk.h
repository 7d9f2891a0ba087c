// SPDX-License-Identifier: MIT
// What spine, head and tails share.
#pragma once

#include "plugin/rig/detail/curve_row.h"

namespace tavrilon::detail {

/// A count of the rig's block, within what templates build.
int Count(const Parts& parts, rig_param::ID id);

/// What outlines of the trunk are measured by: the spine's length from the pelvis, but no more than an upright
/// figure's, or the outlines of a four-legged body would hide it.
float TrunkSize(const Parts& parts);

/// Widths of the trunk's bones.
inline float SpineBoneWidth(const Parts& parts) { return 0.036f * parts.height; }
inline float NeckBoneWidth(const Parts& parts) { return 0.026f * parts.height; }
/// Tails, ponytails and extras taper to their tips anyway.
inline float TailBoneWidth(float segment) { return 0.25f * segment; }

/// A free row: a tail, a ponytail, an extra.
struct TailSpec {
  /// Points "<word>_1" on and "<word>_end", or the point after the last control; `side` and `row` as in names.
  WStr word;
  int side = kSideCenter;
  int row = -1;
  int controls = 0;
  /// Bones "<word>_bone_j" on a curve; without them each control has a bone.
  bool curve = false;
  WStr group;
};
/// Builds the row under what its first point hangs on. Gives its first control and bone, empty without points.
Anchor BuildTail(Parts& parts, const TailSpec& spec);
/// `rows` tails "<word>_i".
void BuildTailRows(Parts& parts, const wchar_t* word, int rows, int controls, bool curve);

/// The root bone follows the torso over the ground, as the `RootAttrib` on main says.
void FollowTorso(INode* root, INode* main, INode* torso);

}  // namespace tavrilon::detail
