// SPDX-License-Identifier: MIT
#include "plugin/connections/float_connection.h"

#include <cmath>

#include "host/scene/scene.h"
#include "plugin/connections/connect.h"
#include "plugin/connections/wires_test.h"
#include "plugin/controllers/rotation_xyz.h"
#include "plugin/frame/guard.h"
#include "support/alloc_counter.h"

namespace tavrilon {
namespace {

using namespace corvanta;
using namespace float_connection;
using source_attrib::kOther;
using source_attrib::kValue;

// The transform by itself.

struct Mapping {
  const char* name;
  FloatTransform transform;
  float x, y;
};
FloatTransform Weighted(Transform kind, float offset, float weight) {
  FloatTransform f;
  f.kind = kind;
  f.offset = offset, f.weight = weight;
  return f;
}
FloatTransform Range(float inMin, float inMax, float outMin, float outMax, bool clamp) {
  FloatTransform f;
  f.kind = kRange;
  f.clamp = clamp;
  f.inputMin = inMin, f.inputMax = inMax, f.outputMin = outMin, f.outputMax = outMax;
  return f;
}
const Mapping kMappings[] = {
    {"direct", Weighted(kDirect, 2, 3), 7, 7},
    {"reserved", Weighted(static_cast<Transform>(4), 2, 3), 7, 7},
    {"offset and weight", Weighted(kOffsetWeight, 2, 3), 5, 17},
    {"middle of a range", Range(0, 10, 100, 200, false), 5, 150},
    {"beyond a range", Range(0, 10, 100, 200, false), 20, 300},
    {"clamped", Range(0, 10, 100, 200, true), 20, 200},
    {"backward range, clamped above", Range(10, 0, 100, 200, true), 12, 100},
    {"backward range, clamped below", Range(10, 0, 100, 200, true), -5, 200},
    {"backward range", Range(10, 0, 100, 200, true), 4, 160},
    {"empty range", Range(3, 3, 0, 1, false), 3.002f, 2},
    {"empty range, clamped", Range(3, 3, 5, 6, true), 99, 5},
};
TEST(FloatTransformTest, KnownMappings) {
  for (const Mapping& m : kMappings) {
    SCOPED_TRACE(m.name);
    // 3.002 - 3 keeps three digits of a float.
    EXPECT_NEAR(Transformed(m.transform, m.x), m.y, 1e-3f);
  }
}

TEST(FloatTransformTest, NoWayBackFromAWeightOfNothing) {
  float x = 9;
  EXPECT_FALSE(InverseTransformed(Weighted(kOffsetWeight, 2, 1e-7f), 5, x));
  EXPECT_EQ(x, 9);
}

// Two-way over every kind: what is written is what is read.
class FloatConnectionTest : public WiresTest {
 protected:
  void SetUp() override {
    WiresTest::SetUp();
    source = &AddSource(AddNode(L"slider"));
    made = new FloatConnection;
    ASSERT_TRUE(made->SetParamTarget(*source, kValue));
    block = made->GetParamBlock();
  }
  void TearDown() override {
    made = {};
    WiresTest::TearDown();
  }
  void Set(Param id, float value) { block->SetValue(id, 0, value); }

