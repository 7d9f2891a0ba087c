// SPDX-License-Identifier: MIT
// Morphers: blend shapes with weights in time.
#pragma once

#include "plugin/fbx/exporter/job.h"
#include "plugin/fbx/exporter/mesh_layout.h"

namespace tavrilon::fbx_export {

/// Adds the deformer "Morpher" with a channel for each of the modifier's, one full shape at 100 percent each. Channels
/// without a target are left out and told.
bool ExportMorpher(ExportJob& job, const ExportNode& node, const corvanta::Mesh& mesh, const MeshLayout& layout,
                   fbx::FbxMesh& out);

/// Weights at the present sample: the first is the still one, with animation all are kept.
void SampleWeights(ExportJob& job, corvanta::TimeValue t);
void WriteWeightCurves(ExportJob& job, const std::vector<int64_t>& times);

}  // namespace tavrilon::fbx_export
