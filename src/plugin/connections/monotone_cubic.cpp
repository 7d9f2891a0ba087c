// SPDX-License-Identifier: MIT
#include "plugin/connections/monotone_cubic.h"

namespace tavrilon {

namespace {

// The slope at a point between two chords of widths h0, h1 and slopes d0, d1.
float SlopeBetween(float h0, float d0, float h1, float d1) {
  if (d0 * d1 <= 0) return 0;
  const float w0 = 2 * h1 + h0, w1 = h1 + 2 * h0;
  return (w0 + w1) / (w0 / d0 + w1 / d1);
}

float Chord(const CubicPoint& a, const CubicPoint& b) { return (b.y - a.y) / (b.x - a.x); }

}  // namespace

float MonotoneCubic(const CubicPoint* before, const CubicPoint& a, const CubicPoint& b, const CubicPoint* after,
                    float x) {
  const float h = b.x - a.x, d = Chord(a, b);
  const float slopeA = before ? SlopeBetween(a.x - before->x, Chord(*before, a), h, d) : d;
  const float slopeB = after ? SlopeBetween(h, d, after->x - b.x, Chord(b, *after)) : d;
  const float u = (x - a.x) / h, v = 1 - u;
  return v * v * ((1 + 2 * u) * a.y + u * h * slopeA) + u * u * ((1 + 2 * v) * b.y - v * h * slopeB);
}

}  // namespace tavrilon
