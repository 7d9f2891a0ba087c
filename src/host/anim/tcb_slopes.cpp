// SPDX-License-Identifier: MIT
#include "host/anim/slopes.h"

namespace corvanta {
namespace {

float Component(const ITCBFloatKey& key, int) { return key.value; }
float Component(const ITCBPoint3Key& key, int i) { return key.value[i]; }
float Component(const ITCBScaleKey& key, int i) { return key.value.s[i]; }

// Shares of the steps from the previous and to the next key in a tangent.
struct Shares {
  float previous, next;
};
Shares InShares(const TcbShape& s) {
  const float k = (1 - s.tension) / 2;
  return {k * (1 - s.continuity) * (1 + s.bias), k * (1 + s.continuity) * (1 - s.bias)};
}
Shares OutShares(const TcbShape& s) {
  const float k = (1 - s.tension) / 2;
  return {k * (1 + s.continuity) * (1 + s.bias), k * (1 - s.continuity) * (1 - s.bias)};
}

// Tangents of a segment as steps over its whole time, worked out by the caller's vector type (numbers or turns).
// `step(i)` is the step of segment i.
template <class Step, class Key, class StepOf>
void SegmentTangents(const std::vector<Key>& keys, size_t i, const StepOf& step, Step& out, Step& in) {
  const auto duration = [&](size_t s) {
    return static_cast<float>(static_cast<double>(keys[s + 1].time) - keys[s].time);
  };
  const size_t last = keys.size() - 2;
  const Step own = step(i);
  if (i > 0) {
    const Shares s = OutShares(keys[i].shape);
    const float fit = 2 * duration(i) / (duration(i - 1) + duration(i));
    out = (step(i - 1) * s.previous + own * s.next) * fit;
  }
  if (i < last) {
    const Shares s = InShares(keys[i + 1].shape);
    const float fit = 2 * duration(i) / (duration(i) + duration(i + 1));
    in = (own * s.previous + step(i + 1) * s.next) * fit;
  }
  // A free end takes the tangent without curvature there.
  if (i == 0 && i == last) in = own * (1 - keys[i + 1].shape.tension);
  if (i == 0) out = (own * 3 - in) * (0.5f * (1 - keys[i].shape.tension));
  if (i == last && i > 0) in = (own * 3 - out) * (0.5f * (1 - keys[i + 1].shape.tension));
}

template <int N, class Key>
void FillCubics(const std::vector<Key>& keys, size_t i, CubicSegment<N>& segment) {
  bool flat = true;
  for (int c = 0; c < N; ++c) {
    const auto step = [&](size_t s) { return Component(keys[s + 1], c) - Component(keys[s], c); };
    float out = 0, in = 0;
    SegmentTangents<float>(keys, i, step, out, in);
    const float d = step(i);
    segment.x1[c] = kThird;
    segment.x2[c] = 1 - kThird;
    segment.cubic[c] = {Component(keys[i], c), out, 3 * d - 2 * out - in, out + in - 2 * d};
    flat = flat && d == 0 && out == 0 && in == 0;
  }
  segment.easeOut = keys[i].shape.easeOut;
  segment.easeIn = keys[i + 1].shape.easeIn;
  if (flat) segment.kind = SegmentKind::Flat;
}

}  // namespace

template <class Key>
void BuildTcb(const std::vector<Key>& keys, std::vector<typename KeyKind<Key>::Segment>& segments) {
  segments.assign(keys.empty() ? 0 : keys.size() - 1, {});
  for (size_t i = 0; i < segments.size(); ++i) {
    FillCubics(keys, i, segments[i]);
    if constexpr (std::is_same_v<Key, ITCBScaleKey>) {
      segments[i].q0 = keys[i].value.q;
      segments[i].q1 = MakeClosest(keys[i + 1].value.q, keys[i].value.q);
      if (segments[i].q0 != segments[i].q1) segments[i].kind = SegmentKind::Moving;
    }
  }
}
template void BuildTcb(const std::vector<ITCBFloatKey>&, std::vector<CubicSegment<1>>&);
template void BuildTcb(const std::vector<ITCBPoint3Key>&, std::vector<CubicSegment<3>>&);
template void BuildTcb(const std::vector<ITCBScaleKey>&, std::vector<ScaleSegment>&);

void BuildTcb(const std::vector<ITCBRotKey>& keys, std::vector<RotationSegment>& segments) {
  segments.assign(keys.empty() ? 0 : keys.size() - 1, {});
  const auto turn = [&](size_t s) {
    return LogTurn(Inverse(QuatFromAngAxis(keys[s].value)) * QuatFromAngAxis(keys[s + 1].value));
  };
  for (size_t i = 0; i < segments.size(); ++i) {
    RotationSegment& segment = segments[i];
    Point3 out, in;
    SegmentTangents<Point3>(keys, i, turn, out, in);
    segment.q0 = QuatFromAngAxis(keys[i].value);
    segment.w1 = out / 3;
    segment.w3 = in / 3;
    const Quat whole = Inverse(segment.q0) * QuatFromAngAxis(keys[i + 1].value);
    segment.w2 = LogTurn(Inverse(ExpTurn(segment.w1)) * whole * Inverse(ExpTurn(segment.w3)));
    segment.easeOut = keys[i].shape.easeOut;
    segment.easeIn = keys[i + 1].shape.easeIn;
    if (turn(i) == Point3{} && out == Point3{} && in == Point3{}) segment.kind = SegmentKind::Flat;
  }
}

}  // namespace corvanta
