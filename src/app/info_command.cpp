// SPDX-License-Identifier: MIT
// tavrilon info FILE: tells what a file holds.
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

void AddInfoCommand(CommandLine& line) {
  auto options = std::make_shared<InfoOptions>();
  line.Add("info", "Tell what a file holds", [options] { return Info(*options); })
      .InputFile("file", options->file, Given::Required, "A scene, rig template, animation or FBX file")
      .Flag("--json", options->json, "Print it as JSON");
}

}  // namespace app
