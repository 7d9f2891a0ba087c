// SPDX-License-Identifier: MIT
// The modifiers on a mesh, in the one order that a file can say: subdivision over Skin over Morpher.
#pragma once

#include "host/scene/mesh_object.h"

namespace corvanta {
class MorpherModifier;
class SkinModifier;
}  // namespace corvanta

namespace tavrilon::fbx_export {

struct MeshStack {
  corvanta::MeshObject* object = nullptr;
  corvanta::SkinModifier* skin = nullptr;
  corvanta::MorpherModifier* morpher = nullptr;
  /// Of the subdivision on top; 0 without one.
  int subdivisionLevels = 0;
};

/// True when `node` has a mesh under its modifiers.
bool HasMesh(const corvanta::INode& node);
/// Of a node with a mesh.
bool HasPolygons(const corvanta::INode& node);

/// Reads the modifiers of a node with a mesh. Ones that are turned off are left out and told in `log`. Gives an empty
/// text, or why the stack cannot be exported.
corvanta::WStr ReadMeshStack(corvanta::INode& node, MeshStack& stack, std::vector<corvanta::WStr>& log);

}  // namespace tavrilon::fbx_export
