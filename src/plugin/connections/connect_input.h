// SPDX-License-Identifier: MIT
// The published function "ConnectTo": an input of a controller follows a track.
#pragma once

#include "host/core/param_block.h"
#include "host/core/published.h"

namespace tavrilon {

/// ConnectTo input target [owner]: `input` is the name of an animatable float parameter of the controller, `target` and
/// `owner` as for SetTarget of a connection. Gives the connection.
corvanta::FPFunctionDesc ConnectToFunction(int id);

/// What the function does with its arguments. Undoable. A refusal says in `result` why.
corvanta::FPStatus ConnectInput(corvanta::ParamBlock2& block, std::span<const corvanta::FPValue> args,
                                corvanta::FPValue& result);

}  // namespace tavrilon
