// SPDX-License-Identifier: MIT
// Values as text: for `print`, as script source, and as JSON.
#pragma once

#include "host/script/value.h"

namespace corvanta::script {

/// What `print` shows: strings as they are, everything else as in a script.
WStr PlainText(const Value& value);
/// As in a script, strings in quotes; cut after about `limit` characters with "...".
WStr QuotedText(const Value& value, size_t limit = WStr::npos);
/// One line of JSON. Numbers that JSON has no form for (infinite, not a number), `undefined` and `ok` are null,
/// times are frames, colours 0..255, matrices four rows of three, intervals two frames, nodes their names.
/// Throws on arrays that hold themselves.
WStr ToJson(const Value& value);

/// The shortest text that reads back as `f`; values of single precision take the shortest single text. Always
/// with a point, an exponent or a name ("inf", "nan").
WStr FloatText(double f);
/// "12f", "12.5f".
WStr TimeText(TimeValue t);
/// Appends `text` as a JSON string with its quotes.
void AppendJsonString(WStr& out, std::wstring_view text);
/// Appends a JSON number, or null when it is not finite.
void AppendJsonNumber(WStr& out, double f);

}  // namespace corvanta::script
