// SPDX-License-Identifier: MIT
// Numbers. Angles are degrees in scripts.
#include <cmath>
#include <random>

#include "host/script/builtins.h"
#include "host/script/operators.h"
#include "host/script/script_error.h"

namespace corvanta::script {

namespace {

constexpr double kDegrees = 57.295779513082320877;

template <double (*F)(double)>
Value Function1(const CallArgs& args) {
  return Value::Float(F(args.Number(0)));
}

double Sine(double a) { return std::sin(a / kDegrees); }
double Cosine(double a) { return std::cos(a / kDegrees); }
double Tangent(double a) { return std::tan(a / kDegrees); }
double ArcSine(double x) { return std::asin(x) * kDegrees; }
double ArcCosine(double x) { return std::acos(x) * kDegrees; }
double ArcTangent(double x) { return std::atan(x) * kDegrees; }
double Radians(double a) { return a / kDegrees; }
double Degrees(double a) { return a * kDegrees; }
double SquareRoot(double x) { return std::sqrt(x); }
double Exponential(double x) { return std::exp(x); }
double Logarithm(double x) { return std::log(x); }
double Logarithm10(double x) { return std::log10(x); }
double Ceiling(double x) { return std::ceil(x); }
double Floor(double x) { return std::floor(x); }
double Round(double x) { return std::round(x); }

Value Absolute(const CallArgs& args) {
  const Value& v = args[0];
  if (v.Is(Kind::Int)) return v.AsInt() < 0 ? Negate(v) : v;
  if (v.Is(Kind::Time)) return v.AsTime() < 0 ? Negate(v) : v;
  return Value::Float(std::abs(args.Number(0)));
}

Value ArcTangent2(const CallArgs& args) { return Value::Float(std::atan2(args.Number(0), args.Number(1)) * kDegrees); }
Value Power(const CallArgs& args) {
  args.Number(0), args.Number(1);
  return Apply(BinaryOp::Power, args[0], args[1]);
}

// The remainder has the sign of the first argument.
Value Modulo(const CallArgs& args) {
  if (args[0].Is(Kind::Int) && args[1].Is(Kind::Int)) {
    if (args[1].AsInt() == 0) Fail(L"mod: division of an integer by zero");
    return Value::Int(args[1].AsInt() == -1 ? 0 : args[0].AsInt() % args[1].AsInt());
  }
  if (args[0].Is(Kind::Time)) {
    const TimeValue by = args.Time(1);
    if (by == 0) Fail(L"mod: division by a time of zero");
    return Value::Time(by == -1 ? 0 : args[0].AsTime() % by);
  }
  return Value::Float(std::fmod(args.Number(0), args.Number(1)));
}

template <int Sign>
Value Extreme(const CallArgs& args) {
  Value best = args[0];
  for (size_t i = 1; i < args.Count(); ++i)
    if (Compare(args[i], best) == Sign) best = args[i];
  return best;
}

std::mt19937& Generator() {
  static std::mt19937 generator(5489);
  return generator;
}

// The same on every platform, which std::uniform_*_distribution does not promise.
double Unit() { return (Generator()() >> 5) / 134217728.0; }

// Between its arguments, both included for integers.
Value Random(const CallArgs& args) {
  if (args[0].Is(Kind::Int) && args[1].Is(Kind::Int)) {
    const int64_t low = std::min(args[0].AsInt(), args[1].AsInt()), high = std::max(args[0].AsInt(), args[1].AsInt());
    const uint64_t span = static_cast<uint64_t>(high) - static_cast<uint64_t>(low) + 1;
    const uint64_t draw = static_cast<uint64_t>(Generator()()) << 32 | Generator()();
    return Value::Int(static_cast<int64_t>(static_cast<uint64_t>(low) + (span ? draw % span : draw)));
  }
  const double f = Unit();
  if (args[0].Is(Kind::Time) || args[1].Is(Kind::Time)) {
    const double low = args.Time(0), high = args.Time(1);
    return Value::Time(static_cast<TimeValue>(low + (high - low) * f));
  }
  return Value::Float(args.Number(0) + (args.Number(1) - args.Number(0)) * f);
}

Value Seed(const CallArgs& args) {
  Generator().seed(static_cast<uint32_t>(args.Int(0)));
  return Value::Ok();
}

const BuiltinRow kRows[] = {
    {L"abs", Absolute, 1, 1},
    {L"sqrt", Function1<SquareRoot>, 1, 1},
    {L"exp", Function1<Exponential>, 1, 1},
    {L"log", Function1<Logarithm>, 1, 1},
    {L"log10", Function1<Logarithm10>, 1, 1},
    {L"ceil", Function1<Ceiling>, 1, 1},
    {L"floor", Function1<Floor>, 1, 1},
    {L"round", Function1<Round>, 1, 1},
    {L"sin", Function1<Sine>, 1, 1},
    {L"cos", Function1<Cosine>, 1, 1},
    {L"tan", Function1<Tangent>, 1, 1},
    {L"asin", Function1<ArcSine>, 1, 1},
    {L"acos", Function1<ArcCosine>, 1, 1},
    {L"atan", Function1<ArcTangent>, 1, 1},
    {L"atan2", ArcTangent2, 2, 2},
    {L"degToRad", Function1<Radians>, 1, 1},
    {L"radToDeg", Function1<Degrees>, 1, 1},
    {L"pow", Power, 2, 2},
    {L"mod", Modulo, 2, 2},
    {L"min", Extreme<-1>, 1, -1},
    {L"max", Extreme<1>, 1, -1},
    {L"random", Random, 2, 2},
    {L"seed", Seed, 1, 1},
};

}  // namespace

std::span<const BuiltinRow> MathsBuiltins() { return kRows; }

}  // namespace corvanta::script
