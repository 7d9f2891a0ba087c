// SPDX-License-Identifier: MIT
#include "plugin/connections/exposed.h"

#include <algorithm>
#include <cmath>

#include "plugin/frame/rig_maths.h"

namespace tavrilon {

using namespace corvanta;

namespace {

float EulerAngle(const Matrix3& place, int axis, int order) {
  order = std::clamp<int>(order, kXYZ, kZYX);
  Point3 e;
  QuatToEuler(OrthoQuat(place), e, order);
  return e[kEulerPosition[order][axis]];
}

}  // namespace

Quat DeltaFromRest(const Matrix3& place, const Matrix3& rest) { return OrthoQuat(place) * Inverse(OrthoQuat(rest)); }

float TwistX(const Quat& d) {
  // A quaternion and its negative are one turn: with w >= 0 the half angle is within a quarter turn.
  return d.w < 0 ? 2 * std::atan2(d.x, -d.w) : 2 * std::atan2(-d.x, d.w);
}

float SwingAngle(const Quat& d) { return 2 * std::atan2(std::hypot(d.y, d.z), std::hypot(d.x, d.w)); }

Point2 SwingParts(const Quat& d) {
  const Quat twist = TwistQuat(TwistX(d));
  Quat swing = Inverse(twist) * d;
  if (swing.w < 0) swing = -swing;
  const float length = std::hypot(swing.y, swing.z);
  if (length <= 0) return {};
  const float k = -2 * std::atan2(length, swing.w) / length;
  return {swing.y * k, swing.z * k};
}

float Exposed(const Matrix3& place, const Matrix3& rest, float_expose_tm::Component component, int order) {
  using C = float_expose_tm::Component;
  const auto from = [component](C first) { return static_cast<int>(component) - static_cast<int>(first); };
  switch (component) {
    case C::PositionX:
    case C::PositionY:
    case C::PositionZ:
      return place.GetTrans()[from(C::PositionX)];
    case C::EulerX:
    case C::EulerY:
    case C::EulerZ:
      return EulerAngle(place, from(C::EulerX), order);
    case C::Distance:
      return Length(place.GetTrans());
    case C::Angle:
      return AngleBetween(Normalize(place.row[0]), {1, 0, 0});
    case C::TwistX:
      return TwistX(DeltaFromRest(place, rest));
    case C::Swing:
      return SwingAngle(DeltaFromRest(place, rest));
    case C::ScaleX:
    case C::ScaleY:
    case C::ScaleZ:
      return Length(place.row[from(C::ScaleX)]);
  }
  return 0;
}

float Driver(const Matrix3& place, const Matrix3& rest, twist_poses::Component component) {
  using C = twist_poses::Component;
  const Quat delta = DeltaFromRest(place, rest);
  switch (component) {
    case C::TwistX:
      return TwistX(delta);
    case C::SwingY:
      return SwingParts(delta).x;
    case C::SwingZ:
      return SwingParts(delta).y;
    case C::BendAngle:
      return SwingAngle(delta);
  }
  return 0;
}

}  // namespace tavrilon
