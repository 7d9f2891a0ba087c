// SPDX-License-Identifier: MIT
#include "plugin/fbx/format/document.h"

#include <algorithm>
#include <cassert>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <limits>
#include <memory>

#include "plugin/fbx/format/ascii_parser.h"
#include "plugin/fbx/format/binary_parser.h"
#include "plugin/fbx/format/property_layout.h"

namespace tavrilon::fbx {

namespace {
constexpr int kOldestVersion = 7100, kNewestVersion = 7700;
constexpr uint64_t kInflatedPerByte = 100;
// No record and no property takes less than two bytes, so 32 bits count those of a file of this size.
constexpr uint64_t kLargestFile = 8'000'000'000;
}  // namespace

std::string_view RecordView::Name() const {
  if (!document_) return {};
  const FbxDocument::Record& record = document_->records_[index_];
  return {reinterpret_cast<const char*>(document_->bytes_.data()) + record.name, record.nameLength};
}

size_t RecordView::NumProperties() const { return document_ ? document_->records_[index_].numProperties : 0; }

PropertyView RecordView::Property(size_t i) const {
  assert(i < NumProperties() && "the record has no such property");
  return {document_, document_->records_[index_].firstProperty + static_cast<uint32_t>(i)};
}

int64_t RecordView::Int(size_t i, int64_t otherwise) const {
  return i < NumProperties() ? Property(i).AsInt(otherwise) : otherwise;
}

double RecordView::Double(size_t i, double otherwise) const {
  return i < NumProperties() ? Property(i).AsDouble(otherwise) : otherwise;
}

std::string_view RecordView::Text(size_t i) const {
  return i < NumProperties() ? Property(i).AsText() : std::string_view();
}

RecordView RecordView::FirstChild() const {
  if (!document_) return {};
  const uint32_t child = document_->records_[index_].firstChild;
  return child == FbxDocument::kNoRecord ? RecordView() : RecordView(document_, child);
}

RecordView RecordView::Next() const {
  if (!document_) return {};
  const uint32_t next = document_->records_[index_].next;
  return next == FbxDocument::kNoRecord ? RecordView() : RecordView(document_, next);
}

RecordView RecordView::Find(std::string_view name) const {
  RecordView child = FirstChild();
  while (child && child.Name() != name) child = child.Next();
  return child;
}

std::string RecordView::Place() const {
  if (!document_) return {};
  return (document_->ascii_ ? "line " : "byte ") + std::to_string(document_->records_[index_].at) + ", " +
         document_->PathOf(index_);
}

RecordView::Iterator::Iterator(RecordView at) : document_(at.document_), index_(at.index_) {}
RecordView RecordView::Iterator::operator*() const { return {document_, index_}; }
RecordView::Iterator& RecordView::Iterator::operator++() {
  return *this = Iterator(RecordView(document_, index_).Next());
}
bool RecordView::Iterator::operator!=(const Iterator& other) const {
  return document_ != other.document_ || index_ != other.index_;
}

bool FbxDocument::Parse(std::vector<uint8_t> bytes, std::string fileName, const ReadLimits& limits) {
  Clear();
  fileName_ = std::move(fileName);
  bytes_ = std::move(bytes);
  if (bytes_.empty()) return status_.Fail(fileName_ + ": the file is empty");
  if (bytes_.size() > kLargestFile) return status_.Fail(fileName_ + ": files of more than 8 GB are not read");
  inflateBudget_ = limits.inflatedBytes + kInflatedPerByte * bytes_.size();
  const size_t common = std::min(bytes_.size(), kBinaryMagicSize);
  // A binary file may be cut within its first bytes; no ASCII file begins so.
  ascii_ = std::memcmp(bytes_.data(), kBinaryMagic, common) != 0;
  const bool good = ascii_ ? AsciiParser(*this, limits).Parse() : BinaryParser(*this, limits).Parse();
  if (good) return true;
  const FbxStatus status = status_;
  const int version = version_;
  Clear();
  status_ = status;
  version_ = version;
  return false;
}

bool FbxDocument::Load(const std::string& path, const ReadLimits& limits) {
  Clear();
  fileName_ = path;
  std::error_code error;
  const uintmax_t size = std::filesystem::file_size(path, error);
  if (error) return status_.Fail(path + ": cannot be read: " + error.message());
  const std::unique_ptr<FILE, int (*)(FILE*)> file(std::fopen(path.c_str(), "rb"), &std::fclose);
  if (!file) return status_.Fail(path + ": cannot be opened: " + std::strerror(errno));
  std::vector<uint8_t> bytes(size);
  if (std::fread(bytes.data(), 1, size, file.get()) != size)
    return status_.Fail(path + ": cannot be read to its end: " + std::strerror(errno));
  return Parse(std::move(bytes), path, limits);
}

void FbxDocument::Clear() {
  bytes_ = {};
  records_ = {};
  properties_ = {};
  scratch_ = {};
  version_ = 0;
  ascii_ = false;
  inflateBudget_ = 0;
  status_.Clear();
}

uint32_t FbxDocument::Append(uint64_t at, uint32_t parent, uint32_t& lastChild) {
  const auto index = static_cast<uint32_t>(records_.size());
  Record record;
  record.at = at;
  record.firstProperty = static_cast<uint32_t>(properties_.size());
  record.parent = parent;
  records_.push_back(record);
  if (lastChild != kNoRecord)
    records_[lastChild].next = index;
  else if (parent != kNoRecord)
    records_[parent].firstChild = index;
  return lastChild = index;
}

RecordView FbxDocument::FirstRecord() const { return records_.empty() ? RecordView() : RecordView(this, 0); }

RecordView FbxDocument::Find(std::string_view name) const {
  RecordView record = FirstRecord();
  while (record && record.Name() != name) record = record.Next();
  return record;
}

size_t FbxDocument::MemoryUsed() const {
  return bytes_.capacity() + scratch_.capacity() + records_.capacity() * sizeof(Record) +
         properties_.capacity() * sizeof(uint64_t);
}

// Names go to terminals and logs: what is not plain ASCII shows as a question mark.
std::string FbxDocument::PathOf(uint32_t record) const {
  std::vector<uint32_t> path;
  for (; record != kNoRecord; record = records_[record].parent) path.push_back(record);
  std::string text;
  for (size_t i = path.size(); i-- > 0;) {
    for (const char c : RecordView(this, path[i]).Name()) text += c >= ' ' && c < 127 ? c : '?';
    if (i > 0) text += '/';
  }
  return text;
}

bool FbxDocument::Fail(uint64_t at, uint32_t record, const std::string& text) const {
  const std::string path = PathOf(record);
  return status_.Fail(fileName_ + (ascii_ ? ": line " : ": byte ") + std::to_string(at) + (path.empty() ? "" : ", ") +
                      path + ": " + text);
}

bool FbxDocument::CheckVersion(uint64_t version) {
  version_ = static_cast<int>(std::min<uint64_t>(version, std::numeric_limits<int>::max()));
  if (version_ >= kOldestVersion && version_ <= kNewestVersion) return true;
  return status_.Fail(fileName_ + ": this is an FBX file of version " + std::to_string(version_) + "; " +
                      std::to_string(kOldestVersion) + " to " + std::to_string(kNewestVersion) +
                      " are read. Export it again as version 7400 or 7500");
}

uint32_t FbxDocument::RecordOfProperty(uint32_t property) const {
  // The last record that does not begin behind it. Records without properties stand before the one that has it.
  const auto after = std::upper_bound(records_.begin(), records_.end(), property,
                                      [](uint32_t p, const Record& record) { return p < record.firstProperty; });
  return static_cast<uint32_t>(after - records_.begin() - 1);
}

bool FbxDocument::FailAtProperty(uint32_t property, const std::string& text) const {
  const uint32_t record = RecordOfProperty(property);
  return Fail(ascii_ ? records_[record].at : properties_[property], record, text);
}

bool FbxDocument::Spend(uint64_t bytes, uint32_t property) const {
  if (bytes > inflateBudget_)
    return FailAtProperty(property, "the arrays of this file are larger than is allowed; this one takes " +
                                        std::to_string(bytes) + " bytes and " + std::to_string(inflateBudget_) +
                                        " are left");
  inflateBudget_ -= bytes;
  return true;
}

}  // namespace tavrilon::fbx
