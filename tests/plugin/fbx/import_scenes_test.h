// SPDX-License-Identifier: MIT
// FBX scenes made by calls, for tests of the import, and what is asked of the result.
#pragma once

#include <gtest/gtest.h>

#include <functional>
#include <random>

#include "host/core/hold.h"
#include "host/io/scene_file.h"
#include "host/scene/core_interface.h"
#include "plugin/fbx/closed_form_test.h"
#include "plugin/fbx/fbx_import.h"
#include "plugin/fbx/format/scene.h"
#include "plugin/frame/class_table.h"

namespace tavrilon::import_test {

using namespace corvanta;

inline constexpr int kFrames = 40;
inline constexpr int64_t kTicksPerFrame = fbx::FbxTime::kTicksPerSecond / 30;
inline fbx::FbxTime FrameTime(int frame) { return {frame * kTicksPerFrame}; }

/// An empty scene of one centimetre and 30 frames a second for each test.
class ImportTest : public testing::Test {
 protected:
  void SetUp() override {
    RegisterHostClasses();
    RegisterTavrilonClasses();
    ReplaceScene(std::make_unique<Scene>());
    GetScene().time = {30, {0, 100 * 200}, 0};
  }
  void TearDown() override { ReplaceScene(std::make_unique<Scene>()); }

  bool Import(fbx::FbxScene& scene, const FbxImportOptions& options = {}) {
    return ImportFbxScene(scene, L"test.fbx", options, report);
  }
  bool IsLogged(const wchar_t* part) const {
    for (const WStr& line : report.log)
      if (line.find(part) != WStr::npos) return true;
    return false;
  }
  std::string Log() const {
    std::string text = ToUtf8(report.error);
    for (const WStr& line : report.log) text += "\n" + ToUtf8(line);
    return text;
  }
  ExchangeReport report;
};

inline std::vector<uint8_t> SavedBytes() {
  std::vector<uint8_t> bytes;
  EXPECT_EQ(SaveSceneToBytes(GetScene(), &bytes), L"");
  return bytes;
}

inline std::unique_ptr<fbx::FbxScene> NewScene() {
  auto scene = fbx::FbxScene::Create("test");
  scene->GetGlobalSettings().SetAxisSystem(fbx::FbxAxisSystem::ZUp());
  scene->GetGlobalSettings().SetTimeMode(fbx::TimeMode::Frames30);
  return scene;
}

inline fbx::FbxNode* AddNode(fbx::FbxScene& scene, std::string name, fbx::FbxNode* parent = nullptr,
                             const fbx::Vector3& at = {}) {
  fbx::FbxNode* node = fbx::FbxNode::Create(scene, std::move(name));
  if (parent) parent->AddChild(node);
  node->transform.translation = at;
  return node;
}
inline fbx::FbxNode* AddBone(fbx::FbxScene& scene, const std::string& name, fbx::FbxNode* parent = nullptr,
                             const fbx::Vector3& at = {}) {
  fbx::FbxNode* node = AddNode(scene, name, parent, at);
  node->SetNodeAttribute(fbx::FbxSkeleton::Create(scene, name));
  return node;
}

inline fbx::FbxAnimLayer* AddStack(fbx::FbxScene& scene, const std::string& name, int frames = kFrames) {
  fbx::FbxAnimStack* stack = fbx::FbxAnimStack::Create(scene, name);
  stack->localStop = FrameTime(frames);
  fbx::FbxAnimLayer* layer = fbx::FbxAnimLayer::Create(scene, "Base");
  stack->layers.push_back(layer);
  return layer;
}

inline fbx::FbxAnimCurveNode* AddCurves(fbx::FbxScene& scene, fbx::FbxAnimLayer& layer, fbx::FbxObject* target,
                                        const std::string& property) {
  fbx::FbxAnimCurveNode* curves = fbx::FbxAnimCurveNode::Create(scene, property);
  curves->target = target;
  curves->property = property;
  layer.curveNodes.push_back(curves);
  return curves;
}

/// Random numbers, the same in each run.
struct Dice {
  explicit Dice(unsigned seed) : rng(seed) {}
  double In(double low, double high) { return std::uniform_real_distribution<double>(low, high)(rng); }
  int Of(int count) { return std::uniform_int_distribution<int>(0, count - 1)(rng); }
  fbx::Vector3 Vector(double size) { return {In(-size, size), In(-size, size), In(-size, size)}; }
  std::mt19937 rng;
};

/// Keys at times that are no frames, of all interpolations, weighted ones too.
inline fbx::FbxAnimCurve RandomCurve(Dice& dice, double middle, double spread, int frames = kFrames) {
  fbx::FbxAnimCurve curve;
  for (double frame = 0; frame < frames; frame += dice.In(2, 9)) {
    curve.times.push_back(static_cast<int64_t>(frame * static_cast<double>(kTicksPerFrame)));
    curve.values.push_back(static_cast<float>(middle + dice.In(-spread, spread)));
    fbx::KeyShape shape;
    shape.interpolation = dice.Of(5) == 0 ? static_cast<fbx::Interpolation>(dice.Of(3)) : fbx::Interpolation::Cubic;
    shape.rightSlope = static_cast<float>(dice.In(-4, 4) * spread);
    shape.nextLeftSlope = static_cast<float>(dice.In(-4, 4) * spread);
    if (dice.Of(3) == 0) shape.rightWeight = static_cast<float>(dice.In(0.1, 0.6));
    curve.shapes.push_back(shape);
  }
  return curve;
}

inline fbx::Affine ToAffine(const Matrix3& m) {
  fbx::Affine a;
  for (int i = 0; i < 4; ++i) a.row[i] = {m.GetRow(i).x, m.GetRow(i).y, m.GetRow(i).z};
  return a;
}

}  // namespace tavrilon::import_test