  ParamBlock2* source = nullptr;
  ParamBlock2* block = nullptr;
  Ref<FloatConnection> made;
};

TEST_F(FloatConnectionTest, ReadsBackWhatIsWritten) {
  std::mt19937 rng(5);
  std::uniform_real_distribution<float> any(-50, 50);
  block->SetValue(kTwoWay, 0, true);
  for (int i = 0; i < 500; ++i) {
    for (const Param id : {kOffset, kWeight, kInputMin, kInputMax, kOutputMin, kOutputMax}) Set(id, any(rng));
    const bool steep = std::abs(block->GetFloat(kWeight)) < 0.1f ||
                       std::abs(block->GetFloat(kInputMax) - block->GetFloat(kInputMin)) < 0.1f ||
                       std::abs(block->GetFloat(kOutputMax) - block->GetFloat(kOutputMin)) < 0.1f;
    if (steep) continue;
    for (int kind = 0; kind <= 4; ++kind) {
      SCOPED_TRACE(testing::Message() << i << " kind " << kind);
      block->SetValue(kTransform, 0, kind);
      const float y = any(rng);
      Write(*made, y);
      // Slopes of up to 1000 either way cost about five of the seven digits that a float has.
      ASSERT_NEAR(Read(*made), y, 2e-2f);
      const float more = any(rng);
      Write(*made, more, 0, CTRL_RELATIVE);
      ASSERT_NEAR(Read(*made), y + more, 4e-2f);
    }
  }
}

TEST_F(FloatConnectionTest, ClampedWriteStaysInTheInput) {
  block->SetValue(kTwoWay, 0, true);
  block->SetValue(kTransform, 0, static_cast<int>(kRange));
  block->SetValue(kClamp, 0, true);
  Write(*made, 150);
  EXPECT_FLOAT_EQ(source->GetFloat(kValue), 100);
  EXPECT_FLOAT_EQ(Read(*made), 100);
}

TEST_F(FloatConnectionTest, OneWayAndLockedDropWrites) {
  Write(*made, 5);
  EXPECT_EQ(source->GetFloat(kValue), 0);
  block->SetValue(kTwoWay, 0, true);
  made->SetLocked(true);
  Write(*made, 5);
  EXPECT_EQ(source->GetFloat(kValue), 0);
}

TEST_F(FloatConnectionTest, RelativeReadAddsToWhatStood) {
  source->SetValue(kValue, 0, 4.0f);
  float value = 10;
  Interval valid = FOREVER;
  made->GetValue(0, value, valid, CTRL_RELATIVE);
  EXPECT_FLOAT_EQ(value, 14);
}

TEST_F(FloatConnectionTest, WithoutATargetTheTransformOfNothing) {
  made->ClearTarget();
  block->SetValue(kTransform, 0, static_cast<int>(kOffsetWeight));
  Set(kOffset, 3);
  EXPECT_FLOAT_EQ(Read(*made), 3);
  EXPECT_EQ(made->TargetText(), L"Assigned to: None");
  ASSERT_TRUE(made->SetConstant(2.5f));
  EXPECT_FLOAT_EQ(Read(*made), 5.5f);
  EXPECT_EQ(made->TargetText(), L"Assigned to: Constant: 2.5");
  block->SetValue(kTwoWay, 0, true);
  Write(*made, 9);
  EXPECT_FLOAT_EQ(Read(*made), 9);
  ASSERT_TRUE(made->SetParamTarget(*source, kValue));
  EXPECT_EQ(made->TargetText(), L"Assigned to: SourceAttrib: amount");
}

TEST_F(FloatConnectionTest, FollowsNumbersOnly) {
  using namespace source_attrib;
  source->SetValue(source_attrib::kCount, 0, 3);
  source->SetValue(kFlag, 0, true);
  source->Append(kList, 1.0f);
  source->Append(kList, 8.0f);
  ASSERT_TRUE(made->SetParamTarget(*source, source_attrib::kCount));
  EXPECT_EQ(Read(*made), 3);
  ASSERT_TRUE(made->SetParamTarget(*source, kFlag));
  EXPECT_EQ(Read(*made), 1);
  ASSERT_TRUE(made->SetParamTarget(*source, kList, 1));
  EXPECT_EQ(Read(*made), 8);
  source->SetCount(kList, 1);
  EXPECT_EQ(Read(*made), 0) << "the entry is gone";
  EXPECT_FALSE(made->SetParamTarget(*source, kList, 1));
  EXPECT_FALSE(made->SetParamTarget(*source, kText));
  EXPECT_FALSE(made->SetParamTarget(*source, kPlace));
  EXPECT_FALSE(made->SetParamTarget(*source, 99));
}

TEST_F(FloatConnectionTest, FollowsATrackOfAController) {
  const Ref<RotationXYZ> rotation(new RotationXYZ);
  ASSERT_TRUE(made->SetSubAnimTarget(*rotation, 2));
  block->SetValue(kTwoWay, 0, true);
  Write(*made, 0.5f);
  EXPECT_FLOAT_EQ(rotation->GetTrackValues(0).z, 0.5f);
  EXPECT_EQ(made->TargetText(), L"Assigned to: Rotation XYZ: Z Rotation");
  EXPECT_FALSE(made->SetSubAnimTarget(*rotation, 3));
}

// Time.

TEST_F(FloatConnectionTest, TimeOffsetReadsLaterAndMovesValidity) {
  AnimateOn();
  source->SetValue(kValue, 0, 0.0f);
  source->SetValue(kValue, 6000, 60.0f);
  AnimateOff();
  block->SetValue(kUseTimeOffset, 0, true);
  Set(kTimeOffset, 0.5f);
  EXPECT_NEAR(Read(*made, 1000), Read(*source->GetController(kValue), 4000), 1e-5f);
  Interval valid = FOREVER;
  EXPECT_FLOAT_EQ(Read(*made, 9000, valid), 60);
  EXPECT_TRUE(valid.Contains(9000));
  valid = FOREVER;
  Read(*made, 1000, valid);
  EXPECT_TRUE(valid == Interval::Instant(1000));
  // Keys are seen where the value shows them.
  block->SetValue(kTwoWay, 0, true);
  ASSERT_EQ(made->NumKeys(), 2);
  EXPECT_EQ(made->GetKeyTime(1), 3000);
  EXPECT_TRUE(made->IsKeyAtTime(-3000));
  made->AddNewKey(1000);
  EXPECT_TRUE(source->GetController(kValue)->IsKeyAtTime(4000));
  block->SetValue(kTimeOffset, 0, std::nanf(""));
  EXPECT_TRUE(std::isfinite(Read(*made, 0)));
}

TEST_F(FloatConnectionTest, AnimatedTwoWayWriteMakesKeysInTheTarget) {
  EXPECT_EQ(made->NumKeys(), 0);
  made->AddNewKey(10);
  EXPECT_EQ(source->GetController(kValue), nullptr) << "one-way keeps its hands off";
  block->SetValue(kTwoWay, 0, true);
  source->SetValue(kValue, 0, 7.0f);
  made->AddNewKey(10);
  ASSERT_NE(source->GetController(kValue), nullptr);
  EXPECT_EQ(source->GetController(kValue)->NumKeys(), 1);
  EXPECT_FLOAT_EQ(source->GetFloat(kValue, 10), 7) << "the controller took the constant over";
  AnimateOn();
  Write(*made, 9, 200);
  AnimateOff();
  EXPECT_EQ(made->NumKeys(), 2);
  EXPECT_FLOAT_EQ(source->GetFloat(kValue, 200), 9);
  EXPECT_TRUE(made->IsAnimated());
  EXPECT_FALSE(made->IsKeyable());
  made->DeleteKeyAtTime(200);
  EXPECT_EQ(source->GetController(kValue)->NumKeys(), 1);
}

// Messages, loops, life.

ConnectionSpec Weights(float offset, float weight, bool twoWay) {
  ConnectionSpec spec;
  spec.transform = kOffsetWeight;
  spec.twoWay = twoWay;
  spec.offset = offset, spec.weight = weight;
  return spec;
}

class FloatWireTest : public WiresTest {
 protected:
  void SetUp() override {
    WiresTest::SetUp();
    slider = AddNode(L"slider");
    gauge = AddNode(L"gauge");
    source = &AddSource(slider);
    consumer = &AddSource(gauge);
    ASSERT_TRUE(ConnectFloat(*consumer, kValue, *source, kOther));
  }
  FloatConnection& Wire(ParamBlock2& block) const {
    return dynamic_cast<FloatConnection&>(*block.GetController(kValue));
  }
  INode* slider = nullptr;
  INode* gauge = nullptr;
  ParamBlock2* source = nullptr;
  ParamBlock2* consumer = nullptr;
};

TEST_F(FloatWireTest, RefusesWhatCannotBeWired) {
  EXPECT_FALSE(ConnectFloat(*consumer, source_attrib::kFixed, *source, kOther)) << "not animatable";
  EXPECT_FALSE(ConnectFloat(*consumer, 99, *source, kOther));
  EXPECT_FALSE(ConnectFloat(*consumer, kOther, *source, 99));
  EXPECT_EQ(consumer->GetController(kOther), nullptr);
  EXPECT_EQ(NewFloatConnection(*source, source_attrib::kText), nullptr);
}

TEST_F(FloatWireTest, WiresATrackOfAController) {
  const Ref<RotationXYZ> rotation(new RotationXYZ);
  ASSERT_TRUE(ConnectTrack(*rotation, 1, *source, kOther, Weights(1, 2, false)));
  source->SetValue(kOther, 0, 0.25f);
  EXPECT_FLOAT_EQ(rotation->GetTrackValues(0).y, 1.5f);
  EXPECT_FALSE(ConnectTrack(*rotation, 7, *source, kOther));
}

TEST_F(FloatWireTest, EvaluationAllocatesNothing) {
  source->SetValue(kOther, 0, 3.0f);
  const tests::AllocCounter counter;
  EXPECT_FLOAT_EQ(consumer->GetFloat(kValue, 5), 3);
  EXPECT_EQ(counter.Count(), 0u);
}

/// Counts the changes that it hears.
class Ear final : public ReferenceTarget {
 public:
  explicit Ear(ReferenceTarget* heard) { BindReference(0, heard); }
  SClass_ID SuperClassID() const override { return kReferenceTargetSuper; }
  Class_ID ClassID() const override { return {0x7E570002, 2}; }
  int NumRefs() const override { return 1; }
  ReferenceTarget* GetReference(int) const override { return target_; }
  RefResult NotifyRefChanged(const Interval&, ReferenceTarget*, PartID&, RefMessage message, bool) override {
    changes += message == REFMSG_CHANGE;
    return REF_SUCCEED;
  }
  int changes = 0;

