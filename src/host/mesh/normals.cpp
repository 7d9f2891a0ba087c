// SPDX-License-Identifier: MIT
// Normals at corners. What a corner adds to its point's normal is its polygon's normal by the angle of the corner, so
// that it does not matter how a flat side is cut into polygons. Source: Thuermer and Wuethrich, "Computing vertex
// normals from polygonal facets" (1998).
#include <algorithm>
#include <cmath>
#include <utility>

#include "host/mesh/mesh.h"

namespace corvanta {

namespace {

using Points = std::span<const Point3>;

const Point3& At(Points points, int i) { return points[static_cast<size_t>(i)]; }

// atan2 rather than acos: it is exact for needles, and bears any length.
float Angle(const Point3& a, const Point3& b) { return std::atan2(Length(Cross(a, b)), Dot(a, b)); }

/// What each corner adds to the normal of its point.
void CornerShares(const Mesh& mesh, Points points, std::vector<Point3>& shares) {
  shares.resize(mesh.corners.size());
  for (int i = 0; i < mesh.NumPolygons(); ++i) {
    const Point3 normal = PolygonNormal(mesh, points, i);
    const auto polygon = mesh.Polygon(i);
    const auto first = static_cast<size_t>(mesh.starts[static_cast<size_t>(i)]);
    for (size_t k = 0, n = polygon.size(); k < n; ++k) {
      const Point3& p = At(points, polygon[k]);
      shares[first + k] =
          normal * Angle(At(points, polygon[k + 1 < n ? k + 1 : 0]) - p, At(points, polygon[k ? k - 1 : n - 1]) - p);
    }
  }
}

/// Corners by the point that they stand on, as compressed rows.
struct CornersOfPoints {
  std::vector<int> starts, corners;

