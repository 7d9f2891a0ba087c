// SPDX-License-Identifier: MIT
#include "host/view/hit_test.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <tuple>

#include "host/view/light.h"

namespace corvanta {
namespace {

// The parameter 0 to 1 of the point of the segment that is nearest to (x, y).
double NearestOnSegment(const ScreenVertex& a, const ScreenVertex& b, double x, double y) {
  const double dx = b.x - a.x, dy = b.y - a.y, square = dx * dx + dy * dy;
  return square > 0 ? std::clamp(((x - a.x) * dx + (y - a.y) * dy) / square, 0.0, 1.0) : 0;
}

double KeyOn(const ScreenVertex& a, const ScreenVertex& b, double t) { return a.key + (b.key - a.key) * t; }

// The first point of the segment in the rectangle, or a negative number.
double EnterRectangle(const ScreenVertex& a, const ScreenVertex& b, const HitRegion& r) {
  const double from[] = {a.x, a.y}, delta[] = {b.x - a.x, b.y - a.y};
  double t0 = 0, t1 = 1;
  for (int i = 0; i < 2; ++i) {
    const double low = r.min[i] - from[i], high = r.max[i] - from[i];
    if (delta[i] == 0) {
      if (low > 0 || high < 0) return -1;
      continue;
    }
    t0 = std::max(t0, std::min(low / delta[i], high / delta[i]));
    t1 = std::min(t1, std::max(low / delta[i], high / delta[i]));
  }
  return t0 <= t1 ? t0 : -1;
}

// Whether (x, y) lies in the convex polygon, either way round.
bool IsInside(const ScreenVertex* v, int count, double x, double y) {
  bool left = false, right = false;
  for (int i = 0; i < count; ++i) {
    const ScreenVertex &a = v[i], &b = v[(i + 1) % count];
    const double side = (b.x - a.x) * (y - a.y) - (b.y - a.y) * (x - a.x);
    left |= side > 0, right |= side < 0;
  }
  return left != right;
}

// Key of the plane of the polygon at (x, y). The corner that spans the largest area with the first two is used.
double KeyAt(const ScreenVertex* v, int count, double x, double y) {
  double best = 0, key = v[0].key;
  for (int i = 2; i < count; ++i) {
    const ScreenVertex &a = v[0], &b = v[i - 1], &c = v[i];
    const double area = (b.x - a.x) * (c.y - a.y) - (c.x - a.x) * (b.y - a.y);
    if (std::fabs(area) <= best) continue;
    best = std::fabs(area);
    const double wb = ((x - a.x) * (c.y - a.y) - (c.x - a.x) * (y - a.y)) / area;
    const double wc = ((b.x - a.x) * (y - a.y) - (x - a.x) * (b.y - a.y)) / area;
    key = a.key + (b.key - a.key) * wb + (c.key - a.key) * wc;
  }
  return key;
}

}  // namespace

HitRegion MakeHitRegion(Point2 point, float radius) {
  HitRegion region;
  region.point = point, region.radius = radius;
  return region;
}

HitRegion MakeHitRegion(Point2 corner, Point2 opposite, bool window) {
  HitRegion region;
  region.kind = HitRegion::Kind::Rectangle;
  region.min = {std::min(corner.x, opposite.x), std::min(corner.y, opposite.y)};
  region.max = {std::max(corner.x, opposite.x), std::max(corner.y, opposite.y)};
  region.window = window;
  return region;
}

HitTestWindow::HitTestWindow(const Camera& camera, const HitRegion& region, const HitOptions& options)
    : GraphicsWindow(camera), region_(region), options_(options), projector_(camera) {}

void HitTestWindow::Add(HitKind kind, double distance, double key, int face) {
  const DrawState& s = State();
  const HitRecord hit{s.node,
                      s.subIndex,
                      static_cast<float>(distance),
                      projector_.Depth(key),
                      kind,
                      !s.depthTest,
                      kind == HitKind::Face && s.opacity >= 1,
                      face};
  if (kind == HitKind::Face && options_.everyFace) return hits_.push_back(hit);
  // One record for each node, sub-object and kind; drawing comes node by node, so the search is short.
  for (auto old = hits_.rbegin(); old != hits_.rend(); ++old) {
    if (old->node != hit.node || old->subIndex != hit.subIndex || old->kind != kind || old->onTop != hit.onTop)
      continue;
    const bool better = std::tie(hit.distance, hit.depth) < std::tie(old->distance, old->depth);
    if (better) *old = hit;
    return;
  }
  hits_.push_back(hit);
}

void HitTestWindow::AddOutsider() {
  const INode* node = State().node;
  const int subIndex = State().subIndex;
  const auto same = [&](const Outsider& o) { return o.node == node && o.subIndex == subIndex; };
  if (std::none_of(outsiders_.begin(), outsiders_.end(), same)) outsiders_.push_back({State().node, subIndex});
}

void HitTestWindow::NoteWindow(std::span<const Point3> worldPoints) {
  if (!region_.window) return;
  for (const Point3& p : worldPoints) {
    ScreenVertex v;
    const bool inside = projector_.Point(p, v) && v.x >= region_.min.x && v.x <= region_.max.x &&
                        v.y >= region_.min.y && v.y <= region_.max.y;
    if (!inside) return AddOutsider();
  }
}

void HitTestWindow::TestSegment(const Point3& a, const Point3& b) {
  ScreenVertex v[2];
  if (!projector_.Segment(a, b, v)) return;
  if (region_.kind == HitRegion::Kind::Rectangle) {
    const double t = EnterRectangle(v[0], v[1], region_);
    if (t >= 0) Add(HitKind::Line, 0, KeyOn(v[0], v[1], t));
    return;
  }
  const double t = NearestOnSegment(v[0], v[1], region_.point.x, region_.point.y);
  const double x = v[0].x + (v[1].x - v[0].x) * t, y = v[0].y + (v[1].y - v[0].y) * t;
  const double distance = std::hypot(x - region_.point.x, y - region_.point.y);
  if (distance <= region_.radius) Add(HitKind::Line, distance, KeyOn(v[0], v[1], t));
}

void HitTestWindow::Polyline(std::span<const Point3> points, bool closed) {
  if (points.size() < 2) return;
  worldPoints_.clear();
  for (const Point3& p : points) worldPoints_.push_back(ToWorld(p));
  NoteWindow(worldPoints_);
  for (size_t i = 0; i + 1 < worldPoints_.size(); ++i) TestSegment(worldPoints_[i], worldPoints_[i + 1]);
  if (closed && points.size() > 2) TestSegment(worldPoints_.back(), worldPoints_.front());
}

void HitTestWindow::TestTriangle(const Point3 world[3], int face) {
  static constexpr float kShade[3] = {1, 1, 1};
  ScreenVertex v[Projector::kMaxCorners];
  const int count = projector_.Triangle(world, kShade, v);
  if (count == 0) return;
  const bool rectangle = region_.kind == HitRegion::Kind::Rectangle;
  const double x = rectangle ? (double(region_.min.x) + region_.max.x) / 2 : region_.point.x;
  const double y = rectangle ? (double(region_.min.y) + region_.max.y) / 2 : region_.point.y;
  if (IsInside(v, count, x, y)) return Add(HitKind::Face, 0, KeyAt(v, count, x, y), face);
  double distance = std::numeric_limits<double>::infinity(), key = 0;
  for (int i = 0; i < count; ++i) {
    const ScreenVertex &a = v[i], &b = v[(i + 1) % count];
    const double t = rectangle ? EnterRectangle(a, b, region_) : NearestOnSegment(a, b, x, y);
    if (t < 0) continue;
    const double d = rectangle ? 0 : std::hypot(a.x + (b.x - a.x) * t - x, a.y + (b.y - a.y) * t - y);
    if (d < distance) distance = d, key = KeyOn(a, b, t);
  }
  if (distance <= (rectangle ? 0 : double(region_.radius))) Add(HitKind::Face, distance, key, face);
}

void HitTestWindow::Triangles(const TriangleList& mesh) {
  worldPoints_.clear();
  for (const Point3& p : mesh.points) worldPoints_.push_back(ToWorld(p));
  NoteWindow(worldPoints_);
  const Headlight light(GetCamera(), State().transform);
  const int count = static_cast<int>(mesh.points.size());
  for (size_t face = 0; face < mesh.triangles.size(); ++face) {
    const auto& corners = mesh.triangles[face];
    if (!std::all_of(corners.begin(), corners.end(), [&](int i) { return i >= 0 && i < count; })) continue;
    const Point3 world[3] = {worldPoints_[corners[0]], worldPoints_[corners[1]], worldPoints_[corners[2]]};
    if ((options_.ignoreBackfacing || State().cullBack) && light.IsBack(world)) continue;
    TestTriangle(world, static_cast<int>(face));
  }
}

void HitTestWindow::Marker(const Point3& p, MarkerKind, float size) {
  const Point3 world = ToWorld(p);
  NoteWindow({&world, 1});
  ScreenVertex v;
  if (!projector_.Point(world, v)) return;
  // A marker counts as a square.
  const double half = size * 0.5;
  const bool rectangle = region_.kind == HitRegion::Kind::Rectangle;
  const double left = rectangle ? region_.min.x : region_.point.x, right = rectangle ? region_.max.x : left;
  const double top = rectangle ? region_.min.y : region_.point.y, bottom = rectangle ? region_.max.y : top;
  const double dx = std::max({left - (v.x + half), v.x - half - right, 0.0});
  const double dy = std::max({top - (v.y + half), v.y - half - bottom, 0.0});
  const double distance = std::hypot(dx, dy);
  if (distance <= (rectangle ? 0 : double(region_.radius))) Add(HitKind::Marker, distance, v.key);
}

std::vector<HitRecord> HitTestWindow::Hits() const {
  std::vector<HitRecord> hits;
  for (const HitRecord& hit : hits_) {
    const auto same = [&](const Outsider& o) { return o.node == hit.node && o.subIndex == hit.subIndex; };
    if (std::none_of(outsiders_.begin(), outsiders_.end(), same)) hits.push_back(hit);
  }
  // Only in a point region does a face in front tell that a line is hidden; a pixel of slack for lines on the face.
  float nearest = std::numeric_limits<float>::infinity();
  if (region_.kind == HitRegion::Kind::Point)
    for (const HitRecord& hit : hits)
      if (hit.opaque && !hit.onTop) nearest = std::min(nearest, hit.depth);
  if (std::isfinite(nearest)) nearest += GetCamera().PixelSize(GetCamera().Eye() + GetCamera().Forward() * nearest) * 2;
  const auto rank = [nearest](const HitRecord& hit) {
    if (hit.onTop) return 0;
    if (hit.kind == HitKind::Face) return 2;
    return hit.depth <= nearest ? 1 : 3;
  };
  std::stable_sort(hits.begin(), hits.end(), [&](const HitRecord& a, const HitRecord& b) {
    const int ra = rank(a), rb = rank(b);
    if (ra != rb) return ra < rb;
    if (ra == 2) return std::tie(a.depth, a.distance) < std::tie(b.depth, b.distance);
    return std::tie(a.distance, a.depth) < std::tie(b.distance, b.depth);
  });
  return hits;
}

}  // namespace corvanta
