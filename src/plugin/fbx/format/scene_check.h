// SPDX-License-Identifier: MIT
// Can a scene be written? Files have no way to say some things that a scene made by calls may hold by mistake, and
// others would give files that no program reads.
#pragma once

#include "plugin/fbx/format/scene.h"

namespace tavrilon::fbx {

/// False, with the first fault told in `status` by the names of objects: names with zero bytes, links to objects of
/// another scene, materials that are not there, meshes whose polygons, layers, skins or shapes do not fit their points,
/// curves whose times do not rise, numbers that are not finite.
bool CheckScene(const FbxScene& scene, FbxStatus& status);

}  // namespace tavrilon::fbx
