// SPDX-License-Identifier: MIT
#include "host/script/scanner.h"

#include <charconv>
#include <cwchar>
#include <string>

#include "host/script/operators.h"
#include "host/script/script_error.h"

namespace corvanta::script {

namespace {

struct ReservedRow {
  const wchar_t* text;
  Reserved word;
};
const ReservedRow kReserved[] = {
    {L"and", Reserved::And},
    {L"as", Reserved::As},
    {L"by", Reserved::By},
    {L"case", Reserved::Case},
    {L"catch", Reserved::Catch},
    {L"collect", Reserved::Collect},
    {L"continue", Reserved::Continue},
    {L"do", Reserved::Do},
    {L"else", Reserved::Else},
    {L"exit", Reserved::Exit},
    {L"false", Reserved::False},
    {L"fn", Reserved::Fn},
    {L"function", Reserved::Fn},
    {L"for", Reserved::For},
    {L"global", Reserved::Global},
    {L"if", Reserved::If},
    {L"in", Reserved::In},
    {L"local", Reserved::Local},
    {L"not", Reserved::Not},
    {L"of", Reserved::Of},
    {L"off", Reserved::Off},
    {L"ok", Reserved::Ok},
    {L"on", Reserved::On},
    {L"or", Reserved::Or},
    {L"return", Reserved::Return},
    {L"then", Reserved::Then},
    {L"throw", Reserved::Throw},
    {L"to", Reserved::To},
    {L"true", Reserved::True},
    {L"try", Reserved::Try},
    {L"undefined", Reserved::Undefined},
    {L"where", Reserved::Where},
    {L"while", Reserved::While},
};

struct PunctuationRow {
  const wchar_t* text;
  Tok kind;
};
// Longer texts stand before their beginnings.
const PunctuationRow kPunctuation[] = {
    {L"#(", Tok::ArrayOpen},
    {L"+=", Tok::AddAssign},
    {L"-=", Tok::SubtractAssign},
    {L"*=", Tok::MultiplyAssign},
    {L"/=", Tok::DivideAssign},
    {L"==", Tok::Equal},
    {L"!=", Tok::NotEqual},
    {L"<=", Tok::LessEqual},
    {L">=", Tok::GreaterEqual},
    {L"(", Tok::LeftParen},
    {L")", Tok::RightParen},
    {L"[", Tok::LeftBracket},
    {L"]", Tok::RightBracket},
    {L",", Tok::Comma},
    {L".", Tok::Dot},
    {L":", Tok::Colon},
    {L"&", Tok::Ampersand},
    {L"=", Tok::Assign},
    {L"+", Tok::Plus},
    {L"-", Tok::Minus},
    {L"*", Tok::Star},
    {L"/", Tok::Slash},
    {L"^", Tok::Caret},
    {L"<", Tok::Less},
    {L">", Tok::Greater},
    {L";", Tok::Semicolon},
};

bool IsDigit(wchar_t c) { return c >= L'0' && c <= L'9'; }
bool IsHexDigit(wchar_t c) { return IsDigit(c) || (c >= L'a' && c <= L'f') || (c >= L'A' && c <= L'F'); }
// The Latin-1 controls and the no-break space are not letters.
bool IsWordStart(wchar_t c) {
  return (c >= L'a' && c <= L'z') || (c >= L'A' && c <= L'Z') || c == L'_' || static_cast<uint32_t>(c) > 0xA0;
}
bool IsWordPart(wchar_t c) { return IsWordStart(c) || IsDigit(c); }
bool IsBlank(wchar_t c) {
  return c == L' ' || c == L'\t' || c == L'\r' || c == L'\f' || c == L'\v' || c == 0xA0 || c == 0xFEFF;
}

class Scanner {
 public:
  explicit Scanner(const Source& source) : text_(source.text) {}

