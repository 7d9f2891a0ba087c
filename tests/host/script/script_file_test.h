// SPDX-License-Identifier: MIT
// Runs scripts that carry what they print: `-- expect: text` stands on the line that prints the text,
// `-- expect error: message` on a line that fails.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <sstream>

#include "host/script/interpreter.h"

namespace corvanta::script {

/// Runs a text in a fresh session and gives what it printed.
using RunText = std::function<RunResult(const WStr& text, WStr& output)>;

struct Expectation {
  uint32_t line;
  bool error;
  WStr text;
};

inline WStr ReadText(const std::filesystem::path& path) {
  std::ifstream file(path);
  std::stringstream bytes;
  bytes << file.rdbuf();
  return FromUtf8(bytes.str());
}

inline std::vector<WStr> Lines(const WStr& text) {
  std::vector<WStr> lines;
  std::wstringstream stream(text);
  for (WStr line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

inline std::vector<Expectation> Expected(const std::vector<WStr>& lines) {
  const std::pair<WStr, bool> marks[] = {{L"-- expect: ", false}, {L"-- expect error: ", true}};
  std::vector<Expectation> found;
  for (size_t i = 0; i < lines.size(); ++i)
    for (const auto& [mark, error] : marks)
      if (const size_t at = lines[i].find(mark); at != WStr::npos)
        found.push_back({static_cast<uint32_t>(i + 1), error, lines[i].substr(at + mark.size())});
  return found;
}

// Output lines beside the lines they are expected on, so that a difference shows its place.
inline void CompareOutput(const std::vector<Expectation>& expected, const WStr& output) {
  WStr wanted, printed;
  const std::vector<WStr> lines = Lines(output);
  size_t next = 0;
  for (const Expectation& e : expected) {
    if (e.error) continue;
    const WStr place = std::to_wstring(e.line) + L": ";
    wanted += place + e.text + L"\n";
    printed += place + (next < lines.size() ? lines[next++] : L"(nothing)") + L"\n";
  }
  EXPECT_EQ(ToUtf8(printed), ToUtf8(wanted));
  EXPECT_EQ(next, lines.size()) << "more output than expected";
}

/// A line that fails as expected is blanked and the text runs again, until no expected error is left.
inline void RunScriptTest(const std::filesystem::path& path, const RunText& run) {
  SCOPED_TRACE(path.filename().string());
  std::vector<WStr> lines = Lines(ReadText(path));
  const std::vector<Expectation> expected = Expected(lines);
  ASSERT_FALSE(expected.empty());
  for (;;) {
    WStr text, output;
    for (const WStr& line : lines) text += line + L"\n";
    const RunResult result = run(text, output);
    if (result.ok) {
      CompareOutput(expected, output);
      for (const Expectation& e : expected) {
        if (e.error) {
          EXPECT_EQ(ToUtf8(lines[e.line - 1]), "") << "line " << e.line << " did not fail";
        }
      }
      return;
    }
    const auto match = std::find_if(expected.begin(), expected.end(),
                                    [&](const Expectation& e) { return e.error && e.line == result.pos.line; });
    ASSERT_NE(match, expected.end()) << ToUtf8(result.report);
    EXPECT_EQ(ToUtf8(result.message), ToUtf8(match->text)) << "line " << match->line;
    lines[match->line - 1].clear();
  }
}

inline int RunScriptTests(const std::filesystem::path& folder, const RunText& run) {
  int count = 0;
  for (const auto& entry : std::filesystem::directory_iterator(folder)) {
    RunScriptTest(entry.path(), run);
    ++count;
  }
  return count;
}

}  // namespace corvanta::script
