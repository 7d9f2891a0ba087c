// SPDX-License-Identifier: MIT
#include "host/script/execute.h"

#include <map>

#include "host/script/bridge_host.h"
#include "host/script/bridge_values.h"
#include "host/script/execute_hooks.h"
#include "host/script/interpreter.h"
#include "host/script/text.h"

namespace corvanta {

using script::Value;

namespace {

// Never destroyed: scripts may run while the program ends.
struct Hooks {
  ScriptListener listener;
  ScriptMessageBox messageBox;
  std::map<WStr, WStr> fbxParams;
};
Hooks& TheHooks() {
  static auto* hooks = new Hooks;
  return *hooks;
}

Value ArgumentArray(const std::vector<WStr>& arguments) {
  Value array = Value::Array();
  for (const WStr& argument : arguments) array.AsArray().Append(Value::String(argument));
  return array;
}

ScriptOutcome OutcomeOf(const script::RunResult& result) {
  ScriptOutcome outcome{result.ok, result.interrupted, result.report, result.message, {}, {}};
  if (!result.ok || result.value.IsUndefined() || result.value.Is(script::Kind::Ok)) return outcome;
  try {
    outcome.text = script::PlainText(result.value);
    outcome.json = script::ToJson(result.value);
  } catch (const script::ScriptError& error) {
    outcome.ok = false;
    outcome.report = outcome.message = error.message();
  }
  return outcome;
}

}  // namespace

ScriptOutcome RunScript(const WStr& text, const WStr& sourceName, const std::vector<WStr>& arguments) {
  script::SceneHost host(false);
  script::Interpreter vm(host);
  vm.Define(L"scriptArgs", ArgumentArray(arguments));
  return OutcomeOf(vm.Run(text, sourceName));
}

ScriptOutcome RunScriptFile(const WStr& path, const std::vector<WStr>& arguments) {
  WStr text;
  try {
    text = script::SceneHost(false).ReadScript(path);
  } catch (const script::ScriptError& error) {
    return {false, false, error.message(), error.message(), {}, {}};
  }
  return RunScript(text, path, arguments);
}

bool ExecuteCorvantaScriptScript(const WStr& text, const WStr& source, bool quiet, FPValue* result, bool logErrors) {
  if (result) *result = FPValue();
  script::SceneHost host(quiet);
  script::Interpreter vm(host);
  const script::RunResult run = vm.Run(text, source);
  if (!run.ok && logErrors) WriteToListener(run.report + L"\n");
  if (run.ok && result) *result = script::ToFP(run.value, FPType::Any).value_or(FPValue());
  return run.ok;
}

void SetScriptListener(ScriptListener listener) { TheHooks().listener = std::move(listener); }
void WriteToListener(std::wstring_view text) {
  if (TheHooks().listener) TheHooks().listener(text);
}
void SetScriptMessageBox(ScriptMessageBox box) { TheHooks().messageBox = std::move(box); }
void SetScriptInterruptCheck(bool (*isInterrupted)()) { script::SetInterruptCheck(isInterrupted); }

WStr GetFBXImporterParam(const WStr& name) {
  const auto found = TheHooks().fbxParams.find(ToLower(name));
  return found == TheHooks().fbxParams.end() ? WStr() : found->second;
}
void SetFBXImporterParam(const WStr& name, const WStr& value) { TheHooks().fbxParams[ToLower(name)] = value; }

namespace script {

void ShowMessageBox(const WStr& text, const WStr& title, bool quiet) {
  if (!quiet && TheHooks().messageBox)
    TheHooks().messageBox(text, title);
  else
    WriteToListener(title + L": " + text + L"\n");
}

}  // namespace script
}  // namespace corvanta
