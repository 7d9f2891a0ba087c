// SPDX-License-Identifier: MIT
// Nodes, what they carry, and poses.
#include "plugin/fbx/format/scene_writer.h"
#include "plugin/fbx/format/transform_rows.h"

namespace tavrilon::fbx {

namespace {

constexpr std::string_view kSkeletonTypes[] = {"Root", "Limb", "LimbNode", "Effector"};

void WriteRow(FbxDocumentWriter& out, const TransformRow& row, const Vector3& value) {
  out.PropertyDouble(row.name, row.type, row.label, row.flags, {value.x, value.y, value.z});
}

/// The word for what a node carries, which stands with the node and with the attribute.
std::string_view TypeName(const FbxNodeAttribute* attribute) {
  if (const auto* skeleton = dynamic_cast<const FbxSkeleton*>(attribute)) {
    return kSkeletonTypes[static_cast<size_t>(skeleton->type)];
  }
  if (const auto* other = dynamic_cast<const FbxOtherAttribute*>(attribute)) return other->TypeName();
  return attribute && attribute->Kind() == AttributeKind::Mesh ? "Mesh" : "Null";
}

}  // namespace

void WriteTransformTemplate(FbxDocumentWriter& out) {
  out.Begin("PropertyTemplate");
  out.Text("FbxNode");
  out.Begin("Properties70");
  for (const TransformRow& row : kTransformRows) WriteRow(out, row, row.otherwise);
  out.PropertyInt("RotationOrder", "enum", "", "", 0);
  out.PropertyInt("RotationActive", "bool", "", "", 0);
  out.PropertyInt("InheritType", "enum", "", "", 0);
  out.PropertyDouble("Visibility", "Visibility", "", "A", {1});
  out.End();
  out.End();
}

void SceneWriter::WriteColour(const FbxNodeAttribute& attribute) {
  if (!attribute.colour) return;
  const Vector3& colour = *attribute.colour;
  out_.PropertyDouble("Color", "ColorRGB", "Color", "", {colour.x, colour.y, colour.z});
}

void SceneWriter::WriteAttribute(const FbxNodeAttribute& attribute) {
  const auto* skeleton = dynamic_cast<const FbxSkeleton*>(&attribute);
  const auto* null = dynamic_cast<const FbxNull*>(&attribute);
  const std::string_view type = TypeName(&attribute);
  BeginObject("NodeAttribute", plan_.IdOf(&attribute), attribute.GetName(), "NodeAttribute", type);
  out_.Begin("Properties70");
  WriteColour(attribute);
  if (null) out_.PropertyDouble("Size", "double", "Number", "", {null->size});
  if (skeleton) {
    out_.PropertyDouble("Size", "double", "Number", "", {skeleton->size});
    out_.PropertyDouble("LimbLength", "double", "Number", "H", {skeleton->limbLength});
  }
  out_.End(true);
  out_.Leaf("TypeFlags", skeleton ? "Skeleton" : type);
  out_.End();
}

void SceneWriter::WriteTransform(const NodeTransform& transform) {
  for (const TransformRow& row : kTransformRows) {
    const Vector3& value = transform.*row.value;
    if (value != row.otherwise) WriteRow(out_, row, value);
  }
  if (transform.order != RotationOrder::XYZ) {
    out_.PropertyInt("RotationOrder", "enum", "", "", static_cast<int>(transform.order));
  }
  if (transform.rotationActive) out_.PropertyInt("RotationActive", "bool", "", "", 1);
  // Readers do not agree what a file means that says nothing.
  out_.PropertyInt("InheritType", "enum", "", "", static_cast<int>(transform.inherit));
}

void SceneWriter::WriteModel(const FbxNode& node) {
  BeginObject("Model", plan_.IdOf(&node), node.GetName(), "Model", TypeName(node.GetNodeAttribute()));
  out_.Leaf("Version", 232);
  out_.Begin("Properties70");
  WriteTransform(plan_.TransformOf(node));
  if (node.GetNodeAttribute()) out_.PropertyInt("DefaultAttributeIndex", "int", "Integer", "", 0);
  if (!node.visible) out_.PropertyDouble("Visibility", "Visibility", "", "A", {0});
  for (const auto& [name, text] : node.userProperties) out_.PropertyText(name, "KString", "", "U", text);
  out_.End(true);
  out_.Begin("Shading");
  out_.Bool(true);
  out_.End();
  out_.Leaf("Culling", "CullingOff");
  out_.End();
}

void SceneWriter::WritePose(const FbxPose& pose) {
  const std::string_view type = pose.isBindPose ? "BindPose" : "RestPose";
  BeginObject("Pose", plan_.IdOf(&pose), pose.GetName(), "Pose", type);
  out_.Leaf("Type", type);
  out_.Leaf("Version", 100);
  out_.Leaf("NbPoseNodes", static_cast<int32_t>(pose.entries.size()));
  for (const FbxPose::Entry& entry : pose.entries) {
    const std::array<double, 16> matrix = ToFile(entry.matrix);
    out_.Begin("PoseNode");
    out_.Leaf("Node", plan_.IdOf(entry.node));
    out_.Begin("Matrix");
    out_.Array(std::span<const double>(matrix));
    out_.End();
    out_.End();
  }
  out_.End();
}

}  // namespace tavrilon::fbx
