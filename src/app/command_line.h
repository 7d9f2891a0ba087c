// SPDX-License-Identifier: MIT
// The command line: subcommands, their options, the exit codes. It stands before the parsing library, whose one header
// takes seconds to compile: a subcommand includes only this.
#pragma once

#include <functional>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace CLI {
class App;
}

namespace app {

/// What the process returns to the shell.
enum ExitCode : int { kOk = 0, kFailed = 1, kWrongUsage = 2 };

/// Writes "tavrilon: PROBLEM" as one line to the error output and returns kFailed.
int Fail(std::string_view problem);
/// The same for arguments that cannot be meant; returns kWrongUsage.
int WrongUsage(std::string_view problem);

/// Whether the command line must give an argument. An optional one keeps the value that its variable has.
enum class Given { Required, Optional };

/// The arguments of one subcommand. A name is "-s,--scene" for an option, "scene" for a positional argument; each
/// variable must live until CommandLine::Run returns. Wrong values are wrong usage, told before any work starts.
class Subcommand {
 public:
  explicit Subcommand(CLI::App& command) : command_(command) {}

  Subcommand& Text(const char* name, std::string& value, Given given, const char* help);
  Subcommand& Choice(const char* name, std::string& value, const std::vector<std::string>& choices, const char* help);
  Subcommand& Number(const char* name, int& value, int least, int most, const char* help);
  Subcommand& Number(const char* name, double& value, double least, double most, const char* help);
  /// An option that may come several times, each with one value.
  Subcommand& List(const char* name, std::vector<std::string>& values, const char* help);
  Subcommand& Flag(const char* name, bool& value, const char* help);
  /// All that follows the positional arguments, also what looks like an option.
  Subcommand& Rest(const char* name, std::vector<std::string>& values, const char* help);

 private:
  CLI::App& command_;
};

class CommandLine {
 public:
  CommandLine();
  ~CommandLine();

  /// `work` runs once the arguments stand in their variables, and returns the exit code.
  Subcommand Add(const char* name, const char* description, std::function<int()> work);

  /// Reads the arguments and does the work. `withoutSubcommand` runs when none is named.
  int Run(int argc, char** argv, const std::function<int()>& withoutSubcommand);

  /// The text of --help.
  std::string Help() const;

 private:
  std::unique_ptr<CLI::App> program_;
  int exitCode_ = kOk;
};

// Every subcommand adds itself, in a file of its own.
void AddRunCommand(CommandLine& line);
void AddEvalCommand(CommandLine& line);
void AddBuildCommand(CommandLine& line);
void AddInfoCommand(CommandLine& line);
void AddShotCommand(CommandLine& line);
void AddImportCommand(CommandLine& line);
void AddExportCommand(CommandLine& line);
void AddFbxCommand(CommandLine& line);

}  // namespace app
