// SPDX-License-Identifier: MIT
// Views of the scene. Z is up and a character faces -Y, so the front view looks along +Y. Screen positions are
// pixels from the top left corner of the picture, y down; the middle of the first pixel is (0.5, 0.5).
#pragma once

#include <span>

#include "host/maths/box3.h"

namespace corvanta {

enum class ViewKind { Front, Side, Top, Perspective };

/// `depth` is the distance along the view direction, in world units: from the eye in a perspective view, from the
/// plane through the target in the others, where it may be negative.
struct ScreenPoint {
  float x = 0, y = 0, depth = 0;
};

struct Ray {
  Point3 origin;
  Point3 direction;  ///< of unit length
};

/// Where the scene is looked at from. A value: copy it freely.
class Camera {
 public:
  /// Looks at a box of two units about the origin. Sizes are pixels and at least 1.
  explicit Camera(ViewKind kind = ViewKind::Perspective, int width = 1280, int height = 720);

  ViewKind Kind() const { return kind_; }
  bool IsPerspective() const { return kind_ == ViewKind::Perspective; }
  int Width() const { return width_; }
  int Height() const { return height_; }
  const Point3& Target() const { return target_; }
  /// Height of the picture in world units at the depth of the target.
  float Span() const { return span_; }

  /// Unit axes of the view in the world: to the right, up, and away from the viewer.
  const Point3& Right() const { return right_; }
  const Point3& Up() const { return up_; }
  const Point3& Forward() const { return forward_; }
  /// The eye of a perspective view; the target in the others, whose eye is infinitely far away.
  Point3 Eye() const { return IsPerspective() ? target_ - forward_ * Distance() : target_; }
  /// World to view: x right, y up, z away from the viewer; the origin is `Eye()`.
  Matrix3 ViewTM() const;
  /// Pixels a world unit covers at depth 1 (perspective) or at any depth (others).
  float Focal() const;
  /// A perspective view shows nothing nearer to the eye than this.
  float NearDepth() const { return Distance() * 0.002f; }

  void Resize(int width, int height);
  void LookAt(const Point3& target, float span);
  /// Moves and zooms so that all points are seen, in the middle and with a border: `margin` 1 touches the edges. No
  /// points, or one that is not finite, give the view of the constructor.
  void FramePoints(std::span<const Point3> points, float margin = 1.15f);
  /// The same for the corners of a box; an empty one counts as no points.
  void FrameBox(const Box3& box, float margin = 1.15f);
  /// Turns a perspective view about its target, radians. The pitch stops just short of straight up and down.
  void Orbit(float yaw, float pitch);
  /// Drags the picture by pixels.
  void Pan(float dx, float dy);
  /// Above 1 sees more.
  void Zoom(float factor);

  /// False for what lies nearer than `NearDepth()` or is not finite; `out` is then unchanged.
  bool WorldToScreen(const Point3& p, ScreenPoint& out) const;
  /// Size of a pixel in world units at the depth of `p`; behind the eye that of the nearest depth shown.
  float PixelSize(const Point3& p) const;
  /// The line seen as one point. In a view without perspective it starts on the plane through the target.
  Ray ScreenRay(Point2 screen) const;
  /// Where the ray meets the plane, also behind the viewer in a view without perspective. False when the plane is
  /// seen from its edge or a perspective ray points away from it.
  bool ScreenToPlane(Point2 screen, const Point3& origin, const Point3& normal, Point3& hit) const;
  /// The plane of the grid: the ground, or through the origin facing the viewer in front and side views.
  Point3 GridNormal() const;
  bool ScreenToGrid(Point2 screen, Point3& hit) const { return ScreenToPlane(screen, {}, GridNormal(), hit); }

 private:
  float Distance() const;
  void Centre(std::span<const Point3> points);
  float NeededSpan(std::span<const Point3> points, float margin) const;
  void UpdateAxes();

  ViewKind kind_;
  int width_, height_;
  Point3 target_;
  float span_ = 2.3f;
  float yaw_ = 0.6f, pitch_ = 0.22f;  // a front three-quarter view, a little from above
  Point3 right_, up_, forward_;
};

}  // namespace corvanta