 protected:
  void SetReference(int, ReferenceTarget* target) override { target_ = target; }

 private:
  ReferenceTarget* target_ = nullptr;
};

TEST_F(FloatWireTest, ChangesOfTheSourceReachTheConsumer) {
  const Ref<Ear> ear(new Ear(consumer));
  source->SetValue(kOther, 0, 3.0f);
  EXPECT_EQ(ear->changes, 1);
  Wire(*consumer).GetParamBlock()->SetValue(kTransform, 0, 1);
  EXPECT_EQ(ear->changes, 2);
}

TEST_F(FloatWireTest, ARingAnswersAndIsCounted) {
  ASSERT_TRUE(ConnectFloat(*source, kValue, *consumer, kValue, Weights(1, 1, true)));
  Wire(*consumer).SetParamTarget(*source, kValue);
  Wire(*consumer).GetParamBlock()->SetValue(kTwoWay, 0, true);
  const int before = GuardCount();
  EXPECT_TRUE(std::isfinite(consumer->GetFloat(kValue)));
  EXPECT_GT(GuardCount(), before);
  // Writes, key operations and messages of the ring end as well.
  consumer->SetValue(kValue, 0, 5.0f);
  Wire(*consumer).AddNewKey(10);
  EXPECT_EQ(Wire(*consumer).NumKeys(), 0);
  Wire(*source).GetParamBlock()->SetValue(kOffset, 0, 2.0f);
}

TEST_F(FloatWireTest, FallsToNothingWithItsSource) {
  source->SetValue(kOther, 0, 3.0f);
  ASSERT_FLOAT_EQ(consumer->GetFloat(kValue), 3);
  // No undo keeps the attribute, so the connection must let it go.
  slider->GetCustAttribContainer()->RemoveCustAttrib(0);
  EXPECT_FLOAT_EQ(consumer->GetFloat(kValue), 0);
  EXPECT_FALSE(Wire(*consumer).GetTrack().owner);
  consumer->SetValue(kValue, 0, 1.0f);
  Wire(*consumer).AddNewKey(0);
}

TEST_F(FloatWireTest, UndoBringsTheSourceBack) {
  source->SetValue(kOther, 0, 3.0f);
  theHold.Begin();
  slider->GetCustAttribContainer()->RemoveCustAttrib(0);
  theHold.Accept(L"Remove");
  consumer->GetFloat(kValue);
  ASSERT_TRUE(theHold.Undo());
  source->SetValue(kOther, 0, 4.0f);
  EXPECT_FLOAT_EQ(consumer->GetFloat(kValue), 4);
  ASSERT_TRUE(theHold.Redo());
  theHold.Flush();
  EXPECT_FLOAT_EQ(consumer->GetFloat(kValue), 0);
}

TEST_F(FloatWireTest, UndoOfWiringAndOfWrites) {
  source->SetValue(kOther, 0, 3.0f);
  const Ref<FloatConnection> first(&Wire(*consumer));
  theHold.Begin();
  ASSERT_TRUE(ConnectFloat(*consumer, kValue, *source, kValue, Weights(1, 1, true)));
  theHold.Accept(L"Wire");
  EXPECT_FLOAT_EQ(consumer->GetFloat(kValue), 1);
  theHold.Begin();
  consumer->SetValue(kValue, 0, 8.0f);
  theHold.Accept(L"Write");
  EXPECT_FLOAT_EQ(source->GetFloat(kValue), 7);
  theHold.Begin();
  Wire(*consumer).SetParamTarget(*source, kOther);
  theHold.Accept(L"Target");
  EXPECT_FLOAT_EQ(consumer->GetFloat(kValue), 4);
  theHold.Undo();
  EXPECT_FLOAT_EQ(consumer->GetFloat(kValue), 8);
  theHold.Undo();
  EXPECT_FLOAT_EQ(source->GetFloat(kValue), 0);
  EXPECT_FLOAT_EQ(consumer->GetFloat(kValue), 1);
  theHold.Undo();
  EXPECT_EQ(consumer->GetController(kValue), first.Get());
  for (int i = 0; i < 3; ++i) theHold.Redo();
  EXPECT_FLOAT_EQ(consumer->GetFloat(kValue), 4);
}

// A rig that is cloned whole is wired to itself; a consumer that is cloned alone stays on the slider.
TEST_F(FloatWireTest, ClonesFollowWhatWasClonedWithThem) {
  source->SetValue(kOther, 0, 3.0f);
  const std::vector<INode*> clones = GetScene().CloneNodes({gauge, slider});
  ParamBlock2 &newConsumer = SourceOf(clones[0]), &newSource = SourceOf(clones[1]);
  EXPECT_EQ(Wire(newConsumer).GetTrack().owner, &newSource);
  newSource.SetValue(kOther, 0, 8.0f);
  EXPECT_FLOAT_EQ(newConsumer.GetFloat(kValue), 8);
  EXPECT_FLOAT_EQ(consumer->GetFloat(kValue), 3);
  ParamBlock2& alone = SourceOf(GetScene().CloneNodes({gauge})[0]);
  EXPECT_EQ(Wire(alone).GetTrack().owner, source);
}

}  // namespace
}  // namespace tavrilon
