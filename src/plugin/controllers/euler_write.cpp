// SPDX-License-Identifier: MIT
// A positive AngAxis turns the other way round than a positive Euler angle: turns along a ring subtract.
#include "plugin/controllers/euler_write.h"

#include <cmath>
#include <limits>

namespace tavrilon {

using namespace corvanta;

namespace {

constexpr float kMark = std::numeric_limits<float>::min();
constexpr float kRingTolerance = 0.0001f;   // of the cosine between axis and ring
constexpr float kLargestStep = 2.3561945f;  // 135 degrees
constexpr int kMostSteps = 4096;            // over a thousand turns in one write: nobody's intention

// The position at which `axis` is applied; orders 6 to 8 have the first of two.
int PositionOf(int axis, int order) {
  for (int i = 0; i < 3; ++i)
    if (kEulerAxes[order][i] == axis) return i;
  return -1;
}

Point3 AxisVector(int axis) { return {axis == 0 ? 1.0f : 0.0f, axis == 1 ? 1.0f : 0.0f, axis == 2 ? 1.0f : 0.0f}; }

void PreRotate(Matrix3& m, int axis, float angle) {
  if (axis == 0) m.PreRotateX(angle);
  if (axis == 1) m.PreRotateY(angle);
  if (axis == 2) m.PreRotateZ(angle);
}

// The axis of each angle as it lies once the angles after it are applied.
struct Rings {
  Point3 ring[3];
};
Rings RingsOf(const Point3& e, int order) {
  Rings rings;
  Matrix3 m;
  for (int i = 2; i >= 0; --i) {
    const int axis = kEulerAxes[order][i];
    rings.ring[i] = VectorTransform(m, AxisVector(axis));
    PreRotate(m, axis, e[i]);
  }
  return rings;
}

bool TurnAlongRing(Point3& e, const AngAxis& turn, int order) {
  const Rings rings = RingsOf(e, order);
  const Point3 axis = Normalize(turn.axis);
  for (int i = 2; i >= 0; --i) {
    const float d = Dot(rings.ring[i], axis);
    if (std::abs(std::abs(d) - 1) > kRingTolerance) continue;
    e[i] += d < 0 ? turn.angle : -turn.angle;
    return true;
  }
  return false;
}

void TurnKeepingWholeTurns(Point3& e, const AngAxis& turn, int order) {
  Point3 turns;
  for (int i = 0; i < 3; ++i) turns[i] = std::trunc(e[i] / kTwoPi);
  const Quat q = EulerToQuat(e, order) * QuatFromAngAxis(turn);
  QuatToEuler(q, e, order);
  e += turns * kTwoPi;
}

void TurnInSteps(Point3& e, const AngAxis& turn, int order) {
  Quat q = EulerToQuat(e, order);
  float left = turn.angle;
  for (int i = 0; i < kMostSteps && left != 0; ++i) {
    const float step = std::abs(left) > kLargestStep ? std::copysign(kLargestStep, left) : left;
    left -= step;
    q = Normalize(q * QuatFromAngAxis({turn.axis, step}));
    ContinuousQuatToEuler(q, e, order);
  }
}

}  // namespace

int GimbalMarkedAxis(const Point3& axis) {
  for (int i = 0; i < 3; ++i)
    if (axis[i] == 1.0f && axis[(i + 1) % 3] == 0.0f && axis[(i + 2) % 3] == kMark) return i;
  return -1;
}

Point3 GimbalMark(int axis) {
  Point3 mark;
  mark[axis] = 1;
  mark[(axis + 2) % 3] = kMark;
  return mark;
}

void SetAngles(Point3& e, const Quat& q, int order) {
  if (RepeatsAxis(order))
    QuatToEuler(q, e, order);
  else
    ContinuousQuatToEuler(q, e, order);
}

void TurnAngles(Point3& e, const AngAxis& turn, int order, bool gimbal) {
  if (!std::isfinite(turn.angle) || !std::isfinite(LengthSquared(turn.axis))) return;
  const int marked = gimbal ? GimbalMarkedAxis(turn.axis) : -1;
  if (marked >= 0 && PositionOf(marked, order) >= 0) {
    e[PositionOf(marked, order)] -= turn.angle;
    return;
  }
  if (TurnAlongRing(e, turn, order)) return;
  if (RepeatsAxis(order))
    TurnKeepingWholeTurns(e, turn, order);
  else
    TurnInSteps(e, turn, order);
}

}  // namespace tavrilon
