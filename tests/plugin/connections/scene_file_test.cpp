// SPDX-License-Identifier: MIT
// Wiring through a scene file, and what scripts do with it.
#include "host/io/scene_file.h"
#include "host/anim/curve_control.h"
#include "host/script/bridge_host.h"
#include "host/script/bridge_object.h"
#include "host/script/interpreter.h"
#include "host/script/text.h"
#include "plugin/connections/connect.h"
#include "plugin/connections/float_connection.h"
#include "plugin/connections/float_operation.h"
#include "plugin/connections/twist_poses.h"
#include "plugin/connections/wires_test.h"

namespace tavrilon {
namespace {

using namespace corvanta;
using namespace source_attrib;

class WiresFileTest : public WiresTest {
 protected:
  void SetUp() override {
    WiresTest::SetUp();
    slider = AddNode(L"slider");
    gauge = AddNode(L"gauge");
    source = &AddSource(slider);
    consumer = &AddSource(gauge);
  }
  static void SaveAndLoad() {
    std::vector<uint8_t> first, second;
    ASSERT_EQ(SaveSceneToBytes(GetScene(), &first), L"");
    ASSERT_EQ(LoadSceneFromBytes(first), L"");
    ASSERT_EQ(SaveSceneToBytes(GetScene(), &second), L"");
    EXPECT_TRUE(first == second);
  }
  static ParamBlock2& Loaded(const wchar_t* name) { return SourceOf(GetScene().GetINodeByName(name)); }
  INode* slider = nullptr;
  INode* gauge = nullptr;
  ParamBlock2* source = nullptr;
  ParamBlock2* consumer = nullptr;
};

TEST_F(WiresFileTest, TargetsInAttributesComeBack) {
  source->Append(kList, 1.0f);
  source->Append(kList, 7.0f);
  ConnectionSpec spec;
  spec.transform = float_connection::kOffsetWeight;
  spec.twoWay = true;
  spec.offset = 1, spec.weight = 2, spec.sourceTab = 1;
  ASSERT_TRUE(ConnectFloat(*consumer, kValue, *source, kList, spec));
  ASSERT_TRUE(ConnectFloat(*consumer, kOther, *consumer, kValue));
  static_cast<FloatConnection*>(consumer->GetController(kOther))->SetLocked(true);
  SaveAndLoad();
  ParamBlock2 &read = Loaded(L"gauge"), &from = Loaded(L"slider");
  EXPECT_FLOAT_EQ(read.GetFloat(kValue), 15);
  EXPECT_FLOAT_EQ(read.GetFloat(kOther), 15);
  read.SetValue(kValue, 0, 21.0f);
  EXPECT_FLOAT_EQ(from.GetFloat(kList, 0, 1), 10);
  EXPECT_TRUE(static_cast<FloatConnection*>(read.GetController(kOther))->GetLocked());
}

TEST_F(WiresFileTest, AConstantAndATargetThatIsGone) {
  ASSERT_TRUE(ConnectFloat(*consumer, kValue, *source, kValue));
  ASSERT_TRUE(ConnectFloat(*consumer, kOther, *source, kOther));
  static_cast<FloatConnection*>(consumer->GetController(kOther))->SetConstant(2.5f);
  GetScene().DeleteNode(slider);
  SaveAndLoad();
  EXPECT_EQ(Loaded(L"gauge").GetFloat(kValue), 0);
  EXPECT_EQ(Loaded(L"gauge").GetFloat(kOther), 2.5f);
}

// The curve transform, with the curve itself.

TEST_F(WiresFileTest, CurveMapsReadsAndWrites) {
  ConnectionSpec spec;
  spec.transform = float_connection::kCurve;
  spec.twoWay = true;
  ASSERT_TRUE(ConnectFloat(*consumer, kValue, *source, kValue, spec));
  auto* made = static_cast<FloatConnection*>(consumer->GetController(kValue));
  source->SetValue(kValue, 0, 0.5f);
  EXPECT_EQ(consumer->GetFloat(kValue), 0.5f) << "no curve: x";
  const Ref<CurveControl> curves(new CurveControl);
  ASSERT_TRUE(made->GetParamBlock()->SetValue(float_connection::kCurveCtrl, 0, curves.Get()));
  EXPECT_EQ(consumer->GetFloat(kValue), 0.5f) << "no curves: x";
  curves->AddCurve({{{0, 0, 0, 0}, {1, 10, 0, 3}}});
  EXPECT_FLOAT_EQ(consumer->GetFloat(kValue), 5);
  source->SetValue(kValue, 0, 2.0f);
  EXPECT_FLOAT_EQ(consumer->GetFloat(kValue), 13);
  made->GetParamBlock()->SetValue(float_connection::kClamp, 0, true);
  EXPECT_FLOAT_EQ(consumer->GetFloat(kValue), 10);
  for (const float y : {0.0f, 0.1f, 2.0f, 9.9f, 10.0f}) {
    consumer->SetValue(kValue, 0, y);
    // Where the curve is flat, at its ends, its x says little: the value is what counts.
    EXPECT_NEAR(consumer->GetFloat(kValue), y, 1e-5f);
  }
  consumer->SetValue(kValue, 0, 11.0f);
  EXPECT_NEAR(consumer->GetFloat(kValue), 10, 1e-5f) << "out of reach: dropped";
  curves->SetPoint(0, {0.5f, 20, 0, 0});
  const float before = source->GetFloat(kValue);
  consumer->SetValue(kValue, 0, 5.0f);
  EXPECT_EQ(source->GetFloat(kValue), before) << "up and down: no way back";
  const float shown = consumer->GetFloat(kValue);
  SaveAndLoad();
  EXPECT_EQ(Loaded(L"gauge").GetFloat(kValue), shown);
}

// Scripts.

class WiresScriptTest : public WiresFileTest {
 protected:
  void SetUp() override {
    WiresFileTest::SetUp();
    interpreter.Define(L"from", script::WrapTarget(source->GetOwner()));
    interpreter.Define(L"dest", script::WrapTarget(consumer->GetOwner()));
  }
  /// What the script's value prints as, or the message of its error.
  std::string Run(const wchar_t* text) {
    const script::RunResult result = interpreter.Run(text, L"test");
    return ToUtf8(result.ok ? script::PlainText(result.value) : result.message);
  }
  script::SceneHost host{true};
  script::Interpreter interpreter{host};
};

TEST_F(WiresScriptTest, TargetsAreSetAndTold) {
  source->SetValue(kValue, 0, 4.0f);
  const std::pair<const wchar_t*, const char*> kSteps[] = {
      {L"c = FloatConnection(); c.SetTarget \"amount\" from", "true"},
      {L"c.value", "4.0"},
      {L"c.transform = 1; c.offset = 0.5; c.weight = 200; c.value", "8.5"},
      {L"c.GetTarget true", "undefined"},
      {L"c.GetTarget() != undefined", "true"},
      {L"(getSubAnim (getSubAnim dest 1) 1).controller = c; $gauge.amount", "8.5"},
      {L"c.two_way = true; $gauge.amount = 10.5; $slider.amount", "5.0"},
      {L"c.SetTarget 3.5; c.GetTarget()", "3.5"},
      {L"c.SetTarget undefined; c.value", "0.5"},
  };
  for (const auto& [text, expected] : kSteps) EXPECT_EQ(Run(text), expected) << ToUtf8(text);
}

TEST_F(WiresScriptTest, RefusalsSayWhy) {
  const std::pair<const wchar_t*, const char*> kSteps[] = {
      {L"c = FloatConnection(); c.SetTarget \"nothing\" $slider", "no such track"},
      {L"c.SetTarget \"place\" from", "another kind"},
      {L"c.SetTarget [1,2,3]", "another kind"},
      {L"f = FloatOperation(); f.ConnectTo \"z\" \"amount\" from", "no input \"z\""},
      {L"f.operationName = \"Sum\"", "no operation \"Sum\""},
      {L"t = TwistPosesFloat(); t.AddPose 10 \"x\"", "must be a number"},
  };
  for (const auto& [text, expected] : kSteps)
    EXPECT_NE(Run(text).find(expected), std::string::npos) << ToUtf8(text) << ": " << Run(text);
}

TEST_F(WiresScriptTest, OperationsPosesAndCurves) {
  source->SetValue(kValue, 0, 4.0f);
  const std::pair<const wchar_t*, const char*> kSteps[] = {
      {L"f = FloatOperation(); f.operationName = \"multiply\"; f.b = 3; "
       L"f.ConnectTo \"a\" \"amount\" from; f.value",
       "12.0"},
      {L"e = FloatExposeTM(); e.node = $slider; e.component = 2; $slider.pos = [0,0,5]; e.value", "5.0"},
      {L"t = TwistPosesFloat(); t.node = $slider; t.AddPose 90 1.5", "1"},
      {L"t.AddPose -90 0.5; t.numPoses", "2"},
      {L"t.currentAngle", "0.0"},
      {L"t.value", "1.0"},
      {L"t.DeletePose 2; t.value", "0.5"},
      {L"w = FloatWave(); w.type = 2; w.value", "1.0"},
      {L"k = CurveControl(); k.AddCurve(); k.SetPoint 1 [0.5,2] tangents:[0,0]; k.GetValue 1 0.5", "2.0"},
  };
  for (const auto& [text, expected] : kSteps) EXPECT_EQ(Run(text), expected) << ToUtf8(text);
}

}  // namespace
}  // namespace tavrilon
