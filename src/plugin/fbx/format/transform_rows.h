// SPDX-License-Identifier: MIT
// The properties of a node's transform as files name and type them, and their defaults. One table serves the template
// that a file begins with and the nodes, which write what differs from it.
#pragma once

#include "plugin/fbx/format/document_writer.h"
#include "plugin/fbx/format/node.h"

namespace tavrilon::fbx {

struct TransformRow {
  std::string_view name, type, label, flags;
  Vector3 NodeTransform::*value;
  Vector3 otherwise;
};
inline constexpr TransformRow kTransformRows[] = {
    {"RotationOffset", "Vector3D", "Vector", "", &NodeTransform::rotationOffset, {}},
    {"RotationPivot", "Vector3D", "Vector", "", &NodeTransform::rotationPivot, {}},
    {"ScalingOffset", "Vector3D", "Vector", "", &NodeTransform::scalingOffset, {}},
    {"ScalingPivot", "Vector3D", "Vector", "", &NodeTransform::scalingPivot, {}},
    {"PreRotation", "Vector3D", "Vector", "", &NodeTransform::preRotation, {}},
    {"PostRotation", "Vector3D", "Vector", "", &NodeTransform::postRotation, {}},
    {"GeometricTranslation", "Vector3D", "Vector", "", &NodeTransform::geometricTranslation, {}},
    {"GeometricRotation", "Vector3D", "Vector", "", &NodeTransform::geometricRotation, {}},
    {"GeometricScaling", "Vector3D", "Vector", "", &NodeTransform::geometricScaling, {1, 1, 1}},
    {"Lcl Translation", "Lcl Translation", "", "A", &NodeTransform::translation, {}},
    {"Lcl Rotation", "Lcl Rotation", "", "A", &NodeTransform::rotation, {}},
    {"Lcl Scaling", "Lcl Scaling", "", "A", &NodeTransform::scaling, {1, 1, 1}},
};

void WriteTransformTemplate(FbxDocumentWriter& out);

}  // namespace tavrilon::fbx
