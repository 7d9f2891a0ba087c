// SPDX-License-Identifier: MIT
#include "plugin/shapes/selector.h"

#include <algorithm>
#include <string>

#include "host/scene/kept_mesh.h"
#include "host/scene/scene.h"
#include "plugin/frame/loop_validator.h"
#include "plugin/shapes/selector_validator.h"

namespace tavrilon {

using namespace corvanta;

namespace {

class NotItself final : public PBValidator {
 public:
  bool Validate(ReferenceTarget* owner, ParamID, ReferenceTarget* candidate) override {
    INode* node = candidate ? candidate->AsNode() : nullptr;
    return node && node->GetBaseObject() != owner && MayFollow(owner, node);
  }
};

/// What the node shows of its mesh, with all modifiers.
class ShownMesh final : public SelectorMeshSource {
 public:
  void ReadMesh(TimeValue t, INode* node, SelectorMesh& out, Interval& valid) override {
    KeptMesh* mesh = node->GetObjectRef()->GetKeptMesh(t, node);
    if (!mesh) return;
    out.points = mesh->state.points;
    out.faces = mesh->Triangles().points;
    valid &= mesh->state.valid;
  }
};

}  // namespace

PBValidator* SelectorNodeValidator() {
  static NotItself validator;
  return &validator;
}

SelectorMeshSource* FindMeshSource(INode* node) {
  Object* object = node ? node->GetBaseObject() : nullptr;
  if (!object) return nullptr;
  if (void* own = object->GetInterface(kSelectorMeshRequest)) return static_cast<SelectorMeshSource*>(own);
  static ShownMesh shown;
  return EvaluatedMesh(node, node->GetScene().time.time) ? &shown : nullptr;
}

void PushAlongNormals(SelectorMesh& mesh, float distance) {
  const auto inRange = [count = static_cast<int>(mesh.points.size())](int i) { return i >= 0 && i < count; };
  std::vector<Point3> normals(mesh.points.size());
  for (const Face& f : mesh.faces) {
    if (!std::all_of(f.begin(), f.end(), inRange)) continue;
    const Point3& a = mesh.points[f[0]];
    const Point3 area = Cross(mesh.points[f[1]] - a, mesh.points[f[2]] - a);
    for (const int i : f) normals[i] += area;
  }
  for (size_t i = 0; i < normals.size(); ++i) mesh.points[i] += Normalize(normals[i]) * distance;
}

FaceSet FacesWhere(const SelectorMesh& mesh, const BitArray& selection, bool selected) {
  FaceSet set;
  for (int i = 0; i < static_cast<int>(mesh.faces.size()); ++i) {
    if (selection.Get(i) != selected) continue;
    set.faces.push_back(mesh.faces[i]);
    set.numbers.push_back(i);
  }
  return set;
}

WStr PolygonCountText(int count) { return std::to_wstring(count) + L" Polygons Selected"; }

}  // namespace tavrilon
