// SPDX-License-Identifier: MIT
// A scene to export, nodes that move as a function says, and the file's scene compared with it.
#pragma once

#include <functional>

#include "host/core/class_desc.h"
#include "host/core/hold.h"
#include "host/scene/bone_object.h"
#include "host/scene/core_interface.h"
#include "host/scene/mesh_samples_test.h"
#include "plugin/fbx/exporter/job.h"
#include "plugin/fbx/exporter/scene_export.h"
#include "plugin/frame/class_table.h"

namespace tavrilon {

using namespace corvanta;

/// A local matrix as a function of time.
class TimedMatrix final : public Control {
 public:
  using Function = std::function<Matrix3(TimeValue)>;
  explicit TimedMatrix(Function function) : function_(std::move(function)) {}
  SClass_ID SuperClassID() const override { return kMatrixControlSuper; }
  Class_ID ClassID() const override { return {0x7E570007, 1}; }
  void GetValue(TimeValue t, ValueRef value, Interval& valid, GetSetMethod) override {
    value.Matrix3() = function_(t) * value.Matrix3();
    valid.SetInstant(t);
  }
  void SetValue(TimeValue, ValueRef, bool, GetSetMethod) override {}

 private:
  Function function_;
};

inline std::vector<INode*> AllNodes() {
  std::vector<INode*> nodes;
  for (const Ref<INode>& node : GetScene().Nodes()) nodes.push_back(node.Get());
  return nodes;
}

inline fbx::FbxNode* FindOut(const fbx::FbxScene& scene, const std::string& name) {
  for (fbx::FbxNode* node : scene.Nodes())
    if (node->GetName() == name) return node;
  ADD_FAILURE() << "no node '" << name << "'";
  return nullptr;
}

/// The largest difference of rows 0 to 2, and of row 3.
struct MatrixDifference {
  double turn = 0, place = 0;
};
inline MatrixDifference Difference(const fbx::Affine& a, const fbx::Affine& b) {
  MatrixDifference d;
  for (size_t i = 0; i < 3; ++i) d.turn = std::max(d.turn, fbx::Length(a.row[i] - b.row[i]));
  d.place = fbx::Length(a.row[3] - b.row[3]);
  return d;
}

class ExportTest : public testing::Test {
 protected:
  ExportTest() {
    RegisterHostClasses();
    RegisterTavrilonClasses();
    ReplaceScene(std::make_unique<Scene>());
    GetScene().time.range = {0, 4 * 200};
  }
  ~ExportTest() override { ReplaceScene(std::make_unique<Scene>()); }

  static INode* Make(const WStr& name, Object* object, INode* parent, TimedMatrix::Function function) {
    INode* node = GetScene().CreateObjectNode(object);
    node->SetName(name);
    if (parent) parent->AttachChild(node, false);
    if (function) node->SetTMController(new TimedMatrix(std::move(function)));
    return node;
  }
  static INode* Helper(const WStr& name, INode* parent = nullptr, TimedMatrix::Function function = {}) {
    return Make(name, new PointHelper, parent, std::move(function));
  }
  static INode* Bone(const WStr& name, INode* parent = nullptr, TimedMatrix::Function function = {}) {
    return Make(name, new BoneObject, parent, std::move(function));
  }

  std::unique_ptr<fbx::FbxScene> Build(const std::vector<INode*>& nodes) {
    return fbx_export::BuildFbxScene(nodes, L"/tmp/out/take.fbx", options, report);
  }
  /// Builds all nodes, or fails with the error.
  std::unique_ptr<fbx::FbxScene> BuildAll() {
    std::unique_ptr<fbx::FbxScene> scene = Build(AllNodes());
    EXPECT_TRUE(scene) << ToUtf8(report.error);
    return scene;
  }
  bool HasLogged(const WStr& piece) const {
    for (const WStr& line : report.log)
      if (line.find(piece) != WStr::npos) return true;
    return false;
  }

  FbxExportOptions options;
  ExchangeReport report;
};

/// Every exported node stands in the file where it stands in the host, at each sample of the host's active range.
inline void ExpectSameWorlds(const fbx::FbxScene& scene, const std::vector<INode*>& nodes, int subSamples,
                             double turnError, double placeError) {
  const int ticksPerFrame = GetCOREInterface()->GetTicksPerFrame();
  const Interval range = GetScene().time.range;
  fbx::SceneEvaluator evaluator(scene, scene.CurrentStack());
  const int64_t count = fbx_export::SampleTimes::Count(range.start, range.end, ticksPerFrame, subSamples);
  const fbx_export::SampleTimes times{range.start, ticksPerFrame, subSamples, static_cast<int>(count)};
  for (int i = 0; i < times.count; ++i) {
    const TimeValue t = times.At(i);
    for (INode* node : nodes) {
      const fbx::FbxNode* out = FindOut(scene, ToUtf8(node->GetName()));
      ASSERT_NE(out, nullptr);
      const MatrixDifference d =
          Difference(evaluator.World(out, fbx_export::ToFileTime(t)), fbx_export::ToAffine(node->GetNodeTM(t)));
      ASSERT_LE(d.turn, turnError) << ToUtf8(node->GetName()) << " at " << t;
      ASSERT_LE(d.place, placeError) << ToUtf8(node->GetName()) << " at " << t;
    }
  }
}

}  // namespace tavrilon
