// SPDX-License-Identifier: MIT
// `as`, and the parts and items of plain values.
#include <charconv>
#include <cmath>
#include <cwctype>

#include "host/script/call_args.h"
#include "host/script/objects.h"
#include "host/script/operators.h"
#include "host/script/script_error.h"
#include "host/script/text.h"

namespace corvanta::script {

namespace {

struct TypeRow {
  const wchar_t* name;
  ConversionType type;
};
const TypeRow kTypes[] = {
    {L"boolean", ConversionType::Boolean}, {L"integer", ConversionType::Integer}, {L"float", ConversionType::Float},
    {L"double", ConversionType::Float},    {L"time", ConversionType::Time},       {L"string", ConversionType::String},
    {L"name", ConversionType::Name},       {L"point2", ConversionType::Point2},   {L"point3", ConversionType::Point3},
    {L"point4", ConversionType::Point4},   {L"quat", ConversionType::Quat},       {L"matrix3", ConversionType::Matrix3},
    {L"color", ConversionType::Color},     {L"array", ConversionType::Array},
};

const wchar_t* TypeName(ConversionType type) {
  for (const TypeRow& row : kTypes)
    if (row.type == type) return row.name;
  return L"";
}

// The number that `text` holds between blanks, if that is all it holds.
std::optional<double> ParseNumber(const WStr& text) {
  std::string digits;
  for (const wchar_t c : text) digits += c < 128 ? static_cast<char>(c) : '?';
  const size_t start = digits.find_first_not_of(" \t\r\n");
  if (start == std::string::npos) return {};
  digits = digits.substr(start, digits.find_last_not_of(" \t\r\n") - start + 1);
  const char* first = digits.c_str() + (digits[0] == '+' ? 1 : 0);
  const char* last = digits.c_str() + digits.size();
  double number = 0;
  const auto end = std::from_chars(first, last, number);
  if (end.ec != std::errc() || end.ptr != last) return {};
  return number;
}

Value NumberAs(double number, ConversionType type) {
  if (type == ConversionType::Float) return Value::Float(number);
  if (type == ConversionType::Time) return Value::Time(TicksFromFrames(number));
  if (!(number > -9.2e18 && number < 9.2e18)) FailWith(L"%s does not fit an integer", FloatText(number).c_str());
  return Value::Int(static_cast<int64_t>(number));
}

Value TextAs(const WStr& text, ConversionType type) {
  if (type == ConversionType::Integer) {
    int64_t whole = 0;
    const std::string ascii = ToUtf8(text);
    const auto end = std::from_chars(ascii.data(), ascii.data() + ascii.size(), whole);
    if (end.ec == std::errc() && end.ptr == ascii.data() + ascii.size()) return Value::Int(whole);
  }
  const auto number = ParseNumber(text);
  return number ? NumberAs(*number, type) : Value();
}

std::optional<Value> ToNumeric(const Value& v, ConversionType type) {
  if (v.Is(Kind::Int) && type == ConversionType::Integer) return v;
  if (v.IsNumber()) return NumberAs(v.Number(), type);
  if (v.IsText()) return TextAs(v.AsText(), type);
  if (v.Is(Kind::Time)) return type == ConversionType::Time ? v : NumberAs(FramesFromTicks(v.AsTime()), type);
  if (v.Is(Kind::Bool) && type == ConversionType::Integer) return Value::Int(v.AsBool());
  return {};
}

std::optional<Value> ToComponents(const Value& v, Kind kind) {
  const int count = ComponentCount(kind);
  const float scale = kind == Kind::Colour ? 1 / 255.0f : 1;
  float c[4] = {};
  if (v.kind() == kind) return v;
  if (v.Is(Kind::Array) && v.AsArray().Count() == static_cast<size_t>(count)) {
    for (int i = 0; i < count; ++i) {
      const auto number = ToNumber(v.AsArray()[static_cast<size_t>(i)]);
      if (!number) return {};
      c[i] = static_cast<float>(*number);
    }
  } else if (ComponentCount(v.kind()) > 0 && !v.Is(Kind::Quat)) {
    for (int i = 0; i < count && i < ComponentCount(v.kind()); ++i)
      c[i] = v.Components()[i] * (v.Is(Kind::Colour) ? 255.0f : 1.0f);
  } else {
    return {};
  }
  if (kind == Kind::Point2) return Value::Of(corvanta::Point2{c[0], c[1]});
  if (kind == Kind::Point3) return Value::Of(corvanta::Point3{c[0], c[1], c[2]});
  if (kind == Kind::Point4) return Value::Of(corvanta::Point4{c[0], c[1], c[2], c[3]});
  return Value::Of(corvanta::Colour{c[0] * scale, c[1] * scale, c[2] * scale});
}

std::optional<Value> ToArray(const Value& v) {
  Value out = Value::Array();
  ArrayObject& items = out.AsArray();
  if (v.Is(Kind::Array)) return v;
  if (v.Is(Kind::Object) && v.AsObject().Count() >= 0) {
    for (int64_t i = 0, n = v.AsObject().Count(); i < n; ++i) items.Append(v.AsObject().Item(i));
    return out;
  }
  if (v.Is(Kind::String)) {
    for (const wchar_t c : v.AsText()) items.Append(Value::String(WStr(1, c)));
    return out;
  }
  if (v.Is(Kind::Matrix)) {
    for (const Point3& row : v.AsMatrix().row) items.Append(Value::Of(row));
    return out;
  }
  const float scale = v.Is(Kind::Colour) ? 255.0f : 1.0f;
  if (ComponentCount(v.kind()) == 0) return {};
  for (int i = 0; i < ComponentCount(v.kind()); ++i)
    items.Append(Value::Float(static_cast<double>(v.Components()[i] * scale)));
  return out;
}

std::optional<Value> TryConvert(const Value& v, ConversionType type) {
  switch (type) {
    case ConversionType::Boolean:
      return v.Is(Kind::Bool)  ? std::optional(v)
             : v.Is(Kind::Int) ? std::optional(Value::Bool(v.AsInt() != 0))
                               : std::nullopt;
    case ConversionType::Integer:
    case ConversionType::Float:
    case ConversionType::Time:
      return ToNumeric(v, type);
    case ConversionType::String:
      return Value::String(v.Is(Kind::Name) ? v.AsText() : PlainText(v));
    case ConversionType::Name:
      return v.IsText() ? std::optional(Value::Name(v.AsText())) : std::nullopt;
    case ConversionType::Point2:
      return ToComponents(v, Kind::Point2);
    case ConversionType::Point3:
      return ToComponents(v, Kind::Point3);
    case ConversionType::Point4:
      return ToComponents(v, Kind::Point4);
    case ConversionType::Color:
      return ToComponents(v, Kind::Colour);
    case ConversionType::Quat: {
      const auto q = ToQuat(v);
      return q ? std::optional(Value::Of(*q)) : std::nullopt;
    }
    case ConversionType::Matrix3: {
      const auto m = ToMatrix(v);
      return m ? std::optional(Value::Of(*m)) : std::nullopt;
    }
    case ConversionType::Array:
      return ToArray(v);
  }
  return {};
}

// The component that a letter names; colours count r, g, b.
int ComponentIndex(Kind kind, const WStr& name) {
  if (name.size() != 1) return -1;
  const std::wstring_view letters = kind == Kind::Colour ? L"rgb" : L"xyzw";
  const size_t at = letters.find(name[0]);
  return at < static_cast<size_t>(ComponentCount(kind)) ? static_cast<int>(at) : -1;
}

int RowIndex(const WStr& name) {
  if (name == L"pos" || name == L"translation") return 3;
  return name.size() == 4 && name.compare(0, 3, L"row") == 0 && name[3] >= L'1' && name[3] <= L'4' ? name[3] - L'1'
                                                                                                   : -1;
}

bool GetMatrixProperty(const Matrix3& m, const WStr& name, Value& out) {
  if (const int row = RowIndex(name); row >= 0) return out = Value::Of(m.row[row]), true;
  if (name == L"rotation") return out = Value::Of(decomp_affine(m).q), true;
  if (name == L"scale") {
    const AffineParts parts = decomp_affine(m);
    return out = Value::Of(parts.k * parts.f), true;
  }
  return false;
}

bool GetComponentProperty(const Value& v, const WStr& name, Value& out) {
  const int i = ComponentIndex(v.kind(), name);
  const float scale = v.Is(Kind::Colour) ? 255.0f : 1.0f;
  if (i >= 0) return out = Value::Float(static_cast<double>(v.Components()[i] * scale)), true;
  if (v.Is(Kind::Quat) && (name == L"angle" || name == L"axis")) {
    const AngAxis aa = AngAxisFromQuat(v.AsQuat());
    out = name == L"axis" ? Value::Of(aa.axis)
                          : Value::Float(static_cast<double>(aa.angle) * 180 / 3.14159265358979323846);
    return true;
  }
  return false;
}

float PartNumber(const Value& part) {
  const auto number = ToNumber(part);
  if (!number) Fail(L"expected a number, got " + Describe(part));
  return static_cast<float>(*number);
}

int64_t IndexOf(const Value& key) {
  const auto i = ToInt(key);
  if (!i) Fail(L"expected a whole number from 1 as index, got " + Describe(key));
  if (*i < 1) Fail(L"indices count from 1, got " + std::to_wstring(*i));
  return *i;
}

[[noreturn]] void OutOfRange(int64_t index, int64_t count) {
  Fail(L"index " + std::to_wstring(index) + L" is out of range 1 to " + std::to_wstring(count));
}

}  // namespace

bool FindConversion(const WStr& name, ConversionType& type) {
  for (const TypeRow& row : kTypes)
    if (name == row.name) return type = row.type, true;
  return false;
}

Value Convert(const Value& value, ConversionType type) {
  auto converted = TryConvert(value, type);
  if (!converted) Fail(L"cannot convert " + Describe(value) + L" to " + TypeName(type));
  return std::move(*converted);
}

bool IsPlainCompound(Kind kind) { return ComponentCount(kind) > 0 || kind == Kind::Interval || kind == Kind::Matrix; }

bool GetValueProperty(const Value& value, const WStr& name, Value& out) {
  switch (value.kind()) {
    case Kind::Array:
      if (name != L"count") return false;
      return out = Value::Int(static_cast<int64_t>(value.AsArray().Count())), true;
    case Kind::String:
      if (name != L"count") return false;
      return out = Value::Int(static_cast<int64_t>(value.AsText().size())), true;
    case Kind::Interval:
      if (name == L"start") return out = Value::Time(value.AsInterval().start), true;
      if (name == L"end") return out = Value::Time(value.AsInterval().end), true;
      return false;
    case Kind::Time:
      if (name == L"frame") return out = Value::Float(FramesFromTicks(value.AsTime())), true;
      if (name == L"ticks") return out = Value::Int(value.AsTime()), true;
      return false;
    case Kind::Matrix:
      return GetMatrixProperty(value.AsMatrix(), name, out);
    case Kind::Callable:
    case Kind::Class:
      if (name != L"name") return false;
      return out = Value::String(value.AsCallable().Name()), true;
    default:
      return GetComponentProperty(value, name, out);
  }
}

bool SetValueProperty(Value& value, const WStr& name, const Value& part) {
  if (value.Is(Kind::Interval)) {
    if (name != L"start" && name != L"end") return false;
    const auto t = ToTime(part);
    if (!t) Fail(L"expected a time, got " + Describe(part));
    Interval span = value.AsInterval();
    (name == L"start" ? span.start : span.end) = *t;
    return value = Value::Of(span), true;
  }
  if (value.Is(Kind::Matrix)) {
    const int row = RowIndex(name);
    if (row < 0) return false;
    const auto p = ToPoint3(part);
    if (!p) Fail(L"expected a point, got " + Describe(part));
    Matrix3 m = value.AsMatrix();
    m.row[row] = *p;
    return value = Value::Of(m), true;
  }
  const int i = ComponentIndex(value.kind(), name);
  if (i < 0) return false;
  value.Components()[i] = PartNumber(part) * (value.Is(Kind::Colour) ? 1 / 255.0f : 1.0f);
  return true;
}

Value GetIndex(const Value& value, const Value& key) {
  const int64_t i = IndexOf(key);
  if (value.Is(Kind::Array)) {
    const ArrayObject& array = value.AsArray();
    return i <= static_cast<int64_t>(array.Count()) ? array[static_cast<size_t>(i - 1)] : Value();
  }
  if (value.Is(Kind::String)) {
    const WStr& text = value.AsText();
    if (i > static_cast<int64_t>(text.size())) OutOfRange(i, static_cast<int64_t>(text.size()));
    return Value::String(WStr(1, text[static_cast<size_t>(i - 1)]));
  }
  if (value.Is(Kind::Matrix)) {
    if (i > 4) OutOfRange(i, 4);
    return Value::Of(value.AsMatrix().row[i - 1]);
  }
  const int count = ComponentCount(value.kind());
  if (count == 0) Fail(L"cannot index " + Describe(value));
  if (i > count) OutOfRange(i, count);
  return Value::Float(static_cast<double>(value.Components()[i - 1] * (value.Is(Kind::Colour) ? 255.0f : 1.0f)));
}

void SetIndex(Value& value, const Value& key, const Value& item) {
  const int64_t i = IndexOf(key);
  if (value.Is(Kind::Array)) {
    ArrayObject& array = value.AsArray();
    if (i > static_cast<int64_t>(array.Count())) array.Resize(static_cast<size_t>(i));
    array.Set(static_cast<size_t>(i - 1), item);
    return;
  }
  if (value.Is(Kind::Matrix)) {
    if (i > 4) OutOfRange(i, 4);
    SetValueProperty(value, L"row" + std::to_wstring(i), item);
    return;
  }
  const int count = ComponentCount(value.kind());
  if (count == 0) Fail(L"cannot set an item of " + Describe(value));
  if (i > count) OutOfRange(i, count);
  value.Components()[i - 1] = PartNumber(item) * (value.Is(Kind::Colour) ? 1 / 255.0f : 1.0f);
}

}  // namespace corvanta::script
