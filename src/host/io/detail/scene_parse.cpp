// SPDX-License-Identifier: MIT
// Nothing in a file is believed before it was compared with what is around it: a count with the bytes that are left, a
// number with how many things there are. What is allocated is bounded by the length of the file.
#include "host/io/detail/scene_parse.h"

#include <zlib.h>

#include <algorithm>
#include <cmath>
#include <map>
#include <unordered_set>

#include "host/io/settings.h"

namespace corvanta {

uint32_t scene_format::SectionChecksum(const uint8_t* header, std::span<const uint8_t> bytes) {
  uLong sum = crc32_z(0, header, 4);
  sum = crc32_z(sum, header + 8, 8);
  // zlib takes a null pointer for a request of the first value, and an empty section has no bytes to point at.
  return static_cast<uint32_t>(bytes.empty() ? sum : crc32_z(sum, bytes.data(), bytes.size()));
}

namespace {

using namespace scene_format;

WStr DamagedText(const std::string& what) { return L"the file is damaged (" + FromUtf8(what) + L")"; }

/// The sections of a file by name.
class Sections {
 public:
  WStr Read(std::span<const uint8_t> bytes, bool verifyChecksums) {
    if (bytes.size() < sizeof kMagic || !std::equal(std::begin(kMagic), std::end(kMagic), bytes.begin()))
      return L"it is not a scene file, or was changed by a transfer as text";
    size_t at = sizeof kMagic;
    while (!found_.contains(kEnd)) {
      if (bytes.size() - at < kSectionHeaderSize) return L"the file is cut short";
      const uint8_t* header = bytes.data() + at;
      uint32_t name, sum;
      uint64_t length;
      std::memcpy(&name, header, 4);
      std::memcpy(&sum, header + 4, 4);
      std::memcpy(&length, header + 8, 8);
      at += kSectionHeaderSize;
      if (length > bytes.size() - at) return L"the file is cut short";
      const auto body = bytes.subspan(at, static_cast<size_t>(length));
      if (verifyChecksums && sum != SectionChecksum(header, body))
        return DamagedText("a checksum is wrong in the section at byte " + std::to_string(at - kSectionHeaderSize));
      if (!found_.emplace(name, Section{body, at}).second) return DamagedText("a section stands twice");
      at += body.size();
    }
    if (at != bytes.size()) return DamagedText("there is something behind its end");
    return {};
  }

  /// An empty stream in error when the section is missing.
  ILoad Open(uint32_t name) const {
    const auto found = found_.find(name);
    if (found != found_.end()) return ILoad(found->second.bytes, found->second.at);
    ILoad missing({});
    missing.Fail("a section is missing");
    return missing;
  }

 private:
  struct Section {
    std::span<const uint8_t> bytes;
    size_t at;
  };
  std::map<uint32_t, Section> found_;
};

bool IsFinite(const Point3& p) { return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z); }
bool IsFinite(const Quat& q) { return IsFinite(Point3{q.x, q.y, q.z}) && std::isfinite(q.w); }

class SceneParser {
 public:
  explicit SceneParser(ParsedScene* out) : out_(*out) {}

  WStr Parse(const Sections& sections) {
    ILoad head = sections.Open(kHead);
    if (WStr error = ReadHead(head); !error.empty()) return error;
    const auto step = [&](uint32_t name, void (SceneParser::*read)(ILoad&)) {
      if (!error_.empty()) return;
      ILoad load = sections.Open(name);
      (this->*read)(load);
      if (load.Status() == IOResult::OK && load.Remaining() > 0) load.Fail("a section is longer than what it holds");
      error_ = load.ErrorText();
    };
    step(kClasses, &SceneParser::ReadClasses);
    step(kLayers, &SceneParser::ReadLayers);
    step(kNodes, &SceneParser::ReadNodes);
    step(kObjects, &SceneParser::ReadObjects);
    step(kScene, &SceneParser::ReadTail);
    if (error_.empty()) CheckLayerParents();
    if (error_.empty()) CheckReferences();
    return error_.empty() ? WStr() : DamagedText(error_);
  }

