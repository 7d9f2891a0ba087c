// SPDX-License-Identifier: MIT
#include "host/script/bridge_values.h"

#include <charconv>
#include <cmath>
#include <limits>

#include "host/scene/core_interface.h"
#include "host/script/bridge_object.h"
#include "host/script/operators.h"
#include "host/script/text.h"

namespace corvanta::script {

namespace {

std::vector<TimeValue>& TimeStack() {
  static std::vector<TimeValue> stack;
  return stack;
}

FPType ItemType(FPType tab) {
  switch (tab) {
    case FPType::NodeTab:
      return FPType::Node;
    case FPType::RefTargTab:
      return FPType::RefTarg;
    case FPType::IntTab:
      return FPType::Int;
    case FPType::FloatTab:
      return FPType::Float;
    case FPType::StringTab:
      return FPType::String;
    case FPType::Point3Tab:
      return FPType::Point3;
    default:
      return FPType::Any;
  }
}
bool IsTab(FPType type) { return ItemType(type) != FPType::Any; }

/// Shown units for one stored.
double ShownUnits(FPType type) {
  if (type == FPType::Angle) return 57.295779513082320877;
  return type == FPType::Percent ? 100 : 1;
}
float Stored(double shown, double units) { return static_cast<float>(shown / units); }

// The shortest number that is stored as `f` again, so that 30 degrees read back as 30 and not as 30.000002.
double Shown(float f, double units) {
  const double exact = static_cast<double>(f) * units;
  if (units == 1 || !std::isfinite(f)) return exact;
  for (int digits = 5; digits <= 9; ++digits) {
    char text[32];
    const auto end = std::to_chars(text, text + sizeof text, exact, std::chars_format::general, digits);
    double rounded = 0;
    std::from_chars(text, end.ptr, rounded);
    if (Stored(rounded, units) == f) return rounded;
  }
  return exact;
}

Value BitsAsArray(const BitArray& bits) {
  Value out = Value::Array();
  for (int i = 0; i < bits.Count(); ++i)
    if (bits.Get(i)) out.AsArray().Append(Value::Int(i + 1));
  return out;
}

Value EnumName(int number, const FPEnumDesc* enumeration) {
  if (enumeration)
    for (const auto& [name, value] : enumeration->values)
      if (value == number) return Value::Name(name);
  return Value::Int(number);
}

/// Makes a script value of each alternative.
struct Maker {
  FPType type;
  const FPEnumDesc* enumeration;
  Value operator()(std::monostate) const { return {}; }
  Value operator()(bool b) const { return Value::Bool(b); }
  Value operator()(int i) const {
    switch (type) {
      case FPType::Bool:
        return Value::Bool(i != 0);
      case FPType::Index:
        return Value::Int(int64_t{i} + 1);
      case FPType::Time:
        return Value::Time(i);
      case FPType::Enum:
        return EnumName(i, enumeration);
      case FPType::Float:
      case FPType::World:
      case FPType::Angle:
      case FPType::Percent:
        return (*this)(static_cast<float>(i));
      default:
        return Value::Int(i);
    }
  }
  Value operator()(float f) const { return Value::Float(Shown(f, ShownUnits(type))); }
  Value operator()(FPTime t) const { return Value::Time(t.t); }
  Value operator()(const WStr& text) const { return Value::String(text); }
  Value operator()(const Ref<ReferenceTarget>& target) const { return WrapTarget(target.Get()); }
  Value operator()(const BitArray& bits) const { return BitsAsArray(bits); }
  Value operator()(const FPValue::Tab& tab) const {
    Value out = Value::Array();
    for (const FPValue& item : tab) out.AsArray().Append(FromFP(item, ItemType(type)));
    return out;
  }
  template <class T>
  Value operator()(const T& plain) const {
    return Value::Of(plain);
  }
};

std::optional<FPValue> IntFrom(const Value& value, int64_t shift = 0) {
  const auto n = ToInt(value);
  if (!n || *n - shift < std::numeric_limits<int>::min() || *n - shift > std::numeric_limits<int>::max()) return {};
  return FPValue(static_cast<int>(*n - shift));
}

std::optional<FPValue> FloatFrom(const Value& value, FPType type) {
  const auto n = ToNumber(value);
  if (!n) return {};
  return FPValue(Stored(*n, ShownUnits(type)));
}

std::optional<FPValue> EnumFrom(const Value& value, const FPEnumDesc* enumeration) {
  if (value.IsText() && enumeration)
    for (const auto& [name, number] : enumeration->values)
      if (EqualsNoCase(name, value.AsText())) return FPValue(number);
  return IntFrom(value);
}

std::optional<FPValue> TargetFrom(const Value& value, FPType type) {
  if (value.IsUndefined()) return TargetValue(nullptr);
  ReferenceTarget* target = type == FPType::Control ? ControlOf(value) : TargetOf(value);
  if (!target || (type == FPType::Node && !target->AsNode())) return {};
  return TargetValue(target);
}

std::optional<FPValue> TabFrom(const Value& value, FPType item) {
  FPValue::Tab tab;
  const bool list = value.Is(Kind::Array) || (value.Is(Kind::Object) && value.AsObject().Count() >= 0);
  if (!list) return {};
  const Value array = Convert(value, ConversionType::Array);
  for (const Value& entry : array.AsArray().items()) {
    auto converted = ToFP(entry, item);
    if (!converted) return {};
    tab.push_back(std::move(*converted));
  }
  return FPValue(std::move(tab));
}

std::optional<FPValue> BitsFrom(const Value& value) {
  if (!value.Is(Kind::Array)) return {};
  constexpr int64_t kMostBits = 1 << 24;
  BitArray bits;
  for (const Value& item : value.AsArray().items()) {
    const auto n = ToInt(item);
    if (!n || *n < 1 || *n > kMostBits) return {};
    bits.Set(static_cast<int>(*n - 1));
  }
  return FPValue(std::move(bits));
}

// A value as it is, for arguments of any type.
std::optional<FPValue> AnyFrom(const Value& value) {
  switch (value.kind()) {
    case Kind::Undefined:
      return FPValue();
    case Kind::Bool:
      return FPValue(value.AsBool());
    case Kind::Int:
      return IntFrom(value);
    case Kind::Float:
      return FPValue(static_cast<float>(value.AsFloat()));
    case Kind::Time:
      return FPValue(FPTime{value.AsTime()});
    case Kind::Point2:
      return FPValue(value.AsPoint2());
    case Kind::Point3:
      return FPValue(value.AsPoint3());
    case Kind::Quat:
      return FPValue(value.AsQuat());
    case Kind::Colour:
      return FPValue(value.AsColour());
    case Kind::Interval:
      return FPValue(value.AsInterval());
    case Kind::Matrix:
      return FPValue(value.AsMatrix());
    case Kind::String:
    case Kind::Name:
      return FPValue(value.AsText());
    case Kind::Array:
      return TabFrom(value, FPType::Any);
    case Kind::Object:
      return TargetOf(value) ? std::optional(TargetValue(TargetOf(value))) : std::nullopt;
    default:
      return {};
  }
}

template <class T>
std::optional<FPValue> Plain(const std::optional<T>& value) {
  return value ? std::optional(FPValue(*value)) : std::nullopt;
}

}  // namespace

Value FromFP(const FPValue& value, FPType type, const FPEnumDesc* enumeration) {
  return std::visit(Maker{type, enumeration}, value.v);
}

std::optional<FPValue> ToFP(const Value& value, FPType type, const FPEnumDesc* enumeration) {
  switch (type) {
    case FPType::Void:
      return FPValue();
    case FPType::Bool:
      return value.Is(Kind::Bool) ? std::optional(FPValue(value.AsBool())) : std::nullopt;
    case FPType::Int:
      return IntFrom(value);
    case FPType::Index:
      return IntFrom(value, 1);
    case FPType::Float:
    case FPType::World:
    case FPType::Angle:
    case FPType::Percent:
      return FloatFrom(value, type);
    case FPType::Time: {
      const auto t = ToTime(value);
      return t ? std::optional(FPValue(FPTime{*t})) : std::nullopt;
    }
    case FPType::Enum:
      return EnumFrom(value, enumeration);
    case FPType::String:
    case FPType::FileName:
      return value.IsText() ? std::optional(FPValue(value.AsText())) : std::nullopt;
    case FPType::Point2:
      return value.Is(Kind::Point2) ? std::optional(FPValue(value.AsPoint2())) : std::nullopt;
    case FPType::Point3:
      return Plain(value.Is(Kind::Colour) ? std::nullopt : ToPoint3(value));
    case FPType::Colour:
      if (value.Is(Kind::Colour)) return FPValue(value.AsColour());
      if (!value.Is(Kind::Point3)) return {};
      return FPValue(Convert(value, ConversionType::Color).AsColour());
    case FPType::Interval:
      return value.Is(Kind::Interval) ? std::optional(FPValue(value.AsInterval())) : std::nullopt;
    case FPType::Matrix3:
      return Plain(ToMatrix(value));
    case FPType::Quat:
      return Plain(ToQuat(value));
    case FPType::Node:
    case FPType::RefTarg:
    case FPType::Control:
      return TargetFrom(value, type);
    case FPType::BitArray:
      return BitsFrom(value);
    case FPType::Any:
      return AnyFrom(value);
    default:
      return TabFrom(value, ItemType(type));
  }
}

WStr ExpectedText(FPType type, const FPEnumDesc* enumeration) {
  if (type == FPType::Enum && enumeration) {
    constexpr size_t kShown = 8;
    WStr names;
    for (size_t i = 0; i < enumeration->values.size() && i < kShown; ++i)
      names += (i ? L", #" : L"#") + WStr(enumeration->values[i].first);
    return L"one of " + names + (enumeration->values.size() > kShown ? L", ... or its number" : L" or its number");
  }
  switch (type) {
    case FPType::Bool:
      return L"true or false";
    case FPType::Int:
    case FPType::Enum:
      return L"a whole number";
    case FPType::Index:
      return L"an index from 1";
    case FPType::Float:
    case FPType::World:
      return L"a number";
    case FPType::Angle:
      return L"an angle in degrees";
    case FPType::Percent:
      return L"a number in percent";
    case FPType::Time:
      return L"a time such as 10f";
    case FPType::String:
      return L"a string";
    case FPType::FileName:
      return L"a file name";
    case FPType::Point2:
      return L"a point such as [1,2]";
    case FPType::Point3:
      return L"a point such as [1,2,3]";
    case FPType::Colour:
      return L"a color";
    case FPType::Interval:
      return L"an interval";
    case FPType::Matrix3:
      return L"a matrix";
    case FPType::Quat:
      return L"a quaternion";
    case FPType::Node:
      return L"a node";
    case FPType::RefTarg:
      return L"an object";
    case FPType::Control:
      return L"a controller";
    case FPType::BitArray:
      return L"an array of indices from 1";
    default:
      return IsTab(type) ? L"an array" : L"a value";
  }
}

TimeValue ScriptTime() { return TimeStack().empty() ? GetCOREInterface()->GetTime() : TimeStack().back(); }
void PushScriptTime(TimeValue t) { TimeStack().push_back(t); }
void PopScriptTime() { TimeStack().pop_back(); }

}  // namespace corvanta::script
