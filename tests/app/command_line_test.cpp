// SPDX-License-Identifier: MIT
// The program as a shell sees it: what it prints where, and its exit codes.
#include <gtest/gtest.h>
#include <sys/wait.h>

#include <cstdio>
#include <string>

namespace {

struct Outcome {
  int exitCode;
  std::string printed;  // both outputs
};

// `environment` is put before the program, as in a shell.
Outcome RunProgram(const std::string& arguments, const std::string& environment = "") {
  const std::string command = environment + " " TAVRILON_BIN_DIR "/tavrilon " + arguments + " 2>&1 </dev/null";
  Outcome outcome{-1, ""};
  FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return outcome;
  char buffer[4096];
  while (const std::size_t count = fread(buffer, 1, sizeof buffer, pipe)) outcome.printed.append(buffer, count);
  const int status = pclose(pipe);
  outcome.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return outcome;
}

struct Call {
  const char* arguments;
  int exitCode;
  const char* printed;  // a piece of what it prints
};

const Call kCalls[] = {
    {"--version", 0, "tavrilon "},
    {"--help", 0, "Exit codes: 0"},
    {"shot --help", 0, "--view"},
    {"run", 2, "file is required"},
    {"run /no/such/file.cvs", 2, "/no/such/file.cvs"},
    {"run " TAVRILON_SOURCE_DIR "/README.md --whatever", 1, "run: "},
    {"build --set a=1 --set b=2 -o scene.tvs", 1, "build: "},
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
