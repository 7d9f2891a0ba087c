// SPDX-License-Identifier: MIT
// What a new object of a class looks like: which parameter blocks it has, and of which kind its references are. Files
// are read against it, so that no object gets a reference of a kind that it would take for another.
#pragma once

#include <vector>

#include "host/core/class_desc.h"
#include "host/core/param_block.h"

namespace corvanta {

struct ClassShape {
  struct Slot {
    SClass_ID superClass = 0;  // 0: a new object has nothing here
    const ParamBlockDesc2* block = nullptr;
    bool isObject = false;
  };
  std::vector<Slot> slots;

  /// Null when the class makes no block of this ID.
  const ParamBlockDesc2* FindBlock(int blockId) const;
};

/// The shape of a known class: an object is made once and looked at.
const ClassShape& ShapeOf(const ClassDesc& desc);
/// Null for a class that is not known or cannot be made.
const ClassDesc* FindCreatable(SClass_ID superClass, Class_ID classId);
/// The descriptor by which files find a block again, from its owner's class; null when the owner does not make it.
const ParamBlockDesc2* FindBlockDesc(const ReferenceTarget& owner, int blockId);

/// May a file bind `target` as reference `which` of `maker`? The kCustAttribRef slot is meant too.
bool MayBind(const ReferenceTarget& maker, int which, const ReferenceTarget& target);

}  // namespace corvanta
