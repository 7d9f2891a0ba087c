// SPDX-License-Identifier: MIT
// Which points and corners of a mesh go into a file, and into which places. Points without a polygon and corners that
// say their polygon's last point again stay behind: readers stumble over both.
#pragma once

#include "host/mesh/mesh.h"
#include "plugin/fbx/format/mesh.h"

namespace tavrilon::fbx_export {

struct MeshLayout {
  /// The mesh's points in the file, -1 for those left behind; and the other way.
  std::vector<int> newPoints, oldPoints;
  /// Corners and polygons of the mesh, by their places in the file.
  std::vector<int> oldCorners, oldPolygons;
  std::vector<int> starts{0};
  /// From the object's space to the node's.
  fbx::Affine offset;

  int NumLoosePoints() const { return static_cast<int>(newPoints.size() - oldPoints.size()); }
};

/// A mirroring offset turns the corners of each polygon round, so that the outside stays outside.
MeshLayout LayOut(const corvanta::Mesh& mesh, const fbx::Affine& offset);

/// Points, polygons, normals by corner, edge smoothing and UV sets "UVChannel_<n>". Channel 0, which is vertex colours,
/// stays behind.
void FillMesh(const corvanta::Mesh& mesh, const MeshLayout& layout, fbx::FbxMesh& out);

/// A normal for each point of the file, in the node's space, with the mesh's points at `points`: the mean of its
/// corners' normals.
std::vector<fbx::Vector3> PointNormals(const corvanta::Mesh& mesh, std::span<const corvanta::Point3> points,
                                       const MeshLayout& layout);

}  // namespace tavrilon::fbx_export
