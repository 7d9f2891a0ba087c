// SPDX-License-Identifier: MIT
#include "plugin/connections/float_transform.h"

#include <algorithm>
#include <cmath>

namespace tavrilon {

namespace {

// A span is divided by: one that is too small to mean anything counts as 0.001.
constexpr float kSmallestSpan = 0.001f;
float Span(float from, float to) {
  const float d = to - from;
  return std::abs(d) > kSmallestSpan ? d : kSmallestSpan;
}

float HeldBetween(float v, float a, float b) { return std::clamp(v, std::min(a, b), std::max(a, b)); }

float CurveAt(const FloatTransform& f, float x) {
  if (!f.curve.at) return x;
  return f.curve.at(f.curve.curve, f.clamp ? HeldBetween(x, f.curve.first, f.curve.last) : x);
}

// Whether the curve rises or falls all the way, as far as samples tell.
bool IsMonotone(const CurveSample& c) {
  constexpr int kSamples = 64;
  bool rises = true, falls = true;
  float last = c.at(c.curve, c.first);
  for (int i = 1; i <= kSamples; ++i) {
    const float v = c.at(c.curve, c.first + (c.last - c.first) * static_cast<float>(i) / kSamples);
    rises = rises && v >= last;
    falls = falls && v <= last;
    last = v;
  }
  return rises != falls;
}

bool InverseCurve(const CurveSample& c, float y, float& x) {
  if (!(c.last > c.first) || !IsMonotone(c)) return false;
  float low = c.first, high = c.last;
  const float atLow = c.at(c.curve, low), atHigh = c.at(c.curve, high);
  if (y < std::min(atLow, atHigh) || y > std::max(atLow, atHigh)) return false;
  const bool rises = atHigh > atLow;
  // Halving a float interval is at its end after as many steps as a float has bits of mantissa and some for zero.
  for (int i = 0; i < 60; ++i) {
    const float middle = low + (high - low) * 0.5f;
    (c.at(c.curve, middle) < y) == rises ? low = middle : high = middle;
  }
  x = low + (high - low) * 0.5f;
  return true;
}

}  // namespace

float Transformed(const FloatTransform& f, float x) {
  switch (f.kind) {
    case float_connection::kOffsetWeight:
      return f.weight * x + f.offset;
    case float_connection::kRange: {
      const float c = f.clamp ? HeldBetween(x, f.inputMin, f.inputMax) : x;
      return (c - f.inputMin) / Span(f.inputMin, f.inputMax) * (f.outputMax - f.outputMin) + f.outputMin;
    }
    case float_connection::kCurve:
      return CurveAt(f, x);
    default:
      return x;
  }
}

bool InverseTransformed(const FloatTransform& f, float y, float& x) {
  switch (f.kind) {
    case float_connection::kOffsetWeight:
      if (!(std::abs(f.weight) >= 1e-6f)) return false;
      x = (y - f.offset) / f.weight;
      return true;
    case float_connection::kRange:
      x = (y - f.outputMin) / Span(f.outputMin, f.outputMax) * (f.inputMax - f.inputMin) + f.inputMin;
      if (f.clamp) x = HeldBetween(x, f.inputMin, f.inputMax);
      return true;
    case float_connection::kCurve:
      if (f.curve.at) return InverseCurve(f.curve, y, x);
      x = y;
      return true;
    default:
      x = y;
      return true;
  }
}

}  // namespace tavrilon
