// SPDX-License-Identifier: MIT
// tavrilon shot SCENE -o PICTURE: draws a scene without a display.
#include <CLI/CLI.hpp>
#include <memory>
#include <string>

#include "app/command_line.h"

namespace app {

namespace {

struct ShotOptions {
  std::string scene;
  std::string output;
  std::string view = "perspective";
  int frame = 0;
  int width = 960;
  int height = 960;
};

int Shot(const ShotOptions&) { return Fail("shot: drawing scenes is not available in this build"); }

}  // namespace

void AddShotCommand(CLI::App& program, int& exitCode) {
  auto options = std::make_shared<ShotOptions>();
  CLI::App* command = program.add_subcommand("shot", "Draw a scene as a picture");
  command->add_option("scene", options->scene, "The scene (.tvs)")->required()->check(CLI::ExistingFile);
  command->add_option("-o,--output", options->output, "The picture to write (.png)")->required();
  command->add_option("--view", options->view, "Where the camera stands")
      ->capture_default_str()
      ->check(CLI::IsMember({"front", "side", "top", "perspective"}));
  command->add_option("--frame", options->frame, "The frame to draw")->capture_default_str();
  command->add_option("--width", options->width, "Pixels")->capture_default_str()->check(CLI::Range(1, 16384));
  command->add_option("--height", options->height, "Pixels")->capture_default_str()->check(CLI::Range(1, 16384));
  command->callback([options, &exitCode] { exitCode = Shot(*options); });
}

}  // namespace app
