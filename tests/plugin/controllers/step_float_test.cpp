// SPDX-License-Identifier: MIT
#include "plugin/controllers/step_float.h"

#include "plugin/controllers/dummy_controls.h"
#include "plugin/controllers/static_controls.h"
#include "plugin/frame/rig_nodes_test.h"

namespace tavrilon {
namespace {

using namespace corvanta;

class StepFloatTest : public RigNodesTest {
 protected:
  void SetUp() override {
    RigNodesTest::SetUp();
    step = new StepFloat;
    AnimateOn();
    Write(0, 1);
    Write(10, 5);
    Write(30, 9);
    AnimateOff();
  }
  void TearDown() override {
    step = {};
    RigNodesTest::TearDown();
  }
  void Write(TimeValue t, float value) { step->SetValue(t, value, true, CTRL_ABSOLUTE); }
  float At(TimeValue t, Interval& valid) {
    float value = 0;
    step->GetValue(t, value, valid, CTRL_ABSOLUTE);
    return value;
  }
  Ref<StepFloat> step;
};

struct Held {
  TimeValue t;
  float value;
  Interval valid;
};
TEST_F(StepFloatTest, HoldsTheLastKey) {
  const Held kHeld[] = {
      {0, 1, {0, 9}},
      {5, 1, {0, 9}},
      {9, 1, {0, 9}},
      {10, 5, {10, 29}},
      {29, 5, {10, 29}},
      {30, 9, {30, kTimeMax}},
      {99, 9, {30, kTimeMax}},
      // Before the first key: its value, until just before the second.
      {-7, 1, {kTimeMin, 9}},
  };
  for (const Held& held : kHeld) {
    Interval valid = FOREVER;
    EXPECT_FLOAT_EQ(At(held.t, valid), held.value) << held.t;
    EXPECT_TRUE(valid == held.valid) << held.t << ": " << valid.start << ".." << valid.end;
  }
  Interval narrow{3, 5};
  At(4, narrow);
  EXPECT_TRUE(narrow == (Interval{3, 5}));
}

TEST_F(StepFloatTest, KeysAreTheWrappedOnes) {
  EXPECT_EQ(step->NumKeys(), 3);
  step->DeleteKeyAtTime(10);
  EXPECT_EQ(step->GetWrapped()->NumKeys(), 2);
  Interval valid = FOREVER;
  EXPECT_FLOAT_EQ(At(20, valid), 1);
}

TEST_F(StepFloatTest, OneKeyOrNoneHoldsForEver) {
  step->DeleteKeyAtTime(10);
  step->DeleteKeyAtTime(30);
  Interval valid = FOREVER;
  EXPECT_FLOAT_EQ(At(50, valid), 1);
  EXPECT_TRUE(valid == FOREVER);
  auto* constant = new StaticFloat;
  constant->Set(4);
  ASSERT_TRUE(step->AssignController(constant, 0));
  EXPECT_FLOAT_EQ(At(50, valid), 4);
  EXPECT_TRUE(valid == FOREVER);
  ASSERT_TRUE(step->AssignController(nullptr, 0));
  float untouched = 3;
  step->GetValue(0, untouched, valid, CTRL_ABSOLUTE);
  EXPECT_EQ(untouched, 3);
}

// The range 0..30 rises by 8 a cycle.
TEST_F(StepFloatTest, RelativeRepeatClimbs) {
  step->SetORT(ORT::RelativeRepeat, true);
  step->SetORT(ORT::RelativeRepeat, false);
  const std::pair<TimeValue, float> kSamples[] = {{31, 9}, {40, 13}, {59, 13}, {60, 17}, {71, 21}, {-1, -3}, {-21, -7}};
  for (const auto& [t, value] : kSamples) {
    Interval valid = FOREVER;
    EXPECT_FLOAT_EQ(At(t, valid), value) << t;
    EXPECT_TRUE(valid == Interval::Instant(t));
  }
  step->SetORT(ORT::Cycle, true);
  Interval valid = FOREVER;
  EXPECT_FLOAT_EQ(At(40, valid), 9);
}

TEST_F(StepFloatTest, RelativeWriteAddsToWhatIsShown) {
  AnimateOn();
  float two = 2;
  step->SetValue(10, two, true, CTRL_RELATIVE);
  AnimateOff();
  Interval valid = FOREVER;
  EXPECT_FLOAT_EQ(At(15, valid), 7);
}

TEST(DummyFloat, ShowsWithAnOffset) {
  const Ref<StaticFloat> real(new StaticFloat);
  const Ref<DummyFloat> dummy(new DummyFloat);
  dummy->Show(real.Get(), 2);
  float five = 5, read = 0;
  dummy->SetValue(0, five, true, CTRL_ABSOLUTE);
  EXPECT_EQ(real->Get(), 3);
  Interval valid = FOREVER;
  dummy->GetValue(0, read, valid, CTRL_ABSOLUTE);
  EXPECT_EQ(read, 5);
  float one = 1;
  dummy->SetValue(0, one, true, CTRL_RELATIVE);
  EXPECT_EQ(real->Get(), 4);
  EXPECT_FALSE(real->HasDependents());
}

TEST(DummyFloat, OutlivesWhatItShows) {
  const Ref<DummyFloat> dummy(new DummyFloat);
  {
    const Ref<StaticFloat> real(new StaticFloat);
    dummy->Show(real.Get(), 2);
  }
  EXPECT_EQ(dummy->GetWrapped(), nullptr);
  float read = 0;
  Interval valid = FOREVER;
  dummy->GetValue(0, read, valid, CTRL_ABSOLUTE);
  EXPECT_EQ(read, 2);
}

TEST(DummyRotation, MultipliesOrReplaces) {
  const Quat q = QuatFromAngAxis({{0, 0, 1}, 1});
  DummyRotation dummy;
  dummy.Show(q, true);
  const Matrix3 parent = TransMatrix({1, 2, 3});
  Matrix3 m = parent;
  Interval valid = FOREVER;
  dummy.GetValue(0, m, valid, CTRL_RELATIVE);
  EXPECT_TRUE(m == MakeMatrix(q) * parent);
  dummy.Show(q, false);
  dummy.GetValue(0, m, valid, CTRL_RELATIVE);
  EXPECT_TRUE(m == MakeMatrix(q));
  AngAxis turn{{1, 0, 0}, 0.5f};
  dummy.SetValue(0, turn, true, CTRL_RELATIVE);
  Quat read;
  dummy.GetValue(0, read, valid, CTRL_ABSOLUTE);
  EXPECT_TRUE(read == q * QuatFromAngAxis(turn));
}

}  // namespace
}  // namespace tavrilon
