// SPDX-License-Identifier: MIT
// Polygon meshes as plain data, and what can be computed from one.
#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include "host/core/wstr.h"
#include "host/maths/box3.h"
#include "host/maths/matrix3.h"

namespace corvanta {

/// One channel of texture coordinates: values, and which of them each corner takes.
struct MeshMap {
  /// 1 is the first; 0 is reserved for vertex colours.
  int channel = 1;
  WStr name;
  std::vector<Point3> values;
  std::vector<int> corners;
  bool operator==(const MeshMap&) const = default;
};

/// Polygons of three corners and more over shared points. Corners of polygon i are `starts[i]` to `starts[i + 1]`;
/// they run counter-clockwise seen from outside. A tab for polygons or corners that is empty means "none".
struct Mesh {
  std::vector<Point3> points;
  std::vector<int> starts{0};
  std::vector<int> corners;
  /// Explicit normals, one a corner by `normalCorners`; both empty when normals come from smoothing groups.
  std::vector<Point3> normals;
  std::vector<int> normalCorners;
  /// A polygon's smoothing groups as bits; neighbours that share a bit are smooth across their edge.
  std::vector<uint32_t> smoothing;
  /// A polygon's material ID, from 0.
  std::vector<uint16_t> materials;
  std::vector<MeshMap> maps;

  bool operator==(const Mesh&) const = default;
  int NumPoints() const { return static_cast<int>(points.size()); }
  int NumPolygons() const { return static_cast<int>(starts.size()) - 1; }
  int NumCorners() const { return static_cast<int>(corners.size()); }
  std::span<const int> Polygon(int i) const {
    return std::span<const int>(corners).subspan(static_cast<size_t>(starts[i]),
                                                 static_cast<size_t>(starts[i + 1] - starts[i]));
  }
  void AddPolygon(std::span<const int> points);
};

/// Empty when all tabs fit together, every index is in range, every number finite and no map channel there twice; else
/// what is wrong ("polygon 7 uses point 1200 of 8"). A polygon may use a point twice. Everything else in this header
/// takes a mesh without a fault.
std::string FaultOf(const Mesh& mesh);

/// Triangles over points; a polygon of n corners gives n - 2, one with dents by cutting ears (up to 2000 corners;
/// larger ones are fanned). `polygons` tells where each came from, `corners` which corners of the mesh it takes.
struct MeshTriangles {
  std::vector<std::array<int, 3>> points;
  std::vector<std::array<int, 3>> corners;
  std::vector<int> polygons;
};
MeshTriangles Triangulate(const Mesh& mesh);

/// A normal for each corner of `mesh` with its points at `points`: by smoothing groups, weighted by the corner's angle;
/// polygons without a group are flat. Explicit normals stand as they are while the points do; else each makes the turn
/// of the smooth normal over the corners of its point that have the same one. A degenerate polygon gives zero. Nothing
/// is allocated once a mesh of this size was done, into the same `normals`.
void CornerNormals(const Mesh& mesh, std::span<const Point3> points, std::vector<Point3>& normals);
/// The polygon's normal of unit length by Newell's sum; zero for a degenerate one.
Point3 PolygonNormal(const Mesh& mesh, std::span<const Point3> points, int polygon);

/// Catmull and Clark, "Recursively generated B-spline surfaces on arbitrary topological meshes" (1978), with open
/// borders as cubic curves. Maps, materials and smoothing go along; explicit normals are dropped, and a
/// mesh without smoothing groups comes out smooth all over. Points stay where borders meet, and where more than two
/// polygons share an edge. How each new point depends on the old ones is kept apart, so that moved points need no new
/// topology. Levels beyond some millions of polygons are left out.
struct Subdivision {
  std::shared_ptr<const Mesh> mesh;
  /// Weights of the old points on each new one: `starts`, `sources`, `weights` as in compressed rows.
  std::vector<int> starts, sources;
  std::vector<float> weights;
  void MovePoints(std::span<const Point3> from, std::vector<Point3>& to) const;
};
Subdivision Subdivide(const Mesh& mesh, int levels);

/// The nearest polygon that a ray hits, or none. Distances are in lengths of `direction`.
struct MeshHit {
  int polygon = -1;
  float distance = 0;
  bool backFace = false;
};
std::optional<MeshHit> HitMesh(const Mesh& mesh, std::span<const Point3> points, const MeshTriangles& triangles,
                               const Point3& origin, const Point3& direction, bool ignoreBackFaces);

}  // namespace corvanta
