// SPDX-License-Identifier: MIT
// Function-published interfaces: what a class or the program shows to scripts, as one table, and the dispatch to it.
#pragma once

#include <initializer_list>
#include <optional>
#include <span>

#include "host/core/fp_value.h"

namespace corvanta {

struct FPEnumDesc {
  int id;
  std::vector<std::pair<const wchar_t*, int>> values;
};

struct FPParamDesc {
  const wchar_t* name;
  FPType type;
  /// Present: the argument may be left out or given by keyword.
  std::optional<FPValue> defaultValue = std::nullopt;
  /// Enumeration of an Enum argument, -1 for none.
  int enumId = -1;
};

struct FPFunctionDesc {
  int id;
  const wchar_t* name;
  FPType result;
  std::vector<FPParamDesc> params = {};
  int enumId = -1;
};

struct FPPropertyDesc {
  /// Function ID of the getter, and of the setter; -1 for a read-only property.
  int getId, setId;
  const wchar_t* name;
  FPType type;
  int enumId = -1;
};

/// The table of an interface: one static object a class.
class FPInterfaceDesc {
 public:
  FPInterfaceDesc(Interface_ID id, const wchar_t* scriptName, std::vector<FPFunctionDesc> functions,
                  std::vector<FPPropertyDesc> properties = {}, std::vector<FPEnumDesc> enums = {});

  Interface_ID id;
  const wchar_t* scriptName;
  std::vector<FPFunctionDesc> functions;
  std::vector<FPPropertyDesc> properties;
  std::vector<FPEnumDesc> enums;

  const FPFunctionDesc* FindFunction(const WStr& name) const;
  const FPPropertyDesc* FindProperty(const WStr& name) const;
  const FPEnumDesc* FindEnum(int enumId) const;
};

enum class FPStatus : uint32_t { OK = 0, Failed = 1, NoSuchFunction = 0xFFFFFFFF };

/// A published interface of an object or of the program.
class FPInterface {
 public:
  virtual ~FPInterface() = default;
  virtual const FPInterfaceDesc& GetDesc() const = 0;
  /// Calls function `id` with all its arguments in order. A getter takes none, a setter one.
  /// Missing arguments raise `OutOfRangeException`.
  virtual FPStatus Invoke(int id, TimeValue t, FPValue& result, std::span<const FPValue> args) = 0;
};
using FPMixinInterface = FPInterface;

/// Argument `i`; raises CorvantaSDK::Util::OutOfRangeException beyond the end.
const FPValue& FPArg(std::span<const FPValue> args, size_t i);

/// Interfaces that belong to no object, by script name.
void RegisterCoreInterface(FPInterface* interface);
void UnregisterCoreInterface(FPInterface* interface);
FPInterface* FindCoreInterface(const WStr& scriptName);
FPInterface* GetCoreInterface(const Interface_ID& id);
const std::vector<FPInterface*>& CoreInterfaces();

}  // namespace corvanta
