// SPDX-License-Identifier: MIT
#include "host/scene/node.h"

#include "host/core/hold.h"
#include "host/scene/core_interface.h"
#include "host/scene/point_helper.h"
#include "support/test_objects.h"

namespace corvanta {
namespace {

using namespace testing_objects;

class NodeTest : public SceneTest {
 protected:
  static TestMatrix& Tm(INode* node) { return *static_cast<TestMatrix*>(node->GetTMController()); }
};

TEST_F(NodeTest, MatricesAreKeptAndDroppedDownTheTree) {
  INode* parent = MakeNode(L"parent");
  INode* child = MakeNode(L"child", parent);
  parent->SetNodeTM(0, TransMatrix({1, 0, 0}));
  child->SetNodeTM(0, TransMatrix({1, 2, 0}));
  EXPECT_EQ(child->GetNodeTM(0).GetTrans(), (Point3{1, 2, 0}));
  const int before = Tm(child).evaluations;
  child->GetNodeTM(0);
  child->GetNodeTM(500);
  EXPECT_EQ(Tm(child).evaluations, before) << "valid for ever, so nothing is computed again";
  parent->SetNodeTM(0, TransMatrix({5, 0, 0}));
  EXPECT_EQ(child->GetNodeTM(0).GetTrans(), (Point3{5, 2, 0}));
  Tm(parent).validity = Interval{0, 10};
  parent->InvalidateTM();
  Interval valid = FOREVER;
  child->GetNodeTM(5, valid);
  EXPECT_EQ(valid, (Interval{0, 10}));
}

TEST_F(NodeTest, WatchersOfADescendantHearOfItsParents) {
  INode* parent = MakeNode(L"parent");
  INode* child = MakeNode(L"child", parent);
  const Ref<Listener> listener(new Listener);
  listener->ReplaceReference(0, child);
  parent->SetNodeTM(0, TransMatrix({1, 0, 0}));
  EXPECT_EQ(listener->heard, 1);
  EXPECT_EQ(listener->lastPart, static_cast<PartID>(PART_TM));
}

TEST_F(NodeTest, AttachKeepsThePlaceWhenAsked) {
  INode* a = MakeNode(L"a");
  INode* b = MakeNode(L"b");
  a->SetNodeTM(0, TransMatrix({10, 0, 0}));
  b->SetNodeTM(0, TransMatrix({1, 1, 0}));
  theHold.Begin();
  EXPECT_TRUE(a->AttachChild(b, true));
  theHold.Accept(L"attach");
  EXPECT_EQ(b->GetNodeTM(0).GetTrans(), (Point3{1, 1, 0}));
  EXPECT_FALSE(b->AttachChild(a)) << "a loop";
  EXPECT_FALSE(a->AttachChild(GetScene().GetRootNode()));
  theHold.Undo();
  EXPECT_EQ(b->GetParentNode(), GetScene().GetRootNode());
  EXPECT_EQ(b->GetNodeTM(0).GetTrans(), (Point3{1, 1, 0}));
  theHold.Redo();
  EXPECT_EQ(b->GetParentNode(), a);
  EXPECT_EQ(b->GetNodeTM(0).GetTrans(), (Point3{1, 1, 0}));
}

TEST_F(NodeTest, TreesHaveABound) {
  INode* top = MakeNode(L"top");
  INode* last = top;
  bool refused = false;
  for (int i = 0; i < INode::kMaxDepth + 10 && !refused; ++i) {
    INode* next = MakeNode(L"n");
    refused = !last->AttachChild(next, false);
    last = next;
  }
  EXPECT_TRUE(refused);
  top->SetNodeTM(0, TransMatrix({1, 2, 3}));  // a deep change must not exhaust the stack
}

TEST_F(NodeTest, DeletionMovesChildrenUpAndComesBack) {
  INode* a = MakeNode(L"a");
  INode* b = MakeNode(L"b", a);
  INode* c = MakeNode(L"c", b);
  a->SetNodeTM(0, TransMatrix({1, 0, 0}));
  b->SetNodeTM(0, TransMatrix({2, 0, 0}));
  c->SetNodeTM(0, TransMatrix({3, 0, 0}));
  GetScene().SelectNode(b);
  theHold.Begin();
  GetScene().DeleteNode(b);
  theHold.Accept(L"delete");
  EXPECT_EQ(c->GetParentNode(), a);
  EXPECT_EQ(c->GetNodeTM(0).GetTrans(), (Point3{3, 0, 0}));
  EXPECT_TRUE(GetScene().Selection().empty());
  EXPECT_EQ(GetScene().GetINodeByName(L"b"), nullptr);
  theHold.Undo();
  EXPECT_EQ(c->GetParentNode(), b);
  EXPECT_EQ(b->GetParentNode(), a);
  EXPECT_EQ(c->GetNodeTM(0).GetTrans(), (Point3{3, 0, 0}));
  EXPECT_EQ(GetScene().Selection(), std::vector<INode*>{b});
  EXPECT_EQ(GetScene().Nodes()[1].Get(), b) << "in its old place among the nodes";
}

TEST_F(NodeTest, PlainStateUndoes) {
  INode* node = MakeNode(L"node");
  SceneLayer* layer = GetScene().MakeLayer(L"Bones");
  theHold.Begin();
  node->SetName(L"other");
  node->SetWireColor(0x112233);
  node->Hide(true);
  node->SetLayer(layer);
  node->SetTransformLocks(0x1FF);
  node->SetUserPropString(L"key", L"value");
  node->SetObjOffsetPos({1, 2, 3});
  theHold.Accept(L"properties");
  theHold.Undo();
  EXPECT_EQ(node->GetName(), L"node");
  EXPECT_EQ(node->GetLayer(), nullptr);
  EXPECT_FALSE(node->IsHidden());
  EXPECT_EQ(node->GetObjOffsetPos(), Point3());
  theHold.Redo();
  EXPECT_EQ(node->GetUserPropString(L"key"), L"value");
  EXPECT_EQ(node->GetWireColor(), 0x112233u);
  EXPECT_EQ(node->GetLayer(), layer);
}

TEST_F(NodeTest, ModifiersStackOnTopAndUndo) {
  class Shift final : public Modifier {
   public:
    Class_ID ClassID() const override { return {1, 1}; }
    void ModifyDisplay(TimeValue, INode*, ModifiedDisplay& display) override { display.tm.Translate({1, 0, 0}); }
  };
  INode* node = GetScene().CreateObjectNode(new PointHelper);
  Object* point = node->GetObjectRef();
  const float half = point->GetLocalBoundBox(0, node).max.x;
  theHold.Begin();
  node->AddModifier(new Shift);
  auto* top = new Shift;
  node->AddModifier(top);
  theHold.Accept(L"modifiers");
  EXPECT_EQ(node->Modifiers().size(), 2u);
  EXPECT_EQ(node->Modifiers()[0], top);
  EXPECT_EQ(node->GetBaseObject(), point);
  EXPECT_FLOAT_EQ(node->GetObjectRef()->GetLocalBoundBox(0, node).max.x, half + 2);
  theHold.Undo();
  EXPECT_EQ(node->GetObjectRef(), point);
  theHold.Redo();
  EXPECT_EQ(node->Modifiers().size(), 2u);
}

TEST_F(NodeTest, SelectionKeepsItsOrderThroughUndo) {
  INode* a = MakeNode(L"a");
  INode* b = MakeNode(L"b");
  Scene& scene = GetScene();
  theHold.Begin();
  scene.SelectNode(b);
  scene.SelectNode(a, false);
  theHold.Accept(L"select");
  EXPECT_EQ(scene.Selection(), (std::vector<INode*>{b, a}));
  theHold.Begin();
  scene.SelectNode(a);
  theHold.Accept(L"select");
  EXPECT_FALSE(b->Selected());
  theHold.Undo();
  EXPECT_EQ(scene.Selection(), (std::vector<INode*>{b, a}));
  EXPECT_TRUE(b->Selected());
  theHold.Undo();
  EXPECT_TRUE(scene.Selection().empty());
}

TEST_F(NodeTest, NamesOfNewNodesAreUnique) {
  std::vector<WStr> names;
  for (int i = 0; i < 5; ++i) names.push_back(GetScene().CreateObjectNode(new PointHelper)->GetName());
  EXPECT_EQ(names.front(), L"Point001");
  EXPECT_EQ(names.back(), L"Point005");
}

// Under the address sanitizer: the root must not tell children that went before it.
TEST_F(NodeTest, SceneGoesWhoseRootHasAController) {
  MakeNode(L"child", MakeNode(L"parent"));
  EXPECT_TRUE(GetScene().GetRootNode()->SetTMController(new TestMatrix));
  ReplaceScene(std::make_unique<Scene>());
  EXPECT_TRUE(GetScene().Nodes().empty());
}

}  // namespace
}  // namespace corvanta
