// SPDX-License-Identifier: MIT
#include "plugin/fbx/format/export_plan.h"

#include <algorithm>
#include <iterator>

namespace tavrilon::fbx {

namespace {

// What curve nodes of these properties are called: some readers know them by their names alone.
struct CurveNodeName {
  std::string_view property, name;
};
constexpr CurveNodeName kCurveNodeNames[] = {
    {"Lcl Translation", "T"},
    {"Lcl Rotation", "R"},
    {"Lcl Scaling", "S"},
    {"DeformPercent", "DeformPercent"},
};

PlannedCurveNode Planned(const FbxAnimLayer* layer, const FbxAnimCurveNode& node) {
  PlannedCurveNode planned{node.GetName(), layer, node.target, node.property, {}, node.defaults, {}};
  const auto* known = std::find_if(std::begin(kCurveNodeNames), std::end(kCurveNodeNames),
                                   [&node](const CurveNodeName& row) { return row.property == node.property; });
  if (known != std::end(kCurveNodeNames)) planned.name = known->name;
  if (planned.name.empty()) planned.name = node.property;
  for (size_t i = 0; i < 3; ++i) planned.curves[i] = &node.curves[i];
  bool threefold = node.property.compare(0, 4, "Lcl ") == 0;
  for (size_t i = 1; i < 3; ++i) threefold = threefold || node.defaults[i] != 0 || !node.curves[i].IsEmpty();
  if (threefold) {
    planned.channels = {"d|X", "d|Y", "d|Z"};
  } else {
    planned.channels = {"d|" + node.property};
  }
  return planned;
}

}  // namespace

ExportSwitches::ExportSwitches(const FbxIOSettings& settings) {
  const bool deformation = settings.GetBoolProp("Export|IncludeGrp|Animation|Deformation");
  animation = settings.GetBoolProp("Export|AdvOptGrp|Fbx|Animation");
  materials = settings.GetBoolProp("Export|AdvOptGrp|Fbx|Material");
  textures = materials && settings.GetBoolProp("Export|AdvOptGrp|Fbx|Texture");
  skins = deformation && settings.GetBoolProp("Export|IncludeGrp|Animation|Deformation|Skins");
  shapes = deformation && settings.GetBoolProp("Export|AdvOptGrp|Fbx|Shape");
}

ExportPlan::ExportPlan(const FbxScene& scene, const ExportSwitches& switches)
    : turn_(scene.topConversion), root_(scene.GetRootNode()) {
  ids_[root_] = 0;
  PlanNodes(scene);
  PlanMaterials(scene, switches);
  PlanDeformers(switches);
  ConnectNode(root_);
  for (const FbxNode* node : models) ConnectNode(node);
  ConnectDeformers();
  if (switches.animation) PlanAnimation(scene);
}

int64_t ExportPlan::IdOf(const void* item) const {
  const auto found = ids_.find(item);
  return found == ids_.end() ? -1 : found->second;
}

int64_t ExportPlan::Number(const void* item) { return ids_[item] = next_++; }

template <class T>
bool ExportPlan::Add(std::vector<const T*>& list, const T* object) {
  if (!object || ids_.count(object)) return false;
  Number(object);
  list.push_back(object);
  return true;
}

void ExportPlan::Connect(const void* child, const void* parent, std::string_view property) {
  const int64_t childId = IdOf(child), parentId = IdOf(parent);
  if (childId >= 0 && parentId >= 0) links.push_back({childId, parentId, property});
}

void ExportPlan::PlanNodes(const FbxScene& scene) {
  for (const FbxNode* node : scene.Nodes()) {
    const FbxNodeAttribute* attribute = node->GetNodeAttribute();
    if (const auto* mesh = dynamic_cast<const FbxMesh*>(attribute)) {
      Add(meshes, mesh);
    } else {
      Add(attributes, attribute);
    }
  }
  for (const FbxNode* node : scene.Nodes()) Add(models, node);
  for (const FbxPose* pose : scene.Poses()) Add(poses, pose);
}

void ExportPlan::PlanMaterials(const FbxScene& scene, const ExportSwitches& switches) {
  if (!switches.materials) return;
  for (const FbxSurfaceMaterial* material : scene.Materials()) Add(materials, material);
  if (!switches.textures) return;
  for (const FbxSurfaceMaterial* material : materials) {
    for (const auto& link : material->textures) {
      if (Add(textures, static_cast<const FbxTexture*>(link.texture))) Number(&link.texture->fileName);
      Connect(link.texture, material, link.property);
    }
  }
  for (const FbxTexture* texture : textures) Connect(&texture->fileName, texture);
}

void ExportPlan::PlanDeformers(const ExportSwitches& switches) {
  for (const FbxMesh* mesh : meshes) {
    for (const FbxSkin* skin : mesh->skins) {
      if (!switches.skins || !Add(skins, skin)) continue;
      for (const FbxCluster& cluster : skin->clusters) Number(&cluster);
      numClusters += skin->clusters.size();
    }
    for (const FbxBlendShape* blend : mesh->blendShapes) {
      if (!switches.shapes || !Add(blendShapes, blend)) continue;
      for (const FbxBlendShapeChannel* channel : blend->channels) {
        if (!Add(channels, channel)) continue;
        for (const FbxShape& shape : channel->shapes) Number(&shape);
        numShapes += channel->shapes.size();
      }
    }
  }
}

void ExportPlan::ConnectNode(const FbxNode* node) {
  for (int i = 0; i < node->GetChildCount(); ++i) Connect(node->GetChild(i), node);
  Connect(node->GetNodeAttribute(), node);
  for (const FbxSurfaceMaterial* material : node->materials) Connect(material, node);
}

void ExportPlan::ConnectDeformers() {
  for (const FbxMesh* mesh : meshes) {
    for (const FbxSkin* skin : mesh->skins) Connect(skin, mesh);
    for (const FbxBlendShape* blend : mesh->blendShapes) Connect(blend, mesh);
  }
  for (const FbxSkin* skin : skins) {
    for (const FbxCluster& cluster : skin->clusters) {
      Connect(&cluster, skin);
      Connect(cluster.link, &cluster);
    }
  }
  for (const FbxBlendShape* blend : blendShapes) {
    for (const FbxBlendShapeChannel* channel : blend->channels) Connect(channel, blend);
  }
  for (const FbxBlendShapeChannel* channel : channels) {
    for (const FbxShape& shape : channel->shapes) Connect(&shape, channel);
  }
}

void ExportPlan::PlanAnimation(const FbxScene& scene) {
  for (const FbxAnimStack* stack : scene.Stacks()) {
    Add(stacks, stack);
    for (const FbxAnimLayer* layer : stack->layers) Add(layers, static_cast<const FbxAnimLayer*>(layer));
    for (const FbxAnimLayer* layer : stack->layers) Connect(layer, stack);
  }
  for (const FbxAnimLayer* layer : layers) {
    for (const FbxAnimCurveNode* node : layer->curveNodes) {
      if (IdOf(node->target) >= 0) PlanCurveNode(Planned(layer, *node));
    }
    if (layer->weightCurve.IsEmpty()) continue;
    PlanCurveNode({"Weight", layer, layer, "Weight", {"d|Weight"}, {layer->weight, 0, 0}, {&layer->weightCurve}});
  }
}

bool ExportPlan::IsTurned(const FbxObject* object) const {
  const auto* node = dynamic_cast<const FbxNode*>(object);
  return !turn_.IsNone() && node && node->GetParent() == root_;
}

NodeTransform ExportPlan::TransformOf(const FbxNode& node) const {
  return IsTurned(&node) ? turn_.Turned(node.transform) : node.transform;
}

void ExportPlan::TurnCurves(PlannedCurveNode& node) {
  const std::array<const FbxAnimCurve*, 3> curves = node.curves;
  for (size_t i = 0; i < 3; ++i) {
    const FbxAnimCurve*& turned = node.curves[turn_.AxisOf(i)];
    turned = turn_.IsTurnedOver(i) ? &turnedCurves_.emplace_back(TurnedOver(*curves[i])) : curves[i];
  }
  const Vector3 defaults = turn_.Turned(Vector3{node.defaults[0], node.defaults[1], node.defaults[2]});
  node.defaults = {defaults.x, defaults.y, defaults.z};
}

void ExportPlan::PlanCurveNode(PlannedCurveNode planned) {
  if (planned.property == "Lcl Translation" && IsTurned(planned.target)) TurnCurves(planned);
  const PlannedCurveNode& node = curveNodes.emplace_back(std::move(planned));
  Number(&node);
  Connect(&node, node.layer);
  Connect(&node, node.target, node.property);
  for (size_t i = 0; i < node.channels.size(); ++i) {
    if (node.curves[i]->IsEmpty()) continue;
    ++numCurves;
    Number(node.curves[i]);
    Connect(node.curves[i], &node, node.channels[i]);
  }
}

}  // namespace tavrilon::fbx
