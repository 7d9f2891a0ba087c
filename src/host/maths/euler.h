// SPDX-License-Identifier: MIT
// Euler angles in nine orders. Angles are radians in the order of application, not of the axes: for order ZYX,
// e[0] turns about Z. The matrix is the product of the axis matrices in that order.
#pragma once

#include "host/maths/matrix3.h"

namespace corvanta {

enum EulerOrder : int { kXYZ = 0, kXZY, kYZX, kYXZ, kZXY, kZYX, kXYX, kYZY, kZXZ };

/// The axis (0 X, 1 Y, 2 Z) applied first, second and third.
inline constexpr int kEulerAxes[9][3] = {{0, 1, 2}, {0, 2, 1}, {1, 2, 0}, {1, 0, 2}, {2, 0, 1},
                                         {2, 1, 0}, {0, 1, 0}, {1, 2, 1}, {2, 0, 2}};
/// For orders 0 to 5: the position at which axis 0, 1, 2 is applied.
inline constexpr int kEulerPosition[6][3] = {{0, 1, 2}, {0, 2, 1}, {2, 0, 1}, {1, 0, 2}, {1, 2, 0}, {2, 1, 0}};

Matrix3 EulerToMatrix(const Point3& e, int order = kXYZ);
Quat EulerToQuat(const Point3& e, int order = kXYZ);
/// Any of the equal triples; at gimbal lock `e` on entry gives the angle that is kept.
void QuatToEuler(const Quat& q, Point3& e, int order = kXYZ);
/// The triple nearest to `e` on entry: both solutions, each angle unwrapped to the whole turn nearest to its
/// reference, the smaller sum of changes wins. Orders 6 to 8 behave as `QuatToEuler`.
void ContinuousQuatToEuler(const Quat& q, Point3& e, int order = kXYZ);

}  // namespace corvanta
