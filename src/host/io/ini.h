// SPDX-License-Identifier: MIT
// Plain INI files as people write them by hand. A line that is not changed keeps its bytes, whatever they are:
// comments, blank lines, order, spelling, spaces, CRLF, a byte order mark, lines that are no INI at all.
//
//   ; a comment, or # a comment, on a line of its own
//   [Section]
//   Key = value        (the value ends with the line; blanks around it are not part of it)
//   Path=C:\rigs\new   (a backslash is a backslash)
//   Text="  kept  "    (quotes around the whole value keep blanks, and are not part of it)
//
// Names of sections and keys are the same in upper and lower case. A section may stand several times: it is then read
// as one, and of a key that stands twice the first counts.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/core/wstr.h"

namespace corvanta {

class IniFile {
 public:
  IniFile() = default;
  /// Takes any bytes. Ill-formed UTF-8 shows as U+FFFD in values, but stays in the file.
  explicit IniFile(std::string_view bytes);

  /// Replaces the contents by those of a file; a missing file is an empty one. Gives an empty text, or what is wrong;
  /// the contents are then as before.
  [[nodiscard]] WStr Load(const WStr& path);
  /// Writes in one piece (WriteFileAtomically). Gives an empty text, or what is wrong.
  [[nodiscard]] WStr Save(const WStr& path) const;
  std::string Bytes() const;

  /// Keys above the first section are in section "".
  std::optional<WStr> Get(std::wstring_view section, std::wstring_view key) const;
  /// Changes the line of the key, or adds one at the end of the section, or the section at the end of the file. False,
  /// and nothing is changed, for names and values that a line cannot hold: line breaks, zero characters, "]" in a
  /// section, "=" in a key, an empty key, a key that would be read as a comment or a section.
  bool Set(std::wstring_view section, std::wstring_view key, std::wstring_view value);
  /// Removes every line of the key; false when there is none.
  bool Remove(std::wstring_view section, std::wstring_view key);

  /// Names in the order of the file, each once, in its first spelling.
  std::vector<WStr> Sections() const;
  std::vector<WStr> Keys(std::wstring_view section) const;

 private:
  enum class Kind { Other, Section, Key };
  struct Line {
    std::string text;    // without its ending
    std::string ending;  // "\n", "\r\n", or nothing on a last line
    Kind kind = Kind::Other;
    WStr name;         // of the section or key
    size_t value = 0;  // where the value begins in `text`
  };
  static Line Classify(std::string_view text, std::string_view ending);
  static WStr ValueOf(const Line& line);

  /// Calls `visit(index)` for each key line of a section, in order, until it gives true; gives that index, or npos.
  template <class Visit>
  size_t FindInSection(std::wstring_view section, Visit visit) const;
  size_t FindKey(std::wstring_view section, std::wstring_view key) const;
  void AddKey(std::wstring_view section, Line line);
  void Insert(size_t at, Line line);

  bool hasMark_ = false;
  std::vector<Line> lines_;
};

}  // namespace corvanta
