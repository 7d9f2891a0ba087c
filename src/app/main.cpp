// SPDX-License-Identifier: MIT
// The program: reads the command line and hands over to one subcommand.
#include <CLI/CLI.hpp>
#include <cstdio>
#include <iostream>

#include "app/command_line.h"
#include "app/headless.h"

namespace {

constexpr char kDescription[] = "Tavrilon: character rigging and animation.";
constexpr char kFooter[] =
    "Exit codes: 0 done, 1 it failed (one line on the error output says what and where), 2 wrong usage.\n"
    "`tavrilon SUBCOMMAND --help` tells the options of each.";

// CLI11 has an exit code a kind of mistake; ours are three.
int Report(const CLI::App& program, const CLI::ParseError& outcome) {
  const bool asked = outcome.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success);
  if (asked) return program.exit(outcome);
  program.exit(outcome, std::cerr, std::cerr);
  return app::kWrongUsage;
}

}  // namespace

int main(int argc, char** argv) {
  CLI::App program(kDescription, "tavrilon");
  program.footer(kFooter);
  program.set_version_flag("--version", "tavrilon " TAVRILON_VERSION);
  program.require_subcommand(0, 1);

  int exitCode = app::kOk;
  app::AddRunCommand(program, exitCode);
  app::AddEvalCommand(program, exitCode);
  app::AddBuildCommand(program, exitCode);
  app::AddInfoCommand(program, exitCode);
  app::AddShotCommand(program, exitCode);

  app::ChooseHeadlessPlatform();
  try {
    program.parse(argc, argv);
  } catch (const CLI::ParseError& outcome) {
    return Report(program, outcome);
  }
  if (program.get_subcommands().empty()) {
    std::fputs("The stage, Tavrilon's window, is not available in this build. Its subcommands run without it:\n\n",
               stderr);
    std::fputs(program.help().c_str(), stderr);
    return app::kFailed;
  }
  return exitCode;
}
