// SPDX-License-Identifier: MIT
// Scripts on scenes: the files of scene/, and the doors by which the program runs scripts.
#include "host/core/published.h"
#include "host/core/tab.h"
#include "host/scene/core_interface.h"
#include "host/script/bridge_host.h"
#include "host/script/execute.h"
#include "host/script/macro_dir.h"
#include "host/script/primitives.h"
#include "host/script/script_file_test.h"
#include "support/test_objects.h"

namespace corvanta::script {
namespace {

using testing_objects::TestBlockDesc;

/// A published interface that uses every way of passing a value.
class TestInterface final : public FPInterface {
 public:
  static const FPInterfaceDesc& Table() {
    static const FPInterfaceDesc desc(
        {0x7E57, 1}, L"probe",
        {{1, L"Twice", FPType::Int, {{L"number", FPType::Int}}},
         {2, L"Item", FPType::Index, {{L"at", FPType::Index}}},
         {3,
          L"Place",
          FPType::String,
          {{L"name", FPType::String}, {L"side", FPType::Int, FPValue(7)}, {L"index", FPType::Int, FPValue(8)}}},
         {4, L"Kind", FPType::Enum, {{L"kind", FPType::Enum, std::nullopt, 0}}, 0},
         {5, L"Turn", FPType::Angle, {{L"angle", FPType::Angle}}},
         {6, L"Names", FPType::StringTab, {{L"nodes", FPType::NodeTab}}},
         {7, L"Refuse", FPType::Void},
         {8, L"Throw", FPType::Void},
         {9, L"Missing", FPType::Void},
         {10, L"Bits", FPType::BitArray, {{L"bits", FPType::BitArray}}},
         {11, L"Echo", FPType::Any, {{L"value", FPType::Any}}},
         {12, L"Now", FPType::Int}},
        {{20, 21, L"level", FPType::Percent}, {22, -1, L"fixed", FPType::Bool}},
        {{0, {{L"Corner", 0}, {L"Bezier", 1}, {L"Smooth", 2}}}});
    return desc;
  }
  const FPInterfaceDesc& GetDesc() const override { return Table(); }
  FPStatus Invoke(int id, TimeValue, FPValue& result, std::span<const FPValue> args) override {
    switch (id) {
      case 1:
        result = args[0].ToInt() * 2;
        break;
      case 2:
        result = args[0].ToInt();
        lastIndex = args[0].ToInt();
        break;
      case 3:
        result = Format(L"%s %d %d", args[0].ToWStr().c_str(), args[1].ToInt(), args[2].ToInt());
        break;
      case 4:
        result = args[0].ToInt();
        break;
      case 5:
        result = args[0].ToFloat();
        lastAngle = args[0].ToFloat();
        break;
      case 6:
        result = Names(*args[0].As<FPValue::Tab>());
        break;
      case 7:
        result = WStr(L"not today");
        return FPStatus::Failed;
      case 8:
        FPArg(args, 3);
        break;
      case 10:
      case 11:
        result = args[0];
        break;
      case 12:
        result = GetCOREInterface()->GetTime();
        break;
      case 20:
        result = level;
        break;
      case 21:
        level = args[0].ToFloat();
        break;
      case 22:
        result = true;
        break;
      default:
        return FPStatus::NoSuchFunction;
    }
    return FPStatus::OK;
  }
  float level = 0.25f, lastAngle = 0;
  int lastIndex = -1;

 private:
  static FPValue Names(const FPValue::Tab& nodes) {
    FPValue::Tab names;
    for (const FPValue& node : nodes) names.emplace_back(node.ToNode()->GetName());
    return names;
  }
};

/// The test object with an interface of its own.
class Probe final : public HelperObject {
 public:
  static constexpr Class_ID kId{0x7E570001, 40};
  explicit Probe(bool loading) {
    if (!loading) BindReference(0, new ParamBlock2(TestBlockDesc()));
  }
  Class_ID ClassID() const override { return kId; }
  WStr GetClassName() const override { return L"Test Probe"; }
  int NumRefs() const override { return 1; }
  ReferenceTarget* GetReference(int i) const override { return i == 0 ? block_ : nullptr; }
  int NumSubs() const override { return 1; }
  Animatable* SubAnim(int) override { return block_; }
  WStr SubAnimName(int) override { return L"The Parameters"; }
  int NumInterfaces() const override { return 1; }
  FPInterface* GetInterfaceAt(int) override { return &published; }
  TestInterface published;

