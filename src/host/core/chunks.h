// SPDX-License-Identifier: MIT
// Chunk streams: what a class writes in Save and reads in Load. A chunk is an ID (16 bits), a length (32 bits) and that
// many bytes, which are values, further chunks, or values followed by chunks. All numbers are little-endian.
// A reader skips chunks that it does not know by their length, so newer files open in older classes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

#include "host/core/wstr.h"

namespace corvanta {

/// EndOfChunks is no failure: the present chunk (or the stream) holds no further one.
enum class IOResult { OK, EndOfChunks, Error };

/// Chunks may lie this many inside one another; a deeper stream is refused by reader and writer alike.
inline constexpr size_t kMaxChunkDepth = 64;

/// What Write and Read move as raw bytes: plain values without pointers. Give them no padding bytes (those are not
/// determined, and equal objects must save equal bytes) and no bool members (write a bool by itself).
template <class T>
concept ChunkValue = std::is_trivially_copyable_v<T> && !std::is_pointer_v<T> && !std::is_array_v<T>;

/// Writes a chunk stream into memory. Slips (a chunk left open, too deep, or over 4 GiB) are told by Status.
class ISave {
 public:
  void BeginChunk(uint16_t id);
  void EndChunk();

  void Write(const void* data, size_t size);
  template <ChunkValue T>
  void Write(const T& value) {
    if constexpr (std::is_same_v<T, bool>) {
      const uint8_t byte = value;
      Write(&byte, 1);
    } else {
      Write(&value, sizeof value);
    }
  }
  /// A length in bytes (32 bits) and the text as UTF-8.
  void WriteWStr(std::wstring_view text);
  /// A length (32 bits) and the bytes as they are.
  void WriteCStr(std::string_view bytes);

  /// OK when every chunk is closed and nothing went wrong.
  IOResult Status() const { return failed_ || !open_.empty() ? IOResult::Error : IOResult::OK; }
  /// How many chunks are open.
  size_t Depth() const { return open_.size(); }
  const std::vector<uint8_t>& Bytes() const { return bytes_; }
  std::vector<uint8_t> TakeBytes();

 private:
  std::vector<uint8_t> bytes_;
  std::vector<size_t> open_;  // where the length of each open chunk stands
  bool failed_ = false;
};

/// Reads a chunk stream over bytes that stay alive meanwhile. The usual walk:
///
///   while (load.OpenChunk() == IOResult::OK) {
///     switch (load.CurChunkID()) { case kFlagsChunk: load.Read(flags_); break; }
///     load.CloseChunk();
///   }
///   return load.Status();
///
/// The first error sticks: from then on every call gives Error, and values read are zero, so that one look at Status at
/// the end is enough. No length is believed before it was checked against the chunk around it.
class ILoad {
 public:
  /// `baseOffset` is where `bytes` begin in their file, so that errors tell offsets in the file.
  explicit ILoad(std::span<const uint8_t> bytes, size_t baseOffset = 0);

  /// Opens the next chunk inside the present one (of the stream, when none is open).
  IOResult OpenChunk();
  /// Goes behind the present chunk, whether its contents were read or not.
  IOResult CloseChunk();
  /// ID and length in bytes of the chunk opened last; 0 when none is open.
  uint16_t CurChunkID() const { return open_.empty() ? 0 : open_.back().id; }
  size_t CurChunkLength() const { return open_.empty() ? 0 : open_.back().end - open_.back().start; }
  /// Bytes of the present chunk (or stream) that are not read yet.
  size_t Remaining() const { return End() - at_; }

  /// Reads `size` bytes. When fewer are left, the rest of `data` is zero, `got` (if given) tells how many came, and the
  /// stream is in error.
  IOResult Read(void* data, size_t size, size_t* got = nullptr);
  template <ChunkValue T>
  IOResult Read(T& value) {
    if constexpr (std::is_same_v<T, bool>) {
      uint8_t byte = 0;
      const IOResult result = Read(&byte, 1);
      value = byte != 0;
      return result;
    } else {
      return Read(static_cast<void*>(&value), sizeof value);
    }
  }
  /// Ill-formed UTF-8 is an error.
  IOResult ReadWStr(WStr& text);
  IOResult ReadCStr(std::string& bytes);
  /// Goes over `size` bytes and gives them as they lie in the stream; empty in error.
  std::span<const uint8_t> Take(size_t size);
  /// Where the next byte stands in the file.
  size_t Offset() const { return base_ + at_; }
  /// Reads a count (32 bits) of things that take `itemSize` bytes each at least; a count that the present chunk cannot
  /// hold is an error, so what is reserved for it is bounded by the file's size.
  IOResult ReadCount(uint32_t& count, size_t itemSize);

  IOResult Status() const { return error_.empty() ? IOResult::OK : IOResult::Error; }
  /// Puts the stream in error; for contents that a class finds impossible. The first error stays.
  IOResult Fail(std::string_view text);
  /// What went wrong first, with the offset; empty while all is well.
  const std::string& ErrorText() const { return error_; }
  size_t ErrorOffset() const { return errorOffset_; }

 private:
  struct Open {
    uint16_t id;
    size_t start, end;
  };
  size_t End() const { return open_.empty() ? bytes_.size() : open_.back().end; }

  std::span<const uint8_t> bytes_;
  size_t base_;
  size_t at_ = 0;
  std::vector<Open> open_;
  std::string error_;
  size_t errorOffset_ = 0;
};

}  // namespace corvanta
