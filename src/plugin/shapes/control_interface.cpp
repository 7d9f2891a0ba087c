// SPDX-License-Identifier: MIT
#include "plugin/shapes/control_interface.h"

#include "plugin/shapes/shape_type.h"

namespace tavrilon {

using namespace corvanta;

namespace {

constexpr int kShapeTypes = 0;  // the one enumeration

const struct {
  int getter;
  const wchar_t* name;
  FPType type;
} kProperties[] = {
    {kGetType, L"type", FPType::Enum},          {kGetGizmoPos, L"gizmoPos", FPType::Point3},
    {kGetGizmoRot, L"gizmoRot", FPType::Quat},  {kGetGizmoScale, L"gizmoScale", FPType::Point3},
    {kGetGizmoTM, L"gizmoTM", FPType::Matrix3}, {kGetFaceSel, L"selector_face_sel", FPType::BitArray},
};

// The names of the library once more as wide text, which enumerations refer to and never own.
FPEnumDesc TypeEnumeration() {
  static const std::vector<WStr> names = [] {
    std::vector<WStr> all;
    for (int i = 0; i < kShapeTypeCount; ++i) all.push_back(FromUtf8(ShapeTypeName(i)));
    return all;
  }();
  FPEnumDesc desc{kShapeTypes, {}};
  for (int i = 0; i < kShapeTypeCount; ++i) desc.values.emplace_back(names[static_cast<size_t>(i)].c_str(), i);
  return desc;
}

FPInterfaceDesc MakeInterface(const Interface_ID& id, const wchar_t* name) {
  std::vector<FPPropertyDesc> properties;
  for (const auto& p : kProperties)
    properties.push_back({p.getter, p.getter + 1, p.name, p.type, p.type == FPType::Enum ? kShapeTypes : -1});
  return {id, name, {}, properties, {TypeEnumeration()}};
}

}  // namespace

const FPInterfaceDesc& ControlShapeInterface() {
  static const FPInterfaceDesc desc = MakeInterface(kIControlShape, L"interface");
  return desc;
}

const FPInterfaceDesc& ControlHelperInterface() {
  static const FPInterfaceDesc desc = MakeInterface(kIControlHelper, L"interface");
  return desc;
}

}  // namespace tavrilon
