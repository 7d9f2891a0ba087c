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
  for (const MeshPicture::Run& run : picture.runs) {
    if (material) view.SetColour(material->DisplayColour(t, run.material));
    view.Triangles({std::span(picture.points).subspan(run.firstPoint, run.numPoints),
                    std::span(picture.triangles).subspan(run.firstTriangle, run.numTriangles),
                    std::span(picture.normals).subspan(run.firstPoint, run.numPoints)});
  }
}

void MeshObject::Display(TimeValue t, INode* node, GraphicsWindow& view) {
  if (KeptMesh* mesh = GetKeptMesh(t, node)) DrawMesh(t, node, *mesh, view);
}

}  // namespace corvanta
