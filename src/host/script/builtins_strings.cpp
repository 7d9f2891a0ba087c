// SPDX-License-Identifier: MIT
#include <algorithm>
#include <cmath>

#include "host/script/builtins.h"
#include "host/script/interpreter.h"
#include "host/script/script_error.h"
#include "host/script/text.h"

namespace corvanta::script {

namespace {

Value Substring(const CallArgs& args) {
  const WStr& text = args.Text(0);
  const int64_t from = args.Int(1);
  const int64_t count = args.Count() > 2 ? args.Int(2) : -1;
  if (from < 1) Fail(L"substring: places count from 1, got " + std::to_wstring(from));
  if (from > static_cast<int64_t>(text.size())) return Value::String(L"");
  return Value::String(text.substr(static_cast<size_t>(from - 1), count < 0 ? WStr::npos : static_cast<size_t>(count)));
}

Value FindString(const CallArgs& args) {
  const size_t at = args.Text(0).find(args.Text(1));
  return at == WStr::npos ? Value() : Value::Int(static_cast<int64_t>(at + 1));
}

Value SubstituteString(const CallArgs& args) {
  const WStr &text = args.Text(0), &from = args.Text(1), &to = args.Text(2);
  if (from.empty()) return args[0];
  WStr out;
  size_t at = 0;
  for (size_t found = text.find(from); found != WStr::npos; found = text.find(from, at)) {
    MemoryUse::Check((out.size() + to.size()) * sizeof(wchar_t));
    out.append(text, at, found - at).append(to);
    at = found + from.size();
  }
  return Value::String(out.append(text, at));
}

// The parts of a text between any of the separators; empty parts are left out.
Value FilterString(const CallArgs& args) {
  const WStr &text = args.Text(0), &separators = args.Text(1);
  Value parts = Value::Array();
  for (size_t at = 0; at < text.size();) {
    const size_t start = text.find_first_not_of(separators, at);
    if (start == WStr::npos) break;
    at = std::min(text.find_first_of(separators, start), text.size());
    parts.AsArray().Append(Value::String(text.substr(start, at - start)));
  }
  return parts;
}

Value JoinStrings(const CallArgs& args) {
  const ArrayObject& items = args.Array(0);
  const WStr between = args.Count() > 1 ? args.Text(1) : L"";
  WStr out;
  for (size_t i = 0; i < items.Count(); ++i) {
    if (i) out += between;
    out += PlainText(items[i]);
    MemoryUse::Check(out.size() * sizeof(wchar_t));
  }
  return Value::String(std::move(out));
}

Value LowerCase(const CallArgs& args) { return Value::String(ToLower(args.Text(0))); }
// Letters whose lower case is known; ASCII and the Latin, Greek and Cyrillic blocks that ToLower covers.
Value UpperCase(const CallArgs& args) {
  WStr text = args.Text(0);
  for (wchar_t& c : text)
    for (const int distance : {32, 1, 80})
      if (static_cast<int>(c) > 96 && ToLower(WStr(1, c)) == WStr(1, c) && c > distance &&
          ToLower(WStr(1, static_cast<wchar_t>(c - distance))) == WStr(1, c)) {
        c = static_cast<wchar_t>(c - distance);
        break;
      }
  return Value::String(std::move(text));
}

WStr Characters(const CallArgs& args) { return args.Count() > 1 ? args.Text(1) : L" \t\r\n"; }
Value TrimLeft(const CallArgs& args) {
  const size_t start = args.Text(0).find_first_not_of(Characters(args));
  return Value::String(start == WStr::npos ? L"" : args.Text(0).substr(start));
}
Value TrimRight(const CallArgs& args) {
  const size_t end = args.Text(0).find_last_not_of(Characters(args));
  return Value::String(end == WStr::npos ? L"" : args.Text(0).substr(0, end + 1));
}

Value MatchPattern(const CallArgs& args) {
  args.CheckKeywords({L"pattern", L"ignorecase"});
  const Value* pattern = args.Keyword(L"pattern");
  const Value* ignore = args.Keyword(L"ignorecase");
  const WStr wanted = pattern && pattern->IsText() ? pattern->AsText() : args.Count() > 1 ? args.Text(1) : L"";
  if (ignore && ignore->Is(Kind::Bool) && !ignore->AsBool()) return Value::Bool(MatchesPattern(args.Text(0), wanted));
  return Value::Bool(MatchesPattern(ToLower(args.Text(0)), ToLower(wanted)));
}

Value CharacterCode(const CallArgs& args) {
  if (args.Text(0).empty()) args.Wrong(0, L"a character");
  return Value::Int(static_cast<int64_t>(args.Text(0)[0]));
}
Value CharacterOf(const CallArgs& args) {
  const int64_t code = args.Int(0);
  if (code < 1 || code > 0x10FFFF || (code >= 0xD800 && code < 0xE000)) args.Wrong(0, L"the code of a character");
  return Value::String(WStr(1, static_cast<wchar_t>(code)));
}

// A number with `digits` places after the point, rounded: for tables and comparisons in texts.
Value Fixed(const CallArgs& args) {
  const double number = args.Number(0);
  const int64_t digits = args.Int(1);
  if (digits < 0 || digits > 15) args.Wrong(1, L"0 to 15 digits");
  if (!(std::abs(number) < 1e15)) return Value::String(PlainText(Value::Float(number)));
  const double unit = std::pow(10.0, static_cast<double>(digits));
  const double scaled = std::round(std::abs(number) * unit);
  const double whole = std::floor(scaled / unit);
  WStr text = std::to_wstring(static_cast<int64_t>(whole));
  if (digits > 0) {
    const WStr part = std::to_wstring(static_cast<int64_t>(scaled - whole * unit));
    text += L"." + WStr(static_cast<size_t>(digits) - std::min(part.size(), static_cast<size_t>(digits)), L'0') + part;
  }
  return Value::String((number < 0 && scaled > 0 ? L"-" : L"") + text);
}

const BuiltinRow kRows[] = {
    {L"substring", Substring, 2, 3},
    {L"findString", FindString, 2, 2},
    {L"substituteString", SubstituteString, 3, 3},
    {L"filterString", FilterString, 2, 2},
    {L"joinStrings", JoinStrings, 1, 2},
    {L"toLower", LowerCase, 1, 1},
    {L"toUpper", UpperCase, 1, 1},
    {L"trimLeft", TrimLeft, 1, 2},
    {L"trimRight", TrimRight, 1, 2},
    {L"matchPattern", MatchPattern, 1, 2},
    {L"charToInt", CharacterCode, 1, 1},
    {L"intToChar", CharacterOf, 1, 1},
    {L"fixed", Fixed, 2, 2},
};

}  // namespace

// `*` any text, `?` one character; greedy with one point of return, so the time is bounded by the product of
// the lengths.
bool MatchesPattern(const WStr& text, const WStr& pattern) {
  size_t t = 0, p = 0, star = WStr::npos, resume = 0;
  while (t < text.size()) {
    if (p < pattern.size() && pattern[p] == L'*') {
      star = p++;
      resume = t;
    } else if (p < pattern.size() && (pattern[p] == L'?' || pattern[p] == text[t])) {
      ++p;
      ++t;
    } else if (star != WStr::npos) {
      p = star + 1;
      t = ++resume;
      if (Interpreter* vm = Interpreter::Current()) vm->Step();
    } else {
      return false;
    }
  }
  while (p < pattern.size() && pattern[p] == L'*') ++p;
  return p == pattern.size();
}

std::span<const BuiltinRow> StringBuiltins() { return kRows; }

}  // namespace corvanta::script
