// SPDX-License-Identifier: MIT
// tavrilon run FILE.cvs [ARGS]: runs a script file.
#include <CLI/CLI.hpp>
#include <memory>
#include <string>
#include <vector>

#include "app/command_line.h"

namespace app {

namespace {

struct RunOptions {
  std::string file;
  std::vector<std::string> arguments;
};

int Run(const RunOptions&) { return Fail("run: the script engine is not available in this build"); }

}  // namespace

void AddRunCommand(CLI::App& program, int& exitCode) {
  auto options = std::make_shared<RunOptions>();
  CLI::App* command = program.add_subcommand("run", "Run a CorvantaScript file without a window");
  command->add_option("file", options->file, "The script (.cvs)")->required()->check(CLI::ExistingFile);
  command->add_option("arguments", options->arguments, "Handed to the script as the array `scriptArgs`");
  // Whatever follows the file is the script's, also what looks like an option.
  command->positionals_at_end(false)->prefix_command();
  command->callback([command, options, &exitCode] {
    for (const std::string& rest : command->remaining()) options->arguments.push_back(rest);
    exitCode = Run(*options);
  });
}

}  // namespace app
