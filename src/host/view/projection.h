// SPDX-License-Identifier: MIT
// From the world to the screen with clipping, shared by drawing and hit testing. Work is in double precision, and
// what leaves here is finite and within a few thousand pixels of the picture, whatever goes in.
#pragma once

#include "host/view/camera.h"

namespace corvanta {

/// `key` orders by depth, larger is nearer, and is linear over the screen: the inverse depth in a perspective view,
/// the negative depth in the others.
struct ScreenVertex {
  double x = 0, y = 0, key = 0;
  double shade = 1;
};

class Projector {
 public:
  /// `scale` multiplies screen positions: 2 for a picture drawn at twice the size.
  explicit Projector(const Camera& camera, double scale = 1);

  /// A triangle clipped by the near plane and the four sides has at most this many corners.
  static constexpr int kMaxCorners = 9;

  bool Point(const Point3& world, ScreenVertex& out) const;
  /// False when nothing of the segment is left.
  bool Segment(const Point3& a, const Point3& b, ScreenVertex out[2]) const;
  /// Returns the number of corners left, 0 or 3 to kMaxCorners, in the order of the input.
  int Triangle(const Point3 world[3], const float shade[3], ScreenVertex out[kMaxCorners]) const;

  /// Distance along the view direction, as in ScreenPoint.
  float Depth(double key) const { return static_cast<float>(perspective_ ? 1 / key : -key); }
  /// The key of what lies `pixels` pixel sizes nearer to the viewer.
  double Nearer(double key, double pixels) const {
    return perspective_ ? key * (1 + pixels / focal_) : key + pixels / focal_;
  }
  double Width() const { return width_; }
  double Height() const { return height_; }

 private:
  struct ViewVertex {
    double x, y, z, shade;
  };
  bool ToView(const Point3& world, ViewVertex& out) const;
  ScreenVertex ToScreen(const ViewVertex& v) const;
  int ClipNear(const ViewVertex in[3], ScreenVertex out[kMaxCorners]) const;

  bool perspective_;
  double width_, height_, focal_, near_;
  Point3 eye_, right_, up_, forward_;
};

}  // namespace corvanta
