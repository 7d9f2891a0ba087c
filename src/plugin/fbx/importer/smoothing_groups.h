// SPDX-License-Identifier: MIT
// Smoothing groups that say the same as soft and hard edges. A pure function.
#pragma once

#include <unordered_set>

#include "host/mesh/mesh.h"

namespace tavrilon::fbx_import {

/// An edge between two points, whichever way it runs.
inline uint64_t EdgeKey(int a, int b) {
  const auto low = static_cast<uint32_t>(a < b ? a : b), high = static_cast<uint32_t>(a < b ? b : a);
  return uint64_t{high} << 32 | low;
}

/// Polygons that hang together by soft edges share a group, and neighbours over a hard edge have different ones. A
/// polygon with hard edges only has none. A hard edge inside of a patch that soft edges lead around cannot be said by
/// groups and is smooth; so is one between patches when all 32 groups are taken around it.
std::vector<uint32_t> GroupsOfEdges(const corvanta::Mesh& mesh, const std::unordered_set<uint64_t>& softEdges);

}  // namespace tavrilon::fbx_import
