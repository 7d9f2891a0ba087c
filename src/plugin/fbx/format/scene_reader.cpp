// SPDX-License-Identifier: MIT
// The frame of reading, and the objects; links are in scene_reader_links.cpp, the end in scene_reader_finish.cpp.
#include "plugin/fbx/format/scene_reader.h"

#include <algorithm>

namespace tavrilon::fbx {

namespace {

constexpr const char* kStopped = "Stopped.";
/// Objects between two calls of the progress function.
constexpr size_t kStep = 256;

}  // namespace

SceneReader::SceneReader(const FbxDocument& document, const FbxIOSettings& settings, FbxScene& scene, FbxStatus& status,
                         const Progress& progress)
    : document_(document), scene_(scene), progress_(progress), context_{document, scene.Log(), status} {
  const bool deformation = settings.GetBoolProp("Import|IncludeGrp|Animation|Deformation");
  switches_.animation = settings.GetBoolProp("Import|AdvOptGrp|FileFormat|Fbx|Animation");
  switches_.material = settings.GetBoolProp("Import|AdvOptGrp|FileFormat|Fbx|Material");
  switches_.texture = switches_.material && settings.GetBoolProp("Import|AdvOptGrp|FileFormat|Fbx|Texture");
  switches_.skins = deformation && settings.GetBoolProp("Import|IncludeGrp|Animation|Deformation|Skins");
  switches_.shapes = deformation && settings.GetBoolProp("Import|AdvOptGrp|FileFormat|Fbx|Shape");
  const bool anySkin = settings.GetBoolProp("Import|IncludeGrp|Animation|Deformation|Skins");
  switches_.geometry = switches_.material || deformation || anySkin;
}

bool SceneReader::Advance(double share) { return !progress_ || progress_(share) || context_.status.Fail(kStopped); }

bool SceneReader::Read() {
  if (!scene_.Nodes().empty()) return context_.status.Fail("A file is read into an empty scene only.");
  context_.coarseTicks = HasCoarseTicks(document_);
  ReadGlobalSettings(context_, scene_.GetGlobalSettings());
  scene_.currentStack = CurrentStackName(document_);
  table_.Read(document_, scene_.Log());
  At(0).object = scene_.GetRootNode();
  ReadTemplates();
  ReadTakes();
  if (!ReadObjects() || !ReadLinks()) return false;
  BuildHierarchy();
  FinishSkins();
  FinishMaterials();
  for (const Entry& entry : table_.Entries()) {
    if (entry.kind == ObjectKind::Pose) ReadPose(entry);
  }
  if (!document_.GetStatus().IsGood()) return context_.status.Fail(document_.GetStatus().GetErrorString());
  return FinishCurves() && Advance(1);
}

void SceneReader::ReadTemplates() {
  // What files leave out when no template says otherwise.
  nodeDefaults_.transform.inherit = InheritType::RrSs;
  for (const RecordView type : document_.Find("Definitions").Children()) {
    for (const RecordView owner : type.Children()) {
      if (owner.Name() != "PropertyTemplate") continue;
      if (type.Text(0) == "Model") ReadNodeProperties(owner, nodeDefaults_);
      if (type.Text(0) == "Material") ReadMaterialProperties(owner, surfaceDefaults_);
      if (type.Text(0) == "AnimationStack") ReadStackTimes(context_, owner, stackDefaults_);
      if (type.Text(0) == "AnimationLayer") ReadLayerProperties(owner, layerDefaults_);
    }
  }
}

void SceneReader::ReadTakes() {
  for (const RecordView take : document_.Find("Takes").Children()) {
    if (take.Name() == "Take") takes_.emplace_back(take.Text(0), take);
  }
  std::stable_sort(takes_.begin(), takes_.end(), [](const auto& a, const auto& b) { return a.first < b.first; });
}

bool SceneReader::IsSwitchedOff(ObjectKind kind) const {
  switch (kind) {
    case ObjectKind::Mesh:
      return !switches_.geometry;
    case ObjectKind::Skin:
    case ObjectKind::Cluster:
      return !switches_.skins || !switches_.geometry;
    case ObjectKind::Shape:
    case ObjectKind::BlendShape:
    case ObjectKind::Channel:
      return !switches_.shapes || !switches_.geometry;
    case ObjectKind::Material:
      return !switches_.material;
    case ObjectKind::Texture:
    case ObjectKind::LayeredTexture:
      return !switches_.texture;
    case ObjectKind::Stack:
    case ObjectKind::Layer:
    case ObjectKind::CurveNode:
    case ObjectKind::Curve:
      return !switches_.animation;
    default:
      return false;
  }
}

bool SceneReader::ReadObjects() {
  std::vector<Entry>& entries = table_.Entries();
  for (size_t i = 1; i < entries.size(); ++i) {
    Entry& entry = entries[i];
    if (i % kStep == 0 && !Advance(0.6 * static_cast<double>(i) / static_cast<double>(entries.size()))) return false;
    if (IsSwitchedOff(entry.kind)) entry.kind = ObjectKind::LeftOut;
    if (!ReadObject(entry)) return false;
    if (entry.object) entry.object->fileId_ = entry.id;
  }
  return true;
}

bool SceneReader::ReadObject(Entry& entry) {
  const RecordView record = entry.record;
  switch (entry.kind) {
    case ObjectKind::Unknown:
      scene_.Log().Note("Objects of kind " + std::string(record.Name()) + " are left out", NameOf(entry));
      return true;
    case ObjectKind::LeftOut:
      if (record.Name() == "Video" && record.Find("Content").Text(0).size() > 0 && switches_.texture) {
        scene_.Log().Note("Pictures inside the file are left out; the textures keep their file names", NameOf(entry));
      }
      return true;
    case ObjectKind::Node:
      entry.object = ReadNode(entry);
      return true;
    case ObjectKind::Attribute:
      entry.object = ReadAttribute(entry);
      return true;
    case ObjectKind::Mesh: {
      FbxMesh* mesh = FbxMesh::Create(scene_, NameOf(entry));
      entry.object = mesh;
      return ReadMesh(context_, record, *mesh);
    }
    case ObjectKind::Skin:
      NoteSkinning(context_, record);
      entry.object = FbxSkin::Create(scene_, NameOf(entry));
      return true;
    case ObjectKind::BlendShape:
      entry.object = FbxBlendShape::Create(scene_, NameOf(entry));
      return true;
    case ObjectKind::Channel: {
      FbxBlendShapeChannel* channel = FbxBlendShapeChannel::Create(scene_, NameOf(entry));
      entry.object = channel;
      return ReadChannel(context_, record, *channel);
    }
    case ObjectKind::Material:
      entry.object = ReadMaterial(entry);
      return true;
    case ObjectKind::Texture: {
      FbxTexture* texture = FbxTexture::Create(scene_, NameOf(entry));
      ReadTexture(record, *texture);
      entry.object = texture;
      return true;
    }
    case ObjectKind::Stack:
      entry.object = ReadStack(entry);
      return true;
    case ObjectKind::Layer:
      entry.object = ReadLayer(entry);
      return true;
    case ObjectKind::CurveNode: {
      FbxAnimCurveNode* node = FbxAnimCurveNode::Create(scene_, NameOf(entry));
      entry.slot = ReadCurveNode(record, *node);
      entry.object = node;
      return true;
    }
    default:
      return true;  // clusters, shapes, curves and poses are read with their owners
  }
}

FbxObject* SceneReader::ReadNode(const Entry& entry) {
  FbxNode* node = FbxNode::Create(scene_, NameOf(entry));
  NodeValues values = nodeDefaults_;
  ReadNodeProperties(entry.record, values);
  node->transform = values.transform;
  node->visible = values.visibility && values.show;
  ReadUserProperties(entry.record, node->userProperties);
  return node;
}

FbxObject* SceneReader::ReadAttribute(const Entry& entry) {
  AttributeValues values;
  ReadAttributeProperties(entry.record, values);
  FbxNodeAttribute* attribute = MakeAttribute(scene_, NameOf(entry), entry.record.Text(2), values);
  if (attribute->Kind() == AttributeKind::Other) {
    scene_.Log().Note("Nodes of kind " + std::string(entry.record.Text(2)) + " come in as plain nodes", NameOf(entry));
  }
  return attribute;
}

FbxObject* SceneReader::ReadMaterial(const Entry& entry) {
  FbxSurfaceMaterial* material = FbxSurfaceMaterial::Create(scene_, NameOf(entry));
  SurfaceValues& values = *material;
  values = surfaceDefaults_;
  ReadMaterialProperties(entry.record, values);
  ReadShadingModel(entry.record, values);
  return material;
}

FbxObject* SceneReader::ReadStack(const Entry& entry) {
  FbxAnimStack* stack = FbxAnimStack::Create(scene_, NameOf(entry));
  StackTimes& times = *stack;
  times = stackDefaults_;
  const std::string& name = stack->GetName();
  const auto take = std::lower_bound(takes_.begin(), takes_.end(), std::string_view(name),
                                     [](const auto& row, std::string_view wanted) { return row.first < wanted; });
  if (take != takes_.end() && take->first == name) ReadTakeTimes(context_, take->second, times);
  ReadStackTimes(context_, entry.record, times);
  return stack;
}

FbxObject* SceneReader::ReadLayer(const Entry& entry) {
  FbxAnimLayer* layer = FbxAnimLayer::Create(scene_, NameOf(entry));
  LayerValues& values = *layer;
  values = layerDefaults_;
  ReadLayerProperties(entry.record, values);
  return layer;
}

void SceneReader::ReadPose(const Entry& entry) {
  FbxPose* pose = FbxPose::Create(scene_, NameOf(entry));
  pose->fileId_ = entry.id;
  pose->isBindPose = entry.record.Text(2) == "BindPose" || entry.record.Find("Type").Text(0) == "BindPose";
  for (const RecordView child : entry.record.Children()) {
    if (child.Name() != "PoseNode") continue;
    const uint32_t index = table_.Find(child.Find("Node").Int(0));
    FbxPose::Entry place{nullptr, {}};
    if (index != Entry::kNone) place.node = dynamic_cast<FbxNode*>(At(index).object);
    if (place.node && ReadMatrix(child, "Matrix", place.matrix)) {
      pose->entries.push_back(place);
    } else {
      scene_.Log().Note("Places of a pose without a node or a sound matrix were left out", pose->GetName());
    }
  }
}

}  // namespace tavrilon::fbx
