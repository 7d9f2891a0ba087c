// SPDX-License-Identifier: MIT
#include "plugin/solvers/curve_lookup.h"

#include <algorithm>

namespace tavrilon {

using namespace corvanta;

namespace {

float PieceLength(const SampledCurve& curve, int i) {
  return curve.samples[static_cast<size_t>(i) + 1].length - curve.samples[static_cast<size_t>(i)].length;
}

// By the places: outside the curve an error of the length grows with the way, and the sums lose the small pieces.
float EndPieceLength(const SampledCurve& curve, int i) {
  return Length(curve.samples[static_cast<size_t>(i) + 1].pos - curve.samples[static_cast<size_t>(i)].pos);
}

// Ways along the curve in lengths of a piece; a piece without length is none to go by.
float InPieces(float way, float piece) { return piece > 0 ? way / piece : 0; }

// The way at which a joint stands that is nailed to the points.
float WayByPoints(const SampledCurve& curve, float u) {
  const int spans = curve.NumSpans();
  const float x = static_cast<float>(spans) * u;
  const int k = std::clamp(static_cast<int>(x), 0, spans - 1);
  const float a = curve.pointLengths[static_cast<size_t>(k)], b = curve.pointLengths[static_cast<size_t>(k) + 1];
  return a + (b - a) * (x - static_cast<float>(k));
}

}  // namespace

CurvePlace CurveLookup::ParamAt(float u, float slide) {
  const int last = Last();
  if (last < 1) return {};
  if (!(u > 0)) return {0, InPieces(curve_.length * u, EndPieceLength(curve_, 0))};
  if (u >= 1) return {last, InPieces(curve_.length * (u - 1), EndPieceLength(curve_, last - 1))};
  float way = u * curve_.length;
  if (slide < 1) {
    const float nailed = WayByPoints(curve_, u);
    way = (way - nailed) * slide + nailed;
  }
  if (Sample(from_ - 1).length > way) from_ = 1;
  while (from_ < last && !(Sample(from_).length > way)) ++from_;
  const float f = InPieces(way - Sample(from_ - 1).length, PieceLength(curve_, from_ - 1));
  return {from_ - 1, std::clamp(f, 0.0f, 1.0f)};
}

Point3 CurveLookup::PointAt(const CurvePlace& place) const {
  if (place.sample < 0 || place.sample > Last()) return {};
  const CurveSample& a = Sample(place.sample);
  const float f = place.f;
  if (IsOutside(place)) return a.pos + a.out * f;
  const CurveSample& b = Sample(place.sample + 1);
  const Point3 chord = b.pos - a.pos;
  if (a.straight) return a.pos + chord * f;
  const Point3 cube = a.out + b.in - chord * 2, square = chord * 3 - a.out * 2 - b.in;
  return a.pos + ((cube * f + square) * f + a.out) * f;
}

Point3 CurveLookup::TangentAt(const CurvePlace& place) const {
  if (place.sample < 0 || place.sample > Last()) return {};
  const CurveSample& a = Sample(place.sample);
  const float f = place.f;
  if (IsOutside(place)) return a.out;
  const CurveSample& b = Sample(place.sample + 1);
  const Point3 chord = b.pos - a.pos;
  if (a.straight) return chord;
  const Point3 cube = a.out + b.in - chord * 2, square = chord * 3 - a.out * 2 - b.in;
  return (cube * (3 * f) + square * 2) * f + a.out;
}

float CurveLookup::SpanFraction(const CurvePlace& place) const {
  if (place.sample < 0 || place.sample >= Last()) return 0;
  const CurveSample& a = Sample(place.sample);
  const float f = std::clamp(place.f, 0.0f, 1.0f);
  return a.straight ? f : (static_cast<float>(a.step) + f) / static_cast<float>(curve_.steps);
}

}  // namespace tavrilon
