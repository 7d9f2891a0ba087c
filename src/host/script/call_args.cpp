// SPDX-License-Identifier: MIT
#include "host/script/call_args.h"

#include <cmath>

#include "host/script/operators.h"
#include "host/script/script_error.h"
#include "host/script/text.h"

namespace corvanta::script {

const Value* CallArgs::Keyword(std::wstring_view name) const {
  for (size_t i = 0; i < keywords_.size(); ++i)
    if (keywords_[i] == name) return &KeywordValue(i);
  return nullptr;
}

void CallArgs::Wrong(size_t i, const WStr& expected) const {
  Fail(L"expected " + expected + L" as argument " + std::to_wstring(i + 1) + L" of " + CalleeName() + L", got " +
       Describe(values_[i]));
}

void CallArgs::WrongCount(const WStr& expected) const {
  Fail(CalleeName() + L" takes " + expected + (expected == L"1" ? L" argument" : L" arguments") + L", got " +
       std::to_wstring(Count()));
}

void CallArgs::CheckKeywords(std::initializer_list<std::wstring_view> known) const {
  for (const WStr& keyword : keywords_) {
    bool found = false;
    for (std::wstring_view name : known) found = found || name == keyword;
    if (found) continue;
    WStr names;
    for (std::wstring_view name : known) names += (names.empty() ? L"" : L", ") + WStr(name) + L":";
    Fail(CalleeName() + L" has no keyword " + keyword + L":" + (names.empty() ? L"" : L"; it knows " + names));
  }
}

bool CallArgs::Bool(size_t i) const {
  if (!values_[i].Is(Kind::Bool)) Wrong(i, L"true or false");
  return values_[i].AsBool();
}
int64_t CallArgs::Int(size_t i) const {
  const auto n = ToInt(values_[i]);
  if (!n) Wrong(i, L"a whole number");
  return *n;
}
double CallArgs::Number(size_t i) const {
  const auto n = ToNumber(values_[i]);
  if (!n) Wrong(i, L"a number");
  return *n;
}
const WStr& CallArgs::Text(size_t i) const {
  if (!values_[i].IsText()) Wrong(i, L"a string");
  return values_[i].AsText();
}
TimeValue CallArgs::Time(size_t i) const {
  const auto t = ToTime(values_[i]);
  if (!t) Wrong(i, L"a time such as 10f or 20t");
  return *t;
}
corvanta::Point3 CallArgs::Point3(size_t i) const {
  const auto p = ToPoint3(values_[i]);
  if (!p) Wrong(i, L"a point such as [1,2,3]");
  return *p;
}
corvanta::Quat CallArgs::Quat(size_t i) const {
  const auto q = ToQuat(values_[i]);
  if (!q) Wrong(i, L"a quaternion");
  return *q;
}
const corvanta::Matrix3& CallArgs::Matrix(size_t i) const {
  if (!values_[i].Is(Kind::Matrix)) Wrong(i, L"a matrix");
  return values_[i].AsMatrix();
}
ArrayObject& CallArgs::Array(size_t i) const {
  if (!values_[i].Is(Kind::Array)) Wrong(i, L"an array");
  return values_[i].AsArray();
}
Callable& CallArgs::Function(size_t i) const {
  if (!values_[i].Is(Kind::Callable) && !values_[i].Is(Kind::Class)) Wrong(i, L"a function");
  return values_[i].AsCallable();
}

std::optional<int64_t> ToInt(const Value& value) {
  if (value.Is(Kind::Int)) return value.AsInt();
  if (!value.Is(Kind::Float)) return {};
  const double f = value.AsFloat();
  // 2^63 is exact in a double; whole numbers only.
  if (!(f >= -9223372036854775808.0 && f < 9223372036854775808.0) || f != std::floor(f)) return {};
  return static_cast<int64_t>(f);
}
std::optional<double> ToNumber(const Value& value) {
  if (!value.IsNumber()) return {};
  return value.Number();
}
std::optional<TimeValue> ToTime(const Value& value) {
  if (value.Is(Kind::Time)) return value.AsTime();
  if (!value.IsNumber()) return {};
  return TicksFromFrames(value.Number());
}
std::optional<corvanta::Point3> ToPoint3(const Value& value) {
  if (value.Is(Kind::Point3)) return value.AsPoint3();
  if (value.Is(Kind::Point4))
    return corvanta::Point3{value.Components()[0], value.Components()[1], value.Components()[2]};
  if (value.Is(Kind::Colour)) {
    const corvanta::Colour c = value.AsColour();
    return corvanta::Point3{c.r * 255, c.g * 255, c.b * 255};
  }
  return {};
}
std::optional<corvanta::Quat> ToQuat(const Value& value) {
  if (value.Is(Kind::Quat)) return value.AsQuat();
  if (value.Is(Kind::Matrix)) return QuatFromMatrix(Orthogonalize(value.AsMatrix()));
  return {};
}
std::optional<corvanta::Matrix3> ToMatrix(const Value& value) {
  if (value.Is(Kind::Matrix)) return value.AsMatrix();
  if (value.Is(Kind::Quat)) return MakeMatrix(value.AsQuat());
  return {};
}

WStr Describe(const Value& value) {
  if (value.IsUndefined()) return L"undefined";
  WStr text = QuotedText(value, 60);
  return text + L" (" + ClassName(value) + L")";
}

}  // namespace corvanta::script
