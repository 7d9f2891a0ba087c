// SPDX-License-Identifier: MIT
// The limbs by kind: their words, joints and options, one row each.
#pragma once

#include <span>

#include "plugin/rig/detail/parts.h"

namespace tavrilon::detail {

/// A joint of a limb: how its control looks and what is built between it and the next one. Empty words build nothing.
struct JointRow {
  const wchar_t* word;
  /// Of the outline: in lengths of the segment.
  float size = 0.5f;
  /// Bends the outline of the left control, whose object the right one shares.
  float warp = 0;
  /// Twist bones of the segment from here to the next joint, and the parameter that counts them.
  const wchar_t* twist = L"";
  rig_param::ID twistBones = rig_param::kActive;
  /// Anchor at this joint whose roll is that of the joint, and that has no roll at rest against the segment before.
  const wchar_t* anchor = L"";
  /// Helper and bone that keep the joint's volume when it bends, and the side to which they move: +1 or -1 along Y.
  const wchar_t* corrective = L"";
  float outward = 1;
  ShapeType shape = ShapeType::Circle;
};

/// Which node's orientation the first joint keeps in FK.
enum class SpaceAnchor { Chest, Torso };

struct LimbRow {
  LimbKind kind;
  /// Word of the limb in group texts.
  const wchar_t* group;
  /// Title of the panel group: before and after the side.
  const wchar_t* titleBefore;
  const wchar_t* titleAfter;
  std::span<const JointRow> joints;
  /// Where the solver's joints begin; those before are plain FK parents.
  int firstJoint;
  /// Words of the solver's controls; empty for a limb without one.
  const wchar_t* goal;
  const wchar_t* pole;
  const wchar_t* chain;
  SpaceAnchor space;
  /// Ends in a foot that rolls on the ground: the limb's last word with "_heel", "_tip", "_inner", "_outer".
  bool foot;
  /// Counts the pairs; a limb without one has a single pair.
  rig_param::ID pairs;
  const wchar_t* digit;
  rig_param::ID digits, digitBones;
  /// Control and bone between the limb's end and the digit.
  const wchar_t* digitRoot;
  rig_param::ID digitRoots;

  bool HasSolver() const { return *goal != 0 && joints.size() > 2; }
  const JointRow& Last() const { return joints.back(); }
};

const LimbRow& RowOf(LimbKind kind);

}  // namespace tavrilon::detail
