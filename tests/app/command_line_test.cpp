// SPDX-License-Identifier: MIT
// The program as a shell sees it: what it prints where, and its exit codes.
#include "program_test.h"

namespace {

const Call kCalls[] = {
    {"--version", 0, "tavrilon "},
    {"--help", 0, "Exit codes: 0"},
    {"shot --help", 0, "--view"},
    {"info", 0, "70 classes"},
    {"info --classes", 0, "\n  IKFKChain"},
    {"info --json", 0, "\"name\": \"IKFKChain\""},
    {"run", 2, "file is required"},
    {"run /no/such/file.cvs", 1, "/no/such/file.cvs"},
    {"run " TAVRILON_SOURCE_DIR "/README.md --whatever", 1, "/README.md:1:1: expected a name"},
    {"eval '1 + 2'", 0, "3\n"},
    {"eval --json '#(1, undefined, \"a\")'", 0, "[1,null,\"a\"]\n"},
    {"eval --json ok", 0, "null\n"},
    {"eval 'format \"%\" scriptArgs.count'", 0, "0"},
    {"eval 'print 1\nprint (nobody)'", 1, "eval:2:8: unknown name `nobody`\nprint (nobody)\n       ^\n"},
    {"eval 'Tavrilon.uiPanelTransforming'", 0, "false\n"},
    {"build --height tall -o scene.tvs", 2, "tall"},
    {"nonsense", 2, "nonsense"},
    {"--nonsense", 2, "--nonsense"},
    {"shot " TAVRILON_SOURCE_DIR "/README.md -o picture.png --view sideways", 2, "sideways"},
};

TEST(CommandLine, ExitCodesAndTexts) {
  for (const Call& call : kCalls) {
    SCOPED_TRACE(call.arguments);
    const Outcome outcome = RunProgram(call.arguments);
    EXPECT_EQ(outcome.exitCode, call.exitCode) << outcome.printed;
    EXPECT_NE(outcome.printed.find(call.printed), std::string::npos) << outcome.printed;
  }
}

// Qt would end the process when there is neither a display nor a platform of its own choice.
TEST(CommandLine, RunsWithoutDisplay) {
  const Outcome outcome = RunProgram("--version", "env -u DISPLAY -u WAYLAND_DISPLAY -u QT_QPA_PLATFORM");
  EXPECT_EQ(outcome.exitCode, 0) << outcome.printed;
}

}  // namespace
