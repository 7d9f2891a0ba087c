// SPDX-License-Identifier: MIT
#include "app/command_line.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <iostream>

namespace app {

namespace {

constexpr char kDescription[] = "Tavrilon: character rigging and animation.";
constexpr char kFooter[] =
    "Exit codes: 0 done, 1 it failed (one line on the error output says what and where), 2 wrong usage.\n"
    "`tavrilon SUBCOMMAND --help` tells the options of each.";

CLI::Option* Require(CLI::Option* option, Given given) {
  return given == Given::Required ? option->required() : option->capture_default_str();
}

// The parsing library has an exit code for each kind of mistake; ours are three.
int Report(const CLI::App& program, const CLI::ParseError& outcome) {
  const bool asked = outcome.get_exit_code() == static_cast<int>(CLI::ExitCodes::Success);
  if (asked) return program.exit(outcome);
  program.exit(outcome, std::cerr, std::cerr);
  return kWrongUsage;
}

}  // namespace

int Fail(std::string_view problem) {
  std::fprintf(stderr, "tavrilon: %.*s\n", static_cast<int>(problem.size()), problem.data());
  return kFailed;
}

int WrongUsage(std::string_view problem) {
  Fail(problem);
  return kWrongUsage;
}

Subcommand& Subcommand::Text(const char* name, std::string& value, Given given, const char* help) {
  Require(command_.add_option(name, value, help), given);
  return *this;
}

Subcommand& Subcommand::Choice(const char* name, std::string& value, const std::vector<std::string>& choices,
                               const char* help) {
  command_.add_option(name, value, help)->capture_default_str()->check(CLI::IsMember(choices));
  return *this;
}

Subcommand& Subcommand::Number(const char* name, int& value, int least, int most, const char* help) {
  command_.add_option(name, value, help)->capture_default_str()->check(CLI::Range(least, most));
  return *this;
}

Subcommand& Subcommand::Number(const char* name, double& value, double least, double most, const char* help) {
  command_.add_option(name, value, help)->capture_default_str()->check(CLI::Range(least, most));
  return *this;
}

Subcommand& Subcommand::List(const char* name, std::vector<std::string>& values, const char* help) {
  command_.add_option(name, values, help)
      ->type_size(1)
      ->expected(1)
      ->multi_option_policy(CLI::MultiOptionPolicy::TakeAll);
  return *this;
}

Subcommand& Subcommand::Flag(const char* name, bool& value, const char* help) {
  command_.add_flag(name, value, help);
  return *this;
}

Subcommand& Subcommand::Rest(const char* name, std::vector<std::string>& values, const char* help) {
  // After the last known positional argument nothing is parsed any more; it is handed over before the work starts.
  command_.prefix_command();
  command_.footer(std::string(name) + ": " + help);
  command_.parse_complete_callback([command = &command_, &values] { values = command->remaining(); });
  return *this;
}

CommandLine::CommandLine() : program_(std::make_unique<CLI::App>(kDescription, "tavrilon")) {
  program_->footer(kFooter);
  program_->set_version_flag("--version", "tavrilon " TAVRILON_VERSION);
  program_->require_subcommand(0, 1);
}

CommandLine::~CommandLine() = default;

Subcommand CommandLine::Add(const char* name, const char* description, std::function<int()> work) {
  CLI::App* command = program_->add_subcommand(name, description);
  command->final_callback([this, work = std::move(work)] { exitCode_ = work(); });
  return Subcommand(*command);
}

int CommandLine::Run(int argc, char** argv, const std::function<int()>& withoutSubcommand) {
  try {
    program_->parse(argc, argv);
  } catch (const CLI::ParseError& outcome) {
    return Report(*program_, outcome);
  }
  return program_->get_subcommands().empty() ? withoutSubcommand() : exitCode_;
}

std::string CommandLine::Help() const { return program_->help(); }

}  // namespace app
