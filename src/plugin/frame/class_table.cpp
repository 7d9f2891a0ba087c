// SPDX-License-Identifier: MIT
#include "plugin/frame/class_table.h"

#include "host/core/reference.h"

namespace tavrilon {

using namespace corvanta;

bool IsOfClass(const ReferenceTarget* object, TavrilonClass row) {
  if (!object) return false;
  const ClassDesc& desc = DescOf(row);
  return object->ClassID() == desc.classId && object->SuperClassID() == desc.superClass;
}

const ClassDesc* LibraryClassDesc(int index) {
  return index >= 0 && index < kNumClasses ? &kClassTable[index] : nullptr;
}

void RegisterTavrilonClasses() {
  ClassDirectory& directory = ClassDirectory::Get();
  for (const ClassDesc& desc : kClassTable)
    if (!directory.Find(desc.superClass, desc.classId)) directory.Register(&desc);
}

}  // namespace tavrilon
