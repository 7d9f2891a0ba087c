// SPDX-License-Identifier: MIT
// A scene's lengths in another unit.
#include "plugin/fbx/format/scene.h"

namespace tavrilon::fbx {

namespace {

constexpr Vector3 NodeTransform::*kLengths[] = {&NodeTransform::translation,   &NodeTransform::rotationOffset,
                                                &NodeTransform::rotationPivot, &NodeTransform::scalingOffset,
                                                &NodeTransform::scalingPivot,  &NodeTransform::geometricTranslation};

void ScaleVectors(std::vector<Vector3>& vectors, double k) {
  for (Vector3& v : vectors) v = v * k;
}
void ScaleTranslation(Affine& m, double k) { m.row[3] = m.row[3] * k; }
void ScaleFloat(float& value, double k) { value = static_cast<float>(value * k); }

void Scale(FbxNode& node, double k) {
  for (const auto length : kLengths) node.transform.*length = node.transform.*length * k;
}
void Scale(FbxNull& null, double k) { null.size *= k; }
void Scale(FbxSkeleton& skeleton, double k) { skeleton.size *= k; }
void Scale(FbxMesh& mesh, double k) { ScaleVectors(mesh.controlPoints, k); }
void Scale(FbxSkin& skin, double k) {
  for (FbxCluster& cluster : skin.clusters) {
    ScaleTranslation(cluster.transform, k);
    ScaleTranslation(cluster.transformLink, k);
  }
}
void Scale(FbxBlendShapeChannel& channel, double k) {
  for (FbxShape& shape : channel.shapes) ScaleVectors(shape.offsets, k);
}
void Scale(FbxPose& pose, double k) {
  for (FbxPose::Entry& entry : pose.entries) ScaleTranslation(entry.matrix, k);
}
void Scale(FbxAnimCurveNode& node, double k) {
  if (node.property != "Lcl Translation") return;
  for (double& value : node.defaults) value *= k;
  for (FbxAnimCurve& curve : node.curves) {
    for (float& value : curve.values) ScaleFloat(value, k);
    for (KeyShape& shape : curve.shapes) {
      ScaleFloat(shape.rightSlope, k);
      ScaleFloat(shape.nextLeftSlope, k);
    }
  }
}

/// The first of the classes that the object is; others have no lengths.
template <class T, class... More>
void ScaleAs(FbxObject& object, double k) {
  if (T* typed = dynamic_cast<T*>(&object)) {
    Scale(*typed, k);
  } else if constexpr (sizeof...(More) > 0) {
    ScaleAs<More...>(object, k);
  }
}

}  // namespace

bool FbxSystemUnit::ConvertScene(FbxScene& scene) const {
  FbxGlobalSettings& settings = scene.GetGlobalSettings();
  const double k = settings.GetSystemUnit().centimetres / centimetres;
  if (!(k > 0) || !std::isfinite(k)) return false;
  for (const std::unique_ptr<FbxObject>& object : scene.Objects()) {
    ScaleAs<FbxAnimCurveNode, FbxNode, FbxMesh, FbxSkeleton, FbxNull, FbxSkin, FbxBlendShapeChannel, FbxPose>(*object,
                                                                                                              k);
  }
  ScaleTranslation(scene.topConversion, k);
  settings.SetSystemUnit(*this);
  return true;
}

}  // namespace tavrilon::fbx
