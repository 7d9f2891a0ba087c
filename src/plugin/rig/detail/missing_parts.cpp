// SPDX-License-Identifier: MIT
// What a rig's options ask for and this build leaves out. Nothing is left out silently.
#include <algorithm>

#include "plugin/rig/detail/parts.h"

namespace tavrilon::detail {

using namespace rig_param;

namespace {

/// An option that asks for something that is left out, on rigs that have points of `component`.
struct MissingRow {
  ID option;
  int component;
  const wchar_t* text;
};

const MissingRow kMissing[] = {
    {kIkfkSolvers, kArmPairs, L"ikfk_solvers: arms and front legs are built in FK; IK/FK solvers are not built yet"},
    {kIkfkSolvers, kLegPairs, L"ikfk_solvers: legs are built in FK; IK/FK solvers are not built yet"},
    {kReverseFoot, kReverseFoot, L"reverse_foot: foot pivots need the IK/FK solver, which is not built yet"},
    {kUpperArmTwistBones, kArmPairs, L"upper_arm_twist_bones: one bone a segment; twist chains are not built yet"},
    {kForearmTwistBones, kArmPairs, L"forearm_twist_bones: one bone a segment; twist chains are not built yet"},
    {kThighTwistBones, kLegPairs, L"thigh_twist_bones: one bone a segment; twist chains are not built yet"},
    {kCalfTwistBones, kLegPairs, L"calf_twist_bones: one bone a segment; twist chains are not built yet"},
    {kBendyControls, -1, L"bendy_controls: bendy limbs need curve solvers, which are not built yet"},
    {kCorrectiveBones, -1, L"corrective_bones: corrective helpers are not built yet"},
    {kFace, kFace, L"face: the face rig is not built yet"},
};

bool HasComponent(const RigPoints& points, int component) {
  return component < 0 ||
         std::any_of(points.begin(), points.end(), [component](const RigPoint& p) { return p.component == component; });
}

}  // namespace

std::vector<WStr> MissingParts(const RigSystem& rig) {
  std::vector<WStr> lines;
  for (const MissingRow& row : kMissing)
    if (rig.Block().GetInt(row.option) > 0 && HasComponent(rig.Points(), row.component)) lines.emplace_back(row.text);
  if (rig.Type() == RigType::Face) lines.emplace_back(L"type Face: the face rig is not built yet");
  lines.emplace_back(L"the picker panel and the pose kit are not built yet");
  return lines;
}

}  // namespace tavrilon::detail
