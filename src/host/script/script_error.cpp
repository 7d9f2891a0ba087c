// SPDX-License-Identifier: MIT
#include "host/script/script_error.h"

namespace corvanta::script {

namespace {

// Long lines are cut around the column, so that the caret stays in sight.
constexpr size_t kShownColumns = 160;

}  // namespace

WStr Source::Line(uint32_t line) const {
  size_t start = 0;
  for (uint32_t i = 1; i < line; ++i) {
    const size_t end = text.find(L'\n', start);
    if (end == WStr::npos) return {};
    start = end + 1;
  }
  WStr found = text.substr(start, text.find(L'\n', start) - start);
  if (!found.empty() && found.back() == L'\r') found.pop_back();
  return found;
}

ScriptError::ScriptError(WStr message, Class kind)
    : message_(std::move(message)), utf8_(ToUtf8(message_)), kind_(kind) {}

WStr ScriptError::Report() const {
  WStr report = source_ ? source_->name : WStr(L"script");
  if (pos_.line == 0) return report + L": " + message_;
  report += L":" + std::to_wstring(pos_.line) + L":" + std::to_wstring(pos_.column) + L": " + message_;
  if (!source_) return report;
  WStr line = source_->Line(pos_.line);
  size_t column = pos_.column > 0 ? pos_.column - 1 : 0;
  if (column > line.size()) column = line.size();
  if (line.size() > kShownColumns) {
    const size_t start = column > kShownColumns / 2 ? column - kShownColumns / 2 : 0;
    line = line.substr(start, kShownColumns);
    column -= start;
  }
  WStr caret;
  for (size_t i = 0; i < column; ++i) caret += line[i] == L'\t' ? L'\t' : L' ';
  // Control characters of hostile texts must not reach a terminal.
  for (wchar_t& c : line)
    if ((c < 32 && c != L'\t') || (c >= 127 && c < 160)) c = L'?';
  return report + L"\n" + line + L"\n" + caret + L"^";
}

void Fail(WStr message) { throw ScriptError(std::move(message)); }

}  // namespace corvanta::script
