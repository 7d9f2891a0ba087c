// SPDX-License-Identifier: MIT
// The document layer: an FBX file as a tree of named records with typed properties, whatever the records mean. Binary
// files of versions 7100 to 7700 and ASCII files of versions 7100 to 7700 give the same tree.
//
// ASCII files differ in these, which the reader of the records must know:
// - Numbers are typed by how they are written, so `1` in an ASCII file may be a double in a binary one. The conversions
// of
//   AsInt, AsDouble and Read make that harmless.
// - `KeyAttrDataFloat` holds the bit patterns of its floats as integers: an Int32Array (or Int64Array) where binary
// files
//   have a FloatArray.
// - Names of objects, "Class::Name" in the text, come out as "Name 00 01 Class" as in binary files.
// - A word of one letter without quotes (`Shading: T`) is a Bool that holds the letter, as in binary files.
//
// Every number in a file is hostile: lengths, counts and offsets are checked against what holds them before anything
// is reserved, depth and the sum of inflated bytes are bounded.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "plugin/fbx/format/status.h"

namespace tavrilon::fbx {

class FbxDocument;

/// The letters that stand in binary files.
enum class PropertyType : char {
  Bool = 'C',
  Int16 = 'Y',
  Int32 = 'I',
  Int64 = 'L',
  Float = 'F',
  Double = 'D',
  String = 'S',
  Raw = 'R',
  BoolArray = 'b',
  Int32Array = 'i',
  Int64Array = 'l',
  FloatArray = 'f',
  DoubleArray = 'd',
};

/// One property of a record. Views are small, are passed by value and live as long as the document.
class PropertyView {
 public:
  PropertyType Type() const;
  bool IsNumber() const;
  bool IsText() const { return Type() == PropertyType::String || Type() == PropertyType::Raw; }
  bool IsArray() const;

  /// A number of any type as such; `otherwise` for texts and arrays. A double out of range is clamped, NaN gives 0.
  int64_t AsInt(int64_t otherwise = 0) const;
  double AsDouble(double otherwise = 0) const;
  /// The bytes of a text as they stand in the file; empty for other types.
  std::string_view AsText() const;

  /// Values in an array; 1 for a number, 0 for a text.
  size_t Count() const;
  /// Fills `values` with the array (a number counts as an array of one), converted from the type in the file; inflates
  /// on the way. Integers that do not fit are clamped. False, with the document's status set, when the array is damaged
  /// or the budget for inflated bytes is spent; false without it for a text. `values` is empty then. Implemented for
  /// int32_t, int64_t, float and double.
  template <class T>
  bool Read(std::vector<T>& values) const;

 private:
  friend class RecordView;
  PropertyView(const FbxDocument* document, uint32_t index) : document_(document), index_(index) {}
  const uint8_t* Data() const;
  template <class T>
  bool ReadArray(std::vector<T>& values) const;
  bool Unpack(uint8_t* to, size_t size) const;
  const FbxDocument* document_;
  uint32_t index_;
};

/// One record. A default-made view stands for "not there": it has no name, no properties and no children, so lookups
/// can be chained.
class RecordView {
 public:
  RecordView() = default;
  explicit operator bool() const { return document_ != nullptr; }

  std::string_view Name() const;
  size_t NumProperties() const;
  /// Asserts that `i` is in range; `PropertyAt` in the forms below does not.
  PropertyView Property(size_t i) const;
  int64_t Int(size_t i, int64_t otherwise = 0) const;
  double Double(size_t i, double otherwise = 0) const;
  std::string_view Text(size_t i) const;
  /// The array of property `i`; false, without an error, when there is none.
  template <class T>
  bool Array(size_t i, std::vector<T>& values) const {
    return i < NumProperties() && Property(i).Read(values);
  }

  /// The first child; a view of nothing when there is none.
  RecordView FirstChild() const;
  /// The next record on the same level; a view of nothing behind the last.
  RecordView Next() const;
  /// The first child of that name; a view of nothing when there is none.
  RecordView Find(std::string_view name) const;
  /// Where the record stands: "byte 1204, Objects/Geometry" or "line 12, Objects/Geometry".
  std::string Place() const;

  /// for (RecordView child : record.Children()) ...
  class Iterator {
   public:
    explicit Iterator(RecordView at);
    RecordView operator*() const;
    Iterator& operator++();
    bool operator!=(const Iterator& other) const;

