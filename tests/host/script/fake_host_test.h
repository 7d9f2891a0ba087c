// SPDX-License-Identifier: MIT
// A host without a scene: it remembers what scripts asked of it.
#pragma once

#include <map>

#include "host/script/interpreter.h"
#include "host/script/text.h"

namespace corvanta::script {

/// An object with free properties and a list of items; its functions record their calls.
class FakeObject final : public HostObject {
 public:
  explicit FakeObject(WStr n) : name(std::move(n)) {}
  WStr ClassName() const override { return L"Fake"; }
  WStr Text() const override { return L"<" + name + L">"; }
  void AppendJson(WStr& out) const override { AppendJsonString(out, name); }
  bool Get(const WStr& property, Value& out) override {
    const auto found = properties.find(property);
    if (found == properties.end()) return false;
    out = found->second;
    return true;
  }
  bool Set(const WStr& property, const Value& value) override {
    if (property == L"fixed") return false;
    properties[property] = value;
    return true;
  }
  std::vector<WStr> PropertyNames() override {
    std::vector<WStr> names;
    for (const auto& [property, value] : properties) names.push_back(property);
    return names;
  }
  WStr name;
  std::map<WStr, Value> properties;
};

class FakeHost final : public ScriptHost {
 public:
  /// Objects and their functions refer to each other.
  ~FakeHost() override {
    for (Value& object : owned) static_cast<FakeObject&>(object.AsObject()).properties.clear();
  }
  GlobalUse FindGlobal(const WStr& name) override {
    if (name == L"slidertime") return GlobalUse::Writable;
    return globals.count(name) ? GlobalUse::ReadOnly : GlobalUse::None;
  }
  Value GetGlobal(const WStr& name) override { return name == L"slidertime" ? Value::Time(time) : globals[name]; }
  void SetGlobal(const WStr&, const Value& value) override { time = value.Is(Kind::Time) ? value.AsTime() : -1; }
  Value FindNodes(const WStr& pattern, bool quoted) override {
    log += L"node:" + pattern + (quoted ? L"' " : L" ");
    return nodes.count(pattern) ? nodes[pattern] : Value();
  }
  void Write(std::wstring_view text) override { output += text; }
  void MessageBox(const WStr& text, const WStr& title) override { log += L"[" + title + L": " + text + L"] "; }
  void BeginUndo() override { log += L"begin "; }
  void AcceptUndo(const WStr& label) override { log += L"accept:" + label + L" "; }
  void SuspendUndo() override { log += L"suspend "; }
  void ResumeUndo() override { log += L"resume "; }
  void PushTime(TimeValue t) override { log += L"time:" + std::to_wstring(t) + L" "; }
  void PopTime() override { log += L"/time "; }
  void PushAnimate(bool on) override { log += on ? L"animate " : L"still "; }
  void PopAnimate() override { log += L"/animate "; }
  void PushRedraw(bool on) override { log += on ? L"redraw " : L"dark "; }
  void PopRedraw() override { log += L"/redraw "; }
  void DefineMacro(const MacroDefinition& macro) override { macros.push_back(macro); }

  std::map<WStr, Value> globals, nodes;
  std::vector<Value> owned;
  std::vector<MacroDefinition> macros;
  TimeValue time = 0;
  WStr output, log;
};

}  // namespace corvanta::script
