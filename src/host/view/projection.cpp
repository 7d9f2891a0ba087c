// SPDX-License-Identifier: MIT
#include "host/view/projection.h"

#include <algorithm>

namespace corvanta {
namespace {

// How far beyond the picture geometry may reach before it is cut. Wide enough that a thick line's end stays unseen.
constexpr double kGuard = 512;

double DotD(const Point3& a, double x, double y, double z) { return a.x * x + a.y * y + a.z * z; }

ScreenVertex Mix(const ScreenVertex& a, const ScreenVertex& b, double t) {
  return {a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t, a.key + (b.key - a.key) * t, a.shade + (b.shade - a.shade) * t};
}

// The four sides of the guard rectangle: inside is where the value is not negative.
double Inside(const ScreenVertex& v, int side, double width, double height) {
  switch (side) {
    case 0:
      return v.x + kGuard;
    case 1:
      return width + kGuard - v.x;
    case 2:
      return v.y + kGuard;
    default:
      return height + kGuard - v.y;
  }
}

// Sutherland and Hodgman, "Reentrant polygon clipping", 1974; one side.
int ClipSide(const ScreenVertex* in, int count, int side, double width, double height, ScreenVertex* out) {
  int n = 0;
  for (int i = 0; i < count; ++i) {
    const ScreenVertex &a = in[i], &b = in[(i + 1) % count];
    const double da = Inside(a, side, width, height), db = Inside(b, side, width, height);
    if (da >= 0) out[n++] = a;
    if ((da >= 0) != (db >= 0)) out[n++] = Mix(a, b, da / (da - db));
  }
  return n;
}

bool IsFinite(const ScreenVertex& v) { return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.key); }

// True when all vertices lie beyond one and the same edge of the picture, `slack` pixels for thick lines.
bool IsOutside(const ScreenVertex* v, int count, double width, double height, double slack) {
  bool left = true, right = true, above = true, below = true;
  for (int i = 0; i < count; ++i) {
    left &= v[i].x<-slack, right &= v[i].x> width + slack;
    above &= v[i].y<-slack, below &= v[i].y> height + slack;
  }
  return left || right || above || below;
}

bool NeedsClip(const ScreenVertex* v, int count, double width, double height) {
  for (int i = 0; i < count; ++i)
    for (int side = 0; side < 4; ++side)
      if (Inside(v[i], side, width, height) < 0) return true;
  return false;
}

}  // namespace

Projector::Projector(const Camera& camera, double scale)
    : perspective_(camera.IsPerspective()),
      width_(camera.Width() * scale),
      height_(camera.Height() * scale),
      focal_(camera.Focal() * scale),
      near_(camera.NearDepth()),
      eye_(camera.Eye()),
      right_(camera.Right()),
      up_(camera.Up()),
      forward_(camera.Forward()) {}

bool Projector::ToView(const Point3& world, ViewVertex& out) const {
  const double x = double(world.x) - eye_.x, y = double(world.y) - eye_.y, z = double(world.z) - eye_.z;
  if (!std::isfinite(x + y + z)) return false;
  out = {DotD(right_, x, y, z), DotD(up_, x, y, z), DotD(forward_, x, y, z), 1};
  return true;
}

ScreenVertex Projector::ToScreen(const ViewVertex& v) const {
  const double scale = perspective_ ? focal_ / v.z : focal_;
  return {width_ * 0.5 + v.x * scale, height_ * 0.5 - v.y * scale, perspective_ ? 1 / v.z : -v.z, v.shade};
}

bool Projector::Point(const Point3& world, ScreenVertex& out) const {
  ViewVertex v;
  if (!ToView(world, v) || (perspective_ && v.z < near_)) return false;
  const ScreenVertex s = ToScreen(v);
  if (!IsFinite(s) || NeedsClip(&s, 1, width_, height_)) return false;
  out = s;
  return true;
}

bool Projector::Segment(const Point3& a, const Point3& b, ScreenVertex out[2]) const {
  ViewVertex va, vb;
  if (!ToView(a, va) || !ToView(b, vb)) return false;
  if (perspective_) {
    if (va.z < near_ && vb.z < near_) return false;
    if (va.z < near_ || vb.z < near_) {
      const double t = (near_ - va.z) / (vb.z - va.z);
      (va.z < near_ ? va : vb) = {va.x + (vb.x - va.x) * t, va.y + (vb.y - va.y) * t, near_, 1};
    }
  }
  out[0] = ToScreen(va), out[1] = ToScreen(vb);
  if (!IsFinite(out[0]) || !IsFinite(out[1]) || IsOutside(out, 2, width_, height_, kGuard)) return false;
  // Liang and Barsky, "A new concept and method for line clipping", 1984.
  double t0 = 0, t1 = 1;
  for (int side = 0; side < 4; ++side) {
    const double da = Inside(out[0], side, width_, height_), db = Inside(out[1], side, width_, height_);
    if (da < 0 && db < 0) return false;
    if (da < 0) t0 = std::max(t0, da / (da - db));
    if (db < 0) t1 = std::min(t1, da / (da - db));
  }
  if (t0 > t1) return false;
  const ScreenVertex first = out[0], last = out[1];
  if (t0 > 0) out[0] = Mix(first, last, t0);
  if (t1 < 1) out[1] = Mix(first, last, t1);
  return true;
}

int Projector::ClipNear(const ViewVertex in[3], ScreenVertex out[kMaxCorners]) const {
  int n = 0;
  for (int i = 0; i < 3; ++i) {
    const ViewVertex &a = in[i], &b = in[(i + 1) % 3];
    const bool aSeen = !perspective_ || a.z >= near_, bSeen = !perspective_ || b.z >= near_;
    if (aSeen) out[n++] = ToScreen(a);
    if (aSeen == bSeen) continue;
    const double t = (near_ - a.z) / (b.z - a.z);
    out[n++] = ToScreen({a.x + (b.x - a.x) * t, a.y + (b.y - a.y) * t, near_, a.shade + (b.shade - a.shade) * t});
  }
  return n;
}

int Projector::Triangle(const Point3 world[3], const float shade[3], ScreenVertex out[kMaxCorners]) const {
  ViewVertex v[3];
  for (int i = 0; i < 3; ++i) {
    if (!ToView(world[i], v[i])) return 0;
    v[i].shade = shade[i];
  }
  int n = ClipNear(v, out);
  for (int i = 0; i < n; ++i)
    if (!IsFinite(out[i])) return 0;
  if (n < 3 || IsOutside(out, n, width_, height_, 0)) return 0;
  if (!NeedsClip(out, n, width_, height_)) return n;
  ScreenVertex other[kMaxCorners];
  for (int side = 0; side < 4 && n >= 3; side += 2) {
    n = ClipSide(out, n, side, width_, height_, other);
    n = ClipSide(other, n, side + 1, width_, height_, out);
  }
  return n < 3 ? 0 : n;
}

}  // namespace corvanta
