// SPDX-License-Identifier: MIT
// tavrilon build: makes a rig from a type and a template and saves the scene.
#include <memory>
#include <string>
#include <vector>

#include "app/command_line.h"

namespace app {

namespace {

struct BuildOptions {
  std::string type = "Biped";
  std::string rigTemplate;
  std::string name;
  double height = 0;
  std::vector<std::string> settings;
  std::vector<std::string> points;
  std::string output;
  std::string saveTemplate;
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
      .Text("--name", options->name, Given::Optional, "The name of the rig, before those of its nodes")
      .Number("--height", options->height, 0, 1e6, "The height in scene units; 0 leaves the template's")
      .List("--set", options->settings, "PARAM=VALUE: a parameter of the rig; may come several times")
      .List("--point", options->points, "NAME=X,Y,Z: a template point; may come several times")
      .Text("-o,--output", options->output, Given::Required, "The scene to write (.tvs)")
      .Text("--save-template", options->saveTemplate, Given::Optional, "Write the template as well (.rig)")
      .Flag("--check-rest-pose", options->checkRestPose, "Fail when the rig does not stand as its template says")
      .Flag("--json", options->json, "Print what was built as JSON");
}

}  // namespace app
