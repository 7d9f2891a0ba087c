// SPDX-License-Identifier: MIT
#include "app/script_session.h"

#include <cstdio>
#include <string>

#include "app/command_line.h"
#include "app/host_session.h"
#include "app/interrupt.h"

namespace app {

namespace {

void Print(std::wstring_view text) {
  const std::string bytes = corvanta::ToUtf8(text);
  std::fwrite(bytes.data(), 1, bytes.size(), stdout);
}

std::string Shown(const corvanta::ScriptOutcome& outcome, ShowValue show) {
  if (show == ShowValue::AsText) return corvanta::ToUtf8(outcome.text);
  return outcome.json.empty() ? "null" : corvanta::ToUtf8(outcome.json);
}

}  // namespace

int RunInScene(const std::function<corvanta::ScriptOutcome()>& script, ShowValue show) {
  const HostSession session;
  if (!session.IsStarted()) return Fail(session.Problem());
  const InterruptWatch watch;
  corvanta::SetScriptListener(Print);
  corvanta::SetScriptInterruptCheck(InterruptWatch::IsInterrupted);
  const corvanta::ScriptOutcome outcome = script();
  corvanta::SetScriptInterruptCheck(nullptr);
  corvanta::SetScriptListener(nullptr);
  std::fflush(stdout);
  if (!outcome.ok) {
    std::fprintf(stderr, "%s\n", corvanta::ToUtf8(outcome.report).c_str());
    return kFailed;
  }
  if (show != ShowValue::No) {
    const std::string value = Shown(outcome, show);
    if (!value.empty()) std::printf("%s\n", value.c_str());
  }
  return std::fflush(stdout) == 0 ? kOk : Fail("the output could not be written");
}

}  // namespace app
