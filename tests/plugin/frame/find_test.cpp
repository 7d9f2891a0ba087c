// SPDX-License-Identifier: MIT
#include "plugin/frame/find.h"

#include "plugin/controllers/rig_control.h"
#include "plugin/controllers/static_controls.h"
#include "plugin/frame/rig_nodes_test.h"

namespace tavrilon {
namespace {

using namespace corvanta;

/// A transform controller around another one.
class Wrapper final : public Control {
 public:
  explicit Wrapper(Control* inner) { BindReference(0, inner); }
  SClass_ID SuperClassID() const override { return kMatrixControlSuper; }
  Class_ID ClassID() const override { return {1, 2}; }
  void GetValue(TimeValue t, ValueRef value, Interval& valid, GetSetMethod method) override {
    inner_->GetValue(t, value, valid, method);
  }
  void SetValue(TimeValue t, ValueRef value, bool commit, GetSetMethod method) override {}
  int NumRefs() const override { return 1; }
  ReferenceTarget* GetReference(int) const override { return inner_; }
  int NumSubs() const override { return 1; }
  Animatable* SubAnim(int) override { return inner_; }

 protected:
  void SetReference(int, ReferenceTarget* target) override { inner_ = target ? target->AsControl() : nullptr; }

 private:
  Control* inner_ = nullptr;
};

class Find : public RigNodesTest {};

TEST_F(Find, ThroughWrappersUpAndDown) {
  INode* node = AddNode(L"hand");
  auto* control = new RigControl;
  node->SetTMController(new Wrapper(new Wrapper(control)));
  EXPECT_EQ(FindOwnerNode(control), node);
  EXPECT_EQ(FindNodeRigControl(node), control);

  const Ref<Control> loose(new StaticTransform);
  EXPECT_EQ(FindOwnerNode(loose.Get()), nullptr);
  EXPECT_EQ(FindRigControl(loose.Get()), nullptr);
  EXPECT_EQ(FindOwnerNode(nullptr), nullptr);
  EXPECT_EQ(FindNodeRigControl(nullptr), nullptr);
}

TEST_F(Find, ManagerAmongOtherModifiers) {
  INode* node = AddNode(L"hand");
  EXPECT_EQ(FindManagerMod(node), nullptr);
  const ParamBlock2& block = AddManager(node);
  node->SetObjectRef(CreateDerivedObject(node->GetObjectRef()));
  ASSERT_NE(FindManagerMod(node), nullptr);
  EXPECT_EQ(FindManagerMod(node)->GetParamBlock(), &block);
  EXPECT_EQ(FindManagerMod(nullptr), nullptr);
}

TEST_F(Find, RigRootIsTheMarkedNodeOrTheTopOne) {
  INode* top = AddNode(L"top");
  INode* main = AddNode(L"main", top);
  INode* hand = AddNode(L"hand", main);
  EXPECT_EQ(FindRigRoot(hand), top);
  AddManager(hand);
  AddManager(main).SetValue(AnimationManagerMod::kRoot, 0, true);
  EXPECT_EQ(FindRigRoot(hand), main);
  EXPECT_EQ(FindRigRoot(main), main);
  EXPECT_EQ(FindRigRoot(top), top);
  EXPECT_EQ(FindRigRoot(nullptr), nullptr);
  EXPECT_EQ(FindRigRoot(GetScene().GetRootNode()), nullptr);
}

}  // namespace
}  // namespace tavrilon