 protected:
  void SetReference(int, ReferenceTarget* target) override { block_ = static_cast<ParamBlock2*>(target); }

 private:
  ParamBlock2* block_ = nullptr;
};

const ClassDesc kProbeDesc{
    L"Test Probe", L"TestProbe", kHelperSuper, Probe::kId, L"", true, [](bool loading) -> ReferenceTarget* {
      return new Probe(loading);
    }};

class ScriptScene : public testing_objects::SceneTest {
 protected:
  void SetUp() override {
    SceneTest::SetUp();
    ClassDirectory::Get().Register(&kProbeDesc);
    SetScriptListener([this](std::wstring_view text) { listener += text; });
    GetCOREInterface()->SetTime(0);
  }
  void TearDown() override {
    SetScriptListener(nullptr);
    SetScriptMessageBox(nullptr);
    SceneTest::TearDown();
  }
  WStr listener;
};

TEST_F(ScriptScene, FilesPrintWhatTheirLinesSay) {
  TestInterface core;
  RegisterCoreInterface(&core);
  const int count = RunScriptTests(TAVRILON_SOURCE_DIR "/tests/host/script/scene", [&](const WStr& text, WStr& output) {
    ReplaceScene(std::make_unique<Scene>());
    GetCOREInterface()->SetTime(0);
    core.level = 0.25f;
    listener.clear();
    SceneHost host(true);
    Interpreter vm(host);
    RunResult result = vm.Run(text, L"test");
    result.value = Value();
    output = listener;
    return result;
  });
  UnregisterCoreInterface(&core);
  EXPECT_GE(count, 4);
}

TEST_F(ScriptScene, PublishedFunctionsGetZeroBasedIndicesAndRadians) {
  TestInterface core;
  RegisterCoreInterface(&core);
  EXPECT_TRUE(ExecuteCorvantaScriptScript(L"probe.Item 1; probe.Turn 180; probe.level = 50", L"test"));
  UnregisterCoreInterface(&core);
  EXPECT_EQ(core.lastIndex, 0);
  EXPECT_FLOAT_EQ(core.lastAngle, kPi);
  EXPECT_FLOAT_EQ(core.level, 0.5f);
}

TEST_F(ScriptScene, ResultsComeBackAsValues) {
  FPValue result;
  EXPECT_TRUE(ExecuteCorvantaScriptScript(L"\"42\"", L"test", true, &result));
  EXPECT_EQ(result.ToWStr(), L"42");
  EXPECT_FALSE(result.As<int>());
  EXPECT_TRUE(ExecuteCorvantaScriptScript(L"2 + 3", L"test", true, &result));
  EXPECT_EQ(result.ToInt(), 5);
  EXPECT_TRUE(ExecuteCorvantaScriptScript(L"Point name:\"p\"", L"test", true, &result));
  EXPECT_EQ(result.ToNode(), GetScene().GetINodeByName(L"p"));
  EXPECT_TRUE(ExecuteCorvantaScriptScript(L"#(1, \"a\")", L"test", true, &result));
  ASSERT_TRUE(result.As<FPValue::Tab>());
  EXPECT_EQ((*result.As<FPValue::Tab>())[1].ToWStr(), L"a");
  EXPECT_TRUE(ExecuteCorvantaScriptScript(L"fn f = 1; f", L"test", true, &result));
  EXPECT_TRUE(result.IsVoid());
}

TEST_F(ScriptScene, ErrorsAreQuietUnlessLogged) {
  FPValue result(3);
  EXPECT_FALSE(ExecuteCorvantaScriptScript(L"nothing_here", L"panel", true, &result));
  EXPECT_TRUE(result.IsVoid());
  EXPECT_EQ(listener, L"");
  EXPECT_FALSE(ExecuteCorvantaScriptScript(L"nothing_here", L"panel", true, nullptr, true));
  EXPECT_EQ(listener, L"panel:1:1: unknown name `nothing_here`\nnothing_here\n^\n");
}

TEST_F(ScriptScene, MessageBoxesAreLinesInQuietRuns) {
  WStr shown;
  SetScriptMessageBox([&](const WStr& text, const WStr& title) { shown = title + L"|" + text; });
  EXPECT_TRUE(ExecuteCorvantaScriptScript(L"messagebox \"a\" title:\"t\"", L"test", true));
  EXPECT_EQ(listener, L"t: a\n");
  EXPECT_EQ(shown, L"");
  EXPECT_TRUE(ExecuteCorvantaScriptScript(L"messagebox \"a\" title:\"t\"", L"test", false));
  EXPECT_EQ(shown, L"t|a");
}

TEST_F(ScriptScene, PrimitivesCheckTheirArguments) {
  RegisterScriptPrimitive(L"MakeChain", [](const PrimitiveArgs& args) -> FPValue {
    args.RequireCount(3);
    const INode* start = args.Node(0, L"Start Joint");
    const INode* end = args.Node(1, L"End Joint");
    return start->GetName() + end->GetName() + (args.Bool(2, L" (Bones Controls)") ? L"!" : L"");
  });
  struct Row {
    const wchar_t *text, *message;
  };
  const Row rows[] = {
      {L"makechain 1", L"MakeChain takes 3 arguments, got 1"},
      {L"MakeChain 1 2 true", L"Expected a Node for the first argument, in function MakeChain"},
      {L"MakeChain (Point name:\"a\") \"b\" true", L"Expected a Node for the second argument, in function MakeChain"},
      {L"MakeChain $missing $a true", L"Expected a valid Node for Start Joint, in function MakeChain"},
      {L"a = Point name:\"a\"; MakeChain a a 1",
       L"Expected a Bool for the third argument (Bones Controls), in function MakeChain"},
      {L"MakeChain = 1",
       L"`makechain` is built in and cannot be changed; `local makechain` makes a variable of that name"},
  };
  for (const Row& row : rows) EXPECT_EQ(ToUtf8(RunScript(row.text, L"test").message), ToUtf8(row.message));
  EXPECT_EQ(RunScript(L"MakeChain (Point name:\"a\") (Point name:\"b\") true", L"test").text, L"ab!");
  UnregisterScriptPrimitive(L"MakeChain");
  EXPECT_FALSE(RunScript(L"MakeChain 1 2 true", L"test").ok);
}

TEST_F(ScriptScene, MacrosAreDeclaredReplacedAndRun) {
  EXPECT_TRUE(
      RunScript(L"macroScript Hello category:\"Test Tools\" toolTip:\"t\" (on execute do print \"one\")", L"a.cvs").ok);
  const int id = GetMacroScriptDir().Find(L"test tools", L"hello")->id;
  EXPECT_TRUE(
      RunScript(L"macroScript Hello category:\"Test Tools\" (print \"two\"; made = Point name:\"m\")", L"b.cvs").ok);
  EXPECT_EQ(GetMacroScriptDir().Find(L"Test Tools", L"Hello")->id, id);
  EXPECT_EQ(GetMacroScriptDir().Find(L"Test Tools", L"Hello")->sourcePath, L"b.cvs");
  EXPECT_TRUE(RunScript(L"macros.run \"Test Tools\" \"Hello\"", L"test").ok);
  EXPECT_EQ(listener, L"two\n");
  EXPECT_TRUE(GetScene().GetINodeByName(L"m"));
  EXPECT_EQ(RunScript(L"macros.run \"Test Tools\" \"Nobody\"", L"test").message,
            L"there is no macro \"Nobody\" in the category \"Test Tools\"");
}

TEST_F(ScriptScene, HandlesOfDeletedNodesAreRefusedNotFollowed) {
  const ScriptOutcome outcome = RunScript(L"n = Point name:\"gone\"; delete n; n.pos", L"test");
  EXPECT_EQ(outcome.message, L"the node `gone` is deleted");
  EXPECT_EQ(RunScript(L"n = Point(); resetScene(); isValidNode n", L"test").text, L"false");
  EXPECT_FALSE(RunScript(L"n = Point(); c = n.controller; resetScene(); n.name", L"test").ok);
}

}  // namespace
}  // namespace corvanta::script
