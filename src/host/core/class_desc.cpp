// SPDX-License-Identifier: MIT
#include "host/core/class_desc.h"

#include <algorithm>

#include "host/core/cust_attrib.h"

namespace corvanta {

namespace {

WStr WithoutBlanks(std::wstring_view name) {
  WStr plain;
  for (const wchar_t c : name)
    if (c != L' ' && c != L'_') plain += c;
  return plain;
}

using RegisterProc = void (*)();
std::vector<RegisterProc>& RegisterProcs() {
  static std::vector<RegisterProc> procs;
  return procs;
}

ReferenceTarget* CreateCustAttribContainer(bool) { return new CustAttribContainer; }
const ClassDesc kCustAttribContainerDesc{
    L"CustAttribContainer",   L"CustAttribContainer", kReferenceTargetSuper, CustAttribContainer::kClassId, L"", false,
    CreateCustAttribContainer};

}  // namespace

ClassDirectory& ClassDirectory::Get() {
  static auto* directory = new ClassDirectory;  // plug-in descriptors may outlive statics here
  return *directory;
}

bool ClassDirectory::Register(const ClassDesc* desc) {
  if (Find(desc->superClass, desc->classId)) return false;
  all_.push_back(desc);
  return true;
}

const ClassDesc* ClassDirectory::Find(SClass_ID superClass, Class_ID id) const {
  const auto found = std::find_if(all_.begin(), all_.end(),
                                  [&](const ClassDesc* d) { return d->classId == id && d->superClass == superClass; });
  return found == all_.end() ? nullptr : *found;
}

const ClassDesc* ClassDirectory::FindByName(const WStr& name) const {
  const WStr wanted = WithoutBlanks(name);
  const auto named = [&](const ClassDesc* d) {
    return EqualsNoCase(wanted, WithoutBlanks(d->internalName)) || EqualsNoCase(wanted, WithoutBlanks(d->className));
  };
  // Of several classes of one name, one that can be made is meant.
  auto found = std::find_if(all_.begin(), all_.end(), [&](const ClassDesc* d) { return d->create && named(d); });
  if (found == all_.end()) found = std::find_if(all_.begin(), all_.end(), named);
  return found == all_.end() ? nullptr : *found;
}

ReferenceTarget* CreateInstance(SClass_ID superClass, Class_ID id) {
  const ClassDesc* desc = ClassDirectory::Get().Find(superClass, id);
  return desc ? desc->Create() : nullptr;
}

HostClassRegistrar::HostClassRegistrar(void (*registerClasses)()) { RegisterProcs().push_back(registerClasses); }

void RegisterHostClasses() {
  static bool done = false;
  if (done) return;
  done = true;
  ClassDirectory::Get().Register(&kCustAttribContainerDesc);
  for (const RegisterProc proc : RegisterProcs()) proc();
}

}  // namespace corvanta
