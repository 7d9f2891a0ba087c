// SPDX-License-Identifier: MIT
// The program: adds the subcommands and hands the command line over to the one that is named.
#include <cstdio>

#include "app/command_line.h"
#include "app/headless.h"

int main(int argc, char** argv) {
  app::ChooseHeadlessPlatform();
  app::CommandLine line;
  app::AddRunCommand(line);
  app::AddEvalCommand(line);
  app::AddBuildCommand(line);
  app::AddInfoCommand(line);
  app::AddShotCommand(line);
  app::AddImportCommand(line);
  app::AddExportCommand(line);
  app::AddFbxCommand(line);
  return line.Run(argc, argv, [&line] {
    std::fprintf(stderr, "%s\n", line.Help().c_str());
    return app::Fail("the stage, the program's window, is not available in this build; name a subcommand");
  });
}
