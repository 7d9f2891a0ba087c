// SPDX-License-Identifier: MIT
// tavrilon shot SCENE -o PICTURE: draws a scene without a display.
#include <cstdio>
#include <memory>
#include <string>

#include "app/command_line.h"
#include "app/host_session.h"
#include "app/scene_picture.h"
#include "host/io/scene_file.h"
#include "host/scene/core_interface.h"

namespace app {

using namespace corvanta;

namespace {

struct ShotOptions {
  std::string scene;
  std::string output;
  std::string view = "persp";
  int frame = 0;
  std::string size = "960x960";
  std::string show = "controls,bones,guides,meshes";
};

int Shot(const ShotOptions& options) {
  PictureOptions picture;
  std::string problem = ReadSize(options.size, picture);
  if (!problem.empty()) return WrongUsage("--size: " + problem);
  problem = ReadKinds(options.show, picture.show);
  if (!problem.empty()) return WrongUsage("--show: " + problem);
  picture.view = ViewOf(options.view);
  const HostSession session;
  if (!session.IsStarted()) return Fail(session.Problem());
  problem = ToUtf8(LoadScene(FromUtf8(options.scene)));
  if (!problem.empty()) return Fail(problem);
  picture.time = options.frame * GetCOREInterface()->GetTicksPerFrame();
  problem = WritePicture(options.output, picture);
  if (!problem.empty()) return Fail(problem);
  std::printf("wrote %s\n", options.output.c_str());
  return kOk;
}

}  // namespace

void AddShotCommand(CommandLine& line) {
  auto options = std::make_shared<ShotOptions>();
  line.Add("shot", "Draw a scene as a picture", [options] { return Shot(*options); })
      .Text("scene", options->scene, Given::Required, "The scene (.tvs)")
      .Text("-o,--out", options->output, Given::Required, "The picture to write (.png)")
      .Choice("--view", options->view, ViewNames(), "Where the camera stands")
      .Number("--frame", options->frame, -100000, 100000, "The frame to draw")
      .Text("--size", options->size, Given::Optional, "WIDTHxHEIGHT in pixels")
      .Text("--show", options->show, Given::Optional, "Kinds of nodes: controls,bones,helpers,guides,meshes or all");
}

}  // namespace app
