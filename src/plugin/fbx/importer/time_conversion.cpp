// SPDX-License-Identifier: MIT
// Frame rate and span. File times and host times are whole ticks of which one is a multiple of the other, so that a
// host frame is met exactly.
#include <algorithm>

#include "plugin/fbx/importer/conversion.h"
#include "plugin/fbx/importer/file_time.h"

namespace tavrilon::fbx_import {

using namespace corvanta;
using namespace fbx;

namespace {

/// A rate within this of a whole one is meant to be it.
constexpr double kWholeRate = 1e-4;
/// A span that ends this share of a frame beside a frame ends on it.
constexpr double kFrameSlack = 1e-3;
/// The highest rate that the host's ticks give one tick each.
constexpr double kHighestRate = kTicksPerSecond;

int ChooseRate(const Conversion& conversion) {
  const double rate = conversion.scene.GetGlobalSettings().GetFrameRate();
  const int present = conversion.context.frameRate;
  if (!(rate >= 1 - kWholeRate && rate <= kHighestRate)) return present;
  const auto whole = static_cast<int>(std::lround(rate));
  if (!conversion.context.isEmpty) {
    if (std::abs(rate - present) > kWholeRate)
      conversion.Note("The scene keeps its frame rate; the file has another", std::to_string(rate) + " a second");
    return present;
  }
  if (std::abs(rate - whole) > kWholeRate)
    conversion.Note("The frame rate is not whole; the nearest whole one is taken", std::to_string(rate));
  if (kTicksPerSecond % whole != 0)
    conversion.Note("The frame rate does not divide the second into whole ticks; frames are a little shorter",
                    std::to_string(whole));
  return whole;
}

/// As the stack tells it, else from its first key to its last.
void FindSpan(const FbxAnimStack& stack, FbxTime& start, FbxTime& stop) {
  start = stack.localStart;
  stop = stack.localStop;
  if (start < stop) return;
  stack.GetKeySpan(start, stop);
}

/// Clamped to where the host has times, with some room so that nothing near the ends overflows.
double ClampedFrame(double frame, double ticksPerFrame) {
  const double limit = std::floor(static_cast<double>(kTimeMax) / 4 / ticksPerFrame);
  return std::clamp(frame, -limit, limit);
}

void TakeSpan(Conversion& conversion, FbxTime start, FbxTime stop) {
  PlannedTime& time = conversion.plan.time;
  const double perFrame = static_cast<double>(time.ticksPerFrame) * static_cast<double>(kFileTicksPerTick);
  const double first = std::floor(static_cast<double>(start.ticks) / perFrame + kFrameSlack);
  const double last = std::ceil(static_cast<double>(stop.ticks) / perFrame - kFrameSlack);
  const double clampedFirst = ClampedFrame(first, time.ticksPerFrame);
  double clampedLast = std::max(ClampedFrame(last, time.ticksPerFrame), clampedFirst);
  clampedLast = std::min(clampedLast, clampedFirst + conversion.options.limits.maxFrames - 1);
  if (clampedFirst != first || clampedLast < last)
    conversion.Note("The animation is longer than can be imported; it is cut", conversion.stack->GetName());
  time.firstFrame = static_cast<int>(clampedFirst);
  time.lastFrame = static_cast<int>(clampedLast);
}

bool HasKeys(const FbxAnimStack& stack) {
  for (const FbxAnimLayer* layer : stack.layers)
    for (const FbxAnimCurveNode* node : layer->curveNodes)
      for (const FbxAnimCurve& curve : node->curves)
        if (!curve.IsEmpty()) return true;
  return false;
}

void NoteKeysOutside(const Conversion& conversion) {
  FbxTime first, last;
  conversion.stack->GetKeySpan(first, last);
  const Interval span = conversion.plan.time.Span();
  if (first < FileTimeOf(span.start) || FileTimeOf(span.end) < last)
    conversion.Note("Keys outside of the stack's span are left out", conversion.stack->GetName());
}

}  // namespace

WStr PlanTime(Conversion& conversion) {
  PlannedTime& time = conversion.plan.time;
  time.frameRate = conversion.context.frameRate;
  const bool moves = conversion.stack && HasKeys(*conversion.stack);
  if (moves) time.frameRate = ChooseRate(conversion);
  time.ticksPerFrame = std::max(kTicksPerSecond / std::max(time.frameRate, 1), 1);
  if (!moves) {
    conversion.stack = nullptr;
    return {};
  }
  FbxTime start, stop;
  FindSpan(*conversion.stack, start, stop);
  TakeSpan(conversion, start, stop);
  NoteKeysOutside(conversion);
  return {};
}

}  // namespace tavrilon::fbx_import
