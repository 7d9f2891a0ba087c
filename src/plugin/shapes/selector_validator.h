// SPDX-License-Identifier: MIT
#pragma once

#include "host/core/param_desc.h"

namespace tavrilon {

/// Refuses nothing picked, and nodes that carry the control itself: a control cannot be its own selector. The link is
/// weak, so a mesh that the control moves, or that is skinned to bones which follow it, closes no loop.
corvanta::PBValidator* SelectorNodeValidator();

}  // namespace tavrilon
