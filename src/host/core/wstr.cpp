// SPDX-License-Identifier: MIT
// Conversions and formatting of text. Nothing here asks the C locale: a scene that is written where the decimal
// point is a comma, or under LC_ALL=C, has the same bytes as anywhere else.
#include "host/core/wstr.h"

#include <algorithm>
#include <charconv>
#include <cstdarg>
#include <cstddef>
#include <cstdint>

namespace corvanta {
namespace {

constexpr char32_t kReplacement = 0xFFFD;

char32_t CodePoint(wchar_t c) {
  const auto u = static_cast<uint32_t>(c);
  const bool surrogate = u >= 0xD800 && u <= 0xDFFF;
  return u > 0x10FFFF || surrogate ? kReplacement : static_cast<char32_t>(u);
}

/// The allowed range of the second byte after each kind of lead byte; it is what refuses overlong forms, surrogates
/// and code points above U+10FFFF. Source: Unicode Standard, table 3-7.
struct LeadByte {
  uint8_t first, last;
  int length;
  uint8_t secondFirst, secondLast;
};
constexpr LeadByte kLeadBytes[] = {
    {0xC2, 0xDF, 2, 0x80, 0xBF}, {0xE0, 0xE0, 3, 0xA0, 0xBF}, {0xE1, 0xEC, 3, 0x80, 0xBF}, {0xED, 0xED, 3, 0x80, 0x9F},
    {0xEE, 0xEF, 3, 0x80, 0xBF}, {0xF0, 0xF0, 4, 0x90, 0xBF}, {0xF1, 0xF3, 4, 0x80, 0xBF}, {0xF4, 0xF4, 4, 0x80, 0x8F},
};

struct Decoded {
  char32_t code;
  size_t length;
  bool valid;
};

/// Reads one code point at `at`. A malformed sequence takes its longest well-formed beginning (one byte at least),
/// so the byte after it is looked at afresh.
Decoded DecodeOne(std::string_view bytes, size_t at) {
  const auto byte = [&](size_t i) { return static_cast<uint8_t>(bytes[i]); };
  const uint8_t lead = byte(at);
  if (lead < 0x80) return {lead, 1, true};
  const auto* row = std::find_if(std::begin(kLeadBytes), std::end(kLeadBytes),
                                 [&](const LeadByte& r) { return lead >= r.first && lead <= r.last; });
  if (row == std::end(kLeadBytes)) return {kReplacement, 1, false};
  char32_t code = lead & (0xFF >> (row->length + 1));
  uint8_t low = row->secondFirst, high = row->secondLast;
  for (int i = 1; i < row->length; ++i) {
    if (at + i >= bytes.size() || byte(at + i) < low || byte(at + i) > high)
      return {kReplacement, static_cast<size_t>(i), false};
    code = (code << 6) | (byte(at + i) & 0x3F);
    low = 0x80, high = 0xBF;
  }
  return {code, static_cast<size_t>(row->length), true};
}

/// One conversion of a pattern, such as "%-08.3f".
struct Conversion {
  bool left = false, zero = false, plus = false, space = false, alternate = false;
  int width = 0, precision = -1;
  int longs = 0;  // how many 'l' stood before the letter; 'z' counts as two
  wchar_t letter = 0;
};

// A width or precision beyond this is a slip in the pattern; without a bound it would only eat memory.
constexpr int kMaxWidth = 4096;
// Digits after the point beyond this are zeros for every double, and DBL_MAX has 309 before it.
constexpr int kMaxPrecision = 1100;

int ReadNumber(const wchar_t*& p) {
  int value = 0;
  for (; *p >= L'0' && *p <= L'9'; ++p) value = std::min(kMaxWidth, value * 10 + (*p - L'0'));
  return value;
}

bool ReadFlag(wchar_t c, Conversion* out) {
  switch (c) {
    case L'-':
      return out->left = true;
    case L'0':
      return out->zero = true;
    case L'+':
      return out->plus = true;
    case L' ':
      return out->space = true;
    case L'#':
      return out->alternate = true;
    default:
      return false;
  }
}

/// Reads what follows a '%' and leaves `p` after the letter.
Conversion ReadConversion(const wchar_t*& p) {
  Conversion out;
  while (ReadFlag(*p, &out)) ++p;
  out.width = ReadNumber(p);
  if (*p == L'.') out.precision = ReadNumber(++p);
  for (; *p == L'l' || *p == L'h' || *p == L'z'; ++p) out.longs += *p == L'l' ? 1 : *p == L'z' ? 2 : 0;
  out.letter = *p;
  if (*p) ++p;
  return out;
}

void AppendPadded(WStr* out, const Conversion& how, std::wstring_view sign, std::wstring_view body, bool zeros) {
  const size_t used = sign.size() + body.size();
  const size_t gap = how.width > 0 && used < static_cast<size_t>(how.width) ? how.width - used : 0;
  const bool zeroFill = zeros && how.zero && !how.left;
  if (!how.left && !zeroFill) out->append(gap, L' ');
  out->append(sign);
  if (zeroFill) out->append(gap, L'0');
  out->append(body);
  if (how.left) out->append(gap, L' ');
}

std::wstring_view SignText(bool negative, const Conversion& how) {
  return negative ? L"-" : how.plus ? L"+" : how.space ? L" " : L"";
}

void AppendInteger(WStr* out, const Conversion& how, bool negative, uint64_t magnitude, bool isSigned) {
  char digits[64];
  const bool hex = how.letter == L'x' || how.letter == L'X';
  const auto end = std::to_chars(digits, digits + sizeof digits, magnitude, hex ? 16 : 10).ptr;
  WStr body(digits, end);
  if (how.letter == L'X')
    for (wchar_t& c : body)
      if (c >= L'a') c = static_cast<wchar_t>(c - 32);
  if (how.precision > static_cast<int>(body.size())) body.insert(0, how.precision - body.size(), L'0');
  if (how.precision == 0 && magnitude == 0) body.clear();
  WStr sign(isSigned ? SignText(negative, how) : L"");
  if (hex && how.alternate && magnitude) sign += how.letter == L'X' ? L"0X" : L"0x";
  AppendPadded(out, how, sign, body, how.precision < 0);
}

void AppendReal(WStr* out, const Conversion& how, double value) {
  char digits[1600];
  const auto style = how.letter == L'f'   ? std::chars_format::fixed
                     : how.letter == L'e' ? std::chars_format::scientific
                                          : std::chars_format::general;
  const int precision = how.precision < 0 ? 6 : std::min(how.precision, kMaxPrecision);
  const auto end = std::to_chars(digits, digits + sizeof digits, value, style, precision).ptr;
  const bool negative = digits[0] == '-';
  const bool finite = value - value == 0;
  AppendPadded(out, how, SignText(negative, how), WStr(digits + negative, end), finite);
}

void AppendText(WStr* out, const Conversion& how, const wchar_t* text) {
  std::wstring_view view(text ? text : L"(null)");
  if (how.precision >= 0) view = view.substr(0, how.precision);
  AppendPadded(out, how, {}, view, false);
}

int64_t NextSigned(const Conversion& how, va_list* args) {
  return how.longs ? va_arg(*args, long long) : va_arg(*args, int);
}
uint64_t NextUnsigned(const Conversion& how, va_list* args) {
  return how.longs ? va_arg(*args, unsigned long long) : va_arg(*args, unsigned);
}

/// False for a letter that is not known; no argument is taken then.
bool AppendConversion(WStr* out, const Conversion& how, va_list* args) {
  static_assert(sizeof(long) == sizeof(long long), "%ld and %lld read the same argument");
  switch (how.letter) {
    case L'%':
      out->push_back(L'%');
      return true;
    case L's':
      AppendText(out, how, va_arg(*args, const wchar_t*));
      return true;
    case L'c': {
      const wchar_t text[2] = {static_cast<wchar_t>(va_arg(*args, int)), 0};
      AppendPadded(out, how, {}, {text, 1}, false);
      return true;
    }
    case L'd':
    case L'i': {
      const int64_t value = NextSigned(how, args);
      const auto magnitude = value < 0 ? 0 - static_cast<uint64_t>(value) : static_cast<uint64_t>(value);
      AppendInteger(out, how, value < 0, magnitude, true);
      return true;
    }
    case L'u':
    case L'x':
    case L'X':
      AppendInteger(out, how, false, NextUnsigned(how, args), false);
      return true;
    case L'f':
    case L'e':
    case L'g':
      AppendReal(out, how, va_arg(*args, double));
      return true;
    default:
      return false;
  }
}

/// Letters whose lower case is a fixed distance away; `step` 2 takes every other one (pairs of upper and lower).
struct CaseRange {
  uint32_t first, last;
  int delta;
  uint32_t step;
};
constexpr CaseRange kCaseRanges[] = {
    {0x0041, 0x005A, 32, 1},                                                    // ASCII
    {0x00C0, 0x00D6, 32, 1}, {0x00D8, 0x00DE, 32, 1},                           // Latin-1 without the times sign
    {0x0386, 0x0386, 38, 1}, {0x0388, 0x038A, 37, 1}, {0x038C, 0x038C, 64, 1},  // Greek with tonos
    {0x038E, 0x038F, 63, 1}, {0x0391, 0x03A1, 32, 1}, {0x03A3, 0x03AB, 32, 1},  // Greek
    {0x0400, 0x040F, 80, 1}, {0x0410, 0x042F, 32, 1},                           // Cyrillic
    {0x0460, 0x0480, 1, 2},  {0x048A, 0x04BE, 1, 2},  {0x04D0, 0x052E, 1, 2},   // Cyrillic, letters in pairs
};

wchar_t LowerOf(wchar_t c) {
  const auto u = static_cast<uint32_t>(c);
  if (u < 0x80) return u >= 'A' && u <= 'Z' ? static_cast<wchar_t>(u + 32) : c;
  for (const CaseRange& r : kCaseRanges)
    if (u >= r.first && u <= r.last && (u - r.first) % r.step == 0) return static_cast<wchar_t>(u + r.delta);
  return c;
}

}  // namespace

std::string ToUtf8(std::wstring_view text) {
  std::string out;
  out.reserve(text.size());
  for (const wchar_t c : text) {
    const char32_t u = CodePoint(c);
    const auto tail = [&](int shift) { out.push_back(static_cast<char>(0x80 | ((u >> shift) & 0x3F))); };
    if (u < 0x80) {
      out.push_back(static_cast<char>(u));
    } else if (u < 0x800) {
      out.push_back(static_cast<char>(0xC0 | (u >> 6)));
      tail(0);
    } else if (u < 0x10000) {
      out.push_back(static_cast<char>(0xE0 | (u >> 12)));
      tail(6), tail(0);
    } else {
      out.push_back(static_cast<char>(0xF0 | (u >> 18)));
      tail(12), tail(6), tail(0);
    }
  }
  return out;
}

WStr FromUtf8(std::string_view bytes) {
  WStr out;
  out.reserve(bytes.size());
  for (size_t at = 0; at < bytes.size();) {
    const Decoded one = DecodeOne(bytes, at);
    out.push_back(static_cast<wchar_t>(one.code));
    at += one.length;
  }
  return out;
}

bool IsUtf8(std::string_view bytes) {
  for (size_t at = 0; at < bytes.size();) {
    const Decoded one = DecodeOne(bytes, at);
    if (!one.valid) return false;
    at += one.length;
  }
  return true;
}

WStr Format(const wchar_t* pattern, ...) {
  WStr out;
  va_list args;
  va_start(args, pattern);
  for (const wchar_t* p = pattern; *p;) {
    if (*p != L'%') {
      out.push_back(*p++);
      continue;
    }
    const wchar_t* start = p++;
    const Conversion how = ReadConversion(p);
    // An unknown letter shows as it stands: a slip in a pattern is seen and harms nothing.
    if (!AppendConversion(&out, how, &args)) out.append(start, p);
  }
  va_end(args);
  return out;
}

WStr ToLower(std::wstring_view text) {
  WStr out(text);
  std::transform(out.begin(), out.end(), out.begin(), LowerOf);
  return out;
}

bool EqualsNoCase(std::wstring_view a, std::wstring_view b) {
  return a.size() == b.size() &&
         std::equal(a.begin(), a.end(), b.begin(), [](wchar_t x, wchar_t y) { return LowerOf(x) == LowerOf(y); });
}

}  // namespace corvanta
