// SPDX-License-Identifier: MIT
// The objects of a file by their numbers, and the links between them, before they mean anything.
#pragma once

#include <limits>

#include "plugin/fbx/format/read_values.h"
#include "plugin/fbx/format/scene.h"

namespace tavrilon::fbx {

enum class ObjectKind : uint8_t {
  Unknown,  // told in the log
  LeftOut,  // by a switch, or of no use here: links with it are passed over
  Root,
  Node,
  Attribute,
  Mesh,
  Shape,
  Skin,
  Cluster,
  BlendShape,
  Channel,
  Material,
  Texture,
  LayeredTexture,
  Pose,
  Stack,
  Layer,
  CurveNode,
  Curve,
  Count
};
/// By the record's name and the object's sub-class.
ObjectKind KindOf(RecordView record);

struct ObjectEntry {
  static constexpr uint32_t kNone = std::numeric_limits<uint32_t>::max();

  int64_t id = 0;
  RecordView record;
  ObjectKind kind = ObjectKind::Unknown;
  FbxObject* object = nullptr;
  /// The one entry that this one belongs to: a node's parent, a cluster's skin, a shape's channel...
  uint32_t owner = kNone;
  /// Of a cluster: its place in the skin. Of a curve node: the defaults that it gives, as bits.
  uint32_t slot = 0;
  /// Of a cluster: its bone.
  FbxNode* link = nullptr;
};

struct ObjectLink {
  uint32_t source, destination;
  /// Empty when objects as such are linked.
  std::string_view property;
};

class ObjectTable {
 public:
  /// Entry 0 is the root, which has the number 0. Double numbers, and links that lead nowhere, are told in the log.
  void Read(const FbxDocument& document, ReadLog& log);
  std::vector<ObjectEntry>& Entries() { return entries_; }
  const std::vector<ObjectLink>& Links() const { return links_; }
  /// ObjectEntry::kNone when there is none.
  uint32_t Find(int64_t id) const;

 private:
  void ReadObjects(const FbxDocument& document, ReadLog& log);
  void ReadLinks(const FbxDocument& document, ReadLog& log);

  std::vector<ObjectEntry> entries_;
  std::vector<ObjectLink> links_;
  /// Sorted: no file can choose numbers that make it slow.
  std::vector<std::pair<int64_t, uint32_t>> byId_;
};

}  // namespace tavrilon::fbx
