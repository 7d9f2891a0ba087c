// SPDX-License-Identifier: MIT
#include "plugin/fbx/format/document_writer.h"

#include <zlib.h>

#include <algorithm>
#include <cassert>
#include <cstring>
#include <limits>

#include "plugin/fbx/format/property_layout.h"

namespace tavrilon::fbx {

namespace {

// The code of kFileId and kCreationTime, and what every file ends with.
constexpr std::array<uint8_t, 16> kFooterId = {0xfa, 0xbc, 0xab, 0x09, 0xd0, 0xc8, 0xd4, 0x66,
                                               0xb1, 0x76, 0xfb, 0x83, 0x1c, 0xf7, 0x26, 0x7e};
constexpr std::array<uint8_t, 16> kFooterMagic = {0xf8, 0x5a, 0x8c, 0x6a, 0xde, 0xf5, 0xd9, 0x7e,
                                                  0xec, 0xe9, 0x0c, 0xe3, 0x75, 0x8f, 0x29, 0x0b};
constexpr size_t kFooterZeros = 120;

// Below this deflating costs readers and writers more than the bytes it saves.
constexpr size_t kSmallestDeflated = 1024;

constexpr size_t kNarrow = 4, kWide = 8;  // bytes of a field in a record's head

}  // namespace

// One stream for the whole file: making a new one costs more than most arrays do.
struct FbxDocumentWriter::Deflater {
  /// The last array of one type and where its packed bytes lie in the file.
  struct Last {
    std::vector<uint8_t> values;
    size_t at = 0;
    size_t size = 0;
  };

  ~Deflater() {
    if (good) deflateEnd(&stream);
  }
  Last& LastOf(char letter) { return last[letter == 'i' ? 0 : letter == 'l' ? 1 : letter == 'f' ? 2 : 3]; }
  bool Append(std::vector<uint8_t>& file, std::span<const uint8_t> values);

