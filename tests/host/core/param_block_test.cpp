// SPDX-License-Identifier: MIT
#include "host/core/param_block.h"

#include <random>

#include "host/core/hold.h"
#include "host/core/remap.h"
#include "support/test_objects.h"

namespace corvanta {
namespace {

using namespace testing_objects;

class ParamBlockTest : public SceneTest {
 protected:
  void SetUp() override {
    SceneTest::SetUp();
    node = MakeNode(L"owner");
    block = node->GetObjectRef() ? static_cast<TestObject*>(node->GetObjectRef())->block : nullptr;
    ASSERT_NE(block, nullptr);
  }
  INode* node = nullptr;
  ParamBlock2* block = nullptr;
};

TEST_F(ParamBlockTest, DefaultsComeFromTheRows) {
  EXPECT_FLOAT_EQ(block->GetFloat(kAmount), 0.5f);
  EXPECT_EQ(block->GetInt(kCount), 3);
  EXPECT_TRUE(block->GetBool(kOn));
  EXPECT_EQ(block->GetColour(kTint), (Colour{0.25f, 0.5f, 1}));
  EXPECT_EQ(block->GetMatrix3(kTm), Matrix3());
  EXPECT_EQ(block->GetStr(kText), L"hello");
  EXPECT_EQ(block->GetINode(kNode), nullptr);
  EXPECT_EQ(block->Count(kList), 0);
  EXPECT_EQ(block->IDtoIndex(99), -1);
  EXPECT_EQ(block->GetFloat(99), 0);
  EXPECT_FALSE(block->SetValue(99, 0, 1.0f));
  EXPECT_EQ(block->GetOwner(), node->GetObjectRef());
}

TEST_F(ParamBlockTest, WrongKindsAreRefusedAndNumbersConvert) {
  EXPECT_FALSE(block->SetValue(kText, 0, 1.0f));
  EXPECT_FALSE(block->SetValue(kAmount, 0, L"text"));
  EXPECT_FALSE(block->SetFPValue(kTm, 0, 1.0f));
  EXPECT_FALSE(block->SetFPValue(kNode, 0, 3));
  EXPECT_TRUE(block->SetValue(kCount, 0, 7.9f));
  EXPECT_EQ(block->GetInt(kCount), 7);
  EXPECT_TRUE(block->SetValue(kAmount, 0, 2));
  EXPECT_FLOAT_EQ(block->GetFloat(kAmount), 2);
  EXPECT_TRUE(block->SetValue(kOn, 0, 5));
  EXPECT_EQ(block->GetInt(kOn), 1);
}

TEST_F(ParamBlockTest, AnimatedNumbersNarrowTheInterval) {
  struct Ramp final : Control {
    SClass_ID SuperClassID() const override { return kFloatControlSuper; }
    Class_ID ClassID() const override { return {0x7E570009, 1}; }
    void GetValue(TimeValue t, ValueRef value, Interval& valid, GetSetMethod) override {
      value.Float() = static_cast<float>(t) / 100;
      valid &= Interval{t, t + 9};
    }
    void SetValue(TimeValue, ValueRef, bool, GetSetMethod) override {}
  };
  for (const ParamID id : {kAmount, kCount, kOn}) block->LoadController(id, 0, new Ramp);
  const auto narrowed = [&](auto&& read) {
    Interval valid = FOREVER;
    EXPECT_TRUE(read(valid));
    return valid == Interval{100, 109};
  };
  EXPECT_TRUE(narrowed([&](Interval& valid) { return block->GetFloat(kAmount, 100, valid) == 1; }));
  EXPECT_TRUE(narrowed([&](Interval& valid) { return block->GetInt(kCount, 100, valid) == 1; }));
  EXPECT_TRUE(narrowed([&](Interval& valid) { return block->GetBool(kOn, 100, valid); }));
}

TEST_F(ParamBlockTest, TabBoundsThrow) {
  EXPECT_THROW(block->GetFloat(kWeights, 0, 0), CorvantaSDK::Util::TabOutOfRangeException);
  block->Append(kWeights, 3.0f);
  EXPECT_FLOAT_EQ(block->GetFloat(kWeights, 0, 0), 3);
  EXPECT_THROW(block->SetValue(kWeights, 0, 1.0f, 1), CorvantaSDK::Util::TabOutOfRangeException);
  EXPECT_THROW(block->Delete(kWeights, 0, 2), CorvantaSDK::Util::TabOutOfRangeException);
}

TEST_F(ParamBlockTest, InsertAndDeleteKeepOrderAndUndo) {
  for (int i = 0; i < 4; ++i) block->Append(kWeights, static_cast<float>(i));
  const auto values = [&] {
    std::vector<float> v;
    for (int i = 0; i < block->Count(kWeights); ++i) v.push_back(block->GetFloat(kWeights, 0, i));
    return v;
  };
  theHold.Begin();
  block->SetValue(kWeights, 0, 9.0f, 1);
  block->Insert(kWeights, 1, 5.0f);
  block->Delete(kWeights, 3, 2);
  theHold.Accept(L"edit");
  const std::vector<float> edited{0, 5, 9};
  EXPECT_EQ(values(), edited);
  theHold.Undo();
  EXPECT_EQ(values(), (std::vector<float>{0, 1, 2, 3}));
  theHold.Redo();
  EXPECT_EQ(values(), edited);
}

TEST_F(ParamBlockTest, DeletedNodesLeaveEmptyEntriesAndComeBack) {
  INode* a = MakeNode(L"a");
  INode* b = MakeNode(L"b");
  block->Append(kList, a);
  block->Append(kList, b);
  block->SetValue(kNode, 0, a);
  block->SetValue(kWatched, 0, a);
  theHold.Begin();
  GetScene().DeleteNodes({a, nullptr, a});
  theHold.Accept(L"delete");
  EXPECT_EQ(block->Count(kList), 2);
  EXPECT_EQ(block->GetINode(kList, 0, 0), nullptr);
  EXPECT_EQ(block->GetINode(kList, 0, 1), b);
  EXPECT_EQ(block->GetINode(kNode), nullptr);
  EXPECT_EQ(block->GetINode(kWatched), nullptr);
  theHold.Undo();
  EXPECT_EQ(block->GetINode(kList, 0, 0), a);
  EXPECT_EQ(block->GetINode(kNode), a);
  EXPECT_EQ(block->GetINode(kWatched), a);
}

// A build fills a list while undo is suspended; its undo must leave no entry all the same.
TEST_F(ParamBlockTest, UndoOfASuspendedFillLeavesNothing) {
  theHold.Begin();
  block->RecordTab(kList);
  theHold.Suspend();
  for (int i = 0; i < 3; ++i) {
    INode* made = nullptr;
    {
      const HoldResume resume;
      made = MakeNode(L"made");
    }
    block->Append(kList, made);
  }
  theHold.Resume();
  theHold.Accept(L"build");
  EXPECT_EQ(block->Count(kList), 3);
  theHold.Undo();
  EXPECT_EQ(block->Count(kList), 0);
  EXPECT_EQ(GetScene().Nodes().size(), 1u);
  theHold.Redo();
  ASSERT_EQ(block->Count(kList), 3);
  for (int i = 0; i < 3; ++i) EXPECT_NE(block->GetINode(kList, 0, i), nullptr);
}

TEST_F(ParamBlockTest, OwnTargetIsRefused) {
  EXPECT_FALSE(block->SetValue(kNode, 0, node)) << "the node depends on the block";
  EXPECT_TRUE(block->SetValue(kWatched, 0, node)) << "a watched node is no dependence";
}

TEST_F(ParamBlockTest, LastChangedAndNotifications) {
  const Ref<Listener> listener(new Listener);
  listener->ReplaceReference(0, block);
  std::vector<ParamID> told;
  listener->onMessage = [&](ReferenceTarget*) { told.push_back(block->LastChanged().first); };
  block->SetValue(kCount, 0, 1);
  block->EnableNotifications(false);
  block->SetValue(kAmount, 0, 1.0f);
  block->EnableNotifications(true);
  block->SetValue(kText, 0, L"x");
  EXPECT_EQ(told, (std::vector<ParamID>{kCount, kText}));
  EXPECT_FLOAT_EQ(block->GetFloat(kAmount), 1);
}

TEST_F(ParamBlockTest, CloneSharesNothingAndPatchesWeakLinks) {
  INode* other = MakeNode(L"other");
  block->SetValue(kText, 0, L"own text");
  block->Append(kWeights, 4.0f);
  block->SetValue(kWatched, 0, other);
  const std::vector<INode*> clones = GetScene().CloneNodes({node, other});
  ASSERT_EQ(clones.size(), 2u);
  ParamBlock2* copy = clones[0]->GetBaseObject()->GetParamBlock();
  ASSERT_NE(copy, block);
  EXPECT_EQ(copy->GetStr(kText), L"own text");
  EXPECT_EQ(copy->GetINode(kWatched), clones[1]);
  copy->SetValue(kText, 0, L"changed");
  copy->SetValue(kWeights, 0, 8.0f, 0);
  EXPECT_EQ(block->GetStr(kText), L"own text");
  EXPECT_FLOAT_EQ(block->GetFloat(kWeights, 0, 0), 4);
}

// Random writes and tab edits in random steps: undo everything, redo everything.
TEST_F(ParamBlockTest, RandomEditsUndoAndRedo) {
  std::mt19937 rng(5);
  INode* nodes[] = {MakeNode(L"n0"), MakeNode(L"n1"), MakeNode(L"n2")};
  const auto print = [&] {
    std::wstring s;
    for (int i = 0; i < block->NumParams(); ++i) {
      const ParamRow& row = block->GetDesc().rows[static_cast<size_t>(i)];
      for (int k = 0; k < block->Count(row.id); ++k) {
        const FPValue v = block->GetValue(row.id, 0, k);
        s += Format(L"%d.%d=", row.id, k) + v.ToWStr();
        s += std::to_wstring(v.ToFloat()) + std::to_wstring(reinterpret_cast<uintptr_t>(v.ToTarget())) + L";";
      }
    }
    return s;
  };
  std::vector<std::wstring> states{print()};
  for (int step = 0; step < 200; ++step) {
    theHold.Begin();
    for (int k = 0; k < 6; ++k) {
      const int n = block->Count(kWeights);
      switch (rng() % 8) {
        case 0:
          block->SetValue(kAmount, 0, static_cast<float>(rng() % 100));
          break;
        case 1:
          block->SetValue(kText, 0, std::to_wstring(rng()));
          break;
        case 2:
          block->SetValue(kNode, 0, nodes[rng() % 3]);
          break;
        case 3:
          block->Append(kWeights, static_cast<float>(rng() % 50));
          break;
        case 4:
          if (n) block->Delete(kWeights, static_cast<int>(rng()) % n < 0 ? 0 : static_cast<int>(rng() % unsigned(n)));
          break;
        case 5:
          block->Insert(kWeights, static_cast<int>(rng() % unsigned(n + 1)), 1.25f);
          break;
        case 6:
          if (n) block->SetValue(kWeights, 0, static_cast<float>(rng() % 50), static_cast<int>(rng() % unsigned(n)));
          break;
        default:
          block->Append(kList, nodes[rng() % 3]);
      }
    }
    if (rng() % 5 == 0)
      theHold.Cancel();
    else
      theHold.Accept(L"edit"), states.push_back(print());
    ASSERT_EQ(print(), states.back());
  }
  for (size_t i = states.size() - 1; i-- > 0;) {
    ASSERT_TRUE(theHold.Undo());
    ASSERT_EQ(print(), states[i]);
  }
  for (size_t i = 1; i < states.size(); ++i) {
    ASSERT_TRUE(theHold.Redo());
    ASSERT_EQ(print(), states[i]);
  }
}

}  // namespace
}  // namespace corvanta
