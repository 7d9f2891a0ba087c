// SPDX-License-Identifier: MIT
#include "plugin/shapes/control_params.h"

#include "plugin/shapes/selector_validator.h"

namespace tavrilon {

using namespace corvanta;

namespace {

// Rollups.
constexpr int kParameters = 0, kSelector = 1;
constexpr float kMost = 1e30f;

// clang-format off
std::span<const ParamRow> Rows() {
  static const ParamRow rows[] = {
    // id                        script name                    type                flags        default              range        label                          rollup
    {kControlType,               L"type",                       ParamType::Int,     kNone,       9,                   {},          L"Helper Type",                kParameters},
    {kControlGizmo,              L"gizmo",                      ParamType::Matrix3, kNone,       {},                  {},          L"Gizmo",                      kParameters},
    {kControlUniform,            L"uniform",                    ParamType::Bool,    kNone,       true,                {},          L"Uniform",                    kParameters},
    {kControlSize,               L"size",                       ParamType::World,   kAnimatable, 20.0f,               {0, kMost},  L"Size",                       kParameters},
    {kControlLength,             L"length",                     ParamType::World,   kAnimatable, 20.0f,               {0, kMost},  L"Length",                     kParameters},
    {kControlWidth,              L"width",                      ParamType::World,   kAnimatable, 20.0f,               {0, kMost},  L"Width",                      kParameters},
    {kControlHeight,             L"height",                     ParamType::World,   kAnimatable, 20.0f,               {0, kMost},  L"Height",                     kParameters},
    {kControlAxis,               L"axis",                       ParamType::Int,     kNone,       2,                   {0, 2},      L"Axis",                       kParameters},
    {kControlThickness,          L"thickness",                  ParamType::Percent, kAnimatable, 0.5f,                {0, 100},    L"Thickness",                  kParameters},
    {kControlCorner,             L"corner",                     ParamType::World,   kAnimatable, 0.0f,                {0, kMost},  L"Corner",                     kParameters},
    {kControlSteps,              L"steps",                      ParamType::Int,     kNone,       6,                   {0, 999},    L"Steps",                      kParameters},
    {kControlWarpAmount,         L"warp_amount",                ParamType::Percent, kAnimatable, 0.0f,                {-100, 100}, L"Warp Amount",                kParameters},
    {kControlWarpAxis,           L"warp_axis",                  ParamType::Int,     kNone,       0,                   {0, 2},      L"Warp Axis",                  kParameters},
    {kControlOffsetLine,         L"offset_line",                ParamType::Bool,    kNone,       false,               {},          L"Offset Line",                kParameters},
    {kControlFaceCamera,         L"face_camera",                ParamType::Bool,    kNone,       false,               {},          L"Face Camera",                kParameters},
    {kControlConstantScreenSize, L"constant_screen_size",       ParamType::Bool,    kNone,       false,               {},          L"Constant Screen Size",       kParameters},
    {kControlDrawOnTop,          L"draw_on_top",                ParamType::Bool,    kNone,       false,               {},          L"Draw On Top",                kParameters},
    {kSelectorActive,            L"selector_active",            ParamType::Bool,    kNone,       false,               {},          L"Selector Active",            kSelector},
    {kSelectorNode,              L"selector_node",              ParamType::Node,    kWeak,       {},                  {},          L"Selector Node",              kSelector, nullptr, SelectorNodeValidator()},
    {kSelectorIgnoreBackfacing,  L"selector_ignore_backfacing", ParamType::Bool,    kNone,       false,               {},          L"Selector Ignore Backfacing", kSelector},
    {kSelectorUseWireColor,      L"selector_use_wire_color",    ParamType::Bool,    kNone,       true,                {},          L"Selector Use Wire Color",    kSelector},
    {kSelectorColor,             L"selector_color",             ParamType::Colour,  kNone,       {0.25f, 0.6f, 1.0f}, {},          L"Selector Color",             kSelector},
    {kSelectorSelOpacity,        L"selector_sel_opacity",       ParamType::Percent, kNone,       0.5f,                {0, 100},    L"Selector Sel Opacity",       kSelector},
    {kSelectorUnselOpacity,      L"selector_unsel_opacity",     ParamType::Percent, kNone,       0.25f,               {0, 100},    L"Use Position",               kSelector},
    {kSelectorPushValue,         L"selector_push_value",        ParamType::Float,   kNone,       0.1f,                {0, kMost},  L"Selector Push Value",        kSelector},
    {kControlScale,              L"scale",                      ParamType::Percent, kAnimatable, 1.0f,                {0, kMost},  L"Scale",                      kParameters},
  };
  return rows;
}
// clang-format on

}  // namespace

const ParamBlockDesc2& ControlShapeBlock() {
  static const ParamBlockDesc2 desc(0, L"params", Rows());
  return desc;
}

const ParamBlockDesc2& ControlHelperBlock() {
  static const ParamBlockDesc2 desc(0, L"params", Rows().first(kControlScale));
  return desc;
}

}  // namespace tavrilon
