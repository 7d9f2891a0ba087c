// SPDX-License-Identifier: MIT
// Blending between the frames of two neighbouring control points, many times within one span: what does not depend on
// the place is computed once.
#pragma once

#include "plugin/solvers/curve_sampling.h"

namespace tavrilon {

/// The shorter arc from one rotation to another.
class RotationArc {
 public:
  RotationArc() = default;
  RotationArc(const corvanta::Quat& from, const corvanta::Quat& to) : from_(from) {
    const corvanta::Quat end = corvanta::MakeClosest(to, from);
    const float cosine = Dot(from, end);
    across_ = {end.x - from.x * cosine, end.y - from.y * cosine, end.z - from.z * cosine, end.w - from.w * cosine};
    const float sine = std::sqrt(Dot(across_, across_));
    // Under 1e-6 the direction is rounding, and the way is shorter than a float can tell from none.
    turns_ = sine > 1e-6f;
    if (!turns_) return;
    const float k = 1 / sine;
    across_ = {across_.x * k, across_.y * k, across_.z * k, across_.w * k};
    angle_ = std::atan2(sine, cosine);
  }
  corvanta::Quat At(float f) const {
    if (!turns_ || f == 0) return from_;
    const float c = std::cos(angle_ * f), s = std::sin(angle_ * f);
    return {from_.x * c + across_.x * s, from_.y * c + across_.y * s, from_.z * c + across_.z * s,
            from_.w * c + across_.w * s};
  }

 private:
  corvanta::Quat from_, across_;
  float angle_ = 0;
  bool turns_ = false;
};

/// The two points of a span, and what lies between them at a fraction of it.
class FrameBlend {
 public:
  FrameBlend(std::span<const PointFrame> points, bool useRotation) : points_(points), useRotation_(useRotation) {}

  /// Goes to the span that point `point` begins; after the last point comes the first.
  void Enter(int point) {
    if (point == point_) return;
    point_ = point;
    a_ = &points_[static_cast<size_t>(point)];
    b_ = &points_[static_cast<size_t>(point) + 1 < points_.size() ? static_cast<size_t>(point) + 1 : 0];
    if (useRotation_) arc_ = RotationArc(a_->rot, b_->rot);
  }
  corvanta::Quat Rotation(float f) const { return arc_.At(f); }
  corvanta::Point3 Scale(float f) const { return Lerp(a_->scale, b_->scale, f); }
  float Twist(float f) const { return a_->twist + (b_->twist - a_->twist) * f; }
  float Amplitude(float f) const { return a_->amplitude + (b_->amplitude - a_->amplitude) * f; }

 private:
  std::span<const PointFrame> points_;
  bool useRotation_;
  int point_ = -1;
  const PointFrame* a_ = nullptr;
  const PointFrame* b_ = nullptr;
  RotationArc arc_;
};

}  // namespace tavrilon
