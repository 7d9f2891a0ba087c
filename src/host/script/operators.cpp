// SPDX-License-Identifier: MIT
#include "host/script/operators.h"

#include <cmath>

#include "host/script/call_args.h"
#include "host/script/objects.h"
#include "host/script/script_error.h"
#include "host/script/text.h"

namespace corvanta::script {

namespace {

int g_ticksPerFrame = kTicksPerSecond / 30;

[[noreturn]] void Mismatch(BinaryOp op, const Value& a, const Value& b) {
  WStr message = L"cannot apply " + WStr(OpText(op)) + L" to " + Describe(a) + L" and " + Describe(b);
  if (op == BinaryOp::Add && b.Is(Kind::String) && a.kind() > Kind::Ok) message += L"; write `(x as string) + ...`";
  Fail(message);
}

TimeValue ClampTicks(double ticks) {
  if (!(ticks > kTimeMin)) return kTimeMin;  // also not-a-number
  return ticks >= kTimeMax ? kTimeMax : static_cast<TimeValue>(std::llround(ticks));
}

Value IntPower(int64_t base, int64_t exponent) {
  int64_t result = 1;
  for (int64_t e = exponent; e > 0; e >>= 1) {
    if ((e & 1) && __builtin_mul_overflow(result, base, &result)) Fail(L"integer overflow in ^");
    if (e > 1 && __builtin_mul_overflow(base, base, &base)) Fail(L"integer overflow in ^");
  }
  return Value::Int(result);
}

Value IntArithmetic(BinaryOp op, int64_t a, int64_t b) {
  int64_t r = 0;
  bool overflow = false;
  switch (op) {
    case BinaryOp::Add:
      overflow = __builtin_add_overflow(a, b, &r);
      break;
    case BinaryOp::Subtract:
      overflow = __builtin_sub_overflow(a, b, &r);
      break;
    case BinaryOp::Multiply:
      overflow = __builtin_mul_overflow(a, b, &r);
      break;
    case BinaryOp::Divide:
      if (b == 0) Fail(L"division of an integer by zero");
      overflow = b == -1 && __builtin_sub_overflow(int64_t{0}, a, &r);
      if (b != -1) r = a / b;
      break;
    default:
      return b >= 0 ? IntPower(a, b) : Value::Float(std::pow(static_cast<double>(a), static_cast<double>(b)));
  }
  if (overflow) FailWith(L"integer overflow in %s", OpText(op));
  return Value::Int(r);
}

Value FloatArithmetic(BinaryOp op, double a, double b) {
  switch (op) {
    case BinaryOp::Add:
      return Value::Float(a + b);
    case BinaryOp::Subtract:
      return Value::Float(a - b);
    case BinaryOp::Multiply:
      return Value::Float(a * b);
    case BinaryOp::Divide:
      return Value::Float(a / b);
    default:
      return Value::Float(std::pow(a, b));
  }
}

Value TimeArithmetic(BinaryOp op, const Value& a, const Value& b) {
  const auto ticks = [](const Value& v) {
    return v.Is(Kind::Time) ? static_cast<double>(v.AsTime()) : v.Number() * g_ticksPerFrame;
  };
  const auto time = [](double t) { return Value::Time(ClampTicks(t)); };
  switch (op) {
    case BinaryOp::Add:
      return time(ticks(a) + ticks(b));
    case BinaryOp::Subtract:
      return time(ticks(a) - ticks(b));
    case BinaryOp::Multiply:
      if (a.IsNumber()) return time(a.Number() * b.AsTime());
      if (b.IsNumber()) return time(a.AsTime() * b.Number());
      break;
    case BinaryOp::Divide:
      if (b.IsNumber()) return time(a.AsTime() / b.Number());
      if (a.Is(Kind::Time)) return Value::Float(static_cast<double>(a.AsTime()) / b.AsTime());
      break;
    default:
      break;
  }
  Mismatch(op, a, b);
}

bool IsVector(Kind kind) { return ComponentCount(kind) > 0 && kind != Kind::Quat; }

float Component(const Value& v, int i) { return v.IsNumber() ? static_cast<float>(v.Number()) : v.Components()[i]; }

Value VectorArithmetic(BinaryOp op, const Value& a, const Value& b) {
  const Kind kind = IsVector(a.kind()) ? a.kind() : b.kind();
  if (op == BinaryOp::Power || (!a.IsNumber() && a.kind() != kind) || (!b.IsNumber() && b.kind() != kind))
    Mismatch(op, a, b);
  Value r = a.kind() == kind ? a : b;
  // A number added to a colour is on its scale of 0 to 255.
  const bool scaled = kind == Kind::Colour && (op == BinaryOp::Add || op == BinaryOp::Subtract);
  const float scaleA = scaled && a.IsNumber() ? 1 / 255.0f : 1, scaleB = scaled && b.IsNumber() ? 1 / 255.0f : 1;
  for (int i = 0; i < ComponentCount(kind); ++i) {
    const float x = Component(a, i) * scaleA, y = Component(b, i) * scaleB;
    float& out = r.Components()[i];
    if (op == BinaryOp::Add) out = x + y;
    if (op == BinaryOp::Subtract) out = x - y;
    if (op == BinaryOp::Multiply) out = x * y;
    if (op == BinaryOp::Divide) out = x / y;
  }
  return r;
}

// Products of transforms: each applies its left side first.
Value TransformArithmetic(BinaryOp op, const Value& a, const Value& b) {
  if (op == BinaryOp::Multiply) {
    if (a.Is(Kind::Point3) && b.Is(Kind::Matrix)) return Value::Of(a.AsPoint3() * b.AsMatrix());
    if (a.Is(Kind::Point3) && b.Is(Kind::Quat)) return Value::Of(VectorTransform(MakeMatrix(b.AsQuat()), a.AsPoint3()));
    if (a.Is(Kind::Quat) && b.Is(Kind::Quat)) return Value::Of(a.AsQuat() * b.AsQuat());
    const auto m = ToMatrix(a), n = ToMatrix(b);
    if (m && n) return Value::Of(*m * *n);
  }
  if (op == BinaryOp::Divide && a.Is(Kind::Quat) && b.Is(Kind::Quat)) return Value::Of(a.AsQuat() / b.AsQuat());
  Mismatch(op, a, b);
}

Value AddText(const Value& a, const Value& b) {
  const WStr& left = a.AsText();
  const WStr right = PlainText(b);
  MemoryUse::Check((left.size() + right.size()) * sizeof(wchar_t));
  return Value::String(left + right);
}

Value Arithmetic(BinaryOp op, const Value& a, const Value& b) {
  if (a.IsNumber() && b.IsNumber())
    return a.Is(Kind::Int) && b.Is(Kind::Int) ? IntArithmetic(op, a.AsInt(), b.AsInt())
                                              : FloatArithmetic(op, a.Number(), b.Number());
  if (op == BinaryOp::Add && a.Is(Kind::String)) return AddText(a, b);
  const auto timeOrNumber = [](const Value& v) { return v.Is(Kind::Time) || v.IsNumber(); };
  if (timeOrNumber(a) && timeOrNumber(b)) return TimeArithmetic(op, a, b);
  const auto isTransform = [](const Value& v) { return v.Is(Kind::Quat) || v.Is(Kind::Matrix); };
  if (isTransform(a) || isTransform(b)) return TransformArithmetic(op, a, b);
  if (IsVector(a.kind()) || IsVector(b.kind())) return VectorArithmetic(op, a, b);
  if (op == BinaryOp::Add && a.Is(Kind::Array) && b.Is(Kind::Array)) {
    Value joined = Value::Array(a.AsArray().Count() + b.AsArray().Count());
    size_t at = 0;
    for (const Value* part : {&a, &b})
      for (const Value& item : part->AsArray().items()) joined.AsArray().Set(at++, item);
    return joined;
  }
  Mismatch(op, a, b);
}

template <class T>
int Sign(T a, T b) {
  return a < b ? -1 : a > b ? 1 : 0;
}

int CompareFloats(double a, double b) {
  if (std::isnan(a) || std::isnan(b)) return static_cast<int>(std::isnan(a)) - static_cast<int>(std::isnan(b));
  return Sign(a, b);
}

}  // namespace

int TicksPerFrame() { return g_ticksPerFrame; }
void SetTicksPerFrame(int ticks) { g_ticksPerFrame = ticks > 0 ? ticks : 1; }
TimeValue TicksFromFrames(double frames) { return ClampTicks(frames * g_ticksPerFrame); }
double FramesFromTicks(TimeValue ticks) { return static_cast<double>(ticks) / g_ticksPerFrame; }

const wchar_t* OpText(BinaryOp op) {
  static const wchar_t* const kTexts[] = {L"+", L"-", L"*", L"/", L"^", L"==", L"!=", L"<", L">", L"<=", L">="};
  return kTexts[static_cast<int>(op)];
}

Value Apply(BinaryOp op, const Value& a, const Value& b) {
  if (op < BinaryOp::Equal) return Arithmetic(op, a, b);
  if (op == BinaryOp::Equal) return Value::Bool(Equal(a, b));
  if (op == BinaryOp::NotEqual) return Value::Bool(!Equal(a, b));
  if (a.IsNumber() && b.IsNumber() && (std::isnan(a.Number()) || std::isnan(b.Number()))) return Value::Bool(false);
  int order = 0;
  try {
    order = Compare(a, b);
  } catch (const ScriptError&) {
    Mismatch(op, a, b);
  }
  if (op == BinaryOp::Less) return Value::Bool(order < 0);
  if (op == BinaryOp::Greater) return Value::Bool(order > 0);
  if (op == BinaryOp::LessEqual) return Value::Bool(order <= 0);
  return Value::Bool(order >= 0);
}

Value Negate(const Value& a) {
  if (a.Is(Kind::Int)) return IntArithmetic(BinaryOp::Subtract, 0, a.AsInt());
  if (a.Is(Kind::Float)) return Value::Float(-a.AsFloat());
  if (a.Is(Kind::Time)) return Value::Time(ClampTicks(-static_cast<double>(a.AsTime())));
  if (a.Is(Kind::Quat)) return Value::Of(-a.AsQuat());
  if (IsVector(a.kind()) && !a.Is(Kind::Colour)) return VectorArithmetic(BinaryOp::Multiply, a, Value::Float(-1));
  Fail(L"cannot negate " + Describe(a));
}

int Compare(const Value& a, const Value& b) {
  if (a.Is(Kind::Int) && b.Is(Kind::Int)) return Sign(a.AsInt(), b.AsInt());
  if (a.IsNumber() && b.IsNumber()) return CompareFloats(a.Number(), b.Number());
  const auto isTime = [](const Value& v) { return v.Is(Kind::Time) || v.IsNumber(); };
  if (isTime(a) && isTime(b)) return Sign(*ToTime(a), *ToTime(b));
  if (a.Is(Kind::String) && b.Is(Kind::String)) return Sign(a.AsText().compare(b.AsText()), 0);
  if (a.Is(Kind::Name) && b.Is(Kind::Name)) return Sign(ToLower(a.AsText()).compare(ToLower(b.AsText())), 0);
  Fail(L"cannot order " + Describe(a) + L" and " + Describe(b));
}

}  // namespace corvanta::script
