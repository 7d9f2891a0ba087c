// SPDX-License-Identifier: MIT
// tavrilon shot SCENE -o PICTURE: draws a scene without a display.
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

void AddShotCommand(CommandLine& line) {
  auto options = std::make_shared<ShotOptions>();
  line.Add("shot", "Draw a scene as a picture", [options] { return Shot(*options); })
      .InputFile("scene", options->scene, Given::Required, "The scene (.tvs)")
      .Text("-o,--output", options->output, Given::Required, "The picture to write (.png)")
      .Choice("--view", options->view, {"front", "side", "top", "perspective"}, "Where the camera stands")
      .Number("--frame", options->frame, -1000000, 1000000, "The frame to draw")
      .Number("--width", options->width, 1, 16384, "Pixels")
      .Number("--height", options->height, 1, 16384, "Pixels");
}

}  // namespace app
