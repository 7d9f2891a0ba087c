// SPDX-License-Identifier: MIT
// What lies between two keys, in the form that evaluation wants: cubics over the share of time u in 0..1.
#pragma once

#include <algorithm>
#include <cstdint>

#include "host/maths/matrix3.h"

namespace corvanta {

/// Time warp of TCB eases: starts slowly over the first share `out`, ends slowly over the last share `in`.
/// Piecewise parabola, line, parabola (Kochanek and Bartels, "Interpolating splines with local tension, continuity,
/// and bias control", 1984, as used in key framing).
float EaseTime(float u, float out, float in);

/// The parameter p in 0..1 where the cubic through 0, x1, x2, 1 reaches `x`. Newton, kept inside a bracket.
float SolveTime(float x, float x1, float x2);

/// How far a segment lets a value hold.
enum class SegmentKind : uint8_t {
  Moving,
  Held,  // the first key's value up to the next key, without it
  Flat,  // one value from key to key
};

/// N cubics. Bezier segments with handles of other lengths than a third have `x1`, `x2` as the time of the inner
/// control points, and `weighted` set.
template <int N>
struct CubicSegment {
  struct Cubic {
    float c0 = 0, c1 = 0, c2 = 0, c3 = 0;
  };
  Cubic cubic[N];
  float x1[N], x2[N];
  float easeOut = 0, easeIn = 0;
  SegmentKind kind = SegmentKind::Moving;
  bool weighted = false;

  float At(int i, float u) const {
    if (weighted) u = SolveTime(u, x1[i], x2[i]);
    const Cubic& c = cubic[i];
    return ((c.c3 * u + c.c2) * u + c.c1) * u + c.c0;
  }
  float Warp(float u) const { return easeOut + easeIn > 0 ? EaseTime(u, easeOut, easeIn) : u; }
  /// Change over the whole segment's time if the curve went on as it starts, or as it ends.
  float StartSpeed(int i) const {
    return kind != SegmentKind::Moving || easeOut > 0 ? 0 : cubic[i].c1 / std::max(3 * x1[i], 1e-6f);
  }
  float EndSpeed(int i) const {
    if (kind != SegmentKind::Moving || easeIn > 0) return 0;
    return (cubic[i].c1 + 2 * cubic[i].c2 + 3 * cubic[i].c3) / std::max(3 * (1 - x2[i]), 1e-6f);
  }
};

/// Factors by cubics, axes by the shorter arc.
struct ScaleSegment : CubicSegment<3> {
  Quat q0, q1;
};

/// A cumulative cubic of turns, q0 exp(b1 w1) exp(b2 w2) exp(b3 w3), whose velocities at its ends are 3 w1 and 3 w3
/// (Kim, Kim and Shin, "A general construction scheme for unit quaternion curves", 1995).
struct RotationSegment {
  Quat q0;
  Point3 w1, w2, w3;  // half-angle vectors
  float easeOut = 0, easeIn = 0;
  SegmentKind kind = SegmentKind::Moving;
};

/// exp of a half-angle vector, and its inverse on the hemisphere w >= 0.
Quat ExpTurn(const Point3& v);
Point3 LogTurn(const Quat& q);

}  // namespace corvanta
