// SPDX-License-Identifier: MIT
#include "host/io/ini.h"

#include <gtest/gtest.h>

#include <fstream>
#include <random>

#include "host/io/atomic_file.h"
#include "host/io/temp_folder_test.h"

namespace corvanta {
namespace {

constexpr char kHandWritten[] =
    "\xEF\xBB\xBF; my settings\r\n"
    "top=1\r\n"
    "\r\n"
    "[Tavrilon]\r\n"
    "  UiScale =  3\r\n"
    "Path=C:\\rigs\\new folder\\ \r\n"
    "this is no INI line\r\n"
    "Quoted=\"  kept  \"\r\n"
    "# about the next section\r\n"
    "[Other] trailing words\r\n"
    "UiScale=9\r\n"
    "bad=\xFF\xFE\r\n"
    "[TAVRILON]\r\n"
    "Late=5\r\n"
    "uiscale=7";

TEST(Ini, UntouchedFilesKeepTheirBytes) {
  for (const std::string& bytes : {std::string(kHandWritten), std::string(), std::string("\n\n"),
                                   std::string("a\rb\n[x"), std::string("k=\0v\n", 5), std::string("\xEF\xBB\xBF")})
    EXPECT_EQ(IniFile(bytes).Bytes(), bytes);
}

TEST(Ini, ReadsHandWrittenFiles) {
  const IniFile file(kHandWritten);
  EXPECT_EQ(file.Get(L"", L"TOP"), L"1");
  EXPECT_EQ(file.Get(L"tavrilon", L"uiscale"), L"3") << "the first of two counts";
  EXPECT_EQ(file.Get(L"Tavrilon", L"Path"), L"C:\\rigs\\new folder\\");
  EXPECT_EQ(file.Get(L"Tavrilon", L"Quoted"), L"  kept  ");
  EXPECT_EQ(file.Get(L"Tavrilon", L"Late"), L"5");
  EXPECT_EQ(file.Get(L"Other", L"bad"), L"\xFFFD\xFFFD");
  EXPECT_EQ(file.Get(L"Other", L"Late"), std::nullopt);
  EXPECT_EQ(file.Get(L"None", L"Late"), std::nullopt);
  EXPECT_EQ(file.Sections(), (std::vector<WStr>{L"Tavrilon", L"Other"}));
  EXPECT_EQ(file.Keys(L"TAVRILON"), (std::vector<WStr>{L"UiScale", L"Path", L"Quoted", L"Late"}));
}

struct Change {
  const char *name, *before;
  WStr section, key, value;
  const char* after;
};
const Change kChanges[] = {
    {"keeps spelling and spaces", "[S]\n  Key =  1  \n", L"s", L"KEY", L"2", "[S]\n  Key =  2\n"},
    {"same value touches nothing", "[S]\nKey = 1  \n", L"S", L"Key", L"1", "[S]\nKey = 1  \n"},
    {"new key behind the last one", "[S]\r\na=1\r\n\r\n; on T\r\n[T]\r\n", L"S", L"b", L"2",
     "[S]\r\na=1\r\nb=2\r\n\r\n; on T\r\n[T]\r\n"},
    {"new section after a blank line", "[S]\na=1", L"T", L"b", L"2", "[S]\na=1\n\n[T]\nb=2\n"},
    {"empty file", "", L"S", L"a", L"", "[S]\na=\n"},
    {"no section", "; note\n[S]\n", L"", L"a", L"1", "a=1\n; note\n[S]\n"},
    {"blanks at the ends are quoted", "[S]\n", L"S", L"a", L" x", "[S]\na=\" x\"\n"},
    {"quotes at the ends are quoted", "[S]\n", L"S", L"a", L"\"x\"", "[S]\na=\"\"x\"\"\n"},
    {"backslashes and = stay", "[S]\n", L"S", L"a", L"C:\\n=\"1;#", "[S]\na=C:\\n=\"1;#\n"},
    {"first of twin sections", "[S]\n[T]\n[S]\nz=1\n", L"S", L"a", L"1", "[S]\na=1\n[T]\n[S]\nz=1\n"},
    {"key in the second twin", "[S]\n[T]\n[S]\nz=1\n", L"S", L"z", L"2", "[S]\n[T]\n[S]\nz=2\n"},
};
TEST(Ini, SetChangesOneLine) {
  for (const Change& t : kChanges) {
    SCOPED_TRACE(t.name);
    IniFile file(t.before);
    EXPECT_TRUE(file.Set(t.section, t.key, t.value));
    EXPECT_EQ(file.Bytes(), t.after);
    EXPECT_EQ(IniFile(file.Bytes()).Get(t.section, t.key), t.value);
  }
}

TEST(Ini, RefusesWhatALineCannotHold) {
  const struct {
    WStr section, key, value;
  } rows[] = {
      {L"S", L"a", L"1\nInjected=2"},
      {L"S", L"a", L"1\r"},
      {L"S", L"a", WStr(L"1\0", 2)},
      {L"S", L"", L"1"},
      {L"S", L"a=b", L"1"},
      {L"S", L";a", L"1"},
      {L"S", L"[a", L"1"},
      {L"S", L" a", L"1"},
      {L"S]", L"a", L"1"},
      {L" S", L"a", L"1"},
      {L"S\n", L"a", L"1"},
      {L"S", L"\xFEFF", L"1"},
  };
  for (const auto& row : rows) {
    IniFile file("[S]\nk=1\n");
    EXPECT_FALSE(file.Set(row.section, row.key, row.value)) << ToUtf8(row.key);
    EXPECT_EQ(file.Bytes(), "[S]\nk=1\n");
  }
}

TEST(Ini, RemoveTakesEveryTwin) {
  IniFile file("[S]\na=1\nb=2\n; note\nA=3\n[s]\na=4");
  EXPECT_TRUE(file.Remove(L"S", L"a"));
  EXPECT_EQ(file.Bytes(), "[S]\nb=2\n; note\n[s]\n");
  EXPECT_FALSE(file.Remove(L"S", L"a"));
}

TEST(Ini, LoadAndSave) {
  TempFolder folder;
  const WStr path = folder.File(L"a.ini");
  IniFile file;
  EXPECT_EQ(file.Load(path), L"") << "a missing file is an empty one";
  EXPECT_TRUE(file.Set(L"S", L"\x00E4", L"\x4E2D"));
  EXPECT_EQ(file.Save(path), L"");
  IniFile again;
  EXPECT_EQ(again.Load(path), L"");
  EXPECT_EQ(again.Get(L"S", L"\x00C4"), L"\x4E2D");
  std::ofstream(ToUtf8(path)) << "\xFF\xFE[";
  EXPECT_NE(again.Load(path).find(L"UTF-16"), WStr::npos);
  EXPECT_EQ(again.Get(L"S", L"\x00C4"), L"\x4E2D");
  EXPECT_NE(again.Load(FromUtf8(folder.Path().string())).find(L"folder"), WStr::npos);
}

// After any sequence of writes over any file, each key reads what was written last, and other keys what they had.
TEST(Ini, RandomWritesAreReadBack) {
  std::mt19937 rng(23);
  const auto random = [&](std::string_view letters, size_t longest) {
    std::string out(rng() % (longest + 1), ' ');
    for (char& c : out) c = letters[rng() % letters.size()];
    return out;
  };
  for (int i = 0; i < 3000; ++i) {
    IniFile file(random("[]=ab;#\" \t\r\n\n\\", 40));
    for (int k = 0; k < 4; ++k) {
      const WStr section = FromUtf8(random("ab]", 1)), key = FromUtf8(random("abB=\n;", 2));
      const WStr value = FromUtf8(random("a\" =;\\\t\n", 4));
      const std::string before = file.Bytes();
      const auto other = file.Get(section, key + L"x");
      if (file.Set(section, key, value)) {
        const IniFile again(file.Bytes());
        ASSERT_EQ(again.Bytes(), file.Bytes());
        ASSERT_EQ(again.Get(section, key), value) << before;
        ASSERT_EQ(again.Get(section, key + L"x"), other);
      } else {
        ASSERT_EQ(file.Bytes(), before);
      }
    }
  }
}

}  // namespace
}  // namespace corvanta
