// SPDX-License-Identifier: MIT
#include "plugin/connections/operations.h"

#include <cmath>

#include "host/core/wstr.h"
#include "plugin/frame/rig_maths.h"

namespace tavrilon {

namespace {

constexpr float kSmallestDivisor = 0.001f;

float Modulo(float a, float b) {
  const float divisor = std::abs(b) < kSmallestDivisor ? kSmallestDivisor : b;
  const float rest = std::fmod(a, divisor);
  return rest != 0 && (rest < 0) != (divisor < 0) ? rest + divisor : rest;
}

float RealPower(float a, float b) {
  const float power = std::pow(a, b);
  return std::isfinite(power) ? power : 0;
}

using In = const OperationIn&;

// clang-format off
const Operation kOperations[kOperationCount] = {
    {L"A",        kReadsA,                       [](In i) { return i.a; }},
    {L"Add",      kReadsA | kReadsB,             [](In i) { return i.a + i.b; }},
    {L"Subtract", kReadsA | kReadsB,             [](In i) { return i.a - i.b; }},
    {L"Multiply", kReadsA | kReadsB,             [](In i) { return i.a * i.b; }},
    {L"Divide",   kReadsA | kReadsB,             [](In i) { return SafeDivide(i.a, i.b, kSmallestDivisor); }},
    {L"Min",      kReadsA | kReadsB,             [](In i) { return i.a < i.b ? i.a : i.b; }},
    {L"Max",      kReadsA | kReadsB,             [](In i) { return i.a > i.b ? i.a : i.b; }},
    {L"Clamp",    kReadsA | kReadsLo | kReadsHi, [](In i) { return ClampValue(i.a, i.lo, i.hi); }},
    {L"ClampTo",  kReadsA | kReadsLo | kReadsB,  [](In i) { return ClampValue(i.a, i.lo, i.b); }},
    {L"Abs",      kReadsA,                       [](In i) { return std::abs(i.a); }},
    {L"Mod",      kReadsA | kReadsB,             [](In i) { return Modulo(i.a, i.b); }},
    {L"Power",    kReadsA | kReadsB,             [](In i) { return RealPower(i.a, i.b); }},
    {L"Sin",      kReadsA,                       [](In i) { return std::sin(i.a); }},
    {L"Cos",      kReadsA,                       [](In i) { return std::cos(i.a); }},
    {L"Sqrt",     kReadsA,                       [](In i) { return i.a > 0 ? std::sqrt(i.a) : 0; }},
    {L"Less",     kReadsA | kReadsB,             [](In i) { return i.a < i.b ? 1.0f : 0.0f; }},
    {L"Blend",    kReadsA | kReadsB | kReadsC,   [](In i) { return i.a + (i.b - i.a) * i.c; }},
};
// clang-format on

}  // namespace

const Operation& OperationAt(int number) { return kOperations[number >= 0 && number < kOperationCount ? number : 0]; }

int FindOperation(const wchar_t* name) {
  for (int i = 0; i < kOperationCount; ++i)
    if (corvanta::EqualsNoCase(kOperations[i].name, name)) return i;
  return -1;
}

float Shaped(const OperationOutput& out, float result) {
  const float value = result * out.scale + out.offset;
  return out.clamp ? ClampValue(value, out.outMin, out.outMax) : value;
}

}  // namespace tavrilon