 private:
  WStr ReadHead(ILoad& load) {
    uint32_t format = 0, nodes = 0, layers = 0, objects = 0;
    int32_t ticks = 0;
    load.Read(format);
    load.Read(out_.version);
    if (load.Status() == IOResult::OK && format > kFormat)
      return Format(L"it was written by version %u, which is newer than this one (%s); update the program",
                    out_.version, kVersionText);
    load.Read(ticks);
    load.Read(out_.time.frameRate);
    load.Read(out_.time.range.start);
    load.Read(out_.time.range.end);
    load.Read(out_.time.time);
    load.Read(nodes);
    load.Read(layers);
    load.Read(objects);
    if (format >= 2) ReadUnits(load);
    if (load.Status() != IOResult::OK) return DamagedText(load.ErrorText());
    if (format == 0) return DamagedText("the format number is 0");
    if (ticks != kTicksPerSecond)
      return Format(L"its times count %d ticks a second, and this program counts %d", ticks, kTicksPerSecond);
    if (out_.time.frameRate < 1 || out_.time.frameRate > kTicksPerSecond) return DamagedText("the frame rate is wrong");
    if (out_.time.range.IsEmpty()) return DamagedText("the animation range is empty");
    if (nodes == 0) return DamagedText("there is no root node");
    nodeCount_ = nodes, layerCount_ = layers, objectCount_ = objects;
    firstLayer_ = uint64_t{1} + nodes;
    endNumber_ = firstLayer_ + layers + 1 + objects;
    return {};
  }

  void ReadUnits(ILoad& load) {
    int32_t up = 0;
    load.Read(out_.units.centimetres);
    load.Read(up);
    if (!IsUnitLength(out_.units.centimetres)) load.Fail("the length of the unit is wrong");
    if (up != static_cast<int32_t>(UpAxis::Y) && up != static_cast<int32_t>(UpAxis::Z))
      load.Fail("the upward axis is wrong");
    out_.units.upAxis = static_cast<UpAxis>(up);
  }

  void ReadClasses(ILoad& load) {
    uint32_t count;
    load.ReadCount(count, 16);
    out_.classes.resize(count);
    for (ClassEntry& entry : out_.classes) {
      load.Read(entry.superClass);
      load.Read(entry.classId.a);
      load.Read(entry.classId.b);
      load.ReadWStr(entry.name);
    }
  }

  uint32_t ReadNumber(ILoad& load) {
    uint32_t number;
    load.Read(number);
    if (number < endNumber_) return number;
    load.Fail("number " + std::to_string(number) + " stands for nothing in this file");
    return 0;
  }

  NumberList ReadNumbers(ILoad& load) {
    uint32_t count;
    load.ReadCount(count, sizeof(uint32_t));
    const NumberList list(load.Take(count * sizeof(uint32_t)));
    for (size_t i = 0; i < list.Count(); ++i)
      if (list[i] >= endNumber_) load.Fail("number " + std::to_string(list[i]) + " stands for nothing in this file");
    return list;
  }

  std::span<const uint8_t> ReadBytesChunk(ILoad& load, uint16_t id, size_t* offset) {
    if (load.OpenChunk() != IOResult::OK || load.CurChunkID() != id) {
      load.Fail("a record lacks a part");
      return {};
    }
    *offset = load.Offset();
    const auto bytes = load.Take(load.Remaining());
    load.CloseChunk();
    return bytes;
  }

  void ReadLinks(ILoad& load, Links* out) {
    out->attribs = ReadNumber(load);
    out->refs = ReadNumbers(load);
    out->weak = ReadNumbers(load);
    out->data = ReadBytesChunk(load, kDataChunk, &out->dataOffset);
  }

  /// Calls `read` for each record of a section, which must be `count`; a record may be longer than what is read of it.
  template <class Read>
  void ReadRecords(ILoad& load, uint32_t count, Read read) {
    uint32_t done = 0;
    while (load.OpenChunk() == IOResult::OK) {
      if (load.CurChunkID() == kRecordChunk && done++ < count) read();
      load.CloseChunk();
    }
    if (done != count) load.Fail("a section holds another number of things than the head tells");
  }

