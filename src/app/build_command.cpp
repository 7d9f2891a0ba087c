// SPDX-License-Identifier: MIT
// tavrilon build: makes a rig from a type and a template and saves the scene.
#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "app/command_line.h"

namespace app {

namespace {

struct BuildOptions {
  std::string type = "Biped";
  std::string rigTemplate;
  std::string output;
  bool checkRestPose = false;
  bool json = false;
};

int Build(const BuildOptions&) { return Fail("build: rig building is not available in this build"); }

}  // namespace

void AddBuildCommand(CLI::App& program, int& exitCode) {
  auto options = std::make_shared<BuildOptions>();
  CLI::App* command = program.add_subcommand("build", "Build a rig and save it as a scene");
  command->add_option("--type", options->type, "The kind of rig")->capture_default_str();
  command->add_option("--template", options->rigTemplate, "The template (.rig) that gives its measures")
      ->check(CLI::ExistingFile);
  command->add_option("-o,--output", options->output, "The scene to write (.tvs)")->required();
  command->add_flag("--check-rest-pose", options->checkRestPose,
                    "Fail when the built rig does not stand where its template put it");
  command->add_flag("--json", options->json, "Print what was built as JSON");
  command->callback([options, &exitCode] { exitCode = Build(*options); });
}

}  // namespace app
