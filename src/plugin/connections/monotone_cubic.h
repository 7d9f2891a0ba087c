// SPDX-License-Identifier: MIT
// Interpolation that never leaves the values of its two neighbours. Plain arithmetic.
#pragma once

#include <limits>

namespace tavrilon {

/// The indices around a place: inner[0] at or before it, inner[1] behind it, and the next one outwards of each; -1
/// where there is none.
struct AroundPlace {
  int inner[2] = {-1, -1};
  int outer[2] = {-1, -1};
};

/// Finds them among `count` places, which may come in any order. `at(i)` gives place i.
template <class At>
AroundPlace FindAround(int count, At&& at, float x) {
  AroundPlace found;
  const auto nearer = [&](int& best, int i, bool below) {
    if (best < 0 || (below ? at(i) > at(best) : at(i) < at(best))) best = i;
  };
  for (int i = 0; i < count; ++i) nearer(found.inner[at(i) > x], i, at(i) <= x);
  for (int i = 0; i < count; ++i) {
    if (found.inner[0] >= 0 && at(i) < at(found.inner[0])) nearer(found.outer[0], i, true);
    if (found.inner[1] >= 0 && at(i) > at(found.inner[1])) nearer(found.outer[1], i, false);
  }
  return found;
}

/// One point of the curve.
struct CubicPoint {
  float x, y;
};

/// The value at `x` between `a` and `b` (a.x < b.x); `before` and `after` are the points outwards of them, or null at
/// the ends of the curve. The curve is smooth where segments meet, monotone between two points, and flat at a point
/// that is an extremum. Source: slopes by the weighted harmonic mean of Fritsch and Butland, "A method for
/// constructing local monotone piecewise cubic interpolants" (1984); at an end the slope of the chord.
float MonotoneCubic(const CubicPoint* before, const CubicPoint& a, const CubicPoint& b, const CubicPoint* after,
                    float x);

}  // namespace tavrilon
