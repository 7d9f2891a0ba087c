// SPDX-License-Identifier: MIT
// From a plan to nodes of the scene on show.
#pragma once

#include "plugin/fbx/importer/import_plan.h"

namespace tavrilon::fbx_import {

/// Makes everything in the plan as one step of undo, "FBX Import", selects it, and sets frame rate and range: a scene
/// without nodes takes both, another one widens its range. Empty, or why it could not be done; the scene is then as it
/// was before.
corvanta::WStr BuildScene(const ImportPlan& plan);

}  // namespace tavrilon::fbx_import
