// SPDX-License-Identifier: MIT
// tavrilon eval "TEXT": runs one piece of script and prints its value.
#include <memory>
#include <string>

#include "app/command_line.h"
#include "app/script_session.h"

namespace app {

namespace {

struct EvalOptions {
  std::string text;
  bool json = false;
};

int Eval(const EvalOptions& options) {
  return RunInScene([&] { return corvanta::RunScript(corvanta::FromUtf8(options.text), L"eval"); },
                    options.json ? ShowValue::AsJson : ShowValue::AsText);
}

}  // namespace

void AddEvalCommand(CommandLine& line) {
  auto options = std::make_shared<EvalOptions>();
  line.Add("eval", "Run a piece of CorvantaScript and print its value", [options] { return Eval(*options); })
      .Text("text", options->text, Given::Required, "The script text")
      .Flag("--json", options->json, "Print the value as JSON");
}

}  // namespace app
