// SPDX-License-Identifier: MIT
// The library: one row for each shape type, with the generator or the drawing that makes it in unit coordinates.
#pragma once

#include "plugin/shapes/stroke.h"

namespace tavrilon {

struct RecipeInput {
  /// 0 to 1.
  float thickness = 0.5f;
  /// Half the shape's size in scene units, for limits that are told in scene units.
  float halfSize = 10;
};

struct Recipe {
  const char* name;
  /// Null for a shape that is a drawing, or none.
  void (*draw)(Outline&, const RecipeInput&);
  const Drawing* drawing = nullptr;
  /// Whether `corner` rounds it. Crosses, cages, letters and round shapes keep their points.
  bool rounds = false;
};

/// The row of a type; that of "None" outside 0 to 42.
const Recipe& RecipeOf(int type);

// Flat shapes, in the XY plane.
void DrawCircle(Outline&, const RecipeInput&);
void DrawCircleHalf(Outline&, const RecipeInput&);
void DrawCirclePointy(Outline&, const RecipeInput&);
void DrawDonut(Outline&, const RecipeInput&);
void DrawRectangle(Outline&, const RecipeInput&);
void DrawTriangle(Outline&, const RecipeInput&);
void DrawCrossFlat(Outline&, const RecipeInput&);
void DrawDrop(Outline&, const RecipeInput&);
void DrawStar(Outline&, const RecipeInput&);
void DrawStarSmooth(Outline&, const RecipeInput&);
void DrawPeanut(Outline&, const RecipeInput&);
void DrawGear(Outline&, const RecipeInput&);

// Arrows.
void DrawArrow(Outline&, const RecipeInput&);
void DrawArrowDouble(Outline&, const RecipeInput&);
void DrawArrowCircle(Outline&, const RecipeInput&);
void DrawArrowCylinder(Outline&, const RecipeInput&);
void DrawArrowCross(Outline&, const RecipeInput&);
void DrawArrowMixed(Outline&, const RecipeInput&);
void DrawFourArrows(Outline&, const RecipeInput&);
void DrawFourPyramids(Outline&, const RecipeInput&);
void DrawFourTriangles(Outline&, const RecipeInput&);

// Shapes with depth, about the Z axis.
void DrawCross(Outline&, const RecipeInput&);
void DrawCrossDiagonal(Outline&, const RecipeInput&);
void DrawCrossAsterisk(Outline&, const RecipeInput&);
void DrawAxisTripod(Outline&, const RecipeInput&);
void DrawSphere(Outline&, const RecipeInput&);
void DrawSphereHalf(Outline&, const RecipeInput&);
void DrawBox(Outline&, const RecipeInput&);
void DrawCone(Outline&, const RecipeInput&);
void DrawCylinder(Outline&, const RecipeInput&);
void DrawSphereIcosa(Outline&, const RecipeInput&);
void DrawSphereGeo(Outline&, const RecipeInput&);
void DrawDiamond(Outline&, const RecipeInput&);

// Drawings.
extern const Drawing kCharacter, kEye, kLips, kFoot, kShoe, kFace, kNose;
void DrawHand(Outline&, const RecipeInput&);
void DrawIKFK(Outline&, const RecipeInput&);

}  // namespace tavrilon
