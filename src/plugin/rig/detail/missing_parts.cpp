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
