// SPDX-License-Identifier: MIT
// The language against a host that only remembers: contexts, host names, texts that other parts of the program
// write, and the session.
#include <gtest/gtest.h>

#include "host/script/fake_host_test.h"

namespace corvanta::script {
namespace {

// A host function that records its name, arguments and keywords.
class Recorder final : public Callable {
 public:
  Recorder(FakeHost& host, WStr name, Value result = {})
      : host_(host), name_(std::move(name)), result_(std::move(result)) {}
  const WStr& Name() const override { return name_; }
  Value Call(const CallArgs& args) override;

 private:
  FakeHost& host_;
  WStr name_;
  Value result_;
};

}  // namespace
}  // namespace corvanta::script

#include "host/script/call_args.h"

namespace corvanta::script {
namespace {

Value Recorder::Call(const CallArgs& args) {
  host_.log += name_ + L"(";
  for (size_t i = 0; i < args.Count(); ++i) host_.log += (i ? L" " : L"") + QuotedText(args[i]);
  for (size_t i = 0; i < args.Keywords().size(); ++i)
    host_.log += L" " + args.Keywords()[i] + L":" + QuotedText(args.KeywordValue(i));
  host_.log += L") ";
  return result_;
}

Value MakeObject(FakeHost& host, const wchar_t* name, std::initializer_list<const wchar_t*> functions) {
  auto* object = new FakeObject(name);
  Value value = Value::Object(object);
  host.owned.push_back(value);
  for (const wchar_t* function : functions)
    object->properties[ToLower(function)] = Value::Heap(Kind::Callable, new Recorder(host, function, value));
  return value;
}

void AddFunction(FakeHost& host, const wchar_t* name, Value result = {}) {
  host.globals[ToLower(name)] = Value::Heap(Kind::Callable, new Recorder(host, name, std::move(result)));
}

struct FragmentRow {
  const wchar_t* text;
  const wchar_t* log;
};
// Texts as the program's other parts write them.
const FragmentRow kFragments[] = {
    {L"GetINISetting (getCorvantaIniFile()) \"Tavrilon\" \"key\";",
     L"getCorvantaIniFile() GetINISetting(\"file\" \"Tavrilon\" \"key\") "},
    {L"SetINISetting (getCorvantaIniFile()) \"Tavrilon\" \"key\" \"a\\\\b\\\"c\";",
     L"getCorvantaIniFile() SetINISetting(\"file\" \"Tavrilon\" \"key\" \"a\\\\b\\\"c\") "},
    {L"Tavrilon.OpenCurveEditor()", L"OpenCurveEditor() "},
    {L"Tavrilon.activeUIPanel.AddControlsKey selected:true", L"AddControlsKey( selected:true) "},
    {L"chain = $'ikfk L arm'\nchain.controller.FK()", L"node:ikfk L arm' FK() "},
    {L"GetPointPos \"upper_arm\" side:0 index:0", L"GetPointPos(\"upper_arm\" side:0 index:0) "},
    {L"FBXImporterSetParam \"Mode\" \"create\"\nFBXImporterSetParam \"Skin\" false\nFBXImporterSetParam "
     L"\"ScaleFactor\" 1.0",
     L"FBXImporterSetParam(\"Mode\" \"create\") FBXImporterSetParam(\"Skin\" false) "
     L"FBXImporterSetParam(\"ScaleFactor\" 1.0) "},
    {L"(corvantaOps.getNodeByHandle 12).LoadClip @\"C:\\new\\walk.clp\" 0",
     L"getNodeByHandle(12) LoadClip(\"C:\\\\new\\\\walk.clp\" 0) "},
    {L"(getSubAnim (getAnimByHandle 4294967301) 2).controller", L"getAnimByHandle(4294967301) getSubAnim(<anim> 2) "},
    {L"(undo \"Unlock Leaves\" on (lockedTracksMan.UnlockChildren #(1,2) #(3) #(4, 5)))",
     L"begin UnlockChildren(#(1, 2) #(3) #(4, 5)) accept:Unlock Leaves "},
    {L"undo \"Simplify Curve\" on (\nlocal target\ntarget = getAnimByHandle 7\nif target != undefined do reduceKeys "
     L"target 0.5 1f "
     L"(interval -200t 400t)\n)",
     L"begin getAnimByHandle(7) reduceKeys(<anim> 0.5 1f (interval -1f 2f)) accept:Simplify Curve "},
    {L"try(\nundo \"UI Action\" on(\nspeed=(1.5)\narm=(getSubAnim Tavrilon.currentUIAction.references[1] "
     L"2).value\nnone=undefined\n"
     L"FBXImporterSetParam speed arm\n)\n)catch(messagebox (getCurrentException()) title:\"UI Action\")",
     L"begin getSubAnim(<anim> 2) FBXImporterSetParam(1.5 0.25) accept:UI Action "},
    {L"try(\nundo \"UI Action\" on(\nthrow \"no arm\"\n)\n)catch(messagebox (getCurrentException()) title:\"UI "
     L"Action\")",
     L"begin accept:UI Action [UI Action: no arm] "},
    {L"macros.run \"Track View\" \"LaunchFCurveEditor\"", L"run(\"Track View\" \"LaunchFCurveEditor\") "},
    {L"CreateIKFKSolver $a $b", L"node:a node:b CreateIKFKSolver(undefined undefined) "},
    {L"OpenUIPanelManager()", L"OpenUIPanelManager() "},
};

void AddProgramNames(FakeHost& host) {
  for (const wchar_t* name : {L"GetINISetting", L"SetINISetting", L"GetPointPos", L"FBXImporterSetParam", L"reduceKeys",
                              L"CreateIKFKSolver", L"OpenUIPanelManager"})
    AddFunction(host, name);
  AddFunction(host, L"getCorvantaIniFile", Value::String(L"file"));
  Value anim = MakeObject(host, L"anim", {});
  auto& sub = static_cast<FakeObject&>(anim.AsObject());
  sub.properties = {{L"controller", Value::Int(1)}, {L"value", Value::Float(0.25)}};
  AddFunction(host, L"getAnimByHandle", anim);
  AddFunction(host, L"getSubAnim", anim);
  host.globals[L"corvantaops"] = MakeObject(host, L"ops", {L"getNodeByHandle", L"LoadClip"});
  host.globals[L"lockedtracksman"] = MakeObject(host, L"locks", {L"UnlockChildren"});
  host.globals[L"macros"] = MakeObject(host, L"macros", {L"run"});
  Value tavrilon = MakeObject(host, L"Tavrilon", {L"OpenCurveEditor"});
  auto& properties = static_cast<FakeObject&>(tavrilon.AsObject()).properties;
  properties[L"activeuipanel"] = MakeObject(host, L"panel", {L"AddControlsKey"});
  Value action = MakeObject(host, L"action", {});
  Value references = Value::Array();
  references.AsArray().Append(anim);
  static_cast<FakeObject&>(action.AsObject()).properties[L"references"] = references;
  properties[L"currentuiaction"] = action;
  host.globals[L"tavrilon"] = tavrilon;
  Value node = MakeObject(host, L"ikfk L arm", {});
  static_cast<FakeObject&>(node.AsObject()).properties[L"controller"] = MakeObject(host, L"chain", {L"FK", L"IK"});
  host.nodes[L"ikfk L arm"] = node;
}

TEST(ScriptLanguage, TextsThatTheProgramWrites) {
  for (const FragmentRow& row : kFragments) {
    SCOPED_TRACE(ToUtf8(row.text));
    FakeHost host;
    AddProgramNames(host);
    Interpreter vm(host);
    const RunResult result = vm.Run(row.text, L"test");
    EXPECT_TRUE(result.ok) << ToUtf8(result.report);
    EXPECT_EQ(ToUtf8(host.log), ToUtf8(row.log));
  }
}

TEST(ScriptLanguage, MacroScriptsKeepTheirBody) {
  FakeHost host;
  Interpreter vm(host);
  const RunResult result = vm.Run(
      L"macroScript LaunchFCurveEditor category:\"Track View\" internalCategory:\"Track View\" toolTip:\"tip\" "
      L"buttonText:\"button\" iconName:\"icon\" ( on execute do print (1 + 1) )\nmacroScript Plain (print 3; print 4)",
      L"macros.cvs");
  ASSERT_TRUE(result.ok) << ToUtf8(result.report);
  ASSERT_EQ(host.macros.size(), 2u);
  EXPECT_EQ(host.macros[0].name, L"LaunchFCurveEditor");
  EXPECT_EQ(host.macros[0].category, L"Track View");
  EXPECT_EQ(host.macros[0].iconName, L"icon");
  for (const MacroDefinition& macro : host.macros) EXPECT_TRUE(vm.Run(macro.body, L"macro").ok);
  EXPECT_EQ(host.output, L"2\n3\n4\n");
}

TEST(ScriptLanguage, ContextsWrapTheirBodies) {
  const FragmentRow rows[] = {
      {L"with undo off (1)", L"suspend resume "},
      {L"undo on (1)", L"begin accept:Script "},
      {L"at time 10f animate on (1)", L"time:2000 animate /animate /time "},
      {L"animate off (1)", L"still /animate "},
      {L"fn f = (undo \"a\" on (return 1)); f()", L"begin accept:a "},
      {L"for i = 1 to 2 do with redraw off (if i == 1 do continue)", L"dark /redraw dark /redraw "},
      {L"undo = 1; animate = undo; at = animate; time = at", L""},  // free as names
  };
  for (const FragmentRow& row : rows) {
    SCOPED_TRACE(ToUtf8(row.text));
    FakeHost host;
    Interpreter vm(host);
    const RunResult result = vm.Run(row.text, L"test");
    EXPECT_TRUE(result.ok) << ToUtf8(result.report);
    EXPECT_EQ(ToUtf8(host.log), ToUtf8(row.log));
  }
}

TEST(ScriptLanguage, HostNamesAreReadAndWritten) {
  FakeHost host;
  host.globals[L"fixed_name"] = Value::Int(3);
  Interpreter vm(host);
  EXPECT_TRUE(vm.Run(L"sliderTime = 12f; sliderTime += 3", L"test").ok);
  EXPECT_EQ(host.time, 3000);
  EXPECT_FALSE(vm.Run(L"fixed_name = 4", L"test").ok);
  const RunResult hidden = vm.Run(L"local fixed_name = 4; fixed_name", L"test");
  EXPECT_TRUE(hidden.ok);
  EXPECT_EQ(hidden.value.AsInt(), 4);
}

TEST(ScriptLanguage, OneSessionSharesGlobalsTwoDoNot) {
  FakeHost host;
  Interpreter first(host);
  EXPECT_TRUE(first.Run(L"a = 5\nfn twice x = x * 2", L"one").ok);
  const RunResult again = first.Run(L"twice a", L"two");
  ASSERT_TRUE(again.ok);
  EXPECT_EQ(again.value.AsInt(), 10);
  Interpreter second(host);
  EXPECT_FALSE(second.Run(L"a", L"one").ok);
}

TEST(ScriptLanguage, CirclesEndWithTheirSession) {
  FakeHost host;
  const size_t before = MemoryUse::Used();
  Value kept;
  {
    Interpreter vm(host);
    kept = vm.Run(L"inner = #(1, 2); append inner inner; fn f = (local g = 0; fn h = g; g = h); f(); inner", L"test")
               .value;
    EXPECT_EQ(kept.AsArray().Count(), 3u);
  }
  EXPECT_EQ(kept.AsArray().Count(), 0u);
  kept = Value();
  EXPECT_EQ(MemoryUse::Used(), before);
}

}  // namespace
}  // namespace corvanta::script
