// SPDX-License-Identifier: MIT
// The frame of each point: which way a control that is built on it looks. X runs along the bone; the other axes make
// flexion of elbow, knee, wrist, fingers and ankle a negative turn about local Z on both sides. With D =
// diag(1, 1, -1) and S = diag(-1, 1, 1) the right frame of a mirrored pair is D * left * S.
#pragma once

#include <unordered_map>

#include "host/maths/matrix3.h"
#include "plugin/rig/point_place.h"

namespace tavrilon {

using corvanta::Matrix3;

/// Reads frames of one template; points and places must outlive it.
class PointFrames {
 public:
  PointFrames(const RigPoints& points, const PointPlaces& places);

  /// Index of the point of that name; -1 without one.
  int Find(const WStr& name) const;
  /// The frame at the point, its origin at the place times `size`. No point gives the identity.
  Matrix3 PointTM(int point, float size) const;
  /// The upright frame of a foot, hoof or paw: X from heel to tip along the ground, Y up, the origin at the foot.
  Matrix3 GroundTM(int foot, float size) const;
  /// The joints of the limb that a point belongs to, without the clavicle or coxa; empty for other points.
  std::vector<int> LimbJoints(int point) const;
  /// The direction in which the limb's second joint bends away from the line of its ends, not normalised. A straight
  /// limb bends back (arms and forelegs), forward (legs) or up (insect legs).
  Point3 PoleVector(int point) const;

 private:
  Point3 AimOf(int point) const;
  Point3 UpOf(int point, const Point3& x) const;
  Point3 TrunkAim(int pelvis) const;
  Point3 FootUp(int foot) const;
  /// From the toes up to the ankle.
  Point3 ToesUp(int foot) const;
  Point3 GroundAim(int foot) const;
  /// Out of the back of the hand.
  Point3 Dorsal(int hand) const;
  Point3 ThumbUp(int hand, const Point3& dorsal) const;
  /// The hand or foot that a digit belongs to.
  int EndOfLimb(int point) const;
  bool IsHoof(int hand) const;
  /// First joint of digit `i` (from 0) of a hand or foot.
  int DigitRoot(int end, int i) const;

  const RigPoints& points_;
  const PointPlaces& places_;
  std::unordered_map<WStr, int> index_;
};

}  // namespace tavrilon
