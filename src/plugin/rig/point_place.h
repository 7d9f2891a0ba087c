// SPDX-License-Identifier: MIT
// Where the points of a template stand, worked out from their links in one pass.
#pragma once

#include "host/maths/box3.h"
#include "plugin/frame/tangent_rule.h"
#include "plugin/rig/rig_point.h"

namespace tavrilon {

/// Places of all points, in template units, with the chain links that they were worked out from. Linear in the number
/// of points; links that run in a circle or out of the list count as none, so any list gives finite work.
class PointPlaces {
 public:
  PointPlaces() = default;
  explicit PointPlaces(const RigPoints& points);

  size_t size() const { return place_.size(); }
  const Point3& operator[](int point) const { return place_[point]; }
  /// The place, or 0, 0, 0 for no point.
  Point3 At(int point) const { return point >= 0 ? place_[point] : Point3{}; }
  /// The next point on the chain: the first child of the same component that is not an in-between point, else the
  /// first such child of any component; -1 without one.
  int Next(int point) const { return next_[point]; }
  /// The smooth row through a point: its own points in order, with the end point that the last one aims at.
  std::vector<int> Row(const RigPoints& points, int point) const;

  /// Box of all places, and of those of selected points.
  corvanta::Box3 Bounds() const;
  corvanta::Box3 SelectionBounds(const RigPoints& points) const;

 private:
  Point3 PlaceOf(const RigPoints& points, int point) const;

  std::vector<Point3> place_;
  std::vector<int> next_;
};

/// The curve from `point` to the next point of its row, by the tangent rule of curves; straight when the point is not
/// smooth. The next point must exist.
BezierSpan SpanFrom(const RigPoints& points, const PointPlaces& places, int point);

/// For bones that lie along a row: the arc length from the row's start to each bone over the whole length of the row,
/// 0 to 1. `row` as from `PointPlaces::Row`; bones whose parent is not in the row, and a row of no length, give 0.
std::vector<float> BonePercents(const RigPoints& points, const PointPlaces& places, const std::vector<int>& row,
                                const std::vector<int>& bones);
/// Arc length of a row, in template units.
float RowLength(const RigPoints& points, const PointPlaces& places, const std::vector<int>& row);

}  // namespace tavrilon
