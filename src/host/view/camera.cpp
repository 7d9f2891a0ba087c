// SPDX-License-Identifier: MIT
#include "host/view/camera.h"

#include <algorithm>

namespace corvanta {
namespace {

constexpr float kTanHalfFov = 0.3152988f;  // 35 degrees from top to bottom
constexpr float kMinSpan = 1e-5f, kMaxSpan = 1e7f;
constexpr float kFirstSpan = 2.3f;
constexpr int kMaxSide = 16384;
constexpr Point3 kAxisX{1, 0, 0}, kAxisY{0, 1, 0}, kAxisZ{0, 0, 1};

// Rows in the order of ViewKind; the perspective view's are computed. A side view shows the character's left side.
constexpr Point3 kViewAxes[3][3] = {
    // right      up       forward
    {kAxisX, kAxisZ, kAxisY},
    {kAxisY, kAxisZ, {-1, 0, 0}},
    {kAxisX, kAxisY, {0, 0, -1}},
};

bool IsFinite(const Point3& p) { return std::isfinite(p.x) && std::isfinite(p.y) && std::isfinite(p.z); }

}  // namespace

Camera::Camera(ViewKind kind, int width, int height) : kind_(kind), width_(1), height_(1) {
  Resize(width, height);
  UpdateAxes();
}

void Camera::Resize(int width, int height) {
  width_ = std::clamp(width, 1, kMaxSide);
  height_ = std::clamp(height, 1, kMaxSide);
}

void Camera::UpdateAxes() {
  if (!IsPerspective()) {
    const Point3* axes = kViewAxes[static_cast<int>(kind_)];
    right_ = axes[0], up_ = axes[1], forward_ = axes[2];
    return;
  }
  const float cy = std::cos(yaw_), sy = std::sin(yaw_), cp = std::cos(pitch_), sp = std::sin(pitch_);
  right_ = {cy, sy, 0};
  forward_ = {-sy * cp, cy * cp, -sp};
  up_ = Cross(right_, forward_);
}

float Camera::Distance() const { return span_ * 0.5f / kTanHalfFov; }

float Camera::Focal() const {
  return IsPerspective() ? static_cast<float>(height_) * 0.5f / kTanHalfFov : static_cast<float>(height_) / span_;
}

Matrix3 Camera::ViewTM() const {
  Matrix3 m;
  for (int i = 0; i < 3; ++i) m.row[i] = {right_[i], up_[i], forward_[i]};
  m.row[3] = -VectorTransform(m, Eye());
  return m;
}

void Camera::LookAt(const Point3& target, float span) {
  if (IsFinite(target)) target_ = target;
  if (span > 0) span_ = std::clamp(span, kMinSpan, kMaxSpan);
}

void Camera::FrameBox(const Box3& box, float margin) {
  if (box.IsEmpty()) return FramePoints({}, margin);
  Point3 corners[8];
  for (int i = 0; i < 8; ++i) corners[i] = box.Corner(i);
  FramePoints(corners, margin);
}

void Camera::FramePoints(std::span<const Point3> points, float margin) {
  Box3 box;
  bool usable = !points.empty();
  for (const Point3& p : points) {
    usable = usable && IsFinite(p);
    box += p;
  }
  if (!usable || !(box.Diagonal() < kMaxSpan)) return LookAt({}, kFirstSpan);
  if (box.Diagonal() < 1e-6f) return LookAt(box.Center(), kFirstSpan);
  LookAt(box.Center(), span_);
  // A perspective view has to step back before it can tell where the middle of the points is seen, and then again.
  for (int round = 0; round < (IsPerspective() ? 8 : 1); ++round) {
    if (IsPerspective()) LookAt(target_, NeededSpan(points, margin));
    Centre(points);
  }
  LookAt(target_, std::max(NeededSpan(points, margin), box.Diagonal() * 1e-3f));
}

void Camera::Centre(std::span<const Point3> points) {
  Box3 seen;  // in world units at the depth of the target
  for (const Point3& p : points) {
    const Point3 d = p - target_;
    const float scale = IsPerspective() ? Distance() / std::max(Distance() + Dot(d, forward_), NearDepth()) : 1;
    seen += Point3{Dot(d, right_) * scale, Dot(d, up_) * scale, 0};
  }
  LookAt(target_ + right_ * seen.Center().x + up_ * seen.Center().y, span_);
}

float Camera::NeededSpan(std::span<const Point3> points, float margin) const {
  const float aspect = static_cast<float>(width_) / static_cast<float>(height_);
  float needed = 0;  // half the span, or the distance of the eye
  for (const Point3& p : points) {
    const Point3 d = p - target_;
    const float side = std::max(std::fabs(Dot(d, up_)), std::fabs(Dot(d, right_)) / aspect) * margin;
    needed = std::max(needed, IsPerspective() ? side / kTanHalfFov - Dot(d, forward_) : side);
  }
  return 2 * needed * (IsPerspective() ? kTanHalfFov : 1);
}

void Camera::Orbit(float yaw, float pitch) {
  if (!IsPerspective() || !std::isfinite(yaw) || !std::isfinite(pitch)) return;
  yaw_ = std::remainder(yaw_ + yaw, kTwoPi);
  pitch_ = std::clamp(pitch_ + pitch, -kHalfPi + 0.01f, kHalfPi - 0.01f);
  UpdateAxes();
}

void Camera::Pan(float dx, float dy) {
  LookAt(target_ + (up_ * dy - right_ * dx) * (span_ / static_cast<float>(height_)), span_);
}

void Camera::Zoom(float factor) { LookAt(target_, span_ * factor); }

bool Camera::WorldToScreen(const Point3& p, ScreenPoint& out) const {
  const Point3 d = p - Eye();
  const float depth = Dot(d, forward_);
  if (!IsFinite(d) || !std::isfinite(depth) || (IsPerspective() && depth < NearDepth())) return false;
  const float scale = IsPerspective() ? Focal() / depth : Focal();
  out = {static_cast<float>(width_) * 0.5f + Dot(d, right_) * scale,
         static_cast<float>(height_) * 0.5f - Dot(d, up_) * scale, depth};
  return true;
}

float Camera::PixelSize(const Point3& p) const {
  if (!IsPerspective()) return 1 / Focal();
  const float depth = Dot(p - Eye(), forward_);
  return (depth > NearDepth() ? depth : NearDepth()) / Focal();
}

Ray Camera::ScreenRay(Point2 screen) const {
  const float x = (screen.x - static_cast<float>(width_) * 0.5f) / Focal();
  const float y = (static_cast<float>(height_) * 0.5f - screen.y) / Focal();
  if (IsPerspective()) return {Eye(), Normalize(forward_ + right_ * x + up_ * y)};
  return {target_ + right_ * x + up_ * y, forward_};
}

bool Camera::ScreenToPlane(Point2 screen, const Point3& origin, const Point3& normal, Point3& hit) const {
  const Ray ray = ScreenRay(screen);
  const Point3 unit = Normalize(normal);
  const float slope = Dot(ray.direction, unit);
  if (!(std::fabs(slope) > 1e-6f)) return false;
  const float t = Dot(origin - ray.origin, unit) / slope;
  if (!std::isfinite(t) || (IsPerspective() && t <= 0)) return false;
  hit = ray.origin + ray.direction * t;
  return true;
}

Point3 Camera::GridNormal() const {
  if (kind_ == ViewKind::Front) return kAxisY;
  return kind_ == ViewKind::Side ? kAxisX : kAxisZ;
}

}  // namespace corvanta
