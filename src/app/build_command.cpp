// SPDX-License-Identifier: MIT
// tavrilon build: makes a rig from a type and a template and saves the scene.
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

void AddBuildCommand(CommandLine& line) {
  auto options = std::make_shared<BuildOptions>();
  line.Add("build", "Build a rig and save it as a scene", [options] { return Build(*options); })
      .Text("--type", options->type, Given::Optional, "The kind of rig")
      .InputFile("--template", options->rigTemplate, Given::Optional, "The template (.rig) that gives its measures")
      .Text("-o,--output", options->output, Given::Required, "The scene to write (.tvs)")
      .Flag("--check-rest-pose", options->checkRestPose, "Fail when the rig does not stand as its template says")
      .Flag("--json", options->json, "Print what was built as JSON");
}

}  // namespace app
