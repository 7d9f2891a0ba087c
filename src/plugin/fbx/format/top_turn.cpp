// SPDX-License-Identifier: MIT
#include "plugin/fbx/format/top_turn.h"

namespace tavrilon::fbx {

bool TopTurn::CanBeWritten() const {
  for (size_t i = 0; i < 3; ++i) {
    Vector3 axis;
    axis[AxisOf(i)] = IsTurnedOver(i) ? -1 : 1;
    if (turn_.row[i] != axis) return false;
  }
  return turn_.row[3] == Vector3() && Determinant(turn_) > 0;
}

size_t TopTurn::AxisOf(size_t i) const {
  const Vector3& image = turn_.row[i];
  if (image.x != 0) return 0;
  return image.y != 0 ? 1 : 2;
}

// The parts in front of the rotation stay. Behind it stand pre-rotation, pivot, offset and translation, and of
// (Rp + Roff + T) the turned file has to keep Rp, which stands in front as well.
NodeTransform TopTurn::Turned(const NodeTransform& t) const {
  NodeTransform turned = t;
  if (!t.rotationActive) {
    turned.preRotation = turned.postRotation = {};
    turned.order = RotationOrder::XYZ;
  }
  turned.rotationActive = true;
  turned.preRotation = RotationToEuler(Rotation(turned.preRotation) * turn_);
  turned.translation = Turned(t.translation);
  turned.rotationOffset = Turned(t.rotationPivot + t.rotationOffset) - t.rotationPivot;
  return turned;
}

FbxAnimCurve TurnedOver(FbxAnimCurve curve) {
  for (float& value : curve.values) value = -value;
  for (KeyShape& shape : curve.shapes) {
    shape.rightSlope = -shape.rightSlope;
    shape.nextLeftSlope = -shape.nextLeftSlope;
  }
  return curve;
}

}  // namespace tavrilon::fbx
