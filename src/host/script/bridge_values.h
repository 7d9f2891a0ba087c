// SPDX-License-Identifier: MIT
// Values between scripts and published functions or parameters. Scripts see what users see: angles in degrees,
// percent values times 100, indices from 1, enumerations as #name.
#pragma once

#include <optional>

#include "host/core/published.h"
#include "host/script/call_args.h"

namespace corvanta::script {

/// `value` as a script sees it. `type` Any goes by what the value holds.
Value FromFP(const FPValue& value, FPType type, const FPEnumDesc* enumeration = nullptr);
/// The other way; empty when `value` does not fit `type`. Undefined gives a null object, never a number.
std::optional<FPValue> ToFP(const Value& value, FPType type, const FPEnumDesc* enumeration = nullptr);
/// "a node", "a whole number", "#Bezier, #Corner or #Smooth": for messages.
WStr ExpectedText(FPType type, const FPEnumDesc* enumeration = nullptr);

/// The object as a value; null gives undefined.
Value WrapTarget(ReferenceTarget* target);
/// The object behind a value: a handle, or the target of a sub-animatable; else null.
ReferenceTarget* TargetOf(const Value& value);
/// The controller behind a value: itself, a sub-animatable's, or a node's transform controller; else null.
Control* ControlOf(const Value& value);

/// The time at which scripts read and write: that of the innermost `at time`, else the slider's.
TimeValue ScriptTime();
/// Opens and closes an `at time`.
void PushScriptTime(TimeValue t);
void PopScriptTime();

}  // namespace corvanta::script
