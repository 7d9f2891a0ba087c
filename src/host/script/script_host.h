// SPDX-License-Identifier: MIT
// What the language asks of the program around it. The language itself knows no scene; tests give it a host of
// their own.
#pragma once

#include "host/script/objects.h"

namespace corvanta::script {

/// A `macroScript` as a script declares it.
struct MacroDefinition {
  WStr name, category, internalCategory, toolTip, buttonText, iconName;
  /// The text between the parentheses of `on execute do (...)`, to be run as a script of its own.
  WStr body;
  WStr sourceName;
};

/// How a script may use a name of the host.
enum class GlobalUse {
  None,      // no such name
  ReadOnly,  // primitives and interfaces
  Writable,  // `sliderTime = 10`
  Shadowed,  // classes: a script's own variable of that name wins
};

/// Every function has a default that does nothing, so a host offers what it has. Names come in lower case.
class ScriptHost {
 public:
  virtual ~ScriptHost() = default;

  virtual GlobalUse FindGlobal(const WStr& name) { return GlobalUse::None; }
  virtual Value GetGlobal(const WStr& name) { return {}; }
  virtual void SetGlobal(const WStr& name, const Value& value) {}
  /// `$name`: a node or undefined; with `*` or `?` an array of nodes; the empty text is the selection.
  virtual Value FindNodes(const WStr& pattern, bool quoted) { return {}; }

  /// Output of `print` and `format`; newlines are part of `text`.
  virtual void Write(std::wstring_view text) {}
  virtual void MessageBox(const WStr& text, const WStr& title) {}
  virtual int TicksPerFrame() { return kTicksPerSecond / 30; }

  // Contexts: each opening call is followed by its closing one, also when the body fails.
  virtual void BeginUndo() {}
  virtual void AcceptUndo(const WStr& label) {}
  virtual void SuspendUndo() {}
  virtual void ResumeUndo() {}
  virtual void PushTime(TimeValue t) {}
  virtual void PopTime() {}
  virtual void PushAnimate(bool on) {}
  virtual void PopAnimate() {}
  virtual void PushRedraw(bool on) {}
  virtual void PopRedraw() {}

  virtual void DefineMacro(const MacroDefinition& macro) {}
  /// The text of a script file for `fileIn`; throws `ScriptError` when it cannot be read.
  virtual WStr ReadScript(const WStr& path);
};

}  // namespace corvanta::script
