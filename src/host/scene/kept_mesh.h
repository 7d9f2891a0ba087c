// SPDX-License-Identifier: MIT
// An evaluated mesh with what it was evaluated for, and with what drawing and picking make of it when they need it.
#pragma once

#include "host/scene/mesh_object.h"

namespace corvanta {

/// A mesh as triangles for drawing: one point and one normal a corner, so that edges between smoothing groups are
/// sharp. The corners are grouped by material ID.
struct MeshPicture {
  std::vector<Point3> points, normals;
  /// Their points count from the first one of their run.
  std::vector<std::array<int, 3>> triangles;
  struct Run {
    uint16_t material = 0;
    size_t firstPoint = 0, numPoints = 0, firstTriangle = 0, numTriangles = 0;
  };
  std::vector<Run> runs;
};

struct KeptMesh {
  MeshState state;

  /// Around the points.
  Box3 Box();
  /// Triangles of the present topology.
  const MeshTriangles& Triangles();
  const MeshPicture& Picture();

 private:
  friend class Object;
  void Moved();
  void GroupByMaterial();

  bool hasMesh_ = false;
  // What the state was evaluated for.
  bool filled_ = false;
  bool evaluating_ = false;
  INode* node_ = nullptr;
  Matrix3 objectTM_;

  bool boxMade_ = false, pictureMade_ = false;
  Box3 box_;
  /// The topology that `triangles_` and the picture's triangles were made for.
  std::shared_ptr<const Mesh> trianglesOf_, pictureOf_;
  MeshTriangles triangles_;
  MeshPicture picture_;
  /// The mesh's corner that each point of the picture stands for.
  std::vector<int> cornerOf_;
  std::vector<Point3> normals_;
};

}  // namespace corvanta
