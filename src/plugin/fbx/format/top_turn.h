// SPDX-License-Identifier: MIT
// The turn behind the top nodes of a scene whose axes were converted. Files have no place for it but the top nodes
// themselves: it goes into their pre-rotations, translations and offsets, and into the curves of their translations.
#pragma once

#include "plugin/fbx/format/animation.h"
#include "plugin/fbx/format/node.h"

namespace tavrilon::fbx {

class TopTurn {
 public:
  explicit TopTurn(const Affine& conversion) : turn_(conversion) {}
  bool IsNone() const { return turn_ == Affine(); }
  /// Does it take axes to axes without mirroring? A mirroring is no rotation, and nothing else can be written.
  bool CanBeWritten() const;

  /// A top node's transform with the turn in it: LocalMatrix(Turned(t)) == LocalMatrix(t) * turn.
  NodeTransform Turned(const NodeTransform& transform) const;
  Vector3 Turned(const Vector3& v) const { return TransformVector(turn_, v); }
  /// Axis onto which axis `i` turns, and whether it then points the other way.
  size_t AxisOf(size_t i) const;
  bool IsTurnedOver(size_t i) const { return turn_.row[i][AxisOf(i)] < 0; }

 private:
  Affine turn_;
};

/// The curve of the negative values.
FbxAnimCurve TurnedOver(FbxAnimCurve curve);

}  // namespace tavrilon::fbx
