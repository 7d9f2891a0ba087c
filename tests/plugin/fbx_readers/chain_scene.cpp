// SPDX-License-Identifier: MIT
#include "plugin/fbx_readers/chain_scene.h"

#include <cmath>

#include "plugin/fbx/import_scenes_test.h"

namespace tavrilon::fbx {

using import_test::AddBone;
using import_test::AddCurves;
using import_test::AddStack;
using import_test::Dice;
using import_test::FrameTime;
using import_test::NewScene;

namespace {

constexpr int kBones = 12;
constexpr double kFigure = 200;  // centimetres

class ChainMaker {
 public:
  ChainMaker(unsigned seed, const ChainRow& row) : dice_(seed), row_(row), scene_(NewScene()) {
    scene_->GetGlobalSettings().SetAxisSystem(row.axes);
    scene_->GetGlobalSettings().SetSystemUnit({row.centimetres, 1});
  }

  std::unique_ptr<FbxScene> Make(const std::vector<std::string>& stacks) {
    FbxNode* parent = nullptr;
    for (int i = 0; i < kBones; ++i) {
      parent = AddBone(*scene_, "bone" + std::to_string(i), parent);
      SetTransform(i, parent->transform);
    }
    for (const std::string& stack : stacks) AddMotion(stack);
    return std::move(scene_);
  }

 private:
  /// A rotation that the row allows: where scales differ by axis, about the axis that keeps them apart.
  Vector3 Turn(double size) {
    Vector3 turn = dice_.Vector(size);
    if (row_.scales == Scales::AboutZ) turn.x = turn.y = 0;
    return turn;
  }

  void SetTransform(int i, NodeTransform& t) {
    const double length = kFigure / kBones / row_.centimetres;
    t.translation = {length * dice_.In(0.8, 1), length * dice_.In(-0.2, 0.2), length * dice_.In(-0.2, 0.2)};
    t.rotation = Turn(180);
    t.rotationActive = true;
    t.order = static_cast<RotationOrder>(row_.order < 0 ? i % 6 : row_.order);
    t.inherit = static_cast<InheritType>(row_.inherit < 0 ? i % 3 : row_.inherit);
    if (row_.preAndPost) t.preRotation = Turn(180), t.postRotation = Turn(180);
    if (row_.scales == Scales::Free) t.scaling = {dice_.In(0.9, 1.1), dice_.In(0.9, 1.1), dice_.In(0.9, 1.1)};
    // Inherited once more by each bone, so it stays near to 1.
    if (row_.scales == Scales::AboutZ) t.scaling.x = t.scaling.y = dice_.In(0.9, 1.1);
    if (!row_.pivots) return;
    for (Vector3* part : {&t.rotationOffset, &t.rotationPivot, &t.scalingOffset, &t.scalingPivot})
      *part = dice_.Vector(length * 0.2);
  }

  FbxAnimCurve Curve(double middle, double spread) {
    FbxAnimCurve curve = import_test::RandomCurve(dice_, middle, spread, kChainLast);
    for (KeyShape& shape : curve.shapes) {
      if (row_.keys == Keys::Linear || row_.keys == Keys::Constant) shape = {};
      if (row_.keys == Keys::Constant)
        shape.interpolation = dice_.Of(2) ? Interpolation::Constant : Interpolation::ConstantNext;
      if (row_.keys == Keys::UserTangents || row_.keys == Keys::Weighted) {
        shape.interpolation = Interpolation::Cubic;
        for (float* weight : {&shape.rightWeight, &shape.nextLeftWeight})
          *weight = row_.keys == Keys::Weighted ? static_cast<float>(dice_.In(0.05, 0.8)) : 1.0f / 3;
      }
      // As files hold them: without this the made scene would not be the one that is written.
      for (float* weight : {&shape.rightWeight, &shape.nextLeftWeight}) *weight = std::round(*weight * 9999) / 9999;
    }
    return curve;
  }

  void Animate(FbxAnimLayer& layer, FbxNode* node, const char* property, const Vector3& middle, const Vector3& spread) {
    FbxAnimCurveNode* curves = AddCurves(*scene_, layer, node, property);
    for (size_t c = 0; c < 3; ++c) {
      curves->defaults[c] = middle[c];
      if (spread[c] > 0) curves->curves[c] = Curve(middle[c], spread[c]);
    }
  }

  void AnimateAll(FbxAnimLayer& layer, bool isBase) {
    const double length = kFigure / kBones / row_.centimetres;
    for (FbxNode* node : scene_->Nodes()) {
      const NodeTransform& t = node->transform;
      const double size = isBase ? 120 : 30;
      const bool zOnly = row_.scales == Scales::AboutZ;
      Animate(layer, node, "Lcl Rotation", isBase ? t.rotation : Vector3(),
              zOnly ? Vector3{0, 0, size} : Vector3{size, size, size});
      if (dice_.Of(2))
        Animate(layer, node, "Lcl Translation", isBase ? t.translation : Vector3(), Vector3{1, 1, 1} * (length * 0.1));
      if (row_.scales == Scales::Free && dice_.Of(2))
        Animate(layer, node, "Lcl Scaling", isBase ? t.scaling : Vector3{1, 1, 1}, {0.05, 0.05, 0.05});
    }
  }

