// SPDX-License-Identifier: MIT
// The language without a scene: every cvs/*.cvs prints what its lines say.
#include "host/script/fake_host_test.h"
#include "host/script/script_file_test.h"

namespace corvanta::script {
namespace {

TEST(ScriptFiles, PrintWhatTheirLinesSay) {
  const int count = RunScriptTests(TAVRILON_SOURCE_DIR "/tests/host/script/cvs", [](const WStr& text, WStr& output) {
    FakeHost host;
    Interpreter vm(host);
    RunResult result = vm.Run(text, L"test");
    output = host.output;
    return result;
  });
  EXPECT_GE(count, 6);
}

}  // namespace
}  // namespace corvanta::script
