// SPDX-License-Identifier: MIT
#include "host/core/reference.h"

#include "host/core/hold.h"
#include "host/core/monitor.h"
#include "host/core/remap.h"
#include "support/test_objects.h"

namespace corvanta {
namespace {

using namespace testing_objects;

class ReferenceTest : public SceneTest {};

TEST_F(ReferenceTest, LastDependentTakesTheTargetAlong) {
  const Ref<Listener> a(new Listener), b(new Listener);
  auto* target = new Listener;
  const AnimHandle handle = Animatable::GetHandleByAnim(target);
  a->ReplaceReference(0, target);
  b->ReplaceReference(0, target);
  a->ReplaceReference(0, nullptr);
  EXPECT_EQ(Animatable::GetAnimByHandle(handle), target);
  b->ReplaceReference(0, nullptr);
  EXPECT_EQ(Animatable::GetAnimByHandle(handle), nullptr);
}

TEST_F(ReferenceTest, UndoKeepsWhatNothingRefersTo) {
  const Ref<Listener> a(new Listener);
  auto* target = new Listener;
  const AnimHandle handle = Animatable::GetHandleByAnim(target);
  a->ReplaceReference(0, target);
  theHold.Begin();
  a->ReplaceReference(0, nullptr);
  theHold.Accept(L"drop");
  EXPECT_EQ(Animatable::GetAnimByHandle(handle), nullptr) << "an object in undo does not resolve";
  theHold.Undo();
  EXPECT_EQ(a->refs[0], target);
  EXPECT_EQ(Animatable::GetAnimByHandle(handle), target) << "the same handle works again";
  theHold.Redo();
  theHold.Flush();
  EXPECT_EQ(Animatable::GetAnimByHandle(handle), nullptr);
}

TEST_F(ReferenceTest, LoopsAreRefused) {
  const Ref<Listener> a(new Listener), b(new Listener), c(new Listener);
  EXPECT_EQ(a->ReplaceReference(0, b.Get()), REF_SUCCEED);
  EXPECT_EQ(b->ReplaceReference(0, c.Get()), REF_SUCCEED);
  EXPECT_EQ(c->ReplaceReference(0, a.Get()), REF_FAIL);
  EXPECT_EQ(a->ReplaceReference(0, a.Get()), REF_FAIL);
  EXPECT_EQ(c->refs[0], nullptr);
}

TEST_F(ReferenceTest, OneSendCrossesEachLinkOnce) {
  // target <- left, right <- top, and top refers to target too.
  const Ref<Listener> target(new Listener), left(new Listener), right(new Listener), top(new Listener);
  top->refs.resize(3);
  left->ReplaceReference(0, target.Get());
  right->ReplaceReference(0, target.Get());
  top->ReplaceReference(0, left.Get());
  top->ReplaceReference(1, right.Get());
  top->ReplaceReference(2, target.Get());
  target->NotifyDependents();
  EXPECT_EQ(left->heard, 1);
  EXPECT_EQ(right->heard, 1);
  EXPECT_EQ(top->heard, 3) << "once from each of its references";
  left->answer = REF_STOP;
  target->NotifyDependents();
  EXPECT_EQ(top->heard, 5) << "a stop holds back only what goes through the one that stops";
}

TEST_F(ReferenceTest, HandlersMaySendDropAndDie) {
  const Ref<Listener> target(new Listener);
  auto* first = new Listener;
  const Ref<Listener> second(new Listener);
  Ref<Listener> keepFirst(first);
  first->ReplaceReference(0, target.Get());
  second->ReplaceReference(0, target.Get());
  first->onMessage = [&](ReferenceTarget*) {
    first->ReplaceReference(0, nullptr);
    keepFirst = nullptr;
  };
  target->NotifyDependents();
  EXPECT_EQ(second->heard, 1);
  EXPECT_EQ(target->Dependents().size(), 1u);
  // Two that answer each other for ever come to an end.
  second->onMessage = [&](ReferenceTarget*) { target->NotifyDependents(); };
  target->NotifyDependents();
  EXPECT_LT(second->heard, 1000);
}

TEST_F(ReferenceTest, DisabledMessagesAreNotReplayed) {
  const Ref<Listener> target(new Listener), listener(new Listener);
  listener->ReplaceReference(0, target.Get());
  DisableRefMsgs();
  DisableRefMsgs();
  target->NotifyDependents();
  EnableRefMsgs();
  target->NotifyDependents();
  EXPECT_EQ(listener->heard, 0);
  EnableRefMsgs();
  target->NotifyDependents();
  EXPECT_EQ(listener->heard, 1);
}

TEST_F(ReferenceTest, FreshObjectsOutliveTheirOwnMessages) {
  auto* fresh = new TestObject;
  const AnimHandle handle = Animatable::GetHandleByAnim(fresh);
  fresh->block->SetValue(kCount, 0, 8);  // tells the object, which nothing holds yet
  ASSERT_EQ(Animatable::GetAnimByHandle(handle), fresh);
  const Ref<TestObject> held(fresh);
  EXPECT_EQ(fresh->block->GetInt(kCount), 8);
}

TEST_F(ReferenceTest, MonitorsSeeWithoutHolding) {
  struct Client final : MonitorClient {
    void MonitoredNotice(RefTargMonitor&, const RefNotice& n) override { messages.push_back(n.message); }
    std::vector<RefMessage> messages;
  } client;
  RefTargMonitor monitor(&client);
  INode* node = MakeNode(L"watched");
  monitor.SetTarget(node);
  EXPECT_FALSE(node->HasDependents());
  node->InvalidateTM();
  EXPECT_EQ(client.messages, std::vector<RefMessage>{REFMSG_CHANGE});
  theHold.Begin();
  GetScene().DeleteNode(node);
  theHold.Accept(L"delete");
  // That it goes, and once more when links to it read null.
  EXPECT_EQ(client.messages, (std::vector<RefMessage>{REFMSG_CHANGE, REFMSG_TARGET_DELETED, REFMSG_CHANGE}));
  EXPECT_EQ(monitor.Target(), nullptr);
  theHold.Undo();
  EXPECT_EQ(monitor.Target(), node);
  GetScene().DeleteNode(node);
  theHold.Flush();
  EXPECT_EQ(monitor.RawTarget(), nullptr);
}

struct Counter final : MonitorClient {
  void MonitoredNotice(RefTargMonitor&, const RefNotice&) override { ++heard; }
  int heard = 0;
};

// A part with two owners, one of which lives in undo: the part leaves the scene, and comes back, with the other.
TEST_F(ReferenceTest, WatchersHearOfEveryWayOutOfTheScene) {
  const Ref<Listener> root(new Listener), owner(new Listener), deleted(new Listener), part(new Listener);
  root->ReplaceReference(0, deleted.Get());
  deleted->ReplaceReference(0, part.Get());
  owner->ReplaceReference(0, part.Get());
  Counter counter;
  RefTargMonitor monitor(&counter);
  monitor.SetTarget(part.Get());
  root->ReplaceReference(0, nullptr);
  EXPECT_EQ(monitor.Target(), part.Get());
  const int before = counter.heard;
  owner->ReplaceReference(0, nullptr);
  EXPECT_EQ(monitor.Target(), nullptr);
  EXPECT_GT(counter.heard, before);
  const int gone = counter.heard;
  owner->ReplaceReference(0, part.Get());
  EXPECT_EQ(monitor.Target(), part.Get());
  EXPECT_GT(counter.heard, gone);
}

TEST_F(ReferenceTest, WatchersHearOfDeletionWithoutUndo) {
  const Ref<Listener> owner(new Listener);
  auto* target = new Listener;
  owner->ReplaceReference(0, target);
  Counter counter;
  RefTargMonitor monitor(&counter);
  monitor.SetTarget(target);
  owner->ReplaceReference(0, nullptr);
  EXPECT_EQ(counter.heard, 1);
  EXPECT_EQ(monitor.RawTarget(), nullptr);
}

// The scene owns its nodes: one that only a deleted node follows is there all the same.
TEST_F(ReferenceTest, NodesAreThereWhoeverFollowsThem) {
  INode* node = MakeNode(L"followed");
  RefTargMonitor monitor;
  monitor.SetTarget(node);
  const Ref<Listener> root(new Listener), follower(new Listener);
  root->ReplaceReference(0, follower.Get());
  follower->ReplaceReference(0, node);
  root->ReplaceReference(0, nullptr);
  EXPECT_EQ(monitor.Target(), node);
}

// Nothing is bound or dropped between the two reads.
TEST_F(ReferenceTest, ANewTargetIsLookedAtAnew) {
  const Ref<Listener> root(new Listener), gone(new Listener), part(new Listener), there(new Listener);
  root->ReplaceReference(0, gone.Get());
  gone->ReplaceReference(0, part.Get());
  root->ReplaceReference(0, there.Get());
  RefTargMonitor monitor;
  monitor.SetTarget(there.Get());
  EXPECT_EQ(monitor.Target(), there.Get());
  monitor.SetTarget(part.Get());
  EXPECT_EQ(monitor.Target(), nullptr);
}

}  // namespace
}  // namespace corvanta