  void AddMotion(const std::string& stackName) {
    FbxAnimLayer* base = AddStack(*scene_, stackName, kChainLast);
    AnimateAll(*base, true);
    for (const LayerRow& above : row_.above) {
      FbxAnimLayer* layer = FbxAnimLayer::Create(*scene_, "Above");
      layer->blend = above.blend;
      layer->weight = above.weight;
      layer->mute = above.mute;
      layer->solo = above.solo;
      layer->rotationAccumulation = above.rotationAccumulation;
      layer->scaleAccumulation = above.scaleAccumulation;
      if (above.hasWeightCurve) layer->weightCurve = {{0, FrameTime(kChainLast).ticks}, {0, 100}, {KeyShape()}};
      scene_->Stacks().back()->layers.push_back(layer);
      if (above.moves) AnimateAll(*layer, false);
    }
  }

  Dice dice_;
  const ChainRow& row_;
  std::unique_ptr<FbxScene> scene_;
};

const FbxAxisSystem kXUp{0, 1, 2, 1, 1, -1}, kLeftYUp{1, 1, 2, -1, 0, 1}, kLeftZUp{2, 1, 1, 1, 0, 1};
constexpr HostStage kInchStage{2.54, corvanta::UpAxis::Z}, kMetreYStage{100, corvanta::UpAxis::Y},
    kYStage{1, corvanta::UpAxis::Y};

}  // namespace

std::unique_ptr<FbxScene> MakeChain(unsigned seed, const ChainRow& row, const std::vector<std::string>& stacks) {
  return ChainMaker(seed, row).Make(stacks);
}

std::vector<ChainRow> ChainRows() {
  std::vector<ChainRow> rows;
  static const char* const kOrders[] = {"XYZ", "XZY", "YZX", "YXZ", "ZXY", "ZYX"};
  for (int order = 0; order < 6; ++order)
    for (const bool preAndPost : {false, true}) rows.push_back({kOrders[order], order, preAndPost});
  rows.push_back({"pivots", -1, false, true});
  rows.push_back({"everything", -1, true, true, 1, Scales::Free});
  static const char* const kInherits[] = {"RrSs", "RSrs", "Rrs"};
  for (int inherit = 0; inherit < 3; ++inherit) {
    rows.push_back({kInherits[inherit], -1, true, false, inherit});
    rows.push_back({kInherits[inherit], 0, true, true, inherit, Scales::AboutZ});
  }
  rows.push_back({"inherit types in turn", 0, true, true, -1, Scales::AboutZ});

  const auto system = [&](const char* name, const FbxAxisSystem& axes, double centimetres, const HostStage& stage) {
    rows.push_back({name, -1, true, true, 1, Scales::Free, axes, centimetres, stage});
  };
  system("inch", FbxAxisSystem::ZUp(), 2.54, {});
  system("metre", FbxAxisSystem::YUp(), 100, {});
  system("metre to inch", FbxAxisSystem::ZUp(), 100, kInchStage);
  system("inch to inch", FbxAxisSystem::YUp(), 2.54, kInchStage);
  system("centimetre to metre, Y up", FbxAxisSystem::ZUp(), 1, kMetreYStage);
  system("Y up to Y up", FbxAxisSystem::YUp(), 1, kYStage);
  system("X up", kXUp, 1, {});
  system("X up to Y up", kXUp, 1, kYStage);
  system("left-handed, Y up", kLeftYUp, 1, {});
  system("left-handed, Z up, to Y up", kLeftZUp, 1, kYStage);

  const auto keys = [&](const char* name, Keys kind) {
    rows.push_back({name, -1, true});
    rows.back().keys = kind;
  };
  keys("constant keys", Keys::Constant);
  keys("linear keys", Keys::Linear);
  keys("user tangents", Keys::UserTangents);
  keys("weighted tangents", Keys::Weighted);

  const auto layers = [&](const char* name, std::vector<LayerRow> above) {
    rows.push_back({name, -1, true, false, 1, Scales::Free});
    rows.back().above = std::move(above);
  };
  layers("additive", {{LayerBlend::Additive}});
  layers("additive at 35 percent", {{LayerBlend::Additive, 35}});
  layers("additive by angles", {{LayerBlend::Additive, 35, false, false, true, 1, 1}});
  layers("override", {{LayerBlend::Override, 50}});
  layers("override passing through", {{LayerBlend::OverridePassthrough, 60}});
  layers("mute", {{LayerBlend::Override, 100, true}});
  layers("solo", {{LayerBlend::Additive, 100, false, false}, {LayerBlend::Override, 100, false, true}});
  layers("weight curve", {{LayerBlend::OverridePassthrough, 0, false, false, true, 0, 0, true}});
  layers("an empty one", {{LayerBlend::Override, 100, false, false, false}});
  layers("four", {{LayerBlend::Additive, 50},
                  {LayerBlend::OverridePassthrough, 30},
                  {LayerBlend::Additive, 80, false, false, true, 1},
                  {LayerBlend::Override, 100, true}});
  return rows;
}

}  // namespace tavrilon::fbx
