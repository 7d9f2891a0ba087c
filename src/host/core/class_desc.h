// SPDX-License-Identifier: MIT
// Class descriptors and the directory through which every object of the scene is created.
#pragma once

#include <functional>
#include <vector>

#include "host/core/ids.h"
#include "host/core/wstr.h"

namespace corvanta {

class ReferenceTarget;
class ParamBlockDesc2;

/// One row of a library's class table. `create` is null for a class that is not built yet.
class ClassDesc {
 public:
  const wchar_t* className;
  const wchar_t* internalName;
  SClass_ID superClass;
  Class_ID classId;
  const wchar_t* category;
  bool isPublic;
  /// A new object; `loading` leaves out blocks and sub-controllers, which the file brings.
  ReferenceTarget* (*create)(bool loading);

  ReferenceTarget* Create(bool loading = false) const { return create ? create(loading) : nullptr; }
};

/// All registered classes, by super class and Class_ID together.
class ClassDirectory {
 public:
  static ClassDirectory& Get();
  /// False when the pair of super class and Class_ID is taken.
  bool Register(const ClassDesc* desc);
  const ClassDesc* Find(SClass_ID superClass, Class_ID id) const;
  /// By class name or internal name, blanks left out, case ignored; null when none.
  const ClassDesc* FindByName(const WStr& name) const;
  const std::vector<const ClassDesc*>& All() const { return all_; }

 private:
  std::vector<const ClassDesc*> all_;
};

/// A new object of the class; null for an unknown class or one that is not built yet.
ReferenceTarget* CreateInstance(SClass_ID superClass, Class_ID id);

/// Registers the host's own classes; safe to repeat. Called by every program before anything else.
void RegisterHostClasses();

/// Adds a function that RegisterHostClasses runs: one static object a folder of classes.
class HostClassRegistrar {
 public:
  explicit HostClassRegistrar(void (*registerClasses)());
};

}  // namespace corvanta
