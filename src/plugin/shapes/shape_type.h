// SPDX-License-Identifier: MIT
#pragma once

namespace tavrilon {

/// The library of control outlines. The numbers are stored in scenes and used by scripts.
enum class ShapeType : int {
  None,
  Cross,
  CrossDiagonal,
  CrossAsterisk,
  AxisTripod,
  Circle,
  CircleHalf,
  CirclePointy,
  Donut,
  Sphere,
  SphereHalf,
  Rectangle,
  Box,
  Triangle,
  Cone,
  Cylinder,
  Arrow,
  ArrowDouble,
  ArrowCircle,
  ArrowCylinder,
  ArrowCross,
  ArrowMixed,
  CrossFlat,
  Drop,
  Star,
  StarSmooth,
  Peanut,
  Gear,
  Character,
  Eye,
  Lips,
  Hand,
  Foot,
  Shoe,
  FourArrows,
  FourPyramids,
  FourTriangles,
  IKFK,
  SphereIcosa,
  SphereGeo,
  Face,
  Nose,
  Diamond,
};
inline constexpr int kShapeTypeCount = 43;

/// The name that scripts and menus show; "" outside 0 to 42.
const char* ShapeTypeName(int type);

}  // namespace tavrilon