  std::vector<Token> Run() {
    for (;;) {
      const size_t before = at_;
      SkipBlanks();
      Token token;
      token.spaceBefore = at_ > before || at_ == 0;
      token.pos = Here();
      token.start = at_;
      Read(token);
      token.end = at_;
      tokens_.push_back(std::move(token));
      if (tokens_.back().kind == Tok::End) return std::move(tokens_);
    }
  }

 private:
  wchar_t Peek(size_t ahead = 0) const { return at_ + ahead < text_.size() ? text_[at_ + ahead] : L'\0'; }
  bool AtEnd() const { return at_ >= text_.size(); }
  Pos Here() const { return {line_, static_cast<uint32_t>(at_ - lineStart_ + 1)}; }
  void NewLine() {
    ++line_;
    lineStart_ = at_;
  }

  void SkipBlanks() {
    for (;;) {
      if (AtEnd()) return;
      const wchar_t c = Peek();
      if (IsBlank(c)) {
        ++at_;
      } else if (c == L'-' && Peek(1) == L'-') {
        while (!AtEnd() && Peek() != L'\n') ++at_;
      } else if (c == L'/' && Peek(1) == L'*') {
        SkipComment();
      } else if (c == L'\\' && SkipContinuation()) {
        continue;
      } else {
        return;
      }
    }
  }

  void SkipComment() {
    const Pos start = Here();
    at_ += 2;
    while (!(Peek() == L'*' && Peek(1) == L'/')) {
      if (AtEnd()) throw ScriptError(L"the comment is not closed, expected `*/`", start);
      if (text_[at_++] == L'\n') NewLine();
    }
    at_ += 2;
  }

  // A backslash at the end of a line joins it with the next one.
  bool SkipContinuation() {
    size_t end = at_ + 1;
    while (end < text_.size() && IsBlank(text_[end])) ++end;
    if (end >= text_.size() || text_[end] != L'\n') return false;
    at_ = end + 1;
    NewLine();
    return true;
  }

  void Read(Token& token) {
    if (AtEnd()) {
      token.kind = Tok::End;
      return;
    }
    const wchar_t c = Peek();
    if (c == L'\n') {
      token.kind = Tok::Newline;
      ++at_;
      NewLine();
    } else if (IsDigit(c) || (c == L'.' && IsDigit(Peek(1)) && NumberMayStart())) {
      ReadNumber(token);
    } else if (IsWordStart(c)) {
      ReadWord(token);
    } else if (c == L'"') {
      ReadString(token);
    } else if (c == L'@' && Peek(1) == L'"') {
      ReadVerbatim(token);
    } else if (c == L'$') {
      ReadNodePath(token);
    } else if (c == L'#' && Peek(1) != L'(') {
      ReadName(token);
    } else {
      ReadPunctuation(token);
    }
  }

  // ".5" begins a number only where a property could not stand.
  bool NumberMayStart() const {
    if (at_ == 0) return true;
    const wchar_t before = text_[at_ - 1];
    return !(IsWordPart(before) || before == L')' || before == L']' || before == L'\'' || before == L'"');
  }

  void ReadPunctuation(Token& token) {
    for (const PunctuationRow& row : kPunctuation) {
      const size_t length = std::wcslen(row.text);
      if (text_.compare(at_, length, row.text) != 0) continue;
      token.kind = row.kind;
      at_ += length;
      return;
    }
    const wchar_t c = Peek();
    if (c > 32 && c < 127) throw ScriptError(L"unexpected character `" + WStr(1, c) + L"`", token.pos);
    throw ScriptError(Format(L"unexpected character U+%04x", static_cast<int>(c)), token.pos);
  }

  void ReadWord(Token& token) {
    const size_t start = at_;
    while (IsWordPart(Peek())) ++at_;
    token.text = ToLower(std::wstring_view(text_).substr(start, at_ - start));
    if (Peek() == L':' && Peek(1) != L':') {
      ++at_;
      token.kind = Tok::Keyword;
    } else {
      token.kind = Tok::Word;
    }
    for (const ReservedRow& row : kReserved)
      if (token.text == row.text) token.word = row.word;
  }

