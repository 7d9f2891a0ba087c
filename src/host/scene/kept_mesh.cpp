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
  const uint64_t linkStamp = byNode ? LinkStamp() : 0;
  const bool fits = keeping != MeshKeeping::No && kept.filled_ && kept.linkStamp_ == linkStamp &&
                    (!byNode || (kept.node_ == node && kept.objectTM_ == objectTM)) &&
                    (!kept.hasMesh_ || kept.state.valid.Contains(t));
  if (!fits && !kept.evaluating_) {
    kept.evaluating_ = kept.filled_ = true;
    kept.hasMesh_ = EvalMesh(t, node, kept.state);
    kept.evaluating_ = false;
    kept.node_ = node;
    kept.objectTM_ = objectTM;
    kept.linkStamp_ = linkStamp;
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

namespace {

void SortByMaterial(const Mesh& mesh, const MeshTriangles& triangles, MeshPicture& picture) {
  picture.runs.clear();
  picture.triangles = triangles.corners;
  if (mesh.materials.empty()) {
    picture.runs.push_back({0, 0});
    return;
  }
  const auto materialOf = [&](size_t i) { return mesh.materials[static_cast<size_t>(triangles.polygons[i])]; };
  std::vector<size_t> order(triangles.polygons.size());
  std::iota(order.begin(), order.end(), size_t{0});
  std::stable_sort(order.begin(), order.end(), [&](size_t a, size_t b) { return materialOf(a) < materialOf(b); });
  for (size_t i = 0; i < order.size(); ++i) {
    picture.triangles[i] = triangles.corners[order[i]];
    const uint16_t material = materialOf(order[i]);
    if (picture.runs.empty() || picture.runs.back().material != material) picture.runs.push_back({material, i});
  }
}

}  // namespace

const MeshPicture& KeptMesh::Picture() {
  if (pictureMade_) return picture_;
  const Mesh& mesh = *state.mesh;
  if (pictureOf_ != state.mesh) {
    SortByMaterial(mesh, Triangles(), picture_);
    pictureOf_ = state.mesh;
  }
  picture_.points.resize(mesh.corners.size());
  for (size_t i = 0; i < mesh.corners.size(); ++i)
    picture_.points[i] = state.points[static_cast<size_t>(mesh.corners[i])];
  CornerNormals(mesh, state.points, picture_.normals);
  pictureMade_ = true;
  return picture_;
}

}  // namespace corvanta
