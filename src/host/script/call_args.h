// SPDX-License-Identifier: MIT
// The arguments of one call, with conversions that say what was expected.
#pragma once

#include <optional>
#include <span>

#include "host/script/objects.h"

namespace corvanta::script {

class CallArgs {
 public:
  /// `values` holds the positional arguments, then one value for each of `keywords` (lower case).
  CallArgs(const Callable& callee, std::span<const Value> values, std::span<const WStr> keywords)
      : callee_(callee), values_(values), keywords_(keywords) {}

  size_t Count() const { return values_.size() - keywords_.size(); }
  const Value& operator[](size_t i) const { return values_[i]; }
  std::span<const Value> Positional() const { return values_.first(Count()); }
  std::span<const WStr> Keywords() const { return keywords_; }
  const Value& KeywordValue(size_t i) const { return values_[Count() + i]; }
  /// The value of keyword `name`, or null.
  const Value* Keyword(std::wstring_view name) const;
  const WStr& CalleeName() const { return callee_.Name(); }

  // Argument `i` from 0 as the asked kind. A wrong kind throws "expected ... as argument n of f, got ...".
  bool Bool(size_t i) const;
  int64_t Int(size_t i) const;
  double Number(size_t i) const;
  const WStr& Text(size_t i) const;
  TimeValue Time(size_t i) const;
  corvanta::Point3 Point3(size_t i) const;
  corvanta::Quat Quat(size_t i) const;
  const corvanta::Matrix3& Matrix(size_t i) const;
  ArrayObject& Array(size_t i) const;
  Callable& Function(size_t i) const;

  /// Throws: argument `i` is not `expected` ("a number").
  [[noreturn]] void Wrong(size_t i, const WStr& expected) const;
  /// Throws: the call has the wrong number of arguments; `expected` is a number or "2 to 3".
  [[noreturn]] void WrongCount(const WStr& expected) const;
  /// Throws when there is a keyword outside `known`.
  void CheckKeywords(std::initializer_list<std::wstring_view> known) const;

 private:
  const Callable& callee_;
  std::span<const Value> values_;
  std::span<const WStr> keywords_;
};

// Conversions that assignments share; empty when `value` has no such form.
std::optional<int64_t> ToInt(const Value& value);
std::optional<double> ToNumber(const Value& value);
/// A time as it is, a number as frames.
std::optional<TimeValue> ToTime(const Value& value);
/// Three components of a point, quaternion axis not included; a colour gives 0..255.
std::optional<corvanta::Point3> ToPoint3(const Value& value);
/// A quaternion, or the rotation of a matrix.
std::optional<corvanta::Quat> ToQuat(const Value& value);
/// A matrix, or a matrix of a quaternion.
std::optional<corvanta::Matrix3> ToMatrix(const Value& value);

/// `text of value (Class)`, cut to a readable length, for messages.
WStr Describe(const Value& value);

}  // namespace corvanta::script
