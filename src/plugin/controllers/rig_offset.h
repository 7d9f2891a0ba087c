// SPDX-License-Identifier: MIT
// The offset of a rig control: reading its parts, replacing one of them, mirroring a change of it. Plain values only.
#pragma once

#include "host/maths/matrix3.h"

namespace tavrilon {

/// An offset as evaluation wants it: split once when it changes, never while evaluating. With S the stretch (k times the
/// sign f, along the axes of u), offset = stretch * rotation * T(translation).
struct SplitOffset {
  corvanta::Matrix3 tm;
  corvanta::Point3 translation;
  corvanta::Quat rotationQuat;
  corvanta::Matrix3 rotation;
  corvanta::Matrix3 stretch;
  bool isIdentity = true;
  bool rotates = false;
  bool stretches = false;
};
SplitOffset Split(const corvanta::Matrix3& offset);

/// m = a * m for an `a` without translation: the translation of m stays.
inline void PreMultiplyLinear(corvanta::Matrix3& m, const corvanta::Matrix3& a) {
  const corvanta::Point3 r0 = corvanta::VectorTransform(m, a.row[0]);
  const corvanta::Point3 r1 = corvanta::VectorTransform(m, a.row[1]);
  m.row[2] = corvanta::VectorTransform(m, a.row[2]);
  m.row[0] = r0;
  m.row[1] = r1;
}

/// Lengths of rows 0 to 2.
corvanta::Point3 RowLengths(const corvanta::Matrix3& m);

/// The rotation of an offset: of a mirrored one with row 2 negated; identity when a row is not longer than 1e-6.
corvanta::Quat OffsetRotation(const corvanta::Matrix3& offset);
/// The row lengths, the third negated for a mirrored offset.
corvanta::Point3 OffsetScale(const corvanta::Matrix3& offset);
/// m(rotation) with rows scaled, at a place.
corvanta::Matrix3 OffsetFromParts(const corvanta::Point3& pos, const corvanta::Quat& rot, const corvanta::Point3& scale);

/// The offset with its rotation replaced; translation, mirror sign and stretch stay.
corvanta::Matrix3 WithRotation(const corvanta::Matrix3& offset, const corvanta::Quat& rotation);

/// A change of an offset (new * inverse(old)) as the mirrored control takes it: the component `posAxis` of the
/// translation negated, and the rotation reflected so that only turns about `rotAxis` keep their sense. Axes -1 leave
/// that part alone; the stretch always stays. Reflecting the rotation is negating the two other XYZ Euler angles.
corvanta::Matrix3 MirrorChange(const corvanta::Matrix3& change, int posAxis, int rotAxis);

}  // namespace tavrilon