  void ReadLayers(ILoad& load) {
    ReadRecords(load, layerCount_, [&] {
      LayerEntry& layer = out_.layers.emplace_back();
      load.ReadWStr(layer.name);
      layer.parent = ReadNumber(load);
      load.Read(layer.flags);
      ReadLinks(load, &layer.links);
      if (layer.parent != 0 && !IsLayerNumber(layer.parent)) load.Fail("the parent of a layer is no layer");
    });
  }

  bool IsLayerNumber(uint32_t number) const { return number >= firstLayer_ && number < firstLayer_ + layerCount_; }
  bool IsObjectNumber(uint32_t number) const { return number > firstLayer_ + layerCount_ && number < endNumber_; }
  bool IsNodeNumber(uint32_t number) const { return number >= 1 && number < firstLayer_; }

  void ReadNodeState(ILoad& load, NodeEntry* node) {
    NodeState& s = node->state;
    uint32_t flags = 0, locks = 0, props = 0;
    load.ReadWStr(s.name);
    load.Read(node->handle);
    load.Read(flags);
    s.hidden = flags & kHidden;
    s.frozen = flags & kFrozen;
    s.renderable = flags & kRenderable;
    s.boneOn = flags & kBoneOn;
    s.boneFreeze = flags & kBoneFreeze;
    s.boneAutoAlign = flags & kBoneAutoAlign;
    load.Read(s.wireColour);
    load.Read(locks);
    s.locks = static_cast<uint16_t>(locks);
    load.Read(s.offsetPos);
    load.Read(s.offsetRot);
    load.Read(s.offsetScale);
    // An offset with which nothing can be computed is no offset.
    if (!IsFinite(s.offsetPos)) s.offsetPos = {};
    if (!IsFinite(s.offsetRot)) s.offsetRot = {};
    if (!IsFinite(s.offsetScale.s) || !IsFinite(s.offsetScale.q)) s.offsetScale = {};
    node->layer = ReadNumber(load);
    if (node->layer != 0 && !IsLayerNumber(node->layer)) load.Fail("a node lies on something that is no layer");
    load.ReadCount(props, 8);
    for (uint32_t i = 0; i < props && load.Status() == IOResult::OK; ++i) {
      WStr key, value;
      load.ReadWStr(key);
      load.ReadWStr(value);
      s.userProps.emplace(std::move(key), std::move(value));
    }
  }

  void ReadNodes(ILoad& load) {
    std::unordered_set<uint32_t> handles;
    ReadRecords(load, nodeCount_, [&] {
      const bool isRoot = out_.nodes.empty();
      NodeEntry& node = out_.nodes.emplace_back();
      ReadNodeState(load, &node);
      ReadLinks(load, &node.links);
      // The material is missing in files of format 1.
      if (node.links.refs.Count() < 3 || node.links.refs.Count() > 4) load.Fail("a node has not four references");
      // The largest handle is left free, so that there is always a next one.
      const bool usable = node.handle != 0 && node.handle != UINT32_MAX;
      if (!isRoot && (!usable || !handles.insert(node.handle).second))
        load.Fail("two nodes have one handle, or a handle is 0");
    });
  }

  void ReadObjects(ILoad& load) {
    ReadRecords(load, objectCount_, [&] {
      ObjectEntry& object = out_.objects.emplace_back();
      load.Read(object.classIndex);
      load.Read(object.flags);
      if (object.classIndex >= out_.classes.size()) load.Fail("an object is of a class that the file does not list");
      if (object.flags & kIsBlock) {
        object.owner = ReadNumber(load);
        load.Read(object.blockId);
        object.params = ReadBytesChunk(load, kParamsChunk, &object.paramsOffset);
        if (!IsObjectNumber(object.owner)) load.Fail("a parameter block has no owner");
      }
      ReadLinks(load, &object.links);
    });
  }