  void Make(const Mesh& mesh) {
    starts.assign(mesh.points.size() + 1, 0);
    corners.resize(mesh.corners.size());
    for (const int point : mesh.corners) ++starts[static_cast<size_t>(point)];
    int sum = 0;
    for (int& start : starts) sum += std::exchange(start, sum);
    for (size_t i = 0; i < mesh.corners.size(); ++i)
      corners[static_cast<size_t>(starts[static_cast<size_t>(mesh.corners[i])]++)] = static_cast<int>(i);
    // Every start has become the next one's.
    for (size_t i = mesh.points.size(); i > 0; --i) starts[i] = starts[i - 1];
    starts[0] = 0;
  }
  std::span<const int> Of(int point) const {
    const auto first = static_cast<size_t>(starts[static_cast<size_t>(point)]);
    return std::span<const int>(corners).subspan(first,
                                                 static_cast<size_t>(starts[static_cast<size_t>(point) + 1]) - first);
  }
};

// Kept from call to call, so that a mesh that moves allocates nothing.
struct Scratch {
  std::vector<Point3> shares, restShares, ofPoints;
  std::vector<int> polygonOf;
  CornersOfPoints around;
};
Scratch scratch;

void MakePolygonOf(const Mesh& mesh) {
  scratch.polygonOf.resize(mesh.corners.size());
  for (int i = 0; i < mesh.NumPolygons(); ++i)
    std::fill(scratch.polygonOf.begin() + mesh.starts[static_cast<size_t>(i)],
              scratch.polygonOf.begin() + mesh.starts[static_cast<size_t>(i) + 1], i);
}

void FlatNormals(const Mesh& mesh, Points points, std::vector<Point3>& normals) {
  for (int i = 0; i < mesh.NumPolygons(); ++i)
    std::fill(normals.begin() + mesh.starts[static_cast<size_t>(i)],
              normals.begin() + mesh.starts[static_cast<size_t>(i) + 1], PolygonNormal(mesh, points, i));
}

/// One normal a point.
void SmoothNormals(const Mesh& mesh, std::vector<Point3>& normals) {
  scratch.ofPoints.assign(mesh.points.size(), {});
  for (size_t i = 0; i < mesh.corners.size(); ++i)
    scratch.ofPoints[static_cast<size_t>(mesh.corners[i])] += scratch.shares[i];
  for (Point3& normal : scratch.ofPoints) normal = Normalize(normal);
  for (size_t i = 0; i < mesh.corners.size(); ++i) normals[i] = scratch.ofPoints[static_cast<size_t>(mesh.corners[i])];
}

void GroupNormals(const Mesh& mesh, std::vector<Point3>& normals) {
  MakePolygonOf(mesh);
  scratch.around.Make(mesh);
  const auto groupsOf = [&](size_t corner) { return mesh.smoothing[static_cast<size_t>(scratch.polygonOf[corner])]; };
  for (size_t i = 0; i < mesh.corners.size(); ++i) {
    Point3 sum = scratch.shares[i];
    for (const int other : scratch.around.Of(mesh.corners[i])) {
      const auto k = static_cast<size_t>(other);
      if (k != i && (groupsOf(i) & groupsOf(k))) sum += scratch.shares[k];
    }
    normals[i] = Normalize(sum);
  }
}

/// `v` by the shortest turn that takes the unit vector `from` to the unit vector `to`.
Point3 Turned(const Point3& v, const Point3& from, const Point3& to) {
  const float cosine = Dot(from, to);
  // Opposite vectors have no shortest turn; half a turn about any axis across would do, and mirroring is one for
  // `from`.
  if (cosine < -0.9999f) return v - from * (2 * Dot(v, from));
  const Point3 axis = Cross(from, to);
  return v * cosine + Cross(axis, v) + axis * (Dot(axis, v) / (1 + cosine));
}

/// Explicit normals of moved points. Corners of one point with one normal are smooth together: their common normal is
/// computed for the points at rest and as they are, and the explicit one makes the same turn.
void FollowNormals(const Mesh& mesh, std::vector<Point3>& normals) {
  constexpr float kSame = 0.9999f;  // within a degree: the same normal, rounded on its way through a file
  scratch.around.Make(mesh);
  CornerShares(mesh, mesh.points, scratch.restShares);
  const auto normalOf = [&](size_t corner) -> const Point3& { return At(mesh.normals, mesh.normalCorners[corner]); };
  for (size_t i = 0; i < mesh.corners.size(); ++i) {
    Point3 rest, now;
    for (const int other : scratch.around.Of(mesh.corners[i])) {
      const auto k = static_cast<size_t>(other);
      if (k != i && Dot(normalOf(i), normalOf(k)) < kSame) continue;
      rest += scratch.restShares[k];
      now += scratch.shares[k];
    }
    rest = Normalize(rest);
    now = Normalize(now);
    const bool known = LengthSquared(rest) > 0 && LengthSquared(now) > 0;
    normals[i] = known ? Turned(normalOf(i), rest, now) : normalOf(i);
  }
}

}  // namespace

Point3 PolygonNormal(const Mesh& mesh, std::span<const Point3> points, int polygon) {
  const auto corners = mesh.Polygon(polygon);
  // About the first point, so that a small polygon far from the origin keeps its digits.
  const Point3& origin = At(points, corners[0]);
  Point3 sum;
  for (size_t i = 1; i + 1 < corners.size(); ++i)
    sum += Cross(At(points, corners[i]) - origin, At(points, corners[i + 1]) - origin);
  return Normalize(sum);
}

void CornerNormals(const Mesh& mesh, std::span<const Point3> points, std::vector<Point3>& normals) {
  normals.resize(mesh.corners.size());
  if (!mesh.normals.empty()) {
    if (std::equal(points.begin(), points.end(), mesh.points.begin(), mesh.points.end())) {
      for (size_t i = 0; i < normals.size(); ++i) normals[i] = At(mesh.normals, mesh.normalCorners[i]);
      return;
    }
    CornerShares(mesh, points, scratch.shares);
    return FollowNormals(mesh, normals);
  }
  uint32_t common = ~uint32_t{0}, any = 0;
  for (const uint32_t groups : mesh.smoothing) {
    common &= groups;
    any |= groups;
  }
  if (any == 0) return FlatNormals(mesh, points, normals);
  CornerShares(mesh, points, scratch.shares);
  common ? SmoothNormals(mesh, normals) : GroupNormals(mesh, normals);
}

}  // namespace corvanta
