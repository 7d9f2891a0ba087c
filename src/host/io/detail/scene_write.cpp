// SPDX-License-Identifier: MIT
// Writing is one pass over the numbered scene. Nothing here depends on addresses, hashes or time: equal scenes give
// equal bytes.
#include "host/io/detail/scene_write.h"

#include <map>
#include <tuple>

#include "host/core/control.h"
#include "host/core/cust_attrib.h"
#include "host/io/detail/class_shape.h"
#include "host/io/detail/object_index.h"
#include "host/io/detail/opaque.h"
#include "host/io/detail/param_io.h"
#include "host/io/detail/scene_format.h"
#include "host/io/settings.h"

namespace corvanta {
namespace {

using namespace scene_format;

uint32_t Bit(bool on, uint32_t bit) { return on ? bit : 0; }

class SceneWriter {
 public:
  explicit SceneWriter(const Scene& scene) : scene_(scene), index_(scene) {}

  WStr Write(std::vector<uint8_t>* out) {
    ISave layers, nodes, objects, tail;
    WriteLayers(layers);
    WriteNodes(nodes);
    WriteObjects(objects);
    WriteTail(tail);
    if (!error_.empty()) return error_;
    ISave head, classes;
    WriteHead(head);
    WriteClasses(classes);
    out->assign(std::begin(kMagic), std::end(kMagic));
    AddSection(kHead, head, out);
    AddSection(kClasses, classes, out);
    AddSection(kLayers, layers, out);
    AddSection(kNodes, nodes, out);
    AddSection(kObjects, objects, out);
    AddSection(kScene, tail, out);
    AddSection(kEnd, ISave(), out);
    return error_;
  }

 private:
  void Fail(const ReferenceTarget& at, const wchar_t* why) {
    if (error_.empty()) error_ = Format(L"an object of the class \"%s\" %s", at.GetClassName().c_str(), why);
  }

  void AddSection(uint32_t name, const ISave& section, std::vector<uint8_t>* out) {
    if (section.Status() != IOResult::OK && error_.empty()) error_ = L"the scene is too large for one file";
    const std::vector<uint8_t>& bytes = section.Bytes();
    const uint64_t length = bytes.size();
    uint8_t header[kSectionHeaderSize];
    std::memcpy(header, &name, 4);
    std::memcpy(header + 8, &length, 8);
    const uint32_t crc = SectionChecksum(header, bytes);
    std::memcpy(header + 4, &crc, 4);
    out->insert(out->end(), header, header + sizeof header);
    out->insert(out->end(), bytes.begin(), bytes.end());
  }

  void WriteNumbers(const std::vector<ReferenceTarget*>& targets, ISave& save) {
    save.Write(static_cast<uint32_t>(targets.size()));
    for (const ReferenceTarget* target : targets) save.Write(index_.NumberOf(target));
  }

  /// References, weak links, and the object's own stream.
  void WriteLinks(ReferenceTarget& maker, ISave& save) {
    CollectTargets(maker, &targets_);
    save.Write(index_.NumberOf(maker.GetCustAttribContainer()));
    WriteNumbers(targets_.strong, save);
    WriteNumbers(targets_.weak, save);
    save.BeginChunk(kDataChunk);
    if (const OpaqueObject* opaque = AsOpaque(maker)) {
      save.Write(opaque->state.data.data(), opaque->state.data.size());
    } else {
      const size_t depth = save.Depth();
      if (maker.Save(save) == IOResult::Error) Fail(maker, L"reports that it cannot be saved");
      if (save.Depth() != depth) Fail(maker, L"leaves its chunks open or closes too many");
      while (save.Depth() > depth) save.EndChunk();
    }
    save.EndChunk();
  }

  void WriteLayers(ISave& save) {
    for (SceneLayer* layer : index_.Layers()) {
      save.BeginChunk(kRecordChunk);
      save.WriteWStr(layer->GetName());
      save.Write(index_.NumberOf(layer->GetParent()));
      save.Write(Bit(layer->GetState().hidden, kHidden) | Bit(layer->GetState().frozen, kFrozen));
      WriteLinks(*layer, save);
      save.EndChunk();
    }
  }

  void WriteNodes(ISave& save) {
    for (INode* node : index_.Nodes()) {
      const NodeState& s = node->State();
      save.BeginChunk(kRecordChunk);
      save.WriteWStr(s.name);
      save.Write(node->GetHandle());
      save.Write(Bit(s.hidden, kHidden) | Bit(s.frozen, kFrozen) | Bit(s.renderable, kRenderable) |
                 Bit(s.boneOn, kBoneOn) | Bit(s.boneFreeze, kBoneFreeze) | Bit(s.boneAutoAlign, kBoneAutoAlign));
      save.Write(s.wireColour);
      save.Write(static_cast<uint32_t>(s.locks));
      save.Write(s.offsetPos);
      save.Write(s.offsetRot);
      save.Write(s.offsetScale);
      save.Write(index_.NumberOf(s.layer.Get()));
      save.Write(static_cast<uint32_t>(s.userProps.size()));
      for (const auto& [key, value] : s.userProps) {
        save.WriteWStr(key);
        save.WriteWStr(value);
      }
      WriteLinks(*node, save);
      save.EndChunk();
    }
  }

