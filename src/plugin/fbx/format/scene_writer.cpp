// SPDX-License-Identifier: MIT
#include "plugin/fbx/format/scene_writer.h"

namespace tavrilon::fbx {

SceneWriter::SceneWriter(const FbxScene& scene, const FbxIOSettings& settings, int version)
    : scene_(scene), plan_(scene, ExportSwitches(settings)), out_(version) {}

std::vector<uint8_t> SceneWriter::Write() {
  WriteHeader();
  WriteGlobalSettings();
  WriteDocuments();
  WriteDefinitions();
  WriteObjects();
  WriteConnections();
  WriteTakes();
  return out_.Finish();
}

void SceneWriter::BeginObject(std::string_view record, int64_t id, std::string_view name, std::string_view objectClass,
                              std::string_view type) {
  out_.Begin(record);
  out_.Long(id);
  out_.ObjectName(name, objectClass);
  out_.Text(type);
}

void SceneWriter::WriteObjects() {
  out_.Begin("Objects");
  for (const FbxNodeAttribute* attribute : plan_.attributes) WriteAttribute(*attribute);
  for (const FbxMesh* mesh : plan_.meshes) WriteMesh(*mesh);
  for (const FbxBlendShapeChannel* channel : plan_.channels) {
    for (const FbxShape& shape : channel->shapes) WriteShape(shape);
  }
  for (const FbxNode* node : plan_.models) WriteModel(*node);
  for (const FbxPose* pose : plan_.poses) WritePose(*pose);
  for (const FbxSurfaceMaterial* material : plan_.materials) WriteMaterial(*material);
  for (const FbxSkin* skin : plan_.skins) WriteSkin(*skin);
  for (const FbxBlendShape* blend : plan_.blendShapes) WriteBlendShape(*blend);
  for (const FbxBlendShapeChannel* channel : plan_.channels) WriteChannel(*channel);
  for (const FbxTexture* texture : plan_.textures) WriteTexture(*texture);
  for (const FbxTexture* texture : plan_.textures) WriteVideo(*texture);
  for (const FbxAnimStack* stack : plan_.stacks) WriteStack(*stack);
  for (const FbxAnimLayer* layer : plan_.layers) WriteLayer(*layer);
  for (const PlannedCurveNode& node : plan_.curveNodes) WriteCurveNode(node);
  out_.End(true);
}

void SceneWriter::WriteConnections() {
  out_.Begin("Connections");
  for (const ExportPlan::Link& link : plan_.links) {
    out_.Begin("C");
    out_.Text(link.property.empty() ? "OO" : "OP");
    out_.Long(link.child);
    out_.Long(link.parent);
    if (!link.property.empty()) out_.Text(link.property);
    out_.End();
  }
  out_.End(true);
}

void SceneWriter::WriteTakes() {
  const FbxAnimStack* current = scene_.CurrentStack();
  out_.Begin("Takes");
  out_.Leaf("Current", current && !plan_.stacks.empty() ? std::string_view(current->GetName()) : "");
  const auto span = [this](std::string_view name, FbxTime start, FbxTime stop) {
    out_.Begin(name);
    out_.Long(start.ticks);
    out_.Long(stop.ticks);
    out_.End();
  };
  for (const FbxAnimStack* stack : plan_.stacks) {
    out_.Begin("Take");
    out_.Text(stack->GetName());
    out_.Leaf("FileName", stack->GetName() + ".tak");
    span("LocalTime", stack->localStart, stack->localStop);
    span("ReferenceTime", stack->referenceStart, stack->referenceStop);
    out_.End();
  }
  out_.End(true);
}

}  // namespace tavrilon::fbx
