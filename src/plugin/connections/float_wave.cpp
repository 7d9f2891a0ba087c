// SPDX-License-Identifier: MIT
#include "plugin/connections/float_wave.h"

#include <cmath>

#include "host/scene/core_interface.h"
#include "plugin/connections/connect_input.h"

namespace tavrilon {

using namespace corvanta;
using namespace float_wave;

namespace {

// clang-format off
constexpr ParamRow kRows[] = {
    {kType,      L"type",      ParamType::Int,     kNone,       0,     {0, 4}, L"Type"},
    {kAmplitude, L"amplitude", ParamType::Float,   kAnimatable, 1.0f,  {},     L"Amplitude"},
    {kPeriod,    L"period",    ParamType::Float,   kAnimatable, 30.0f, {},     L"Period (Frames)"},
    {kPhase,     L"phase",     ParamType::Float,   kAnimatable, 0.0f,  {},     L"Phase (Periods)"},
    {kOffset,    L"offset",    ParamType::Float,   kAnimatable, 0.0f,  {},     L"Offset"},
    {kWeight,    L"weight",    ParamType::Percent, kAnimatable, 1.0f,  {},     L"Weight"},
    {kSeed,      L"seed",      ParamType::Int,     kNone,       0,     {},     L"Seed"},
};
// clang-format on

enum FunctionID { kConnectTo = 0 };

const FPInterfaceDesc& PublishedDesc() {
  static const FPInterfaceDesc desc(InterfaceIdOf(TavrilonClass::FloatWave), L"floatWave",
                                    {ConnectToFunction(kConnectTo)});
  return desc;
}

// Frames; a shorter period is no wave any more.
constexpr float kSmallestPeriod = 0.001f;

}  // namespace

const ParamBlockDesc2& FloatWave::BlockDesc() {
  static const ParamBlockDesc2 desc(0, L"params", kRows);
  return desc;
}

ReferenceTarget* CreateFloatWave(bool loading) { return new FloatWave(loading); }

FloatWave::FloatWave(bool loading) : BlockControl(TavrilonClass::FloatWave, BlockDesc(), PublishedDesc(), loading) {}

void FloatWave::GetValue(TimeValue t, ValueRef value, Interval& valid, GetSetMethod method) {
  if (!block_) return;
  float result = Param(kOffset, t, valid);
  if (const float size = Param(kWeight, t, valid) * Param(kAmplitude, t, valid); size != 0) {
    const double frames = static_cast<double>(t) / GetCOREInterface()->GetTicksPerFrame();
    const float period = Param(kPeriod, t, valid);
    const double divisor = std::abs(period) < kSmallestPeriod ? kSmallestPeriod : period;
    const double phase = frames / divisor + static_cast<double>(Param(kPhase, t, valid));
    result += size * WaveAt(static_cast<Wave>(block_->GetInt(kType)), phase, block_->GetInt(kSeed));
    valid &= Interval::Instant(t);
  }
  value.Float() = method == CTRL_RELATIVE ? value.Float() + result : result;
}

FPStatus FloatWave::Invoke(int id, TimeValue, FPValue& result, std::span<const FPValue> args) {
  return id == kConnectTo ? ConnectInput(*block_, args, result) : FPStatus::NoSuchFunction;
}

}  // namespace tavrilon
