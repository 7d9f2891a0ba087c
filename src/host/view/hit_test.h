// SPDX-License-Identifier: MIT
// Picking: an object draws itself into a HitTestWindow, which keeps what touches the region.
#pragma once

#include <vector>

#include "host/view/draw.h"
#include "host/view/projection.h"

namespace corvanta {

/// A part of the screen, pixels. A point region is hit by what comes within its radius. A rectangle is hit by what
/// it touches, or with `window` only by nodes (sub-objects) of which no drawn part lies outside of it.
struct HitRegion {
  enum class Kind { Point, Rectangle } kind = Kind::Point;
  Point2 point;
  float radius = 4;
  Point2 min, max;
  bool window = false;
};
HitRegion MakeHitRegion(Point2 point, float radius = 4);
/// The corners may come in any order.
HitRegion MakeHitRegion(Point2 corner, Point2 opposite, bool window = false);

enum class HitKind { Line, Marker, Face };

/// The best hit of one node and sub-object.
struct HitRecord {
  INode* node = nullptr;
  int subIndex = -1;
  float distance = 0;  ///< pixels from the region's point to the primitive; 0 in a rectangle
  float depth = 0;     ///< along the view direction, world units, as in ScreenPoint
  HitKind kind = HitKind::Line;
  bool onTop = false;   ///< drawn without the depth test
  bool opaque = false;  ///< a face that hides what is behind it
  int face = -1;        ///< index of the triangle in its call, for faces
};

struct HitOptions {
  bool everyFace = false;         ///< a record for each triangle, to pick faces
  bool ignoreBackfacing = false;  ///< triangles that turn their back are not hit
};

class HitTestWindow final : public GraphicsWindow {
 public:
  HitTestWindow(const Camera& camera, const HitRegion& region, const HitOptions& options = {});

  /// The hits, best first: what is drawn on top, then lines and markers that no opaque face at this place hides, by
  /// distance and then depth, then faces from near to far, then hidden lines. Equals keep the order of drawing.
  std::vector<HitRecord> Hits() const;

  void Polyline(std::span<const Point3> points, bool closed = false) override;
  void Triangles(const TriangleList& mesh) override;
  void Marker(const Point3& p, MarkerKind kind, float size) override;
  /// Text is not hit.
  void Text(Point2, std::wstring_view, TextAnchor = TextAnchor::Left) override {}
  void WorldText(const Point3&, std::wstring_view, TextAnchor = TextAnchor::Left) override {}

 private:
  struct Outsider {
    INode* node;
    int subIndex;
  };
  void TestSegment(const Point3& a, const Point3& b);
  void TestTriangle(const Point3 world[3], int face);
  void Add(HitKind kind, double distance, double key, int face = -1);
  void AddOutsider();
  void NoteWindow(std::span<const Point3> worldPoints);

  HitRegion region_;
  HitOptions options_;
  Projector projector_;
  std::vector<HitRecord> hits_;
  std::vector<Outsider> outsiders_;  // what a window selection has to leave out
  std::vector<Point3> worldPoints_;
};

}  // namespace corvanta
