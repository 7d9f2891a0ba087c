// SPDX-License-Identifier: MIT
#include <gtest/gtest.h>

#include <random>
#include <set>

#include "plugin/fbx/format/mesh.h"
#include "plugin/fbx/format/scene.h"

namespace tavrilon::fbx {
namespace {

/// A cube of six quads with the normal of each corner by `normal(point, face's normal)`.
template <class Normal>
void FillCube(FbxMesh& mesh, const Normal& normal) {
  for (int i = 0; i < 8; ++i) {
    mesh.controlPoints.push_back({i & 1 ? 1.0 : -1.0, i & 2 ? 1.0 : -1.0, i & 4 ? 1.0 : -1.0});
  }
  const int faces[6][4] = {{0, 2, 3, 1}, {4, 5, 7, 6}, {0, 1, 5, 4}, {2, 6, 7, 3}, {0, 4, 6, 2}, {1, 3, 7, 5}};
  mesh.normals.mapping = Mapping::ByPolygonVertex;
  for (const auto& face : faces) {
    const Vector3 middle = (mesh.controlPoints[face[0]] + mesh.controlPoints[face[2]]) * 0.5;
    for (const int point : face) {
      mesh.polygonVertices.push_back(point);
      mesh.normals.values.push_back(normal(mesh.controlPoints[point], middle));
    }
    mesh.polygonStarts.push_back(static_cast<int>(mesh.polygonVertices.size()));
  }
}

/// The corners' ends of edge `i`, lower point first.
std::pair<int, int> EndsOf(const FbxMesh& mesh, size_t i) {
  const int corner = mesh.edges[i];
  const auto polygon = std::upper_bound(mesh.polygonStarts.begin(), mesh.polygonStarts.end(), corner);
  const int next = corner + 1 < *polygon ? corner + 1 : *(polygon - 1);
  return std::minmax({mesh.polygonVertices[corner], mesh.polygonVertices[next]});
}

TEST(EdgeSmoothing, CubesByTheirNormals) {
  using Normal = Vector3 (*)(const Vector3& point, const Vector3& face);
  struct Row {
    const char* name;
    Normal normal;
    int soft;
  };
  const Row rows[] = {
      {"faceted", [](const Vector3&, const Vector3& face) { return face; }, 0},
      {"round", [](const Vector3& point, const Vector3&) { return point; }, 12},
      {"a round tube along z with flat lids",
       [](const Vector3& p, const Vector3& face) {
         return face.z != 0 ? face : Vector3{p.x, p.y, 0};
       },
       4},
      {"normals of other lengths", [](const Vector3& p, const Vector3& face) { return p * (2 + face.x); }, 12},
      {"no direction", [](const Vector3&, const Vector3&) { return Vector3{}; }, 0},
  };
  for (const Row& row : rows) {
    SCOPED_TRACE(row.name);
    const std::unique_ptr<FbxScene> scene = FbxScene::Create("cube");
    FbxMesh& mesh = *FbxMesh::Create(*scene, "cube");
    FillCube(mesh, row.normal);
    ASSERT_TRUE(FbxGeometryConverter::ComputeEdgeSmoothingFromNormals(mesh));
    EXPECT_EQ(mesh.smoothing.mapping, Mapping::ByEdge);
    ASSERT_EQ(mesh.edges.size(), 12u);
    ASSERT_EQ(mesh.smoothing.values.size(), 12u);
    std::set<std::pair<int, int>> edges;
    for (size_t i = 0; i < 12; ++i) edges.insert(EndsOf(mesh, i));
    EXPECT_EQ(edges.size(), 12u) << "each edge once";
    EXPECT_EQ(std::count(mesh.smoothing.values.begin(), mesh.smoothing.values.end(), 1), row.soft);
  }
}

TEST(EdgeSmoothing, BordersAreHard) {
  const std::unique_ptr<FbxScene> scene = FbxScene::Create("strip");
  FbxMesh& mesh = *FbxMesh::Create(*scene, "strip");
  mesh.controlPoints = {{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}};
  mesh.polygonVertices = {0, 1, 2, 2, 3, 0};
  mesh.polygonStarts = {0, 3, 6};
  mesh.normals = {"", Mapping::ByPolygonVertex, {{0, 0, 1}}, {0, 0, 0, 0, 0, 0}};
  ASSERT_TRUE(FbxGeometryConverter::ComputeEdgeSmoothingFromNormals(mesh));
  ASSERT_EQ(mesh.edges.size(), 5u);
  for (size_t i = 0; i < 5; ++i) EXPECT_EQ(mesh.smoothing.values[i], EndsOf(mesh, i) == std::pair(0, 2)) << i;

  // One of the two triangles turned over: the diagonal runs the same way in both.
  mesh.polygonVertices = {2, 0, 1, 2, 0, 3};
  ASSERT_TRUE(FbxGeometryConverter::ComputeEdgeSmoothingFromNormals(mesh));
  EXPECT_EQ(std::count(mesh.smoothing.values.begin(), mesh.smoothing.values.end(), 1), 1);
}

// Where three polygons meet along an edge, one that differs makes it hard, whichever it is.
TEST(EdgeSmoothing, ThreePolygonsAlongAnEdge) {
  for (int odd = 0; odd <= 3; ++odd) {  // 3: none
    SCOPED_TRACE(odd);
    const std::unique_ptr<FbxScene> scene = FbxScene::Create("fan");
    FbxMesh& mesh = *FbxMesh::Create(*scene, "fan");
    mesh.controlPoints = {{0, 0, 0}, {0, 1, 0}, {1, 0, 0}, {-1, 0, 0}, {0, 0, 1}};
    mesh.polygonVertices = {0, 1, 2, 1, 0, 3, 0, 1, 4};
    mesh.polygonStarts = {0, 3, 6, 9};
    mesh.normals.mapping = Mapping::ByPolygonVertex;
    for (int corner = 0; corner < 9; ++corner) {
      mesh.normals.values.push_back(corner / 3 == odd ? Vector3{1, 0, 0} : Vector3{0, 0, 1});
    }
    ASSERT_TRUE(FbxGeometryConverter::ComputeEdgeSmoothingFromNormals(mesh));
    ASSERT_EQ(EndsOf(mesh, 0), std::pair(0, 1));
    EXPECT_EQ(mesh.smoothing.values[0], odd == 3);
  }
}

TEST(EdgeSmoothing, NeedsNormalsByCorner) {
  const std::unique_ptr<FbxScene> scene = FbxScene::Create("cube");
  FbxMesh& mesh = *FbxMesh::Create(*scene, "cube");
  FillCube(mesh, [](const Vector3& point, const Vector3&) { return point; });
  mesh.normals.mapping = Mapping::ByControlPoint;
  EXPECT_FALSE(FbxGeometryConverter::ComputeEdgeSmoothingFromNormals(mesh));
  mesh.normals = {};
  EXPECT_FALSE(FbxGeometryConverter::ComputeEdgeSmoothingFromNormals(mesh));
  EXPECT_TRUE(mesh.edges.empty());
}

}  // namespace
}  // namespace tavrilon::fbx
