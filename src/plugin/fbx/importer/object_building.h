// SPDX-License-Identifier: MIT
// Objects and modifiers from their plans. To be called with undo suspended and animate off.
#pragma once

#include "host/scene/node.h"
#include "plugin/fbx/importer/import_plan.h"

namespace tavrilon::fbx_import {

/// A bone or a point helper.
corvanta::Ref<corvanta::Object> MakeObject(const PlannedNode& planned);
/// Null when the host refuses a part of it, all three.
corvanta::Ref<corvanta::Modifier> MakeMorpher(const std::vector<PlannedMorphChannel>& channels);
corvanta::Ref<corvanta::Modifier> MakeSkin(const PlannedSkin& planned, const std::vector<corvanta::INode*>& nodes);
corvanta::Ref<corvanta::Modifier> MakeSubdivision(int levels);

}  // namespace tavrilon::fbx_import
