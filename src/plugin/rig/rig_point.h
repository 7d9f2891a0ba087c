// SPDX-License-Identifier: MIT
// Guide points and extras: the plain records that a rig template is made of.
#pragma once

#include <vector>

#include "host/core/wstr.h"
#include "host/maths/point.h"

namespace tavrilon {

using corvanta::Point3;
using corvanta::WStr;

/// Sides as scripts see them. `Both` stands for a pair in templates and never names one point.
enum RigSide : int { kSideNone = -1, kSideRight = 0, kSideLeft = 1, kSideBoth = 2, kSideCenter = 3 };

/// Bits of `RigPoint::flags`.
enum RigPointFlag : int {
  kPointRight = 1,
  kPointLeft = 2,
  kPointSideMask = 3,
  /// The way to the next point of the row is a smooth curve.
  kPointSmooth = 8,
  /// The point has no position of its own: it stands between its parent and the next point of the chain.
  kPointInBetween = 16,
};

/// One guide point. Links are indices into the same list, -1 for none.
struct RigPoint {
  /// ID of the parameter whose count makes the point; extras count up from `kFirstExtraComponent`.
  int component = 0;
  /// Unique in the template, for instance "r_upper_arm_1".
  WStr name;
  int flags = 0;
  /// Units of the figure's height, Z up, facing -Y, the figure's left at +X.
  Point3 position;
  /// Where the template put the point: one that still stands there goes with the template when counts change. Worked
  /// out anew for points from files, and no part of what the user made: points with other origins are equal.
  struct Origin {
    Point3 at;
    bool operator==(const Origin&) const { return true; }
  } origin;
  /// For an in-between point: its place on the way from the parent (0) to the next point (1).
  float fraction = 0;
  int selected = 0;
  int parent = -1;
  /// A further ancestor: moving it moves this point too. It has no part in the point's place.
  int secondParent = -1;
  int mirror = -1;
  /// The point stands where this other one does.
  int follow = -1;
  /// The point that the X axis of this point's frame looks at; it also continues a smooth row.
  int aim = -1;
  /// The point that gives the frame's up direction; -1 leaves it to the rule for the point's word.
  int up = -1;
  /// Where the built control hangs, when that is not told by the parent's name.
  WStr attach;
  WStr note;

  bool IsInBetween() const { return (flags & kPointInBetween) != 0; }
  bool IsSmooth() const { return (flags & kPointSmooth) != 0; }
  int Side() const { return flags & kPointRight ? kSideRight : flags & kPointLeft ? kSideLeft : kSideCenter; }
  bool operator==(const RigPoint&) const = default;
};

using RigPoints = std::vector<RigPoint>;

inline constexpr int kFirstExtraComponent = 1000;

/// A component that the user adds to a template: a row of controls that hangs on a named point.
struct RigExtra {
  WStr name;
  /// Name of a point, with or without the side prefix; empty or unknown hangs the row on the rig's top control.
  WStr parent;
  /// `kSideNone` parks the extra: it is listed, and has no points and no nodes.
  int side = kSideNone;
  int num_controls = 1;
  int num_bones = 2;
  bool use_bones = false;
  bool operator==(const RigExtra&) const = default;
};

/// "r_" on the right, "l_" on the left, then the word, then "_" and the index plus 1 for each index not below 0.
WStr PointName(const WStr& word, int side, int index = -1, int subIndex = -1);
/// Index of the point with that name, -1 when there is none.
int FindPoint(const RigPoints& points, const WStr& name);
/// The name without its side prefix.
WStr WithoutSide(const WStr& name);
/// The word of a point's name: no side prefix, and cut before the first number ("r_finger_2_end" gives "finger").
/// A number that is part of a word stays ("finger2_1_1" gives "finger2").
WStr PointWord(const WStr& name);

}  // namespace tavrilon
