// SPDX-License-Identifier: MIT
// Cutting ears: a corner that bulges outward, with no other corner in its triangle, is cut off, until a triangle is
// left. A polygon is looked at along its longest normal axis, where it keeps its shape up to a stretch.
#include <algorithm>
#include <cmath>

#include "host/mesh/mesh.h"

namespace corvanta {

namespace {

// Ears take the square of the corners. No modeller makes larger polygons with dents, and a damaged file must not hang.
constexpr int kMaxEarCorners = 2000;

struct Flat {
  double x, y;
};

double Turn(const Flat& a, const Flat& b, const Flat& c) {
  return (b.x - a.x) * (c.y - b.y) - (b.y - a.y) * (c.x - b.x);
}

class EarCutter {
 public:
  EarCutter(const Mesh& mesh, MeshTriangles& out) : mesh_(mesh), out_(out) {}

  void Cut(int polygon) {
    polygon_ = polygon;
    Flatten(polygon);
    count_ = static_cast<int>(flat_.size());
    if (count_ <= kMaxEarCorners && !IsConvex())
      CutEars();
    else
      for (int i = 1; i + 1 < count_; ++i) Emit(0, i, i + 1);
  }

 private:
  void Flatten(int polygon) {
    const Point3 normal = PolygonNormal(mesh_, mesh_.points, polygon);
    const Point3 size{std::abs(normal.x), std::abs(normal.y), std::abs(normal.z)};
    const int axis = size.z >= size.x && size.z >= size.y ? 2 : size.y >= size.x ? 1 : 0;
    const int u = (axis + 1) % 3, v = (axis + 2) % 3;
    flat_.clear();
    for (const int point : mesh_.Polygon(polygon)) {
      const Point3& p = mesh_.points[static_cast<size_t>(point)];
      flat_.push_back({normal[axis] < 0 ? -double{p[u]} : double{p[u]}, p[v]});
    }
  }

  const Flat& At(int i) const { return flat_[static_cast<size_t>(i)]; }

  bool IsConvex() const {
    for (int i = 0; i < count_; ++i)
      if (Turn(At(i), At((i + 1) % count_), At((i + 2) % count_)) < 0) return false;
    return true;
  }

  bool IsInside(const Flat& p, int a, int b, int c) const {
    return Turn(At(a), At(b), p) >= 0 && Turn(At(b), At(c), p) >= 0 && Turn(At(c), At(a), p) >= 0;
  }

  bool IsEar(size_t k) const {
    const size_t n = left_.size();
    const int a = left_[(k + n - 1) % n], b = left_[k], c = left_[(k + 1) % n];
    if (Turn(At(a), At(b), At(c)) <= 0) return false;
    const auto isCorner = [&](const Flat& p) {
      for (const int i : {a, b, c})
        if (At(i).x == p.x && At(i).y == p.y) return true;
      return false;
    };
    return std::none_of(left_.begin(), left_.end(),
                        [&](int i) { return !isCorner(At(i)) && IsInside(At(i), a, b, c); });
  }

  void CutEars() {
    left_.resize(static_cast<size_t>(count_));
    for (int i = 0; i < count_; ++i) left_[static_cast<size_t>(i)] = i;
    size_t k = 0, passed = 0;
    while (left_.size() > 3) {
      k %= left_.size();
      // A polygon that crosses itself may have no ear: then any corner is cut.
      if (IsEar(k) || passed >= left_.size()) {
        const size_t n = left_.size();
        Emit(left_[(k + n - 1) % n], left_[k], left_[(k + 1) % n]);
        left_.erase(left_.begin() + static_cast<std::ptrdiff_t>(k));
        passed = 0;
      } else {
        ++k;
        ++passed;
      }
    }
    Emit(left_[0], left_[1], left_[2]);
  }

  void Emit(int a, int b, int c) {
    const int first = mesh_.starts[static_cast<size_t>(polygon_)];
    const auto point = [&](int corner) { return mesh_.corners[static_cast<size_t>(first + corner)]; };
    out_.points.push_back({point(a), point(b), point(c)});
    out_.corners.push_back({first + a, first + b, first + c});
    out_.polygons.push_back(polygon_);
  }

  const Mesh& mesh_;
  MeshTriangles& out_;
  std::vector<Flat> flat_;
  std::vector<int> left_;
  int polygon_ = 0;
  int count_ = 0;
};

}  // namespace

MeshTriangles Triangulate(const Mesh& mesh) {
  MeshTriangles out;
  const size_t count = mesh.corners.size() - 2 * static_cast<size_t>(mesh.NumPolygons());
  out.points.reserve(count);
  out.corners.reserve(count);
  out.polygons.reserve(count);
  EarCutter cutter(mesh, out);
  for (int i = 0; i < mesh.NumPolygons(); ++i) cutter.Cut(i);
  return out;
}

std::optional<MeshHit> HitMesh(const Mesh& mesh, std::span<const Point3> points, const MeshTriangles& triangles,
                               const Point3& origin, const Point3& direction, bool ignoreBackFaces) {
  // Moeller and Trumbore, "Fast, minimum storage ray/triangle intersection" (1997).
  std::optional<MeshHit> nearest;
  const auto at = [&](int i) { return points[static_cast<size_t>(i)]; };
  for (size_t i = 0; i < triangles.points.size(); ++i) {
    const auto& t = triangles.points[i];
    const Point3 a = at(t[0]), toB = at(t[1]) - a, toC = at(t[2]) - a;
    const Point3 p = Cross(direction, toC);
    const float det = Dot(toB, p);
    const bool back = det < 0;
    if (det == 0 || (back && ignoreBackFaces)) continue;
    const Point3 fromA = origin - a;
    const float u = Dot(fromA, p) / det;
    const Point3 q = Cross(fromA, toB);
    const float v = Dot(direction, q) / det;
    const float distance = Dot(toC, q) / det;
    if (!(u >= 0 && v >= 0 && u + v <= 1 && distance >= 0)) continue;
    if (!nearest || distance < nearest->distance) nearest = MeshHit{triangles.polygons[i], distance, back};
  }
  return nearest;
}

}  // namespace corvanta
