// SPDX-License-Identifier: MIT
// tavrilon eval "TEXT": runs one piece of script and prints its value.
#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "app/command_line.h"

namespace app {

namespace {

struct EvalOptions {
  std::string text;
  bool json = false;
};

int Eval(const EvalOptions&) { return Fail("eval: the script engine is not available in this build"); }

}  // namespace

void AddEvalCommand(CLI::App& program, int& exitCode) {
  auto options = std::make_shared<EvalOptions>();
  CLI::App* command = program.add_subcommand("eval", "Run a piece of CorvantaScript and print its value");
  command->add_option("text", options->text, "The script text")->required();
  command->add_flag("--json", options->json, "Print the value as JSON");
  command->callback([options, &exitCode] { exitCode = Eval(*options); });
}

}  // namespace app
