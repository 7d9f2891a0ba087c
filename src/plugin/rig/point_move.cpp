// SPDX-License-Identifier: MIT
#include "plugin/rig/point_move.h"

#include <cmath>

#include "plugin/rig/point_place.h"

namespace tavrilon {
namespace {

bool IsIndex(const RigPoints& points, int i) { return i >= 0 && i < static_cast<int>(points.size()); }

/// Which points move: the selected ones and, when asked, all below them.
std::vector<char> MovedPoints(const RigPoints& points, bool affectChildren) {
  std::vector<char> moved(points.size(), 0);
  for (size_t i = 0; i < points.size(); ++i) moved[i] = points[i].selected && !points[i].IsInBetween();
  // Parents stand before their children; a list that does not keep to that takes further rounds.
  for (bool changed = affectChildren; changed;) {
    changed = false;
    for (size_t i = 0; i < points.size(); ++i) {
      const RigPoint& p = points[i];
      const auto moves = [&](int above) { return IsIndex(points, above) && moved[above]; };
      if (moved[i] || p.IsInBetween() || !(moves(p.parent) || moves(p.secondParent))) continue;
      moved[i] = 1;
      changed = true;
    }
  }
  return moved;
}

/// In a pair that moves as a whole only one member leads.
void DropFollowers(const RigPoints& points, std::vector<char>& moved) {
  for (size_t i = 0; i < points.size(); ++i) {
    const int mirror = points[i].mirror;
    if (!moved[i] || !IsIndex(points, mirror) || !moved[mirror] || mirror == static_cast<int>(i)) continue;
    const bool leads = points[i].Side() == kSideRight || points[mirror].Side() != kSideRight;
    moved[leads ? mirror : static_cast<int>(i)] = 0;
  }
}

bool IsFinite(const Point3& p) { return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z); }

/// A moved point's mirror position, by the places of the two parents.
Point3 MirrorOf(const RigPoints& points, const PointPlaces& places, int point, bool relative) {
  const Point3 p = points[point].position;
  if (!relative) return {-p.x, p.y, p.z};
  const auto parentX = [&](int i) {
    const int parent = points[i].parent;
    if (!IsIndex(points, parent)) return 0.0f;
    const RigPoint& above = points[parent];
    return above.IsInBetween() || above.follow >= 0 ? places[parent].x : above.position.x;
  };
  return {parentX(points[point].mirror) - (p.x - parentX(point)), p.y, p.z};
}

}  // namespace

bool MovePoints(RigPoints& points, const PointMove& move) {
  if (!(move.size > 0) || !std::isfinite(move.size)) return false;
  std::vector<char> moved = MovedPoints(points, move.affectChildren);
  if (move.affectMirror) DropFollowers(points, moved);
  RigPoints result = points;
  const PointPlaces before(points);
  for (size_t i = 0; i < points.size(); ++i)
    if (moved[i]) result[i].position = before[static_cast<int>(i)] * move.size * move.transform / move.size;
  if (move.affectMirror) {
    // In list order, so that a mirrored point finds its parent's mirror already in place.
    const PointPlaces after(result);
    for (size_t i = 0; i < points.size(); ++i)
      if (moved[i] && IsIndex(points, points[i].mirror))
        result[points[i].mirror].position = MirrorOf(result, after, static_cast<int>(i), move.mirrorRelativeToParent);
  }
  for (const RigPoint& point : result)
    if (!IsFinite(point.position)) return false;
  const bool changed = result != points;
  points = std::move(result);
  return changed;
}

}  // namespace tavrilon
