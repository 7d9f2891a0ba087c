// SPDX-License-Identifier: MIT
// tavrilon info [FILE]: what this build holds, or what a file holds.
#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "app/command_line.h"

namespace app {

namespace {

struct InfoOptions {
  std::string file;
  bool json = false;
};

int Info(const InfoOptions&) { return Fail("info: reading files is not available in this build"); }

}  // namespace

void AddInfoCommand(CLI::App& program, int& exitCode) {
  auto options = std::make_shared<InfoOptions>();
  CLI::App* command = program.add_subcommand("info", "Tell what a file holds");
  command->add_option("file", options->file, "A scene, rig template, animation or FBX file")
      ->required()
      ->check(CLI::ExistingFile);
  command->add_flag("--json", options->json, "Print it as JSON");
  command->callback([options, &exitCode] { exitCode = Info(*options); });
}

}  // namespace app