  void ReadName(Token& token) {
    ++at_;
    token.kind = Tok::Name;
    if (Peek() == L'\'') {
      token.text = ReadUntilQuote(token.pos);
      return;
    }
    const size_t start = at_;
    while (IsWordPart(Peek())) ++at_;
    if (at_ == start) throw ScriptError(L"expected a name or `(` after `#`", token.pos);
    token.text = text_.substr(start, at_ - start);
  }

  void ReadNodePath(Token& token) {
    ++at_;
    token.kind = Tok::NodePath;
    if (Peek() == L'\'') {
      token.quoted = true;
      token.text = ReadUntilQuote(token.pos);
      return;
    }
    const size_t start = at_;
    while (IsWordPart(Peek()) || Peek() == L'*' || Peek() == L'?') ++at_;
    token.text = text_.substr(start, at_ - start);
  }

  WStr ReadUntilQuote(Pos start) {
    const size_t first = ++at_;
    while (!AtEnd() && Peek() != L'\'' && Peek() != L'\n') ++at_;
    if (Peek() != L'\'') throw ScriptError(L"the quoted name is not closed, expected `'` on this line", start);
    return text_.substr(first, at_++ - first);
  }

  void ReadString(Token& token) {
    token.kind = Tok::String;
    ++at_;
    for (;;) {
      if (AtEnd()) throw ScriptError(L"the string is not closed, expected `\"`", token.pos);
      const wchar_t c = text_[at_++];
      if (c == L'"') return;
      if (c == L'\n') NewLine();
      if (c == L'\\')
        ReadEscape(token.text);
      else
        token.text += c;
    }
  }

  // An escape that means nothing keeps its backslash, as in "C:\Users".
  void ReadEscape(WStr& out) {
    switch (Peek()) {
      case L'n':
        out += L'\n';
        break;
      case L't':
        out += L'\t';
        break;
      case L'r':
        out += L'\r';
        break;
      case L'"':
        out += L'"';
        break;
      case L'\\':
        out += L'\\';
        break;
      case L'%':
        out += L"\\%";
        break;  // `format` reads it
      default:
        out += L'\\';
        return;
    }
    ++at_;
  }

  void ReadVerbatim(Token& token) {
    token.kind = Tok::String;
    at_ += 2;
    for (;;) {
      if (AtEnd()) throw ScriptError(L"the string is not closed, expected `\"`", token.pos);
      const wchar_t c = text_[at_++];
      if (c == L'\n') NewLine();
      if (c == L'"') {
        if (Peek() != L'"') return;
        ++at_;
      }
      token.text += c;
    }
  }

  void ReadNumber(Token& token) {
    token.kind = Tok::Number;
    if (Peek() == L'0' && (Peek(1) == L'x' || Peek(1) == L'X')) {
      token.value = ReadHex(token.pos);
    } else {
      const bool whole = !SkipDecimal();
      token.value = TimeUnitFollows() ? ReadTime(token) : ReadPlain(token, whole);
    }
    if (IsWordPart(Peek())) throw ScriptError(L"unexpected `" + WStr(1, Peek()) + L"` in a number", Here());
  }

  // Moves past digits, a fraction and an exponent; true when there was one of the latter.
  bool SkipDecimal() {
    bool real = false;
    while (IsDigit(Peek())) ++at_;
    if (Peek() == L'.' && !IsWordStart(Peek(1)) && Peek(1) != L'.') {
      real = true;
      ++at_;
      while (IsDigit(Peek())) ++at_;
    }
    const size_t sign = Peek(1) == L'+' || Peek(1) == L'-' ? 1 : 0;
    if ((Peek() == L'e' || Peek() == L'E') && IsDigit(Peek(1 + sign))) {
      real = true;
      at_ += 1 + sign;
      while (IsDigit(Peek())) ++at_;
    }
    return real;
  }

