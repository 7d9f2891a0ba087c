// SPDX-License-Identifier: MIT
#include "plugin/shapes/outline.h"

#include <algorithm>

#include "plugin/shapes/finish.h"
#include "plugin/shapes/recipes.h"

namespace tavrilon {

namespace {

// Cyclic, so that a shape keeps its handedness.
Point3 TurnToAxis(const Point3& p, int axis) {
  if (axis == 0) return {p.z, p.x, p.y};
  if (axis == 1) return {p.y, p.z, p.x};
  return p;
}

}  // namespace

Point3 HalfExtents(const OutlineInput& in) {
  const Point3 whole = in.uniform ? Point3{in.size, in.size, in.size} : Point3{in.width, in.length, in.height};
  return {std::max(whole.x, 0.0f) / 2, std::max(whole.y, 0.0f) / 2, std::max(whole.z, 0.0f) / 2};
}

void BuildOutline(const OutlineInput& in, Outline& outline) {
  outline.clear();
  const Recipe& recipe = RecipeOf(in.type);
  if (recipe.draw) recipe.draw(outline, {std::clamp(in.thickness, 0.0f, 1.0f), std::max(in.size, 0.0f) / 2});
  if (recipe.drawing) AddDrawing(outline, *recipe.drawing);
  DropDegenerate(outline);

  const Point3 half = HalfExtents(in);
  TransformKnots(outline, [&](const Point3& p) { return p * half; });
  if (recipe.rounds) RoundCorners(outline, in.corner);
  Warp(outline, {std::clamp(in.warpAmount, -1.0f, 1.0f), std::clamp(in.warpAxis, 0, 2), half});
  TransformKnots(outline, [&](const Point3& p) { return TurnToAxis(p, in.axis) * in.gizmo * in.scale; });
}

}  // namespace tavrilon
