// SPDX-License-Identifier: MIT
// Skins and blend shapes.
#include "plugin/fbx/format/scene_writer.h"

namespace tavrilon::fbx {

namespace {

void WriteMatrix(FbxDocumentWriter& out, std::string_view name, const Affine& matrix) {
  const std::array<double, 16> numbers = ToFile(matrix);
  out.Begin(name);
  out.Array(std::span<const double>(numbers));
  out.End();
}

void WritePoints(FbxDocumentWriter& out, std::string_view name, const std::vector<Vector3>& points) {
  out.Begin(name);
  out.Array(std::span<const double>(points.empty() ? nullptr : &points[0].x, points.size() * 3));
  out.End();
}

}  // namespace

void SceneWriter::WriteSkin(const FbxSkin& skin) {
  BeginObject("Deformer", plan_.IdOf(&skin), skin.GetName(), "Deformer", "Skin");
  out_.Leaf("Version", 101);
  out_.Leaf("Link_DeformAcuracy", 50.0);
  out_.Leaf("SkinningType", "Linear");
  out_.End();
  for (const FbxCluster& cluster : skin.clusters) WriteCluster(cluster);
}

// A bone that moves no point has its cluster all the same: some readers take its bind matrix from nowhere else.
void SceneWriter::WriteCluster(const FbxCluster& cluster) {
  BeginObject("Deformer", plan_.IdOf(&cluster), cluster.name, "SubDeformer", "Cluster");
  out_.Leaf("Version", 100);
  out_.Begin("UserData");
  out_.Text("");
  out_.Text("");
  out_.End();
  if (!cluster.indices.empty()) {
    out_.ArrayLeaf("Indexes", cluster.indices);
    out_.ArrayLeaf("Weights", cluster.weights);
  }
  WriteMatrix(out_, "Transform", cluster.transform);
  WriteMatrix(out_, "TransformLink", cluster.transformLink);
  out_.End();
}

void SceneWriter::WriteBlendShape(const FbxBlendShape& blend) {
  BeginObject("Deformer", plan_.IdOf(&blend), blend.GetName(), "Deformer", "BlendShape");
  out_.Leaf("Version", 100);
  out_.End();
}

void SceneWriter::WriteChannel(const FbxBlendShapeChannel& channel) {
  BeginObject("Deformer", plan_.IdOf(&channel), channel.GetName(), "SubDeformer", "BlendShapeChannel");
  out_.Leaf("Version", 100);
  out_.Leaf("DeformPercent", channel.deformPercent);
  out_.ArrayLeaf("FullWeights", channel.fullWeights);
  out_.Begin("Properties70");
  out_.PropertyDouble("DeformPercent", "Number", "", "A", {channel.deformPercent});
  out_.End();
  out_.End();
}

// Normals are always there, zero where the shape has none: a reader drops shapes without.
void SceneWriter::WriteShape(const FbxShape& shape) {
  BeginObject("Geometry", plan_.IdOf(&shape), shape.name, "Geometry", "Shape");
  out_.Leaf("Version", 100);
  out_.ArrayLeaf("Indexes", shape.indices);
  WritePoints(out_, "Vertices", shape.offsets);
  WritePoints(out_, "Normals", shape.normals.empty() ? std::vector<Vector3>(shape.offsets.size()) : shape.normals);
  out_.End();
}

}  // namespace tavrilon::fbx
