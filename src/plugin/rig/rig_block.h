// SPDX-License-Identifier: MIT
// The rig's parameter block: the rows of rig_params.h with what runs after a write.
#pragma once

#include "host/core/param_block.h"
#include "plugin/rig/rig_params.h"
#include "plugin/rig/template_params.h"

namespace tavrilon {

/// Rollups that show parameters.
enum RigRollup : int { kRigParamsRollup = 0, kRigGeneralRollup = 1, kRigComponentsRollup = 6 };

const corvanta::ParamBlockDesc2& RigBlock();
/// The counts and switches of a block, for a template.
TemplateParams ReadTemplateParams(const corvanta::ParamBlock2& block);

/// What may be handed to a write of the parameter from outside: numbers brought into the row's range. False for an
/// unknown parameter and for a rig type that there is none of.
bool ClampRigParam(rig_param::ID id, int& value);

}  // namespace tavrilon
