// SPDX-License-Identifier: MIT
// Bezier splines, and the base of shapes made of them.
#pragma once

#include "host/scene/object.h"

namespace corvanta {

enum class KnotType : uint8_t { Corner, Curve };

struct SplineKnot {
  Point3 point;
  /// Handles as points, not offsets.
  Point3 inVec, outVec;
  KnotType type = KnotType::Corner;
};

struct Spline3D {
  std::vector<SplineKnot> knots;
  bool closed = false;

  int KnotCount() const { return static_cast<int>(knots.size()); }
  void SetKnotPoint(int i, const Point3& p) { knots[static_cast<size_t>(i)].point = p; }
  void SetInVec(int i, const Point3& p) { knots[static_cast<size_t>(i)].inVec = p; }
  void SetOutVec(int i, const Point3& p) { knots[static_cast<size_t>(i)].outVec = p; }
  void SetKnotType(int i, KnotType type) { knots[static_cast<size_t>(i)].type = type; }
  /// Corner knots get handles a third of the way to their neighbours.
  void ComputeBezPoints();
  /// Appends the polyline: every curved segment has `steps` points between its knots, straight ones none.
  void Interpolate(int steps, std::vector<Point3>& out) const;
};

/// A shape drawn as splines. Derived classes rebuild `splines_` on demand.
class SimpleSpline : public ShapeObject {
 public:
  /// The splines at `t`, rebuilt when something changed.
  virtual const std::vector<Spline3D>& GetSplines(TimeValue t) = 0;
};

}  // namespace corvanta
