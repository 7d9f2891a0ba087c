// SPDX-License-Identifier: MIT
// The program as a shell sees it, run in a folder of its own.
#pragma once

#include <gtest/gtest.h>
#include <sys/wait.h>

#include <QJsonDocument>
#include <QJsonObject>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

struct Outcome {
  int exitCode;
  std::string printed;  // both outputs
};

/// `before` is put before the program, as in a shell: variables, or a program that starts it.
inline Outcome RunProgram(const std::string& arguments, const std::string& before = "",
                          const std::filesystem::path& folder = ".") {
  const std::string command =
      "cd '" + folder.string() + "' && " + before + " " TAVRILON_BIN_DIR "/tavrilon " + arguments + " 2>&1 </dev/null";
  Outcome outcome{-1, ""};
  FILE* pipe = popen(command.c_str(), "r");
  if (pipe == nullptr) return outcome;
  char buffer[4096];
  while (const std::size_t count = fread(buffer, 1, sizeof buffer, pipe)) outcome.printed.append(buffer, count);
  const int status = pclose(pipe);
  outcome.exitCode = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
  return outcome;
}

/// A call and what must come of it.
struct Call {
  const char* arguments;
  int exitCode;
  const char* printed;  // a piece of what it prints
};

class ProgramTest : public testing::Test {
 protected:
  void SetUp() override {
    std::string name = (std::filesystem::temp_directory_path() / "tavrilon_app_XXXXXX").string();
    ASSERT_NE(mkdtemp(name.data()), nullptr);
    folder_ = name;
  }
  void TearDown() override { std::filesystem::remove_all(folder_); }

  Outcome Run(const std::string& arguments, const std::string& before = "") {
    return RunProgram(arguments, before, folder_);
  }
  void Expect(const Call& call) {
    SCOPED_TRACE(call.arguments);
    const Outcome outcome = Run(call.arguments);
    EXPECT_EQ(outcome.exitCode, call.exitCode) << outcome.printed;
    EXPECT_NE(outcome.printed.find(call.printed), std::string::npos) << outcome.printed;
  }
  /// The output of a call that must succeed, as JSON.
  QJsonObject RunForJson(const std::string& arguments) {
    const Outcome outcome = Run(arguments);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.printed;
    QJsonParseError error;
    const QJsonDocument document = QJsonDocument::fromJson(QByteArray::fromStdString(outcome.printed), &error);
    EXPECT_EQ(error.error, QJsonParseError::NoError) << outcome.printed;
    return document.object();
  }
  std::filesystem::path File(const std::string& name) const { return folder_ / name; }
  void Write(const std::string& name, const std::string& bytes) {
    std::ofstream(File(name), std::ios::binary) << bytes;
  }
  std::string Read(const std::string& name) const {
    std::ifstream file(File(name), std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
  }

 private:
  std::filesystem::path folder_;
};
