// SPDX-License-Identifier: MIT
// What the subcommands that run scripts share: the started host, output on the terminal, Ctrl-C, the exit code.
#pragma once

#include <functional>

#include "host/script/execute.h"

namespace app {

/// What is printed of a script's value. JSON of `undefined` and `ok` is null.
enum class ShowValue { No, AsText, AsJson };

/// Starts the host, runs `script` with its output on the standard output, and shows its value. An error goes to the
/// error output, with file, line and column, and gives kFailed.
int RunInScene(const std::function<corvanta::ScriptOutcome()>& script, ShowValue show);

}  // namespace app
