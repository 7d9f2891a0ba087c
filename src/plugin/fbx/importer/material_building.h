// SPDX-License-Identifier: MIT
// Materials from their plans. To be called with undo suspended and animate off.
#pragma once

#include "host/scene/material.h"
#include "plugin/fbx/importer/import_plan.h"

namespace tavrilon::fbx_import {

std::vector<corvanta::Ref<corvanta::Mtl>> BuildMaterials(const std::vector<PlannedMaterial>& planned);

/// The one material of `numbers`, or a new list of several, `name`.
corvanta::Ref<corvanta::Mtl> MaterialOf(const std::vector<int>& numbers,
                                        const std::vector<corvanta::Ref<corvanta::Mtl>>& materials,
                                        const corvanta::WStr& name);

}  // namespace tavrilon::fbx_import
