// SPDX-License-Identifier: MIT
// Limbs of every kind: the order of the steps, pair by pair and side by side.
#include <algorithm>

#include "plugin/rig/detail/limb.h"

namespace tavrilon::detail {

namespace {

void BuildLimb(Parts& parts, const LimbRow& row, int side, int pair) {
  Limb limb(parts, row, side, pair);
  if (limb.points.empty()) return;
  BuildLoneFoot(limb);
  BuildLimbControls(limb);
  BuildLimbAnchors(limb);
  BuildLimbBones(limb);
  parts.Wait(limb.points.front(), {limb.controls.front(), limb.bones.front()});
  for (size_t i = 0; i < limb.points.size(); ++i) parts.Leave(limb.points[i], {limb.controls[i], limb.bones[i]});
  BuildLimbSolver(limb);
  BuildDigits(limb);
  BuildCorrectives(limb);
  ConnectLimbSolver(limb);
  ConnectTwists(limb);
  RecordLimb(limb);
}

}  // namespace

void BuildLimbs(Parts& parts, LimbKind kind, int sides) {
  const LimbRow& row = RowOf(kind);
  const int pairs = row.pairs == rig_param::kActive ? 1 : std::clamp(parts.rig.Block().GetInt(row.pairs), 0, 99);
  for (int pair = 0; pair < pairs; ++pair)
    for (const int side : {kSideRight, kSideLeft})
      if (sides == kSideBoth || sides == side) BuildLimb(parts, row, side, pair);
}

}  // namespace tavrilon::detail
