// SPDX-License-Identifier: MIT
#include "host/core/chunks.h"

#include <algorithm>
#include <bit>
#include <cassert>
#include <limits>
#include <utility>

namespace corvanta {

static_assert(std::endian::native == std::endian::little, "streams hold little-endian numbers as they lie in memory");

namespace {

constexpr size_t kIdSize = sizeof(uint16_t);
constexpr size_t kHeaderSize = kIdSize + sizeof(uint32_t);

}  // namespace

void ISave::BeginChunk(uint16_t id) {
  if (open_.size() >= kMaxChunkDepth) failed_ = true;
  Write(id);
  open_.push_back(bytes_.size());
  Write(uint32_t{0});
}

void ISave::EndChunk() {
  assert(!open_.empty() && "EndChunk without BeginChunk");
  if (open_.empty()) {
    failed_ = true;
    return;
  }
  const size_t length = bytes_.size() - open_.back() - sizeof(uint32_t);
  if (length > std::numeric_limits<uint32_t>::max()) failed_ = true;
  const auto stored = static_cast<uint32_t>(length);
  std::memcpy(bytes_.data() + open_.back(), &stored, sizeof stored);
  open_.pop_back();
}

void ISave::Write(const void* data, size_t size) {
  const auto* bytes = static_cast<const uint8_t*>(data);
  bytes_.insert(bytes_.end(), bytes, bytes + size);
}

void ISave::WriteWStr(std::wstring_view text) { WriteCStr(ToUtf8(text)); }

void ISave::WriteCStr(std::string_view bytes) {
  if (bytes.size() > std::numeric_limits<uint32_t>::max()) failed_ = true;
  Write(static_cast<uint32_t>(bytes.size()));
  Write(bytes.data(), bytes.size());
}

std::vector<uint8_t> ISave::TakeBytes() {
  open_.clear();
  failed_ = false;
  return std::exchange(bytes_, {});
}

ILoad::ILoad(std::span<const uint8_t> bytes, size_t baseOffset) : bytes_(bytes), base_(baseOffset) {}

IOResult ILoad::Fail(std::string_view text) {
  if (error_.empty()) {
    errorOffset_ = base_ + at_;
    error_ = "at byte " + std::to_string(errorOffset_) + ": " + std::string(text);
  }
  return IOResult::Error;
}

IOResult ILoad::OpenChunk() {
  if (!error_.empty()) return IOResult::Error;
  if (Remaining() == 0) return IOResult::EndOfChunks;
  if (Remaining() < kHeaderSize) return Fail("a chunk header is cut short");
  if (open_.size() >= kMaxChunkDepth) return Fail("chunks are nested too deeply");
  uint16_t id;
  uint32_t length;
  std::memcpy(&id, bytes_.data() + at_, sizeof id);
  std::memcpy(&length, bytes_.data() + at_ + kIdSize, sizeof length);
  if (length > Remaining() - kHeaderSize)
    return Fail("chunk " + std::to_string(id) + " tells " + std::to_string(length) + " bytes, but " +
                std::to_string(Remaining() - kHeaderSize) + " are left");
  at_ += kHeaderSize;
  open_.push_back({id, at_, at_ + length});
  return IOResult::OK;
}

IOResult ILoad::CloseChunk() {
  if (!error_.empty()) return IOResult::Error;
  if (open_.empty()) return Fail("no chunk is open");
  at_ = open_.back().end;
  open_.pop_back();
  return IOResult::OK;
}

IOResult ILoad::Read(void* data, size_t size, size_t* got) {
  const size_t count = error_.empty() ? std::min(size, Remaining()) : 0;
  if (count) std::memcpy(data, bytes_.data() + at_, count);
  if (size > count) std::memset(static_cast<uint8_t*>(data) + count, 0, size - count);
  if (got) *got = count;
  if (count < size)
    return Fail("wanted " + std::to_string(size) + " bytes, but " + std::to_string(count) + " are left in the chunk");
  at_ += count;
  return Status();
}

std::span<const uint8_t> ILoad::Take(size_t size) {
  if (error_.empty() && size > Remaining()) Fail("wanted " + std::to_string(size) + " bytes, but fewer are left");
  if (!error_.empty()) return {};
  at_ += size;
  return bytes_.subspan(at_ - size, size);
}

IOResult ILoad::ReadCount(uint32_t& count, size_t itemSize) {
  if (Read(count) == IOResult::OK && (itemSize == 0 || count <= Remaining() / itemSize)) return IOResult::OK;
  Fail("a count of " + std::to_string(count) + " does not fit in the chunk");
  count = 0;
  return IOResult::Error;
}

IOResult ILoad::ReadCStr(std::string& bytes) {
  bytes.clear();
  uint32_t length;
  if (ReadCount(length, 1) != IOResult::OK) return IOResult::Error;
  const auto taken = Take(length);
  bytes.assign(taken.begin(), taken.end());
  return IOResult::OK;
}

IOResult ILoad::ReadWStr(WStr& text) {
  text.clear();
  std::string bytes;
  if (ReadCStr(bytes) != IOResult::OK) return IOResult::Error;
  if (!IsUtf8(bytes)) return Fail("a text is not UTF-8");
  text = FromUtf8(bytes);
  return IOResult::OK;
}

}  // namespace corvanta