  z_stream stream{};
  Last last[4];
  bool good = deflateInit(&stream, Z_BEST_SPEED) == Z_OK;
};

// False, with `file` as it was, when the packed values would not be smaller.
bool FbxDocumentWriter::Deflater::Append(std::vector<uint8_t>& file, std::span<const uint8_t> values) {
  if (!good || deflateReset(&stream) != Z_OK) return false;
  const size_t at = file.size();
  file.resize(at + values.size());
  stream.next_in = const_cast<Bytef*>(values.data());
  stream.avail_in = static_cast<uInt>(values.size());
  stream.next_out = file.data() + at;
  stream.avail_out = static_cast<uInt>(values.size());
  const bool done = deflate(&stream, Z_FINISH) == Z_STREAM_END;
  file.resize(done ? at + stream.total_out : at);
  return done;
}

FbxDocumentWriter::FbxDocumentWriter(int version) : version_(version) {
  Check(version >= 7100 && version <= 7700);
  PutBytes(kBinaryMagic, kBinaryMagicSize);
  Put(uint8_t{0});
  Put(static_cast<uint32_t>(version));
}

FbxDocumentWriter::~FbxDocumentWriter() = default;

bool FbxDocumentWriter::Check(bool holds) {
  assert(holds && "calls of the FBX writer are out of order or out of range");
  broken_ |= !holds;
  return holds;
}

template <class T>
void FbxDocumentWriter::Put(T value) {
  PutBytes(&value, sizeof(T));
}

void FbxDocumentWriter::PutBytes(const void* bytes, size_t size) {
  const auto* begin = static_cast<const uint8_t*>(bytes);
  bytes_.insert(bytes_.end(), begin, begin + size);
}

// Fields of 32 bits that overflow are found by Finish, from the size of the file.
void FbxDocumentWriter::PutField(size_t at, uint64_t value) {
  std::memcpy(&bytes_[at], &value, version_ < kWideVersion ? kNarrow : kWide);
}

size_t FbxDocumentWriter::HeadSize() const { return 3 * (version_ < kWideVersion ? kNarrow : kWide) + 1; }

void FbxDocumentWriter::Begin(std::string_view name) {
  Check(name.size() <= 255);
  if (!open_.empty() && !open_.back().hasChildren) {
    open_.back().hasChildren = true;
    open_.back().propertyBytes = bytes_.size() - open_.back().propertiesAt;
  }
  const size_t at = bytes_.size();
  bytes_.resize(at + HeadSize());
  bytes_.back() = static_cast<uint8_t>(name.size());
  PutBytes(name.data(), std::min<size_t>(name.size(), 255));
  open_.push_back({at, bytes_.size(), 0, 0, false});
}

void FbxDocumentWriter::End(bool block) {
  if (!Check(!open_.empty())) return;
  Open& record = open_.back();
  if (!record.hasChildren) record.propertyBytes = bytes_.size() - record.propertiesAt;
  if (record.hasChildren || block) bytes_.resize(bytes_.size() + HeadSize());
  const size_t field = version_ < kWideVersion ? kNarrow : kWide;
  PutField(record.at, bytes_.size());
  PutField(record.at + field, record.numProperties);
  PutField(record.at + 2 * field, record.propertyBytes);
  open_.pop_back();
}

void FbxDocumentWriter::BeginProperty(char letter) {
  if (!Check(!open_.empty() && !open_.back().hasChildren)) return;
  ++open_.back().numProperties;
  bytes_.push_back(static_cast<uint8_t>(letter));
}

template <class T>
void FbxDocumentWriter::PutNumber(char letter, T value) {
  BeginProperty(letter);
  Put(value);
}

void FbxDocumentWriter::Bool(bool value) { PutNumber('C', static_cast<uint8_t>(value)); }
void FbxDocumentWriter::Int16(int16_t value) { PutNumber('Y', value); }
void FbxDocumentWriter::Int(int32_t value) { PutNumber('I', value); }
void FbxDocumentWriter::Long(int64_t value) { PutNumber('L', value); }
void FbxDocumentWriter::Float(float value) { PutNumber('F', value); }
void FbxDocumentWriter::Double(double value) { PutNumber('D', value); }

void FbxDocumentWriter::Text(std::string_view utf8) {
  Check(utf8.size() <= std::numeric_limits<uint32_t>::max());
  PutNumber('S', static_cast<uint32_t>(utf8.size()));
  PutBytes(utf8.data(), utf8.size());
}

void FbxDocumentWriter::Raw(std::span<const uint8_t> bytes) {
  Check(bytes.size() <= std::numeric_limits<uint32_t>::max());
  PutNumber('R', static_cast<uint32_t>(bytes.size()));
  PutBytes(bytes.data(), bytes.size());
}

void FbxDocumentWriter::ObjectName(std::string_view name, std::string_view objectClass) {
  std::string text(name);
  text.append("\0\1", 2).append(objectClass);
  Text(text);
}

void FbxDocumentWriter::Array(std::span<const int32_t> values) { PutArray('i', values); }
void FbxDocumentWriter::Array(std::span<const int64_t> values) { PutArray('l', values); }
void FbxDocumentWriter::Array(std::span<const float> values) { PutArray('f', values); }
void FbxDocumentWriter::Array(std::span<const double> values) { PutArray('d', values); }

template <class T>
void FbxDocumentWriter::PutArray(char letter, std::span<const T> values) {
  const std::span<const uint8_t> raw(reinterpret_cast<const uint8_t*>(values.data()), values.size_bytes());
  if (!Check(raw.size() <= std::numeric_limits<uint32_t>::max())) return;
  PutNumber(letter, static_cast<uint32_t>(values.size()));
  const size_t head = bytes_.size();
  Put(kRawEncoding);
  Put(static_cast<uint32_t>(raw.size()));
  if (raw.size() < kSmallestDeflated) return PutBytes(raw.data(), raw.size());
  if (!deflater_) deflater_ = std::make_unique<Deflater>();
  Deflater::Last& last = deflater_->LastOf(letter);
  if (std::equal(raw.begin(), raw.end(), last.values.begin(), last.values.end())) {
    bytes_.resize(bytes_.size() + last.size);
    std::memcpy(&bytes_[bytes_.size() - last.size], &bytes_[last.at], last.size);
  } else if (deflater_->Append(bytes_, raw)) {
    last.values.assign(raw.begin(), raw.end());
    last.at = head + 8;
    last.size = bytes_.size() - last.at;
  } else {
    return PutBytes(raw.data(), raw.size());
  }
  const uint32_t packed[] = {kZlibEncoding, static_cast<uint32_t>(last.size)};
  std::memcpy(&bytes_[head], packed, sizeof(packed));
}

void FbxDocumentWriter::Leaf(std::string_view name, int32_t value) {
  Begin(name);
  Int(value);
  End();
}

void FbxDocumentWriter::Leaf(std::string_view name, int64_t value) {
  Begin(name);
  Long(value);
  End();
}

void FbxDocumentWriter::Leaf(std::string_view name, double value) {
  Begin(name);
  Double(value);
  End();
}

void FbxDocumentWriter::Leaf(std::string_view name, std::string_view text) {
  Begin(name);
  Text(text);
  End();
}

void FbxDocumentWriter::BeginRow(std::string_view name, std::string_view type, std::string_view label,
                                 std::string_view flags) {
  Begin("P");
  for (const std::string_view text : {name, type, label, flags}) Text(text);
}

void FbxDocumentWriter::Property(std::string_view name, std::string_view type, std::string_view label,
                                 std::string_view flags) {
  BeginRow(name, type, label, flags);
  End();
}

void FbxDocumentWriter::PropertyInt(std::string_view name, std::string_view type, std::string_view label,
                                    std::string_view flags, int32_t value) {
  BeginRow(name, type, label, flags);
  Int(value);
  End();
}

void FbxDocumentWriter::PropertyDouble(std::string_view name, std::string_view type, std::string_view label,
                                       std::string_view flags, std::initializer_list<double> values) {
  BeginRow(name, type, label, flags);
  for (const double value : values) Double(value);
  End();
}

void FbxDocumentWriter::PropertyText(std::string_view name, std::string_view type, std::string_view label,
                                     std::string_view flags, std::string_view value) {
  BeginRow(name, type, label, flags);
  Text(value);
  End();
}

void FbxDocumentWriter::PropertyTime(std::string_view name, std::string_view type, std::string_view label,
                                     std::string_view flags, int64_t value) {
  BeginRow(name, type, label, flags);
  Long(value);
  End();
}

// Zeros that close the records, an id, zeros to the next multiple of 16 (4 at least, 20 at most), the version, zeros,
// and the magic.
std::vector<uint8_t> FbxDocumentWriter::Finish() {
  broken_ |= !open_.empty();
  bytes_.resize(bytes_.size() + HeadSize());
  PutBytes(kFooterId.data(), kFooterId.size());
  const size_t padding = 16 - (bytes_.size() + 4) % 16;
  bytes_.resize(bytes_.size() + 4 + padding);
  Put(static_cast<uint32_t>(version_));
  bytes_.resize(bytes_.size() + kFooterZeros);
  PutBytes(kFooterMagic.data(), kFooterMagic.size());
  const bool tooLarge = version_ < kWideVersion && bytes_.size() > std::numeric_limits<uint32_t>::max();
  std::vector<uint8_t> file;
  if (!broken_ && !tooLarge) file = std::move(bytes_);
  bytes_.clear();
  deflater_.reset();
  broken_ = true;
  return file;
}

}  // namespace tavrilon::fbx
