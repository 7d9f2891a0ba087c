// SPDX-License-Identifier: MIT
// The few generators that every outline is drawn with, in unit coordinates: shapes lie in the XY plane and reach
// from -1 to 1.
#pragma once

#include <span>

#include "plugin/shapes/spline.h"

namespace tavrilon {

/// A plane in which circles and polygons are drawn. The default is the XY plane through the origin.
struct Plane {
  Point3 centre;
  Point3 u{1, 0, 0};
  Point3 v{0, 1, 0};

  Point3 At(float x, float y) const { return centre + u * x + v * y; }
};
inline Plane PlaneAtHeight(float z) { return {{0, 0, z}}; }

/// One knot of a drawing. 's' is smooth, with handles along the line through its neighbours; 'c' is a corner.
struct DrawnKnot {
  float x, y;
  char kind;
};

/// A hand-made stroke. A mirrored one lists its half at x >= 0, and the other half is its reflection: open ends
/// on the Y axis close it.
struct DrawnStroke {
  std::span<const DrawnKnot> knots;
  enum Form { Open, Closed, Mirrored } form;
};
struct DrawnOval {
  float x, y, halfWidth, halfHeight;
};
/// A whole pictogram as data.
struct Drawing {
  std::span<const DrawnStroke> strokes;
  std::span<const DrawnOval> ovals;
};

void AddLine(Outline& outline, const Point3& a, const Point3& b);
void AddPolyline(Outline& outline, std::span<const Point2> points, const Plane& plane = {});
void AddPolygon(Outline& outline, std::span<const Point2> points, const Plane& plane = {});
/// Straight lines between all pairs of points nearer than `reach`, joined into few strokes.
void AddCage(Outline& outline, std::span<const Point3> points, float reach);

/// Appends a circular arc to a stroke, in spans of a quarter turn at most. Angles in radians, counterclockwise when
/// `to` is above `from`. The ends are corners.
void AppendArc(Spline& spline, const Plane& plane, float radius, float from, float to);
/// A closed circle of four smooth knots; `plane` scaled by unequal u and v gives an ellipse.
void AddCircle(Outline& outline, const Plane& plane = {}, float radius = 1);
/// An open arc as a stroke of its own.
void AddArc(Outline& outline, const Plane& plane, float radius, float from, float to);

void AddDrawing(Outline& outline, const Drawing& drawing);
/// Gives all knots the handles of a smooth curve through them. Ends of an open stroke stay straight.
void SmoothKnots(Spline& spline);

}  // namespace tavrilon
