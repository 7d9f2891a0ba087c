// SPDX-License-Identifier: MIT
#pragma once

#include "host/core/param_desc.h"

namespace tavrilon {

/// Refuses nothing picked, nodes that carry the control itself, and nodes whose transform reads it. A mesh that the
/// control's node moves, or that is skinned to bones which follow it, closes no loop and is welcome.
corvanta::PBValidator* SelectorNodeValidator();

}  // namespace tavrilon
