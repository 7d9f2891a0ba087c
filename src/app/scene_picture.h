// SPDX-License-Identifier: MIT
// A picture of the scene on show, as a file.
#pragma once

#include <string>
#include <vector>

#include "app/node_kind.h"
#include "host/view/camera.h"

namespace app {

struct PictureOptions {
  corvanta::ViewKind view = corvanta::ViewKind::Perspective;
  int width = 960, height = 960;  // pixels
  corvanta::TimeValue time = 0;
  std::vector<NodeKind> show;
};

/// What `--view` takes, "persp" and "perspective" meaning the same.
const std::vector<std::string>& ViewNames();
corvanta::ViewKind ViewOf(const std::string& name);
/// Reads "640x480". Gives an empty text, or what is wrong.
std::string ReadSize(const std::string& text, PictureOptions& options);

/// Frames what is seen and writes a PNG file, whole or not at all. Gives an empty text, or what is wrong with the
/// file's name.
std::string WritePicture(const std::string& path, const PictureOptions& options);

}  // namespace app
