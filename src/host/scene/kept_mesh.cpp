// SPDX-License-Identifier: MIT
#include "host/scene/kept_mesh.h"

#include <algorithm>
#include <numeric>

#include "host/scene/node.h"

namespace corvanta {

Object::Object() = default;
Object::~Object() = default;

void Object::DropKeptMesh() {
  if (keptMesh_) keptMesh_->filled_ = false;
}

// Messages can come while the mesh is evaluated: what was read before them may be stale, and is not kept. A modifier
// that reads a node whose controller asks for this very mesh gets the last one.
KeptMesh* Object::GetKeptMesh(TimeValue t, INode* node) {
  if (!keptMesh_) keptMesh_ = std::make_unique<KeptMesh>();
  KeptMesh& kept = *keptMesh_;
  const MeshKeeping keeping = KeepsMesh();
  const bool byNode = keeping == MeshKeeping::ByNode;
  const Matrix3 objectTM = byNode && node ? node->GetObjectTM(t) : Matrix3();
  const bool fits = keeping != MeshKeeping::No && kept.filled_ &&
                    (!byNode || (kept.node_ == node && kept.objectTM_ == objectTM)) &&
                    (!kept.hasMesh_ || kept.state.valid.Contains(t));
  if (!fits && !kept.evaluating_) {
    kept.evaluating_ = kept.filled_ = true;
    kept.hasMesh_ = EvalMesh(t, node, kept.state);
    kept.evaluating_ = false;
    kept.node_ = node;
    kept.objectTM_ = objectTM;
    kept.Moved();
  }
  return kept.hasMesh_ ? &kept : nullptr;
}

const MeshState* EvaluatedMesh(INode* node, TimeValue t) {
  Object* object = node ? node->GetObjectRef() : nullptr;
  KeptMesh* kept = object ? object->GetKeptMesh(t, node) : nullptr;
  return kept ? &kept->state : nullptr;
}

void KeptMesh::Moved() { boxMade_ = pictureMade_ = false; }

Box3 KeptMesh::Box() {
  if (boxMade_) return box_;
  box_ = {};
  for (const Point3& p : state.points) box_ += p;
  boxMade_ = true;
  return box_;
}

const MeshTriangles& KeptMesh::Triangles() {
  if (trianglesOf_ == state.mesh) return triangles_;
  triangles_ = Triangulate(*state.mesh);
  trianglesOf_ = state.mesh;
  return triangles_;
}

// Polygons by material, in their order for each.
void KeptMesh::GroupByMaterial() {
  const Mesh& mesh = *state.mesh;
  const MeshTriangles& triangles = Triangles();
  const auto materialOf = [&](int polygon) {
    return mesh.materials.empty() ? uint16_t{0} : mesh.materials[static_cast<size_t>(polygon)];
  };
  std::vector<int> order(static_cast<size_t>(mesh.NumPolygons()));
  std::iota(order.begin(), order.end(), 0);
  if (!mesh.materials.empty())
    std::stable_sort(order.begin(), order.end(), [&](int a, int b) { return materialOf(a) < materialOf(b); });
  // A polygon has two triangles less than corners, so its first one is two behind its first corner for each before it.
  picture_.runs.clear();
  picture_.triangles.clear();
  cornerOf_.clear();
  for (const int polygon : order) {
    const auto at = static_cast<size_t>(polygon);
    if (picture_.runs.empty() || picture_.runs.back().material != materialOf(polygon))
      picture_.runs.push_back({materialOf(polygon), cornerOf_.size(), 0, picture_.triangles.size(), 0});
    MeshPicture::Run& run = picture_.runs.back();
    const int first = mesh.starts[at], count = mesh.starts[at + 1] - first;
    const int shift = static_cast<int>(run.numPoints) - first;
    for (int i = 0; i < count; ++i) cornerOf_.push_back(first + i);
    for (int i = first - 2 * polygon; i < first - 2 * polygon + count - 2; ++i) {
      const auto& t = triangles.corners[static_cast<size_t>(i)];
      picture_.triangles.push_back({t[0] + shift, t[1] + shift, t[2] + shift});
    }
    run.numPoints += static_cast<size_t>(count);
    run.numTriangles += static_cast<size_t>(count - 2);
  }
}

const MeshPicture& KeptMesh::Picture() {
  if (pictureMade_) return picture_;
  const Mesh& mesh = *state.mesh;
  if (pictureOf_ != state.mesh) {
    GroupByMaterial();
    pictureOf_ = state.mesh;
  }
  CornerNormals(mesh, state.points, normals_);
  picture_.points.resize(cornerOf_.size());
  picture_.normals.resize(cornerOf_.size());
  for (size_t i = 0; i < cornerOf_.size(); ++i) {
    const auto corner = static_cast<size_t>(cornerOf_[i]);
    picture_.points[i] = state.points[static_cast<size_t>(mesh.corners[corner])];
    picture_.normals[i] = normals_[corner];
  }
  pictureMade_ = true;
  return picture_;
}

}  // namespace corvanta
