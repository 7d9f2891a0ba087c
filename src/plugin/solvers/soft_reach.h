// SPDX-License-Identifier: MIT
// Softening: near its full reach a limb approaches the goal ever more slowly instead of snapping straight.
#pragma once

namespace tavrilon {

/// `length` is the sum of the bones, `distance` that from root to goal. Both factors are fractions from 0.
struct SoftReachIn {
  float distance = 0;
  float length = 0;
  float softness = 0;
  /// Automatic stretch times the blend: how far the limb grows to the goal instead.
  float stretch = 0;
};
/// Every bone is to be multiplied by `boneScale`; the goal to solve for lies at `distance` in the same direction.
struct SoftReachOut {
  float boneScale = 1;
  float distance = 0;
};

/// A goal well within reach comes back as it is. No failure, no NaN for finite input.
SoftReachOut SoftenReach(const SoftReachIn& in);

/// The inverse: where the goal must be for the end to come to `in.distance`, by softness and by the stretch beyond full
/// reach. Without stretch nothing comes to full reach; what asks for it gets a goal some nine softening zones away.
/// Exact for any stretch from 0 to 1. Source: Newton's method on a concave function, from below.
float UnsoftenReach(const SoftReachIn& in);

}  // namespace tavrilon
