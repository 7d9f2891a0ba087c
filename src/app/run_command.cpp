// SPDX-License-Identifier: MIT
// tavrilon run FILE.cvs [ARGS]: runs a script file.
#include <memory>
#include <string>
#include <vector>

#include "app/command_line.h"
#include "app/script_session.h"

namespace app {

namespace {

struct RunOptions {
  std::string file;
  std::vector<std::string> arguments;
};

int Run(const RunOptions& options) {
  std::vector<corvanta::WStr> arguments;
  for (const std::string& argument : options.arguments) arguments.push_back(corvanta::FromUtf8(argument));
  return RunInScene([&] { return corvanta::RunScriptFile(corvanta::FromUtf8(options.file), arguments); },
                    ShowValue::No);
}

}  // namespace

void AddRunCommand(CommandLine& line) {
  auto options = std::make_shared<RunOptions>();
  line.Add("run", "Run a CorvantaScript file without a window", [options] { return Run(*options); })
      .Text("file", options->file, Given::Required, "The script (.cvs)")
      .Rest("Arguments after the file", options->arguments, "handed to the script as the array `scriptArgs`");
}

}  // namespace app
