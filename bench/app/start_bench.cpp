// SPDX-License-Identifier: MIT
// How long the program takes from its call to its end when it has nothing to do: what every call in a batch pays.
#include <benchmark/benchmark.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/wait.h>

#include <vector>

extern char** environ;

namespace {

// Runs the program with its output thrown away; false unless it exits with 0.
bool RunProgram(std::vector<const char*> arguments) {
  arguments.insert(arguments.begin(), TAVRILON_BIN_DIR "/tavrilon");
  arguments.push_back(nullptr);
  posix_spawn_file_actions_t actions;
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_addopen(&actions, 1, "/dev/null", O_WRONLY, 0);
  posix_spawn_file_actions_addopen(&actions, 2, "/dev/null", O_WRONLY, 0);
  pid_t process = 0;
  const int error =
      posix_spawn(&process, arguments[0], &actions, nullptr, const_cast<char* const*>(arguments.data()), environ);
  posix_spawn_file_actions_destroy(&actions);
  int status = 0;
  return error == 0 && waitpid(process, &status, 0) == process && WIFEXITED(status) && WEXITSTATUS(status) == 0;
}

void Start(benchmark::State& state, std::vector<const char*> arguments) {
  for (auto _ : state) {
    if (RunProgram(arguments)) continue;
    state.SkipWithError("the program failed");
    return;
  }
}

BENCHMARK_CAPTURE(Start, version, std::vector<const char*>{"--version"})->Unit(benchmark::kMillisecond)->UseRealTime();
BENCHMARK_CAPTURE(Start, with_plugin, std::vector<const char*>{"info"})->Unit(benchmark::kMillisecond)->UseRealTime();

}  // namespace
