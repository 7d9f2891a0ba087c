// SPDX-License-Identifier: MIT
// tavrilon run and eval from outside.
#include "program_test.h"

namespace {

using ScriptCommands = ProgramTest;

TEST_F(ScriptCommands, Eval) {
  Expect({"eval '1 + 2'", 0, "3\n"});
  Expect({"eval --json '#(1, \"two\")'", 0, "[1,\"two\"]"});
  Expect({"eval '1 +'", 1, "eval:1:4: "});
}

TEST_F(ScriptCommands, RunGivesTheArguments) {
  Write("args.cvs", "for a in scriptArgs do format \"<%>\" a");
  EXPECT_EQ(Run("run args.cvs one --two 'three four'").printed, "<one><--two><three four>");
}

TEST_F(ScriptCommands, ErrorsHaveTheirPlace) {
  Write("wrong.cvs", "print \"before\"\nx = 1 + nothing.at\n");
  const Outcome outcome = Run("run wrong.cvs");
  EXPECT_EQ(outcome.exitCode, 1);
  EXPECT_EQ(outcome.printed.find("before\nwrong.cvs:2:"), 0u) << outcome.printed;
  EXPECT_NE(outcome.printed.find("\nx = 1 + nothing.at\n        ^"), std::string::npos) << outcome.printed;
}

TEST_F(ScriptCommands, RefusesFiles) {
  Expect({"run nope.cvs", 1, "nope.cvs"});
  Expect({"run .", 1, "."});
}

TEST_F(ScriptCommands, InterruptEndsWithMessage) {
  Write("endless.cvs", "while true do ()");
  // In the foreground the signal comes once; else a second one follows to the group, and that ends the process at once.
  const Outcome outcome = Run("run endless.cvs", "timeout --foreground --preserve-status --signal=INT 0.5");
  EXPECT_EQ(outcome.exitCode, 1) << outcome.printed;
  EXPECT_NE(outcome.printed.find("interrupted"), std::string::npos) << outcome.printed;
}

}  // namespace
