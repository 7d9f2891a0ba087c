// SPDX-License-Identifier: MIT
#include "host/io/ini.h"

#include <algorithm>
#include <utility>

#include "host/io/atomic_file.h"

namespace corvanta {
namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF";
constexpr size_t kNone = static_cast<size_t>(-1);
// Far beyond any settings file; a larger one is some other file that got the name.
constexpr size_t kMaxIniBytes = 16 << 20;

bool IsBlank(char c) { return c == ' ' || c == '\t' || c == '\r' || c == '\v' || c == '\f'; }

std::string_view Trim(std::string_view text) {
  while (!text.empty() && IsBlank(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsBlank(text.back())) text.remove_suffix(1);
  return text;
}

bool IsQuoted(std::string_view text) { return text.size() >= 2 && text.front() == '"' && text.back() == '"'; }

/// Text that one line can hold, and that comes back as it was.
bool FitsALine(std::wstring_view text) {
  return text.find_first_of(std::wstring_view(L"\r\n\0\xFEFF", 4)) == text.npos && FromUtf8(ToUtf8(text)) == text;
}

/// The value as it stands in the file.
std::string WrittenValue(std::wstring_view value) {
  const std::string text = ToUtf8(value);
  return Trim(text) != text || IsQuoted(text) ? '"' + text + '"' : text;
}

bool LooksLikeUtf16(std::string_view bytes) {
  return bytes.substr(0, 2) == "\xFF\xFE" || bytes.substr(0, 2) == "\xFE\xFF";
}

void AddOnce(std::vector<WStr>* names, const WStr& name) {
  for (const WStr& known : *names)
    if (EqualsNoCase(known, name)) return;
  names->push_back(name);
}

}  // namespace

IniFile::IniFile(std::string_view bytes) {
  hasMark_ = bytes.substr(0, kByteOrderMark.size()) == kByteOrderMark;
  if (hasMark_) bytes.remove_prefix(kByteOrderMark.size());
  while (!bytes.empty()) {
    const size_t newline = bytes.find('\n');
    const size_t end = std::min(newline, bytes.size());
    const bool carriage = newline != bytes.npos && end > 0 && bytes[end - 1] == '\r';
    const size_t length = end - carriage;
    const size_t taken = newline == bytes.npos ? bytes.size() : newline + 1;
    lines_.push_back(Classify(bytes.substr(0, length), bytes.substr(length, taken - length)));
    bytes.remove_prefix(taken);
  }
}

IniFile::Line IniFile::Classify(std::string_view text, std::string_view ending) {
  Line line{std::string(text), std::string(ending), Kind::Other, {}, 0};
  const std::string_view body = Trim(text);
  if (body.empty() || body[0] == ';' || body[0] == '#') return line;
  if (body[0] == '[') {
    const size_t close = body.find(']');
    if (close == body.npos) return line;
    line.kind = Kind::Section;
    line.name = FromUtf8(Trim(body.substr(1, close - 1)));
    return line;
  }
  const size_t equals = text.find('=');
  if (equals == text.npos || Trim(text.substr(0, equals)).empty()) return line;
  line.kind = Kind::Key;
  line.name = FromUtf8(Trim(text.substr(0, equals)));
  line.value = equals + 1;
  while (line.value < text.size() && IsBlank(text[line.value])) ++line.value;
  return line;
}

WStr IniFile::ValueOf(const Line& line) {
  std::string_view value = Trim(std::string_view(line.text).substr(line.value));
  if (IsQuoted(value)) value = value.substr(1, value.size() - 2);
  return FromUtf8(value);
}

WStr IniFile::Load(const WStr& path) {
  const FileContents file = ReadWholeFile(path, kMaxIniBytes);
  if (!file.error.empty() && !file.missing) return file.error;
  const std::string_view bytes(reinterpret_cast<const char*>(file.bytes.data()), file.bytes.size());
  if (LooksLikeUtf16(bytes))
    return Format(L"Cannot read \"%s\": it is UTF-16; save it as UTF-8 in a text editor.", path.c_str());
  *this = IniFile(bytes);
  return {};
}

WStr IniFile::Save(const WStr& path) const {
  const std::string bytes = Bytes();
  return WriteFileAtomically(path, {reinterpret_cast<const uint8_t*>(bytes.data()), bytes.size()});
}

std::string IniFile::Bytes() const {
  std::string out(hasMark_ ? kByteOrderMark : std::string_view());
  for (const Line& line : lines_) out.append(line.text).append(line.ending);
  return out;
}

template <class Visit>
size_t IniFile::FindInSection(std::wstring_view section, Visit visit) const {
  bool inside = section.empty();
  for (size_t i = 0; i < lines_.size(); ++i) {
    if (lines_[i].kind == Kind::Section) inside = EqualsNoCase(lines_[i].name, section);
    if (inside && lines_[i].kind == Kind::Key && visit(i)) return i;
  }
  return kNone;
}

size_t IniFile::FindKey(std::wstring_view section, std::wstring_view key) const {
  return FindInSection(section, [&](size_t i) { return EqualsNoCase(lines_[i].name, key); });
}

std::optional<WStr> IniFile::Get(std::wstring_view section, std::wstring_view key) const {
  const size_t at = FindKey(section, key);
  if (at == kNone) return std::nullopt;
  return ValueOf(lines_[at]);
}

bool IniFile::Set(std::wstring_view section, std::wstring_view key, std::wstring_view value) {
  if (!FitsALine(section) || !FitsALine(key) || !FitsALine(value)) return false;
  const Line header = Classify("[" + ToUtf8(section) + "]", "");
  Line line = Classify(ToUtf8(key) + "=" + WrittenValue(value), "");
  if (header.name != section || line.kind != Kind::Key || line.name != key || ValueOf(line) != value) return false;
  const size_t at = FindKey(section, key);
  if (at == kNone) {
    AddKey(section, std::move(line));
  } else if (Line& old = lines_[at]; ValueOf(old) != value) {
    old = Classify(old.text.substr(0, old.value) + WrittenValue(value), old.ending);
  }
  return true;
}

void IniFile::AddKey(std::wstring_view section, Line line) {
  // Behind the last key of the section's first block: comments below that usually belong to what follows.
  size_t behind = section.empty() ? 0 : kNone;
  for (size_t i = 0; i < lines_.size(); ++i) {
    if (lines_[i].kind == Kind::Section) {
      if (behind != kNone) break;
      if (EqualsNoCase(lines_[i].name, section)) behind = i + 1;
    } else if (lines_[i].kind == Kind::Key && behind != kNone) {
      behind = i + 1;
    }
  }
  if (behind == kNone) {
    if (!lines_.empty() && !Trim(lines_.back().text).empty()) Insert(lines_.size(), Classify("", ""));
    Insert(lines_.size(), Classify("[" + ToUtf8(section) + "]", ""));
    behind = lines_.size();
  }
  Insert(behind, std::move(line));
}

void IniFile::Insert(size_t at, Line line) {
  const std::string ending = lines_.empty() || lines_[0].ending.empty() ? "\n" : lines_[0].ending;
  if (at > 0 && lines_[at - 1].ending.empty()) lines_[at - 1].ending = ending;
  line.ending = ending;
  lines_.insert(lines_.begin() + at, std::move(line));
}

bool IniFile::Remove(std::wstring_view section, std::wstring_view key) {
  std::vector<size_t> found;
  FindInSection(section, [&](size_t i) {
    if (EqualsNoCase(lines_[i].name, key)) found.push_back(i);
    return false;
  });
  for (auto i = found.rbegin(); i != found.rend(); ++i) lines_.erase(lines_.begin() + *i);
  return !found.empty();
}

std::vector<WStr> IniFile::Sections() const {
  std::vector<WStr> out;
  for (const Line& line : lines_)
    if (line.kind == Kind::Section) AddOnce(&out, line.name);
  return out;
}

std::vector<WStr> IniFile::Keys(std::wstring_view section) const {
  std::vector<WStr> out;
  FindInSection(section, [&](size_t i) {
    AddOnce(&out, lines_[i].name);
    return false;
  });
  return out;
}

}  // namespace corvanta
