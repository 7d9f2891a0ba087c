// SPDX-License-Identifier: MIT
// What every subcommand shares: the exit codes and the way to tell a problem. Each subcommand adds itself to the
// program by a function of its own: its options, and a callback that sets the exit code.
#pragma once

#include <string_view>

namespace CLI {
class App;
}

namespace app {

/// What the process returns to the shell.
enum ExitCode : int { kOk = 0, kFailed = 1, kWrongUsage = 2 };

void AddRunCommand(CLI::App& program, int& exitCode);
void AddEvalCommand(CLI::App& program, int& exitCode);
void AddBuildCommand(CLI::App& program, int& exitCode);
void AddInfoCommand(CLI::App& program, int& exitCode);
void AddShotCommand(CLI::App& program, int& exitCode);

/// Writes "tavrilon: PROBLEM" as one line to the error output and returns kFailed.
int Fail(std::string_view problem);

}  // namespace app
