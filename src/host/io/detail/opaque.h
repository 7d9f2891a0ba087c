// SPDX-License-Identifier: MIT
// Placeholders for objects whose class this program does not know. They keep what the file said and give it back to the
// next file; in between they hold their references, and evaluate to nothing.
#pragma once

#include <memory>
#include <vector>

#include "host/core/control.h"
#include "host/core/cust_attrib.h"
#include "host/core/monitor.h"
#include "host/scene/object.h"

namespace corvanta {

/// What a placeholder keeps.
struct OpaqueState {
  SClass_ID superClass = 0;
  Class_ID classId;
  WStr className;
  bool locked = false;
  bool isBlock = false;
  int32_t blockId = 0;
  std::vector<uint8_t> params, data;
  std::vector<ReferenceTarget*> refs;  // slots stay when their target goes
};

/// The part of every placeholder that is the same.
class OpaqueObject {
 public:
  virtual ~OpaqueObject() = default;
  OpaqueState state;
  std::vector<std::unique_ptr<RefTargMonitor>> weak;

  void SetWeak(int i, ReferenceTarget* target);
  /// Copies state and weak links; weak links follow the clones when all is cloned.
  void CopyTo(OpaqueObject& clone, RemapDir& remap) const;
};

/// The placeholder that an object is; null for all others.
inline const OpaqueObject* AsOpaque(const ReferenceTarget& object) {
  return object.TestFlag(A_PLACEHOLDER) ? dynamic_cast<const OpaqueObject*>(&object) : nullptr;
}

/// A placeholder that can stand where an object of this super class is wanted.
ReferenceTarget* NewOpaque(OpaqueState state);

}  // namespace corvanta
