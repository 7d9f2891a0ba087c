// SPDX-License-Identifier: MIT
#include "host/core/published.h"

#include <algorithm>

#include "host/core/tab.h"

namespace corvanta {

namespace {
std::vector<FPInterface*>& Interfaces() {
  static auto* all = new std::vector<FPInterface*>;
  return *all;
}
template <class Rows>
auto* FindNamed(const Rows& rows, const WStr& name) {
  const auto found = std::find_if(rows.begin(), rows.end(), [&](const auto& r) { return EqualsNoCase(r.name, name); });
  return found == rows.end() ? nullptr : &*found;
}
}  // namespace

FPInterfaceDesc::FPInterfaceDesc(Interface_ID id, const wchar_t* scriptName, std::vector<FPFunctionDesc> functions,
                                 std::vector<FPPropertyDesc> properties, std::vector<FPEnumDesc> enums)
    : id(id),
      scriptName(scriptName),
      functions(std::move(functions)),
      properties(std::move(properties)),
      enums(std::move(enums)) {}

const FPFunctionDesc* FPInterfaceDesc::FindFunction(const WStr& name) const { return FindNamed(functions, name); }
const FPPropertyDesc* FPInterfaceDesc::FindProperty(const WStr& name) const { return FindNamed(properties, name); }
const FPEnumDesc* FPInterfaceDesc::FindEnum(int enumId) const {
  const auto found = std::find_if(enums.begin(), enums.end(), [&](const FPEnumDesc& e) { return e.id == enumId; });
  return found == enums.end() ? nullptr : &*found;
}

const FPValue& FPArg(std::span<const FPValue> args, size_t i) {
  if (i >= args.size()) throw CorvantaSDK::Util::OutOfRangeException();
  return args[i];
}

void RegisterCoreInterface(FPInterface* interface) { Interfaces().push_back(interface); }
void UnregisterCoreInterface(FPInterface* interface) { std::erase(Interfaces(), interface); }

FPInterface* FindCoreInterface(const WStr& scriptName) {
  for (FPInterface* interface : Interfaces())
    if (EqualsNoCase(interface->GetDesc().scriptName, scriptName)) return interface;
  return nullptr;
}

FPInterface* GetCoreInterface(const Interface_ID& id) {
  for (FPInterface* interface : Interfaces())
    if (interface->GetDesc().id == id) return interface;
  return nullptr;
}

const std::vector<FPInterface*>& CoreInterfaces() { return Interfaces(); }

}  // namespace corvanta
