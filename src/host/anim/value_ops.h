// SPDX-License-Identifier: MIT
// How each kind of value is read onto what came in, written relatively, shifted and multiplied.
#pragma once

#include "host/core/control.h"

namespace corvanta {

// --- relative reads: numbers add up, a matrix is the parent's and becomes the result's
inline void AddOnto(ValueRef out, float v) { out.Float() += v; }
inline void AddOnto(ValueRef out, const Point3& v) {
  if (out.Is(ValueKind::Matrix3))
    out.Matrix3().PreTranslate(v);
  else
    out.Point3() += v;
}
inline void AddOnto(ValueRef out, const Point4& v) { out.Point4() = out.Point4() + v; }
inline void AddOnto(ValueRef out, const Quat& v) {
  if (out.Is(ValueKind::Matrix3))
    out.Matrix3() = MakeMatrix(v) * out.Matrix3();
  else
    out.Quat() = v * out.Quat();
}
inline void AddOnto(ValueRef out, const ScaleValue& v) { ApplyScaling(out.Matrix3(), v); }

// --- absolute values
inline void Put(ValueRef out, float v) { out.Float() = v; }
inline void Put(ValueRef out, const Point3& v) { out.Point3() = v; }
inline void Put(ValueRef out, const Point4& v) { out.Point4() = v; }
inline void Put(ValueRef out, const Quat& v) { out.Quat() = v; }
inline void Put(ValueRef out, const ScaleValue& v) { out.Scale() = v; }
inline float Take(ValueRef in, float) { return in.Float(); }
inline Point3 Take(ValueRef in, const Point3&) { return in.Point3(); }
inline Point4 Take(ValueRef in, const Point4&) { return in.Point4(); }
inline Quat Take(ValueRef in, const Quat&) { return Normalize(in.Quat()); }
inline ScaleValue Take(ValueRef in, const ScaleValue&) { return in.Scale(); }

/// The stretch `old` followed by the stretch `delta`. Along common axes the factors multiply; else what turns out of
/// the product as a rotation is dropped.
ScaleValue CombineScale(const ScaleValue& old, const ScaleValue& delta);

// --- relative writes: the value that a change makes of `old`
inline float Changed(float old, ValueRef delta) { return old + delta.Float(); }
inline Point3 Changed(const Point3& old, ValueRef delta) { return old + delta.Point3(); }
inline Point4 Changed(const Point4& old, ValueRef delta) { return old + delta.Point4(); }
inline Quat Changed(const Quat& old, ValueRef delta) {
  return Normalize(old * (delta.Is(ValueKind::Quat) ? delta.Quat() : QuatFromAngAxis(delta.AngAxis())));
}
inline ScaleValue Changed(const ScaleValue& old, ValueRef delta) { return CombineScale(old, delta.Scale()); }

// --- the change from `from` to `to`, done to `v`: numbers by the difference, turns about the same axis of the parent,
// scales by the factor
inline float Shifted(float v, float from, float to) { return v + (to - from); }
inline Point3 Shifted(const Point3& v, const Point3& from, const Point3& to) { return v + (to - from); }
inline Point4 Shifted(const Point4& v, const Point4& from, const Point4& to) { return v + (to - from); }
inline Quat Shifted(const Quat& v, const Quat& from, const Quat& to) { return Normalize(v * Inverse(from) * to); }
ScaleValue Shifted(const ScaleValue& v, const ScaleValue& from, const ScaleValue& to);

// --- multiplier curves: from the neutral value towards `v`
inline float Multiplied(float v, float m) { return v * m; }
inline Point3 Multiplied(const Point3& v, float m) { return v * m; }
inline Point4 Multiplied(const Point4& v, float m) { return v * m; }
inline Quat Multiplied(const Quat& v, float m) { return SlerpClosest({}, v, m); }
inline ScaleValue Multiplied(const ScaleValue& v, float m) {
  return {Lerp({1, 1, 1}, v.s, m), SlerpClosest({}, v.q, m)};
}

}  // namespace corvanta