  bool TimeUnitFollows() const {
    const wchar_t c = Peek();
    return (c == L'f' || c == L't' || c == L's' || c == L'm' || c == L'F' || c == L'T' || c == L'S' || c == L'M') &&
           (!IsWordPart(Peek(1)) || IsDigit(Peek(1)));
  }

  double DecimalFrom(size_t start) const {
    const std::string digits(text_.begin() + static_cast<std::ptrdiff_t>(start),
                             text_.begin() + static_cast<std::ptrdiff_t>(at_));
    double number = 0;
    const auto end = std::from_chars(digits.data(), digits.data() + digits.size(), number);
    // Out of range keeps 0 or infinity by the exponent's sign.
    if (end.ec == std::errc::result_out_of_range)
      return digits.find("e-") != std::string::npos || digits.find("E-") != std::string::npos ? 0 : HUGE_VAL;
    return number;
  }

  Value ReadPlain(const Token& token, bool whole) {
    if (whole && (Peek() == L'L' || Peek() == L'P') && !IsWordPart(Peek(1))) {
      const Value value = Whole(token);
      ++at_;
      return value;
    }
    return whole ? Whole(token) : Value::Float(DecimalFrom(token.start));
  }

  Value Whole(const Token& token) {
    int64_t number = 0;
    for (size_t i = token.start; i < at_; ++i)
      if (__builtin_mul_overflow(number, int64_t{10}, &number) ||
          __builtin_add_overflow(number, static_cast<int64_t>(text_[i] - L'0'), &number))
        throw ScriptError(L"the number does not fit an integer; write it with a point, as `1e20`", token.pos);
    return Value::Int(number);
  }

  // "10f", "2s", "1m30s", "40t": a sum of parts.
  Value ReadTime(const Token& token) {
    double ticks = 0;
    size_t start = token.start;
    for (;;) {
      const double number = DecimalFrom(start);
      const wchar_t unit = text_[at_++] | 0x20;
      const double factor = unit == L't'   ? 1
                            : unit == L'f' ? TicksPerFrame()
                            : unit == L's' ? kTicksPerSecond
                                           : 60.0 * kTicksPerSecond;
      ticks += number * factor;
      start = at_;
      if (!IsDigit(Peek())) break;
      SkipDecimal();
      if (!TimeUnitFollows()) throw ScriptError(L"expected a time unit: f, t, s or m", Here());
    }
    return Value::Time(TicksFromFrames(ticks / TicksPerFrame()));
  }

  Value ReadHex(Pos start) {
    at_ += 2;
    uint64_t number = 0;
    const size_t first = at_;
    for (; IsHexDigit(Peek()); ++at_) {
      if (number >> 60) throw ScriptError(L"the number does not fit an integer", start);
      const wchar_t c = Peek();
      number = number << 4 | static_cast<uint64_t>(IsDigit(c) ? c - L'0' : (c | 0x20) - L'a' + 10);
    }
    if (at_ == first) throw ScriptError(L"expected hexadecimal digits after `0x`", start);
    return Value::Int(static_cast<int64_t>(number));
  }

  const WStr& text_;
  size_t at_ = 0;
  size_t lineStart_ = 0;
  uint32_t line_ = 1;
  std::vector<Token> tokens_;
};

}  // namespace

std::vector<Token> Scan(const Source& source) { return Scanner(source).Run(); }

WStr TokenText(const Token& token, const Source& source) {
  constexpr size_t kShown = 30;
  if (token.kind == Tok::End) return L"the end of the text";
  if (token.kind == Tok::Newline) return L"the end of the line";
  WStr text = source.text.substr(token.start, token.end - token.start);
  const bool cut = text.size() > kShown || text.find(L'\n') != WStr::npos;
  if (cut) text = text.substr(0, std::min(kShown, text.find(L'\n'))) + L"...";
  return L"`" + text + L"`";
}

}  // namespace corvanta::script
