// SPDX-License-Identifier: MIT
#include "plugin/shapes/finish.h"

#include <algorithm>
#include <utility>

namespace tavrilon {

namespace {

constexpr int kLengthSamples = 16;

Span PartOf(const Span& s, float from, float to) {
  if (s.IsStraight()) {
    const Point3 a = Lerp(s.p[0], s.p[3], from), b = Lerp(s.p[0], s.p[3], to);
    return {{a, a, b, b}};
  }
  const auto tangent = [&s](float u) {
    const float v = 1 - u;
    return (s.p[1] - s.p[0]) * (3 * v * v) + (s.p[2] - s.p[1]) * (6 * u * v) + (s.p[3] - s.p[2]) * (3 * u * u);
  };
  const Point3 a = PointOn(s, from), b = PointOn(s, to);
  const float third = (to - from) / 3;
  return {{a, a + tangent(from) * third, b - tangent(to) * third, b}};
}

// Chord lengths from the start of a span, by which a length is turned into a parameter.
struct SpanLength {
  explicit SpanLength(const Span& span) {
    Point3 last = span.p[0];
    for (int i = 1; i <= kLengthSamples; ++i) {
      // A straight span has no handles, so its Bezier parameter does not run at an even speed.
      const float u = float(i) / kLengthSamples;
      const Point3 next = span.IsStraight() ? Lerp(span.p[0], span.p[3], u) : PointOn(span, u);
      upTo[i] = upTo[i - 1] + Length(next - last);
      last = next;
    }
  }
  float Total() const { return upTo[kLengthSamples]; }
  float ParameterAt(float length) const {
    int i = 1;
    while (i < kLengthSamples && upTo[i] < length) ++i;
    const float step = upTo[i] - upTo[i - 1];
    return (float(i - 1) + (step > 0 ? (length - upTo[i - 1]) / step : 0)) / kLengthSamples;
  }
  float upTo[kLengthSamples + 1] = {};
};

bool IsRounded(const Spline& spline, int i) {
  const int last = static_cast<int>(spline.knots.size()) - 1;
  return spline.knots[i].corner && (spline.closed || (i > 0 && i < last));
}

// The fillet from `a` to `b`, which lie at the same distance before and after the corner. Handle length is that of a
// circle touching both sides: 4/3 tan(turn / 4) radii, the radius being distance / tan(turn / 2).
void JoinByArc(const Point3& corner, Knot& a, Knot& b) {
  const Point3 in = corner - a.point, out = b.point - corner;
  const float cosine = Dot(Normalize(in), Normalize(out));
  const float turn = std::acos(std::clamp(cosine, -1.0f, 1.0f));
  const float half = std::tan(turn / 2);
  const float part = half > 1e-4f ? 4.0f / 3 * std::tan(turn / 4) / half : 2.0f / 3;  // the limit for no turn
  a.outVec = a.point + in * part;
  b.inVec = b.point - out * part;
  a.corner = b.corner = false;
}

using MovedCorners = std::vector<std::pair<Point3, Point3>>;

void RoundSpline(Spline& spline, float corner, MovedCorners& moved) {
  const int count = static_cast<int>(spline.knots.size()), spans = spline.SpanCount();
  std::vector<Span> span;
  std::vector<SpanLength> length;
  for (int i = 0; i < spans; ++i) span.push_back(SpanOf(spline, i)), length.emplace_back(span.back());
  const auto before = [=](int i) { return (i + spans - 1) % spans; };
  std::vector<float> cut(count, 0);
  for (int i = 0; i < count; ++i)
    if (IsRounded(spline, i)) cut[i] = std::min(corner, 0.49f * std::min(length[i].Total(), length[before(i)].Total()));
  for (int i = 0; i < spans; ++i) {
    const float end = cut[(i + 1) % count];
    span[i] =
        PartOf(span[i], length[i].ParameterAt(cut[i]), end > 0 ? length[i].ParameterAt(length[i].Total() - end) : 1);
  }
  std::vector<Knot> knots;
  for (int i = 0; i < count; ++i) {
    Knot knot = spline.knots[i];
    const bool hasBefore = spline.closed || i > 0, hasAfter = i < spans;
    if (cut[i] <= 0) {
      if (hasBefore) knot.inVec = span[before(i)].p[2];
      if (hasAfter) knot.outVec = span[i].p[1];
      knots.push_back(knot);
      continue;
    }
    const Span &in = span[before(i)], &out = span[i];
    Knot a{in.p[3], in.p[2], in.p[3]}, b{out.p[0], out.p[0], out.p[1]};
    JoinByArc(knot.point, a, b);
    moved.emplace_back(knot.point, PointOn({{a.point, a.outVec, b.inVec, b.point}}, 0.5f));
    knots.push_back(a);
    knots.push_back(b);
  }
  spline.knots = std::move(knots);
}

void MoveEnd(Knot& knot, const MovedCorners& moved) {
  for (const auto& [from, to] : moved)
    if (knot.point == from) knot = CornerKnot(to);
}

// Handles at the thirds of straight spans, where a bend can take hold of them.
void OpenStraightSpans(Spline& spline) {
  for (int i = 0; i < spline.SpanCount(); ++i) {
    if (!SpanOf(spline, i).IsStraight()) continue;
    Knot &a = spline.knots[i], &b = spline.knots[(i + 1) % spline.knots.size()];
    a.outVec = Lerp(a.point, b.point, 1.0f / 3);
    b.inVec = Lerp(a.point, b.point, 2.0f / 3);
  }
}

}  // namespace

void DropDegenerate(Outline& outline) {
  constexpr float kNear = 1e-5f;  // of a unit shape: below what any drawing shows, above rounding
  for (Spline& spline : outline) {
    std::vector<Knot>& knots = spline.knots;
    for (size_t i = 0; i < knots.size() && knots.size() > 1;) {
      const size_t next = i + 1 < knots.size() ? i + 1 : 0;
      if ((next == 0 && !spline.closed) || Length(knots[next].point - knots[i].point) > kNear) {
        ++i;
        continue;
      }
      knots[i].outVec = knots[next].outVec;
      knots[i].corner = true;
      knots.erase(knots.begin() + next);
    }
  }
  std::erase_if(outline, [](const Spline& s) { return s.knots.size() < 2; });
}

void RoundCorners(Outline& outline, float corner) {
  if (corner <= 0) return;
  MovedCorners moved;
  for (Spline& spline : outline) RoundSpline(spline, corner, moved);
  for (Spline& spline : outline)
    if (!spline.closed) MoveEnd(spline.knots.front(), moved), MoveEnd(spline.knots.back(), moved);
}

void Warp(Outline& outline, const WarpInput& warp) {
  const float half = warp.half[warp.axis];
  if (warp.amount == 0 || half <= 0) return;
  const auto bend = [&](const Point3& p, const Point3& v) -> std::pair<Point3, Point3> {
    if (warp.axis < 2) {
      const float at = p[warp.axis] / half;
      return {{p.x, p.y, p.z + warp.amount * p[warp.axis] * at}, {v.x, v.y, v.z + 2 * warp.amount * at * v[warp.axis]}};
    }
    const float wide = 1 + warp.amount * p.z / half, grow = warp.amount * v.z / half;
    return {{p.x * wide, p.y * wide, p.z}, {v.x * wide + p.x * grow, v.y * wide + p.y * grow, v.z}};
  };
  for (Spline& spline : outline) {
    OpenStraightSpans(spline);
    for (Knot& k : spline.knots) {
      const auto [point, in] = bend(k.point, k.inVec - k.point);
      const Point3 out = bend(k.point, k.outVec - k.point).second;
      k = {point, point + in, point + out, k.corner};
    }
  }
}

}  // namespace tavrilon
