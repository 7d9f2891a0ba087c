// SPDX-License-Identifier: MIT
// Private to this folder: builds the tree of an ASCII file.
//
//   file:   record...
//   record: Name ":" [value {"," value}] ["{" record... "}"]
//   value:  number | word | "text" | "*" count "{" ["a" ":"] number {"," number} "}"
//
// Line ends count as blanks and `;` begins a comment, so a list goes on behind a comma over any number of lines. A
// comma may stand before the first value and behind the last one.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "plugin/fbx/format/ascii_number.h"
#include "plugin/fbx/format/document.h"

namespace tavrilon::fbx {

class AsciiParser {
 public:
  AsciiParser(FbxDocument& document, const ReadLimits& limits) : document_(document), limits_(limits) {}
  /// Of the document, the bytes and the file's name must be there. The bytes become names and values.
  bool Parse();

 private:
  struct Open {
    uint32_t record;
    uint32_t lastChild;
    uint64_t line;
  };
  bool ParseHeading();
  bool ParseRecord();
  bool ParseValues();
  bool ParseValue();
  bool ParseText();
  bool ParseArray();
  bool ParseArrayValues(uint64_t count);
  void AddToArray(const AsciiNumber& number);
  bool FinishRecord();
  void NameObject(uint32_t record);

  void SkipBlanks();
  char Peek() const { return at_ < text_.size() ? text_[at_] : '\0'; }
  bool Accept(char c);
  std::string_view Word() const;
  bool IsNameNext(std::string_view word) const;
  bool Expect(char c, const char* where);
  std::string Found() const;
  bool Fail(const std::string& text) const;

  void BeginProperty(char letter);
  template <class T>
  void Put(T value);
  template <class To, class From>
  void PutArray(char letter, const std::vector<From>& values);

  FbxDocument& document_;
  const ReadLimits& limits_;
  std::vector<uint8_t> file_;
  std::string_view text_;
  std::vector<Open> open_;  // the first is the file itself
  // The array that is being read: whole numbers until the first other one, then all as real ones.
  std::vector<int64_t> wholes_;
  std::vector<double> reals_;
  size_t at_ = 0;
  uint64_t line_ = 1;
};

}  // namespace tavrilon::fbx
