// SPDX-License-Identifier: MIT
#include "plugin/fbx/format/ascii_parser.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstring>
#include <limits>
#include <type_traits>

#include "plugin/fbx/format/property_layout.h"

namespace tavrilon::fbx {

namespace {

constexpr std::string_view kByteOrderMark = "\xEF\xBB\xBF", kVersionComment = "; FBX ",
                           kFirstRecord = "FBXHeaderExtension";

constexpr std::array<bool, 256> EndsWordTable() {
  std::array<bool, 256> ends{};
  for (int c = 0; c <= ' '; ++c) ends[c] = true;
  for (const char c : {',', ':', ';', '{', '}', '"', '*', '\x7F'}) ends[static_cast<uint8_t>(c)] = true;
  return ends;
}
constexpr std::array<bool, 256> kEndsWord = EndsWordTable();

/// What stands in texts for characters that cannot.
struct Entity {
  std::string_view name;
  char meaning;
};
constexpr Entity kEntities[] = {{"&quot;", '"'}, {"&lf;", '\n'}, {"&cr;", '\r'}};

/// Below the objects, the records whose first value is the name of an object.
constexpr std::string_view kNamingRecords[] = {"SceneInfo", "TextureName", "Media"};

/// "; FBX 7.4.0 project file" gives 7400; 0 for other text.
int VersionOfComment(std::string_view line) {
  if (line.substr(0, kVersionComment.size()) != kVersionComment) return 0;
  line.remove_prefix(kVersionComment.size());
  int version = 0;
  for (const int unit : {1000, 100, 10}) {
    int part = 0;
    const auto read = std::from_chars(line.data(), line.data() + line.size(), part);
    if (read.ec != std::errc() || part < 0 || part > 99) return 0;
    version += part * unit;
    line.remove_prefix(std::min<size_t>(read.ptr - line.data() + 1, line.size()));
  }
  return version;
}

bool IsTrue(std::string_view word) { return word == "T" || word == "Y"; }
bool IsFalse(std::string_view word) { return word == "F" || word == "N"; }

}  // namespace

bool AsciiParser::Parse() {
  file_.swap(document_.bytes_);
  text_ = {reinterpret_cast<const char*>(file_.data()), file_.size()};
  document_.bytes_.reserve(file_.size());
  if (!ParseHeading()) return false;
  open_.push_back({FbxDocument::kNoRecord, FbxDocument::kNoRecord, 1});
  for (SkipBlanks(); at_ < text_.size(); SkipBlanks()) {
    if (!Accept('}')) {
      if (!ParseRecord()) return false;
    } else if (open_.size() == 1) {
      return Fail("a brace closes what was not opened");
    } else {
      open_.pop_back();
    }
  }
  if (open_.size() > 1)
    return Fail("the file ends within the block that begins in line " + std::to_string(open_.back().line) +
                "; it was not written or copied to its end");
  if (document_.version_ == 0)
    return Fail("the file does not tell its version; FBXHeaderExtension/FBXVersion is missing");
  return true;
}

// The comments at the top tell the version, mostly. Without them the file must begin with its first record.
bool AsciiParser::ParseHeading() {
  if (text_.substr(0, kByteOrderMark.size()) == kByteOrderMark) at_ = kByteOrderMark.size();
  std::string_view rest = text_.substr(at_);
  for (;;) {
    rest.remove_prefix(std::min(rest.find_first_not_of(" \t\r\n"), rest.size()));
    if (rest.empty() || rest[0] != ';') break;
    const std::string_view line = rest.substr(0, rest.find('\n'));
    if (const int version = VersionOfComment(line)) return document_.CheckVersion(version);
    rest.remove_prefix(line.size());
  }
  if (rest.substr(0, kFirstRecord.size()) == kFirstRecord) return true;
  return document_.status_.Fail(document_.fileName_ +
                                ": this is no FBX file; it begins neither as a binary one nor as an ASCII one does");
}

bool AsciiParser::ParseRecord() {
  const std::string_view name = Word();
  if (name.empty()) return Fail("a record's name should stand here, not " + Found());
  if (name.size() > 255) return Fail("a record's name is longer than 255 characters");
  if (static_cast<int>(open_.size()) > limits_.depth)
    return Fail("records are nested deeper than " + std::to_string(limits_.depth) + " levels");
  const uint32_t index = document_.Append(line_, open_.back().record, open_.back().lastChild);
  FbxDocument::Record& record = document_.records_.back();
  record.name = document_.bytes_.size();
  record.nameLength = static_cast<uint8_t>(name.size());
  document_.bytes_.insert(document_.bytes_.end(), name.begin(), name.end());
  open_.push_back({index, FbxDocument::kNoRecord, line_});
  at_ += name.size();
  SkipBlanks();
  return Expect(':', "behind a record's name") && ParseValues() && FinishRecord();
}

bool AsciiParser::ParseValues() {
  SkipBlanks();
  if (Accept(',')) SkipBlanks();
  while (at_ < text_.size() && Peek() != '{' && Peek() != '}' && !IsNameNext(Word())) {
    if (!ParseValue()) return false;
    SkipBlanks();
    if (!Accept(',')) return true;
    SkipBlanks();
  }
  return true;
}

bool AsciiParser::ParseValue() {
  if (Accept('"')) return ParseText();
  if (Accept('*')) return ParseArray();
  const std::string_view word = Word();
  if (word.empty()) return Fail("a value should stand here, not " + Found());
  at_ += word.size();
  const std::optional<AsciiNumber> number = ReadAsciiNumber(word);
  if (number && !number->isInt) {
    BeginProperty('D');
    Put(number->real);
  } else if (number && number->whole == static_cast<int32_t>(number->whole)) {
    BeginProperty('I');
    Put(static_cast<int32_t>(number->whole));
  } else if (number) {
    BeginProperty('L');
    Put(number->whole);
  } else if (word.size() == 1) {
    BeginProperty('C');
    Put(word[0]);
  } else {
    BeginProperty('S');
    Put(static_cast<uint32_t>(word.size()));
    document_.bytes_.insert(document_.bytes_.end(), word.begin(), word.end());
  }
  return true;
}

// Behind the opening quote.
bool AsciiParser::ParseText() {
  const size_t end = text_.find('"', at_);
  if (end == text_.npos) return Fail("the text has no closing quote");
  std::string_view text = text_.substr(at_, end - at_);
  at_ = end + 1;
  line_ += static_cast<uint64_t>(std::count(text.begin(), text.end(), '\n'));
  if (text.size() > std::numeric_limits<uint32_t>::max()) return Fail("the text is longer than 4 GB");
  std::vector<uint8_t>& bytes = document_.bytes_;
  BeginProperty('S');
  Put(uint32_t{0});
  const size_t begin = bytes.size();
  while (!text.empty()) {
    const size_t plain = std::min(text.find('&'), text.size());
    bytes.insert(bytes.end(), text.begin(), text.begin() + plain);
    text.remove_prefix(plain);
    if (text.empty()) break;
    const auto* entity = std::find_if(std::begin(kEntities), std::end(kEntities), [&](const Entity& candidate) {
      return text.substr(0, candidate.name.size()) == candidate.name;
    });
    const bool known = entity != std::end(kEntities);
    bytes.push_back(known ? entity->meaning : '&');
    text.remove_prefix(known ? entity->name.size() : 1);
  }
  const auto size = static_cast<uint32_t>(bytes.size() - begin);
  std::memcpy(&bytes[begin - sizeof(size)], &size, sizeof(size));
  return true;
}

// Behind the star.
bool AsciiParser::ParseArray() {
  SkipBlanks();
  const std::string_view word = Word();
  const std::optional<AsciiNumber> count = ReadAsciiNumber(word);
  if (!count || !count->isInt || count->whole < 0) return Fail("the count of an array should stand behind the star");
  at_ += word.size();
  if (count->whole > std::numeric_limits<uint32_t>::max()) return Fail("an array has more values than a file can hold");
  SkipBlanks();
  if (!Expect('{', "behind the count of an array")) return false;
  SkipBlanks();
  if (const std::string_view name = Word(); IsNameNext(name)) {
    at_ += name.size();
    SkipBlanks();
    Accept(':');
  }
  return ParseArrayValues(static_cast<uint64_t>(count->whole));
}

bool AsciiParser::ParseArrayValues(uint64_t count) {
  wholes_.clear();
  reals_.clear();
  for (SkipBlanks(); at_ < text_.size() && Peek() != '}'; SkipBlanks()) {
    const std::string_view word = Word();
    std::optional<AsciiNumber> number = ReadAsciiNumber(word);
    if (!number && IsTrue(word)) number = AsciiNumber{true, 1, 1};
    if (!number && IsFalse(word)) number = AsciiNumber{true, 0, 0};
    if (!number) return Fail("a number of the array should stand here, not " + Found());
    AddToArray(*number);
    at_ += word.size();
    SkipBlanks();
    if (!Accept(',') && Peek() != '}') break;
  }
  if (!Expect('}', "behind the values of an array")) return false;
  const size_t found = std::max(wholes_.size(), reals_.size());
  if (found != count)
    return Fail("the array should have " + std::to_string(count) + " values and has " + std::to_string(found));
  const auto fits = [](int64_t n) { return n == static_cast<int32_t>(n); };
  if (!reals_.empty()) {
    PutArray<double>('d', reals_);
  } else if (std::all_of(wholes_.begin(), wholes_.end(), fits)) {
    PutArray<int32_t>('i', wholes_);
  } else {
    PutArray<int64_t>('l', wholes_);
  }
  return true;
}

void AsciiParser::AddToArray(const AsciiNumber& number) {
  if (reals_.empty() && number.isInt) return wholes_.push_back(number.whole);
  if (reals_.empty()) reals_.assign(wholes_.begin(), wholes_.end());
  reals_.push_back(number.real);
}

bool AsciiParser::FinishRecord() {
  const uint32_t index = open_.back().record;
  FbxDocument::Record& record = document_.records_[index];
  record.numProperties = static_cast<uint32_t>(document_.properties_.size()) - record.firstProperty;
  NameObject(index);
  const RecordView view(&document_, index);
  if (open_.size() == 3 && view.Name() == "FBXVersion" &&
      RecordView(&document_, record.parent).Name() == kFirstRecord &&
      !document_.CheckVersion(static_cast<uint64_t>(std::max<int64_t>(view.Int(0), 0))))
    return false;
  if (Accept('{'))
    open_.back().line = line_;
  else
    open_.pop_back();
  return true;
}

// "Class::Name" becomes "Name 00 01 Class" where it names an object: second value, behind a number, of the records one
// level down (the objects, the document), and first value of a few others. Both forms have the same length. Names may
// hold further "::", classes cannot.
void AsciiParser::NameObject(uint32_t record) {
  const RecordView view(&document_, record);
  const bool naming =
      std::find(std::begin(kNamingRecords), std::end(kNamingRecords), view.Name()) != std::end(kNamingRecords);
  const bool object = open_.size() == 3 && view.NumProperties() > 1 && view.Property(0).IsNumber();
  if (!naming && !object) return;
  const size_t i = object ? 1 : 0;
  const std::string_view text = view.Text(i);
  const size_t colons = text.find("::");
  if (colons == text.npos) return;
  const std::string named =
      std::string(text.substr(colons + 2)) + std::string("\0\1", 2) + std::string(text.substr(0, colons));
  const uint64_t at = document_.properties_[document_.records_[record].firstProperty + i] + 5;
  std::memcpy(&document_.bytes_[at], named.data(), named.size());
}

void AsciiParser::SkipBlanks() {
  for (; at_ < text_.size(); ++at_) {
    const char c = text_[at_];
    if (c == ';') {
      at_ = std::min(text_.find('\n', at_), text_.size());
      if (at_ == text_.size()) return;
      ++line_;
    } else if (c == '\n') {
      ++line_;
    } else if (c != ' ' && c != '\t' && c != '\r') {
      return;
    }
  }
}

bool AsciiParser::Accept(char c) {
  if (at_ == text_.size() || text_[at_] != c) return false;
  ++at_;
  return true;
}

/// What stands here up to a blank or a sign that has a meaning.
std::string_view AsciiParser::Word() const {
  size_t end = at_;
  while (end < text_.size() && !kEndsWord[static_cast<uint8_t>(text_[end])]) ++end;
  return text_.substr(at_, end - at_);
}

bool AsciiParser::IsNameNext(std::string_view word) const {
  if (word.empty()) return false;
  const size_t next = text_.find_first_not_of(" \t", at_ + word.size());
  return next != text_.npos && text_[next] == ':';
}

bool AsciiParser::Expect(char c, const char* where) {
  return Accept(c) || Fail(std::string("a \"") + c + "\" should stand " + where + ", not " + Found());
}

/// What stands here, for errors.
std::string AsciiParser::Found() const {
  if (at_ == text_.size()) return "the end of the file";
  if (const std::string_view word = Word(); !word.empty()) return '"' + std::string(word.substr(0, 40)) + '"';
  return Peek() > ' ' && Peek() < 127 ? std::string("\"") + Peek() + '"' : "a control character";
}

bool AsciiParser::Fail(const std::string& text) const {
  return document_.Fail(line_, open_.empty() ? FbxDocument::kNoRecord : open_.back().record, text);
}

void AsciiParser::BeginProperty(char letter) {
  document_.properties_.push_back(document_.bytes_.size());
  document_.bytes_.push_back(static_cast<uint8_t>(letter));
}

template <class T>
void AsciiParser::Put(T value) {
  const auto* bytes = reinterpret_cast<const uint8_t*>(&value);
  document_.bytes_.insert(document_.bytes_.end(), bytes, bytes + sizeof(T));
}

template <class To, class From>
void AsciiParser::PutArray(char letter, const std::vector<From>& values) {
  BeginProperty(letter);
  Put(static_cast<uint32_t>(values.size()));
  Put(kRawEncoding);
  Put(static_cast<uint32_t>(values.size() * sizeof(To)));
  for (const From value : values) Put(static_cast<To>(value));
}

}  // namespace tavrilon::fbx
