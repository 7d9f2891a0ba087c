// SPDX-License-Identifier: MIT
// Every example of the reference prints what stands below it.
#include "host/scene/core_interface.h"
#include "host/script/builtins.h"
#include "host/script/execute.h"
#include "host/script/script_file_test.h"
#include "support/test_objects.h"

namespace corvanta::script {
namespace {

const char* const kReference = TAVRILON_SOURCE_DIR "/docs/script.md";

struct Example {
  size_t line = 0;
  WStr text, output;
};

std::vector<Example> Examples() {
  std::vector<Example> examples;
  WStr* part = nullptr;
  const std::vector<WStr> lines = Lines(ReadText(kReference));
  for (size_t i = 0; i < lines.size(); ++i) {
    if (lines[i] == L"```cvs") {
      examples.push_back({i + 1, {}, {}});
      part = &examples.back().text;
    } else if (lines[i] == L"```text") {
      part = &examples.back().output;
    } else if (lines[i] == L"```") {
      part = nullptr;
    } else if (part) {
      *part += lines[i] + L"\n";
    }
  }
  return examples;
}

using ScriptReference = testing_objects::SceneTest;

TEST_F(ScriptReference, ExamplesPrintWhatIsShown) {
  const std::vector<Example> examples = Examples();
  EXPECT_GE(examples.size(), 12u);
  for (const Example& example : examples) {
    SCOPED_TRACE("docs/script.md:" + std::to_string(example.line));
    ReplaceScene(std::make_unique<Scene>());
    GetCOREInterface()->SetTime(0);
    WStr output;
    SetScriptListener([&](std::wstring_view text) { output += text; });
    const ScriptOutcome outcome = RunScript(example.text, L"example");
    SetScriptListener(nullptr);
    EXPECT_TRUE(outcome.ok) << ToUtf8(outcome.report);
    EXPECT_EQ(ToUtf8(output), ToUtf8(example.output));
    EXPECT_FALSE(example.output.empty());
  }
}

TEST_F(ScriptReference, NamesEveryFunctionOfTheLanguage) {
  const WStr reference = ToLower(ReadText(kReference));
  for (const WStr& name : BuiltinNames()) EXPECT_NE(reference.find(name), WStr::npos) << ToUtf8(name);
}

}  // namespace
}  // namespace corvanta::script
