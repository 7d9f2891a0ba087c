// SPDX-License-Identifier: MIT
// Meshes with all that hangs on them.
#pragma once

#include "plugin/fbx/exporter/job.h"

namespace tavrilon::fbx_export {

/// Fills the meshes of the job's nodes: the mesh below all modifiers with the object offset in its points, materials,
/// blend shapes, skins. Weights of blend shapes join the job's weights.
bool ExportMeshes(ExportJob& job);

/// The pose "BindPose" of skinned meshes, their bones and all parents of these; none without a skin.
void ExportBindPose(ExportJob& job);

}  // namespace tavrilon::fbx_export
