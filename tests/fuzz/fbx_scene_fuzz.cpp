// SPDX-License-Identifier: MIT
// Any bytes as an FBX scene: refused with an error, or a scene whose links all hold, which is turned to other axes and
// another unit and evaluated at some times.
#include <cstdint>
#include <cstdlib>

#include "plugin/fbx/format/sdk.h"

using namespace tavrilon::fbx;

namespace {

void Require(bool holds) {
  if (!holds) std::abort();
}

void CheckTree(const FbxScene& scene) {
  // Every node hangs below the root once.
  std::vector<const FbxNode*> open{scene.GetRootNode()};
  size_t count = 0;
  for (; !open.empty(); ++count) {
    const FbxNode* node = open.back();
    open.pop_back();
    for (int i = 0; i < node->GetChildCount(); ++i) {
      Require(node->GetChild(i)->GetParent() == node);
      open.push_back(node->GetChild(i));
    }
    Require(count <= scene.Nodes().size());
  }
  Require(count == scene.Nodes().size() + 1);
}

void CheckMesh(const FbxMesh& mesh) {
  const auto numPoints = static_cast<int>(mesh.controlPoints.size());
  for (int point : mesh.polygonVertices) Require(point >= 0 && point < numPoints);
  Require(mesh.polygonStarts.back() == static_cast<int>(mesh.polygonVertices.size()));
  for (int corner : mesh.edges) Require(corner >= 0 && corner < static_cast<int>(mesh.polygonVertices.size()));
  for (const FbxSkin* skin : mesh.skins) {
    for (const FbxCluster& cluster : skin->clusters) {
      Require(cluster.indices.size() == cluster.weights.size());
      for (int point : cluster.indices) Require(point >= 0 && point < numPoints);
    }
  }
  for (const FbxBlendShape* blend : mesh.blendShapes) {
    for (const FbxBlendShapeChannel* channel : blend->channels) {
      Require(channel->fullWeights.size() == channel->shapes.size());
      for (const FbxShape& shape : channel->shapes) {
        Require(shape.offsets.size() == shape.indices.size());
        Require(shape.normals.empty() || shape.normals.size() == shape.indices.size());
        for (int point : shape.indices) Require(point >= 0 && point < numPoints);
      }
    }
  }
}

void CheckCurve(const FbxAnimCurve& curve) {
  Require(curve.values.size() == curve.times.size());
  Require(curve.IsEmpty() || curve.shapes.size() == 1 || curve.shapes.size() == curve.times.size());
  for (size_t i = 1; i < curve.times.size(); ++i) Require(curve.times[i - 1] < curve.times[i]);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
  static const std::unique_ptr<FbxManager> manager = FbxManager::Create();
  const auto importer = FbxImporter::Create(*manager, "");
  const auto scene = FbxScene::Create("fuzz");
  ReadLimits limits;
  limits.inflatedBytes = size_t{1} << 20;
  const bool good = importer->Initialize({data, data + size}, "fuzz.fbx", limits) && importer->Import(*scene);
  Require(good == importer->GetStatus().IsGood());
  if (!good) return 0;
  CheckTree(*scene);
  for (const auto& object : scene->Objects()) {
    if (const auto* mesh = dynamic_cast<const FbxMesh*>(object.get())) CheckMesh(*mesh);
    if (const auto* node = dynamic_cast<const FbxAnimCurveNode*>(object.get())) {
      for (const FbxAnimCurve& curve : node->curves) CheckCurve(curve);
    }
  }
  FbxAxisSystem::ZUp().ConvertScene(*scene);
  FbxSystemUnit{100, 1}.ConvertScene(*scene);
  FbxTime first, last;
  if (const FbxAnimStack* stack = scene->CurrentStack()) stack->GetKeySpan(first, last);
  SceneEvaluator evaluator(*scene, scene->CurrentStack());
  const size_t step = 1 + scene->Nodes().size() / 16;
  for (const FbxTime t : {first, FbxTime{first.ticks / 2 + last.ticks / 2}, last}) {
    for (size_t i = 0; i < scene->Nodes().size(); i += step) {
      const NodeTransform transform = evaluator.Transform(scene->Nodes()[i], t);
      Require(transform.order <= RotationOrder::SphericXYZ);
      evaluator.World(scene->Nodes()[i], t);
    }
  }
  return 0;
}
