// SPDX-License-Identifier: MIT
// How one animation layer is laid over the result of those below it. Weights are shares of 1.
#pragma once

#include "plugin/fbx/format/affine.h"
#include "plugin/fbx/format/animation.h"

namespace tavrilon::fbx {

struct LayerMode {
  LayerBlend blend = LayerBlend::Additive;
  bool rotationsMultiply = true;
  bool scalesMultiply = true;
  double weight = 1;
};

/// Positions and plain numbers: added, replaced, or mixed by weight.
Vector3 BlendPosition(const Vector3& below, const Vector3& layer, const LayerMode& mode);
/// Scales that multiply take the layer's scale to the power of the weight.
Vector3 BlendScale(const Vector3& below, const Vector3& layer, const LayerMode& mode);
/// Degrees. Rotations that multiply turn by the layer first, in the node's own axes; the result is the triple nearest
/// to adding (or mixing) the angles.
Vector3 BlendRotation(const Vector3& below, const Vector3& layer, const LayerMode& mode, RotationOrder order);

}  // namespace tavrilon::fbx
