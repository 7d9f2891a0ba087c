// SPDX-License-Identifier: MIT
// A record: end offset, number of properties, bytes of properties (u32 each, u64 from version 7500), length of the name
// as u8, name, properties, then children up to the end. A block of children is closed by a record of zeros.
#include "plugin/fbx/format/binary_parser.h"

#include "plugin/fbx/format/property_layout.h"

namespace tavrilon::fbx {

namespace {

// Deflate codes at most 258 bytes in 2 bits; with the code's own cost no stream grows more than this.
constexpr uint64_t kLargestRatio = 1032;

// What files hold in their mean, so that the two vectors seldom grow while they are filled.
constexpr size_t kBytesPerRecord = 80, kBytesPerProperty = 40;

constexpr char kEndsEarly[] = "the file was not written or copied to its end";

}  // namespace

bool BinaryParser::Parse() {
  if (!ParseHeader()) return false;
  document_.records_.reserve(document_.bytes_.size() / kBytesPerRecord + 1);
  document_.properties_.reserve(document_.bytes_.size() / kBytesPerProperty + 1);
  open_.push_back({FbxDocument::kNoRecord, FbxDocument::kNoRecord, document_.bytes_.size()});
  while (!open_.empty())
    if (!ParseRecord()) return false;
  return true;
}

bool BinaryParser::ParseHeader() {
  const std::vector<uint8_t>& bytes = document_.bytes_;
  if (bytes.size() < kBinaryHeaderSize) return Fail(bytes.size(), kEndsEarly);
  if (bytes[kBinaryMagicSize] != 0)
    return Fail(kBinaryMagicSize, "this is no little-endian FBX file; others are not read");
  at_ = kBinaryHeaderSize;
  if (!document_.CheckVersion(LoadFrom<uint32_t>(&bytes[kBinaryMagicSize + 1]))) return false;
  wide_ = document_.Version() >= kWideVersion;
  return true;
}

uint64_t BinaryParser::Field(uint64_t at) const {
  const uint8_t* field = document_.bytes_.data() + at;
  return wide_ ? LoadFrom<uint64_t>(field) : LoadFrom<uint32_t>(field);
}

bool BinaryParser::Fail(uint64_t at, const std::string& text) const {
  return document_.Fail(at, open_.empty() ? FbxDocument::kNoRecord : open_.back().record, text);
}

// Reads one record up to its children, or the end of a block.
bool BinaryParser::ParseRecord() {
  const uint64_t parentEnd = open_.back().end, field = wide_ ? 8 : 4, header = 3 * field + 1;
  if (at_ == parentEnd && open_.size() > 1) return CloseBlock();  // without its zeros, but there is no doubt
  if (parentEnd - at_ < header)
    return Fail(at_, open_.size() > 1 ? "the record ends within the head of a child" : kEndsEarly);
  const uint64_t at = at_, end = Field(at), count = Field(at + field), propertyBytes = Field(at + 2 * field);
  const uint8_t nameLength = document_.bytes_[at + 3 * field];
  if (end == 0 && count == 0 && propertyBytes == 0 && nameLength == 0) {
    at_ += header;
    return CloseBlock();
  }
  at_ += header + nameLength;
  if (at_ > parentEnd) return Fail(at, "the name of a record ends early");
  if (static_cast<int>(open_.size()) > limits_.depth)
    return Fail(at, "records are nested deeper than " + std::to_string(limits_.depth) + " levels");
  const uint32_t record = document_.Append(at, open_.back().record, open_.back().lastChild);
  document_.records_[record].name = at + header;
  document_.records_[record].nameLength = nameLength;
  open_.push_back({record, FbxDocument::kNoRecord, end});
  if (end < at_) return Fail(at, "the record ends at byte " + std::to_string(end) + ", before its properties");
  if (end > parentEnd)
    return Fail(at, "the record ends at byte " + std::to_string(end) + ", behind " +
                        (open_.size() > 2 ? "its parent" : std::string("the end of the file; ") + kEndsEarly));
  if (propertyBytes > end - at_)
    return Fail(at_, "the properties take " + std::to_string(propertyBytes) + " bytes, more than the record");
  if (!ParseProperties(count, at_ + propertyBytes)) return false;
  if (at_ == end) open_.pop_back();
  return true;
}

bool BinaryParser::CloseBlock() {
  // Behind the records of the file itself comes the footer.
  if (open_.size() > 1 && at_ != open_.back().end)
    return Fail(at_, "the block is closed before the end of its record, byte " + std::to_string(open_.back().end));
  open_.pop_back();
  return true;
}

bool BinaryParser::ParseProperties(uint64_t count, uint64_t end) {
  if (count > (end - at_) / 2)  // the smallest property is a letter and a byte
    return Fail(at_, std::to_string(count) + " properties cannot lie in " + std::to_string(end - at_) + " bytes");
  document_.records_.back().numProperties = static_cast<uint32_t>(count);
  for (uint64_t i = 0; i < count; ++i)
    if (!ParseProperty(end)) return false;
  return at_ == end || Fail(at_, "the properties end before byte " + std::to_string(end) + ", where they should");
}

bool BinaryParser::ParseProperty(uint64_t end) {
  if (at_ == end) return Fail(at_, "the properties end early");
  const uint64_t start = at_, left = end - at_ - 1;
  const uint8_t* data = document_.bytes_.data() + at_;
  const PropertyLayout layout = LayoutOf(*data);
  uint64_t size = layout.size;
  switch (layout.kind) {
    case PropertyKind::Unknown:
      return Fail(start, "a property of unknown type, code " + std::to_string(*data));
    case PropertyKind::Number:
      if (left < size) return Fail(start, "the number ends early");
      break;
    case PropertyKind::Text:
      if (left < 4) return Fail(start, "the text ends early");
      size = 4 + uint64_t{LoadFrom<uint32_t>(data + 1)};
      if (left < size) return Fail(start, "the text ends early");
      break;
    case PropertyKind::Array:
      if (!ParseArray(layout, end)) return false;
      size = kArrayHeader + LoadFrom<uint32_t>(data + 9);
      break;
  }
  document_.properties_.push_back(start);
  at_ += 1 + size;
  return true;
}

bool BinaryParser::ParseArray(const PropertyLayout& layout, uint64_t end) {
  const uint8_t* data = document_.bytes_.data() + at_ + 1;
  const uint64_t left = end - at_ - 1;
  if (left < kArrayHeader) return Fail(at_, "the array ends early");
  const uint64_t bytes = uint64_t{LoadFrom<uint32_t>(data)} * layout.size;
  const uint32_t encoding = LoadFrom<uint32_t>(data + 4), packed = LoadFrom<uint32_t>(data + 8);
  if (left - kArrayHeader < packed) return Fail(at_, "the array ends early");
  if (encoding != kRawEncoding && encoding != kZlibEncoding)
    return Fail(at_, "the array is packed in an unknown way, number " + std::to_string(encoding));
  const bool fits = encoding == kRawEncoding ? bytes == packed : bytes <= packed * kLargestRatio;
  return fits || Fail(at_, "the array cannot hold " + std::to_string(bytes / layout.size) + " values in " +
                               std::to_string(packed) + " bytes");
}

}  // namespace tavrilon::fbx
