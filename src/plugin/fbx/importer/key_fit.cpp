// SPDX-License-Identifier: MIT
#include "plugin/fbx/importer/key_fit.h"

#include <algorithm>

namespace tavrilon::fbx_import {

using fbx::Vector3;

namespace {

/// Nobody wants a cubic of more samples than this, and the search stays short.
constexpr int kLongestSegment = 4096;

/// How much the slopes are drawn to those of the neighbouring samples, where the samples between the keys leave them
/// open: with one sample between, there is a whole line of pairs that fit.
constexpr double kPull = 1e-9;

struct Segment {
  Vector3 outSlope, inSlope;
};

double Rounded(double v) { return static_cast<double>(static_cast<float>(v)); }

/// Along the neighbours, bounded so that a jump between two samples does not swing out beside it (Fritsch and Carlson,
/// "Monotone piecewise cubic interpolation", 1980).
double NaturalSlope(std::span<const Vector3> samples, int i, size_t c) {
  const int last = static_cast<int>(samples.size()) - 1;
  const auto at = [&](int k) { return samples[static_cast<size_t>(k)][c]; };
  if (i == 0) return at(1) - at(0);
  if (i == last) return at(last) - at(last - 1);
  const double before = at(i) - at(i - 1), after = at(i + 1) - at(i);
  if (before * after <= 0) return 0;
  const double bound = 3 * std::min(std::abs(before), std::abs(after));
  return std::clamp((before + after) / 2, -bound, bound);
}

class Fitter {
 public:
  Fitter(std::span<const Vector3> samples, int dimensions, double tolerance)
      : samples_(samples), dimensions_(static_cast<size_t>(dimensions)), tolerance_(tolerance) {}

  /// Slopes of the best cubic from sample `a` to sample `b`; false when it misses a sample between.
  bool Fit(int a, int b, Segment& segment) const {
    for (size_t c = 0; c < dimensions_; ++c) {
      if (!FitComponent(a, b, c, segment)) return false;
    }
    return true;
  }

 private:
  /// Normal equations of the two end slopes over the samples between.
  bool FitComponent(int a, int b, size_t c, Segment& segment) const {
    const double length = b - a;
    const double y0 = Rounded(At(a, c)), y1 = Rounded(At(b, c));
    const double start = NaturalSlope(samples_, a, c) * length, end = NaturalSlope(samples_, b, c) * length;
    double aa = kPull, ab = 0, bb = kPull, ar = kPull * start, br = kPull * end;
    for (int k = a + 1; k < b; ++k) {
      const double u = (k - a) / length, v = 1 - u;
      const double g = u * v * v, h = -u * u * v;
      const double r = At(k, c) - Chord(y0, y1, u);
      aa += g * g;
      ab += g * h;
      bb += h * h;
      ar += g * r;
      br += h * r;
    }
    const double det = aa * bb - ab * ab;
    const double m0 = (ar * bb - br * ab) / det, m1 = (aa * br - ab * ar) / det;
    if (!std::isfinite(m0) || !std::isfinite(m1)) return false;
    segment.outSlope[c] = m0 / length;
    segment.inSlope[c] = m1 / length;
    for (int k = a + 1; k < b; ++k) {
      const double u = (k - a) / length, v = 1 - u;
      const double fit = Chord(y0, y1, u) + m0 * u * v * v - m1 * u * u * v;
      if (!(std::abs(fit - At(k, c)) <= tolerance_)) return false;
    }
    return true;
  }
  /// The cubic from y0 to y1 that is level at both ends.
  static double Chord(double y0, double y1, double u) { return y0 + (y1 - y0) * u * u * (3 - 2 * u); }
  double At(int i, size_t c) const { return samples_[static_cast<size_t>(i)][c]; }

  std::span<const Vector3> samples_;
  size_t dimensions_;
  double tolerance_;
};

/// The end of the longest segment from `a` that doubling and halving find.
int FarthestFit(const Fitter& fitter, int a, int last, Segment& segment) {
  int good = a + 1, step = 2;
  fitter.Fit(a, good, segment);
  Segment tried;
  int bad = last + 1;
  while (good < last && step <= kLongestSegment) {
    const int next = std::min(a + step, last);
    if (!fitter.Fit(a, next, tried)) {
      bad = next;
      break;
    }
    good = next;
    segment = tried;
    step *= 2;
  }
  while (bad - good > 1 && bad <= last) {
    const int middle = good + (bad - good) / 2;
    if (fitter.Fit(a, middle, tried)) {
      good = middle;
      segment = tried;
    } else {
      bad = middle;
    }
  }
  return good;
}

Vector3 RoundedValue(const Vector3& v) { return {Rounded(v.x), Rounded(v.y), Rounded(v.z)}; }

}  // namespace

std::vector<FittedKey> FitKeys(std::span<const Vector3> samples, int dimensions, double tolerance) {
  const int last = static_cast<int>(samples.size()) - 1;
  const Fitter fitter(samples, dimensions, tolerance);
  std::vector<FittedKey> keys{{0, RoundedValue(samples[0]), {}, {}}};
  for (int a = 0; a < last;) {
    Segment segment;
    const int b = FarthestFit(fitter, a, last, segment);
    keys.back().outSlope = segment.outSlope;
    keys.push_back({b, RoundedValue(samples[static_cast<size_t>(b)]), segment.inSlope, segment.inSlope});
    a = b;
  }
  keys.front().inSlope = keys.front().outSlope;
  return keys;
}

Vector3 MiddleOf(std::span<const Vector3> samples) {
  Vector3 low = samples[0], high = samples[0];
  for (const Vector3& s : samples) {
    for (size_t c = 0; c < 3; ++c) {
      low[c] = std::min(low[c], s[c]);
      high[c] = std::max(high[c], s[c]);
    }
  }
  // A value that stays is given back as it is, not as a half of its double.
  return low == high ? low : (low + high) * 0.5;
}

double SpreadOf(std::span<const Vector3> samples, int dimensions) {
  double spread = 0;
  for (size_t c = 0; c < static_cast<size_t>(dimensions); ++c) {
    const auto less = [c](const Vector3& a, const Vector3& b) { return a[c] < b[c]; };
    const auto [low, high] = std::minmax_element(samples.begin(), samples.end(), less);
    spread = std::max(spread, (*high)[c] - (*low)[c]);
  }
  return spread;
}

double SizeOf(std::span<const Vector3> samples, int dimensions) {
  double size = 0;
  for (const Vector3& s : samples) {
    for (size_t c = 0; c < static_cast<size_t>(dimensions); ++c) size = std::max(size, std::abs(s[c]));
  }
  return size;
}

}  // namespace tavrilon::fbx_import
