// SPDX-License-Identifier: MIT
// Writes a scene as a binary document: the plan tells what goes in, each source beside this one writes a subject.
// Dates are fixed and numbers count the objects, so that equal scenes give equal bytes.
#pragma once

#include "plugin/fbx/format/document_writer.h"
#include "plugin/fbx/format/export_plan.h"

namespace tavrilon::fbx {

class SceneWriter {
 public:
  /// `version`: 7400 or 7500. `scene` must be sound (see CheckScene) and outlive the writer.
  SceneWriter(const FbxScene& scene, const FbxIOSettings& settings, int version);
  /// The bytes of the file; empty when it outgrows its version. Once.
  std::vector<uint8_t> Write();

 private:
  // scene_writer.cpp
  void WriteObjects();
  void WriteConnections();
  void WriteTakes();
  void BeginObject(std::string_view record, int64_t id, std::string_view name, std::string_view objectClass,
                   std::string_view type);
  // header_writer.cpp
  void WriteHeader();
  void WriteGlobalSettings();
  void WriteDocuments();
  void WriteDefinitions();
  // node_writer.cpp
  void WriteAttribute(const FbxNodeAttribute& attribute);
  void WriteModel(const FbxNode& node);
  void WriteTransform(const NodeTransform& transform);
  void WriteColour(const FbxNodeAttribute& attribute);
  void WritePose(const FbxPose& pose);
  // mesh_writer.cpp
  void WriteMesh(const FbxMesh& mesh);
  void WriteLayers(const FbxMesh& mesh);
  // deformer_writer.cpp
  void WriteSkin(const FbxSkin& skin);
  void WriteCluster(const FbxCluster& cluster);
  void WriteBlendShape(const FbxBlendShape& blend);
  void WriteChannel(const FbxBlendShapeChannel& channel);
  void WriteShape(const FbxShape& shape);
  // material_writer.cpp
  void WriteMaterial(const FbxSurfaceMaterial& material);
  void WriteTexture(const FbxTexture& texture);
  void WriteVideo(const FbxTexture& texture);
  // animation_writer.cpp
  void WriteStack(const FbxAnimStack& stack);
  void WriteLayer(const FbxAnimLayer& layer);
  void WriteCurveNode(const PlannedCurveNode& node);
  void WriteCurve(const FbxAnimCurve& curve, double otherwise);

  const FbxScene& scene_;
  ExportPlan plan_;
  FbxDocumentWriter out_;
};

}  // namespace tavrilon::fbx
