// SPDX-License-Identifier: MIT
// The script host of real scenes.
#pragma once

#include "host/script/script_host.h"

namespace corvanta::script {

class SceneHost final : public ScriptHost {
 public:
  /// `quiet`: message boxes become lines of output.
  explicit SceneHost(bool quiet) : quiet_(quiet) {}

  GlobalUse FindGlobal(const WStr& name) override;
  Value GetGlobal(const WStr& name) override;
  void SetGlobal(const WStr& name, const Value& value) override;
  Value FindNodes(const WStr& pattern, bool quoted) override;
  void Write(std::wstring_view text) override;
  void MessageBox(const WStr& text, const WStr& title) override;
  int TicksPerFrame() override;
  void BeginUndo() override;
  void AcceptUndo(const WStr& label) override;
  void SuspendUndo() override;
  void ResumeUndo() override;
  void PushTime(TimeValue t) override;
  void PopTime() override;
  void PushAnimate(bool on) override;
  void PopAnimate() override;
  void PushRedraw(bool on) override;
  void PopRedraw() override;
  void DefineMacro(const MacroDefinition& macro) override;
  WStr ReadScript(const WStr& path) override;

 private:
  const bool quiet_;
  std::vector<bool> animate_, redraw_;
};

}  // namespace corvanta::script
