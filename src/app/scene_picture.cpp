// SPDX-License-Identifier: MIT
#include "app/scene_picture.h"

#include <algorithm>
#include <cstdio>

#include "app/headless.h"
#include "host/view/scene_view.h"

namespace app {

using namespace corvanta;

namespace {

constexpr int kMaxPixels = 6000;  // on a side: 36 bytes of samples a pixel make 1.3 gigabytes

// Of the picture's shorter side: two pixels in one of 960. A control must catch the eye before the bones behind it.
constexpr float kLineShare = 2.0f / 960;

struct ViewRow {
  const char* name;
  ViewKind kind;
};
constexpr ViewRow kViews[] = {
    {"front", ViewKind::Front},
    {"side", ViewKind::Side},
    {"top", ViewKind::Top},
    {"persp", ViewKind::Perspective},
    {"perspective", ViewKind::Perspective},
};

}  // namespace

const std::vector<std::string>& ViewNames() {
  static const std::vector<std::string> names = [] {
    std::vector<std::string> all;
    for (const ViewRow& row : kViews) all.push_back(row.name);
    return all;
  }();
  return names;
}

ViewKind ViewOf(const std::string& name) {
  for (const ViewRow& row : kViews)
    if (name == row.name) return row.kind;
  return ViewKind::Perspective;
}

std::string ReadSize(const std::string& text, PictureOptions& options) {
  int width = 0, height = 0, used = 0;
  const bool read = std::sscanf(text.c_str(), "%5dx%5d%n", &width, &height, &used) == 2;
  if (!read || static_cast<size_t>(used) != text.size() || std::min(width, height) < 1 ||
      std::max(width, height) > kMaxPixels) {
    return "\"" + text + "\" is no size; give WIDTHxHEIGHT in pixels, from 1x1 to 6000x6000, such as 960x720";
  }
  options.width = width;
  options.height = height;
  return "";
}

std::string WritePicture(const std::string& path, const PictureOptions& options) {
  StartDrawing();
  SceneViewOptions view;
  view.time = options.time;
  view.lineWidth = std::max(1.0f, static_cast<float>(std::min(options.width, options.height)) * kLineShare);
  view.filter = [&options](INode& node) {
    return std::find(options.show.begin(), options.show.end(), KindOf(node)) != options.show.end();
  };
  Camera camera(options.view, options.width, options.height);
  FrameScene(camera, GetScene(), view);
  WStr error;
  SavePng(DrawScene(GetScene(), camera, view), FromUtf8(path), error);
  return ToUtf8(error);
}

}  // namespace app
