// SPDX-License-Identifier: MIT
// The functions and classes of the language itself, in tables by subject.
#pragma once

#include <span>

#include "host/script/call_args.h"

namespace corvanta::script {

struct BuiltinRow {
  const wchar_t* name;
  NativeFunction::Body body;
  int minArgs, maxArgs;  // maxArgs -1: any number
};

std::span<const BuiltinRow> MathsBuiltins();
std::span<const BuiltinRow> TransformBuiltins();
std::span<const BuiltinRow> StringBuiltins();
std::span<const BuiltinRow> ArrayBuiltins();
std::span<const BuiltinRow> CoreBuiltins();
/// Classes; a null body means that a call makes none.
std::span<const BuiltinRow> ClassBuiltins();

/// The function, constant or class of a lower-case name.
bool FindBuiltin(const WStr& name, Value& out);
/// `*` stands for any text, `?` for one character; case counts.
bool MatchesPattern(const WStr& text, const WStr& pattern);
/// The class of a value as a value, for `classOf`.
Value ClassValue(const WStr& name);
/// All names in lower case.
std::vector<WStr> BuiltinNames();

}  // namespace corvanta::script
