// SPDX-License-Identifier: MIT
#include "plugin/shapes/recipes.h"

#include "plugin/shapes/shape_type.h"

namespace tavrilon {

namespace {

constexpr bool kRounds = true;

const Recipe kRecipes[] = {
    {"None", nullptr},
    {"Cross", DrawCross},
    {"CrossDiagonal", DrawCrossDiagonal},
    {"CrossAsterisk", DrawCrossAsterisk},
    {"AxisTripod", DrawAxisTripod},
    {"Circle", DrawCircle},
    {"CircleHalf", DrawCircleHalf, nullptr, kRounds},
    {"CirclePointy", DrawCirclePointy, nullptr, kRounds},
    {"Donut", DrawDonut},
    {"Sphere", DrawSphere},
    {"SphereHalf", DrawSphereHalf},
    {"Rectangle", DrawRectangle, nullptr, kRounds},
    {"Box", DrawBox, nullptr, kRounds},
    {"Triangle", DrawTriangle, nullptr, kRounds},
    {"Cone", DrawCone},
    {"Cylinder", DrawCylinder},
    {"Arrow", DrawArrow, nullptr, kRounds},
    {"ArrowDouble", DrawArrowDouble, nullptr, kRounds},
    {"ArrowCircle", DrawArrowCircle, nullptr, kRounds},
    {"ArrowCylinder", DrawArrowCylinder, nullptr, kRounds},
    {"ArrowCross", DrawArrowCross, nullptr, kRounds},
    {"ArrowMixed", DrawArrowMixed, nullptr, kRounds},
    {"CrossFlat", DrawCrossFlat, nullptr, kRounds},
    {"Drop", DrawDrop, nullptr, kRounds},
    {"Star", DrawStar, nullptr, kRounds},
    {"StarSmooth", DrawStarSmooth},
    {"Peanut", DrawPeanut},
    {"Gear", DrawGear, nullptr, kRounds},
    {"Character", nullptr, &kCharacter, kRounds},
    {"Eye", nullptr, &kEye, kRounds},
    {"Lips", nullptr, &kLips, kRounds},
    {"Hand", DrawHand, nullptr, kRounds},
    {"Foot", nullptr, &kFoot},
    {"Shoe", nullptr, &kShoe, kRounds},
    {"FourArrows", DrawFourArrows, nullptr, kRounds},
    {"FourPyramids", DrawFourPyramids, nullptr, kRounds},
    {"FourTriangles", DrawFourTriangles, nullptr, kRounds},
    {"IKFK", DrawIKFK},
    {"SphereIcosa", DrawSphereIcosa},
    {"SphereGeo", DrawSphereGeo},
    {"Face", nullptr, &kFace},
    {"Nose", nullptr, &kNose, kRounds},
    {"Diamond", DrawDiamond},
};
static_assert(sizeof(kRecipes) / sizeof(kRecipes[0]) == kShapeTypeCount);

}  // namespace

const Recipe& RecipeOf(int type) { return kRecipes[type > 0 && type < kShapeTypeCount ? type : 0]; }

const char* ShapeTypeName(int type) { return type < 0 || type >= kShapeTypeCount ? "" : kRecipes[type].name; }

}  // namespace tavrilon
