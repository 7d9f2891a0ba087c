// SPDX-License-Identifier: MIT
// Edges of a mesh, and which of them are soft, from its normals by corner. Directed edges meet their opposites in a
// hash table, so the work grows with the number of corners.
#include <unordered_map>

#include "plugin/fbx/format/mesh.h"

namespace tavrilon::fbx {

namespace {

constexpr double kSameNormal = 0.9999;  // the cosine of 0.8 degrees

/// The corner that follows each one in its polygon.
std::vector<int> NextCorners(const FbxMesh& mesh) {
  std::vector<int> next(mesh.polygonVertices.size());
  for (size_t polygon = 0; polygon + 1 < mesh.polygonStarts.size(); ++polygon) {
    const int first = mesh.polygonStarts[polygon], end = mesh.polygonStarts[polygon + 1];
    for (int corner = first; corner < end; ++corner)
      next[static_cast<size_t>(corner)] = corner + 1 < end ? corner + 1 : first;
  }
  return next;
}

/// An edge between two points, whichever way it runs.
uint64_t EdgeKey(int a, int b) {
  const auto low = static_cast<uint32_t>(std::min(a, b)), high = static_cast<uint32_t>(std::max(a, b));
  return uint64_t{high} << 32 | low;
}

struct EdgeFinding {
  int edge;      // index of the edge
  int corner;    // where it was met first
  int meetings;  // how many polygons have it
  bool soft;
};

class NormalsByCorner {
 public:
  explicit NormalsByCorner(const LayerElement<Vector3>& element) : element_(element) {}
  bool Same(int a, int b) const {
    const Vector3* p = element_.At(static_cast<size_t>(a));
    const Vector3* q = element_.At(static_cast<size_t>(b));
    if (!p || !q) return false;
    const double lengths = Length(*p) * Length(*q);
    return lengths > 0 && Dot(*p, *q) > kSameNormal * lengths;
  }

 private:
  const LayerElement<Vector3>& element_;
};

}  // namespace

bool FbxGeometryConverter::ComputeEdgeSmoothingFromNormals(FbxMesh& mesh) {
  if (mesh.normals.IsEmpty() || mesh.normals.mapping != Mapping::ByPolygonVertex) return false;
  const NormalsByCorner normals(mesh.normals);
  const std::vector<int> next = NextCorners(mesh);
  std::vector<int> edges;
  std::unordered_map<uint64_t, EdgeFinding> found;
  found.reserve(mesh.polygonVertices.size());
  const auto point = [&mesh](int corner) { return mesh.polygonVertices[static_cast<size_t>(corner)]; };
  for (int corner = 0; corner < static_cast<int>(mesh.polygonVertices.size()); ++corner) {
    const int end = next[static_cast<size_t>(corner)];
    const auto [at, isNew] = found.try_emplace(EdgeKey(point(corner), point(end)),
                                               EdgeFinding{static_cast<int>(edges.size()), corner, 0, false});
    EdgeFinding& edge = at->second;
    ++edge.meetings;
    if (isNew) {
      edges.push_back(corner);
      continue;
    }
    // The second polygon runs along it the other way, unless one of the two is turned inside out.
    const int first = edge.corner, firstEnd = next[static_cast<size_t>(first)];
    const bool opposite = point(first) == point(end);
    const bool same = normals.Same(first, opposite ? end : corner) && normals.Same(firstEnd, opposite ? corner : end);
    edge.soft = same && (edge.meetings == 2 || edge.soft);
  }
  mesh.smoothing = {};
  mesh.smoothing.mapping = Mapping::ByEdge;
  mesh.smoothing.values.assign(edges.size(), 0);
  for (const auto& [key, edge] : found) mesh.smoothing.values[static_cast<size_t>(edge.edge)] = edge.soft;
  mesh.edges = std::move(edges);
  return true;
}

}  // namespace tavrilon::fbx
