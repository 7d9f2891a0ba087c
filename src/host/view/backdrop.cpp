// SPDX-License-Identifier: MIT
#include "host/view/backdrop.h"

#include <algorithm>
#include <cmath>

namespace corvanta {
namespace {

constexpr Colour kGridColour{0.80f, 0.83f, 0.86f};
constexpr float kThinOpacity = 0.10f, kStrongOpacity = 0.24f, kAxisOpacity = 0.65f;
constexpr int kMaxLines = 400;  // a side; the step keeps well below

struct Grid {
  Point3 origin, axes[2];  // unit axes of the sheet
  int axisIndex[2];        // of the world, for the colours
  float step, extent;      // half the side
  float fadeRadius;        // 0: none
  Point2 centre;           // in sheet coordinates, on a strong line
  int strong;              // every so many lines
};

Grid MakeGrid(const Camera& camera) {
  const Point3 normal = camera.GridNormal();
  const int first = normal.x != 0 ? 1 : 0, second = normal.z != 0 ? 1 : 2;
  Grid grid{};
  grid.axisIndex[0] = first, grid.axisIndex[1] = second;
  grid.axes[0][first] = 1, grid.axes[1][second] = 1;
  grid.step = GridStep(camera);
  grid.strong = static_cast<int>(std::lround(std::pow(10.0f, std::ceil(std::log10(grid.step) + 1e-3f)) / grid.step));
  if (grid.strong == 1) grid.strong = 10;
  const float span = camera.Span(), aspect = static_cast<float>(camera.Width()) / static_cast<float>(camera.Height());
  grid.extent = camera.IsPerspective() ? span * 4 : span * 0.5f * std::max(1.0f, aspect) + grid.step * 10;
  grid.fadeRadius = camera.IsPerspective() ? grid.extent : 0;
  const float snap = grid.step * static_cast<float>(grid.strong);
  for (int i = 0; i < 2; ++i) grid.centre[i] = std::round(camera.Target()[grid.axisIndex[i]] / snap) * snap;
  if (!camera.IsPerspective()) grid.origin = camera.Forward() * (span * 1000);
  return grid;
}

// A line of the sheet at `at` on the other axis, in pieces that fade with their distance from the middle.
void DrawGridLine(GraphicsWindow& window, const Grid& grid, int along, float at, float opacity) {
  const int pieces = grid.fadeRadius > 0 ? 32 : 1;
  const auto point = [&](float s) {
    return grid.origin + grid.axes[along] * (grid.centre[along] + s) + grid.axes[1 - along] * at;
  };
  const float length = grid.extent * 2 / static_cast<float>(pieces), across = at - grid.centre[1 - along];
  for (int i = 0; i < pieces; ++i) {
    const float from = -grid.extent + length * static_cast<float>(i), middle = from + length * 0.5f;
    float fade = 1;
    if (grid.fadeRadius > 0) fade = 1 - std::sqrt(middle * middle + across * across) / grid.fadeRadius;
    if (fade <= 0) continue;
    window.SetOpacity(opacity * fade);
    window.Segment(point(from), point(from + length));
  }
}

}  // namespace

float GridStep(const Camera& camera) {
  const float wanted = camera.Span() / 6;
  const float power = std::pow(10.0f, std::floor(std::log10(wanted)));
  return wanted >= power * 2 ? power * 2 : power;
}

void DrawGrid(GraphicsWindow& window) {
  const DrawScope scope(window);
  const Grid grid = MakeGrid(window.GetCamera());
  window.SetTransform({});
  window.SetDepthTest(true);
  window.SetLineWidth(1);
  const int lines = std::min(static_cast<int>(grid.extent / grid.step), kMaxLines);
  for (int along = 0; along < 2; ++along) {
    for (int i = -lines; i <= lines; ++i) {
      const float at = grid.centre[1 - along] + grid.step * static_cast<float>(i);
      const bool axis = std::fabs(at) < grid.step * 0.5f;
      window.SetColour(kGridColour);
      if (axis) window.SetColour(kAxisColours[grid.axisIndex[along]]);
      DrawGridLine(window, grid, along, axis ? 0 : at,
                   axis              ? kAxisOpacity
                   : i % grid.strong ? kThinOpacity
                                     : kStrongOpacity);
    }
  }
}

void DrawAxisMark(GraphicsWindow& window) {
  constexpr float kLength = 30, kLetter = 40, kCorner = 52;
  static constexpr const wchar_t* kLetters[] = {L"X", L"Y", L"Z"};
  const DrawScope scope(window);
  const Camera& camera = window.GetCamera();
  const Point2 corner{kCorner, static_cast<float>(camera.Height()) - kCorner};
  Point3 origin;
  if (!camera.ScreenToPlane(corner, camera.Target(), camera.Forward(), origin)) return;
  const float pixel = camera.PixelSize(origin);
  window.SetTransform({});
  window.SetDepthTest(false);
  window.SetOpacity(1);
  window.SetLineWidth(2);
  window.SetTextSize(12);
  int order[3] = {0, 1, 2};  // the axis that points farthest away first
  std::sort(order, order + 3, [&](int a, int b) { return camera.Forward()[a] > camera.Forward()[b]; });
  for (int i : order) {
    const float x = camera.Right()[i], y = camera.Up()[i];
    window.SetColour(kAxisColours[i]);
    if (x * x + y * y < 0.01f) continue;  // seen from its end
    window.Segment(origin, origin + (camera.Right() * x + camera.Up() * y) * (pixel * kLength));
    window.Text({corner.x + x * kLetter, corner.y - y * kLetter + 4}, kLetters[i], TextAnchor::Centre);
  }
}

void DrawViewName(GraphicsWindow& window) {
  static constexpr const wchar_t* kNames[] = {L"Front", L"Side", L"Top", L"Perspective"};
  const DrawScope scope(window);
  window.SetColour(Colour{0.85f, 0.87f, 0.89f});
  window.SetTextSize(14);
  window.Text({14, 24}, kNames[static_cast<int>(window.GetCamera().Kind())]);
}

}  // namespace corvanta
