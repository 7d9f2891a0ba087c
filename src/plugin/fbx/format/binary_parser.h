// SPDX-License-Identifier: MIT
// Private to this folder: builds the tree of a binary file.
#pragma once

#include "plugin/fbx/format/document.h"

namespace tavrilon::fbx {

struct PropertyLayout;

/// Walks the records once, front to back, without recursion. A record's end must lie behind its beginning and inside
/// its parent, so no record is met twice.
class BinaryParser {
 public:
  BinaryParser(FbxDocument& document, const ReadLimits& limits) : document_(document), limits_(limits) {}
  /// Of the document, the bytes and the file's name must be there.
  bool Parse();

 private:
  struct Open {
    uint32_t record;
    uint32_t lastChild;
    uint64_t end;
  };
  bool ParseHeader();
  bool ParseRecord();
  bool ParseProperties(uint64_t count, uint64_t end);
  bool ParseProperty(uint64_t end);
  bool ParseArray(const PropertyLayout& layout, uint64_t end);
  bool CloseBlock();
  uint64_t Field(uint64_t at) const;
  bool Fail(uint64_t at, const std::string& text) const;

  FbxDocument& document_;
  const ReadLimits& limits_;
  std::vector<Open> open_;  // the first is the file itself
  uint64_t at_ = 0;
  bool wide_ = false;
};

}  // namespace tavrilon::fbx
