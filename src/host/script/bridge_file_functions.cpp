// SPDX-License-Identifier: MIT
// Scene files, and files of other programs.
#include "host/io/exchange.h"
#include "host/io/scene_file.h"
#include "host/script/bridge_functions.h"
#include "host/script/bridge_object.h"
#include "host/script/execute.h"
#include "host/script/script_error.h"

namespace corvanta::script {

namespace {

Value Done(const CallArgs& args, const WStr& problem) {
  if (!problem.empty()) Fail(args.CalleeName() + L": " + problem);
  return Value::Ok();
}

Value Save(const CallArgs& args) { return Done(args, SaveScene(args.Text(0))); }
Value Load(const CallArgs& args) { return Done(args, LoadScene(args.Text(0))); }
Value Reset(const CallArgs& args) {
  return Done(args, ResetScene() ? L"" : L"an undo step is open, so the scene cannot go");
}

/// `#noPrompt`, the only name that may stand behind the file.
bool WithoutPrompts(const CallArgs& args) {
  if (args.Count() < 2) return false;
  if (!args[1].Is(Kind::Name) || !EqualsNoCase(args[1].AsText(), L"noPrompt")) args.Wrong(1, L"#noPrompt");
  return true;
}

/// What was left out or changed goes to the output. A failure is an error of the script; false is left for work that
/// the user stopped.
Value Told(const CallArgs& args, bool done, const ExchangeReport& report) {
  for (const WStr& line : report.log) WriteToListener(line + L"\n");
  if (done || report.error == kExchangeStopped) return Value::Bool(done);
  Fail(args.CalleeName() + L": " + report.error);
}

Value Import(const CallArgs& args) {
  args.CheckKeywords({});
  ExchangeReport report;
  const bool done = ImportFile(args.Text(0), WithoutPrompts(args), report);
  return Told(args, done, report);
}

Value Export(const CallArgs& args) {
  args.CheckKeywords({L"selectedonly"});
  const Value* selectedOnly = args.Keyword(L"selectedonly");
  if (selectedOnly && !selectedOnly->Is(Kind::Bool)) WrongValue(L"true or false for selectedOnly:", *selectedOnly);
  ExchangeReport report;
  const bool done = ExportFile(args.Text(0), WithoutPrompts(args), selectedOnly && selectedOnly->AsBool(), report);
  return Told(args, done, report);
}

const BuiltinRow kRows[] = {{L"saveScene", Save, 1, 1},
                            {L"loadScene", Load, 1, 1},
                            {L"resetScene", Reset, 0, 0},
                            {L"importFile", Import, 1, 2},
                            {L"exportFile", Export, 1, 2}};

}  // namespace

std::span<const BuiltinRow> FileFunctions() { return kRows; }

}  // namespace corvanta::script
