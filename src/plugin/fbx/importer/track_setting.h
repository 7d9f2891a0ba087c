// SPDX-License-Identifier: MIT
// Controllers from planned tracks. They are filled before anything depends on them, so that their keys are set without
// messages to the scene.
#pragma once

#include "host/core/control.h"
#include "plugin/fbx/importer/import_plan.h"

namespace tavrilon::fbx_import {

/// Null when a class is not there. To be called with undo suspended and animate off.
corvanta::Ref<corvanta::Control> MakeTransform(const PlannedTransform& transform);
corvanta::Ref<corvanta::Control> MakeFloatTrack(const FloatTrack& track);

}  // namespace tavrilon::fbx_import
