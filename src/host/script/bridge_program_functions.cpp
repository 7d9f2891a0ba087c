// SPDX-License-Identifier: MIT
// Settings, undo, coordinate systems, macros, key reduction.
#include "host/io/settings.h"
#include "host/scene/core_interface.h"
#include "host/script/bridge_functions.h"
#include "host/script/execute.h"
#include "host/script/macro_dir.h"
#include "host/script/script_error.h"
#include "host/script/text.h"

namespace corvanta::script {

namespace {

Value IniFile(const CallArgs&) { return Value::String(SettingsPath()); }
Value GetIni(const CallArgs& args) { return Value::String(GetIniSetting(args.Text(0), args.Text(1), args.Text(2))); }
Value SetIni(const CallArgs& args) {
  const WStr path = args.Text(0);
  if (path == SettingsPath() && !MakeConfigFolder()) Fail(L"SetINISetting: cannot make the folder of " + path);
  const WStr problem = SetIniSetting(path, args.Text(1), args.Text(2), PlainText(args[3]));
  if (!problem.empty()) Fail(L"SetINISetting: " + problem);
  return Value::Bool(true);
}

Value UndoOne(const CallArgs&) { return Value::Bool(GetCOREInterface()->UndoStep()); }
Value RedoOne(const CallArgs&) { return Value::Bool(GetCOREInterface()->RedoStep()); }

const wchar_t* const kSystems[] = {L"world", L"parent", L"view", L"screen", L"local", L"pick", L"gimbal"};
Value GetSystem(const CallArgs&) {
  return Value::Name(kSystems[static_cast<int>(GetCOREInterface()->GetRefCoordSys())]);
}
Value SetSystem(const CallArgs& args) {
  for (int i = 0; i < 7; ++i)
    if (args[0].IsText() && EqualsNoCase(args[0].AsText(), kSystems[i])) {
      GetCOREInterface()->SetRefCoordSys(static_cast<RefCoordSys>(i));
      return Value::Ok();
    }
  args.Wrong(0, L"#world, #parent, #view, #screen, #local, #pick or #gimbal");
}

Value RunMacro(const CallArgs& args) {
  const WStr problem = GetMacroScriptDir().Run(args.Text(0), args.Text(1));
  if (!problem.empty()) Fail(problem);
  return Value::Ok();
}
Value CountMacros(const CallArgs&) { return Value::Int(GetMacroScriptDir().Count()); }

Value SetFbxParam(const CallArgs& args) {
  SetFBXImporterParam(args.Text(0), PlainText(args[1]));
  return Value::Ok();
}
Value GetFbxParam(const CallArgs& args) { return Value::String(GetFBXImporterParam(args.Text(0))); }

Value Redraw(const CallArgs&) {
  GetCOREInterface()->RedrawViews(GetCOREInterface()->GetTime());
  return Value::Ok();
}

const BuiltinRow kRows[] = {
    {L"getCorvantaIniFile", IniFile, 0, 0},
    {L"GetINISetting", GetIni, 3, 3},
    {L"SetINISetting", SetIni, 4, 4},
    {L"undoStep", UndoOne, 0, 0},
    {L"redoStep", RedoOne, 0, 0},
    {L"getRefCoordSys", GetSystem, 0, 0},
    {L"setRefCoordSys", SetSystem, 1, 1},
    {L"macros.run", RunMacro, 2, 2},
    {L"macros.count", CountMacros, 0, 0},
    {L"FBXImporterSetParam", SetFbxParam, 2, 2},
    {L"FBXImporterGetParam", GetFbxParam, 1, 1},
    {L"redrawViews", Redraw, 0, 0},
};

}  // namespace

std::span<const BuiltinRow> ProgramFunctions() { return kRows; }

}  // namespace corvanta::script
