// SPDX-License-Identifier: MIT
// What goes wrong in a script: thrown where it happens, given its place on the way up.
#pragma once

#include <exception>
#include <string>

#include "host/script/source.h"

namespace corvanta::script {

class ScriptError : public std::exception {
 public:
  enum class Class {
    Error,        // `try` catches it
    Interrupted,  // Ctrl-C or the step budget: nothing catches it
  };
  explicit ScriptError(WStr message, Class kind = Class::Error);
  ScriptError(WStr message, Pos pos) : ScriptError(std::move(message)) { pos_ = pos; }

  const WStr& message() const { return message_; }
  Pos pos() const { return pos_; }
  Class kind() const { return kind_; }
  const char* what() const noexcept override { return utf8_.c_str(); }

  /// The innermost place wins: later calls change nothing.
  void SetPos(Pos pos) {
    if (pos_.line == 0) pos_ = pos;
  }
  void SetSource(const SourcePtr& source) {
    if (!source_) source_ = source;
  }
  /// "file:line:column: message", the line and a caret below the column. Ends without a newline.
  WStr Report() const;

 private:
  WStr message_;
  std::string utf8_;
  Pos pos_;
  SourcePtr source_;
  Class kind_;
};

/// Throws a ScriptError without a place; the call or operator that runs fills it in.
[[noreturn]] void Fail(WStr message);
/// `pattern` as in `corvanta::Format`; takes wide texts for %s.
template <class... Args>
[[noreturn]] void FailWith(const wchar_t* pattern, Args... args) {
  Fail(Format(pattern, args...));
}

}  // namespace corvanta::script
