// SPDX-License-Identifier: MIT
#include "plugin/frame/tavrilon_interface.h"

#include "host/core/notify.h"
#include "host/core/tab.h"
#include "plugin/frame/holder_control.h"
#include "plugin/frame/library.h"
#include "plugin/frame/resource.h"
#include "plugin/frame/rig_nodes_test.h"

namespace tavrilon {
namespace {

using namespace corvanta;
using I = TavrilonInterface;

class TavrilonInterfaceTest : public RigNodesTest {
 protected:
  void SetUp() override {
    RigNodesTest::SetUp();
    static int module;
    AttachLibrary(&module);
    InitializeLibrary();
  }
  void TearDown() override {
    ShutdownLibrary();
    RigNodesTest::TearDown();
  }
  static FPValue Call(int id, std::vector<FPValue> args = {}, FPStatus expected = FPStatus::OK) {
    FPValue result;
    EXPECT_EQ(FindCoreInterface(L"tavrilon")->Invoke(id, 0, result, args), expected);
    return result;
  }
};

struct Listener final : ReferenceTarget {
  explicit Listener(ReferenceTarget* heard) { BindReference(0, heard); }
  SClass_ID SuperClassID() const override { return kReferenceTargetSuper; }
  Class_ID ClassID() const override { return {1, 3}; }
  int NumRefs() const override { return 1; }
  ReferenceTarget* GetReference(int) const override { return heard; }
  void SetReference(int, ReferenceTarget* target) override { heard = target; }
  RefResult NotifyRefChanged(const Interval&, ReferenceTarget*, PartID&, RefMessage message, bool) override {
    messages.push_back(message);
    return REF_SUCCEED;
  }
  ReferenceTarget* heard = nullptr;
  std::vector<RefMessage> messages;
};

TEST_F(TavrilonInterfaceTest, IsFoundByScripts) {
  EXPECT_EQ(GetCoreInterface(I::kId), &GetTavrilonInterface());
  const FPInterfaceDesc& desc = GetTavrilonInterface().GetDesc();
  EXPECT_EQ(desc.functions.size(), 4u);
  EXPECT_EQ(desc.properties.size(), 5u);
  EXPECT_EQ(desc.FindEnum(0)->values.size(), 5u);
  const size_t count = CoreInterfaces().size();
  AttachLibrary(GetModuleHandle());
  EXPECT_EQ(CoreInterfaces().size(), count);
}

// Panel objects lie under a stack of modifiers; their views hear 258.
TEST_F(TavrilonInterfaceTest, ActivePanelIsTheBaseObject) {
  INode* node = AddNode(L"panel");
  AddManager(node);
  const Ref<Listener> view(new Listener(node->GetBaseObject()));
  Call(I::kSetActiveUIPanel, {TargetValue(node)});
  EXPECT_EQ(Call(I::kGetActiveUIPanel).ToNode(), node);
  EXPECT_EQ(GetTavrilonInterface().ActiveUIPanel().Object(), node->GetBaseObject());
  EXPECT_EQ(view->messages, std::vector<RefMessage>{258});

  Call(I::kSetActiveUIPanel, {TargetValue(nullptr)});
  EXPECT_EQ(GetTavrilonInterface().ActiveUIPanel().Object(), nullptr);
  EXPECT_EQ(view->messages.size(), 1u);
}

TEST_F(TavrilonInterfaceTest, ActiveNodesGoWithTheirNodesAndWithTheScene) {
  INode* node = AddNode(L"kit");
  Call(I::kSetActivePoseKit, {TargetValue(node)});
  EXPECT_EQ(Call(I::kGetActivePoseKit).ToNode(), node);
  GetScene().DeleteNode(node);
  EXPECT_EQ(Call(I::kGetActivePoseKit).ToNode(), nullptr);

  Call(I::kSetActiveUIPanel, {TargetValue(AddNode(L"panel"))});
  Call(I::kSetUIPanelTransforming, {true});
  ReplaceScene(std::make_unique<Scene>());
  EXPECT_EQ(Call(I::kGetActiveUIPanel).ToNode(), nullptr);
  EXPECT_FALSE(Call(I::kGetUIPanelTransforming).ToBool());
}

TEST_F(TavrilonInterfaceTest, CurrentActionIsNotForScriptsToSet) {
  INode* action = AddNode(L"action");
  GetTavrilonInterface().SetCurrentUIAction(action);
  Call(I::kSetCurrentUIAction, {TargetValue(nullptr)});
  EXPECT_EQ(Call(I::kGetCurrentUIAction).ToTarget(), action);
}

TEST_F(TavrilonInterfaceTest, WrongCallsSaySo) {
  for (const int setter : {I::kSetActiveUIPanel, I::kSetActivePoseKit, I::kSetUIPanelTransforming,
                           I::kSetCurrentUIAction, I::kSetReplaceNativeCurveEditor}) {
    FPValue result;
    EXPECT_THROW(GetTavrilonInterface().Invoke(setter, 0, result, {}), CorvantaSDK::Util::OutOfRangeException);
  }
  EXPECT_EQ(static_cast<uint32_t>(FPStatus::NoSuchFunction), 0xFFFFFFFFu);
  Call(99, {}, FPStatus::NoSuchFunction);
  EXPECT_FALSE(Call(I::kOpenCurveEditor, {}, FPStatus::Failed).ToWStr().empty());
  EXPECT_FALSE(Call(I::kAbout, {}, FPStatus::Failed).ToWStr().empty());
  Call(I::kSetReplaceNativeCurveEditor, {true}, FPStatus::Failed);
  EXPECT_FALSE(Call(I::kGetReplaceNativeCurveEditor).ToBool());
}

TEST_F(TavrilonInterfaceTest, OneHolderASceneUnderItsName) {
  TrackViewNode* root = GetScene().GetTrackViewRootNode();
  ReferenceTarget* impostor = DescOf(TavrilonClass::PoseKitHolder).Create();
  root->AddItem(impostor, L"UIPanelManager", {});
  ReferenceTarget* holder = Call(I::kGetUIPanelHolder).ToTarget();
  ASSERT_NE(holder, nullptr);
  EXPECT_NE(holder, impostor);
  EXPECT_TRUE(IsOfClass(holder, TavrilonClass::UIPanelHolder));
  EXPECT_EQ(Call(I::kGetUIPanelHolder).ToTarget(), holder);
  EXPECT_EQ(root->NumItems(), 2);
  EXPECT_EQ(root->GetItem(0), impostor);

  EXPECT_TRUE(IsOfClass(Call(I::kGetPoseKitHolder).ToTarget(), TavrilonClass::PoseKitHolder));
  EXPECT_EQ(root->GetName(2), L"PoseManager");
}

TEST_F(TavrilonInterfaceTest, EndsCleanlyWithAndWithoutTheClosingNotice) {
  BroadcastNotification(NOTIFY_HOST_STARTED);
  BroadcastNotification(NOTIFY_HOST_CLOSING);
  ShutdownLibrary();
  ShutdownLibrary();
}

TEST_F(TavrilonInterfaceTest, ResourceTexts) {
  EXPECT_STREQ(LoadResString(kStrBaseLayer), L"Base Layer");
  EXPECT_STREQ(LoadResString(959), L"Animation Layers Change");
  EXPECT_EQ(LoadResString(-1), nullptr);
  void* module = GetModuleHandle();
  SetModuleHandle(nullptr);
  EXPECT_EQ(LoadResString(kStrBaseLayer), nullptr);
  SetModuleHandle(module);
}

}  // namespace
}  // namespace tavrilon
