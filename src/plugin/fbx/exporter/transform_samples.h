// SPDX-License-Identifier: MIT
// Transforms of the exported nodes: the still pose, and curves through a sample at every time.
#pragma once

#include "plugin/fbx/exporter/job.h"

namespace tavrilon::fbx_export {

/// Sets the still transform of every node and, with animation, gives it curves T, R and S: a channel that does not move
/// gets one key, a moving one a linear key at each sample.
///
/// The still pose is the bind pose of bones and meshes of a skin. Other nodes keep the place under their parent that
/// they have at the first sample; without skins that is the pose of the first sample.
bool ExportTransforms(ExportJob& job);

}  // namespace tavrilon::fbx_export
