// SPDX-License-Identifier: MIT
// The weighted blend of several transforms: places and scales by their weights, rotations by a running slerp, which
// weighs all of them evenly by their weights. With three and more the result depends on their order; it is the list's.
#pragma once

#include "host/maths/matrix3.h"

namespace tavrilon {

/// Adds transforms one by one. Allocates nothing.
class TransformBlend {
 public:
  /// A weight of 0 or below counts in the total like any other.
  void Add(const corvanta::AffineParts& parts, float weight);
  float Total() const { return total_; }
  /// Place, scale, rotation and stretch rotation of the blend; `f` is 1, mirrored inputs keep their sign in `k`.
  /// Call it only with a total above 0.
  corvanta::AffineParts Result() const;

 private:
  corvanta::Point3 position_, scale_;
  corvanta::Quat rotation_, stretch_;
  float total_ = 0;
};

/// The stretch of a transform alone, as scale controllers hold it.
corvanta::ScaleValue ScaleOf(const corvanta::Matrix3& tm);

}  // namespace tavrilon
