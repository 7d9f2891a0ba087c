// SPDX-License-Identifier: MIT
#include "plugin/constraints/space_turn.h"

#include "plugin/frame/rig_maths.h"

namespace tavrilon {

using namespace corvanta;

// The turn is measured between the orientations alone: with a stretched `m` in the quotient, its polar rotation would
// miss the space's.
Matrix3 TurnToSpace(const Matrix3& m, const Matrix3& space, float weight) {
  if (weight == 0) return m;
  const Quat turn = OrthoQuat(Orthogonalize(space) * Inverse(Orthogonalize(m)));
  Matrix3 turned = QuatMatrix(SlerpClosest(Quat(), turn, weight)) * m.WithoutTrans();
  turned.SetTrans(m.GetTrans());
  return turned;
}

Matrix3 SpaceOffset(const Matrix3& m, const Matrix3& node) { return Orthogonalize(m) * Inverse(Orthogonalize(node)); }

Matrix3 InSpace(const Matrix3& own, const Matrix3& parent, const Matrix3& space, float weight) {
  Matrix3 place = parent;
  place.PreTranslate(own.GetTrans());
  return own.WithoutTrans() * TurnToSpace(place, space, weight);
}

Matrix3 OwnInSpace(const Matrix3& world, const Matrix3& parent, const Matrix3& space, float weight) {
  Matrix3 own = world * Inverse(TurnToSpace(parent, space, weight));
  own.SetTrans(world.GetTrans() * Inverse(parent));
  return own;
}

}  // namespace tavrilon
