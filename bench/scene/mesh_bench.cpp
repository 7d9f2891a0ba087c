// SPDX-License-Identifier: MIT
// Meshes at new times: skinning, subdividing, and drawing.
#include <benchmark/benchmark.h>

#include <cmath>

#include "host/core/class_desc.h"
#include "host/core/hold.h"
#include "host/scene/point_helper.h"
#include "host/scene/scene.h"
#include "host/scene/skin_modifier.h"
#include "host/scene/subdivision_modifier.h"
#include "host/view/raster.h"
#include "host/view/scene_view.h"

namespace {

using namespace corvanta;

constexpr int kBones = 70;

/// A closed tube along X of unit radius, `length` long, smooth all over.
Mesh Tube(int rings, int sectors, float length) {
  Mesh mesh;
  for (int r = 0; r < rings; ++r) {
    for (int s = 0; s < sectors; ++s) {
      const float a = kTwoPi * static_cast<float>(s) / static_cast<float>(sectors);
      mesh.points.push_back({length * static_cast<float>(r) / static_cast<float>(rings - 1), std::cos(a), std::sin(a)});
    }
  }
  for (int r = 0; r + 1 < rings; ++r) {
    for (int s = 0; s < sectors; ++s) {
      const int next = (s + 1) % sectors;
      const int corners[] = {r * sectors + s, r * sectors + next, (r + 1) * sectors + next, (r + 1) * sectors + s};
      mesh.AddPolygon(corners);
    }
  }
  mesh.smoothing.assign(static_cast<size_t>(mesh.NumPolygons()), 1);
  return mesh;
}

struct Figure {
  INode* node;
  INode* root;
};

/// A chain of bones in a tube, four weights a point. All bones move from their first one.
Figure MakeFigure(int rings, int sectors) {
  RegisterHostClasses();
  theHold.Flush();
  ReplaceScene(std::make_unique<Scene>());
  Figure figure{};
  auto* object = new MeshObject;
  object->SetMesh(std::make_shared<Mesh>(Tube(rings, sectors, kBones)));
  figure.node = GetScene().CreateObjectNode(object);
  auto* skin = new SkinModifier;
  figure.node->AddModifier(skin);
  INode* last = nullptr;
  for (int i = 0; i < kBones; ++i) {
    INode* bone = GetScene().CreateObjectNode(new PointHelper);
    bone->SetNodeTM(0, TransMatrix({static_cast<float>(i), 0, 0}));
    if (last) last->AttachChild(bone);
    last = bone;
    if (i == 0) figure.root = bone;
    skin->AddBone(bone, bone->GetNodeTM(0));
  }
  auto weights = std::make_shared<SkinWeights>();
  for (const Point3& p : object->GetMesh().points) {
    const int first = std::min(static_cast<int>(p.x), kBones - 4);
    const SkinWeight row[] = {{first, 0.1f}, {first + 1, 0.4f}, {first + 2, 0.3f}, {first + 3, 0.2f}};
    weights->Add(row);
  }
  skin->SetWeights(weights);
  return figure;
}

/// Moves the chain and its mesh, so that everything is new.
void Move(const Figure& figure, int frame) {
  figure.root->SetNodeTM(0, RotateZMatrix(static_cast<float>(frame % 100) * 0.01f));
}

void BM_Bones(benchmark::State& state) {
  const Figure figure = MakeFigure(100, 100);
  int frame = 0;
  for (auto _ : state) {
    Move(figure, ++frame);
    GetScene().Evaluate(0);
  }
}
BENCHMARK(BM_Bones)->Unit(benchmark::kMicrosecond);

/// 10,000 points by 70 bones with four weights, with what the bones take (BM_Bones).
void BM_Skin(benchmark::State& state) {
  const Figure figure = MakeFigure(100, 100);
  int frame = 0;
  for (auto _ : state) {
    Move(figure, ++frame);
    benchmark::DoNotOptimize(EvaluatedMesh(figure.node, 0)->points.data());
  }
}
BENCHMARK(BM_Skin)->Unit(benchmark::kMicrosecond);

void BM_SkinAskedAgain(benchmark::State& state) {
  const Figure figure = MakeFigure(100, 100);
  for (auto _ : state) benchmark::DoNotOptimize(EvaluatedMesh(figure.node, 0)->points.data());
}
BENCHMARK(BM_SkinAskedAgain)->Unit(benchmark::kNanosecond);

/// The same figure of 2,500 points, subdivided once to 10,000.
void BM_SkinSubdivided(benchmark::State& state) {
  const Figure figure = MakeFigure(50, 50);
  figure.node->AddModifier(new SubdivisionModifier);
  int frame = 0;
  for (auto _ : state) {
    Move(figure, ++frame);
    benchmark::DoNotOptimize(EvaluatedMesh(figure.node, 0)->points.data());
  }
}
BENCHMARK(BM_SkinSubdivided)->Unit(benchmark::kMicrosecond);

/// Into a picture of 960 by 960: 20,000 triangles, at one pose (only drawn) or each time at a new one.
void BM_Draw(benchmark::State& state, bool moving) {
  const Figure figure = MakeFigure(101, 100);
  Camera camera(ViewKind::Perspective, 960, 960);
  SceneViewOptions options;
  options.grid = options.axisMark = options.viewName = false;
  options.filter = [&](INode& node) { return &node == figure.node; };
  FrameScene(camera, GetScene(), options);
  SoftwareWindow window(camera);
  int frame = 0;
  for (auto _ : state) {
    if (moving) Move(figure, ++frame);
    DisplayScene(window, GetScene(), options);
    benchmark::DoNotOptimize(window.Finish().constBits());
  }
}
BENCHMARK_CAPTURE(BM_Draw, same_pose, false)->Unit(benchmark::kMillisecond);
BENCHMARK_CAPTURE(BM_Draw, new_pose, true)->Unit(benchmark::kMillisecond);

}  // namespace
