// SPDX-License-Identifier: MIT
// Small classes for tests of the machinery: a controller that holds a matrix, an object with one block, and an object
// with a list of references that writes down what it hears.
#pragma once

#include <gtest/gtest.h>

#include "host/core/class_desc.h"
#include "host/core/param_block.h"
#include "host/core/state_restore.h"
#include "host/core/tab.h"
#include "host/scene/scene.h"

namespace corvanta::testing_objects {

class TestMatrix final : public Control {
 public:
  static constexpr Class_ID kId{0x7E570001, 1};
  SClass_ID SuperClassID() const override { return kMatrixControlSuper; }
  Class_ID ClassID() const override { return kId; }
  void GetValue(TimeValue, ValueRef value, Interval& valid, GetSetMethod) override {
    value.Matrix3() = tm_ * value.Matrix3();
    valid &= validity;
    ++evaluations;
  }
  void SetValue(TimeValue, ValueRef value, bool, GetSetMethod) override {
    RecordState(this, &TestMatrix::tm_);
    tm_ = value.Packet().tmAxis * Inverse(value.Packet().tmParent);
    StateRestored();
  }
  void CopyStateFrom(ReferenceTarget& source, RemapDir&) override { tm_ = static_cast<TestMatrix&>(source).tm_; }
  void StateRestored() { NotifyDependents(); }
  Matrix3 tm_;
  Interval validity = FOREVER;
  int evaluations = 0;
};

/// Refers to anything, and counts messages.
class Listener final : public ReferenceTarget {
 public:
  static constexpr Class_ID kId{0x7E570001, 2};
  SClass_ID SuperClassID() const override { return kReferenceTargetSuper; }
  Class_ID ClassID() const override { return kId; }
  int NumRefs() const override { return static_cast<int>(refs.size()); }
  ReferenceTarget* GetReference(int i) const override {
    return i >= 0 && i < NumRefs() ? refs[static_cast<size_t>(i)] : nullptr;
  }
  RefResult NotifyRefChanged(const Interval&, ReferenceTarget* target, PartID& part, RefMessage message,
                             bool) override {
    ++heard;
    lastPart = part;
    lastMessage = message;
    if (onMessage) onMessage(target);
    return answer;
  }
  std::vector<ReferenceTarget*> refs{nullptr};
  int heard = 0;
  PartID lastPart = 0;
  RefMessage lastMessage = 0;
  RefResult answer = REF_SUCCEED;
  std::function<void(ReferenceTarget*)> onMessage;

 protected:
  void SetReference(int i, ReferenceTarget* target) override { refs[static_cast<size_t>(i)] = target; }
};

enum TestParam : ParamID {
  kAmount = 4,
  kCount = 1,
  kOn = 2,
  kTint = 3,
  kTm = 0,
  kText = 7,
  kNode = 9,
  kList = 11,
  kWatched = 12,
  kWeights = 13,
  kTurn = 14
};

inline constexpr ParamRow kTestRows[] = {
    {kAmount, L"amount", ParamType::Percent, kAnimatable, 0.5f, {0, 100}, L"Amount"},
    {kCount, L"count", ParamType::Int, kNone, 3},
    {kOn, L"on_off", ParamType::Bool, kNone, true},
    {kTint, L"tint", ParamType::Colour, kNone, {0.25f, 0.5f, 1}},
    {kTm, L"tm", ParamType::Matrix3},
    {kText, L"text", ParamType::String, kNone, L"hello"},
    {kNode, L"node", ParamType::Node},
    {kList, L"list", ParamType::Node, kTab},
    {kWatched, L"watched", ParamType::Node, kWeak},
    {kWeights, L"weights", ParamType::Float, kTab | kAnimatable, 1.5f},
    {kTurn, L"turn", ParamType::Angle, kAnimatable, 1.0f},
};

inline const ParamBlockDesc2& TestBlockDesc() {
  static const ParamBlockDesc2 desc(0, L"params", kTestRows);
  return desc;
}

class TestObject final : public HelperObject {
 public:
  static constexpr Class_ID kId{0x7E570001, 3};
  explicit TestObject(bool loading = false) {
    if (!loading) BindReference(0, new ParamBlock2(TestBlockDesc()));
  }
  Class_ID ClassID() const override { return kId; }
  WStr GetClassName() const override { return L"TestObject"; }
  int NumRefs() const override { return 1; }
  ReferenceTarget* GetReference(int i) const override { return i == 0 ? block : nullptr; }
  ParamBlock2* GetParamBlock() override { return block; }
  ParamBlock2* block = nullptr;

 protected:
  void SetReference(int, ReferenceTarget* target) override { block = static_cast<ParamBlock2*>(target); }
};

inline void RegisterTestClasses() {
  static const ClassDesc descs[] = {
      {L"TestMatrix", L"TestMatrix", kMatrixControlSuper, TestMatrix::kId, L"", true,
       [](bool) -> ReferenceTarget* { return new TestMatrix; }},
      {L"Listener", L"Listener", kReferenceTargetSuper, Listener::kId, L"", true,
       [](bool) -> ReferenceTarget* { return new Listener; }},
      {L"TestObject", L"TestObject", kHelperSuper, TestObject::kId, L"", true,
       [](bool loading) -> ReferenceTarget* { return new TestObject(loading); }},
  };
  RegisterHostClasses();
  for (const ClassDesc& desc : descs) ClassDirectory::Get().Register(&desc);
}

/// A node with a TestMatrix, under `parent` or the root.
inline INode* MakeNode(const WStr& name, INode* parent = nullptr) {
  INode* node = GetScene().CreateObjectNode(new TestObject);
  node->SetTMController(new TestMatrix);
  node->SetName(name);
  if (parent) parent->AttachChild(node, false);
  return node;
}

/// A fresh scene for every test.
class SceneTest : public ::testing::Test {
 protected:
  void SetUp() override {
    RegisterTestClasses();
    ReplaceScene(std::make_unique<Scene>());
  }
  void TearDown() override { ReplaceScene(std::make_unique<Scene>()); }
};

}  // namespace corvanta::testing_objects
