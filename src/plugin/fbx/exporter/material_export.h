// SPDX-License-Identifier: MIT
// Materials by the names of their parameters, and the pictures of their maps.
#pragma once

#include "plugin/fbx/exporter/job.h"
#include "plugin/fbx/exporter/mesh_layout.h"

namespace tavrilon::fbx_export {

/// Gives the node its materials and each polygon the place of its own. A list of materials keeps its order; a material
/// that is in it twice goes out once. Without a material nothing is written.
void ExportMaterials(ExportJob& job, const ExportNode& node, const corvanta::Mesh& mesh, const MeshLayout& layout,
                     fbx::FbxMesh& out);

}  // namespace tavrilon::fbx_export
