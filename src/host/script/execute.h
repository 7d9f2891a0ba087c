// SPDX-License-Identifier: MIT
// Running scripts on the scene on show.
#pragma once

#include <functional>

#include "host/core/fp_value.h"

namespace corvanta {

/// What running a script came to.
struct ScriptOutcome {
  bool ok = true;
  bool interrupted = false;
  /// Empty, or "file:line:column: message" with the line and a caret.
  WStr report;
  /// The error alone, as `getCurrentException` would give it.
  WStr message;
  /// The value as `print` shows it and as JSON; empty for `undefined` and `ok`.
  WStr text, json;
};

/// Runs `text` with a top level of its own. `sourceName` stands in messages; `arguments` become the array `scriptArgs`.
/// Never throws.
ScriptOutcome RunScript(const WStr& text, const WStr& sourceName, const std::vector<WStr>& arguments = {});
/// The same for a UTF-8 file; a file that cannot be read is a failed outcome.
ScriptOutcome RunScriptFile(const WStr& path, const std::vector<WStr>& arguments);

/// Runs a text that the program has made. False on error; the result is then void. A value that has no other form
/// (a function, a class) gives a void result, a string a string. `quiet`: message boxes go to the listener.
/// `logErrors`: the report of an error goes there.
bool ExecuteCorvantaScriptScript(const WStr& text, const WStr& source, bool quiet = true, FPValue* result = nullptr,
                                 bool logErrors = false);

/// Output of scripts, and errors that are logged. Without a listener they are dropped.
using ScriptListener = std::function<void(std::wstring_view text)>;
void SetScriptListener(ScriptListener listener);
void WriteToListener(std::wstring_view text);
/// Shows `messageBox`; without one, and in quiet runs, it is a line in the listener.
using ScriptMessageBox = std::function<void(const WStr& text, const WStr& title)>;
void SetScriptMessageBox(ScriptMessageBox box);
/// Asked now and then while a script runs; true ends it with the message "interrupted".
void SetScriptInterruptCheck(bool (*isInterrupted)());

/// Settings that `FBXImporterSetParam` stored, for the file import. Empty when `name` was never set.
WStr GetFBXImporterParam(const WStr& name);
void SetFBXImporterParam(const WStr& name, const WStr& value);

}  // namespace corvanta