  uint32_t ClassIndex(const ReferenceTarget& object) {
    const auto key = std::make_tuple(object.SuperClassID(), object.ClassID().a, object.ClassID().b);
    const auto [found, isNew] = classIndex_.emplace(key, static_cast<uint32_t>(classes_.size()));
    if (isNew) classes_.push_back({object.SuperClassID(), object.ClassID(), object.GetClassName()});
    return found->second;
  }

  void WriteObjects(ISave& save) {
    for (ReferenceTarget* object : index_.Objects()) {
      save.BeginChunk(kRecordChunk);
      save.Write(ClassIndex(*object));
      if (const OpaqueObject* opaque = AsOpaque(*object))
        WriteOpaqueHead(*object, *opaque, save);
      else
        WriteKnownHead(*object, save);
      WriteLinks(*object, save);
      save.EndChunk();
    }
  }

  void WriteOpaqueHead(const ReferenceTarget& object, const OpaqueObject& opaque, ISave& save) {
    save.Write(static_cast<uint8_t>((opaque.state.locked ? kLocked : 0) | (opaque.state.isBlock ? kIsBlock : 0)));
    if (!opaque.state.isBlock) return;
    const ReferenceMaker* owner = object.FindDependent([](ReferenceMaker*) { return true; });
    save.Write(index_.NumberOf(dynamic_cast<const ReferenceTarget*>(owner)));
    save.Write(opaque.state.blockId);
    save.BeginChunk(kParamsChunk);
    save.Write(opaque.state.params.data(), opaque.state.params.size());
    save.EndChunk();
  }

  void WriteKnownHead(ReferenceTarget& object, ISave& save) {
    const ILockedTrack* lock = GetLockedTrack(&object);
    const ParamBlock2* block = AsBlock(object);
    save.Write(static_cast<uint8_t>((lock && lock->GetLocked() ? kLocked : 0) | (block ? kIsBlock : 0)));
    if (!block) return;
    const ParamBlockDesc2& desc = block->GetDesc();
    const ReferenceTarget* owner = block->GetOwner();
    // Without the owner's class a reader could not tell what the values mean.
    if (!owner || FindBlockDesc(*owner, desc.blockId) != &desc)
      Fail(owner ? *owner : object, L"has a parameter block that new objects of its class do not have");
    save.Write(index_.NumberOf(owner));
    save.Write(static_cast<int32_t>(desc.blockId));
    save.BeginChunk(kParamsChunk);
    WriteParams(*block, save);
    save.EndChunk();
  }

  void WriteTail(ISave& save) {
    save.BeginChunk(kRecordChunk);
    WriteLinks(*index_.TrackRoot(), save);
    save.EndChunk();
    // Parents before children, and children in their order.
    save.Write(static_cast<uint32_t>(index_.Nodes().size() - 1));
    std::vector<const INode*> open{index_.Nodes()[0]};
    while (!open.empty()) {
      const INode* node = open.back();
      open.pop_back();
      if (!node->IsRootNode()) {
        save.Write(index_.NumberOf(node));
        save.Write(index_.NumberOf(node->GetParentNode()));
      }
      open.insert(open.end(), node->Children().rbegin(), node->Children().rend());
    }
    save.Write(static_cast<uint32_t>(scene_.Selection().size()));
    for (const INode* node : scene_.Selection()) save.Write(index_.NumberOf(node));
  }

  void WriteHead(ISave& save) {
    const TimeConfig& time = scene_.time;
    save.Write(kFormat);
    save.Write(VersionNumber(kVersionText));
    save.Write(int32_t{kTicksPerSecond});
    save.Write(int32_t{time.frameRate});
    save.Write(time.range.start);
    save.Write(time.range.end);
    save.Write(time.time);
    save.Write(static_cast<uint32_t>(index_.Nodes().size()));
    save.Write(static_cast<uint32_t>(index_.Layers().size()));
    save.Write(static_cast<uint32_t>(index_.Objects().size()));
    save.Write(scene_.units.centimetres);
    save.Write(static_cast<int32_t>(scene_.units.upAxis));
  }

  void WriteClasses(ISave& save) {
    save.Write(static_cast<uint32_t>(classes_.size()));
    for (const ClassEntry& entry : classes_) {
      save.Write(entry.superClass);
      save.Write(entry.classId.a);
      save.Write(entry.classId.b);
      save.WriteWStr(entry.name);
    }
  }

  const Scene& scene_;
  ObjectIndex index_;
  Targets targets_;
  std::vector<ClassEntry> classes_;
  std::map<std::tuple<SClass_ID, uint32_t, uint32_t>, uint32_t> classIndex_;
  WStr error_;
};

}  // namespace

WStr WriteScene(const Scene& scene, std::vector<uint8_t>* out) { return SceneWriter(scene).Write(out); }

}  // namespace corvanta
