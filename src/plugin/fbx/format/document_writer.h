// SPDX-License-Identifier: MIT
// Writes the document layer: binary records, one after the other, into memory. Equal calls give equal bytes.
#pragma once

#include <array>
#include <cstdint>
#include <initializer_list>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace tavrilon::fbx {

/// The footer is a code made from these two, so files need both, behind the header extension:
/// `out.Begin("FileId"), out.Raw(kFileId), out.End(), out.Leaf("CreationTime", kCreationTime)`. They are the same in
/// all files, so that equal scenes give equal files.
inline constexpr std::array<uint8_t, 16> kFileId = {0x28, 0xb3, 0x2a, 0xeb, 0xb6, 0x24, 0xcc, 0xc2,
                                                    0xbf, 0xc8, 0xb0, 0x2a, 0xa9, 0x2b, 0xfc, 0xf1};
inline constexpr std::string_view kCreationTime = "1970-01-01 10:00:00:000";

/// The usual walk:
///
///   FbxDocumentWriter out(7400);
///   out.Begin("GlobalSettings");
///   out.Leaf("Version", 1000);
///   out.End();
///   std::vector<uint8_t> file = out.Finish();
///
/// Properties go to the record that was begun last, before its first child. Anything else (a property behind a child,
/// an End without its Begin, a name of more than 255 bytes) makes the file worthless: it asserts, and Finish gives
/// nothing.
class FbxDocumentWriter {
 public:
  /// 7100 to 7400 (offsets of 32 bits) or 7500 to 7700 (64 bits).
  explicit FbxDocumentWriter(int version);
  ~FbxDocumentWriter();
  FbxDocumentWriter(const FbxDocumentWriter&) = delete;

  int Version() const { return version_; }
  void Begin(std::string_view name);
  /// A record without children ends without a null record, unless `block` asks for an empty block.
  void End(bool block = false);

  void Bool(bool value);
  void Int16(int16_t value);
  void Int(int32_t value);
  void Long(int64_t value);
  void Float(float value);
  void Double(double value);
  void Text(std::string_view utf8);
  void Raw(std::span<const uint8_t> bytes);
  /// "name 00 01 class", as objects are named in binary files.
  void ObjectName(std::string_view name, std::string_view objectClass);

  // Arrays: raw below about a kilobyte, deflated else. One stream is kept and reset; an array that is equal to the
  // last one of its type given by the same call is not deflated again.
  void Array(std::span<const int32_t> values);
  void Array(std::span<const int64_t> values);
  void Array(std::span<const float> values);
  void Array(std::span<const double> values);

  // A record with one value and no children.
  void Leaf(std::string_view name, int32_t value);
  void Leaf(std::string_view name, int64_t value);
  void Leaf(std::string_view name, double value);
  void Leaf(std::string_view name, std::string_view text);
  template <class T>
  void ArrayLeaf(std::string_view name, const std::vector<T>& values) {
    Begin(name);
    Array(std::span<const T>(values));
    End();
  }

  // Rows of a Properties70 block: P: name, type, label, flags, values.
  void Property(std::string_view name, std::string_view type, std::string_view label, std::string_view flags);
  void PropertyInt(std::string_view name, std::string_view type, std::string_view label, std::string_view flags,
                   int32_t value);
  void PropertyDouble(std::string_view name, std::string_view type, std::string_view label, std::string_view flags,
                      std::initializer_list<double> values);
  void PropertyText(std::string_view name, std::string_view type, std::string_view label, std::string_view flags,
                    std::string_view value);
  void PropertyTime(std::string_view name, std::string_view type, std::string_view label, std::string_view flags,
                    int64_t value);

  /// The whole file with its footer; empty when it outgrew 4 GiB in a version before 7500, when records are still open,
  /// or after a call that could not be followed. The writer is spent afterwards.
  std::vector<uint8_t> Finish();

 private:
  struct Deflater;
  struct Open {
    size_t at;             // where the record begins
    size_t propertiesAt;   // where its properties begin
    size_t propertyBytes;  // known once a child has begun
    uint64_t numProperties;
    bool hasChildren;
  };
  template <class T>
  void Put(T value);
  void PutBytes(const void* bytes, size_t size);
  void PutField(size_t at, uint64_t value);
  void BeginProperty(char letter);
  template <class T>
  void PutNumber(char letter, T value);
  template <class T>
  void PutArray(char letter, std::span<const T> values);
  void BeginRow(std::string_view name, std::string_view type, std::string_view label, std::string_view flags);
  size_t HeadSize() const;
  bool Check(bool holds);

  int version_;
  std::vector<uint8_t> bytes_;
  std::vector<Open> open_;
  std::unique_ptr<Deflater> deflater_;
  bool broken_ = false;
};

}  // namespace tavrilon::fbx
