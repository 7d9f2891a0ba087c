// SPDX-License-Identifier: MIT
#include "host/core/wstr.h"

#include <gtest/gtest.h>

#include <clocale>
#include <cmath>
#include <cwchar>
#include <limits>
#include <random>

namespace corvanta {
namespace {

struct KnownText {
  const char* name;
  std::wstring text;
  std::string bytes;
};
const KnownText kTexts[] = {
    {"ascii", L"Bip01 L Thigh", "Bip01 L Thigh"},
    {"two bytes", L"\x00E9\x07FF", "\xC3\xA9\xDF\xBF"},
    {"three bytes", L"\x0800\x20AC\xFFFF", "\xE0\xA0\x80\xE2\x82\xAC\xEF\xBF\xBF"},
    {"four bytes", L"\x10000\x1F600\x10FFFF", "\xF0\x90\x80\x80\xF0\x9F\x98\x80\xF4\x8F\xBF\xBF"},
    {"inner zero", std::wstring(L"a\0b", 3), std::string("a\0b", 3)},
    {"empty", L"", ""},
};
TEST(WStr, KnownUtf8BothWays) {
  for (const KnownText& t : kTexts) {
    SCOPED_TRACE(t.name);
    EXPECT_EQ(ToUtf8(t.text), t.bytes);
    EXPECT_EQ(FromUtf8(t.bytes), t.text);
    EXPECT_TRUE(IsUtf8(t.bytes));
  }
}

TEST(WStr, TextOutsideUnicodeIsReplaced) {
  const wchar_t bad[] = {static_cast<wchar_t>(0xD800), static_cast<wchar_t>(0x110000), static_cast<wchar_t>(-1), 0};
  EXPECT_EQ(ToUtf8(bad), "\xEF\xBF\xBD\xEF\xBF\xBD\xEF\xBF\xBD");
}

// The counts follow the "maximal subpart" practice of the Unicode Standard, chapter 3.9.
struct Malformed {
  const char* name;
  std::string bytes;
  std::wstring text;
};
const Malformed kMalformed[] = {
    {"lone tail", "\x80z", L"\xFFFDz"},
    {"overlong slash", "\xC0\xAF", L"\xFFFD\xFFFD"},
    {"overlong three", "\xE0\x80\x80", L"\xFFFD\xFFFD\xFFFD"},
    {"surrogate", "\xED\xA0\x80", L"\xFFFD\xFFFD\xFFFD"},
    {"too large", "\xF4\x90\x80\x80", L"\xFFFD\xFFFD\xFFFD\xFFFD"},
    {"cut at the end", "a\xF0\x9F\x98", L"a\xFFFD"},
    {"cut by a letter", "\xE2\x82x", L"\xFFFDx"},
};
TEST(WStr, MalformedBytesAreReplaced) {
  for (const Malformed& t : kMalformed) {
    SCOPED_TRACE(t.name);
    EXPECT_FALSE(IsUtf8(t.bytes));
    EXPECT_EQ(FromUtf8(t.bytes), t.text);
  }
}

TEST(WStr, AnyBytesGiveTextThatSurvivesARoundTrip) {
  std::mt19937 rng(11);
  for (int i = 0; i < 3000; ++i) {
    std::string bytes(rng() % 24, '\0');
    for (char& c : bytes) c = static_cast<char>(rng() % 3 ? rng() | 0x80 : rng() & 0x7F);
    const WStr text = FromUtf8(bytes);
    const std::string again = ToUtf8(text);
    ASSERT_TRUE(IsUtf8(again));
    ASSERT_EQ(FromUtf8(again), text);
    ASSERT_EQ(again == bytes, IsUtf8(bytes));
  }
}

TEST(WStr, FormatKnownTexts) {
  EXPECT_EQ(Format(L"%s|%5s|%-5s|%.2s", L"a", L"b", L"c", L"defg"), L"a|    b|c    |de");
  EXPECT_EQ(Format(L"%d %i %02d %03d %+d %u", -7, 12, 5, -5, 3, 4000000000u), L"-7 12 05 -05 +3 4000000000");
  EXPECT_EQ(Format(L"%x %X %08x %#x", 255, 255, 0xBEEF, 16), L"ff FF 0000beef 0x10");
  EXPECT_EQ(Format(L"%ld %zu %d", -9000000000L, size_t{9}, std::numeric_limits<int>::min()),
            L"-9000000000 9 -2147483648");
  EXPECT_EQ(Format(L"%g %g %g %g", 0.5, 100000.0, 1e6, 1e-5), L"0.5 100000 1e+06 1e-05");
  EXPECT_EQ(Format(L"%f %.2f %8.3f %08.3f %.0f", 1.5, -2.345, 3.0, -3.0, 2.5), L"1.500000 -2.35    3.000 -003.000 2");
  EXPECT_EQ(Format(L"100%% %c%c", L'\x20AC', L'z'), L"100% \x20ACz");
  EXPECT_EQ(Format(L"%s", static_cast<const wchar_t*>(nullptr)), L"(null)");
  EXPECT_EQ(Format(L"%05f %g", std::numeric_limits<double>::infinity(), 0.0), L"  inf 0");
}

TEST(WStr, FormatShowsSlipsInThePattern) {
  EXPECT_EQ(Format(L"%q %5"), L"%q %5");
  EXPECT_EQ(Format(L"%999999999d", 1).size(), 4096u);
  EXPECT_EQ(Format(L"%.5000f", 0.1).substr(0, 4), L"0.10");
}

// The C library is the judge for the numbers, in the classic locale that the test program starts with.
TEST(WStr, FormatAgreesWithTheCLibrary) {
  std::mt19937 rng(3);
  const wchar_t* reals[] = {L"%g", L"%f", L"%.9g", L"%12.4f", L"%-10g|", L"%+.3e", L"% f"};
  const wchar_t* wholes[] = {L"%d", L"%6d", L"%-6d|", L"%06d", L"%+d", L"%.4d", L"%x", L"%#X"};
  for (int i = 0; i < 2000; ++i) {
    const double real = std::ldexp(static_cast<double>(static_cast<int>(rng())), static_cast<int>(rng() % 60) - 40);
    const int whole = static_cast<int>(rng() >> (rng() % 32));
    wchar_t expected[512];
    const wchar_t* pattern = reals[rng() % std::size(reals)];
    std::swprintf(expected, std::size(expected), pattern, real);
    ASSERT_EQ(Format(pattern, real), expected);
    pattern = wholes[rng() % std::size(wholes)];
    std::swprintf(expected, std::size(expected), pattern, whole);
    ASSERT_EQ(Format(pattern, whole), expected);
  }
}

TEST(WStr, NothingDependsOnTheLocale) {
  const auto everything = [] {
    return ToUtf8(Format(L"%s %.2f %g", L"\x00C9\x20AC", 1.25, 0.5) + ToLower(L"\x00C9\x0416")) + ToUtf8(L"\x1F600");
  };
  const std::string before = everything();
  const std::string saved = std::setlocale(LC_ALL, nullptr);
  for (const char* name : {"C", "C.UTF-8", "de_DE.UTF-8"})
    if (std::setlocale(LC_ALL, name)) {
      EXPECT_EQ(everything(), before) << name;
    }
  std::setlocale(LC_ALL, saved.c_str());
}

TEST(WStr, LowerCase) {
  EXPECT_EQ(ToLower(L"Bip01 [@Z`{]"), L"bip01 [@z`{]");
  EXPECT_EQ(ToLower(L"\x00C0\x00D6\x00D7\x00DE\x00DF"), L"\x00E0\x00F6\x00D7\x00FE\x00DF");
  EXPECT_EQ(ToLower(L"\x0386\x038F\x0391\x03A9\x0401\x042F\x04D0\x04D1"),
            L"\x03AC\x03CE\x03B1\x03C9\x0451\x044F\x04D1\x04D1");
  EXPECT_TRUE(EqualsNoCase(L"Tavrilon \x00C4", L"tAVRILON \x00E4"));
  EXPECT_FALSE(EqualsNoCase(L"ab", L"abc"));
  EXPECT_FALSE(EqualsNoCase(L"@", L"`"));
}

}  // namespace
}  // namespace corvanta
