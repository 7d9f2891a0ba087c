// SPDX-License-Identifier: MIT
#include "plugin/fbx/exporter/mesh_layout.h"

#include <algorithm>

#include "plugin/fbx/exporter/job.h"

namespace tavrilon::fbx_export {

using namespace corvanta;
using namespace fbx;

namespace {

/// Corners of a polygon without repeated points, in the order of the file; fewer than three for a degenerate one.
void PickCorners(const Mesh& mesh, int polygon, bool reversed, std::vector<int>& picked) {
  picked.clear();
  const int first = mesh.starts[static_cast<size_t>(polygon)], last = mesh.starts[static_cast<size_t>(polygon) + 1];
  const auto pointOf = [&](int corner) { return mesh.corners[static_cast<size_t>(corner)]; };
  for (int corner = first; corner < last; ++corner)
    if (picked.empty() || pointOf(corner) != pointOf(picked.back())) picked.push_back(corner);
  while (picked.size() > 1 && pointOf(picked.back()) == pointOf(picked.front())) picked.pop_back();
  // The first corner stays the first.
  if (reversed && picked.size() > 1) std::reverse(picked.begin() + 1, picked.end());
}

/// Covectors go by the inverse transpose: unit length, also after a scale.
class NormalTurner {
 public:
  explicit NormalTurner(const Affine& offset) : inverse_(Inverse(offset)) {}
  Vector3 operator()(const Point3& normal) const {
    const Vector3 n = ToVector(normal);
    return Unit({Dot(inverse_.row[0], n), Dot(inverse_.row[1], n), Dot(inverse_.row[2], n)});
  }
  /// A vector of no length gives up: readers take any direction better than none.
  static Vector3 Unit(const Vector3& v) {
    const double length = Length(v);
    return length > 0 ? v * (1 / length) : Vector3{0, 0, 1};
  }

 private:
  Affine inverse_;
};

void FillUVs(const MeshMap& map, const MeshLayout& layout, FbxMesh& out) {
  LayerElement<Vector2> uvs;
  uvs.name = "UVChannel_" + std::to_string(map.channel);
  uvs.mapping = Mapping::ByPolygonVertex;
  uvs.values.reserve(map.values.size());
  for (const Point3& value : map.values) uvs.values.push_back({value.x, value.y});
  uvs.indices.reserve(layout.oldCorners.size());
  for (const int corner : layout.oldCorners) uvs.indices.push_back(map.corners[static_cast<size_t>(corner)]);
  out.uvs.push_back(std::move(uvs));
}

}  // namespace

MeshLayout LayOut(const Mesh& mesh, const Affine& offset) {
  MeshLayout layout;
  layout.offset = offset;
  layout.newPoints.assign(mesh.points.size(), -1);
  const bool reversed = Determinant(offset) < 0;
  std::vector<int> picked;
  for (int polygon = 0; polygon < mesh.NumPolygons(); ++polygon) {
    PickCorners(mesh, polygon, reversed, picked);
    if (picked.size() < 3) continue;
    for (const int corner : picked)
      layout.newPoints[static_cast<size_t>(mesh.corners[static_cast<size_t>(corner)])] = 0;
    layout.oldCorners.insert(layout.oldCorners.end(), picked.begin(), picked.end());
    layout.oldPolygons.push_back(polygon);
    layout.starts.push_back(static_cast<int>(layout.oldCorners.size()));
  }
  for (size_t i = 0; i < layout.newPoints.size(); ++i) {
    if (layout.newPoints[i] < 0) continue;
    layout.newPoints[i] = static_cast<int>(layout.oldPoints.size());
    layout.oldPoints.push_back(static_cast<int>(i));
  }
  return layout;
}

void FillMesh(const Mesh& mesh, const MeshLayout& layout, FbxMesh& out) {
  out.controlPoints.reserve(layout.oldPoints.size());
  for (const int point : layout.oldPoints)
    out.controlPoints.push_back(ToVector(mesh.points[static_cast<size_t>(point)]) * layout.offset);
  out.polygonStarts = layout.starts;
  out.polygonVertices.reserve(layout.oldCorners.size());
  for (const int corner : layout.oldCorners)
    out.polygonVertices.push_back(layout.newPoints[static_cast<size_t>(mesh.corners[static_cast<size_t>(corner)])]);

  std::vector<Point3> normals;
  CornerNormals(mesh, mesh.points, normals);
  const NormalTurner turn(layout.offset);
  out.normals.mapping = Mapping::ByPolygonVertex;
  out.normals.values.reserve(layout.oldCorners.size());
  for (const int corner : layout.oldCorners) out.normals.values.push_back(turn(normals[static_cast<size_t>(corner)]));
  FbxGeometryConverter::ComputeEdgeSmoothingFromNormals(out);

  for (const MeshMap& map : mesh.maps)
    if (map.channel != 0) FillUVs(map, layout, out);
}

std::vector<Vector3> PointNormals(const Mesh& mesh, std::span<const Point3> points, const MeshLayout& layout) {
  std::vector<Point3> corners;
  CornerNormals(mesh, points, corners);
  const NormalTurner turn(layout.offset);
  std::vector<Vector3> normals(layout.oldPoints.size());
  for (const int corner : layout.oldCorners) {
    const int point = layout.newPoints[static_cast<size_t>(mesh.corners[static_cast<size_t>(corner)])];
    Vector3& sum = normals[static_cast<size_t>(point)];
    sum = sum + turn(corners[static_cast<size_t>(corner)]);
  }
  for (Vector3& normal : normals) normal = NormalTurner::Unit(normal);
  return normals;
}

}  // namespace tavrilon::fbx_export
