// SPDX-License-Identifier: MIT
// Output, JSON, properties by name, running texts.
#include <chrono>

#include "host/script/builtins.h"
#include "host/script/interpreter.h"
#include "host/script/operators.h"
#include "host/script/script_error.h"
#include "host/script/text.h"

namespace corvanta::script {

namespace {

ScriptHost& Host() { return Interpreter::Current()->host(); }

Value Print(const CallArgs& args) {
  WStr line;
  for (size_t i = 0; i < args.Count(); ++i) line += (i ? L" " : L"") + PlainText(args[i]);
  Host().Write(line + L"\n");
  return Value::Ok();
}

// Each `%` takes the next value; `\%` is the sign itself.
WStr Filled(const CallArgs& args) {
  const WStr& pattern = args.Text(0);
  WStr out;
  size_t next = 1;
  for (size_t i = 0; i < pattern.size(); ++i) {
    if (pattern[i] == L'\\' && i + 1 < pattern.size() && pattern[i + 1] == L'%') {
      out += pattern[++i];
    } else if (pattern[i] != L'%') {
      out += pattern[i];
    } else {
      if (next >= args.Count())
        Fail(args.CalleeName() + L": more `%` in the text than values after it; write \\% for the sign itself");
      out += PlainText(args[next++]);
      MemoryUse::Check(out.size() * sizeof(wchar_t));
    }
  }
  if (next < args.Count()) Fail(args.CalleeName() + L": more values than `%` in the text");
  return out;
}
Value FormatOut(const CallArgs& args) {
  Host().Write(Filled(args));
  return Value::Ok();
}
Value FormatText(const CallArgs& args) { return Value::String(Filled(args)); }

Value Json(const CallArgs& args) { return Value::String(ToJson(args[0])); }

Value ClassOf(const CallArgs& args) { return ClassValue(ClassName(args[0])); }

Value ShowMessage(const CallArgs& args) {
  args.CheckKeywords({L"title", L"beep"});
  const Value* title = args.Keyword(L"title");
  Host().MessageBox(PlainText(args[0]), title ? PlainText(*title) : WStr(L"Script"));
  return Value::Ok();
}

Value CurrentException(const CallArgs&) { return Value::String(Interpreter::Current()->CaughtMessage()); }

WStr PropertyName(const CallArgs& args) { return ToLower(args.Text(1)); }

bool Lookup(const Value& object, const WStr& name, Value& out) {
  return object.Is(Kind::Object) ? object.AsObject().Get(name, out) : GetValueProperty(object, name, out);
}
Value HasProperty(const CallArgs& args) {
  Value out;
  return Value::Bool(Lookup(args[0], PropertyName(args), out));
}
Value GetProperty(const CallArgs& args) {
  Value out;
  if (!Lookup(args[0], PropertyName(args), out)) Fail(Describe(args[0]) + L" has no property `" + args.Text(1) + L"`");
  return out;
}
Value SetProperty(const CallArgs& args) {
  if (!args[0].Is(Kind::Object) || !args[0].AsObject().Set(PropertyName(args), args[2]))
    Fail(Describe(args[0]) + L" has no property `" + args.Text(1) + L"` that can be set");
  return args[2];
}
Value PropertyNames(const CallArgs& args) {
  Value names = Value::Array();
  if (args[0].Is(Kind::Object))
    for (const WStr& name : args[0].AsObject().PropertyNames()) names.AsArray().Append(Value::Name(name));
  return names;
}

Value Execute(const CallArgs& args) { return Interpreter::Current()->Execute(args.Text(0), L"execute"); }
Value FileIn(const CallArgs& args) {
  const WStr path = args.Text(0);
  return Interpreter::Current()->Execute(Host().ReadScript(path), path);
}

Value TimeStamp(const CallArgs&) {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return Value::Int(std::chrono::duration_cast<std::chrono::milliseconds>(now).count());
}

const BuiltinRow kRows[] = {
    {L"print", Print, 1, -1},
    {L"format", FormatOut, 1, -1},
    {L"formatText", FormatText, 1, -1},
    {L"toJson", Json, 1, 1},
    {L"classOf", ClassOf, 1, 1},
    {L"messageBox", ShowMessage, 1, 1},
    {L"getCurrentException", CurrentException, 0, 0},
    {L"hasProperty", HasProperty, 2, 2},
    {L"getProperty", GetProperty, 2, 2},
    {L"setProperty", SetProperty, 3, 3},
    {L"getPropNames", PropertyNames, 1, 1},
    {L"execute", Execute, 1, 1},
    {L"fileIn", FileIn, 1, 1},
    {L"timeStamp", TimeStamp, 0, 0},
};

}  // namespace

std::span<const BuiltinRow> CoreBuiltins() { return kRows; }

}  // namespace corvanta::script
