// SPDX-License-Identifier: MIT
// Runs every cvs/*.cvs. `-- expect: text` stands on the line that prints the text, `-- expect error: message` on a
// line that fails; the runner goes on behind a failing line.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "host/script/fake_host_test.h"

namespace corvanta::script {
namespace {

struct Expectation {
  uint32_t line;
  bool error;
  WStr text;
};

std::vector<WStr> Lines(const WStr& text) {
  std::vector<WStr> lines;
  std::wstringstream stream(text);
  for (WStr line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

std::vector<Expectation> Expected(const std::vector<WStr>& lines) {
  std::vector<Expectation> found;
  for (size_t i = 0; i < lines.size(); ++i)
    for (const auto& [mark, error] :
         {std::pair(WStr(L"-- expect: "), false), std::pair(WStr(L"-- expect error: "), true)})
      if (const size_t at = lines[i].find(mark); at != WStr::npos)
        found.push_back({static_cast<uint32_t>(i + 1), error, lines[i].substr(at + mark.size())});
  return found;
}

// The line that fails is blanked and the text runs again, until no expected error is left. Prints what went
// wrong; globals start afresh each time.
void RunFile(const std::filesystem::path& path) {
  SCOPED_TRACE(path.filename().string());
  std::ifstream file(path);
  std::stringstream bytes;
  bytes << file.rdbuf();
  std::vector<WStr> lines = Lines(FromUtf8(bytes.str()));
  const std::vector<Expectation> expected = Expected(lines);
  ASSERT_FALSE(expected.empty());
  WStr wanted;
  for (const Expectation& e : expected)
    if (!e.error) wanted += std::to_wstring(e.line) + L": " + e.text + L"\n";
  for (;;) {
    FakeHost host;
    Interpreter vm(host);
    WStr text;
    for (const WStr& line : lines) text += line + L"\n";
    const RunResult result = vm.Run(text, L"test");
    if (result.ok) {
      // Output lines beside the lines they are expected on.
      WStr printed;
      const std::vector<WStr> output = Lines(host.output);
      size_t next = 0;
      for (const Expectation& e : expected)
        if (!e.error)
          printed += std::to_wstring(e.line) + L": " + (next < output.size() ? output[next++] : L"(nothing)") + L"\n";
      EXPECT_EQ(ToUtf8(printed), ToUtf8(wanted));
      EXPECT_EQ(next, output.size()) << "more output than expected";
      for (const Expectation& e : expected)
        if (e.error) {
          EXPECT_EQ(lines[e.line - 1], L"") << "line " << e.line << " did not fail";
        }
      return;
    }
    const uint32_t line = result.pos.line;
    const auto match =
        std::find_if(expected.begin(), expected.end(), [&](const Expectation& e) { return e.error && e.line == line; });
    ASSERT_NE(match, expected.end()) << ToUtf8(result.report);
    EXPECT_EQ(ToUtf8(result.message), ToUtf8(match->text)) << "line " << line;
    lines[line - 1].clear();
  }
}

TEST(ScriptFiles, PrintWhatTheirLinesSay) {
  int count = 0;
  for (const auto& entry : std::filesystem::directory_iterator(TAVRILON_SOURCE_DIR "/tests/host/script/cvs")) {
    RunFile(entry.path());
    ++count;
  }
  EXPECT_GE(count, 6);
}

}  // namespace
}  // namespace corvanta::script
