// SPDX-License-Identifier: MIT
#include "host/script/value.h"

#include <cmath>

#include "host/script/objects.h"

namespace corvanta::script {

namespace {

// Arrays nested deeper than this compare as different; also the end of arrays that hold themselves.
constexpr int kEqualDepth = 64;
// Comparing arrays that share their parts can take exponential time; past this many items they are different.
constexpr int kEqualItems = 10'000'000;

const wchar_t* const kKindNames[] = {L"Undefined", L"Undefined", L"Ok",       L"Boolean", L"Integer", L"Float",
                                     L"Time",      L"Point2",    L"Point3",   L"Point4",  L"Quat",    L"Color",
                                     L"Interval",  L"String",    L"Name",     L"Matrix3", L"Array",   L"Function",
                                     L"Class",     L"Object",    L"Reference"};

// A value of the scene has single precision: a script number that rounds to it is the same number. Whole
// numbers are exact in both and compare exactly.
bool EqualNumbers(const Value& a, const Value& b) {
  if (a.Is(Kind::Int) && b.Is(Kind::Int)) return a.AsInt() == b.AsInt();
  const double x = a.Number(), y = b.Number();
  if (x == y) return true;
  if (!a.Is(Kind::Float) || !b.Is(Kind::Float) || std::abs(x) > 1e30 || std::abs(y) > 1e30) return false;
  const auto isSingle = [](double v) { return v == static_cast<double>(static_cast<float>(v)) && v != std::floor(v); };
  return (isSingle(x) || isSingle(y)) && static_cast<float>(x) == static_cast<float>(y);
}

bool EqualWithin(const Value& a, const Value& b, int depth, int& budget);

bool EqualArrays(const ArrayObject& a, const ArrayObject& b, int depth, int& budget) {
  if (&a == &b) return true;
  if (a.Count() != b.Count() || depth >= kEqualDepth) return false;
  for (size_t i = 0; i < a.Count(); ++i)
    if (--budget < 0 || !EqualWithin(a[i], b[i], depth + 1, budget)) return false;
  return true;
}

bool EqualComponents(const Value& a, const Value& b, int count) {
  for (int i = 0; i < count; ++i)
    if (a.Components()[i] != b.Components()[i]) return false;
  return true;
}

bool EqualWithin(const Value& a, const Value& b, int depth, int& budget) {
  if (a.IsNumber() && b.IsNumber()) return EqualNumbers(a, b);
  if (a.Is(Kind::Class) && b.Is(Kind::Class)) return EqualsNoCase(a.AsClass().Name(), b.AsClass().Name());
  if (a.kind() != b.kind()) return false;
  switch (a.kind()) {
    case Kind::Bool:
      return a.AsBool() == b.AsBool();
    case Kind::Time:
      return a.AsTime() == b.AsTime();
    case Kind::Interval:
      return a.AsInterval() == b.AsInterval();
    case Kind::String:
      return a.AsText() == b.AsText();
    case Kind::Name:
      return EqualsNoCase(a.AsText(), b.AsText());
    case Kind::Matrix:
      return a.AsMatrix() == b.AsMatrix();
    case Kind::Array:
      return EqualArrays(a.AsArray(), b.AsArray(), depth, budget);
    case Kind::Object:
      return a.AsObject().SameAs(b.AsObject());
    case Kind::Callable:
    case Kind::Cell:
      return a.heap() == b.heap();
    default:
      return EqualComponents(a, b, ComponentCount(a.kind()));  // none for undefined and ok
  }
}

}  // namespace

Value Value::Of(const corvanta::Matrix3& m) { return Heap(Kind::Matrix, new MatrixObject(m)); }
Value Value::String(WStr text) { return Heap(Kind::String, new StringObject(std::move(text))); }
Value Value::Name(WStr text) { return Heap(Kind::Name, new StringObject(std::move(text))); }
Value Value::Array(size_t count) { return Heap(Kind::Array, new ArrayObject(count)); }
Value Value::Object(HostObject* object) { return Heap(Kind::Object, object); }

const corvanta::Matrix3& Value::AsMatrix() const { return static_cast<MatrixObject*>(payload_.heap)->matrix; }
const WStr& Value::AsText() const { return static_cast<StringObject*>(payload_.heap)->text; }
ArrayObject& Value::AsArray() const { return *static_cast<ArrayObject*>(payload_.heap); }
Callable& Value::AsCallable() const { return *static_cast<Callable*>(payload_.heap); }
ClassObject& Value::AsClass() const { return *static_cast<ClassObject*>(payload_.heap); }
HostObject& Value::AsObject() const { return *static_cast<HostObject*>(payload_.heap); }
CellObject& Value::AsCell() const { return *static_cast<CellObject*>(payload_.heap); }

int ComponentCount(Kind kind) {
  switch (kind) {
    case Kind::Point2:
      return 2;
    case Kind::Point3:
    case Kind::Colour:
      return 3;
    case Kind::Point4:
    case Kind::Quat:
      return 4;
    default:
      return 0;
  }
}

WStr ClassName(const Value& value) {
  if (value.Is(Kind::Object)) return value.AsObject().ClassName();
  return kKindNames[static_cast<int>(value.kind())];
}

bool Equal(const Value& a, const Value& b) {
  int budget = kEqualItems;
  return EqualWithin(a, b, 0, budget);
}

}  // namespace corvanta::script
