// SPDX-License-Identifier: MIT
// Clusters of skins, channels and shapes.
#include <algorithm>

#include "plugin/fbx/format/read_objects.h"

namespace tavrilon::fbx {

void NoteSkinning(ReadContext& context, RecordView deformer) {
  const std::string_view type = deformer.Find("SkinningType").Text(0);
  if (type.empty() || type == "Linear" || type == "Rigid") return;
  context.log.Note("Skinning of type " + std::string(type) + " is read as linear", ObjectName(deformer));
}

bool ReadCluster(ReadContext& context, RecordView deformer, FbxCluster& cluster) {
  cluster.name = ObjectName(deformer);
  if (!context.Array(deformer, "Indexes", cluster.indices) || !context.Array(deformer, "Weights", cluster.weights)) {
    return false;
  }
  if (cluster.indices.size() != cluster.weights.size()) {
    return context.Fail(deformer, std::to_string(cluster.indices.size()) + " indices but " +
                                      std::to_string(cluster.weights.size()) + " weights");
  }
  for (double& weight : cluster.weights) weight = Finite(weight);
  const std::string_view mode = deformer.Find("Mode").Text(0);
  if (mode == "Additive" || mode == "Associate") {
    context.log.Note("Clusters of mode " + std::string(mode) + " are read as normalised", cluster.name);
  }
  if (!ReadMatrix(deformer, "Transform", cluster.transform) ||
      !ReadMatrix(deformer, "TransformLink", cluster.transformLink)) {
    context.log.Note("Clusters without sound matrices stand at the identity", cluster.name);
  }
  return context.document.GetStatus().IsGood() || context.status.Fail(context.document.GetStatus().GetErrorString());
}

bool ReadShape(ReadContext& context, RecordView geometry, FbxShape& shape) {
  shape.name = ObjectName(geometry);
  std::vector<double> numbers;
  if (!context.Array(geometry, "Indexes", shape.indices) || !context.Array(geometry, "Vertices", numbers)) return false;
  shape.offsets = Triples(numbers);
  if (numbers.size() != shape.indices.size() * 3) {
    return context.Fail(geometry, std::to_string(shape.indices.size()) + " indices but " +
                                      std::to_string(numbers.size()) + " numbers in Vertices");
  }
  if (!context.Array(geometry, "Normals", numbers)) return false;
  shape.normals = Triples(numbers);
  if (!shape.normals.empty() && numbers.size() != shape.indices.size() * 3) {
    context.log.Note("Normals that do not fit their shape were left out", shape.name);
    shape.normals.clear();
  }
  return true;
}

bool ReadChannel(ReadContext& context, RecordView deformer, FbxBlendShapeChannel& channel) {
  channel.deformPercent = Finite(deformer.Find("DeformPercent").Double(0));
  for (const RecordView row : deformer.Find("Properties70").Children()) {
    if (row.Text(0) == "DeformPercent") channel.deformPercent = NumberOf(row);
  }
  if (!context.Array(deformer, "FullWeights", channel.fullWeights)) return false;
  for (double& weight : channel.fullWeights) weight = Finite(weight);
  return true;
}

}  // namespace tavrilon::fbx
