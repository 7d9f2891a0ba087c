// SPDX-License-Identifier: MIT
// The value of the script language: numbers, times, points and colours lie inside it, everything else is a
// counted object on the heap. Arithmetic on numbers and points allocates nothing.
#pragma once

#include <cstdint>
#include <cstring>
#include <utility>

#include "host/core/wstr.h"
#include "host/maths/colour.h"
#include "host/maths/interval.h"
#include "host/maths/matrix3.h"

namespace corvanta::script {

enum class Kind : uint8_t {
  Unset,  // inside only: a global that nothing has defined yet
  Undefined,
  Ok,
  Bool,
  Int,
  Float,
  Time,
  Point2,
  Point3,
  Point4,
  Quat,
  Colour,
  Interval,
  // From here on the value holds a counted object.
  String,
  Name,
  Matrix,
  Array,
  Callable,
  Class,
  Object,
  Cell,  // inside only: a variable that outlives its block or is passed by reference
};
inline constexpr bool IsHeap(Kind kind) { return kind >= Kind::String; }

/// A counted object. One thread: the count is a plain number.
class HeapObject {
 public:
  HeapObject() = default;
  HeapObject(const HeapObject&) = delete;
  HeapObject& operator=(const HeapObject&) = delete;
  virtual ~HeapObject() = default;
  void AddRef() { ++refs_; }
  void DropRef() {
    if (--refs_ == 0) delete this;
  }

 private:
  uint32_t refs_ = 0;
};

class StringObject;
class MatrixObject;
class ArrayObject;
class Callable;
class ClassObject;
class HostObject;
class CellObject;

class Value {
 public:
  Value() : kind_(Kind::Undefined) {}
  Value(const Value& b) : payload_(b.payload_), kind_(b.kind_) {
    if (IsHeap(kind_)) payload_.heap->AddRef();
  }
  Value(Value&& b) noexcept : payload_(b.payload_), kind_(b.kind_) { b.kind_ = Kind::Undefined; }
  Value& operator=(const Value& b) {
    Value copy(b);
    Swap(copy);
    return *this;
  }
  Value& operator=(Value&& b) noexcept {
    Swap(b);
    return *this;
  }
  ~Value() {
    if (IsHeap(kind_)) payload_.heap->DropRef();
  }
  void Swap(Value& b) noexcept {
    std::swap(payload_, b.payload_);
    std::swap(kind_, b.kind_);
  }

  static Value Unset() { return Value(Kind::Unset); }
  static Value Ok() { return Value(Kind::Ok); }
  static Value Bool(bool b) {
    Value v(Kind::Bool);
    v.payload_.b = b;
    return v;
  }
  static Value Int(int64_t i) {
    Value v(Kind::Int);
    v.payload_.i = i;
    return v;
  }
  static Value Float(double f) {
    Value v(Kind::Float);
    v.payload_.f = f;
    return v;
  }
  /// Ticks.
  static Value Time(TimeValue t) {
    Value v(Kind::Time);
    v.payload_.i = t;
    return v;
  }
  static Value Of(const corvanta::Point2& p) { return Vector(Kind::Point2, p.x, p.y, 0, 0); }
  static Value Of(const corvanta::Point3& p) { return Vector(Kind::Point3, p.x, p.y, p.z, 0); }
  static Value Of(const corvanta::Point4& p) { return Vector(Kind::Point4, p.x, p.y, p.z, p.w); }
  static Value Of(const corvanta::Quat& q) { return Vector(Kind::Quat, q.x, q.y, q.z, q.w); }
  static Value Of(const corvanta::Colour& c) { return Vector(Kind::Colour, c.r, c.g, c.b, 0); }
  static Value Of(const corvanta::Interval& i) {
    Value v(Kind::Interval);
    v.payload_.span[0] = i.start;
    v.payload_.span[1] = i.end;
    return v;
  }
  static Value Of(const corvanta::Matrix3& m);
  static Value String(WStr text);
  static Value Name(WStr text);
  /// An array with `count` places, all undefined.
  static Value Array(size_t count = 0);
  /// Shares `object`; null gives undefined.
  static Value Heap(Kind kind, HeapObject* object) {
    Value v;
    if (object) {
      object->AddRef();
      v.kind_ = kind;
      v.payload_.heap = object;
    }
    return v;
  }
  static Value Object(HostObject* object);

  Kind kind() const { return kind_; }
  bool Is(Kind kind) const { return kind_ == kind; }
  bool IsUndefined() const { return kind_ == Kind::Undefined; }
  bool IsNumber() const { return kind_ == Kind::Int || kind_ == Kind::Float; }
  bool IsText() const { return kind_ == Kind::String || kind_ == Kind::Name; }

  // What follows asks for the kind that its name tells; nothing is converted.
  bool AsBool() const { return payload_.b; }
  int64_t AsInt() const { return payload_.i; }
  double AsFloat() const { return payload_.f; }
  TimeValue AsTime() const { return static_cast<TimeValue>(payload_.i); }
  const float* Components() const { return payload_.v; }
  float* Components() { return payload_.v; }
  corvanta::Point2 AsPoint2() const { return {payload_.v[0], payload_.v[1]}; }
  corvanta::Point3 AsPoint3() const { return {payload_.v[0], payload_.v[1], payload_.v[2]}; }
  corvanta::Point4 AsPoint4() const { return {payload_.v[0], payload_.v[1], payload_.v[2], payload_.v[3]}; }
  corvanta::Quat AsQuat() const { return {payload_.v[0], payload_.v[1], payload_.v[2], payload_.v[3]}; }
  corvanta::Colour AsColour() const { return {payload_.v[0], payload_.v[1], payload_.v[2]}; }
  corvanta::Interval AsInterval() const { return {payload_.span[0], payload_.span[1]}; }
  const corvanta::Matrix3& AsMatrix() const;
  const WStr& AsText() const;  // String and Name
  ArrayObject& AsArray() const;
  Callable& AsCallable() const;  // Callable and Class
  ClassObject& AsClass() const;
  HostObject& AsObject() const;
  CellObject& AsCell() const;
  HeapObject* heap() const { return payload_.heap; }

  /// Int and Float as a double.
  double Number() const { return kind_ == Kind::Int ? static_cast<double>(payload_.i) : payload_.f; }

 private:
  explicit Value(Kind kind) : kind_(kind) {}
  static Value Vector(Kind kind, float x, float y, float z, float w) {
    Value v(kind);
    v.payload_.v[0] = x, v.payload_.v[1] = y, v.payload_.v[2] = z, v.payload_.v[3] = w;
    return v;
  }

  union Payload {
    bool b;
    int64_t i;
    double f;
    float v[4];
    TimeValue span[2];
    HeapObject* heap;
  };
  Payload payload_{};
  Kind kind_;
};

/// Number of floats in a Point2, Point3, Point4, Quat or Colour; 0 for other kinds.
int ComponentCount(Kind kind);
/// "Integer", "Point3" and so on, as `classOf` shows; a host object tells its class.
WStr ClassName(const Value& value);
/// By content; arrays by their items; host objects by what they stand for. Never fails.
bool Equal(const Value& a, const Value& b);

}  // namespace corvanta::script
