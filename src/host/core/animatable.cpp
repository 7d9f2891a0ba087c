// SPDX-License-Identifier: MIT
#include "host/core/animatable.h"

#include <unordered_map>

#include "host/core/class_desc.h"
#include "host/core/published.h"
#include "host/core/reference.h"
#include "host/maths/point.h"

namespace corvanta {

namespace {

std::unordered_map<AnimHandle, Animatable*>& HandleTable() {
  static auto* table = new std::unordered_map<AnimHandle, Animatable*>;  // outlives every static object
  return *table;
}

}  // namespace

float ConvertForDisplay(ParamDimension dimension, float value) {
  switch (dimension) {
    case ParamDimension::Angle:
      return value * kRadToDeg;
    case ParamDimension::Percent:
      return value * 100;
    default:
      return value;
  }
}

float UnConvertFromDisplay(ParamDimension dimension, float value) {
  switch (dimension) {
    case ParamDimension::Angle:
      return value * kDegToRad;
    case ParamDimension::Percent:
      return value * 0.01f;
    default:
      return value;
  }
}

Animatable::~Animatable() {
  if (handle_) HandleTable().erase(handle_);
}

WStr Animatable::GetClassName() const {
  const ClassDesc* desc = ClassDirectory::Get().Find(SuperClassID(), ClassID());
  return desc ? desc->className : L"";
}

FPInterface* Animatable::GetInterface(const Interface_ID& id) {
  for (int i = 0; i < NumInterfaces(); ++i)
    if (FPInterface* interface = GetInterfaceAt(i); interface && interface->GetDesc().id == id) return interface;
  return nullptr;
}

AnimHandle Animatable::GetHandleByAnim(Animatable* anim) {
  static AnimHandle last = 0;
  if (!anim) return 0;
  if (!anim->handle_) {
    anim->handle_ = ++last;
    HandleTable()[anim->handle_] = anim;
  }
  return anim->handle_;
}

Animatable* Animatable::GetAnimByHandle(AnimHandle handle) {
  const auto found = HandleTable().find(handle);
  if (found == HandleTable().end()) return nullptr;
  const auto* maker = dynamic_cast<ReferenceMaker*>(found->second);
  const ReferenceTarget* target = maker ? const_cast<ReferenceMaker*>(maker)->AsTarget() : nullptr;
  return !target || target->IsLive() ? found->second : nullptr;
}

}  // namespace corvanta
