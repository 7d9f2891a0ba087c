// SPDX-License-Identifier: MIT
#include "plugin/rig/point_place.h"

#include <algorithm>
#include <array>

namespace tavrilon {
namespace {

bool IsLink(const RigPoints& points, int i) { return i >= 0 && i < static_cast<int>(points.size()); }
int Link(const RigPoints& points, int i) { return IsLink(points, i) ? i : -1; }

/// The point of the row before `point`; -1 at its start.
int RowBefore(const RigPoints& points, int point) {
  const int parent = Link(points, points[point].parent);
  return parent >= 0 && points[parent].IsSmooth() && points[parent].aim == point ? parent : -1;
}

int RowAfter(const RigPoints& points, int point) {
  return points[point].IsSmooth() ? Link(points, points[point].aim) : -1;
}

/// The up to four points of a row that the span from `point` to `next` depends on.
struct SpanPoints {
  std::array<int, 4> index{};
  int count = 0;
  /// Where the span starts among them.
  int start = 0;
};

SpanPoints PointsOfSpan(const RigPoints& points, int point, int next) {
  SpanPoints span;
  const int before = RowBefore(points, point);
  if (before >= 0 && before != next) span.index[span.count++] = before;
  span.start = span.count;
  span.index[span.count++] = point;
  span.index[span.count++] = next;
  const int after = points[point].aim == next ? RowAfter(points, next) : -1;
  if (after >= 0 && after != point) span.index[span.count++] = after;
  return span;
}

template <class PlaceAt>
BezierSpan MakeSpan(const RigPoints& points, int point, int next, PlaceAt&& place) {
  if (!points[point].IsSmooth()) {
    const Point3 a = place(point), d = place(next);
    return {a, a + (d - a) / 3, d - (d - a) / 3, d};
  }
  const SpanPoints span = PointsOfSpan(points, point, next);
  return SmoothSpan([&](int i) { return place(span.index[i]); }, span.count, span.start);
}

std::vector<int> NextPoints(const RigPoints& points) {
  std::vector<int> same(points.size(), -1), any(points.size(), -1);
  for (size_t i = 0; i < points.size(); ++i) {
    const int parent = Link(points, points[i].parent);
    if (parent < 0 || points[i].IsInBetween()) continue;
    const bool kin = points[i].component == points[parent].component;
    if (kin && same[parent] < 0) same[parent] = static_cast<int>(i);
    if (any[parent] < 0) any[parent] = static_cast<int>(i);
  }
  for (size_t i = 0; i < points.size(); ++i)
    if (same[i] < 0) same[i] = any[i];
  return same;
}

}  // namespace

// A point waits on a stack until those it depends on are known, so that long chains of links cost no call depth.
PointPlaces::PointPlaces(const RigPoints& points) : place_(points.size()), next_(NextPoints(points)) {
  enum : char { kFresh, kOpen, kDone };
  std::vector<char> state(points.size(), kFresh);
  std::vector<int> stack;
  for (size_t i = 0; i < points.size(); ++i) place_[i] = points[i].position;
  const auto wait = [&](int i) {
    if (IsLink(points, i) && state[i] == kFresh) stack.push_back(i);
  };
  for (size_t root = 0; root < points.size(); ++root) {
    wait(static_cast<int>(root));
    while (!stack.empty()) {
      const int i = stack.back();
      if (state[i] != kFresh) {
        if (state[i] == kOpen) place_[i] = PlaceOf(points, i);
        state[i] = kDone;
        stack.pop_back();
        continue;
      }
      state[i] = kOpen;
      const RigPoint& point = points[i];
      if (!point.IsInBetween()) {
        wait(point.follow);
        continue;
      }
      const int parent = Link(points, point.parent);
      if (parent < 0) continue;
      wait(parent);
      if (next_[parent] < 0) continue;
      const SpanPoints span = PointsOfSpan(points, parent, next_[parent]);
      for (int k = 0; k < span.count; ++k) wait(span.index[k]);
    }
  }
}

Point3 PointPlaces::PlaceOf(const RigPoints& points, int i) const {
  const RigPoint& point = points[i];
  if (!point.IsInBetween()) return IsLink(points, point.follow) ? place_[point.follow] : point.position;
  const int parent = Link(points, point.parent);
  if (parent < 0) return {};
  const int next = next_[parent];
  if (next < 0) return place_[parent];
  if (!points[parent].IsSmooth()) return Lerp(place_[parent], place_[next], point.fraction);
  return BezierPoint(MakeSpan(points, parent, next, [&](int k) { return place_[k]; }), point.fraction);
}

std::vector<int> PointPlaces::Row(const RigPoints& points, int point) const {
  std::vector<int> row;
  std::vector<char> seen(points.size(), 0);
  for (int i = point; i >= 0 && !seen[i]; i = RowBefore(points, i)) seen[i] = 1, row.push_back(i);
  std::reverse(row.begin(), row.end());
  for (int i = RowAfter(points, point); i >= 0 && !seen[i]; i = RowAfter(points, i)) seen[i] = 1, row.push_back(i);
  return row;
}

corvanta::Box3 PointPlaces::Bounds() const {
  corvanta::Box3 box;
  for (const Point3& p : place_) box += p;
  return box;
}

corvanta::Box3 PointPlaces::SelectionBounds(const RigPoints& points) const {
  corvanta::Box3 box;
  for (size_t i = 0; i < points.size(); ++i)
    if (points[i].selected && !points[i].IsInBetween()) box += place_[i];
  return box;
}

BezierSpan SpanFrom(const RigPoints& points, const PointPlaces& places, int point) {
  return MakeSpan(points, point, places.Next(point), [&](int i) { return places[i]; });
}

float RowLength(const RigPoints& points, const PointPlaces& places, const std::vector<int>& row) {
  float length = 0;
  for (size_t i = 0; i + 1 < row.size(); ++i) length += BezierLength(SpanFrom(points, places, row[i]));
  return length;
}

std::vector<float> BonePercents(const RigPoints& points, const PointPlaces& places, const std::vector<int>& row,
                                const std::vector<int>& bones) {
  std::vector<float> start(row.size(), 0);
  for (size_t i = 0; i + 1 < row.size(); ++i) start[i + 1] = start[i] + BezierLength(SpanFrom(points, places, row[i]));
  std::vector<float> percents;
  for (int bone : bones) {
    float length = 0;
    for (size_t i = 0; i + 1 < row.size(); ++i)
      if (row[i] == points[bone].parent)
        length = start[i] + BezierLength(SpanFrom(points, places, row[i]), 0, points[bone].fraction);
    percents.push_back(start.empty() || start.back() <= 0 ? 0 : length / start.back());
  }
  return percents;
}

}  // namespace tavrilon
