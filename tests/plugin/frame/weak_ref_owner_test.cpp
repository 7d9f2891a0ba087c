// SPDX-License-Identifier: MIT
#include "plugin/frame/weak_ref_owner.h"

#include "plugin/frame/loop_validator.h"
#include "plugin/frame/rig_nodes_test.h"

namespace tavrilon {
namespace {

using namespace corvanta;

enum : ParamID { kGoal = 0, kTargets = 1 };
const ParamRow kRows[] = {
    {kGoal, L"goal", ParamType::Node, kWeak},
    {kTargets, L"targets", ParamType::Node, kWeak | kTab},
};
const ParamBlockDesc2& Desc() {
  static const ParamBlockDesc2 desc(0, L"params", kRows);
  return desc;
}

/// A transform controller that watches nodes.
class Watcher final : public Control, public WeakRefOwner {
 public:
  Watcher() { BindReference(0, new ParamBlock2(Desc())); }
  SClass_ID SuperClassID() const override { return kMatrixControlSuper; }
  Class_ID ClassID() const override { return {1, 4}; }
  void GetValue(TimeValue, ValueRef, Interval&, GetSetMethod) override {}
  void SetValue(TimeValue, ValueRef, bool, GetSetMethod) override {}
  int NumRefs() const override { return 1; }
  ReferenceTarget* GetReference(int) const override { return block; }
  ParamBlock2* block = nullptr;

 protected:
  void SetReference(int, ReferenceTarget* target) override { block = static_cast<ParamBlock2*>(target); }
  ReferenceTarget* WeakOwner() override { return this; }
  ParamBlock2* GetWeakBlock() const override { return block; }
};

struct Heard final : ReferenceTarget {
  explicit Heard(ReferenceTarget* target) { BindReference(0, target); }
  SClass_ID SuperClassID() const override { return kReferenceTargetSuper; }
  Class_ID ClassID() const override { return {1, 5}; }
  int NumRefs() const override { return 1; }
  ReferenceTarget* GetReference(int) const override { return target; }
  void SetReference(int, ReferenceTarget* t) override { target = t; }
  RefResult NotifyRefChanged(const Interval&, ReferenceTarget*, PartID& part, RefMessage message, bool) override {
    messages.push_back(message);
    parts.push_back(part);
    return REF_SUCCEED;
  }
  int Count(RefMessage message) const {
    return static_cast<int>(std::count(messages.begin(), messages.end(), message));
  }
  ReferenceTarget* target = nullptr;
  std::vector<RefMessage> messages;
  std::vector<PartID> parts;
};

class WeakRefOwnerTest : public RigNodesTest {
 protected:
  void SetUp() override {
    RigNodesTest::SetUp();
    watcher = new Watcher;
    heard = Ref<Heard>(new Heard(watcher.Get()));
    node = AddNode(L"goal");
    watcher->SetWeakNode(kGoal, node);
    heard->messages.clear();
    heard->parts.clear();
  }
  void TearDown() override {
    heard = {};
    watcher = {};
    RigNodesTest::TearDown();
  }
  Ref<Watcher> watcher;
  Ref<Heard> heard;
  INode* node = nullptr;
};

TEST_F(WeakRefOwnerTest, SlotsByNumberAndByParameter) {
  EXPECT_EQ(watcher->NumWeakParams(), 2);
  EXPECT_EQ(watcher->GetWeakParam(1), kTargets);
  EXPECT_EQ(watcher->GetWeakParam(2), -1);
  EXPECT_EQ(watcher->GetWeakNode(kGoal), node);
  watcher->block->SetCount(kTargets, 2);
  EXPECT_TRUE(watcher->SetWeakNode(kTargets, node, 1));
  EXPECT_EQ(watcher->GetWeakNode(kTargets, 0), nullptr);
  EXPECT_EQ(watcher->GetWeakNode(kTargets, 1), node);
  EXPECT_FALSE(watcher->SetWeakNode(99, node));
}

TEST_F(WeakRefOwnerTest, PassesOnWhatItsDependentsNeed) {
  struct Case {
    RefMessage sent;
    RefMessage expected;  // 0: dropped
  };
  const Case kCases[] = {
      {80, 80}, {246, 246}, {274, 274}, {0x3071552C, 0x3071552C}, {32, 0x18F91903}, {250, 0}, {258, 0},
  };
  for (const Case& c : kCases) {
    SCOPED_TRACE(testing::Message() << "message " << c.sent);
    heard->messages.clear();
    heard->parts.clear();
    RefNotice notice;
    notice.message = c.sent;
    notice.part = PART_GEOM;
    static uint32_t number = 0x40000000;  // far from the numbers of real messages
    notice.number = ++number;
    watcher->WeakTargetNotice(*watcher->block, kGoal, 0, notice);
    if (c.expected == 0) {
      EXPECT_TRUE(heard->messages.empty());
      continue;
    }
    ASSERT_EQ(heard->messages, std::vector<RefMessage>{c.expected});
    const bool whole = c.expected == 0x18F91903 || c.expected == 0x3071552C;
    EXPECT_EQ(heard->parts[0], whole ? PART_ALL : PART_GEOM);
  }
}

TEST_F(WeakRefOwnerTest, ANodesChangeArrives) {
  node->InvalidateTM();
  EXPECT_EQ(heard->Count(REFMSG_CHANGE), 1);
}

TEST_F(WeakRefOwnerTest, DeletionClearsAndUndoBringsBack) {
  theHold.Begin();
  GetScene().DeleteNode(node);
  theHold.Accept(L"Delete");
  EXPECT_EQ(watcher->GetWeakNode(kGoal), nullptr);
  EXPECT_EQ(heard->Count(REFMSG_MONITORED_GONE), 1);
  theHold.Undo();
  EXPECT_EQ(watcher->GetWeakNode(kGoal), node);
}

TEST_F(WeakRefOwnerTest, OwnerAndTargetDeletedInOneStep) {
  INode* owner = AddNode(L"owner");
  owner->SetTMController(watcher.Get());
  watcher = {};
  heard = {};
  theHold.Begin();
  GetScene().DeleteNodes({owner, node});
  theHold.Accept(L"Delete");
  theHold.Undo();
  EXPECT_EQ(static_cast<Watcher*>(owner->GetTMController())->GetWeakNode(kGoal), node);
  theHold.Redo();
  theHold.Flush();
}

// The second of two owners that watch each other's nodes would make a circle that references alone do not show.
TEST_F(WeakRefOwnerTest, LoopTestFollowsWeakSlotsAndAncestors) {
  INode* a = AddNode(L"a");
  INode* b = AddNode(L"b");
  INode* c = AddNode(L"c", b);
  auto* onA = new Watcher;
  a->SetTMController(onA);
  EXPECT_FALSE(MayFollow(onA, nullptr));
  EXPECT_FALSE(MayFollow(onA, a));
  EXPECT_TRUE(MayFollow(onA, b));
  auto* onB = new Watcher;
  b->SetTMController(onB);
  onB->block->SetCount(kTargets, 1);
  onB->SetWeakNode(kTargets, a, 0);
  EXPECT_FALSE(MayFollow(onA, b));  // watches a
  EXPECT_FALSE(MayFollow(onA, c));  // hangs on b
  EXPECT_TRUE(MayFollow(onB, a));
  LoopValidator validator;
  EXPECT_FALSE(validator.Validate(onA, kGoal, c));
  EXPECT_TRUE(validator.Validate(onB, kGoal, a));
}

}  // namespace
}  // namespace tavrilon