   private:
    const FbxDocument* document_ = nullptr;
    uint32_t index_ = 0;
  };
  struct Range {
    Iterator first, last;
    Iterator begin() const { return first; }
    Iterator end() const { return last; }
  };
  Range Children() const { return {Iterator(FirstChild()), Iterator(RecordView())}; }

 private:
  friend class FbxDocument;
  friend class AsciiParser;
  RecordView(const FbxDocument* document, uint32_t index) : document_(document), index_(index) {}
  const FbxDocument* document_ = nullptr;
  uint32_t index_ = 0;
};

/// What a file may ask of the machine.
struct ReadLimits {
  int depth = 64;
  /// Sum of all arrays that are read: this much and a hundred times the file's size.
  size_t inflatedBytes = size_t{256} << 20;
};

/// A parsed file. It keeps the file's bytes; arrays stay packed until they are read. Reading an array uses memory of
/// the document, so a document and its views belong to one thread at a time.
class FbxDocument {
 public:
  FbxDocument() = default;
  FbxDocument(const FbxDocument&) = delete;
  FbxDocument& operator=(const FbxDocument&) = delete;

  /// Parses `bytes`, binary or ASCII by their beginning. `fileName` stands in errors. False with the status set for
  /// anything that is no sound FBX file of a version told above; other versions are named in the error. A document that
  /// could not be parsed has no records. What stands behind the last record (the footer of binary files) is not looked
  /// at.
  bool Parse(std::vector<uint8_t> bytes, std::string fileName, const ReadLimits& limits = {});
  /// Reads the file and parses it.
  bool Load(const std::string& path, const ReadLimits& limits = {});

  /// 7400, 7500, ...
  int Version() const { return version_; }
  bool IsAscii() const { return ascii_; }
  const std::string& FileName() const { return fileName_; }
  size_t NumRecords() const { return records_.size(); }
  /// The first record of the top level.
  RecordView FirstRecord() const;
  /// The first record of that name on the top level; a view of nothing when there is none.
  RecordView Find(std::string_view name) const;
  RecordView::Range Records() const {
    return {RecordView::Iterator(FirstRecord()), RecordView::Iterator(RecordView())};
  }

  /// Set by Parse and by arrays that cannot be read.
  const FbxStatus& GetStatus() const { return status_; }
  /// Bytes held: the file and the tree.
  size_t MemoryUsed() const;

 private:
  friend class PropertyView;
  friend class RecordView;
  friend class BinaryParser;
  friend class AsciiParser;

  static constexpr uint32_t kNoRecord = 0xFFFFFFFF;
  struct Record {
    uint64_t at = 0;    // byte of a binary file, line of an ASCII file
    uint64_t name = 0;  // into bytes_
    uint32_t firstProperty = 0;
    uint32_t numProperties = 0;
    uint32_t parent = kNoRecord, firstChild = kNoRecord, next = kNoRecord;
    uint8_t nameLength = 0;
  };

  void Clear();
  /// Adds a record behind `lastChild`, the last of its parent's children so far, and makes it that.
  uint32_t Append(uint64_t at, uint32_t parent, uint32_t& lastChild);
  std::string PathOf(uint32_t record) const;
  /// Sets the status to "file: byte at, path of the record: text"; lines instead of bytes in ASCII files. Always false.
  bool Fail(uint64_t at, uint32_t record, const std::string& text) const;
  bool CheckVersion(uint64_t version);
  uint32_t RecordOfProperty(uint32_t property) const;
  /// Takes `bytes` off what may still be read.
  bool Spend(uint64_t bytes, uint32_t property) const;
  bool FailAtProperty(uint32_t property, const std::string& text) const;

  // Of a binary file the whole. Of an ASCII file the names and values that were read, in the form of binary files.
  std::vector<uint8_t> bytes_;
  // Parents stand before their children, and the properties of a record before those of its children.
  std::vector<Record> records_;
  // Where each property lies in bytes_: its letter, then its value.
  std::vector<uint64_t> properties_;
  std::string fileName_;
  int version_ = 0;
  bool ascii_ = false;
  mutable uint64_t inflateBudget_ = 0;
  mutable std::vector<uint8_t> scratch_;
  mutable FbxStatus status_;
};

}  // namespace tavrilon::fbx
