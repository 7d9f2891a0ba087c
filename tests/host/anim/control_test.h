// SPDX-License-Identifier: MIT
// Controllers in tests: owned ones, the bytes of a whole tree, and reading them back.
#pragma once

#include <gtest/gtest.h>

#include "host/anim/class_ids.h"
#include "host/anim/key_control.h"
#include "host/anim/list_control.h"
#include "host/core/class_desc.h"
#include "host/core/hold.h"
#include "host/core/remap.h"
#include "host/maths/euler.h"

namespace corvanta {

inline Ref<Control> Make(SClass_ID superClass, Class_ID id) {
  RegisterHostClasses();
  ReferenceTarget* made = CreateInstance(superClass, id);
  return made ? made->AsControl() : nullptr;
}
inline Ref<Control> MakeFloat() { return Make(kFloatControlSuper, kBezierFloatId); }

inline float FloatAt(Control& c, TimeValue t) {
  float v = -999;
  Interval valid = FOREVER;
  c.GetValue(t, v, valid, CTRL_ABSOLUTE);
  return v;
}
inline Quat QuatAt(Control& c, TimeValue t) {
  Quat q;
  Interval valid = FOREVER;
  c.GetValue(t, q, valid, CTRL_ABSOLUTE);
  return q;
}
inline Point3 PointAt(Control& c, TimeValue t) {
  Point3 p;
  Interval valid = FOREVER;
  c.GetValue(t, p, valid, CTRL_ABSOLUTE);
  return p;
}
inline Matrix3 MatrixAt(Control& c, TimeValue t, Matrix3 parent = {}) {
  Interval valid = FOREVER;
  c.GetValue(t, parent, valid, CTRL_RELATIVE);
  return parent;
}
inline Interval ValidAt(Control& c, TimeValue t) {
  Matrix3 m;
  float f = 0;
  Point3 p;
  Point4 p4;
  Interval valid = FOREVER;
  switch (c.SuperClassID()) {
    case kFloatControlSuper:
      c.GetValue(t, f, valid, CTRL_RELATIVE);
      break;
    case kPoint3ControlSuper:
      c.GetValue(t, p, valid, CTRL_RELATIVE);
      break;
    case kPoint4ControlSuper:
      c.GetValue(t, p4, valid, CTRL_RELATIVE);
      break;
    default:
      c.GetValue(t, m, valid, CTRL_RELATIVE);
      break;
  }
  return valid;
}
inline void SetFloat(Control& c, TimeValue t, float v, GetSetMethod method = CTRL_ABSOLUTE) {
  c.SetValue(t, v, true, method);
}

/// What a scene file would hold of the object and all below it.
inline std::vector<uint8_t> Bytes(ReferenceTarget* target) {
  if (!target) return {0xEE};
  ISave save;
  save.Write(target->SuperClassID());
  save.Write(target->ClassID());
  save.BeginChunk(1);
  EXPECT_EQ(target->Save(save), IOResult::OK);
  save.EndChunk();
  EXPECT_EQ(save.Status(), IOResult::OK);
  std::vector<uint8_t> bytes = save.TakeBytes();
  for (int i = 0; i < target->NumRefs(); ++i) {
    const std::vector<uint8_t> below = Bytes(target->GetReference(i));
    bytes.insert(bytes.end(), below.begin(), below.end());
  }
  return bytes;
}

/// Saved and loaded as a scene does: created for loading, loaded, then its references bound.
inline Ref<ReferenceTarget> Reloaded(ReferenceTarget* target) {
  if (!target) return {};
  ISave save;
  EXPECT_EQ(target->Save(save), IOResult::OK);
  const ClassDesc* desc = ClassDirectory::Get().Find(target->SuperClassID(), target->ClassID());
  const Ref<ReferenceTarget> copy(desc->Create(true));
  ILoad load(save.Bytes());
  EXPECT_EQ(copy->Load(load), IOResult::OK) << load.ErrorText();
  for (int i = 0; i < target->NumRefs(); ++i) copy->BindReference(i, Reloaded(target->GetReference(i)).Get());
  copy->PostLoad();
  return copy;
}

/// Animate on for a test's scope.
struct Animate {
  Animate() { AnimateOn(); }
  ~Animate() { AnimateOff(); }
};

inline float Distance(const Matrix3& a, const Matrix3& b) {
  float d = 0;
  for (int i = 0; i < 4; ++i)
    for (int j = 0; j < 3; ++j) d = std::max(d, std::abs(a.row[i][j] - b.row[i][j]));
  return d;
}
inline float Distance(const Point3& a, const Point3& b) { return Length(a - b); }
inline float Distance(const Quat& a, const Quat& b) {
  const Quat c = MakeClosest(b, a);
  return std::sqrt((a.x - c.x) * (a.x - c.x) + (a.y - c.y) * (a.y - c.y) + (a.z - c.z) * (a.z - c.z) +
                   (a.w - c.w) * (a.w - c.w));
}
inline Point3 Deg(float x, float y, float z) { return Point3{x, y, z} * kDegToRad; }

}  // namespace corvanta
