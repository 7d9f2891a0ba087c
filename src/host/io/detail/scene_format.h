// SPDX-License-Identifier: MIT
// The layout of a scene file, which docs/formats.md describes, and what a file says once it is taken apart.
//
// Everything in a file has a number: 0 is nothing, 1 the root node, then the nodes in the order of their creation, the
// layers, the track-view root, and the objects in the order in which a walk over the references meets them.
#pragma once

#include <cstdint>
#include <cstring>
#include <span>
#include <vector>

#include "host/core/ids.h"
#include "host/scene/scene.h"

namespace corvanta::scene_format {

/// Damaged at once by transfers that change line ends or cut at a zero or at ctrl-Z.
inline constexpr uint8_t kMagic[8] = {0x89, 'T', 'V', 'S', '\r', '\n', 0x1A, '\n'};
/// Grows when an older reader would misread a newer file. 2 has units, and materials of nodes.
inline constexpr uint32_t kFormat = 2;

constexpr uint32_t FourLetters(const char (&text)[5]) {
  return static_cast<uint32_t>(text[0]) | static_cast<uint32_t>(text[1]) << 8 | static_cast<uint32_t>(text[2]) << 16 |
         static_cast<uint32_t>(text[3]) << 24;
}
/// In the order of the file. A section is: name, checksum, length (64 bits), bytes; the checksum covers name, length
/// and bytes.
inline constexpr uint32_t kHead = FourLetters("HEAD");
inline constexpr uint32_t kClasses = FourLetters("CLAS");
inline constexpr uint32_t kLayers = FourLetters("LAYR");
inline constexpr uint32_t kNodes = FourLetters("NODE");
inline constexpr uint32_t kObjects = FourLetters("OBJS");
inline constexpr uint32_t kScene = FourLetters("SCEN");
inline constexpr uint32_t kEnd = FourLetters("END ");
inline constexpr size_t kSectionHeaderSize = 16;
/// CRC-32 (as of zlib) over name and length, as they lie in the header, and the bytes.
uint32_t SectionChecksum(const uint8_t* header, std::span<const uint8_t> bytes);

/// Chunks of the tables.
enum : uint16_t { kRecordChunk = 1, kParamsChunk = 2, kDataChunk = 3 };

enum ObjectFlags : uint8_t { kLocked = 1, kIsBlock = 2 };
enum NodeFlags : uint32_t {
  kHidden = 1,
  kFrozen = 2,
  kRenderable = 4,
  kBoneOn = 8,
  kBoneFreeze = 16,
  kBoneAutoAlign = 32,
};
enum RowFlags : uint8_t { kRowTab = 1, kRowControllers = 2, kRowWeak = 4 };

/// Chains of references longer than this cannot be walked by recursion, and no scene needs them.
inline constexpr uint32_t kMaxReferenceDepth = 4000;

/// Numbers as they lie in the file.
class NumberList {
 public:
  NumberList() = default;
  NumberList(std::span<const uint8_t> bytes) : bytes_(bytes) {}  // NOLINT
  size_t Count() const { return bytes_.size() / sizeof(uint32_t); }
  uint32_t operator[](size_t i) const {
    uint32_t number;
    std::memcpy(&number, bytes_.data() + i * sizeof number, sizeof number);
    return number;
  }

 private:
  std::span<const uint8_t> bytes_;
};

struct ClassEntry {
  SClass_ID superClass = 0;
  Class_ID classId;
  WStr name;
};

/// What every numbered thing has: references by index, weak links, custom attributes, and the bytes of its Save.
struct Links {
  uint32_t attribs = 0;
  NumberList refs, weak;
  std::span<const uint8_t> data;
  size_t dataOffset = 0;
};

struct LayerEntry {
  Links links;
  WStr name;
  uint32_t parent = 0;
  uint32_t flags = 0;
};

struct NodeEntry {
  Links links;
  uint32_t handle = 0;
  uint32_t layer = 0;
  NodeState state;
};

struct ObjectEntry {
  Links links;
  uint32_t classIndex = 0;
  uint8_t flags = 0;
  uint32_t owner = 0;  // of a block
  int32_t blockId = 0;
  std::span<const uint8_t> params;
  size_t paramsOffset = 0;
};

struct ParentEntry {
  uint32_t child, parent;
};

/// A file taken apart; it points into the file's bytes.
struct ParsedScene {
  uint32_t version = 0;
  TimeConfig time;
  UnitConfig units;
  std::vector<ClassEntry> classes;
  std::vector<NodeEntry> nodes;  // the root first
  std::vector<LayerEntry> layers;
  Links trackRoot;
  std::vector<ObjectEntry> objects;
  std::vector<ParentEntry> hierarchy;  // parents before children, children in their order
  NumberList selection;

  uint32_t FirstLayer() const { return 1 + static_cast<uint32_t>(nodes.size()); }
  uint32_t TrackRoot() const { return FirstLayer() + static_cast<uint32_t>(layers.size()); }
  uint32_t FirstObject() const { return TrackRoot() + 1; }
  /// One more than the last number.
  uint32_t EndNumber() const { return FirstObject() + static_cast<uint32_t>(objects.size()); }
  bool IsNode(uint32_t number) const { return number >= 1 && number < FirstLayer(); }
  bool IsLayer(uint32_t number) const { return number >= FirstLayer() && number < TrackRoot(); }
  bool IsObject(uint32_t number) const { return number >= FirstObject() && number < EndNumber(); }
  const Links& LinksOf(uint32_t number) const {
    if (IsNode(number)) return nodes[number - 1].links;
    if (IsLayer(number)) return layers[number - FirstLayer()].links;
    if (IsObject(number)) return objects[number - FirstObject()].links;
    return trackRoot;
  }
};

}  // namespace corvanta::scene_format