  void ReadTail(ILoad& load) {
    if (load.OpenChunk() != IOResult::OK) return void(load.Fail("the track-view root is missing"));
    ReadLinks(load, &out_.trackRoot);
    load.CloseChunk();
    ReadHierarchy(load);
    out_.selection = ReadNumbers(load);
    for (size_t i = 0; i < out_.selection.Count(); ++i)
      if (!IsNodeNumber(out_.selection[i])) load.Fail("what is selected is no node");
  }

  /// A parent must be in the tree before its child: so every node is there once, and there is no loop.
  void ReadHierarchy(ILoad& load) {
    uint32_t count;
    load.ReadCount(count, sizeof(ParentEntry));
    std::vector<int> depth(firstLayer_, -1);
    depth[1] = 0;
    for (uint32_t i = 0; i < count && load.Status() == IOResult::OK; ++i) {
      ParentEntry entry{};
      load.Read(entry.child);
      load.Read(entry.parent);
      if (!IsNodeNumber(entry.child) || !IsNodeNumber(entry.parent) || depth[entry.child] >= 0 ||
          depth[entry.parent] < 0) {
        load.Fail("the tree of nodes is wrong at node " + std::to_string(entry.child));
        return;
      }
      depth[entry.child] = depth[entry.parent] + 1;
      if (depth[entry.child] > INode::kMaxDepth) load.Fail("the tree of nodes is too deep");
      out_.hierarchy.push_back(entry);
    }
    if (count + 1 != nodeCount_) load.Fail("the tree of nodes does not hold every node");
  }

  void CheckLayerParents() {
    const size_t count = out_.layers.size();
    // 0 not looked at, 1 on the way up, 2 known to end.
    std::vector<uint8_t> state(count, 0);
    for (size_t start = 0; start < count; ++start) {
      std::vector<size_t> path;
      for (size_t at = start; state[at] != 2;) {
        if (state[at] == 1) {
          error_ = "the parents of a layer lead in a circle";
          return;
        }
        state[at] = 1;
        path.push_back(at);
        if (path.size() > static_cast<size_t>(INode::kMaxDepth)) {
          error_ = "layers are nested too deeply";
          return;
        }
        if (out_.layers[at].parent == 0) break;
        at = out_.layers[at].parent - out_.FirstLayer();
      }
      for (const size_t at : path) state[at] = 2;
    }
  }

  /// Takes things away from which nothing that is left refers, until nothing is left: else there is a loop.
  void CheckReferences() {
    const uint32_t end = out_.EndNumber();
    std::vector<uint32_t> makers(end, 0), depth(end, 0), ready;
    ready.reserve(end);
    const auto forEachTarget = [&](uint32_t number, auto visit) {
      const Links& links = out_.LinksOf(number);
      if (links.attribs) visit(links.attribs);
      for (size_t i = 0; i < links.refs.Count(); ++i)
        if (links.refs[i]) visit(links.refs[i]);
    };
    for (uint32_t n = 1; n < end; ++n) forEachTarget(n, [&](uint32_t target) { ++makers[target]; });
    for (uint32_t n = 1; n < end; ++n)
      if (makers[n] == 0) ready.push_back(n);
    for (size_t i = 0; i < ready.size(); ++i) {
      const uint32_t next = depth[ready[i]] + 1;
      forEachTarget(ready[i], [&](uint32_t target) {
        depth[target] = std::max(depth[target], next);
        if (--makers[target] == 0) ready.push_back(target);
      });
      if (next > kMaxReferenceDepth) {
        error_ = "references are nested too deeply";
        return;
      }
    }
    if (ready.size() + 1 != end) error_ = "references lead in a circle";
  }

  ParsedScene& out_;
  uint32_t nodeCount_ = 0, layerCount_ = 0, objectCount_ = 0;
  uint64_t firstLayer_ = 0, endNumber_ = 0;
  std::string error_;
};

}  // namespace

WStr ParseScene(std::span<const uint8_t> bytes, bool verifyChecksums, ParsedScene* out) {
  Sections sections;
  if (WStr error = sections.Read(bytes, verifyChecksums); !error.empty()) return error;
  return SceneParser(out).Parse(sections);
}

}  // namespace corvanta
