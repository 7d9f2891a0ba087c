// SPDX-License-Identifier: MIT
// A scene from a document: objects first, each by its own reader, then the links between them by one table of pairs of
// kinds, then what needs all links to be in. Whatever a file says, the work grows with its size only: an object belongs
// to one owner, and a second owner is told in the log.
#pragma once

#include "plugin/fbx/format/object_table.h"
#include "plugin/fbx/format/read_objects.h"
#include "plugin/fbx/format/sdk.h"

namespace tavrilon::fbx {

class SceneReader {
 public:
  SceneReader(const FbxDocument& document, const FbxIOSettings& settings, FbxScene& scene, FbxStatus& status,
              const Progress& progress);
  /// False with the status set.
  bool Read();

 private:
  using Entry = ObjectEntry;
  using LinkFunction = bool (SceneReader::*)(Entry& source, Entry& destination, std::string_view property);
  struct LinkRow {
    ObjectKind source, destination;
    LinkFunction link;
  };
  static const LinkRow kLinkRows[];

  struct Switches {
    bool animation, material, texture, geometry, skins, shapes;
  };
  struct CurveLink {
    uint32_t curve;
    FbxAnimCurveNode* node;
    size_t channel;
  };
  struct LayeredLink {
    FbxSurfaceMaterial* material;
    std::string property;
    uint32_t texture;
  };

  // Objects.
  void ReadTemplates();
  void ReadTakes();
  bool ReadObjects();
  bool ReadObject(Entry& entry);
  bool IsSwitchedOff(ObjectKind kind) const;
  FbxObject* ReadNode(const Entry& entry);
  FbxObject* ReadAttribute(const Entry& entry);
  FbxObject* ReadMaterial(const Entry& entry);
  FbxObject* ReadStack(const Entry& entry);
  FbxObject* ReadLayer(const Entry& entry);
  void ReadPose(const Entry& entry);

  // Links.
  bool ReadLinks();
  bool LinkNode(Entry& node, Entry& parent, std::string_view property);
  bool LinkAttribute(Entry& attribute, Entry& node, std::string_view property);
  bool LinkMaterial(Entry& material, Entry& node, std::string_view property);
  bool LinkSkin(Entry& skin, Entry& mesh, std::string_view property);
  bool LinkCluster(Entry& cluster, Entry& skin, std::string_view property);
  bool LinkBone(Entry& node, Entry& cluster, std::string_view property);
  bool LinkBlendShape(Entry& blendShape, Entry& mesh, std::string_view property);
  bool LinkChannel(Entry& channel, Entry& blendShape, std::string_view property);
  bool LinkShape(Entry& shape, Entry& channel, std::string_view property);
  bool LinkTexture(Entry& texture, Entry& material, std::string_view property);
  bool LinkLayeredTexture(Entry& texture, Entry& material, std::string_view property);
  bool LinkTextureLayer(Entry& texture, Entry& layered, std::string_view property);
  bool LinkLayer(Entry& layer, Entry& stack, std::string_view property);
  bool LinkCurveNodeToLayer(Entry& curveNode, Entry& layer, std::string_view property);
  bool LinkCurveNode(Entry& curveNode, Entry& target, std::string_view property);
  bool LinkCurve(Entry& curve, Entry& curveNode, std::string_view property);
  /// False, with a line in the log, for an entry that belongs to another already.
  bool Own(Entry& entry, const Entry& owner);

  // What needs all links.
  void CutNodeLoops();
  void BuildHierarchy();
  void FinishSkins();
  void FinishShapes(FbxMesh& mesh);
  void FinishMaterials();
  bool FinishCurves();
  bool Advance(double share);

  Entry& At(uint32_t index) { return table_.Entries()[index]; }
  uint32_t IndexOf(const Entry& entry) { return static_cast<uint32_t>(&entry - table_.Entries().data()); }
  std::string NameOf(const Entry& entry) const { return ObjectName(entry.record); }

  const FbxDocument& document_;
  FbxScene& scene_;
  const Progress& progress_;
  ReadContext context_;
  Switches switches_;
  ObjectTable table_;

  NodeValues nodeDefaults_;
  SurfaceValues surfaceDefaults_;
  StackTimes stackDefaults_;
  LayerValues layerDefaults_;
  std::vector<std::pair<std::string_view, RecordView>> takes_;

  std::vector<uint32_t> nodeLinks_;
  std::vector<CurveLink> curveLinks_;
  std::vector<LayeredLink> layeredLinks_;
};

}  // namespace tavrilon::fbx
