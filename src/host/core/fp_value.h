// SPDX-License-Identifier: MIT
// The tagged value of the script bridge and of generic parameter access.
#pragma once

#include <variant>
#include <vector>

#include "host/core/bit_array.h"
#include "host/core/reference.h"
#include "host/maths/colour.h"
#include "host/maths/matrix3.h"

namespace corvanta {

/// Type codes of published functions and parameters. The numbers are stored in files.
enum class FPType : uint16_t {
  Void = 46,
  String = 1,
  Index = 2,
  Point3 = 3,
  Bool = 4,
  World = 5,
  Int = 6,
  Colour = 7,
  Percent = 8,
  Angle = 9,
  Time = 10,
  Float = 11,
  Point2 = 12,
  FileName = 13,
  Enum = 14,
  Interval = 15,
  Any = 16,
  Node = 17,
  RefTarg = 18,
  Control = 19,
  Matrix3 = 20,
  Quat = 49,
  BitArray = 50,
  NodeTab = 60,
  RefTargTab = 61,
  IntTab = 62,
  FloatTab = 63,
  StringTab = 64,
  Point3Tab = 65,
};

/// A time, told apart from an int.
struct FPTime {
  TimeValue t = 0;
  bool operator==(const FPTime&) const = default;
};

/// Objects in it are kept alive. Angles are radians, percent values fractions, indices zero-based.
struct FPValue {
  using Tab = std::vector<FPValue>;
  std::variant<std::monostate, bool, int, float, FPTime, WStr, Point2, Point3, Quat, Matrix3, corvanta::Colour,
               Interval, Ref<ReferenceTarget>, BitArray, Tab>
      v;

  FPValue() = default;
  template <class T>
  requires std::is_constructible_v<decltype(v), T&&> &&(!std::is_same_v<std::decay_t<T>, FPValue>)FPValue(T&& value)
      : v(std::forward<T>(value)) {}  // NOLINT: implicit on purpose

  bool IsVoid() const { return std::holds_alternative<std::monostate>(v); }
  template <class T>
  const T* As() const {
    return std::get_if<T>(&v);
  }
  // Conversions that scripts expect: numbers among one another, anything else gives the fallback.
  float ToFloat(float fallback = 0) const;
  int ToInt(int fallback = 0) const;
  bool ToBool(bool fallback = false) const;
  WStr ToWStr() const { return As<WStr>() ? *As<WStr>() : WStr(); }
  corvanta::Point3 ToPoint3() const;
  ReferenceTarget* ToTarget() const { return As<Ref<ReferenceTarget>>() ? As<Ref<ReferenceTarget>>()->Get() : nullptr; }
  INode* ToNode() const { return ToTarget() ? ToTarget()->AsNode() : nullptr; }
};

/// A reference target as a value; null gives an empty reference, not void.
FPValue TargetValue(ReferenceTarget* target);

}  // namespace corvanta
