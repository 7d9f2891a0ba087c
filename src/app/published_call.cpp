// SPDX-License-Identifier: MIT
#include "app/published_call.h"

namespace app {

using namespace corvanta;

FPInterface* FindInterface(Animatable& object, const wchar_t* function) {
  for (int i = 0; i < object.NumInterfaces(); ++i) {
    FPInterface* interface = object.GetInterfaceAt(i);
    if (interface != nullptr && interface->GetDesc().FindFunction(function) != nullptr) return interface;
  }
  return nullptr;
}

FPValue Call(FPInterface& interface, const wchar_t* function, std::initializer_list<FPValue> arguments) {
  const FPFunctionDesc* desc = interface.GetDesc().FindFunction(function);
  FPValue result;
  if (desc == nullptr) return result;
  std::vector<FPValue> all = arguments;
  for (size_t i = all.size(); i < desc->params.size(); ++i)
    all.push_back(desc->params[i].defaultValue.value_or(FPValue()));
  interface.Invoke(desc->id, 0, result, all);
  return result;
}

FPValue GetProperty(FPInterface& interface, const wchar_t* property) {
  const FPPropertyDesc* desc = interface.GetDesc().FindProperty(property);
  FPValue result;
  if (desc != nullptr) interface.Invoke(desc->getId, 0, result, {});
  return result;
}

bool SetProperty(FPInterface& interface, const wchar_t* property, const FPValue& value) {
  const FPPropertyDesc* desc = interface.GetDesc().FindProperty(property);
  if (desc == nullptr || desc->setId < 0) return false;
  FPValue ignored;
  return interface.Invoke(desc->setId, 0, ignored, std::span<const FPValue>(&value, 1)) == FPStatus::OK;
}

std::vector<std::string> EnumNames(const FPInterface& interface, const wchar_t* property) {
  std::vector<std::string> names;
  const FPPropertyDesc* desc = interface.GetDesc().FindProperty(property);
  const FPEnumDesc* enumeration = desc != nullptr ? interface.GetDesc().FindEnum(desc->enumId) : nullptr;
  if (enumeration == nullptr) return names;
  for (const auto& [name, value] : enumeration->values) names.push_back(ToUtf8(name));
  return names;
}

std::vector<std::string> Texts(const FPValue& tab) {
  std::vector<std::string> texts;
  if (const FPValue::Tab* values = tab.As<FPValue::Tab>())
    for (const FPValue& value : *values) texts.push_back(ToUtf8(value.ToWStr()));
  return texts;
}

}  // namespace app
