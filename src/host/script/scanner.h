// SPDX-License-Identifier: MIT
// Script text to tokens.
#pragma once

#include <vector>

#include "host/script/source.h"
#include "host/script/value.h"

namespace corvanta::script {

enum class Tok : uint8_t {
  End,
  Newline,
  Semicolon,
  Number,    // Int, Float or Time in `value`
  String,    // `text`
  Name,      // #name, `text`
  NodePath,  // $name, `text`; $'...' has `quoted`
  Word,      // identifier or reserved word; `text` in lower case
  Keyword,   // word and colon; `text` in lower case
  LeftParen,
  RightParen,
  LeftBracket,
  RightBracket,
  ArrayOpen,  // #(
  Comma,
  Dot,
  Colon,
  Ampersand,
  Assign,
  AddAssign,
  SubtractAssign,
  MultiplyAssign,
  DivideAssign,
  Plus,
  Minus,
  Star,
  Slash,
  Caret,
  Equal,
  NotEqual,
  Less,
  Greater,
  LessEqual,
  GreaterEqual,
};

/// Words with a meaning of their own; they can be property names but not variables.
enum class Reserved : uint8_t {
  None,
  And,
  As,
  By,
  Case,
  Catch,
  Collect,
  Continue,
  Do,
  Else,
  Exit,
  False,
  Fn,
  For,
  Global,
  If,
  In,
  Local,
  Not,
  Of,
  Off,
  Ok,
  On,
  Or,
  Return,
  Then,
  Throw,
  To,
  True,
  Try,
  Undefined,
  Where,
  While,
};

struct Token {
  Tok kind = Tok::End;
  Reserved word = Reserved::None;
  bool spaceBefore = false;
  bool quoted = false;
  Pos pos;
  size_t start = 0, end = 0;  // in the text
  WStr text;
  Value value;
};

/// The tokens of `source`, closed by one `End`. Throws `ScriptError` with the place of what it cannot read.
std::vector<Token> Scan(const Source& source);

/// "`)`", "the end of the text", "`foo`": for messages.
WStr TokenText(const Token& token, const Source& source);

}  // namespace corvanta::script
