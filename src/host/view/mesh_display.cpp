// SPDX-License-Identifier: MIT
// Drawing of meshes, in the colours of their materials.
#include "host/view/mesh_display.h"
#include "host/scene/kept_mesh.h"
#include "host/scene/material.h"
#include "host/scene/node.h"
#include "host/view/draw.h"

namespace corvanta {

void DrawMesh(TimeValue t, INode* node, KeptMesh& mesh, GraphicsWindow& view) {
  const MeshPicture& picture = mesh.Picture();
  const DrawScope scope(view);
  Mtl* material = node ? node->GetMtl() : nullptr;
  const std::span<const std::array<int, 3>> all(picture.triangles);
  for (size_t i = 0; i < picture.runs.size(); ++i) {
    const size_t first = picture.runs[i].first;
    const size_t end = i + 1 < picture.runs.size() ? picture.runs[i + 1].first : all.size();
    if (material) view.SetColour(material->DisplayColour(t, picture.runs[i].material));
    view.Triangles({picture.points, all.subspan(first, end - first), picture.normals});
  }
}

void MeshObject::Display(TimeValue t, INode* node, GraphicsWindow& view) {
  if (KeptMesh* mesh = GetKeptMesh(t, node)) DrawMesh(t, node, *mesh, view);
}

}  // namespace corvanta
