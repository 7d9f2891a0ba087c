// SPDX-License-Identifier: MIT
// A scene with one control, and a mesh that can be its selector.
#pragma once

#include <gtest/gtest.h>

#include "host/scene/scene.h"
#include "host/view/recorder.h"
#include "plugin/shapes/control_helper.h"
#include "plugin/shapes/control_interface.h"
#include "plugin/shapes/control_shape.h"
#include "plugin/shapes/shape_type.h"

namespace tavrilon {

using namespace corvanta;

/// Two triangles of a unit square that faces up.
class SquareMesh final : public GeomObject, public SelectorMeshSource {
 public:
  Class_ID ClassID() const override { return {0x7E57, 1}; }
  WStr GetClassName() const override { return L"Square"; }
  void* GetInterface(uint32_t request) override {
    return request == kSelectorMeshRequest ? static_cast<SelectorMeshSource*>(this) : nullptr;
  }
  using GeomObject::GetInterface;
  void ReadMesh(TimeValue, INode*, SelectorMesh& out, Interval&) override {
    ++reads;
    out = mesh;
  }
  SelectorMesh mesh{{{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}, {{0, 1, 2}, {0, 2, 3}}};
  int reads = 0;
};

template <class T>
class ControlTest : public testing::Test {
 protected:
  ControlTest() {
    ReplaceScene(std::make_unique<Scene>());
    control = new T;
    node = GetScene().CreateObjectNode(control);
  }
  ~ControlTest() override { ReplaceScene(std::make_unique<Scene>()); }

  void SetType(ShapeType type) { block().SetValue(kControlType, 0, static_cast<int>(type)); }
  ParamBlock2& block() { return *control->GetParamBlock(); }
  ControlCore& core() { return control->Core(); }
  /// Draws the control as a view would.
  const std::vector<Primitive>& Draw(const Camera& camera = Camera()) {
    window = std::make_unique<RecordingWindow>(camera);
    window->SetTransform(node->GetObjectTM(0));
    window->SetHitTag(node);
    node->GetObjectRef()->Display(0, node, *window);
    return window->Primitives();
  }
  SquareMesh* AddSelector() {
    auto* mesh = new SquareMesh;
    selector = GetScene().CreateObjectNode(mesh);
    block().SetValue(kSelectorNode, 0, selector);
    block().SetValue(kSelectorActive, 0, true);
    return mesh;
  }

  T* control = nullptr;
  INode* node = nullptr;
  INode* selector = nullptr;
  std::unique_ptr<RecordingWindow> window;
};

inline Box3 BoundsOf(const std::vector<Primitive>& primitives) {
  Box3 box;
  for (const Primitive& p : primitives)
    for (const Point3& q : p.points) box += q;
  return box;
}

}  // namespace tavrilon
