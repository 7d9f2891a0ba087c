// SPDX-License-Identifier: MIT
#pragma once

#include "host/maths/interval.h"

namespace corvanta {

class GraphicsWindow;
class INode;
struct KeptMesh;

/// Shaded triangles, smooth by the mesh's normals, each in the colour of its material; without a material on the node,
/// in the present colour. Allocates nothing for a mesh that was drawn before.
void DrawMesh(TimeValue t, INode* node, KeptMesh& mesh, GraphicsWindow& view);

}  // namespace corvanta
