// SPDX-License-Identifier: MIT
// Drawing 20,000 short lines, 20,000 small triangles, and a picking pass over them, at 1280 x 720.
#include <benchmark/benchmark.h>

#include <random>

#include "host/view/hit_test.h"
#include "host/view/raster.h"

namespace {

using namespace corvanta;

constexpr int kCount = 20000;
constexpr float kSize = 0.06f;  // of a primitive; the cloud is two units wide and fills the picture

std::vector<Point3> Cloud(int pointsEach) {
  std::mt19937 rng(1);
  std::uniform_real_distribution<float> at(-1, 1);
  std::vector<Point3> points;
  for (int i = 0; i < kCount; ++i) {
    const Point3 first{at(rng), at(rng), at(rng)};
    points.push_back(first);
    for (int k = 1; k < pointsEach; ++k) points.push_back(first + Point3{at(rng), at(rng), at(rng)} * kSize);
  }
  return points;
}

Camera View() { return Camera(ViewKind::Perspective, 1280, 720); }

void DrawLines(GraphicsWindow& window, const std::vector<Point3>& points) {
  for (size_t i = 0; i + 1 < points.size(); i += 2) window.Segment(points[i], points[i + 1]);
}

void DrawFaces(GraphicsWindow& window, const std::vector<Point3>& points,
               const std::vector<std::array<int, 3>>& faces) {
  window.Triangles({points, faces});
}

std::vector<std::array<int, 3>> Faces() {
  std::vector<std::array<int, 3>> faces;
  for (int i = 0; i < kCount; ++i) faces.push_back({3 * i, 3 * i + 1, 3 * i + 2});
  return faces;
}

void EmptyPicture(benchmark::State& state) {
  SoftwareWindow window(View());
  for (auto _ : state) benchmark::DoNotOptimize(window.Finish());
}
BENCHMARK(EmptyPicture)->Unit(benchmark::kMillisecond);

void Lines(benchmark::State& state) {
  const std::vector<Point3> points = Cloud(2);
  SoftwareWindow window(View());
  for (auto _ : state) {
    DrawLines(window, points);
    benchmark::DoNotOptimize(window.Finish());
  }
}
BENCHMARK(Lines)->Unit(benchmark::kMillisecond);

void Triangles(benchmark::State& state) {
  const std::vector<Point3> points = Cloud(3);
  const auto faces = Faces();
  SoftwareWindow window(View());
  window.SetOpacity(static_cast<float>(state.range(0)) / 100);
  for (auto _ : state) {
    DrawFaces(window, points, faces);
    benchmark::DoNotOptimize(window.Finish());
  }
}
BENCHMARK(Triangles)->ArgName("opacity")->Arg(100)->Arg(50)->Unit(benchmark::kMillisecond);

void Pick(benchmark::State& state) {
  const std::vector<Point3> lines = Cloud(2), corners = Cloud(3);
  const auto faces = Faces();
  for (auto _ : state) {
    HitTestWindow window(View(), MakeHitRegion({640, 360}));
    DrawLines(window, lines);
    DrawFaces(window, corners, faces);
    benchmark::DoNotOptimize(window.Hits());
  }
}
BENCHMARK(Pick)->Unit(benchmark::kMillisecond);

}  // namespace
