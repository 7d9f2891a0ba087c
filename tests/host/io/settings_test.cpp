// SPDX-License-Identifier: MIT
#include "host/io/settings.h"

#include <gtest/gtest.h>
#include <stdlib.h>
#include <sys/stat.h>

#include <fstream>
#include <sstream>

#include "host/io/clipboard.h"
#include "host/io/temp_folder_test.h"

namespace corvanta {
namespace {

/// Sets an environment variable (null removes it) and puts the old value back.
class ScopedVariable {
 public:
  ScopedVariable(const char* name, const char* value) : name_(name) {
    if (const char* old = getenv(name)) old_ = old, had_ = true;
    Put(value);
  }
  ~ScopedVariable() { Put(had_ ? old_.c_str() : nullptr); }

 private:
  void Put(const char* value) { value ? setenv(name_, value, 1) : unsetenv(name_); }
  const char* name_;
  std::string old_;
  bool had_ = false;
};

TEST(Settings, FolderFollowsTheEnvironment) {
  ScopedVariable home("HOME", "/home/anna"), xdg("XDG_CONFIG_HOME", nullptr), own("TAVRILON_CONFIG_DIR", nullptr);
  EXPECT_EQ(SettingsPath(), L"/home/anna/.config/Tavrilon/Corvanta.ini");
  ScopedVariable relative("XDG_CONFIG_HOME", "conf");
  EXPECT_EQ(ConfigFolder(), L"/home/anna/.config/Tavrilon");
  ScopedVariable base("XDG_CONFIG_HOME", "/etc/x\xC3\xA4/");
  EXPECT_EQ(ConfigFolder(), L"/etc/x\x00E4//Tavrilon");
  ScopedVariable direct("TAVRILON_CONFIG_DIR", "/tmp/conf/");
  EXPECT_EQ(SettingsPath(), L"/tmp/conf/Corvanta.ini");
}

TEST(Settings, IntegersComeBackAndTheFolderIsMade) {
  TempFolder folder;
  ScopedVariable own("TAVRILON_CONFIG_DIR", (folder.Path() / "deep/er").c_str());
  int value = 42;
  EXPECT_FALSE(ReadIntSetting(L"UiScale", &value));
  EXPECT_EQ(value, 42);
  for (const int number : {0, -7, 2147483647}) {
    EXPECT_TRUE(WriteIntSetting(L"UiScale", number));
    EXPECT_TRUE(ReadIntSetting(L"uiscale", &value));
    EXPECT_EQ(value, number);
  }
  std::stringstream text;
  text << std::ifstream(folder.Path() / "deep/er/Corvanta.ini").rdbuf();
  EXPECT_EQ(text.str(), "[Tavrilon]\nUiScale=2147483647\n");
  struct stat info;
  ASSERT_EQ(stat((folder.Path() / "deep").c_str(), &info), 0);
  EXPECT_EQ(info.st_mode & 0777, 0700u);
}

TEST(Settings, TextsAsIntegers) {
  TempFolder folder;
  ScopedVariable own("TAVRILON_CONFIG_DIR", folder.Path().c_str());
  const struct {
    const char* text;
    bool found;
    int value;
  } rows[] = {{"", false, -1},
              {"12", true, 12},
              {"12 px", true, 12},
              {"abc", true, 0},
              {"+3", true, 3},
              {"010", true, 10},
              {"99999999999", true, 2147483647},
              {"-99999999999999999999", true, -2147483647 - 1}};
  for (const auto& row : rows) {
    std::ofstream(folder.Path() / "Corvanta.ini") << "[tavrilon]\nKey=" << row.text << "\n";
    int value = -1;
    EXPECT_EQ(ReadIntSetting(L"Key", &value), row.found) << row.text;
    EXPECT_EQ(value, row.value) << row.text;
  }
}

TEST(Settings, AnUnreadableFileIsNotOverwritten) {
  TempFolder folder;
  const WStr path = folder.File(L"Corvanta.ini");
  std::ofstream(ToUtf8(path)) << "\xFF\xFE[";
  EXPECT_NE(SetIniSetting(path, L"S", L"k", L"1"), L"");
  std::stringstream text;
  text << std::ifstream(ToUtf8(path)).rdbuf();
  EXPECT_EQ(text.str(), "\xFF\xFE[");
  EXPECT_NE(SetIniSetting(folder.File(L"b.ini"), L"S", L"k", L"1\n2").find(L"b.ini"), WStr::npos);
}

TEST(Settings, GetSetRemove) {
  TempFolder folder;
  const WStr path = folder.File(L"b.ini");
  EXPECT_EQ(GetIniSetting(path, L"S", L"k"), L"");
  EXPECT_EQ(SetIniSetting(path, L"S", L"k", L"a\\b"), L"");
  EXPECT_EQ(GetIniSetting(path, L"S", L"k"), L"a\\b");
  EXPECT_EQ(RemoveIniSetting(path, L"S", L"k"), L"");
  EXPECT_EQ(RemoveIniSetting(path, L"S", L"k"), L"");
  EXPECT_EQ(GetIniSetting(path, L"S", L"k"), L"");
}

TEST(Settings, EscapedTextStaysInsideItsQuotes) {
  EXPECT_EQ(EscapeForScript(L"a\"; delete objects; \"\\"), L"a\\\"; delete objects; \\\"\\\\");
}

TEST(Settings, VersionNumbers) {
  const struct {
    const wchar_t* text;
    int number;
  } rows[] = {
      {L"2.02.02", 20202}, {kVersionText, 20202}, {L"2.2.2", 20202}, {L"0.0.0", 0},   {L"10.99.01", 109901}, {L"", 0},
      {L"2.02", 0},        {L"a.b.c", 0},         {L"2.02.02x", 0},  {L"2.100.1", 0}, {L"-2.02.02", 0}};
  for (const auto& row : rows) EXPECT_EQ(VersionNumber(row.text), row.number) << ToUtf8(row.text);
}

TEST(Clipboard, CarriesBytesByFormat) {
  Clipboard clipboard;
  EXPECT_FALSE(clipboard.HasData(kAnimationClipboardFormat));
  const std::vector<uint8_t> bytes = {0, 1, 255};
  EXPECT_TRUE(clipboard.SetData(8, bytes));
  EXPECT_TRUE(clipboard.SetData(9, {}));
  EXPECT_EQ(clipboard.GetData(8), bytes);
  EXPECT_EQ(clipboard.GetData(9), std::vector<uint8_t>());
  clipboard.Empty();
  EXPECT_FALSE(clipboard.HasData(8));
  EXPECT_EQ(&TheClipboard(), &TheClipboard());
}

TEST(Clipboard, AnOutsideStoreTakesItsPlace) {
  struct Refusing : ClipboardStore {
    bool SetData(ClipboardFormat, std::span<const uint8_t>) override { return false; }
    std::optional<std::vector<uint8_t>> GetData(ClipboardFormat) override { return std::vector<uint8_t>{5}; }
    void Empty() override {}
  } store;
  Clipboard clipboard;
  clipboard.SetStore(&store);
  EXPECT_FALSE(clipboard.SetData(8, {}));
  EXPECT_EQ(clipboard.GetData(8), std::vector<uint8_t>{5});
  clipboard.SetStore(nullptr);
  EXPECT_FALSE(clipboard.HasData(8));
}

}  // namespace
}  // namespace corvanta
