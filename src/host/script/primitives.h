// SPDX-License-Identifier: MIT
// Functions that a plug-in adds to the script language by name.
#pragma once

#include <functional>
#include <span>

#include "host/core/fp_value.h"

namespace corvanta {

/// The arguments of a call as published functions get them: indices and angles are not converted, since a primitive
/// has no table of types. Undefined comes as void, integers as int, other numbers as float.
class PrimitiveArgs {
 public:
  struct Keyword {
    WStr name;
    FPValue value;
  };
  PrimitiveArgs(WStr function, std::vector<FPValue> values, std::vector<Keyword> keywords)
      : function_(std::move(function)), values_(std::move(values)), keywords_(std::move(keywords)) {}

  size_t Count() const { return values_.size(); }
  const FPValue& operator[](size_t i) const { return values_[i]; }
  /// The value of keyword `name` (any case), or null.
  const FPValue* Find(const WStr& name) const;
  const WStr& FunctionName() const { return function_; }

  /// Throws the script's error for a wrong count unless there are `count` arguments.
  void RequireCount(size_t count) const;
  /// Argument `i` from 0 as a node. Anything else throws "Expected a Node for the first argument, in function NAME";
  /// undefined throws "Expected a valid Node for ROLE, in function NAME".
  INode* Node(size_t i, const WStr& role) const;
  /// Argument `i` as a number or a boolean, with errors of the same form. `note` stands behind "argument".
  float Number(size_t i, const WStr& note = {}) const;
  bool Bool(size_t i, const WStr& note = {}) const;

 private:
  [[noreturn]] void Expected(const wchar_t* kind, size_t i, const WStr& note) const;
  WStr function_;
  std::vector<FPValue> values_;
  std::vector<Keyword> keywords_;
};

using PrimitiveBody = std::function<FPValue(const PrimitiveArgs&)>;

/// Makes `name` a read-only global of every script. A second registration replaces the first.
void RegisterScriptPrimitive(const WStr& name, PrimitiveBody body);
void UnregisterScriptPrimitive(const WStr& name);
/// Raises a runtime error in the script that runs; for primitives and published functions.
[[noreturn]] void ThrowScriptError(const WStr& message);

}  // namespace corvanta
